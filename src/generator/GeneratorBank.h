#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

namespace sonotrace {

inline constexpr int kGeneratorCount = 13;

/// One generator's settings as plain values.
struct GeneratorSettings {
    double frequency = 0;  ///< Hz
    double phase = 0;      ///< degrees
    double volumeLeft = 0; ///< linear, 1.0 is full scale
    double volumeRight = 0;
    std::int32_t waveform = 0; ///< a WaveformType
    std::int32_t enabled = 0;  ///< 1 on, 0 off
};

/// What is played of settings out of range.
inline constexpr double kLeastFrequency = 0.1; ///< Hz
inline constexpr double kMostFrequency = 22000.0;
inline constexpr double kMostPhase = 360.0; ///< degrees, to either side

inline GeneratorSettings withinLimits(GeneratorSettings settings) {
    const auto limited = [](double value, double least, double most) {
        return std::clamp(value == value ? value : 0.0, least, most); // fields show no number as 0
    };
    settings.frequency = limited(settings.frequency, kLeastFrequency, kMostFrequency);
    settings.phase = limited(settings.phase, -kMostPhase, kMostPhase);
    return settings;
}

/// One generator's settings, written by the window thread and read by the audio thread. A value changed while
/// a buffer is rendered may apply to that buffer or to the next.
struct GeneratorSlot {
    std::atomic<double> frequency{0};
    std::atomic<double> phase{0};
    std::atomic<double> volumeLeft{0};
    std::atomic<double> volumeRight{0};
    std::atomic<std::int32_t> waveform{0};
    std::atomic<std::int32_t> enabled{0};

    GeneratorSettings load() const {
        constexpr auto order = std::memory_order_relaxed;
        return {frequency.load(order),   phase.load(order),    volumeLeft.load(order),
                volumeRight.load(order), waveform.load(order), enabled.load(order)};
    }

    void store(const GeneratorSettings& settings) {
        constexpr auto order = std::memory_order_relaxed;
        frequency.store(settings.frequency, order);
        phase.store(settings.phase, order);
        volumeLeft.store(settings.volumeLeft, order);
        volumeRight.store(settings.volumeRight, order);
        waveform.store(settings.waveform, order);
        enabled.store(settings.enabled, order);
    }
};

static_assert(std::atomic<double>::is_always_lock_free && std::atomic<std::int32_t>::is_always_lock_free);

/// The settings of all generators. One instance, owned by the main controller.
struct GeneratorBank {
    std::array<GeneratorSlot, kGeneratorCount> slots;
};

} // namespace sonotrace
