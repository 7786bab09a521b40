#pragma once

#include "batch/DeviceChoice.h"
#include "batch/PlayAndListen.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sonotrace {

/// The devices of a measurement as the command line names them, and what plays and listens on them. All
/// throws CommandErrors.
class MeasuringBench {
public:
    static void addOptions(CommandLine& line);

    /// Opens the devices and starts both streams, with silence.
    explicit MeasuringBench(const CommandLine& line);

    const std::string& output() const { return output_.name; }
    const std::string& input() const { return input_.name; }
    double settleSeconds() const { return settleSeconds_; } ///< from playing to listening

    /// So many frames, interleaved, of what is heard while `generators` play. Warns once when the input is
    /// overloaded.
    std::vector<std::int16_t> hear(const SettingsOfAll& generators, std::size_t frames);

private:
    std::unique_ptr<SoundSystem> system_;
    std::function<void()> wait_;
    ChosenByName output_;
    ChosenByName input_;
    double settleSeconds_ = 0;
    bool isOverloadSaid_ = false;
    std::unique_ptr<PlayAndListen> streams_;
};

} // namespace sonotrace
