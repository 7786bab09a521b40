#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "batch/Commands.h"
#include "batch/DeviceChoice.h"
#include "batch/StandardStreams.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <string>
#include <vector>

namespace sonotrace {

namespace {

/// A device as the windows' pop-ups show it.
struct Listed {
    QString name;
    QString uid;
    unsigned inputChannels = 0; ///< 0: not among the inputs
    unsigned outputChannels = 0;
    bool isDefaultInput = false; ///< the first of the inputs
    bool isDefaultOutput = false;
};

unsigned firstChannels(const StreamConfiguration& streams) {
    return streams && !streams->empty() ? streams->front() : 0;
}

std::vector<Listed> listed(SoundSystem& system) {
    std::vector<DeviceDescription> devices;
    if (system.deviceList(devices) != kNoError)
        throw CommandError("no sound server answers");
    std::vector<Listed> list;
    bool hasInput = false;
    bool hasOutput = false;
    for (const DeviceDescription& device : devices) {
        Listed one{.name = QString::fromStdString(device.name),
                   .uid = QString::fromStdString(device.uid.value_or(std::string())),
                   .inputChannels = firstChannels(device.inputStreams),
                   .outputChannels = firstChannels(device.outputStreams)};
        one.isDefaultInput = one.inputChannels > 0 && !hasInput;
        one.isDefaultOutput = one.outputChannels > 0 && !hasOutput;
        hasInput = hasInput || one.isDefaultInput;
        hasOutput = hasOutput || one.isDefaultOutput;
        list.push_back(one);
    }
    return list;
}

std::string asJson(const std::string& systemName, const std::vector<Listed>& list) {
    QJsonArray devices;
    for (const Listed& device : list)
        devices.append(QJsonObject{{"name", device.name},
                                   {"uid", device.uid.isEmpty() ? QJsonValue() : device.uid},
                                   {"inputChannels", static_cast<int>(device.inputChannels)},
                                   {"outputChannels", static_cast<int>(device.outputChannels)},
                                   {"defaultInput", device.isDefaultInput},
                                   {"defaultOutput", device.isDefaultOutput}});
    const QJsonObject all{{"soundSystem", QString::fromStdString(systemName)}, {"devices", devices}};
    return QJsonDocument(all).toJson().toStdString();
}

/// One line a device and direction, tabs between the columns; an asterisk marks the default.
std::string asText(const std::vector<Listed>& list) {
    QString text;
    const auto line = [&text](const char* direction, bool isDefault, unsigned channels,
                              const Listed& device) {
        // What a device calls itself must not look like another column or line.
        const auto plain = [](const QString& said) { return said.simplified(); };
        text += QString("%1%2\t%3\t%4\t%5\n")
                    .arg(direction, isDefault ? "*" : "")
                    .arg(channels)
                    .arg(device.uid.isEmpty() ? "-" : plain(device.uid), plain(device.name));
    };
    for (const Listed& device : list)
        if (device.inputChannels > 0)
            line("in", device.isDefaultInput, device.inputChannels, device);
    for (const Listed& device : list)
        if (device.outputChannels > 0)
            line("out", device.isDefaultOutput, device.outputChannels, device);
    return text.toStdString();
}

} // namespace

int runDevices(int argc, char** argv) {
    CommandLine line(
        "List the sound devices: direction (an asterisk marks the default), channels, UID and name, "
        "in the order of the program's menus, with tabs between them.");
    line.addFlag({"json"}, "Print JSON.");
    addAudioOption(line, "the sound server if it answers, else the loopback.");
    if (!line.parse(argc, argv))
        return 0;
    const auto system = openSoundSystem(audioChoice(line));
    const std::vector<Listed> list = listed(*system);
    printOut(line.isSet("json") ? asJson(system->name(), list) : asText(list));
    return 0;
}

} // namespace sonotrace
