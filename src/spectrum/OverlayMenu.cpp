#include "spectrum/OverlayMenu.h"

#include <utility>

namespace sonotrace {

OverlayMenu::OverlayMenu(SpectrumOverlays& overlays, QWidget* parent) : QMenu(parent), overlays_(overlays) {
    addTrace("peakHold", "&Peak hold", SpectrumOverlay::PeakHold);
    addAction("&Reset peak hold", this, [this] {
        overlays_.resetPeakHold();
        Q_EMIT changed();
    })->setObjectName("resetPeakHold");
    addSeparator();
    addAction("&Store reference", this, &OverlayMenu::storeReference)->setObjectName("storeReference");
    reference_ = addTrace("reference", "Re&ference", SpectrumOverlay::Reference);
    difference_ = addTrace("difference", "&Difference to the reference", SpectrumOverlay::Difference);
    addSeparator();
    corrected_ = addTrace("corrected", "&Corrected for the microphone", SpectrumOverlay::Corrected);
    for (QAction* action : {reference_, difference_, corrected_})
        action->setEnabled(false);
}

QAction* OverlayMenu::addTrace(const char* name, const char* title, SpectrumOverlay overlay) {
    QAction* const action = addAction(title);
    action->setObjectName(name);
    action->setCheckable(true);
    connect(action, &QAction::toggled, this, [this, overlay](bool asked) {
        overlays_.ask(overlay, asked);
        Q_EMIT changed();
    });
    return action;
}

void OverlayMenu::storeReference() {
    if (!overlays_.storeReference()) {
        Q_EMIT nothingToStore();
        return;
    }
    reference_->setEnabled(true);
    difference_->setEnabled(true);
    reference_->setChecked(true);
    Q_EMIT changed();
}

void OverlayMenu::setResponse(std::function<double(double)> responseDb) {
    corrected_->setEnabled(static_cast<bool>(responseDb));
    overlays_.setResponse(std::move(responseDb));
    Q_EMIT changed();
}

} // namespace sonotrace
