#pragma once

#include "base/ChannelFold.h"
#include "base/FftWindows.h"
#include "batch/PowerCollector.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace sonotrace {

struct FileSpectraSettings {
    std::int32_t fftSize = 16384; ///< a power of two
    FftWindowType windowType = 1;
    std::int32_t blocks = 1; ///< averaged sample by sample for a spectrum
    ChannelFold fold = ChannelFold::Left;
    bool collectsPowers = false; ///< mean and highest of all spectra, which takes its time
};

/// Cuts a file into the blocks that the spectrum analyzer makes of the same samples: consecutive ones from
/// the beginning, added up sample by sample, as many as a spectrum averages. One thread calls.
class FileSpectra {
public:
    explicit FileSpectra(const FileSpectraSettings& settings);

    /// Takes interleaved stereo, piece by piece. 16-bit samples are folded as such and wrap around as in the
    /// window, real ones do not.
    void take(std::span<const std::int16_t> interleaved);
    void take(std::span<const double> interleaved);

    /// Waits for what is still being computed. To be called after the last piece.
    void finish();

    const FileSpectraSettings& settings() const { return settings_; }
    std::uint64_t spectra() const { return spectra_; } ///< whole ones so far
    std::uint64_t wrapped() const { return wrapped_; } ///< frames whose fold was beyond 16 bits
    std::uint64_t framesPerSpectrum() const;

    /// The last whole spectrum's sum of blocks; empty before the first.
    std::span<const double> blockSum() const { return blockSum_; }
    std::span<const double> windowCoeffs() const { return windowCoeffs_; }

    /// |X|² of bins 0 to N / 2 of the weighted mean of the blocks, as the analyzer has it: averaged over all
    /// spectra, and the highest of all. After finish(), and empty where they are not collected.
    std::span<const double> meanPower() const {
        return collector_ ? collector_->mean() : std::span<const double>();
    }
    std::span<const double> peakHold() const {
        return collector_ ? collector_->highest() : std::span<const double>();
    }

private:
    template <typename Sample, typename Fold>
    void accumulate(std::span<const Sample> interleaved, Fold fold);
    void endBlock();

    const FileSpectraSettings settings_;
    std::vector<double> windowCoeffs_;
    std::vector<double> work_;     ///< sum of the blocks of the next spectrum
    std::vector<double> blockSum_; ///< of the last one
    std::size_t filled_ = 0;       ///< samples of the block that is collected
    std::int32_t block_ = 0;       ///< of the spectrum
    std::uint64_t spectra_ = 0;
    std::uint64_t wrapped_ = 0;
    std::unique_ptr<PowerCollector> collector_;
};

} // namespace sonotrace
