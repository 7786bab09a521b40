#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

namespace sonotrace {

inline constexpr std::size_t kWavHeaderBytes = 44;

/// The header of a PCM WAV file. `rateSelector`: 0 is 11025 Hz, 1 is 22050, 2 and above 44100.
std::array<std::byte, kWavHeaderBytes> wavHeader(int channels, int rateSelector, int bitsPerSample,
                                                 std::uint32_t dataBytes);

/// Records what is played to a WAV file. The audio thread drops every buffer into a ring; the window thread
/// empties the ring into the file twice a second, long before its 5.7 seconds are full.
///
/// The byte count in the headers starts with the program and is never reset: a second recording's header
/// counts the first.
class WavRecorder {
public:
    WavRecorder();

    /// Creates the file and starts. False, and no recording, when it cannot be created. Window thread.
    bool start(const std::filesystem::path& path);

    /// Appends interleaved stereo samples while a recording runs. Audio thread.
    void tap(std::span<const std::int16_t> interleaved);

    /// Writes what has been recorded so far. False when the file does not take it; the recording goes on.
    /// Window thread.
    bool flush();

    /// Flushes, writes the final header and closes the file. False when anything could not be written since
    /// the start. Window thread.
    bool stop();

    bool isRecording() const { return recording_.load(std::memory_order_relaxed) != 0; }

    /// Bytes of samples written since the program started.
    std::uint64_t recordedBytes() const { return recordedBytes_; }

    /// Length of the present recording as written so far.
    double seconds() const;

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    static constexpr std::uint32_t kRingBytes = 1'000'000;
    static constexpr std::uint32_t kFrameBytes = 4;

    bool writeHeader();

    std::unique_ptr<std::FILE, Close> file_;
    std::atomic<std::int32_t> recording_{0};

    // A frame a word, so that a flush that is overtaken reads old or new frames, but is no data race.
    std::vector<std::atomic<std::uint32_t>> ring_;
    std::atomic<std::uint32_t> writeIndex_{0}; ///< in bytes
    std::atomic<std::uint32_t> readIndex_{0};
    std::vector<std::uint32_t> flushBuffer_;

    std::uint64_t recordedBytes_ = 0;
    std::uint64_t bytesBefore_ = 0; ///< recordedBytes_ when the present recording started
    bool complete_ = true;          ///< everything since the start has been written
};

} // namespace sonotrace
