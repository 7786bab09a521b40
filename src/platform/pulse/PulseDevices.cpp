#include "platform/pulse/PulseDevices.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace sonotrace {

namespace {

constexpr std::chrono::milliseconds kListPatience{1000};
constexpr std::chrono::milliseconds kRestorePatience{200};

std::string text(const char* value) {
    return value ? value : "";
}

/// Sources and sinks are described by records of two types with the same names.
template <typename Info>
PulseDevice describe(const Info& info, bool isMonitor) {
    return {.id = 0,
            .name = info.name,
            .description = text(info.description ? info.description : info.name),
            .channels = info.sample_spec.channels,
            .isSource = std::is_same_v<Info, pa_source_info>,
            .isMonitor = isMonitor,
            .volume = info.volume};
}

} // namespace

struct PulseDevices::List {
    std::string serverName;
    std::string defaultSink;
    std::string defaultSource;
    std::vector<PulseDevice> devices;
    std::uint64_t volumeChanges = 0; ///< when the questions were asked
    bool complete = true;            ///< every question so far was answered

    /// The default source, the other sources, monitors, the default sink, the other sinks.
    int rank(const PulseDevice& device) const {
        if (!device.isSource)
            return device.name == defaultSink ? 3 : 4;
        if (device.name == defaultSource)
            return 0;
        return device.isMonitor ? 2 : 1;
    }
};

PulseDevices::PulseDevices()
    : listPatienceEnd_(std::chrono::steady_clock::now() + kListPatience),
      connection_({.connected = [this](pa_context& context) { ask(context); },
                   .disconnected = [this] { list_.reset(); }},
                  PulseConnection::FirstAttempt::MayLaunchServer) {
    connection_.start();
}

PulseDevices::~PulseDevices() {
    connection_.stop();
}

/// Asks for everything anew, at the start and after every change: the lists are short and changes are rare.
void PulseDevices::ask(pa_context& context) {
    pa_context_set_subscribe_callback(
        &context,
        [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
            static_cast<PulseDevices*>(self)->askAgain();
        },
        this);
    const int events = PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER;
    forget(pa_context_subscribe(&context, static_cast<pa_subscription_mask_t>(events), nullptr, nullptr));
    askAgain();
}

void PulseDevices::askAgain() {
    pa_context* const context = connection_.context();
    if (!context)
        return;
    outdated_ = list_ != nullptr;
    if (outdated_)
        return; // finish() asks again
    list_ = std::make_unique<List>();
    {
        const std::lock_guard lock(mutex_);
        list_->volumeChanges = volumeChanges_;
    }
    // Answers come in the order of the questions: when the sinks have ended everything is there.
    forget(pa_context_get_server_info(context, onServer, this));
    forget(pa_context_get_source_info_list(context, onSource, this));
    forget(pa_context_get_sink_info_list(context, onSink, this));
}

void PulseDevices::onServer(pa_context*, const pa_server_info* info, void* data) {
    const auto& list = static_cast<PulseDevices*>(data)->list_;
    if (!list)
        return;
    list->complete = info != nullptr;
    if (!info)
        return;
    list->serverName = text(info->server_name);
    list->defaultSink = text(info->default_sink_name);
    list->defaultSource = text(info->default_source_name);
}

void PulseDevices::onSource(pa_context*, const pa_source_info* info, int end, void* data) {
    auto& self = *static_cast<PulseDevices*>(data);
    if (end < 0 && self.list_)
        self.list_->complete = false;
    else if (end == 0 && info)
        self.add(describe(*info, info->monitor_of_sink != PA_INVALID_INDEX));
}

void PulseDevices::onSink(pa_context*, const pa_sink_info* info, int end, void* data) {
    auto& self = *static_cast<PulseDevices*>(data);
    if (end < 0 && self.list_)
        self.list_->complete = false;
    if (end != 0)
        self.finish();
    else if (info)
        self.add(describe(*info, false));
}

void PulseDevices::add(PulseDevice device) {
    if (list_)
        list_->devices.push_back(std::move(device));
}

void PulseDevices::finish() {
    const std::unique_ptr<List> list = std::move(list_);
    if (!list)
        return;
    if (!list->complete) {
        connection_.reconnect(); // the server hung; what was known stays
        return;
    }
    const auto before = [&list](const PulseDevice& a, const PulseDevice& b) {
        return list->rank(a) < list->rank(b);
    };
    std::ranges::stable_sort(list->devices, before);
    bool stale = false;
    {
        const std::lock_guard lock(mutex_);
        // Volumes that were asked for before our last change would undo it in our memory.
        stale = list->volumeChanges != volumeChanges_;
        if (!stale) {
            for (PulseDevice& device : list->devices)
                device.id = idOf(device);
            serverName_ = list->serverName;
            devices_ = std::move(list->devices);
            known_ = true;
        }
    }
    knownChanged_.notify_all();
    if (stale || outdated_)
        askAgain();
}

AudioDeviceID PulseDevices::idOf(const PulseDevice& device) {
    const auto next = static_cast<AudioDeviceID>(ids_.size() + 1);
    return ids_.try_emplace((device.isSource ? "source " : "sink ") + device.name, next).first->second;
}

bool PulseDevices::waitUntilKnown(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex_);
    return knownChanged_.wait_for(lock, patience, [this] { return known_; });
}

bool PulseDevices::waitForFirstList() {
    std::unique_lock lock(mutex_);
    return knownChanged_.wait_until(lock, listPatienceEnd_, [this] { return known_; });
}

std::string PulseDevices::serverName() {
    const std::lock_guard lock(mutex_);
    return serverName_;
}

std::vector<PulseDevice> PulseDevices::devices() {
    const std::lock_guard lock(mutex_);
    return devices_;
}

std::string PulseDevices::description(const std::string& name) {
    const std::lock_guard lock(mutex_);
    const auto found = std::ranges::find(devices_, name, &PulseDevice::name);
    return found != devices_.end() ? found->description : name;
}

bool PulseDevices::has(const std::string& name) {
    const std::lock_guard lock(mutex_);
    return std::ranges::find(devices_, name, &PulseDevice::name) != devices_.end();
}

Status PulseDevices::setVolume(AudioDeviceID id, std::uint32_t channel, pa_volume_t volume) {
    if (!waitUntilKnown(std::chrono::milliseconds::zero()))
        return kStatusUnavailable; // before the lock, which is held while a server is launched
    const PulseLock connectionLock(connection_.loop());
    pa_context* const context = connection_.context();
    if (!context)
        return kStatusUnavailable;
    const std::lock_guard lock(mutex_);
    const auto found = std::ranges::find(devices_, id, &PulseDevice::id);
    if (found == devices_.end() || !found->isSource || channel >= found->volume.channels)
        return kStatusNoSuchDevice;
    before_.try_emplace(found->name, found->volume);
    found->volume.values[channel] = volume;
    ++volumeChanges_;
    forget(
        pa_context_set_source_volume_by_name(context, found->name.c_str(), &found->volume, nullptr, nullptr));
    return kNoError;
}

Status PulseDevices::restoreVolumes() {
    std::map<std::string, pa_cvolume> before;
    {
        const std::lock_guard lock(mutex_);
        before.swap(before_);
    }
    if (before.empty())
        return kNoError; // nor is the lock below waited for
    const auto onAnswer = [](pa_context*, int, void* data) {
        auto& self = *static_cast<PulseDevices*>(data);
        const std::lock_guard lock(self.mutex_);
        --self.restoring_;
        self.restored_.notify_all();
    };
    {
        const PulseLock connectionLock(connection_.loop());
        pa_context* const context = connection_.context();
        if (!context)
            return kStatusUnavailable;
        const std::lock_guard lock(mutex_);
        ++volumeChanges_;
        restoring_ = before.size();
        for (const auto& [name, volume] : before)
            forget(pa_context_set_source_volume_by_name(context, name.c_str(), &volume, onAnswer, this));
    }
    std::unique_lock lock(mutex_);
    const bool confirmed = restored_.wait_for(lock, kRestorePatience, [this] { return restoring_ == 0; });
    return confirmed ? kNoError : kStatusTimeout;
}

} // namespace sonotrace
