#pragma once

#include "waterfall/ColorMap.h"
#include "waterfall/LineStatistics.h"
#include "waterfall/RowBins.h"
#include "waterfall/ScrollingBitmap.h"
#include "waterfall/WaterfallParameters.h"

#include <atomic>
#include <cstdint>
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

    /// ScrollingBitmap::copyRows. The visible part of a view of W x H points is
    /// copyRows(1024 - H, H, W, ...), the whole picture copyRows(0, 1024, 1536, ...). Any thread.
    void copyRows(std::int32_t firstRow, std::int32_t rows, std::int32_t columns, std::uint8_t* rgba,
                  std::ptrdiff_t bytesPerLine) const {
        offscreen_.copyRows(firstRow, rows, columns, rgba, bytesPerLine);
    }

    const ScrollingBitmap& bitmap() const { return offscreen_; }

private:
    const WaterfallParameters& parameters_;
    DeferredLog& log_;
    ColorMap colors_;
    RowBins bins_; ///< capture thread
    ScrollingBitmap offscreen_;
    std::atomic<std::uint64_t> bounds_{0}; ///< both sizes' bits in one value, so that they change together
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
};

} // namespace sonotrace
