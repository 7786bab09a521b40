#pragma once

#include "platform/SoundSystem.h"
#include "platform/pulse/PulseConnection.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace sonotrace {

/// A sink or source of the server.
struct PulseDevice {
    AudioDeviceID id = 0;
    std::string name;        ///< the server's, persistent
    std::string description; ///< for people
    std::uint32_t channels = 0;
    bool isSource = false;
    bool isMonitor = false;
    pa_cvolume volume{};
};

/// Watches the server's devices over a connection of its own and answers from memory, so that nobody waits
/// for the server. Devices are listed, never opened. All methods are for the window thread.
class PulseDevices {
public:
    PulseDevices();
    ~PulseDevices();

    /// Waits until the devices are known, at most `patience`.
    bool waitUntilKnown(std::chrono::milliseconds patience);

    /// The same, for those who need the list: waits until a second after the beginning, so that a server that
    /// does not answer costs the user that second once and not with every window.
    bool waitForFirstList();

    /// What the server calls itself; empty while it is not known.
    std::string serverName();

    /// In the order in which the windows offer them.
    std::vector<PulseDevice> devices();

    /// Description of the device that the server calls `name`; the name itself when there is none.
    std::string description(const std::string& name);

    /// Whether the server has a device that it calls `name`.
    bool has(const std::string& name);

    /// Sets one channel (from 0) of a source's volume.
    Status setVolume(AudioDeviceID id, std::uint32_t channel, pa_volume_t volume);

    /// Gives all those sources the volumes that they had before.
    Status restoreVolumes();

private:
    struct List; ///< what one round of questions to the server has brought so far

    void ask(pa_context& context);
    void askAgain();
    static void onServer(pa_context*, const pa_server_info* info, void* data);
    static void onSource(pa_context*, const pa_source_info* info, int end, void* data);
    static void onSink(pa_context*, const pa_sink_info* info, int end, void* data);
    void add(PulseDevice device);
    void finish();
    AudioDeviceID idOf(const PulseDevice& device);

    // The connection's thread only.
    std::unique_ptr<List> list_;
    bool outdated_ = false; ///< something changed while the server was being asked

    const std::chrono::steady_clock::time_point listPatienceEnd_;

    // Shared with the window thread, under the mutex.
    std::mutex mutex_;
    std::condition_variable knownChanged_, restored_;
    bool known_ = false;
    std::string serverName_;
    std::vector<PulseDevice> devices_;
    std::map<std::string, AudioDeviceID> ids_; ///< by direction and name: indices are reused and shared
    std::uint64_t volumeChanges_ = 0;          ///< made by us
    std::map<std::string, pa_cvolume> before_; ///< volumes of what we changed, by name
    std::size_t restoring_ = 0;                ///< volumes that the server has not confirmed yet

    PulseConnection connection_;
};

} // namespace sonotrace
