#pragma once

#include "scope/ScopeCapture.h"
#include "scope/ScopeControls.h"
#include "widgets/InputSource.h"
#include "widgets/StoredControls.h"

#include <QObject>
#include <QTimer>
#include <QWidget>

#include <memory>

namespace Ui {
class ScopeWindow;
}

namespace sonotrace {

/// The oscilloscope's window: restores and stores its controls, which the capture and the view read when they
/// need them, and runs the input stream from the moment it is made until the program ends. Window thread.
class ScopeController : public QObject, public ScopeControls {
    Q_OBJECT

public:
    /// All arguments outlive the controller. Capture is delivered on `runLoop`, which is the window thread's.
    ScopeController(SoundSystem& system, RunLoop& runLoop, Preferences& preferences);
    ~ScopeController() override;

    /// Restores the window and starts to listen. Once.
    void awakeFromNib();

    /// Writes the controls into the preferences.
    void applicationWillTerminate();

    QWidget& window() { return window_; }
    const ScopeCapture& capture() const { return capture_; }

    double getRange(std::int32_t ch) const override;
    double getOffset(std::int32_t ch) const override;
    double getTrigger(std::int32_t ch) const override;
    bool getTriggerPolarity(std::int32_t ch) const override;
    bool getInvert(std::int32_t ch) const override;
    double getSweep() const override;

private:
    void listStoredControls();
    void showValues();

    QWidget window_;
    const std::unique_ptr<Ui::ScopeWindow> ui_;
    StoredControls stored_;
    ScopeCapture capture_;
    std::unique_ptr<InputSource> source_;
    QTimer stateTimer_;
};

} // namespace sonotrace
