#include "measure/PowerAverage.h"

#include <algorithm>
#include <utility>

namespace sonotrace {

namespace {
constexpr std::size_t kMostValues = 4U << 20U; // of single precision, 16 MB
constexpr std::int32_t kMostSpectra = 1000;
} // namespace

void PowerAverage::set(AverageKind kind, std::int32_t spectra) {
    const auto wanted = static_cast<std::size_t>(std::clamp(spectra, 1, kMostSpectra));
    if (std::exchange(kind_, kind) != kind || std::exchange(spectra_, wanted) != wanted)
        clear();
    spectra_ = wanted;
}

std::size_t PowerAverage::mostSpectra() const {
    return bins_ == 0 ? spectra_ : std::min(spectra_, std::max<std::size_t>(1, kMostValues / bins_));
}

void PowerAverage::clear() {
    count_ = 0;
    next_ = 0;
    std::vector<float>().swap(last_);
    mean_.clear();
}

void PowerAverage::add(std::span<const double> power) {
    if (kind_ == AverageKind::Off)
        return;
    if (power.size() != std::exchange(bins_, power.size()))
        clear();
    const std::size_t most = mostSpectra();
    if (kind_ == AverageKind::LastSpectra) {
        if (last_.size() < std::min(count_ + 1, most) * bins_)
            last_.resize((count_ + 1) * bins_);
        std::ranges::transform(power, last_.begin() + static_cast<std::ptrdiff_t>(next_ * bins_),
                               [](double value) { return static_cast<float>(value); });
        next_ = (next_ + 1) % most;
        count_ = std::min(count_ + 1, most);
        isSummedUp_ = false;
        return;
    }
    mean_.resize(bins_);
    count_ = std::min(count_ + 1, spectra_);
    const double share = 1.0 / static_cast<double>(count_);
    for (std::size_t k = 0; k < bins_; ++k)
        mean_[k] += (power[k] - mean_[k]) * share;
}

std::span<const double> PowerAverage::mean() {
    if (kind_ == AverageKind::LastSpectra && !isSummedUp_)
        sumUp();
    return mean_;
}

/// Anew each time: a sum that is kept up would keep the rounding of all that was ever in it.
void PowerAverage::sumUp() {
    isSummedUp_ = true;
    mean_.assign(count_ == 0 ? 0 : bins_, 0.0);
    for (std::size_t i = 0; i < count_; ++i)
        for (std::size_t k = 0; k < bins_; ++k)
            mean_[k] += static_cast<double>(last_[i * bins_ + k]);
    for (double& value : mean_)
        value /= static_cast<double>(count_);
}

void PeakHold::add(std::span<const double> power) {
    if (highest_.size() != power.size())
        highest_.assign(power.begin(), power.end());
    else
        std::ranges::transform(highest_, power, highest_.begin(),
                               [](double a, double b) { return std::max(a, b); });
}

} // namespace sonotrace
