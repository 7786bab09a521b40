#pragma once

#include "batch/Resampler.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

struct sf_private_tag;

namespace sonotrace {

/// What of a file is read, and how.
struct AudioFileOptions {
    double startSeconds = 0;            ///< from its beginning
    std::optional<double> seconds = {}; ///< at most; to its end without
    bool resamples = false;             ///< another rate than the program's is converted, else refused
};

/// A sound file, or what comes through standard input or a FIFO, as stereo at the program's rate: a mono one
/// has the same on both sides. Whatever cannot be read is thrown as a CommandError; what is damaged or cut
/// off is read as far as it goes, with a warning. Memory is bounded however long it is. One thread at a time.
class AudioFile {
public:
    /// Opens `path`, "-" being standard input.
    explicit AudioFile(std::string path, const AudioFileOptions& options = {});
    ~AudioFile();
    AudioFile(const AudioFile&) = delete;
    AudioFile& operator=(const AudioFile&) = delete;

    /// Fills `interleaved` and gives the number of frames, fewer than there is room for only at the end.
    /// Samples that are deeper than 16 bits are rounded, and clipped where they are louder.
    std::size_t read(std::span<std::int16_t> interleaved);

    /// The same in full depth. The unit is that of 16-bit samples: full scale is 32768.
    std::size_t readReal(std::span<double> interleaved);

    /// Whether 16 bits are all there is in the samples, so that read() loses nothing.
    bool isShort() const { return isShort_; }

    const std::string& name() const { return name_; } ///< for people
    /// The same with what of it is read, and how: all that has to be known to read it again.
    std::string described() const;
    int rate() const { return rate_; }         ///< Hz, as it is in the file
    int channels() const { return channels_; } ///< 1 or 2
    const std::string& format() const {
        return format_;
    } ///< for people: "Signed 16 bit PCM, WAV (Microsoft)"

    double startSeconds() const { return startSeconds_; } ///< from the file's beginning

    /// Frames that will be read in all, at the program's rate; nothing where that is not known.
    std::optional<std::uint64_t> frames() const { return frames_; }

private:
    void openFile();
    void checkFormat(bool resamples) const;
    void setRange(const AudioFileOptions& options);
    void skip(std::uint64_t frames);
    void warnIfCutOff() const;
    void sayEnd();
    template <typename Sample>
    std::size_t readFile(std::span<Sample> interleaved);

    struct Close {
        void operator()(sf_private_tag* file) const;
    };

    const bool isStandardInput_;
    const std::string name_;
    const double startSeconds_;
    const std::optional<double> seconds_;
    int descriptor_ = -1;
    std::unique_ptr<sf_private_tag, Close> file_;
    int rate_ = 0;
    int channels_ = 0;
    bool isShort_ = false;
    bool isSeekable_ = false;
    std::string format_;
    std::optional<std::uint64_t> fileFrames_; ///< that it says it has
    std::optional<std::uint64_t> frames_;
    std::uint64_t framesLeft_ = UINT64_MAX; ///< of the file, to be read
    std::uint64_t position_ = 0;            ///< in the file, frames
    bool isAtEnd_ = false;
    std::unique_ptr<Resampler> resampler_;
};

} // namespace sonotrace
