#include "measure/ChannelDelay.h"

#include "measure/BandLimited.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <fftw3.h>
#include <new>
#include <numeric>
#include <utility>

namespace sonotrace {

namespace {

constexpr double kAlike = 0.8;        ///< a correlation that counts whatever the others are
constexpr double kOutstanding = 6.0;  ///< times the others' root mean square
constexpr double kUpsideDown = 1.1;   ///< times the highest the lowest must be
constexpr double kRival = 0.95;       ///< of the highest: a peak that fits as well
constexpr double kBetween = 0.7;      ///< of the highest: where it falls below, another peak begins
constexpr std::size_t kEdge = 32;     ///< lags at both ends, where values to read between are missing
constexpr double kWidestFlank = 64.0; ///< lags from the top: further away the overlap counts
constexpr double kLeastEnergy = 0.25; ///< of a channel in the overlapping part

/// The next even length from `length` on with no prime factor but 2, 3, 5 and 7.
std::size_t transformLength(std::size_t length) {
    const auto isFast = [](std::size_t n) {
        for (const std::size_t prime : {2U, 3U, 5U, 7U})
            while (n % prime == 0)
                n /= prime;
        return n == 1;
    };
    while (length % 2 != 0 || !isFast(length))
        ++length;
    return length;
}

} // namespace

/// A transform of real numbers and its inverse, in one place each.
struct ChannelDelay::Transform {
    using Complex = std::complex<double>;

    explicit Transform(std::size_t n)
        : length(n),
          time(fftw_alloc_real(n)),
          frequency(reinterpret_cast<Complex*>(fftw_alloc_complex(n / 2 + 1))),
          kept(n / 2 + 1) {
        if (time == nullptr || frequency == nullptr)
            throw std::bad_alloc();
        auto* const bins = reinterpret_cast<fftw_complex*>(frequency);
        forward = fftw_plan_dft_r2c_1d(static_cast<int>(n), time, bins, FFTW_ESTIMATE);
        backward = fftw_plan_dft_c2r_1d(static_cast<int>(n), bins, time, FFTW_ESTIMATE);
        if (forward == nullptr || backward == nullptr)
            throw std::bad_alloc();
    }
    ~Transform() {
        fftw_destroy_plan(forward);
        fftw_destroy_plan(backward);
        fftw_free(time);
        fftw_free(frequency);
    }
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;

    void transform(const std::vector<double>& samples) {
        std::fill(std::ranges::copy(samples, time).out, time + length, 0.0);
        fftw_execute(forward);
    }

    const std::size_t length;
    double* const time;
    Complex* const frequency;
    std::vector<Complex> kept;
    fftw_plan forward = nullptr;
    fftw_plan backward = nullptr;
};

/// A channel about its mean, and the sums over its first samples.
struct ChannelDelay::Channel {
    explicit Channel(std::span<const std::int16_t> raw) : sums(raw.size() + 1), squares(raw.size() + 1) {
        const double mean = std::accumulate(raw.begin(), raw.end(), 0.0) /
                            static_cast<double>(std::max<std::size_t>(raw.size(), 1));
        samples.reserve(raw.size());
        for (const std::int16_t sample : raw)
            samples.push_back(sample - mean);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            sums[i + 1] = sums[i] + samples[i];
            squares[i + 1] = squares[i] + samples[i] * samples[i];
        }
    }

    double sum(std::size_t begin, std::size_t end) const { return sums[end] - sums[begin]; }
    /// Of a part about its own mean.
    double energy(std::size_t begin, std::size_t end) const {
        const double part = sum(begin, end);
        const double own = squares[end] - squares[begin] - part * part / static_cast<double>(end - begin);
        return std::max(own, kLeastEnergy * squares.back());
    }

    std::vector<double> samples;
    std::vector<double> sums;
    std::vector<double> squares;
};

ChannelDelay::ChannelDelay(std::size_t block, double sampleRate)
    : block_(block),
      sampleRate_(sampleRate),
      mostLag_(static_cast<std::ptrdiff_t>(block / 2)),
      transform_(std::make_unique<Transform>(transformLength(block + block / 2 + 1))),
      correlation_(2 * (block / 2) + 1) {}

ChannelDelay::~ChannelDelay() = default;

void ChannelDelay::correlate(const Channel& first, const Channel& second) {
    const std::span frequency(transform_->frequency, transform_->length / 2 + 1);
    transform_->transform(first.samples);
    std::ranges::copy(frequency, transform_->kept.begin());
    transform_->transform(second.samples);
    for (std::size_t i = 0; i < frequency.size(); ++i)
        frequency[i] *= std::conj(transform_->kept[i]);
    fftw_execute(transform_->backward);
    const auto length = static_cast<double>(transform_->length);
    for (std::ptrdiff_t lag = -mostLag_; lag <= mostLag_; ++lag) {
        const auto size = static_cast<std::size_t>(std::abs(lag));
        const std::size_t begin1 = lag < 0 ? size : 0;
        const std::size_t begin2 = lag < 0 ? 0 : size;
        const std::size_t overlap = block_ - size;
        const double product = transform_->time[lag < 0 ? transform_->length - size : size] / length;
        const double means = first.sum(begin1, begin1 + overlap) * second.sum(begin2, begin2 + overlap) /
                             static_cast<double>(overlap);
        correlation_[static_cast<std::size_t>(lag + mostLag_)] =
            (product - means) /
            std::sqrt(first.energy(begin1, begin1 + overlap) * second.energy(begin2, begin2 + overlap));
    }
}

double ChannelDelay::at(double lag) const {
    return bandLimited(correlation_, lag + static_cast<double>(mostLag_));
}

/// The top of the cosine through three places, once the middle one is the highest.
ChannelDelay::Peak ChannelDelay::peakNear(double lag, double step) const {
    double before = at(lag - step);
    double here = at(lag);
    double behind = at(lag + step);
    while (before > here && lag > -reachable()) {
        lag -= step;
        behind = std::exchange(here, std::exchange(before, at(lag - step)));
    }
    while (behind > here && lag < reachable()) {
        lag += step;
        before = std::exchange(here, std::exchange(behind, at(lag + step)));
    }
    // Below half the sample rate a step of half a lag is no more than a quarter of a turn.
    const double ratio = std::max((before + behind) / (2.0 * here), 0.0);
    if (!(here > 0.0 && ratio < 1.0))
        return {lag, here};
    const double turn = std::acos(ratio);
    const double angle =
        std::clamp(std::atan((behind - before) / (2.0 * here * std::sin(turn))), -0.5 * turn, 0.5 * turn);
    return {lag + angle / turn * step, here / std::cos(angle)};
}

/// The highest peak and those that fit as well, in the order of their lags.
std::vector<ChannelDelay::Peak> ChannelDelay::rivals() const {
    std::vector<Peak> peaks;
    const double least = 0.1 * *std::ranges::max_element(correlation_);
    double highest = 0.0;
    for (std::size_t i = kEdge; i + kEdge < correlation_.size(); ++i) {
        const double here = correlation_[i];
        if (here < least || here < correlation_[i - 1] || here < correlation_[i + 1])
            continue;
        peaks.push_back(peakNear(static_cast<double>(static_cast<std::ptrdiff_t>(i) - mostLag_), 0.5));
        highest = std::max(highest, peaks.back().height);
    }
    std::vector<Peak> lobes;
    for (const Peak& peak : peaks) {
        if (peak.height < kRival * highest)
            continue;
        const auto index = [this](const Peak& of) {
            return correlation_.begin() + static_cast<std::ptrdiff_t>(std::lround(of.lag)) + mostLag_;
        };
        const bool isApart =
            lobes.empty() || *std::min_element(index(lobes.back()), index(peak) + 1) < kBetween * highest;
        if (isApart)
            lobes.push_back(peak);
        else if (peak.height > lobes.back().height)
            lobes.back() = peak;
    }
    return lobes;
}

/// Half the distance from a peak to where it has fallen to its half.
double ChannelDelay::lobeReach(const Peak& peak) const {
    const auto isHigh = [&](double lag) {
        return std::abs(lag) <= static_cast<double>(mostLag_) && at(std::round(lag)) > 0.5 * peak.height;
    };
    double left = peak.lag;
    double right = peak.lag;
    while (isHigh(left))
        left -= 1.0;
    while (isHigh(right))
        right += 1.0;
    return std::clamp(0.25 * (right - left), 0.5, kWidestFlank);
}

/// The place between two flanks of the same height, `reach` to each side of it. It is steadier than the top,
/// which is flat.
double ChannelDelay::middle(double lag, double reach) const {
    const auto slant = [&](double place) { return at(place + reach) - at(place - reach); };
    double from = lag;
    double to = lag + 0.25 * reach;
    double fromSlant = slant(from);
    for (int i = 0; i < 8 && std::abs(to - from) > 1e-6; ++i) {
        const double toSlant = slant(to);
        if (toSlant == fromSlant)
            break;
        const double next = to - toSlant * (to - from) / (toSlant - fromSlant);
        from = to;
        fromSlant = toSlant;
        to = std::clamp(next, lag - reach, lag + reach);
    }
    return to;
}

/// The period measured over as many periods as there is room for.
double ChannelDelay::period(double lag, double spacing, double reach) const {
    const double direction = lag > 0.0 ? -1.0 : 1.0;
    const double end = static_cast<double>(mostLag_) - reach - 1.0;
    for (double periods = 1.0; std::abs(lag + direction * periods * spacing) < end; periods *= 2.0)
        spacing = std::abs(middle(lag + direction * periods * spacing, reach) - lag) / periods;
    return spacing;
}

std::optional<DelayReading> ChannelDelay::read(std::span<const std::int16_t> first,
                                               std::span<const std::int16_t> second) {
    const Channel one(first);
    const Channel two(second);
    if (one.squares.back() <= 0.0 || two.squares.back() <= 0.0)
        return std::nullopt;
    correlate(one, two);
    const auto [low, high] = std::ranges::minmax(correlation_);
    const double sign = -low > kUpsideDown * high ? -1.0 : 1.0;
    for (double& value : correlation_)
        value *= sign;
    const std::vector<Peak> lobes = rivals();
    const double squares =
        std::inner_product(correlation_.begin(), correlation_.end(), correlation_.begin(), 0.0);
    const double usual = std::sqrt(squares / static_cast<double>(correlation_.size()));
    const auto nearest =
        std::ranges::min_element(lobes, {}, [](const Peak& peak) { return std::abs(peak.lag); });
    if (lobes.empty() || (nearest->height < kAlike && nearest->height < kOutstanding * usual))
        return std::nullopt;

    DelayReading reading;
    reading.ambiguous = lobes.size() > 1;
    if (!reading.ambiguous) {
        const Peak peak = peakNear(peakNear(nearest->lag, 0.5).lag, 0.25);
        reading.delaySeconds = peak.lag / sampleRate_;
        reading.correlation = sign * std::min(peak.height, 1.0);
        return reading;
    }
    double spacing = 2.0 * static_cast<double>(mostLag_);
    for (std::size_t i = 1; i < lobes.size(); ++i)
        spacing = std::min(spacing, lobes[i].lag - lobes[i - 1].lag);
    const double reach = lobeReach(*nearest);
    double lag = middle(nearest->lag, reach);
    const double places = 2.0 * static_cast<double>(mostLag_) / spacing;
    if (static_cast<double>(lobes.size()) > 0.5 * places) {
        spacing = period(lag, spacing, reach);
        lag -= spacing * std::round(lag / spacing);
        reading.periodSeconds = spacing / sampleRate_;
        const double turns = -lag / spacing;
        reading.phaseDegrees = 360.0 * (turns - std::ceil(turns - 0.5));
    }
    reading.delaySeconds = lag / sampleRate_;
    reading.correlation = sign * std::min(nearest->height, 1.0);
    return reading;
}

} // namespace sonotrace
