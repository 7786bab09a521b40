#pragma once

#include "waterfall/WaterfallReadout.h"
#include "widgets/Ruler.h"

#include <QString>

class QGridLayout;

namespace sonotrace {

class ColorBar;
class ReadingsPanel;
class WaterfallView;

/// The widgets around the waterfall's picture that say what it shows.
struct WaterfallSurroundings {
    QGridLayout& grid; ///< the view is in its second column, the colour bar in its third
    WaterfallView& view;
    ColorBar& colorBar;
    ReadingsPanel& readings;
};

/// Keeps the scales beside the waterfall's picture and the numbers under it up to date. Window thread.
class WaterfallRulers {
public:
    /// All arguments outlive the rulers.
    WaterfallRulers(const WaterfallParameters& parameters, const WaterfallImage& image,
                    const WaterfallSurroundings& around);

    /// Looks at the picture as the view last showed it. Costs little when nothing has changed.
    void refresh();

    /// Sets the point that times and frequencies are also counted from.
    void setReference(const PicturePoint& point);

    const std::optional<PictureReference>& reference() const { return reference_; }

    /// What refresh() goes by.
    WaterfallReadout readout() const;

private:
    void showAxes(const WaterfallReadout& readout);
    void showReadings(const WaterfallReadout& readout);

    const WaterfallParameters& parameters_;
    const WaterfallImage& image_;
    const WaterfallSurroundings around_;
    Ruler& frequencies_; ///< owned by the view's window, as the other two
    Ruler& times_;
    Ruler& levels_;
    std::optional<PictureReference> reference_;
};

} // namespace sonotrace
