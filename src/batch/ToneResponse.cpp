#include "batch/ToneResponse.h"

#include "base/ChannelFold.h"
#include "base/FftWindows.h"
#include "base/SampleRate.h"
#include "generator/OutputRender.h"
#include "generator/WavRecorder.h"
#include "measure/SpectrumReader.h"

#include <algorithm>
#include <cmath>

namespace sonotrace {

namespace {

constexpr double kBinHz = kSampleRate / kToneBlock;
constexpr double kApart = 16.0 * kBinHz;
constexpr double kOverNoise = 10.0;      // dB
constexpr FftWindowType kToneWindow = 7; // Nuttall: at 16 bins its side lobes are 100 dB down

/// Reads tones of a stereo block.
class BlockReader {
public:
    BlockReader() : window_(kToneBlock), block_(kToneBlock) {
        fillWindowCoeffs(kToneWindow, kToneBlock, window_.data());
    }

    void take(std::span<const std::int16_t> interleaved, std::size_t channel) {
        for (std::size_t i = 0; i < block_.size(); ++i)
            block_[i] = interleaved[2 * i + channel];
        reader_.take({block_, window_, 1});
    }

    std::optional<double> levelAt(double frequencyHz) const {
        const auto tone = reader_.toneBetween(frequencyHz - kBinHz, frequencyHz + kBinHz, {});
        return tone ? tone->levelDbfs : std::nullopt;
    }

private:
    std::vector<double> window_;
    std::vector<double> block_;
    SpectrumReader reader_;
};

/// What the generators play, without the way through any device.
std::vector<std::int16_t> played(const SettingsOfAll& settings) {
    const SineTable sineTable;
    GeneratorBank bank;
    for (std::size_t i = 0; i < settings.size(); ++i)
        bank.slots[i].store(settings[i]);
    SweepParameters sweep;
    WavRecorder recorder;
    OutputRender render(bank, sweep, sineTable, recorder);
    std::vector<std::int16_t> samples(std::size_t{2} * kToneBlock);
    render.render(samples);
    return samples;
}

} // namespace

std::vector<double> responseFrequencies(const ResponseQuestion& question) {
    std::vector<double> frequencies;
    const double step = std::log(question.toHz / question.fromHz) / std::max(question.points - 1, 1);
    for (int i = 0; i < question.points; ++i) {
        const double wanted = question.fromHz * std::exp(step * i);
        const double pairs = std::round((wanted / kBinHz - 1.0) / 2.0);
        const double bin = 2.0 * std::clamp(pairs, 1.0, kToneBlock / 4.0 - 2.0) + 1.0;
        if (frequencies.empty() || frequencies.back() < bin * kBinHz)
            frequencies.push_back(bin * kBinHz);
    }
    return frequencies;
}

std::vector<std::vector<double>> tonesTogether(const std::vector<double>& frequencies, int tonesAtOnce) {
    const auto most = static_cast<std::size_t>(tonesAtOnce);
    const std::size_t all = (frequencies.size() + most - 1) / most;
    // Dealt out in turn: neighbours are then as far apart as they can be.
    std::vector<std::vector<double>> rounds(all);
    std::size_t next = 0;
    for (const double frequency : frequencies) {
        const auto hasRoom = [&](const std::vector<double>& round) {
            return round.size() < most && (round.empty() || frequency - round.back() >= kApart);
        };
        std::size_t tried = 0;
        while (tried < rounds.size() && !hasRoom(rounds[(next + tried) % rounds.size()]))
            ++tried;
        if (tried == rounds.size())
            rounds.emplace_back().push_back(frequency);
        else
            rounds[(next + tried) % rounds.size()].push_back(frequency);
        next = (next + 1) % rounds.size();
    }
    return rounds;
}

SettingsOfAll settingsOfTones(std::span<const double> frequencies, double peakDbfs) {
    SettingsOfAll settings{};
    const double volume = std::pow(10.0, peakDbfs / 20.0); // which they share
    for (std::size_t i = 0; i < std::min(frequencies.size(), settings.size()); ++i)
        settings[i] = {.frequency = frequencies[i],
                       .phase = 0,
                       .volumeLeft = volume,
                       .volumeRight = volume,
                       .waveform = 0,
                       .enabled = 1};
    return settings;
}

std::vector<ResponsePoint> measureResponse(const Hear& hear, const ResponseQuestion& question,
                                           const std::function<void(int done, int all)>& progress) {
    const auto frequencies = responseFrequencies(question);
    const auto rounds = tonesTogether(frequencies, question.tonesAtOnce);
    const auto all = static_cast<int>(rounds.size()) + 1;
    progress(0, all);
    std::array<BlockReader, 2> silence;
    const auto silent = hear({});
    for (std::size_t channel = 0; channel < silence.size(); ++channel)
        silence[channel].take(silent, channel);
    BlockReader block;
    std::vector<ResponsePoint> points;
    for (std::size_t i = 0; i < rounds.size(); ++i) {
        progress(static_cast<int>(i) + 1, all);
        const SettingsOfAll settings = settingsOfTones(rounds[i], question.peakDbfs);
        const std::size_t first = points.size();
        std::vector<double> reference;
        block.take(played(settings), 0);
        for (const double frequency : rounds[i]) {
            reference.push_back(block.levelAt(frequency).value_or(NAN));
            points.push_back({frequency, {}});
        }
        const auto heard = hear(settings);
        for (std::size_t channel = 0; channel < silence.size(); ++channel) {
            block.take(heard, channel);
            for (std::size_t tone = 0; tone < reference.size(); ++tone) {
                const auto level = block.levelAt(rounds[i][tone]);
                const auto noise = silence[channel].levelAt(rounds[i][tone]);
                if (level && std::isfinite(*level) && !(noise && *level < *noise + kOverNoise))
                    points[first + tone].gainDb[channel] = *level - reference[tone];
            }
        }
    }
    progress(all, all);
    std::ranges::sort(points, {}, &ResponsePoint::frequencyHz);
    return points;
}

} // namespace sonotrace
