#include "widgets/InputHints.h"

#include "widgets/StreamText.h"

#include <cmath>

namespace sonotrace {

namespace {

using enum Hint::Urgency;

constexpr double kShown = 4.0;        // s after the last one
constexpr double kSilence = 1.0;      // s before it is said
constexpr float kSameVolume = 0.006F; // mixers round to whole per cent

} // namespace

Hint streamHint(const QueueState& state, bool hasNewGaps) {
    const QString text = describeStream(state);
    const QString sentence = text.first(1).toUpper() + text.sliced(1);
    if (state.phase != QueueState::Phase::Running)
        return {Fault, sentence};
    if (hasNewGaps)
        return {Warning, "Samples are lost: " + text};
    if (state.moved)
        return {Warning, sentence};
    return {Usual, text};
}

Hints volumeHints(const DeviceVolume& volume) {
    if (!volume.device)
        return {};
    if (*volume.device == 0.0F)
        return {{Warning, "Volume is 0: nothing is heard"}};
    if (std::abs(*volume.device - volume.slider) <= kSameVolume)
        return {};
    const auto amplitude = static_cast<double>(*volume.device);
    return {{Warning, QString("The device stands at %1 % (%2 dB), set elsewhere")
                          .arg(std::lround(amplitude * 100.0))
                          .arg(20.0 * volume.exponent * std::log10(amplitude), 0, 'f', 1)}};
}

Hints signalHints(const InputFindings& findings, std::optional<ChannelFold> fold) {
    Hints hints;
    if (fold && findings.sinceOverflow < kShown)
        hints.push_back({Warning, fold == ChannelFold::Difference
                                      ? "Left - right overflows: lower the volume or feed one channel"
                                      : "Left + right overflow: lower the volume or feed one channel"});
    if (findings.sinceClipping < kShown)
        hints.push_back({Warning, "The input is at full scale and may clip: lower the level before it"});
    if (findings.sinceSound > kSilence)
        hints.push_back({Warning, "No signal at all: every sample is 0"});
    return hints;
}

QString waitingTime(double seconds) {
    constexpr double kMinute = 60.0;
    constexpr double kHour = 60.0 * kMinute;
    constexpr double kDay = 24.0 * kHour;
    if (seconds < 2.0 * kMinute)
        return QString("%1 s").arg(seconds, 0, 'f', 1);
    if (seconds < 2.0 * kHour)
        return QString("%1 min").arg(seconds / kMinute, 0, 'f', 0);
    if (seconds < 2.0 * kDay)
        return QString("%1 h").arg(seconds / kHour, 0, 'f', 0);
    return QString("%1 days").arg(seconds / kDay, 0, 'f', 0);
}

} // namespace sonotrace
