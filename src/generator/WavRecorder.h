#pragma once

#include "generator/WriterThread.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace sonotrace {

inline constexpr std::size_t kWavHeaderBytes = 44;

/// The header of a PCM WAV file. `rateSelector`: 0 is 11025 Hz, 1 is 22050, 2 and above 44100.
std::array<std::byte, kWavHeaderBytes> wavHeader(int channels, int rateSelector, int bitsPerSample,
                                                 std::uint32_t dataBytes);

/// Records what is played to a WAV file. The audio thread drops every buffer into a ring; the window thread
/// empties the ring twice a second, long before its 5.7 seconds are full, and hands it to a thread that
/// writes it: a disk that stalls holds up neither the sound nor the window.
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

    /// Hands over what has been recorded so far. False when the file has not taken something; the recording
    /// goes on. Window thread.
    bool flush();

    /// Flushes, has the final header written and the file closed. Window thread.
    void stop();

    /// How the last recording that was stopped came out: whether all of it is in its file. Nothing while the
    /// disk has not taken it yet. Window thread.
    std::optional<bool> outcome() const;

    /// Frames of the present or last recording that are not in its file, since the window thread or the disk
    /// was too slow.
    std::uint64_t lostFrames() const { return lostFrames_; }

    bool isRecording() const { return recording_.load(std::memory_order_relaxed) != 0; }

    /// Bytes of samples written since the program started.
    std::uint64_t recordedBytes() const { return recordedBytes_; }

    /// Length of the present recording as written so far.
    double seconds() const;

private:
    struct File;

    static constexpr std::uint32_t kRingBytes = 1'000'000;
    static constexpr std::uint32_t kFrameBytes = 4;

    void postHeader();
    void countLoss(std::uint64_t tapped, std::size_t taken);

    std::shared_ptr<File> file_; ///< of the present or last recording; shared with the writer
    std::atomic<std::int32_t> recording_{0};

    // A frame a word, so that a flush that is overtaken reads old or new frames, but is no data race.
    std::vector<std::atomic<std::uint32_t>> ring_;
    std::atomic<std::uint32_t> writeIndex_{0}; ///< in bytes
    std::atomic<std::uint32_t> readIndex_{0};
    std::atomic<std::uint64_t> tappedFrames_{0}; ///< ever

    std::uint64_t takenFrames_ = 0; ///< of them, those lost included
    std::uint64_t lostFrames_ = 0;
    std::uint64_t recordedBytes_ = 0;
    std::uint64_t bytesBefore_ = 0; ///< recordedBytes_ when the present recording started
    WriterThread writer_;           ///< the last to be made, the first to end
};

} // namespace sonotrace
