#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace sonotrace {

enum class AverageKind : std::int32_t { Off, Exponential, LastSpectra }; ///< position in the windows' menu

/// Averages power spectra bin by bin, which shows the level of noise where an average of samples makes it
/// smaller. One thread.
class PowerAverage {
public:
    /// What is averaged from now on: with `spectra` 1 to 1000 as the time constant of an exponential average,
    /// which begins as the mean of all there is, or as the number of the last ones. A change drops what there
    /// is.
    void set(AverageKind kind, std::int32_t spectra);

    /// Takes a spectrum; one of another size drops what there is.
    void add(std::span<const double> power);

    void clear();

    /// Nothing before the first spectrum. Valid until the next call.
    std::span<const double> mean();

    AverageKind kind() const { return kind_; }
    std::int32_t spectra() const { return static_cast<std::int32_t>(spectra_); }

    std::size_t count() const { return count_; } ///< spectra in it

    /// Spectra that are kept of the last ones: fewer than asked for when they would take more than 16 MB.
    std::size_t mostSpectra() const;

private:
    void sumUp();

    AverageKind kind_ = AverageKind::Off;
    std::size_t spectra_ = 1;
    std::size_t bins_ = 0;
    std::size_t count_ = 0;
    std::size_t next_ = 0;    ///< place in `last_`
    std::vector<float> last_; ///< spectra, one after the other
    std::vector<double> mean_;
    bool isSummedUp_ = false;
};

/// The highest power that each bin has had. One thread.
class PeakHold {
public:
    void add(std::span<const double> power); ///< one of another size starts anew
    void clear() { highest_.clear(); }
    std::span<const double> highest() const { return highest_; }

private:
    std::vector<double> highest_;
};

} // namespace sonotrace
