#include "batch/FileSpectra.h"

#include "batch/ChannelOption.h"

#include "base/WideVectors.h"

#include <algorithm>
#include <utility>

namespace sonotrace {

FileSpectra::FileSpectra(const FileSpectraSettings& settings)
    : settings_(settings),
      windowCoeffs_(static_cast<std::size_t>(settings.fftSize)),
      work_(windowCoeffs_.size()) {
    fillWindowCoeffs(settings.windowType, settings.fftSize, windowCoeffs_.data());
    if (settings.collectsPowers)
        collector_ = std::make_unique<PowerCollector>(windowCoeffs_, settings.blocks);
}

std::uint64_t FileSpectra::framesPerSpectrum() const {
    return static_cast<std::uint64_t>(settings_.fftSize) * static_cast<std::uint64_t>(settings_.blocks);
}

void FileSpectra::take(std::span<const std::int16_t> interleaved) {
    using enum ChannelFold;
    if (settings_.fold == Left)
        accumulate(interleaved, [](std::int16_t left, std::int16_t) { return left; });
    else if (settings_.fold == Right)
        accumulate(interleaved, [](std::int16_t, std::int16_t right) { return right; });
    else {
        wrapped_ += wrappedFrames(interleaved, settings_.fold);
        accumulate(interleaved, [fold = settings_.fold](std::int16_t left, std::int16_t right) {
            return foldSamples(fold, left, right);
        });
    }
}

void FileSpectra::take(std::span<const double> interleaved) {
    accumulate(interleaved, [fold = settings_.fold](double left, double right) {
        switch (fold) {
        case ChannelFold::Left:
            return left;
        case ChannelFold::Right:
            return right;
        case ChannelFold::Difference:
            return left - right;
        case ChannelFold::Sum:
            break;
        }
        return left + right;
    });
}

template <typename Sample, typename Fold>
void FileSpectra::accumulate(std::span<const Sample> interleaved, Fold fold) {
    while (interleaved.size() >= 2) {
        const std::size_t frames = std::min(interleaved.size() / 2, work_.size() - filled_);
        double* const target = work_.data() + filled_;
        const Sample* const source = interleaved.data();
        if (block_ == 0)
            for (std::size_t i = 0; i < frames; ++i)
                target[i] = static_cast<double>(fold(source[2 * i], source[2 * i + 1]));
        else
            for (std::size_t i = 0; i < frames; ++i)
                target[i] += static_cast<double>(fold(source[2 * i], source[2 * i + 1]));
        filled_ += frames;
        interleaved = interleaved.subspan(2 * frames);
        if (filled_ == work_.size())
            endBlock();
    }
}

void FileSpectra::endBlock() {
    filled_ = 0;
    if (++block_ < settings_.blocks)
        return;
    block_ = 0;
    ++spectra_;
    blockSum_.swap(work_);
    work_.resize(blockSum_.size());
    if (collector_)
        collector_->add(blockSum_);
}

void FileSpectra::finish() {
    if (collector_)
        collector_->finish();
}

} // namespace sonotrace
