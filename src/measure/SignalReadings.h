#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace sonotrace {

/// What repeats in a block.
struct PeriodReading {
    double frequencyHz = 0;
    int periods = 0;        ///< whole ones that the frequency stands on
    double dutyPerCent = 0; ///< part of those periods that the signal is above the middle of its extremes
};

/// What a block of one channel measures. Levels are in the units of its samples.
struct SignalReadings {
    double maximum = 0;
    double minimum = 0;
    double mean = 0;
    double rms = 0; ///< of all, the mean included
    std::optional<PeriodReading> period;

    double peakToPeak() const { return maximum - minimum; }
};

/// Reads a block. A period goes from one rise through the middle of the extremes to the next, where the
/// signal has been a tenth of its peak to peak below the middle and gets as far above it. There is one when
/// there are two whole periods or more and their lengths, counted from rise to rise and from fall to fall,
/// deviate from their mean by less than a fifth (standard deviation): noise has none, nor does a signal that
/// passes the middle twice in each of its periods.
///
/// Error of the frequency, (last rise - first rise) / periods with rises between samples on a straight line:
/// 4e-5 of it for a sine of 10 % of full scale or more from 12 Hz to 18 kHz, 2e-4 for one of 1 %, 1e-5 for
/// one of full scale up to 10 kHz; noise of r times the sine's peak adds about r / periods of it, and edges
/// that are shorter than a sample up to one sample in the whole time. A sine above 0.43 of the sample rate is
/// not read. Error of the duty: 0.1 % for a sine up to 1 kHz, several above where its periods are a few
/// samples, half a sample in each period for edges that are shorter than a sample.
SignalReadings readSignal(std::span<const std::int16_t> samples, double sampleRate);

} // namespace sonotrace
