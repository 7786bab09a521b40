#pragma once

#include "waterfall/ColorMap.h"
#include "waterfall/KeptColumns.h"
#include "waterfall/LineStatistics.h"
#include "waterfall/RowBins.h"
#include "waterfall/ScrollingBitmap.h"
#include "waterfall/WaterfallParameters.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <span>

namespace sonotrace {

/// Size of the view that shows the picture, in points; 0 before it has been shown.
struct WaterfallBounds {
    float width = 0;
    float height = 0;
};

/// The waterfall's picture, 1536 x 1024 pixels, all bytes zero at first. Each magnitude line becomes one
/// column: the start frequency in the bottom row, frequency growing upward over the height of the view, the
/// newest line at the view's right edge. The view shows the bottom-left corner, one pixel a point.
///
/// The capture thread paints, the window thread shows and says how large the view is.
class WaterfallImage {
public:
    WaterfallImage(const WaterfallParameters& parameters, DeferredLog& log)
        : parameters_(parameters), log_(log) {}

    /// Describes the picture's format on the system log. Window thread.
    void myinit() const;

    /// The view's size as of its last redraw, kept within the picture; anything but a positive number is 0.
    /// Width and height change together. Window thread.
    void setBounds(double width, double height);

    /// Any thread.
    WaterfallBounds bounds() const;

    /// Paints one column from magnitudes of a transform of `len` samples, `offset` pixels left of the view's
    /// right edge, after shifting each painted row left by `scroll` pixels. A shift of 0 and below, or of the
    /// whole width and above, moves nothing; a column outside the picture is not painted. Whatever the
    /// frequencies hold, only the given magnitudes are read. Capture thread.
    void drawFFTLine(std::span<const double> magnitudes, std::int32_t len, std::int32_t offset,
                     std::int32_t scroll);

    /// How many bins of a transform of `len` samples a line is to have now: up to half the sample rate, or
    /// all where rows are above that. Capture thread.
    std::size_t binsFor(std::int32_t len);

    /// Appends the newest columns of another picture, painted for a view of the same size and with the same
    /// limits, as if they had been painted here. Capture thread of both.
    void append(const WaterfallImage& other, std::int32_t columns);

    /// Paints the columns in view, as far as they are of the newest one's scale, with the colours and limits
    /// of now, from their levels as they are kept. Capture thread.
    void repaint();

    /// What the next lines are made of. Capture thread.
    void setSource(const ColumnSource& source) { scale_.source = source; }

    /// Some of the sound before the next line is not in the picture. Capture thread.
    void markGap() { hasGap_ = true; }

    /// How far the picture has scrolled, pixels. Any thread, as what follows.
    ColumnNumber scrolled() const { return scrolled_.load(std::memory_order_relaxed); }

    /// Samples from a column to the next as of the newest; 0 before there is one.
    double samplesPerColumn() const { return samplesPerColumn_.load(std::memory_order_relaxed); }

    /// The first columns since which the picture is painted as it is now: at all, in the frequencies of its
    /// rows, in the times of its columns; and since which no sound is missing.
    ColumnNumber scaleBegin() const { return scaleBegin_.load(std::memory_order_relaxed); }
    ColumnNumber rowsBegin() const { return rowsBegin_.load(std::memory_order_relaxed); }
    ColumnNumber rateBegin() const { return rateBegin_.load(std::memory_order_relaxed); }
    ColumnNumber gapEnd() const { return gapEnd_.load(std::memory_order_relaxed); }

    /// Nothing for a column that was never painted or has left the picture.
    std::optional<ColumnLevels> levels(ColumnNumber column) const { return kept_.levels(column); }

    /// The same for the levels of all rows.
    const KeptColumns& keptColumns() const { return kept_; }

    /// ColorMap::stepOf the pixel of a row and a column of the picture; none for one outside it.
    std::optional<std::int32_t> stepAt(std::int32_t row, std::int32_t column) const;

    /// ScrollingBitmap::copyRows. The visible part of a view of W x H points is
    /// copyRows(1024 - H, H, W, ...), the whole picture copyRows(0, 1024, 1536, ...). Any thread.
    void copyRows(std::int32_t firstRow, std::int32_t rows, std::int32_t columns, std::uint8_t* rgba,
                  std::ptrdiff_t bytesPerLine) const {
        offscreen_.copyRows(firstRow, rows, columns, rgba, bytesPerLine);
    }

    const ScrollingBitmap& bitmap() const { return offscreen_; }

private:
    static constexpr ColumnNumber kNone = KeptColumns::kNone;

    void takeScale(std::int32_t len, std::size_t bins, const WaterfallBounds& bounds);
    void number(ColumnNumber column);
    const std::array<std::uint32_t, 256>& palette() const {
        const bool isColoured = parameters_.colorWaterfallPlot.load(std::memory_order_relaxed) != 0;
        return isColoured ? colors_.colors() : colors_.greys();
    }

    const WaterfallParameters& parameters_;
    DeferredLog& log_;
    ColorMap colors_;
    RowBins bins_;          ///< capture thread, as the next three
    ColumnScale scale_;     ///< of the next line
    ColumnScale lastScale_; ///< of the line before
    bool hasGap_ = false;
    std::atomic<ColumnNumber> scrolled_{0};
    std::atomic<ColumnNumber> scaleBegin_{kNone};
    std::atomic<ColumnNumber> rowsBegin_{kNone};
    std::atomic<ColumnNumber> rateBegin_{kNone};
    std::atomic<ColumnNumber> gapEnd_{kNone};
    std::atomic<double> samplesPerColumn_{0};
    KeptColumns kept_;
    ScrollingBitmap offscreen_;
    std::atomic<std::uint64_t> bounds_{0}; ///< both sizes' bits in one value, so that they change together
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free &&
                  std::atomic<ColumnNumber>::is_always_lock_free);
};

} // namespace sonotrace
