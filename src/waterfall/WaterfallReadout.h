#pragma once

#include "base/AxisTicks.h"
#include "waterfall/WaterfallImage.h"

#include <optional>

namespace sonotrace {

/// A place in the picture, in points from the view's bottom left corner.
struct PicturePoint {
    double x = 0;
    double y = 0;
};

/// A point that moves with the picture.
struct PictureReference {
    double column = 0; ///< a ColumnNumber, and how far into that column
    double frequencyHz = 0;
};

/// Whether the times of a column can be read with the axis of today.
enum class TimeScale {
    Current,
    BeforeGap, ///< sound is missing since
    Other      ///< columns had another distance
};

/// What is to be read at a point; nothing where it is not defined.
struct WaterfallReading {
    enum class Bound { None, Upper, Lower };

    bool hasOtherRows = false; ///< the frequencies of the column's rows were others
    TimeScale times = TimeScale::Current;
    TimeScale referenceTimes = TimeScale::Current;
    std::optional<double> frequencyHz;
    std::optional<double> secondsAgo; ///< before the newest column
    std::optional<double> levelDb;    ///< on the display's own scale
    Bound levelBound = Bound::None;   ///< where the colours end, levelDb is only that
    std::optional<double> secondsFromReference;
    std::optional<double> hertzFromReference;
};

struct DbRange {
    double lowest = 0;
    double highest = 0;
};

/// Reads the picture as a view shows it. Window thread.
class WaterfallReadout {
public:
    /// `scrolled`: as of the last time the view was painted.
    WaterfallReadout(const WaterfallParameters& parameters, const WaterfallImage& image,
                     ColumnNumber scrolled)
        : parameters_(parameters), image_(image), bounds_(image.bounds()), scrolled_(scrolled) {}

    const WaterfallParameters& parameters() const { return parameters_; }
    const WaterfallImage& image() const { return image_; }
    const WaterfallBounds& bounds() const { return bounds_; }
    ColumnNumber scrolled() const { return scrolled_; }

    Axis frequencyAxis() const; ///< Hz, upward
    Axis timeAxis() const;      ///< seconds before the newest column, from left to right

    /// Seconds before the newest column of a place in the picture that moves with it.
    double secondsAgo(double column) const;

    PictureReference reference(const PicturePoint& point) const;
    WaterfallReading read(const PicturePoint& point, const std::optional<PictureReference>& reference) const;

    /// What the columns of today's scale that are in view hold, for the limits of the colours: up to the
    /// loudest, and down to what three quarters of them stay above. A notch in a few of them, or a silence,
    /// does not stretch the range. Nothing when there is no such column, or only silence.
    std::optional<DbRange> levelsInView() const;

    /// The same as limits: whole, and a decibel apart at least.
    std::optional<DbRange> fittingLimits() const;

private:
    double frequency(double y) const;
    TimeScale times(double column) const;
    void readLevel(const PicturePoint& point, WaterfallReading& reading) const;

    const WaterfallParameters& parameters_;
    const WaterfallImage& image_;
    const WaterfallBounds bounds_;
    const ColumnNumber scrolled_;
};

} // namespace sonotrace
