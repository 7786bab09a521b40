#include "batch/WaterfallPainting.h"

#include "base/SampleRate.h"
#include "batch/AudioFile.h"
#include "batch/BlockQueue.h"
#include "batch/ChannelOption.h"
#include "batch/Progress.h"
#include "batch/ReadAhead.h"
#include "waterfall/RecordedWaterfall.h"

#include <algorithm>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace sonotrace {

namespace {

constexpr unsigned kMostWorkers = 8;

Progress progressOf(const AudioFile& file) {
    const auto total = file.frames();
    return Progress(total ? std::optional(static_cast<double>(*total) / kSampleRate) : std::nullopt);
}

/// Paints parts on several threads, and puts them together in order.
class PartPainter {
public:
    PartPainter(RecordedWaterfall& whole, const RecordedWaterfallSettings& settings, AudioFile& file,
                unsigned workers)
        : whole_(whole),
          channel_(settings.channel),
          file_(file),
          parts_(workers),
          jobs_(workers),
          spare_(3 * workers) {
        for (auto& part : parts_) // here: plans of transforms are made on one thread at a time
            part = std::make_unique<RecordedWaterfall>(settings, file.frames());
        for (unsigned i = 0; i < 3 * workers; ++i)
            spare_.push({});
    }

    PaintedSound paint() {
        std::vector<std::future<void>> painting;
        const struct Abandon { // when the file cannot be read, nobody must wait for more of it
            PartPainter& painter;
            ~Abandon() { painter.giveUp(); }
        } abandon{*this};
        for (auto& part : parts_)
            painting.push_back(std::async(std::launch::async, [this, &part] { work(*part); }));
        read();
        jobs_.finish();
        for (auto& ended : painting)
            ended.get();
        return painted_;
    }

private:
    using Block = std::vector<std::int16_t>;
    struct Job {
        std::uint64_t number = 0;
        Block samples;
    };

    void read() {
        Progress progress = progressOf(file_);
        const std::size_t frames = whole_.framesPerPart();
        for (std::uint64_t number = 0;; ++number) {
            auto block = spare_.pop();
            if (!block)
                return;
            block->resize(2 * frames);
            const std::size_t read = file_.read(*block);
            block->resize(2 * read);
            painted_.frames += read;
            if (!jobs_.push({number, std::move(*block)}) || read < frames)
                return;
            progress.update(static_cast<double>(painted_.frames) / kSampleRate);
        }
    }

    void work(RecordedWaterfall& part) {
        try {
            while (auto job = jobs_.pop()) {
                const std::int32_t columns = part.paintPart(job->samples);
                const std::uint64_t wrapped = wrappedFrames(job->samples, channel_);
                std::unique_lock lock(mutex_);
                turn_.wait(lock, [&] { return isGivenUp_ || next_ == job->number; });
                if (isGivenUp_)
                    return;
                whole_.append(part, columns);
                painted_.wrapped += wrapped;
                ++next_;
                turn_.notify_all();
                lock.unlock();
                spare_.push(std::move(job->samples));
            }
        } catch (...) {
            giveUp();
            throw;
        }
    }

    void giveUp() {
        jobs_.abandon();
        spare_.abandon();
        const std::lock_guard lock(mutex_);
        isGivenUp_ = true;
        turn_.notify_all();
    }

    RecordedWaterfall& whole_; ///< guarded by the mutex, as what stands below it
    const ChannelFold channel_;
    AudioFile& file_;
    std::vector<std::unique_ptr<RecordedWaterfall>> parts_;
    BlockQueue<Job> jobs_;
    BlockQueue<Block> spare_;
    PaintedSound painted_; ///< its frames are the reading thread's
    std::mutex mutex_;
    std::condition_variable turn_;
    std::uint64_t next_ = 0; ///< part to be appended
    bool isGivenUp_ = false;
};

} // namespace

PaintedSound paintFile(RecordedWaterfall& waterfall, const RecordedWaterfallSettings& settings,
                       AudioFile& file) {
    const unsigned workers = std::min(std::thread::hardware_concurrency(), kMostWorkers);
    if (workers > 1 && waterfall.framesPerPart() > 0)
        return PartPainter(waterfall, settings, file, workers).paint();
    Progress progress = progressOf(file);
    PaintedSound painted;
    readAhead<std::int16_t>(file, [&](std::span<const std::int16_t> interleaved) {
        waterfall.add(interleaved);
        painted.wrapped += wrappedFrames(interleaved, settings.channel);
        painted.frames += interleaved.size() / 2;
        progress.update(static_cast<double>(painted.frames) / kSampleRate);
    });
    return painted;
}

} // namespace sonotrace
