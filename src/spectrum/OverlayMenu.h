#pragma once

#include "spectrum/SpectrumOverlays.h"

#include <QMenu>

#include <functional>

namespace sonotrace {

/// The menu of the traces over the spectrum, but for the average, which has controls of its own. Window
/// thread.
class OverlayMenu : public QMenu {
    Q_OBJECT

public:
    /// `overlays` outlives the menu.
    explicit OverlayMenu(SpectrumOverlays& overlays, QWidget* parent = nullptr);

    /// What the microphone is known to make of a level, in dB at a frequency; empty where nothing is known.
    void setResponse(std::function<double(double)> responseDb);

Q_SIGNALS:
    void changed();        ///< what is to be painted
    void nothingToStore(); ///< there is no spectrum yet that could be a reference

private:
    QAction* addTrace(const char* name, const char* title, SpectrumOverlay overlay);
    void storeReference();

    SpectrumOverlays& overlays_;
    QAction* reference_ = nullptr;
    QAction* difference_ = nullptr;
    QAction* corrected_ = nullptr;
};

} // namespace sonotrace
