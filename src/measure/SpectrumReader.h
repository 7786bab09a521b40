#pragma once

#include "measure/RealTransform.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace sonotrace {

/// What a spectrum was made of.
struct AnalysedBlock {
    std::span<const double> samples; ///< sum of `blocks` consecutive blocks, not yet weighted; a power of two
    std::span<const double> window;  ///< weights, as many
    std::int32_t blocks = 1;
};

/// What is asked of a spectrum.
struct SpectrumQuestion {
    double fromHz = 0;   ///< band of the noise sums and of the noise floor
    double toHz = 22050; ///<
    std::optional<double> fundamentalHz =
        {};             ///< to look for the fundamental at; without it the strongest tone is
    double mainsHz = 0; ///< 50 or 60 for the mains table
    /// Response of the microphone in dB at a frequency in Hz, to be taken off all levels. Empty: none.
    std::function<double(double frequencyHz)> responseDb = {};
};

/// A line of the spectrum. Levels are those of a sine, 0 dBFS being one with a peak of 32768.
struct SpectrumTone {
    double frequencyHz = 0;
    /// None where averaging the samples has all but cancelled the tone (by more than 20 dB).
    std::optional<double> levelDbfs;
};

/// Numbers of a spectrum; those that are not defined are missing.
struct SpectrumReadings {
    static constexpr std::size_t kHarmonics = 9;   ///< the second to the tenth
    static constexpr std::size_t kMainsTones = 10; ///< the mains frequency and its multiples

    std::optional<SpectrumTone> peak;                              ///< the strongest tone
    std::optional<SpectrumTone> fundamental;                       ///< the same, or the one asked for
    std::array<std::optional<SpectrumTone>, kHarmonics> harmonics; ///< none at 22050 Hz and above
    /// Harmonics 2 to 10 to the fundamental. This and the next but SNR: none of what is mostly noise.
    std::optional<double> thdDb;
    std::optional<double> thdNoiseDb;     ///< what noise alone adds to that: nearer, it is noise that is read
    std::optional<double> thdPlusNoiseDb; ///< harmonics and noise to the fundamental, 0 to 22050 Hz
    std::optional<double> snrDb;          ///< fundamental to noise without the harmonics, 0 to 22050 Hz
    std::optional<double> sinadDb;        ///< fundamental to harmonics and noise: -THD+N
    std::optional<double> noiseFloorDbfs; ///< noise in one bin between From and to: the median's
    std::optional<double> noiseDbfs;      ///< sum of the noise between From and to, without harmonics
    std::optional<double> noiseADbfs;     ///< the same, A-weighted
    std::array<std::optional<SpectrumTone>, kMainsTones> mains;
    std::optional<double> humDbfs; ///< sum of the mains table
};

/// Takes readings of spectra. It works on the block of samples in double precision: a sine is fitted to the
/// fundamental by weighted least squares and taken off, so that a window's side lobes do not count as noise.
/// What is measured of a lone sine is off by less than 1e-4 of a bin and 0.001 dB for all windows between the
/// tenth bin and the tenth from 22050 Hz; what else there is pulls at it as far as the window lets it
/// through. One thread.
class SpectrumReader {
public:
    /// Takes a block, which is copied. Allocates after a change of size.
    void take(const AnalysedBlock& block);

    /// False before the first block.
    bool hasBlock() const { return !samples_.empty(); }

    SpectrumReadings read(const SpectrumQuestion& question);

    /// The strongest tone between two frequencies, as a pointer asks for: the highest line of the spectrum
    /// there, or, where there is none between them, the level at their middle. None outside 0 to 22050 Hz.
    std::optional<SpectrumTone> toneBetween(double lowHz, double highHz,
                                            const SpectrumQuestion& question) const;

private:
    double binHz() const;
    double lastBin() const { return static_cast<double>(samples_.size()) / 2.0; }
    double meanSquareAt(std::span<const double> samples, double bin) const;
    double summitNear(std::span<const double> samples, double bin) const;
    std::optional<std::size_t> highestBin(const std::vector<double>& power, double first, double last) const;
    SpectrumTone tone(double bin, double meanSquare, const SpectrumQuestion& question) const;
    void readHarmonics(SpectrumReadings& readings, const SpectrumQuestion& question, double fundamentalBin);
    void readNoise(SpectrumReadings& readings, const SpectrumQuestion& question,
                   std::optional<double> fundamentalBin);
    void readMains(SpectrumReadings& readings, const SpectrumQuestion& question) const;

    RealTransform transform_;
    std::vector<double> samples_;  ///< without their mean
    std::vector<double> residual_; ///< without the fundamental
    std::vector<double> window_;
    std::vector<double> weighted_; ///< work
    std::vector<double> power_;    ///< of `samples_`, |X|²
    std::vector<double> residualPower_;
    std::vector<double> noise_; ///< work
    double windowSum_ = 0;
    double windowSquares_ = 0;
    double lobe_ = 0; ///< bins from the middle of a tone's line to its end
    std::int32_t blocks_ = 1;
};

} // namespace sonotrace
