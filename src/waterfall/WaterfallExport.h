#pragma once

#include "base/MeasurementOrigin.h"
#include "base/Setting.h"

#include <QPushButton>
#include <QWidget>

#include <functional>
#include <vector>

namespace sonotrace {

class ExportMenu;
class Preferences;
class WaterfallImage;
struct WaterfallParameters;
class WaterfallRulers;

/// What the waterfall's "Export" button works with. All of it outlives the button.
struct WaterfallExport {
    QPushButton& button;
    Preferences& preferences;
    const WaterfallParameters& parameters;
    const WaterfallImage& image;
    const WaterfallRulers& rulers;
    const QWidget& view;
    std::function<MeasurementOrigin()> origin;
    std::function<std::vector<Setting>()> moreSettings; ///< than those that columns are painted with
};

/// Gives the button its menu, which it owns. Window thread.
ExportMenu& addExportMenu(const WaterfallExport& with);

} // namespace sonotrace
