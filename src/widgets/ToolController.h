#pragma once

#include "base/SystemLog.h"
#include "widgets/StoredControls.h"

#include <QBoxLayout>
#include <QLabel>
#include <QObject>
#include <QShortcut>
#include <QWidget>

#include <initializer_list>

namespace sonotrace {

class Calibrations;

/// What the controllers of the tool windows share: the window, and what the preferences keep of it. Window
/// thread.
class ToolController : public QObject {
public:
    /// Writes what is kept into the preferences.
    void applicationWillTerminate() { stored_.store(); }

    /// Builds the list of devices anew, where the window has one.
    virtual void refreshDevices() {}

    /// Where the calibrations of what it listens to are, which outlive it. Before it starts to listen.
    virtual void setCalibrations(Calibrations&) {}

    QWidget& window() { return window_; }

protected:
    /// `preferences` outlives the controller.
    ToolController(Preferences& preferences, const char* frameKey) : stored_(preferences, window_, frameKey) {
        systemLog("- (void)init");
        window_.setAttribute(Qt::WA_QuitOnClose, false);
        new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), &window_, &window_, &QWidget::close);
    }

    /// The layout file holds the labels' longest texts: with room for them the sliders beside them do not
    /// move while their values change.
    static void keepRoom(std::initializer_list<QLabel*> labels) {
        for (QLabel* label : labels)
            label->setMinimumWidth(label->sizeHint().width());
    }

    /// Makes rows as high as `control` calls for, so that windows look alike whatever is in a row.
    static void levelRows(const QWidget& control, std::initializer_list<QBoxLayout*> rows) {
        for (QBoxLayout* row : rows)
            row->addStrut(control.sizeHint().height());
    }

    QWidget window_;
    StoredControls stored_;
};

} // namespace sonotrace
