#include "app/WindowControl.h"

#include "support/ToolWindow.h"
#include "widgets/NumberField.h"
#include "widgets/RealSlider.h"
#include "widgets/TypedValue.h"

#include <QAction>
#include <QMainWindow>
#include <QMenuBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

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

    /// The first of that name in any window.
    template <typename Control>
    Control& findAnywhere(const QString& name) {
        const auto has = [&name](const QWidget* window) {
            return window->findChild<Control*>(name) != nullptr;
        };
        return findControl<Control>(**std::ranges::find_if(windows_, has), name);
    }

    /// Types over a slider's value, or leaves it when there is nothing to type.
    static void typeValue(RealSlider& slider, const QString& text, Qt::Key end) {
        slider.window()->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(slider.window()));
        slider.setFocus();
        QTest::keyClick(&slider, Qt::Key_F2);
        QTest::keyClicks(slider.window()->focusWidget(), text);
        QTest::keyClick(slider.window()->focusWidget(), end);
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

TEST_F(ControlsTest, AValueIsTypedInThePlaceOfItsLabelAndSentAsAMoveIs) {
    const struct {
        const char* slider;
        const char* typed;
        double value;
        const char* label;
        const char* shown;
        const char* logged;
    } cases[] = {{"volumeLeft3", "-6 dB", std::pow(10.0, -0.3), "readoutLeft3", "50", "volSliderEvent 503\n"},
                 {"volumeRight12", "33.3%", 0.333, "readoutRight12", "33", "volSliderEvent 612\n"},
                 {"amplitudeLeft", "120", 1, "amplitudeLeftReadout", "100.0 %", "doAmplitudeLeft\n"},
                 {"soundInputVolume2", "35 %", 350, "soundInputVolume2Value", "35 %  -9.1 dB", " = 350\n"},
                 {"rangeSlider1", "× 10", -1, "rangeValue1", "× 10.0", ""},
                 {"offsetSlider2", "-7.25 px", -7.25, "offsetValue2", "-7 px", ""},
                 {"triggerSlider1", "1e3 px", 0, "triggerValue1", "0", ""},
                 {"sweepSlider", "441", 5 - std::log10(441.01), "sweepValue", "441 samples, 10.0 ms", ""},
                 {"sweepSlider", "1 ms", 5 - std::log10(44.01), "sweepValue", "44 samples, 1.00 ms", ""}};
    for (const auto& [name, typed, value, label, shown, logged] : cases) {
        auto& slider = findAnywhere<RealSlider>(name);
        testing::internal::CaptureStderr();
        typeValue(slider, typed, Qt::Key_Return);
        EXPECT_TRUE(QString::fromStdString(testing::internal::GetCapturedStderr()).endsWith(logged)) << name;
        EXPECT_DOUBLE_EQ(slider.doubleValue(), value) << name;
        EXPECT_EQ(findAnywhere<QLabel>(label).text(), shown) << name;
        EXPECT_TRUE(slider.hasFocus()) << name;
    }
    auto& slider = findAnywhere<RealSlider>("volumeLeft3");
    typeValue(slider, "12", Qt::Key_Escape);
    typeValue(slider, {}, Qt::Key_Tab);
    EXPECT_EQ(slider.doubleValue(), std::pow(10.0, -0.3)) << "neither given up nor left alone";
    QTest::mouseDClick(&findAnywhere<QLabel>("readoutLeft3"), Qt::LeftButton);
    EXPECT_EQ(slider.window()->focusWidget()->property("text"), "50.1187 %");
    slider.setFocus();
    QTest::keyClick(&slider, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(slider.doubleValue(), 0.502);
    QTest::keyClick(&slider, Qt::Key_PageDown);
    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_EQ(slider.doubleValue(), 0.412);
    QTest::keyClick(&slider, Qt::Key_Delete);
    EXPECT_EQ(slider.doubleValue(), 1);
    QTest::mouseDClick(&findAnywhere<QLabel>("rangeSlider1Label"), Qt::LeftButton);
    EXPECT_EQ(findAnywhere<RealSlider>("rangeSlider1").doubleValue(), 0);
    EXPECT_NEAR(*volumeNotation(1000, 3).read("-9.3 dB"), 700, 0.2) << "as mixers count";
}

TEST_F(ControlsTest, NumbersAreSteppedAndThousandsWrittenOut) {
    auto& field = findAnywhere<NumberField>("startFreq");
    const struct {
        const char* text;
        Qt::Key key;
        Qt::KeyboardModifier modifier;
        const char* then;
    } cases[] = {{"441.5 Hz", Qt::Key_Up, Qt::NoModifier, "450"},
                 {"1000", Qt::Key_Up, Qt::NoModifier, "1100"},
                 {"1000", Qt::Key_Down, Qt::NoModifier, "990"},
                 {"1000", Qt::Key_Down, Qt::ShiftModifier, "900"},
                 {"20", Qt::Key_PageUp, Qt::NoModifier, "30"},
                 {"0.5", Qt::Key_Down, Qt::NoModifier, "0"},
                 {"0", Qt::Key_Down, Qt::NoModifier, "0"},
                 {"1e999", Qt::Key_Up, Qt::NoModifier, "1e999"},
                 {"1.5k", Qt::Key_Up, Qt::NoModifier, "1600"},
                 {" 1.001 kHz", Qt::Key_Return, Qt::NoModifier, "1001"},
                 {"22K", Qt::Key_Tab, Qt::NoModifier, "22000"},
                 {"1 kg", Qt::Key_Return, Qt::NoModifier, "1 kg"},
                 {"abc", Qt::Key_Return, Qt::NoModifier, "abc"}};
    field.window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(field.window()));
    for (const auto& [text, key, modifier, then] : cases) {
        field.setFocus();
        field.setText(text);
        QTest::keyClick(&field, key, modifier);
        EXPECT_EQ(field.text(), then) << text;
    }
    field.setText("1k");
    testing::internal::CaptureStderr();
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "startFreqTextChanged\ndoStartFreq\n");
}

TEST_F(ControlsTest, FieldsSayWhenTheirTextIsNotWhatCounts) {
    auto& field = findAnywhere<NumberField>("frequency0");
    const std::pair<const char*, const char*> cases[] = {
        {"50000", "plays 22000 Hz\n"}, {"440.25 Hz", ""}, {"1k", "plays 1 Hz\n"}, {"abc", "plays 0.1 Hz\n"}};
    const QString usual = field.toolTip();
    for (const auto& [text, note] : cases) {
        field.setText(text);
        control_.HalfSecTimer();
        EXPECT_EQ(field.toolTip(), note + usual) << text;
        EXPECT_EQ(field.accessibleDescription(), note + usual) << text;
        EXPECT_EQ(field.palette().base() == QPalette().base(), *note == 0) << text;
    }
    auto& from = findControl<NumberField>(findAnywhere<QWidget>("numAvgText").window()[0], "startFreqText");
    findAnywhere<QAbstractButton>("logCheckbox").click();
    EXPECT_TRUE(from.toolTip().startsWith("Not used")) << from.toolTip().toStdString();
    findAnywhere<QAbstractButton>("logCheckbox").click();
    EXPECT_EQ(from.palette(), QApplication::palette(&from));
}

TEST_F(ControlsTest, NoMnemonicIsThereTwiceAndTheSameThingHasTheSame) {
    std::map<QString, QKeySequence> ofThings;
    for (const QWidget* window : windows_) {
        std::map<QKeySequence, QString> used;
        const auto use = [&](const QString& text, const QString& name) {
            const QKeySequence key = QKeySequence::mnemonic(text);
            if (!key.isEmpty()) {
                EXPECT_TRUE(used.emplace(key, text).second) << text.toStdString() << used[key].toStdString();
                EXPECT_EQ(ofThings.emplace(name, key).first->second, key) << text.toStdString();
            }
        };
        for (const QLabel* label : window->findChildren<QLabel*>())
            use(label->text(), label->objectName());
        for (const QAbstractButton* button : window->findChildren<QAbstractButton*>())
            use(button->text(), button->objectName());
        if (const auto* bar = window->findChild<QMenuBar*>()) {
            for (const QAction* menu : bar->actions())
                use(menu->text(), menu->text());
        }
    }
}

/// What a large font needs.
class LargeFont {
public:
    LargeFont() {
        QFont font = usual_;
        font.setPointSize(14);
        QApplication::setFont(font);
    }
    ~LargeFont() { QApplication::setFont(usual_); }

private:
    const QFont usual_ = QApplication::font();
};

class LargeControlsTest : public LargeFont, public ControlsTest {};

TEST_F(LargeControlsTest, NothingIsClippedInTheSmallestWindows) {
    for (QWidget* window : windows_) {
        window->resize(window->minimumSizeHint());
        QApplication::processEvents();
        for (const QWidget* part : window->findChildren<QWidget*>()) {
            if (const auto* field = qobject_cast<const NumberField*>(part); field && field->isVisible()) {
                EXPECT_GE(field->width(), field->fontMetrics().horizontalAdvance(field->text()))
                    << field->objectName().toStdString();
            }
            if (!part->isVisible() || !(part->inherits("QLabel") || part->inherits("QAbstractButton")) ||
                part->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored)
                continue;
            const QSize needed = part->sizeHint();
            EXPECT_EQ(part->size().expandedTo(needed), part->size())
                << window->objectName().toStdString() << ' ' << part->objectName().toStdString();
        }
    }
}

} // namespace
} // namespace sonotrace
