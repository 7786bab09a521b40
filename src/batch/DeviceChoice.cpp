#include "batch/DeviceChoice.h"

#include "batch/CommandError.h"
#include "batch/CommandLine.h"

#include <algorithm>
#include <vector>

namespace sonotrace {

namespace {

struct Candidate {
    QString uid;
    QString name;
};

std::vector<Candidate> candidates(SoundSystem& system, StreamConfiguration DeviceDescription::*direction) {
    std::vector<DeviceDescription> devices;
    if (system.deviceList(devices) != kNoError)
        throw CommandError("the sound system does not say what devices there are");
    std::vector<Candidate> found;
    for (const DeviceDescription& device : devices) {
        const StreamConfiguration& streams = device.*direction;
        if (streams && !streams->empty() && streams->front() > 0)
            found.push_back({QString::fromStdString(device.uid.value_or(std::string())),
                             QString::fromStdString(device.name)});
    }
    return found;
}

ChosenByName choose(const std::vector<Candidate>& devices, const QString& text, const QString& direction) {
    if (devices.empty())
        throw CommandError("there is no " + direction.toStdString() + " device");
    if (text.isEmpty())
        return {{}, devices.front().name.toStdString()};
    const auto matching = [&](auto isMeant) {
        std::vector<Candidate> found;
        std::ranges::copy_if(devices, std::back_inserter(found), isMeant);
        return found;
    };
    std::vector<Candidate> found = matching([&](const Candidate& device) { return device.uid == text; });
    if (found.empty())
        found = matching([&](const Candidate& device) { return device.name == text; });
    if (found.empty())
        found = matching([&](const Candidate& device) {
            return device.uid.contains(text, Qt::CaseInsensitive) ||
                   device.name.contains(text, Qt::CaseInsensitive);
        });
    if (found.size() == 1)
        return {found.front().uid.toStdString(), found.front().name.toStdString()};
    QString list;
    for (const Candidate& device : found.empty() ? devices : found)
        list += QString("\n  %1  (%2)").arg(device.uid.simplified(), device.name.simplified());
    const QString sentence = found.empty() ? "no %1 device is called \"%2\"; there are:%3"
                                           : "more than one %1 device is called \"%2\":%3";
    throw CommandError(sentence.arg(direction, text, list).toStdString());
}

} // namespace

void addAudioOption(CommandLine& line, const QString& without) {
    line.addOption({"audio"}, "SYSTEM", "Sound system to use: pulse or loopback. Without it, " + without);
}

SoundSystemChoice audioChoice(const CommandLine& line) {
    const std::string word = line.text("audio").toStdString();
    const auto choice = soundSystemChoice(word);
    if (!choice)
        throw CommandError("there is no sound system \"" + word + "\"", kWrongArguments);
    return *choice;
}

ChosenByName chooseInput(SoundSystem& system, const QString& text) {
    return choose(candidates(system, &DeviceDescription::inputStreams), text, "input");
}

ChosenByName chooseOutput(SoundSystem& system, const QString& text) {
    return choose(candidates(system, &DeviceDescription::outputStreams), text, "output");
}

} // namespace sonotrace
