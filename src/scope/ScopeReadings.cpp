#include "scope/ScopeReadings.h"

#include "widgets/LevelText.h"
#include "widgets/NumberText.h"

#include <cmath>
#include <numbers>

namespace sonotrace {

namespace {

constexpr double kFullScale = 32768.0;
const QString kNone = QStringLiteral("–");

/// As wide for every number of as many digits before the point or fewer.
QString padded(double value, int decimals, int digits) {
    return textWithDecimals(value, decimals)
        .rightJustified(digits + (decimals > 0 ? decimals + 1 : 0), QChar(0x2007)); // figure space
}

QString frequencyText(const SignalReadings& read) {
    if (read.period)
        return padded(read.period->frequencyHz, 3, 5) + QString(" Hz (%1)").arg(read.period->periods);
    return kNone + (read.peakToPeak() > 0.0 ? " no period" : " no signal");
}

QString levelOf(double rms, const Calibration& calibration) {
    if (rms <= 0.0)
        return kNone + " no signal";
    return levelText(calibration, 20.0 * std::log10(rms * std::numbers::sqrt2 / kFullScale));
}

std::vector<Reading> wordedChannel(const SignalReadings* read, int number, const Calibration& calibration) {
    const auto name = [number](const char* of) { return QString("%1 %2").arg(of).arg(number); };
    const auto level = [&](double value) {
        return read ? instantaneousText(calibration, value / kFullScale) : kNone;
    };
    const SignalReadings none;
    const SignalReadings& of = read ? *read : none;
    const PeriodReading period = of.period.value_or(PeriodReading());
    const QString whyNot =
        "Needs two whole periods or more in a quarter of a second that are of the same length, each with one "
        "rise through the middle of the extremes";
    return {
        {name("Peak-peak"), level(of.peakToPeak()), "Highest less lowest captured sample of the block"},
        {name("Maximum"), level(of.maximum), "Highest captured sample of the block, before range and invert"},
        {name("Minimum"), level(of.minimum), "Lowest captured sample of the block, before range and invert"},
        {name("DC"), level(of.mean), "Mean of all samples of the block"},
        {name("RMS"), level(of.rms), "Root mean square of all samples of the block, DC included"},
        {name("Level"), read ? levelOf(of.rms, calibration) : kNone,
         "The RMS as a level: 0 dBFS is that of a sine of full scale"},
        {name("Frequency"), read ? frequencyText(of) : kNone,
         "Whole periods, as many as the brackets say, by the time from the first rise through the middle of "
         "the extremes to the last; for a sine that fills a tenth of full scale within 0.004 %. " +
             whyNot},
        {name("Duty"), of.period ? padded(period.dutyPerCent, 2, 2) + " %" : kNone,
         "Part of the periods that the signal is above the middle of its extremes. " + whyNot},
    };
}

std::vector<Reading> wordedDelay(const ScopeBlockReadings* block) {
    const std::optional<DelayReading> none;
    const std::optional<DelayReading>& delay = block ? block->delay : none;
    QString unknown = kNone;
    if (block && !delay) {
        const bool areBoth = block->channels[0].peakToPeak() > 0.0 && block->channels[1].peakToPeak() > 0.0;
        unknown += areBoth ? " not alike" : " no signal";
    }
    const auto milliseconds = [](double seconds) { return padded(1000.0 * seconds, 4, 4) + " ms"; };
    QString ambiguous = kNone;
    if (delay)
        ambiguous = !delay->ambiguous      ? "no"
                    : delay->periodSeconds ? "by " + milliseconds(*delay->periodSeconds)
                                           : QString("yes");
    QString phase = unknown;
    if (delay)
        phase = delay->phaseDegrees ? padded(*delay->phaseDegrees, 2, 4) + u'°' : kNone + " no period";
    return {
        {"Delay 2 - 1", delay ? milliseconds(delay->delaySeconds) : unknown,
         "How much later channel 2 has what channel 1 has: where the two are most alike when shifted against "
         "each other by up to 125 ms. Within 0.01 samples (0.0002 ms) for a pure delay"},
        {"Ambiguous", ambiguous,
         "The signal repeats: the delay may be longer or shorter by any number of these times. The one "
         "nearest to 0 is shown"},
        {"Phase 2 - 1", phase,
         "Of a signal that repeats: the delay as a part of the period. Below 0 where channel 2 is late"},
        {"Alike", delay ? padded(delay->correlation, 3, 2) : unknown,
         "Correlation coefficient of the channels at this delay: 1 is the same signal, -1 the same upside "
         "down, near 0 nothing in common"},
    };
}

} // namespace

std::vector<Reading> wordedReadings(const ScopeBlockReadings* block, const Calibration& calibration) {
    const auto first = wordedChannel(block ? &block->channels[0] : nullptr, 1, calibration);
    const auto second = wordedChannel(block ? &block->channels[1] : nullptr, 2, calibration);
    std::vector<Reading> all;
    for (std::size_t i = 0; i < first.size(); ++i) { // side by side
        all.push_back(first[i]);
        all.push_back(second[i]);
    }
    const auto delay = wordedDelay(block);
    all.insert(all.end(), delay.begin(), delay.end());
    return all;
}

std::vector<Reading> wordedCursors(const std::array<ScopeCursor, 2>& cursors,
                                   const Calibration& calibration) {
    const double apart = cursors[1].milliseconds - cursors[0].milliseconds;
    std::vector<Reading> all = {
        {"Cursor A", padded(cursors[0].milliseconds, 4, 4) + " ms", "On the time ruler"},
        {"Cursor B", padded(cursors[1].milliseconds, 4, 4) + " ms", "On the time ruler"},
        {"B - A", padded(apart, 4, 4) + " ms", "Time from cursor A to cursor B"},
        {"1 / (B - A)", apart == 0.0 ? kNone : padded(1000.0 / std::abs(apart), 3, 5) + " Hz",
         "Frequency of a signal of which one period lies between the cursors"},
    };
    for (const int ch : {0, 1}) {
        const auto i = static_cast<std::size_t>(ch);
        const auto& a = cursors[0].levels[i];
        const auto& b = cursors[1].levels[i];
        const auto add = [&](const char* name, const std::optional<double>& level, const char* tip) {
            all.push_back(
                {QString(name).arg(ch + 1), level ? instantaneousText(calibration, *level) : kNone, tip});
        };
        add("A on %1", a, "Level of the trace at cursor A");
        add("B on %1", b, "Level of the trace at cursor B");
        add("B - A on %1", a && b ? std::optional(*b - *a) : std::nullopt,
            "Difference of the trace's levels at the cursors");
    }
    return all;
}

} // namespace sonotrace
