#pragma once

#include "base/Ring.h"
#include "generator/OutputRender.h"
#include "generator/SettingsFile.h"
#include "generator/SineTable.h"
#include "generator/WavRecorder.h"
#include "platform/SoundSystem.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sonotrace {

/// Plays the generators on one device and takes down what another one hears, without a window and without an
/// event loop. One thread; the streams have their own. Every operation throws a CommandError with a sentence
/// for the user when a stream cannot be had or fails.
class PlayAndListen {
public:
    struct Devices {
        std::string outputUid; ///< empty: the server's default
        std::string inputUid;  ///< the same
    };

    /// `wait` is called over and over while nothing has arrived yet: it lets time pass, a few milliseconds,
    /// and may throw to end it all. `system` outlives the object.
    PlayAndListen(SoundSystem& system, const Devices& devices, std::function<void()> wait);
    ~PlayAndListen();

    /// What is played from the next buffer on, all phases starting anew.
    void play(const SettingsOfAll& generators);

    /// Lets `skip` frames pass and gives the `frames` after them, interleaved. Begins anew when samples were
    /// lost meanwhile, up to three times.
    std::vector<std::int16_t> listen(std::size_t skip, std::size_t frames);

private:
    static constexpr std::uint32_t kRingFrames = 1U << 18; // 5.9 s

    void take(std::span<const std::int16_t> interleaved);
    bool hear(std::size_t skip, std::vector<std::int16_t>& heard);
    std::uint64_t losses() const;
    void checkStreams() const;

    SoundSystem& system_;
    const std::function<void()> wait_;
    const SineTable sineTable_;
    GeneratorBank bank_;
    SweepParameters sweep_;
    WavRecorder recorder_; ///< the render wants one; it never records
    OutputRender render_;
    std::unique_ptr<Ring<std::uint32_t, kRingFrames>> ring_; ///< frames, left in the lower half
    std::atomic<std::uint64_t> overrun_{0};                  ///< frames that found no room in it
    std::unique_ptr<AudioQueue> output_; ///< the last: their callbacks end before what they use
    std::unique_ptr<AudioQueue> input_;
};

} // namespace sonotrace
