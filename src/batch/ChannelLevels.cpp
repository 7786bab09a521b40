#include "batch/ChannelLevels.h"

#include "base/WideVectors.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace sonotrace {

namespace {

constexpr double kFullScale = 32768.0;
constexpr double kHighest = 32767.0; ///< of 16-bit samples
constexpr int kClippedRun = 3;       // a lone peak may just reach full scale

struct Piece {
    std::array<std::int32_t, 2> peaks{};
    std::array<std::uint64_t, 2> squares{};
};

/// Of up to so many frames that the sums of a lane fit 32 bits.
SONOTRACE_WIDE_VECTORS void measure(const std::int16_t* samples, std::size_t frames, Piece& piece) {
    std::int32_t left = 0;
    std::int32_t right = 0;
    std::uint64_t leftSquares = 0;
    std::uint64_t rightSquares = 0;
    for (std::size_t i = 0; i < frames; ++i) {
        const std::int32_t a = samples[2 * i];
        const std::int32_t b = samples[2 * i + 1];
        left = std::max(left, std::abs(a));
        right = std::max(right, std::abs(b));
        leftSquares += static_cast<std::uint32_t>(a * a);
        rightSquares += static_cast<std::uint32_t>(b * b);
    }
    piece = {{left, right}, {leftSquares, rightSquares}};
}

double decibels(double part) {
    return 20.0 * std::log10(part);
}

} // namespace

double ChannelLevel::peakDbfs() const {
    return decibels(peak / kFullScale);
}

double ChannelLevel::rmsDbfs() const {
    return decibels(rms * std::sqrt(2.0) / kFullScale);
}

void ChannelLevels::add(std::span<const std::int16_t> interleaved) {
    Piece piece;
    measure(interleaved.data(), interleaved.size() / 2, piece);
    bool isHigh = runs_[0] + runs_[1] > 0;
    for (std::size_t channel = 0; channel < 2; ++channel) {
        peaks_[channel] = std::max(peaks_[channel], static_cast<double>(piece.peaks[channel]));
        squares_[channel] += static_cast<double>(piece.squares[channel]);
        isHigh = isHigh || piece.peaks[channel] >= kHighest;
    }
    if (isHigh)
        countClips(interleaved);
    frames_ += interleaved.size() / 2;
}

void ChannelLevels::add(std::span<const double> interleaved) {
    bool isHigh = runs_[0] + runs_[1] > 0;
    for (std::size_t channel = 0; channel < 2; ++channel) {
        double peak = 0;
        double squares = 0;
        for (std::size_t i = channel; i < interleaved.size(); i += 2) {
            peak = std::max(peak, std::abs(interleaved[i]));
            squares += interleaved[i] * interleaved[i];
        }
        peaks_[channel] = std::max(peaks_[channel], peak);
        squares_[channel] += squares;
        isHigh = isHigh || peak >= kHighest;
    }
    if (isHigh)
        countClips(interleaved);
    frames_ += interleaved.size() / 2;
}

template <typename Sample>
void ChannelLevels::countClips(std::span<const Sample> interleaved) {
    for (std::size_t i = 0; i < interleaved.size(); ++i) {
        int& run = runs_[i % 2];
        run = std::abs(static_cast<double>(interleaved[i])) >= kHighest ? std::min(run, kClippedRun) + 1 : 0;
        if (run == kClippedRun)
            ++clips_[i % 2];
    }
}

ChannelLevel ChannelLevels::level(std::size_t channel) const {
    const double frames = std::max(1.0, static_cast<double>(frames_));
    return {.peak = peaks_[channel], .rms = std::sqrt(squares_[channel] / frames), .clips = clips_[channel]};
}

} // namespace sonotrace
