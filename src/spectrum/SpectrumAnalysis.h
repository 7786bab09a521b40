#pragma once

#include "base/ChannelFold.h"
#include "base/FftWindows.h"
#include "base/ZeroedArray.h"
#include "spectrum/SpectrumBins.h"
#include "spectrum/SpectrumFft.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace sonotrace {

/// Points per transform that can be chosen, in menu order.
inline constexpr std::array<std::int32_t, 12> kSpectrumFftSizes = {64,   128,  256,   512,   1024,  2048,
                                                                   4096, 8192, 16384, 32768, 65536, 131072};

/// How far the next spectrum is.
struct SpectrumProgress {
    std::int32_t block = 1;  ///< that is being collected, of `blocks`
    std::int32_t blocks = 1; ///< averaged for a spectrum
    double blockSeconds = 0; ///< that a block is long
    double secondsLeft = 0;  ///< of sound until the spectrum, as the settings are now
};

/// Turns captured stereo into power spectra: folds it to one channel (their sum at first), averages
/// consecutive blocks sample by sample, weighs the average with a data window and transforms it. Window
/// thread.
class SpectrumAnalysis {
public:
    /// `redisplay` is called after each new spectrum, from within capture().
    explicit SpectrumAnalysis(std::function<void()> redisplay);

    /// Takes interleaved frames and makes all the spectra that are due. Left and right are folded as 16-bit
    /// samples: loud in-phase signals wrap around when they are added. Allocates only after a change of the
    /// FFT size.
    void capture(std::span<const std::int16_t> interleaved);

    /// Makes a spectrum of `blocks` blocks, 1 or more, that were added up elsewhere, as if it had collected
    /// them itself. The weights are as many as the sum has samples: one of kSpectrumFftSizes.
    void takeSum(std::span<const double> sum, std::span<const double> weights, std::int32_t blocks);

    /// Points per transform; a size outside kSpectrumFftSizes is ignored and leaves the size as it was. This
    /// and the other settings take effect at the next block.
    void setFftSize(std::int32_t points);
    void setWindowType(FftWindowType type) { windowType_ = type; }
    /// Blocks averaged per spectrum; 0 and below mean 1.
    void setNumAvg(std::int32_t blocks) { numAvg_ = blocks; }

    /// What of the two channels is taken in from now on.
    void setFold(ChannelFold fold) { fold_ = fold; }
    /// Drops what has been collected for the next spectrum.
    void startAfresh();

    double fftSize() const { return fftSize_; }
    FftWindowType windowType() const { return windowType_; }
    std::int32_t numAvg() const { return numAvg_; }

    SpectrumProgress progress() const;

    /// Power of each bin, re² + im², mirrored upper half included: the bins of the last spectrum, followed by
    /// what longer ones before left there, or zeros. Room for more bins than the largest size has.
    std::span<const double> powerSpectrum() const { return {powerSpectrum_.data(), powerSpectrum_.size()}; }

    /// What the last spectrum was made of: the sum of so many blocks before it was divided and weighted, and
    /// the weights. Empty before the first spectrum.
    std::span<const double> blockSum() const { return blockSum_; }
    std::span<const double> windowCoeffs() const { return windowCoeffs_; }
    std::int32_t summedBlocks() const { return summedBlocks_; }

    /// What the last spectrum is, whatever is chosen for the next one; no bins before the first.
    SpectrumBins bins() const;
    FftWindowType spectrumWindow() const { return spectrumWindow_; }
    ChannelFold spectrumFold() const { return spectrumFold_; }
    /// False after a change of size, where the sum lacks blocks that it is divided by.
    bool isWhole() const { return summedBlocks_ == countedBlocks_; }

    double maxPower() const { return maxPower_; } ///< largest value of the last spectrum
    double minPower() const { return minPower_; } ///< smallest value of the last spectrum, at most 1e8

private:
    std::int32_t waitingSamples() const;
    void store(std::span<const std::int16_t> interleaved);
    void analyze();
    void prepareWork();
    void accumulateBlock();
    void makeSpectrum();

    const std::function<void()> redisplay_;
    std::vector<std::int16_t> sampleRing_;
    std::size_t ringWriteIndex_ = 0;
    std::size_t ringReadIndex_ = 0;

    ChannelFold fold_ = ChannelFold::Sum;
    double fftSize_ = 32768;
    FftWindowType windowType_ = 0;
    std::int32_t numAvg_ = 0;

    std::size_t lastSize_ = 0; ///< points that the window and the work area are made for
    FftWindowType lastWindowType_ = 0;
    std::int32_t avgCount_ = 0; ///< blocks counted for the next spectrum
    std::int32_t inWork_ = 0;   ///< blocks in the work area: fewer after a change of size
    std::vector<double> windowCoeffs_;
    double windowSum_ = 0;
    std::vector<double> blockSum_;
    std::int32_t summedBlocks_ = 1;
    std::int32_t countedBlocks_ = 1; ///< that the sum was divided by: more after a change of size
    ChannelFold spectrumFold_ = ChannelFold::Sum;
    double spectrumWindowSum_ = 0; ///< of the last spectrum, as the next
    FftWindowType spectrumWindow_ = 0;
    std::vector<double> fftWork_; ///< re, im, ...: sum of the blocks, then their spectrum
    SpectrumFft fft_;

    ZeroedArray<double> powerSpectrum_;
    double maxPower_ = 0;
    double minPower_ = 0;
};

} // namespace sonotrace
