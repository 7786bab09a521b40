#include "app/WindowControl.h"

#include "support/ToolWindow.h"
#include "widgets/NumberField.h"
#include "widgets/RealSlider.h"

#include <QAction>
#include <QMainWindow>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

/// What all windows' controls have in common, tried in all windows at once.
class ControlsTest : public WindowTest {
protected:
    ControlsTest() {
        control_.awakeFromNib();
        for (const char* tool : {"menuSweep", "menuSpectrum", "menuWaterfall", "menuWScope"})
            findControl<QAction>(control_.window(), tool).trigger();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName().endsWith("Window"))
                windows_ << window;
        }
    }

    LoopbackSystem system_{LoopbackSystem::Clock::Manual};
    WindowControl control_{system_, preferences_};
    QList<QWidget*> windows_;
};

void turnWheel(QWidget& control) {
    const QPointF middle = control.rect().center();
    QWheelEvent event(middle, control.mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                      false);
    QSpontaneKeyEvent::setSpontaneous(&event); // others stay where they are sent
    qApp->notify(&control, &event);
}

QString valueOf(const QWidget& control) {
    return control.metaObject()->userProperty().read(&control).toString();
}

TEST_F(ControlsTest, TheWheelTurnsOnlyWhatHasTheFocus) {
    EXPECT_EQ(windows_.size(), 5);
    for (QWidget* window : windows_) {
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        for (QWidget* control : window->findChildren<QWidget*>()) {
            if (!control->isVisible() || !(control->inherits("QSlider") || control->inherits("QComboBox")))
                continue;
            window->setFocus();
            const QString before = valueOf(*control);
            turnWheel(*control);
            EXPECT_EQ(valueOf(*control), before) << control->objectName().toStdString();
            EXPECT_FALSE(control->hasFocus()) << control->objectName().toStdString();
            control->setFocus();
            turnWheel(*control);
        }
    }
    auto& popup = findControl<QComboBox>(control_.window(), "waveform0");
    EXPECT_EQ(popup.currentIndex(), 1) << "it had the focus";
    popup.clearFocus();
    control_.window().resize(700, 300);
    QApplication::processEvents();
    turnWheel(popup);
    EXPECT_EQ(popup.currentIndex(), 1);
    EXPECT_GT(findControl<QScrollArea>(control_.window(), "view").verticalScrollBar()->value(), 0);
}

} // namespace
} // namespace sonotrace
