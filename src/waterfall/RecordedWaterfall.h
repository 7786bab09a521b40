#pragma once

#include "base/DeferredLog.h"
#include "waterfall/WaterfallAnalysis.h"
#include "waterfall/WaterfallImage.h"
#include "waterfall/WaterfallParameters.h"

#include <cstdint>
#include <optional>
#include <span>

namespace sonotrace {

/// How a recording becomes a picture. What is not there is chosen so that the recording fills it.
struct RecordedWaterfallSettings {
    std::int32_t log2Length = 13;
    FftWindowType window = 1;
    ChannelFold channel = ChannelFold::Left;
    LineMerge merge = LineMerge::Peak;
    double startFreq = 0.0;          ///< Hz
    double endFreq = 22050.0;        ///< Hz
    std::optional<float> minDB = {}; ///< limits of the colours; otherwise those of the levels
    std::optional<float> maxDB = {};
    bool isColoured = true;
    std::int32_t width = ScrollingBitmap::kWidth;   ///< points, at most
    std::int32_t height = ScrollingBitmap::kHeight; ///< points
    std::optional<std::int32_t> speedup = {};       ///< lines for the samples of a transform
    std::optional<double> secondsPerColumn = {};    ///< of slow columns
};

/// How the columns come.
struct ColumnPlan {
    std::int32_t speedup = 1;
    double slowSeconds = 0; ///< a column; 0: a column is a line
    std::int32_t width = 0; ///< points
};

/// A plan for so many frames; for sound of unknown length, a line a column.
ColumnPlan planColumns(const RecordedWaterfallSettings& settings, std::optional<std::uint64_t> frames);

/// The waterfall of sound that need not be waited for: to the bit the picture that the window paints of the
/// same samples, except that no line is ever dropped. One thread. Throws std::bad_alloc.
class RecordedWaterfall {
public:
    RecordedWaterfall(const RecordedWaterfallSettings& settings, std::optional<std::uint64_t> frames);

    /// Takes any number of interleaved samples.
    void add(std::span<const std::int16_t> interleaved) { analysis_.capture(interleaved); }

    /// Frames that make whole columns of their own, whatever was before them; 0 where lines overlap, or where
    /// they are so many that they are not to be held at once.
    std::size_t framesPerPart() const;

    /// Paints a part that begins with a column, on a picture that the next part begins anew. Columns painted.
    std::int32_t paintPart(std::span<const std::int16_t> interleaved);

    /// Appends the columns of the part that another one with the same settings painted last.
    void append(const RecordedWaterfall& other, std::int32_t columns) {
        image_.append(other.image_, columns);
    }

    /// Ends the sound: paints the line that only waits for more, and the colours anew where no limits were
    /// given. Whether there is any line.
    bool finish();

    const WaterfallParameters& parameters() const { return parameters_; }
    const WaterfallImage& image() const { return image_; }

private:
    WaterfallParameters& setParameters(const ColumnPlan& plan); ///< before the analysis is made
    void endLine();
    void fitLimits();

    const RecordedWaterfallSettings settings_;
    WaterfallParameters parameters_;
    DeferredLog log_;
    WaterfallImage image_{parameters_, log_};
    WaterfallAnalysis analysis_;
};

} // namespace sonotrace
