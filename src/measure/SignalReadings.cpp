#include "measure/SignalReadings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace sonotrace {

namespace {

constexpr double kHysteresis = 0.1;       ///< of the peak to peak, to each side
constexpr double kLargestDeviation = 0.2; ///< of the periods, of their mean
constexpr std::size_t kFewestPeriods = 2;

/// Where a signal passes its middle, in samples.
struct Crossings {
    std::vector<double> rises;
    std::vector<double> falls;
};

Crossings crossings(std::span<const std::int16_t> samples, double middle, double margin) {
    enum class Side { Unknown, Below, Above } side = Side::Unknown;
    Crossings found;
    double rise = 0.0;
    double fall = 0.0;
    double before = samples[0] - middle;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double now = samples[i] - middle;
        if ((before < 0.0) != (now < 0.0)) {
            const double place = static_cast<double>(i) - now / (now - before);
            (now < 0.0 ? fall : rise) = place;
        }
        if (now > margin && side != Side::Above) {
            if (side == Side::Below)
                found.rises.push_back(rise);
            side = Side::Above;
        } else if (now < -margin && side != Side::Below) {
            if (side == Side::Above)
                found.falls.push_back(fall);
            side = Side::Below;
        }
        before = now;
    }
    return found;
}

bool isSteady(const std::vector<double>& places) {
    if (places.size() < 2)
        return false;
    const auto periods = static_cast<double>(places.size() - 1);
    const double mean = (places.back() - places.front()) / periods;
    double squares = 0.0;
    for (std::size_t i = 1; i < places.size(); ++i)
        squares += std::pow(places[i] - places[i - 1] - mean, 2);
    return std::sqrt(squares / periods) < kLargestDeviation * mean;
}

std::optional<PeriodReading> readPeriod(const Crossings& places, double sampleRate) {
    if (places.rises.size() <= kFewestPeriods || !isSteady(places.rises) || !isSteady(places.falls))
        return std::nullopt;
    const std::size_t periods = places.rises.size() - 1;
    const double length = places.rises.back() - places.rises.front();
    const std::size_t firstFall = places.falls.front() < places.rises.front() ? 1 : 0;
    double above = 0.0;
    for (std::size_t i = 0; i < periods; ++i)
        above += places.falls[i + firstFall] - places.rises[i];
    return PeriodReading{static_cast<double>(periods) * sampleRate / length, static_cast<int>(periods),
                         100.0 * above / length};
}

} // namespace

SignalReadings readSignal(std::span<const std::int16_t> samples, double sampleRate) {
    if (samples.empty())
        return {};
    std::int64_t sum = 0;
    std::int64_t squares = 0;
    for (const std::int16_t sample : samples) {
        sum += sample;
        squares += std::int64_t{sample} * sample;
    }
    const auto [low, high] = std::ranges::minmax(samples);
    const auto count = static_cast<double>(samples.size());
    SignalReadings readings{static_cast<double>(high), static_cast<double>(low),
                            static_cast<double>(sum) / count, std::sqrt(static_cast<double>(squares) / count),
                            std::nullopt};
    if (high > low)
        readings.period = readPeriod(
            crossings(samples, 0.5 * (high + low), kHysteresis * readings.peakToPeak()), sampleRate);
    return readings;
}

} // namespace sonotrace
