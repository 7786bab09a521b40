#include "waterfall/WaterfallExport.h"

#include "waterfall/WaterfallReport.h"
#include "waterfall/WaterfallRulers.h"
#include "waterfall/WaterfallTable.h"
#include "widgets/ExportMenu.h"

namespace sonotrace {

ExportMenu& addExportMenu(const WaterfallExport& with) {
    const auto missing = [with] {
        return with.image.keptColumns().newestScale() ? QString()
                                                      : QString("There is no picture yet to export");
    };
    const auto picture = [with] {
        const ReportContent content{
            .title = {}, .origin = with.origin(), .settings = with.moreSettings(), .readings = {}};
        return waterfallReport(content, {with.parameters, with.image, with.image.scrolled()},
                               with.rulers.reference());
    };
    const auto table = [with] {
        std::vector<Setting> about = originLines("waterfall", with.origin());
        const std::vector<Setting> more = with.moreSettings();
        about.insert(about.end(), more.begin(), more.end());
        return waterfallTable(linesInView(with.image), about);
    };
    return *new ExportMenu(with.button, with.preferences,
                           {missing, picture, [with] { return with.view.size(); }, table});
}

} // namespace sonotrace
