#include "batch/MeasuringBench.h"

#include "base/SampleRate.h"
#include "base/SystemLog.h"
#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "batch/StandardStreams.h"
#include "platform/loopback/LoopbackSystem.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace sonotrace {

namespace {

constexpr int kFullScale = 32767;
constexpr std::uint32_t kStep = 4410; // frames that pass at a time on the loopback
constexpr std::chrono::milliseconds kPause{10};

} // namespace

void MeasuringBench::addOptions(CommandLine& line) {
    line.addOption({"output"}, "DEVICE", "Device to play on: its UID or name, or a part of it.");
    line.addOption({"input"}, "DEVICE", "Device to listen to. Both are the default devices without.");
    addAudioOption(line, "the sound server.");
    line.addOption({"settle"}, "SECONDS", "From playing to listening, for what was before to die away.", "1");
}

MeasuringBench::MeasuringBench(const CommandLine& line) : settleSeconds_(line.number("settle", 0.2, 60.0)) {
    const SoundSystemChoice choice = audioChoice(line);
    if (choice == SoundSystemChoice::Loopback) { // on which nobody has to wait for time to pass
        auto loopback = std::make_unique<LoopbackSystem>(LoopbackSystem::Clock::Manual);
        wait_ = [clock = loopback.get()] { clock->advance(kStep); };
        system_ = std::move(loopback);
    } else {
        wait_ = [] { std::this_thread::sleep_for(kPause); };
        silenceSystemLog(); // it would tell of a loopback that is not used
        system_ = openSoundSystem(choice);
        if (dynamic_cast<LoopbackSystem*>(system_.get())) // which would measure well whatever is wrong
            throw CommandError("no sound server answers; --audio loopback measures the built-in loopback");
    }
    output_ = chooseOutput(*system_, line.text("output"));
    input_ = chooseInput(*system_, line.text("input"));
    streams_ =
        std::make_unique<PlayAndListen>(*system_, PlayAndListen::Devices{output_.uid, input_.uid}, wait_);
}

std::vector<std::int16_t> MeasuringBench::hear(const SettingsOfAll& generators, std::size_t frames) {
    streams_->play(generators);
    auto heard = streams_->listen(static_cast<std::size_t>(settleSeconds_ * kSampleRate), frames);
    const auto isFull = [](std::int16_t sample) { return std::abs(int{sample}) >= kFullScale; };
    if (!isOverloadSaid_ && std::ranges::any_of(heard, isFull)) {
        isOverloadSaid_ = true;
        warn("the input reaches full scale: turn its volume, or what is played, down");
    }
    return heard;
}

} // namespace sonotrace
