#include "measure/SpectrumReader.h"

#include "base/SampleRate.h"
#include "measure/AWeighting.h"
#include "measure/SineFit.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>
#include <utility>

namespace sonotrace {

namespace {

constexpr double kNyquist = kSampleRate / 2.0;
constexpr double kFullScalePower = 0.5 * 32768.0 * 32768.0; ///< mean square of a sine of 0 dBFS
constexpr double kLeastAveragingGain = 0.1;
constexpr double kMainsTolerance = 0.004; ///< of its frequency
constexpr std::size_t kFewestNoiseBins = 8;
constexpr double kLobeMargin = 1.0; ///< bins around a tone that its line may reach into, beside the lobe

double decibels(double power) {
    return 10.0 * std::log10(power);
}

double levelOf(double meanSquare) {
    return decibels(meanSquare / kFullScalePower);
}

/// Bins from the middle of the window's own spectrum to where it first stops falling.
double lobeOf(std::span<const double> window) {
    constexpr double kStep = 0.125;
    constexpr double kWidest = 8.0;
    constexpr double kFoot = 0.1; // of the summit; above it a flat top is not quite flat
    const std::vector<double> ones(window.size(), 1.0);
    const auto responseAt = [&](double bin) { return std::abs(lineAt(ones, window, bin)); };
    const double summit = responseAt(0.0);
    double last = summit;
    double bin = 0.0;
    while (bin < kWidest) {
        const double response = responseAt(bin + kStep);
        if (response >= last && last < kFoot * summit)
            break;
        last = response;
        bin += kStep;
    }
    return bin;
}

/// Amplitude that is left of a tone when consecutive blocks are averaged sample by sample.
double averagingGain(double bin, std::int32_t blocks) {
    const double turn = std::numbers::pi * (bin - std::round(bin)); // half of the phase from block to block
    const double sine = std::sin(turn);
    return std::abs(sine) < 1e-12 ? 1.0 : std::abs(std::sin(blocks * turn) / (blocks * sine));
}

std::ptrdiff_t harmonicsRead(const SpectrumReadings& readings) {
    return std::ranges::count_if(readings.harmonics, [](const auto& tone) { return tone.has_value(); });
}

/// Bin of the summit of a parabola through the logarithms of a bin and its neighbours.
double parabolaAt(const std::vector<double>& power, std::size_t bin) {
    if (bin == 0 || bin + 1 >= power.size())
        return static_cast<double>(bin);
    const double below = std::log(power[bin - 1] + 1e-300);
    const double above = std::log(power[bin + 1] + 1e-300);
    const double curvature = below - 2.0 * std::log(power[bin]) + above;
    const double offset = curvature < 0.0 ? 0.5 * (below - above) / curvature : 0.0;
    return static_cast<double>(bin) + std::clamp(offset, -0.5, 0.5);
}

} // namespace

void SpectrumReader::take(const AnalysedBlock& block) {
    if (!std::ranges::equal(window_, block.window)) {
        window_.assign(block.window.begin(), block.window.end());
        windowSum_ = std::reduce(window_.begin(), window_.end());
        windowSquares_ = std::inner_product(window_.begin(), window_.end(), window_.begin(), 0.0);
        lobe_ = lobeOf(window_);
    }
    blocks_ = std::max(block.blocks, 1);
    samples_.assign(block.samples.begin(), block.samples.end());
    const auto [low, high] = std::ranges::minmax(samples_);
    // Of a constant nothing may be left, not even the rounding of its mean.
    const double mean =
        low == high ? low
                    : std::inner_product(samples_.begin(), samples_.end(), window_.begin(), 0.0) / windowSum_;
    for (double& sample : samples_)
        sample = (sample - mean) / blocks_;
    weighted_.resize(samples_.size());
    std::ranges::transform(samples_, window_, weighted_.begin(), std::multiplies());
    transform_.power(weighted_, power_);
}

double SpectrumReader::binHz() const {
    return kSampleRate / static_cast<double>(samples_.size());
}

double SpectrumReader::meanSquareAt(std::span<const double> samples, double bin) const {
    return 2.0 * std::norm(lineAt(samples, window_, bin)) / (windowSum_ * windowSum_);
}

/// Where the level is highest within half a bin: parabolas through its logarithm, each narrower than the
/// last.
double SpectrumReader::summitNear(std::span<const double> samples, double bin) const {
    double summit = bin;
    for (double reach : {0.5, 0.1, 0.01}) {
        const auto log = [&](double at) {
            return std::log(std::norm(lineAt(samples, window_, at)) + 1e-300);
        };
        const double below = log(summit - reach);
        const double above = log(summit + reach);
        const double curvature = below - 2.0 * log(summit) + above;
        if (!(curvature < 0.0))
            break;
        summit += std::clamp(0.5 * reach * (below - above) / curvature, -reach, reach);
    }
    return summit;
}

std::optional<std::size_t> SpectrumReader::highestBin(const std::vector<double>& power, double first,
                                                      double last) const {
    const double lowest = std::max(std::ceil(first), 0.0);
    const double highest = std::min(std::floor(last), lastBin());
    if (!(lowest <= highest))
        return std::nullopt;
    const auto begin = power.begin() + static_cast<std::ptrdiff_t>(lowest);
    const auto end = power.begin() + static_cast<std::ptrdiff_t>(highest) + 1;
    const auto found = std::max_element(begin, end);
    if (!(*found > 0.0))
        return std::nullopt;
    return static_cast<std::size_t>(found - power.begin());
}

SpectrumTone SpectrumReader::tone(double bin, double meanSquare, const SpectrumQuestion& question) const {
    SpectrumTone tone{.frequencyHz = bin * binHz(), .levelDbfs = std::nullopt};
    const double gain = averagingGain(bin, blocks_);
    if (gain < kLeastAveragingGain || !(meanSquare > 0.0))
        return tone;
    tone.levelDbfs = levelOf(meanSquare / (gain * gain));
    if (question.responseDb)
        *tone.levelDbfs -= question.responseDb(tone.frequencyHz);
    return tone;
}

std::optional<SpectrumTone> SpectrumReader::toneBetween(double lowHz, double highHz,
                                                        const SpectrumQuestion& question) const {
    if (lowHz > highHz)
        std::swap(lowHz, highHz);
    const bool isInside = highHz >= 0.0 && lowHz <= kNyquist; // not so when not a number
    if (!hasBlock() || !isInside)
        return std::nullopt;
    lowHz = std::max(lowHz, 0.0);
    highHz = std::min(highHz, kNyquist);
    double bin = (lowHz + highHz) / 2.0 / binHz();
    const double first = std::ceil(lowHz / binHz());
    if (first <= highHz / binHz()) {
        const auto highest = highestBin(power_, first, highHz / binHz());
        if (!highest)
            return SpectrumTone{.frequencyHz = bin * binHz(), .levelDbfs = std::nullopt};
        const std::size_t k = *highest;
        const bool isSummit =
            k > 0 && k + 1 < power_.size() && power_[k] >= power_[k - 1] && power_[k] >= power_[k + 1];
        bin = summitNear(samples_, static_cast<double>(k));
        if (!isSummit) // one beyond an end is not what is asked for
            bin = std::clamp(bin, lowHz / binHz(), highHz / binHz());
    }
    return tone(bin, meanSquareAt(samples_, bin), question);
}

SpectrumReadings SpectrumReader::read(const SpectrumQuestion& question) {
    SpectrumReadings readings;
    if (!hasBlock())
        return readings;
    residual_ = samples_;
    std::optional<double> fundamental;
    const auto measured = [&](double first, double last) -> std::optional<FittedSine> {
        // At either end the sine's amplitude is anything.
        const auto highest = highestBin(power_, std::max(first, 1.0), std::min(last, lastBin() - 1.0));
        if (!highest)
            return std::nullopt;
        return fitSine(samples_, window_, parabolaAt(power_, *highest));
    };
    std::optional<FittedSine> strongest = measured(lobe_, lastBin());
    if (strongest)
        readings.peak = tone(strongest->bin, strongest->meanSquare(), question);
    if (question.fundamentalHz) {
        const double bin = *question.fundamentalHz / binHz();
        strongest = bin >= lobe_ ? measured(bin - lobe_, bin + lobe_) : std::nullopt;
    }
    if (strongest) {
        readings.fundamental = tone(strongest->bin, strongest->meanSquare(), question);
        takeOffSine(residual_, strongest->bin, strongest->cosine, strongest->sine);
        fundamental = strongest->bin;
    }
    const auto transformResidual = [&] {
        std::ranges::transform(residual_, window_, weighted_.begin(), std::multiplies());
        transform_.power(weighted_, residualPower_);
    };
    if (question.mainsHz > 0.0) { // before the harmonics are taken off, as they may be the mains'
        transformResidual();
        readMains(readings, question);
    }
    if (fundamental)
        readHarmonics(readings, question, *fundamental);
    transformResidual();
    readNoise(readings, question, fundamental);
    return readings;
}

void SpectrumReader::readHarmonics(SpectrumReadings& readings, const SpectrumQuestion& question,
                                   double fundamentalBin) {
    double sum = 0.0;
    bool isWhole = true;
    for (std::size_t i = 0; i < readings.harmonics.size(); ++i) {
        const double bin = fundamentalBin * static_cast<double>(i + 2);
        if (bin > lastBin() - 1.0)
            break;
        const std::complex<double> amplitude = 2.0 / windowSum_ * lineAt(residual_, window_, bin);
        takeOffSine(residual_, bin, amplitude.real(), -amplitude.imag()); // its side lobes are no noise
        readings.harmonics[i] = tone(bin, std::norm(amplitude) / 2.0, question);
        const auto level = readings.harmonics[i]->levelDbfs;
        isWhole = isWhole && level;
        sum += level ? std::pow(10.0, *level / 10.0) : 0.0;
    }
    if (readings.harmonics[0] && isWhole && readings.fundamental->levelDbfs)
        readings.thdDb = decibels(sum) - *readings.fundamental->levelDbfs;
}

void SpectrumReader::readNoise(SpectrumReadings& readings, const SpectrumQuestion& question,
                               std::optional<double> fundamentalBin) {
    // Samples averaged over blocks have as much less noise as there are blocks.
    const double scale =
        2.0 * blocks_ / (static_cast<double>(samples_.size()) * windowSquares_ * kFullScalePower);
    const auto isTone = [&](double bin) {
        if (!fundamentalBin)
            return bin < lobe_;
        const double order = std::clamp(std::round(bin / *fundamentalBin), 0.0,
                                        static_cast<double>(SpectrumReadings::kHarmonics + 1));
        return bin < lobe_ || std::abs(bin - order * *fundamentalBin) <= lobe_ + kLobeMargin;
    };
    const auto responseAt = [&](double hz) {
        return question.responseDb ? std::pow(10.0, -question.responseDb(hz) / 10.0) : 1.0;
    };
    noise_.clear(); // of the bins that hold no tone
    const auto sumBetween = [&](double fromHz, double toHz, auto weight) -> std::optional<double> {
        noise_.clear();
        double sum = 0.0;
        double weights = 0.0;
        double allWeights = 0.0;
        for (std::size_t k = 1; k + 1 < residualPower_.size(); ++k) {
            const double hz = static_cast<double>(k) * binHz();
            if (hz < fromHz || hz > toHz)
                continue;
            const double gain = weight(hz) * responseAt(hz);
            allWeights += gain;
            if (isTone(static_cast<double>(k)))
                continue;
            weights += gain;
            noise_.push_back(residualPower_[k] * scale * gain);
            sum += noise_.back();
        }
        if (noise_.size() < kFewestNoiseBins || !(sum > 0.0))
            return std::nullopt;
        return sum * allWeights / weights; // under a tone there is as much noise as beside it
    };
    const auto flat = [](double) { return 1.0; };
    const double low = std::min(question.fromHz, question.toHz);
    const double high = std::max(question.fromHz, question.toHz);
    if (const auto sum = sumBetween(low, high, aWeighting))
        readings.noiseADbfs = decibels(*sum);
    if (const auto sum = sumBetween(low, high, flat)) {
        readings.noiseDbfs = decibels(*sum);
        const auto middle = noise_.begin() + static_cast<std::ptrdiff_t>(noise_.size() / 2);
        std::nth_element(noise_.begin(), middle, noise_.end());
        // The power of noise in a bin is distributed exponentially.
        if (*middle > 0.0)
            readings.noiseFloorDbfs = decibels(*middle / std::numbers::ln2);
    }
    const auto noise = sumBetween(0.0, kNyquist, flat);
    if (!noise || !readings.fundamental || !readings.fundamental->levelDbfs)
        return;
    const double fundamental = std::pow(10.0, *readings.fundamental->levelDbfs / 10.0);
    readings.snrDb = decibels(fundamental / *noise);
    if (fundamental < *noise) { // a sweep or noise, and no tone that anything could be the distortion of
        readings.thdDb.reset();
        return;
    }
    if (readings.thdDb) {
        const double perBin = *noise / lastBin();
        const double bandwidth = 2.0 * lastBin() * windowSquares_ / (windowSum_ * windowSum_); // of a bin
        readings.thdNoiseDb =
            decibels(static_cast<double>(harmonicsRead(readings)) * perBin * bandwidth / fundamental);
    }
    const double harmonics = readings.thdDb ? fundamental * std::pow(10.0, *readings.thdDb / 10.0) : 0.0;
    if (!readings.thdDb && readings.harmonics[0])
        return; // one of them cannot be told
    readings.thdPlusNoiseDb = decibels((harmonics + *noise) / fundamental);
    readings.sinadDb = -*readings.thdPlusNoiseDb;
}

void SpectrumReader::readMains(SpectrumReadings& readings, const SpectrumQuestion& question) const {
    const double spacing = question.mainsHz / binHz();
    if (!(spacing >= 2.0 * lobe_)) // its multiples cannot be told apart
        return;
    double sum = 0.0;
    for (std::size_t i = 0; i < readings.mains.size(); ++i) {
        const double bin = spacing * static_cast<double>(i + 1);
        const double reach = std::min(0.5 + kMainsTolerance * bin, spacing / 3.0);
        const bool isFundamental = readings.fundamental &&
                                   std::abs(readings.fundamental->frequencyHz / binHz() - bin) <= reach + 0.5;
        // What a strong tone elsewhere spreads must not count as hum.
        const auto highest = highestBin(isFundamental ? power_ : residualPower_, bin - reach, bin + reach);
        if (!highest)
            continue;
        const std::vector<double>& samples = isFundamental ? samples_ : residual_;
        const double summit = summitNear(samples, static_cast<double>(*highest));
        readings.mains[i] = tone(summit, meanSquareAt(samples, summit), question);
        if (readings.mains[i]->levelDbfs)
            sum += std::pow(10.0, *readings.mains[i]->levelDbfs / 10.0);
    }
    if (sum > 0.0)
        readings.humDbfs = decibels(sum);
}

} // namespace sonotrace
