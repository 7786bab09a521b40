#include "generator/WavRecorder.h"

#include "base/SampleRate.h"
#include "base/SystemLog.h"

#include <bit>
#include <cstring>

namespace sonotrace {

static_assert(std::endian::native == std::endian::little,
              "samples are written to the file as they are in memory");

namespace {

constexpr int kChannels = 2;
constexpr int kRateSelector = 2;
constexpr int kBitsPerSample = 16;
constexpr double kBytesPerSecond = kSampleRate * kChannels * kBitsPerSample / 8;
constexpr std::chrono::milliseconds kUsualPatience{50}; ///< a disk in order takes a millisecond
constexpr std::size_t kMostPending = 1000;              ///< flushes, more than eight minutes and 88 MB

std::uint32_t sampleRate(int selector) {
    switch (selector) {
    case 0:
        return 11025;
    case 1:
        return 22050;
    default:
        return 44100;
    }
}

template <typename Integer>
std::byte* put(std::byte* at, Integer value) {
    std::memcpy(at, &value, sizeof value);
    return at + sizeof value;
}

std::byte* putText(std::byte* at, const char* text) {
    const std::size_t length = std::strlen(text);
    std::memcpy(at, text, length);
    return at + length;
}

} // namespace

std::array<std::byte, kWavHeaderBytes> wavHeader(int channels, int rateSelector, int bitsPerSample,
                                                 std::uint32_t dataBytes) {
    const std::uint32_t rate = sampleRate(rateSelector);
    const auto channelCount = static_cast<std::uint32_t>(channels);
    const std::uint32_t byteRate = rate * channelCount * (bitsPerSample == 16 ? 2U : 1U);
    std::array<std::byte, kWavHeaderBytes> header{};
    std::byte* at = putText(header.data(), "RIFF");
    at = put(at, dataBytes + 36U);
    at = putText(at, "WAVEfmt ");
    at = put(at, std::uint32_t{16});
    at = put(at, std::uint16_t{1});
    at = put(at, static_cast<std::uint16_t>(channels));
    at = put(at, static_cast<std::uint16_t>(rate));
    at = put(at, std::uint16_t{0}); // the rate's upper half, which no rate in the table has
    at = put(at, byteRate);
    at = put(at, static_cast<std::uint16_t>(bitsPerSample * channels / 8));
    at = put(at, static_cast<std::uint16_t>(bitsPerSample));
    at = putText(at, "data");
    put(at, dataBytes);
    return header;
}

struct WavRecorder::File {
    std::FILE* const stream;
    std::atomic<bool> failed{false}; ///< something could not be written
    std::atomic<bool> closed{false};

    explicit File(std::FILE* opened) : stream(opened) {}
    ~File() {
        if (!closed)
            std::fclose(stream);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    void write(long position, int whence, const void* bytes, std::size_t count) {
        const bool written = std::fseek(stream, position, whence) == 0 &&
                             (count == 0 || std::fwrite(bytes, 1, count, stream) == count) &&
                             std::fflush(stream) == 0;
        if (!written)
            failed = true;
    }
    void close() {
        if (std::fclose(stream) != 0)
            failed = true;
        closed = true;
    }
};

WavRecorder::WavRecorder() : ring_(kRingBytes / kFrameBytes) {}

bool WavRecorder::start(const std::filesystem::path& path) {
    stop();
    std::error_code unknown;
    const bool fifo = std::filesystem::is_fifo(path, unknown); // would be waited for until somebody reads it
    std::FILE* const stream = fifo ? nullptr : std::fopen(path.c_str(), "wbe");
    if (!stream)
        return false;
    file_ = std::make_shared<File>(stream);
    bytesBefore_ = recordedBytes_;
    lostFrames_ = 0;
    postHeader();
    recording_.store(1, std::memory_order_release);
    return true;
}

void WavRecorder::postHeader() {
    const auto bytes = static_cast<std::uint32_t>(recordedBytes_);
    systemLog("header:%d sampleChannelsSelected:%d sampleRateSelected:%d samplingSize:%d bytes:%d",
              static_cast<int>(kWavHeaderBytes), kChannels, kRateSelector, kBitsPerSample,
              static_cast<int>(bytes));
    writer_.post([file = file_, header = wavHeader(kChannels, kRateSelector, kBitsPerSample, bytes)] {
        file->write(0, SEEK_SET, header.data(), header.size());
    });
}

void WavRecorder::tap(std::span<const std::int16_t> interleaved) {
    if (recording_.load(std::memory_order_acquire) == 0)
        return;
    std::uint32_t index = writeIndex_.load(std::memory_order_relaxed);
    for (std::size_t i = 0; i + 1 < interleaved.size(); i += 2) {
        std::uint32_t frame = 0;
        std::memcpy(&frame, &interleaved[i], sizeof frame);
        ring_[index / kFrameBytes].store(frame, std::memory_order_relaxed);
        index += kFrameBytes;
        if (index == kRingBytes)
            index = 0;
    }
    tappedFrames_.store(tappedFrames_.load(std::memory_order_relaxed) + interleaved.size() / 2,
                        std::memory_order_relaxed);
    writeIndex_.store(index, std::memory_order_release);
}

bool WavRecorder::flush() {
    if (!isRecording())
        return true;
    const std::uint32_t end = writeIndex_.load(std::memory_order_acquire);
    const std::uint64_t tapped = tappedFrames_.load(std::memory_order_relaxed);
    std::uint32_t index = readIndex_.load(std::memory_order_relaxed);
    systemLog("%d %d", static_cast<int>(end), static_cast<int>(index));
    std::vector<std::uint32_t> frames;
    frames.reserve((end + kRingBytes - index) % kRingBytes / kFrameBytes);
    while (index != end) {
        frames.push_back(ring_[index / kFrameBytes].load(std::memory_order_relaxed));
        index += kFrameBytes;
        if (index == kRingBytes)
            index = 0;
    }
    readIndex_.store(end, std::memory_order_relaxed);
    countLoss(tapped, frames.size());
    recordedBytes_ += frames.size() * kFrameBytes;
    if (writer_.pending() < kMostPending)
        writer_.post([file = file_, frames = std::move(frames)] {
            file->write(0, SEEK_END, frames.data(), frames.size() * kFrameBytes);
        });
    else
        lostFrames_ += frames.size();
    writer_.wait(kUsualPatience); // so that a failure is said at once
    return !file_->failed;
}

/// A ring that was gone round since the last flush has lost whole rounds.
void WavRecorder::countLoss(std::uint64_t tapped, std::size_t taken) {
    constexpr std::uint64_t kRound = kRingBytes / kFrameBytes;
    takenFrames_ += taken;
    // The audio thread may have come again between its two counts: less than half a round.
    const std::uint64_t missing = tapped > takenFrames_ ? tapped - takenFrames_ : 0;
    const std::uint64_t lost = (missing + kRound / 2) / kRound * kRound;
    takenFrames_ += lost;
    lostFrames_ += lost;
}

void WavRecorder::stop() {
    if (!isRecording())
        return;
    flush();
    recording_.store(0, std::memory_order_relaxed);
    postHeader();
    writer_.post([file = file_] { file->close(); });
    writer_.wait(kUsualPatience);
}

std::optional<bool> WavRecorder::outcome() const {
    if (!file_ || !file_->closed)
        return std::nullopt;
    return !file_->failed && lostFrames_ == 0;
}

double WavRecorder::seconds() const {
    return static_cast<double>(recordedBytes_ - bytesBefore_) / kBytesPerSecond;
}

} // namespace sonotrace
