#include "spectrum/SpectrumAnalysis.h"

#include "base/SampleRate.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace sonotrace {

namespace {

constexpr std::size_t kRingSamples = 500000; ///< over eleven seconds
constexpr std::size_t kPowerValues = 262144;

} // namespace

SpectrumAnalysis::SpectrumAnalysis(std::function<void()> redisplay)
    : redisplay_(std::move(redisplay)), sampleRing_(kRingSamples), powerSpectrum_(kPowerValues) {}

void SpectrumAnalysis::setFftSize(std::int32_t points) {
    if (std::ranges::find(kSpectrumFftSizes, points) != kSpectrumFftSizes.end())
        fftSize_ = points;
}

void SpectrumAnalysis::capture(std::span<const std::int16_t> interleaved) {
    store(interleaved);
    while (waitingSamples() > fftSize_)
        analyze();
}

std::int32_t SpectrumAnalysis::waitingSamples() const {
    const auto waiting =
        static_cast<std::int32_t>(ringWriteIndex_) - static_cast<std::int32_t>(ringReadIndex_);
    return waiting < 0 ? waiting + static_cast<std::int32_t>(kRingSamples) : waiting;
}

SpectrumProgress SpectrumAnalysis::progress() const {
    const std::int32_t blocks = std::max({numAvg_, avgCount_ + 1, 1});
    const double samplesLeft = (blocks - avgCount_) * fftSize_ - waitingSamples() + 1.0;
    return {.block = avgCount_ + 1,
            .blocks = blocks,
            .blockSeconds = fftSize_ / kSampleRate,
            .secondsLeft = std::max(samplesLeft, 0.0) / kSampleRate};
}

void SpectrumAnalysis::store(std::span<const std::int16_t> interleaved) {
    while (interleaved.size() >= 2) {
        const std::size_t frames = std::min(interleaved.size() / 2, kRingSamples - ringWriteIndex_);
        std::int16_t* const target = sampleRing_.data() + ringWriteIndex_;
        for (std::size_t i = 0; i < frames; ++i)
            target[i] = foldSamples(fold_, interleaved[2 * i], interleaved[2 * i + 1]);
        ringWriteIndex_ = (ringWriteIndex_ + frames) % kRingSamples;
        interleaved = interleaved.subspan(2 * frames);
    }
}

void SpectrumAnalysis::analyze() {
    prepareWork();
    accumulateBlock();
    ++avgCount_;
    ++inWork_;
    if (avgCount_ < numAvg_)
        return;
    makeSpectrum();
    redisplay_();
}

void SpectrumAnalysis::takeSum(std::span<const double> sum, std::span<const double> weights,
                               std::int32_t blocks) {
    lastSize_ = sum.size();
    fftSize_ = static_cast<double>(lastSize_);
    windowCoeffs_.assign(weights.begin(), weights.end());
    windowSum_ = std::accumulate(weights.begin(), weights.end(), 0.0);
    fftWork_.assign(2 * lastSize_, 0.0);
    for (std::size_t i = 0; i < lastSize_; ++i)
        fftWork_[2 * i] = sum[i];
    avgCount_ = blocks;
    inWork_ = blocks;
    makeSpectrum();
    redisplay_();
}

SpectrumBins SpectrumAnalysis::bins() const {
    const std::size_t points = blockSum_.size();
    return {powerSpectrum().first(points == 0 ? 0 : points / 2 + 1), static_cast<double>(points),
            spectrumWindowSum_ * summedBlocks_ / countedBlocks_};
}

void SpectrumAnalysis::startAfresh() {
    ringReadIndex_ = ringWriteIndex_;
    std::ranges::fill(fftWork_, 0.0);
    avgCount_ = 0;
    inWork_ = 0;
}

/// A new size drops the sum of the blocks so far, but not their count: the first spectrum after it is divided
/// by the blocks before it, too, and so comes out lower. A new window changes neither.
void SpectrumAnalysis::prepareWork() {
    const auto points = static_cast<std::size_t>(fftSize_);
    const bool isNew = points != lastSize_ || windowType_ != lastWindowType_;
    if (points != lastSize_) {
        windowCoeffs_.resize(points);
        fftWork_.assign(2 * points, 0.0);
        inWork_ = 0;
        BuildNewWindowCoeffs(windowType_, static_cast<std::int64_t>(points), windowCoeffs_.data());
        lastSize_ = points;
    }
    if (windowType_ != lastWindowType_) {
        BuildNewWindowCoeffs(windowType_, static_cast<std::int64_t>(points), windowCoeffs_.data());
        lastWindowType_ = windowType_;
    }
    if (isNew)
        windowSum_ = std::accumulate(windowCoeffs_.begin(), windowCoeffs_.end(), 0.0);
}

void SpectrumAnalysis::accumulateBlock() {
    std::span<double> work(fftWork_);
    while (!work.empty()) {
        const std::size_t samples = std::min(work.size() / 2, kRingSamples - ringReadIndex_);
        const std::int16_t* const source = sampleRing_.data() + ringReadIndex_;
        for (std::size_t i = 0; i < samples; ++i)
            work[2 * i] += source[i]; // the imaginary parts are 0 since the last spectrum was taken
        ringReadIndex_ = (ringReadIndex_ + samples) % kRingSamples;
        work = work.subspan(2 * samples);
    }
}

void SpectrumAnalysis::makeSpectrum() {
    const std::size_t points = lastSize_;
    blockSum_.resize(points);
    for (std::size_t i = 0; i < points; ++i)
        blockSum_[i] = fftWork_[2 * i];
    summedBlocks_ = std::exchange(inWork_, 0);
    countedBlocks_ = avgCount_;
    for (std::size_t i = 0; i < points; ++i)
        fftWork_[2 * i] = fftWork_[2 * i] / avgCount_ * windowCoeffs_[i];
    avgCount_ = 0;
    spectrumWindowSum_ = windowSum_;
    spectrumWindow_ = windowType_;
    spectrumFold_ = fold_;
    fft_.transform(fftWork_);
    maxPower_ = 0.0;
    minPower_ = 1e8;
    for (std::size_t i = 0; i < points; ++i) {
        const double re = fftWork_[2 * i];
        const double im = fftWork_[2 * i + 1];
        const double power = re * re + im * im;
        powerSpectrum_[i] = power;
        maxPower_ = std::max(maxPower_, power);
        minPower_ = std::min(minPower_, power);
    }
    std::ranges::fill(fftWork_, 0.0);
}

} // namespace sonotrace
