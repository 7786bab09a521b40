#include "batch/AudioFile.h"

#include "base/SampleRate.h"
#include "batch/CommandError.h"
#include "batch/StandardStreams.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>
#include <utility>

namespace sonotrace {

namespace {

constexpr double kFullScale = 32768.0;
constexpr double kLoudest =
    1e30; ///< of samples: what is beyond it is no sound, and its powers are no numbers
constexpr std::uint64_t kUnknownBytes = 0x7FFF0000; ///< and more: the size that writers into pipes give
constexpr std::uint64_t kNoLength = std::uint64_t{1} << 48U; ///< frames: a stream that does not say how many
constexpr int kLowestRate = 1000;                            // Hz
constexpr int kHighestRate = 1000000;
constexpr std::size_t kWorkFrames = 8192;

std::string secondsText(double frames, double rate) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f s", frames / rate);
    return text.data();
}

std::string formatText(int format) {
    const auto named = [](int command, int part) {
        SF_FORMAT_INFO info{};
        info.format = part;
        const bool isKnown = sf_command(nullptr, command, &info, sizeof info) == 0 && info.name;
        return std::string(isKnown ? info.name : "unknown");
    };
    return named(SFC_GET_FORMAT_INFO, format & SF_FORMAT_SUBMASK) + ", " +
           named(SFC_GET_FORMAT_INFO, format & SF_FORMAT_TYPEMASK);
}

bool isShortFormat(int format) {
    const int depth = format & SF_FORMAT_SUBMASK;
    return depth == SF_FORMAT_PCM_16 || depth == SF_FORMAT_PCM_S8 || depth == SF_FORMAT_PCM_U8;
}

/// Bytes that a WAV or AIFF file says it has, 0 where it is another or does not know.
std::uint64_t statedBytes(int descriptor) {
    std::array<unsigned char, 8> head{};
    if (pread(descriptor, head.data(), head.size(), 0) != static_cast<ssize_t>(head.size()))
        return 0;
    const auto is = [&](const char* mark) { return std::memcmp(head.data(), mark, 4) == 0; };
    std::uint64_t size = 0;
    for (std::size_t i = 0; i < 4; ++i)
        size |= static_cast<std::uint64_t>(head[4 + i]) << (is("FORM") ? 24 - 8 * i : 8 * i);
    return (is("RIFF") || is("FORM")) && size < kUnknownBytes ? size + head.size() : 0;
}

} // namespace

AudioFile::AudioFile(std::string path, const AudioFileOptions& options)
    : isStandardInput_(path == "-"),
      name_(isStandardInput_ ? "standard input" : std::move(path)),
      startSeconds_(options.startSeconds),
      seconds_(options.seconds) {
    openFile();
    checkFormat(options.resamples);
    warnIfCutOff();
    setRange(options);
    if (rate_ == kSampleRate)
        return;
    isShort_ = false;
    resampler_ = std::make_unique<Resampler>(
        rate_, [this](std::span<double> interleaved) { return readFile(interleaved); });
}

std::string AudioFile::described() const {
    std::array<char, 64> text{};
    std::string all = name_;
    const auto add = [&](const char* format, double value) {
        std::snprintf(text.data(), text.size(), format, value);
        all += text.data();
    };
    if (startSeconds_ > 0.0)
        add(", from %.9g s on", startSeconds_);
    if (seconds_)
        add(", at most %.9g s", *seconds_);
    if (resampler_)
        add(", converted from %.0f Hz", rate_);
    return all;
}

AudioFile::~AudioFile() {
    file_.reset();
    if (descriptor_ >= 0 && !isStandardInput_)
        close(descriptor_);
}

void AudioFile::openFile() {
    descriptor_ = isStandardInput_ ? STDIN_FILENO : open(name_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    struct stat there {};
    if (descriptor_ < 0 || fstat(descriptor_, &there) != 0)
        failToRead(name_, errno);
    if (S_ISDIR(there.st_mode))
        throw CommandError(name_ + " is a folder");
    if (S_ISREG(there.st_mode) && there.st_size == 0)
        throw CommandError(name_ + " is empty");
    isSeekable_ = S_ISREG(there.st_mode);
    SF_INFO info{};
    file_.reset(sf_open_fd(descriptor_, SFM_READ, &info, SF_FALSE));
    if (!file_)
        throw CommandError(name_ + " cannot be read as a sound file: " + sf_strerror(nullptr) +
                           (isSeekable_ ? "" : " Of a pipe, WAV, AIFF and AU can be read."));
    rate_ = info.samplerate;
    channels_ = info.channels;
    isShort_ = isShortFormat(info.format);
    format_ = formatText(info.format);
    const auto frames = static_cast<std::uint64_t>(std::max<sf_count_t>(info.frames, 0));
    const auto leastBytes = static_cast<std::uint64_t>(std::max(channels_, 1));
    if (frames < (isSeekable_ ? kNoLength : kUnknownBytes / (8 * leastBytes)))
        fileFrames_ = frames;
    if (frames == 0)
        throw CommandError(name_ + " holds no samples");
}

void AudioFile::checkFormat(bool resamples) const {
    if (channels_ < 1 || channels_ > 2)
        throw CommandError(name_ + " has " + std::to_string(channels_) +
                           " channels: one or two can be read. Two of them: sox IN OUT.wav remix 1 2");
    if (rate_ < kLowestRate || rate_ > kHighestRate)
        throw CommandError(name_ + " has " + std::to_string(rate_) + " Hz, which is no rate of sound");
    if (rate_ != kSampleRate && !resamples)
        throw CommandError(name_ + " has " + std::to_string(rate_) +
                           " Hz instead of 44100: --resample converts it, as does sox IN -r 44100 OUT.wav");
}

void AudioFile::warnIfCutOff() const {
    struct stat there {};
    if (!isSeekable_ || fstat(descriptor_, &there) != 0)
        return;
    const std::uint64_t stated = statedBytes(descriptor_);
    const auto bytes = static_cast<std::uint64_t>(there.st_size);
    if (stated > bytes + 1) // the last byte may be padding
        warn(name_ + " is cut off: " + std::to_string(bytes) + " bytes of " + std::to_string(stated) +
             " are there, and are used");
}

void AudioFile::setRange(const AudioFileOptions& options) {
    const auto inFile = [this](double seconds) {
        return static_cast<std::uint64_t>(std::llround(std::min(seconds * rate_, 9e18)));
    };
    const std::uint64_t start = inFile(options.startSeconds);
    if (fileFrames_ && start >= *fileFrames_)
        throw CommandError(name_ + " is only " + secondsText(static_cast<double>(*fileFrames_), rate_) +
                           " long");
    skip(start);
    if (options.seconds)
        framesLeft_ = inFile(*options.seconds);
    if (fileFrames_ || options.seconds) {
        const std::uint64_t there = fileFrames_ ? *fileFrames_ - start : UINT64_MAX;
        const auto frames = static_cast<double>(std::min(there, framesLeft_));
        frames_ = static_cast<std::uint64_t>(std::llround(frames * kSampleRate / rate_));
    }
}

void AudioFile::skip(std::uint64_t frames) {
    if (frames == 0)
        return;
    if (isSeekable_ && sf_seek(file_.get(), static_cast<sf_count_t>(frames), SEEK_SET) >= 0) {
        position_ = frames;
        return;
    }
    std::vector<double> dropped(2 * kWorkFrames);
    while (position_ < frames) {
        const std::uint64_t wanted = std::min<std::uint64_t>(frames - position_, kWorkFrames);
        if (readFile(std::span(dropped).first(2 * static_cast<std::size_t>(wanted))) < wanted)
            throw CommandError(name_ + " is only " + secondsText(static_cast<double>(position_), rate_) +
                               " long");
    }
}

std::size_t AudioFile::read(std::span<std::int16_t> interleaved) {
    if (isShort_)
        return readFile(interleaved);
    std::vector<double> real(2 * kWorkFrames);
    std::size_t frames = 0;
    while (frames < interleaved.size() / 2) {
        const std::size_t wanted = std::min(kWorkFrames, interleaved.size() / 2 - frames);
        const std::size_t done = readReal(std::span(real).first(2 * wanted));
        std::transform(real.begin(), real.begin() + static_cast<std::ptrdiff_t>(2 * done),
                       interleaved.begin() + static_cast<std::ptrdiff_t>(2 * frames), [](double sample) {
                           return static_cast<std::int16_t>(
                               std::clamp(std::nearbyint(sample), -32768.0, 32767.0));
                       });
        frames += done;
        if (done < wanted)
            break;
    }
    return frames;
}

std::size_t AudioFile::readReal(std::span<double> interleaved) {
    return resampler_ ? resampler_->read(interleaved) : readFile(interleaved);
}

/// At the file's own rate. Sound files hold parts of full scale, of which 32768 are 16-bit samples.
template <typename Sample>
std::size_t AudioFile::readFile(std::span<Sample> interleaved) {
    constexpr bool kIsReal = std::is_same_v<Sample, double>;
    const auto room = static_cast<std::size_t>(std::min<std::uint64_t>(interleaved.size() / 2, framesLeft_));
    if (isAtEnd_ || room == 0)
        return 0;
    sf_count_t done = 0;
    if constexpr (kIsReal)
        done = sf_readf_double(file_.get(), interleaved.data(), static_cast<sf_count_t>(room));
    else
        done = sf_readf_short(file_.get(), interleaved.data(), static_cast<sf_count_t>(room));
    const auto frames = static_cast<std::size_t>(std::max<sf_count_t>(done, 0));
    if (channels_ == 1)
        for (std::size_t i = frames; i-- > 0;)
            interleaved[2 * i] = interleaved[2 * i + 1] = interleaved[i];
    if constexpr (kIsReal)
        for (double& sample : interleaved.first(2 * frames)) {
            sample *= kFullScale;
            if (!(std::abs(sample) <= kLoudest))
                throw CommandError(name_ + " holds values that are no sound");
        }
    position_ += frames;
    framesLeft_ -= frames;
    if (frames < room)
        sayEnd();
    return frames;
}

void AudioFile::sayEnd() {
    isAtEnd_ = true;
    if (position_ == 0)
        throw CommandError(name_ + " holds no samples that can be read" +
                           (isSeekable_ ? "" : ". Of a pipe, WAV, AIFF and AU can be read"));
    if (fileFrames_ && position_ < *fileFrames_)
        warn(name_ + " is cut off or damaged: " + secondsText(static_cast<double>(position_), rate_) +
             " of " + secondsText(static_cast<double>(*fileFrames_), rate_) + " can be read, and are used");
}

void AudioFile::Close::operator()(sf_private_tag* file) const {
    sf_close(file);
}

} // namespace sonotrace
