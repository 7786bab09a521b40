#include "platform/SoundSystemChoice.h"

#include "base/SystemLog.h"
#include "platform/loopback/LoopbackSystem.h"
#include "platform/pulse/PulseSoundSystem.h"

#include <chrono>

namespace sonotrace {

namespace {
constexpr std::chrono::milliseconds kServerPatience{1500};
}

std::optional<SoundSystemChoice> soundSystemChoice(std::string_view word) {
    if (word.empty())
        return SoundSystemChoice::Automatic;
    if (word == "pulse")
        return SoundSystemChoice::Pulse;
    if (word == "loopback")
        return SoundSystemChoice::Loopback;
    return std::nullopt;
}

std::unique_ptr<SoundSystem> openSoundSystem(SoundSystemChoice choice) {
    if (choice == SoundSystemChoice::Loopback)
        return std::make_unique<LoopbackSystem>();
    auto pulse = std::make_unique<PulseSoundSystem>();
    if (pulse->connected(kServerPatience) || choice == SoundSystemChoice::Pulse)
        return pulse;
    systemLog("No sound server answers: using the built-in loopback");
    return std::make_unique<LoopbackSystem>();
}

} // namespace sonotrace
