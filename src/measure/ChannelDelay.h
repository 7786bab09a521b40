#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace sonotrace {

/// How a block of the second channel lies in time against the same block of the first.
struct DelayReading {
    double delaySeconds = 0;             ///< of the second channel; below 0 where it comes first
    double correlation = 0;              ///< of the channels shifted against each other by that much, -1 to 1
    bool ambiguous = false;              ///< other delays fit as well: this is the one nearest to 0
    std::optional<double> periodSeconds; ///< at which they lie, when evenly
    std::optional<double> phaseDegrees;  ///< of the second against the first then, above -180 to 180
};

/// Finds the delay at which the correlation coefficient of the overlapping parts of two channels is highest,
/// or lowest if that is further from 0, which is a channel that is upside down. The blocks are shifted by up
/// to half their length. No delay is given where the channels have nothing in common: the highest is neither
/// 0.8 nor 6 times the root mean square of all.
///
/// A filter has no one delay. What is read is where its output is most like its input: behind a low-pass of
/// first order with the time constant T, fed with noise that has passed one with S, that is
/// ln(2 S / (S + T)) S T / (S - T), from 0 for white noise to T ln 2 for slow squares; for tones far below
/// its corner it is T. Of what repeats it is the middle between the flanks of the correlation's peak.
///
/// Error, in blocks of 11025 samples: 0.01 samples for a pure delay of noise up to half the sample rate; for
/// one of a sine 0.15 degrees from 10 to 320 Hz and 0.03 degrees up to 19 kHz, and with noise of r times the
/// sine's root mean square on each channel a standard deviation of 0.8 r degrees more. What repeats less than
/// 8 times a second is not known to be ambiguous.
///
/// One thread at a time; constructed on the thread that plans all transforms.
class ChannelDelay {
public:
    ChannelDelay(std::size_t block, double sampleRate);
    ~ChannelDelay();

    /// Both of the block's length. Nothing for channels that have nothing in common, or of which one is
    /// constant.
    std::optional<DelayReading> read(std::span<const std::int16_t> first,
                                     std::span<const std::int16_t> second);

private:
    struct Transform;
    struct Channel;
    struct Peak {
        double lag = 0;
        double height = 0;
    };

    void correlate(const Channel& first, const Channel& second);
    double at(double lag) const;
    double reachable() const { return static_cast<double>(mostLag_ - 1); }
    Peak peakNear(double lag, double step) const;
    std::vector<Peak> rivals() const;
    double middle(double lag, double reach) const;
    double lobeReach(const Peak& peak) const;
    double period(double lag, double spacing, double reach) const;

    const std::size_t block_;
    const double sampleRate_;
    const std::ptrdiff_t mostLag_;
    const std::unique_ptr<Transform> transform_;
    std::vector<double> correlation_; ///< at each lag from -mostLag_ on
};

} // namespace sonotrace
