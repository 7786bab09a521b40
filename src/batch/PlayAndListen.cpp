#include "batch/PlayAndListen.h"

#include "batch/CommandError.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace sonotrace {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience{5}; // without a single sample
constexpr int kTries = 3;

/// Starts a stream with its buffers full of silence.
std::unique_ptr<AudioQueue> started(SoundSystem& system, decltype(&SoundSystem::newInput) make,
                                    std::int32_t frames, AudioQueue::Callback callback,
                                    const std::string& uid) {
    StreamDescription format;
    format.frameCount = frames;
    std::unique_ptr<AudioQueue> queue;
    Status status =
        (system.*make)(format, std::move(callback), {.streamName = "Measurement", .runLoop = nullptr}, queue);
    if (queue)
        status = queue->setCurrentDevice(uid);
    for (int i = 0; queue && i < kBuffersPerQueue && status == kNoError; ++i) {
        AudioQueueBuffer* buffer = nullptr;
        status = queue->allocateBuffer(format.bufferBytes(), buffer);
        if (status != kNoError)
            break;
        buffer->byteSize = format.bufferBytes();
        status = queue->enqueueBuffer(*buffer);
    }
    if (queue && status == kNoError)
        status = queue->start();
    if (!queue || status != kNoError)
        throw CommandError("a stream cannot be opened (status " + std::to_string(status) + ")");
    return queue;
}

} // namespace

PlayAndListen::PlayAndListen(SoundSystem& system, const Devices& devices, std::function<void()> wait)
    : system_(system),
      wait_(std::move(wait)),
      render_(bank_, sweep_, sineTable_, recorder_),
      ring_(std::make_unique<Ring<std::uint32_t, kRingFrames>>()) {
    input_ = started(
        system_, &SoundSystem::newInput, kCaptureFramesPerBuffer,
        [this](AudioQueue& queue, AudioQueueBuffer& buffer) {
            take(buffer.allSamples().first(buffer.byteSize / sizeof(std::int16_t)));
            queue.enqueueBuffer(buffer);
        },
        devices.inputUid);
    output_ = started(
        system_, &SoundSystem::newOutput, kOutputFramesPerBuffer,
        [this](AudioQueue& queue, AudioQueueBuffer& buffer) {
            render_.render(buffer.allSamples());
            queue.enqueueBuffer(buffer);
        },
        devices.outputUid);
}

PlayAndListen::~PlayAndListen() {
    for (const auto* queue : {&output_, &input_}) {
        if (!*queue)
            continue;
        (*queue)->stop();
        (*queue)->dispose();
    }
}

void PlayAndListen::take(std::span<const std::int16_t> interleaved) {
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        const auto left = static_cast<std::uint16_t>(interleaved[i]);
        const auto right = static_cast<std::uint16_t>(interleaved[i + 1]);
        if (!ring_->push(std::uint32_t{left} | std::uint32_t{right} << 16U))
            overrun_.fetch_add(1, std::memory_order_relaxed);
    }
}

void PlayAndListen::play(const SettingsOfAll& generators) {
    for (std::size_t i = 0; i < generators.size(); ++i)
        bank_.slots[i].store(generators[i]);
    render_.syncPhases();
}

std::vector<std::int16_t> PlayAndListen::listen(std::size_t skip, std::size_t frames) {
    std::vector<std::int16_t> heard(2 * frames);
    ring_->clear();
    for (int i = 0; i < kTries; ++i)
        if (hear(skip, heard))
            return heard;
    throw CommandError("samples are lost again and again: the machine or the sound server does not keep up");
}

/// False when samples were lost.
bool PlayAndListen::hear(std::size_t skip, std::vector<std::int16_t>& heard) {
    const std::uint64_t lossesBefore = losses();
    std::size_t taken = 0; // samples
    auto last = Clock::now();
    while (taken < heard.size()) {
        if (ring_->size() == 0) {
            checkStreams();
            if (Clock::now() - last > kPatience)
                throw CommandError("nothing arrives from the input");
            wait_();
            continue;
        }
        last = Clock::now();
        if (skip > 0) {
            --skip;
        } else {
            const std::uint32_t frame = (*ring_)[0];
            heard[taken++] = static_cast<std::int16_t>(frame & 0xFFFFU);
            heard[taken++] = static_cast<std::int16_t>(frame >> 16U);
        }
        ring_->pop();
    }
    return losses() == lossesBefore;
}

std::uint64_t PlayAndListen::losses() const {
    return overrun_.load(std::memory_order_relaxed) + input_->state().underruns + output_->state().underruns;
}

void PlayAndListen::checkStreams() const {
    for (const auto& [queue, name] : {std::pair(output_.get(), "output"), std::pair(input_.get(), "input")}) {
        const QueueState state = queue->state();
        if (state.phase == QueueState::Phase::DeviceLost)
            throw CommandError(std::string("the ") + name + " device has gone");
        if (state.phase == QueueState::Phase::Failed)
            throw CommandError(std::string("the ") + name + " cannot be opened");
        if (state.moved)
            throw CommandError(std::string("the sound server has put the ") + name + " on another device, " +
                               state.deviceName);
    }
}

} // namespace sonotrace
