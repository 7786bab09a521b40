#include "platform/loopback/LoopbackSystem.h"

#include "platform/loopback/LoopbackQueue.h"
#include "platform/loopback/LoopbackWire.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace sonotrace {

namespace {

constexpr AudioDeviceID kLoopbackDevice = 1;
constexpr std::uint32_t kChannels = 2;

bool isChannel(AudioDeviceID device, std::uint32_t channel) {
    return device == kLoopbackDevice && channel >= 1 && channel <= kChannels;
}

} // namespace

LoopbackSystem::LoopbackSystem(Clock clock) : wire_(std::make_shared<LoopbackWire>()) {
    if (clock == Clock::Steady)
        clock_ = std::thread([this] { runSteadyClock(); });
}

LoopbackSystem::~LoopbackSystem() {
    {
        const std::lock_guard lock(clockMutex_);
        stopping_ = true;
    }
    clockStop_.notify_all();
    if (clock_.joinable())
        clock_.join();
}

void LoopbackSystem::advance(std::uint32_t frames) {
    wire_->pass(frames);
}

void LoopbackSystem::runSteadyClock() {
    using namespace std::chrono;
    constexpr auto kTick = milliseconds(10);
    constexpr double kMostCatchUp =
        0.5; // seconds: after a suspended machine wakes up, do not replay the night
    const StreamDescription format;
    auto last = steady_clock::now();
    double due = 0; // frames
    std::unique_lock lock(clockMutex_);
    while (!clockStop_.wait_for(lock, kTick, [this] { return stopping_; })) {
        lock.unlock();
        const auto now = steady_clock::now();
        due += std::min(duration<double>(now - last).count(), kMostCatchUp) * format.sampleRate;
        last = now;
        const auto frames = static_cast<std::uint32_t>(due);
        due -= frames;
        wire_->pass(frames);
        lock.lock();
    }
}

std::string LoopbackSystem::name() const {
    return "Loopback";
}

Status LoopbackSystem::deviceListSize(std::uint32_t& count) {
    count = 1;
    return kNoError;
}

Status LoopbackSystem::deviceList(std::vector<DeviceDescription>& devices) {
    devices = {{.id = kLoopbackDevice,
                .name = kLoopbackDeviceName,
                .uid = kLoopbackDeviceUid,
                .outputStreams = {{kChannels}},
                .inputStreams = {{kChannels}}}};
    return kNoError;
}

bool LoopbackSystem::hasInputVolume(AudioDeviceID device, std::uint32_t channel) {
    return isChannel(device, channel);
}

Status LoopbackSystem::getInputVolume(AudioDeviceID device, std::uint32_t channel, float& volume) {
    if (!isChannel(device, channel))
        return kStatusNoSuchDevice;
    volume = wire_->volume(channel - 1);
    return kNoError;
}

Status LoopbackSystem::setInputVolume(AudioDeviceID device, std::uint32_t channel, float volume) {
    if (!isChannel(device, channel))
        return kStatusNoSuchDevice;
    if (!(volume >= 0.0F)) // NaN included
        return kStatusBadArgument;
    wire_->setVolume(channel - 1, std::min(volume, 1.0F));
    return kNoError;
}

Status LoopbackSystem::restoreInputVolumes() {
    for (const std::size_t channel : {0U, 1U})
        wire_->setVolume(channel, 1.0F);
    return kNoError;
}

Status LoopbackSystem::setPlayThrough(AudioDeviceID, std::uint32_t, std::uint32_t) {
    return kStatusUnavailable;
}

Status LoopbackSystem::newOutput(const StreamDescription&, AudioQueue::Callback callback,
                                 const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) {
    queue = std::make_unique<LoopbackQueue>(wire_, LoopbackQueue::Direction::Output, std::move(callback),
                                            options.runLoop);
    return kNoError;
}

Status LoopbackSystem::newInput(const StreamDescription&, AudioQueue::Callback callback,
                                const QueueOptions& options, std::unique_ptr<AudioQueue>& queue) {
    queue = std::make_unique<LoopbackQueue>(wire_, LoopbackQueue::Direction::Input, std::move(callback),
                                            options.runLoop);
    return kNoError;
}

} // namespace sonotrace
