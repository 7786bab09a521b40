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

WavRecorder::WavRecorder() : ring_(kRingBytes / kFrameBytes), flushBuffer_(kRingBytes / kFrameBytes) {}

bool WavRecorder::start(const std::filesystem::path& path) {
    std::error_code unknown;
    const bool fifo = std::filesystem::is_fifo(path, unknown); // would be waited for until somebody reads it
    file_.reset(fifo ? nullptr : std::fopen(path.c_str(), "wb"));
    if (!file_) {
        recording_.store(0, std::memory_order_relaxed);
        return false;
    }
    bytesBefore_ = recordedBytes_;
    // A buffer that the audio thread dropped while the last recording was stopped is not part of this one.
    readIndex_.store(writeIndex_.load(std::memory_order_acquire), std::memory_order_relaxed);
    complete_ = writeHeader();
    recording_.store(1, std::memory_order_release);
    return true;
}

bool WavRecorder::writeHeader() {
    const auto bytes = static_cast<std::uint32_t>(recordedBytes_);
    systemLog("header:%d sampleChannelsSelected:%d sampleRateSelected:%d samplingSize:%d bytes:%d",
              static_cast<int>(kWavHeaderBytes), kChannels, kRateSelector, kBitsPerSample,
              static_cast<int>(bytes));
    const auto header = wavHeader(kChannels, kRateSelector, kBitsPerSample, bytes);
    return std::fseek(file_.get(), 0, SEEK_SET) == 0 &&
           std::fwrite(header.data(), 1, header.size(), file_.get()) == header.size() &&
           std::fflush(file_.get()) == 0;
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
    writeIndex_.store(index, std::memory_order_release);
}

bool WavRecorder::flush() {
    if (!file_)
        return true;
    const std::uint32_t end = writeIndex_.load(std::memory_order_acquire);
    std::uint32_t index = readIndex_.load(std::memory_order_relaxed);
    systemLog("%d %d", static_cast<int>(end), static_cast<int>(index));
    std::size_t frames = 0;
    while (index != end) {
        flushBuffer_[frames++] = ring_[index / kFrameBytes].load(std::memory_order_relaxed);
        index += kFrameBytes;
        if (index == kRingBytes)
            index = 0;
    }
    readIndex_.store(end, std::memory_order_relaxed);
    const bool written = std::fwrite(flushBuffer_.data(), kFrameBytes, frames, file_.get()) == frames &&
                         std::fflush(file_.get()) == 0;
    complete_ = complete_ && written;
    recordedBytes_ += frames * kFrameBytes;
    return written;
}

bool WavRecorder::stop() {
    if (!file_)
        return true;
    recording_.store(0, std::memory_order_relaxed);
    flush();
    complete_ = writeHeader() && complete_;
    return std::fclose(file_.release()) == 0 && complete_;
}

double WavRecorder::seconds() const {
    return static_cast<double>(recordedBytes_ - bytesBefore_) / kBytesPerSecond;
}

} // namespace sonotrace
