#pragma once

#include "platform/loopback/LoopbackSystem.h"
#include "support/RenderBench.h"
#include "support/Streams.h"
#include "widgets/Preferences.h"
#include "widgets/QtRunLoop.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace sonotrace {

/// The control of that name and kind, which a window must have.
template <typename Control>
Control& findControl(const QWidget& window, const QString& name) {
    auto* control = window.findChild<Control*>(name);
    if (!control)
        throw std::runtime_error("no control " + name.toStdString());
    return *control;
}

/// Writes the file of preferences that a program finds when it starts.
inline void writePreferences(const QByteArray& lines) {
    const std::filesystem::path path = Preferences::defaultPath().toStdString();
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << "[General]\n" << lines.toStdString();
}

/// Plays what a test puts into its bank on a device that a window under test listens to.
struct Tone {
    explicit Tone(SoundSystem& system) {
        const auto fill = [this](AudioQueue& self, AudioQueueBuffer& buffer) {
            bench.output.render(buffer.allSamples());
            self.enqueueBuffer(buffer);
        };
        queue = startQueue(system, &SoundSystem::newOutput, kOutputFramesPerBuffer, fill);
    }

    RenderBench bench;
    std::unique_ptr<AudioQueue> queue;
};

/// The window fits a small screen, and every control that does something is reached with the Tab key and says
/// what it does, to screen readers and to the mouse.
inline void expectUsableWindow(const QWidget& window) {
    EXPECT_EQ(window.minimumSizeHint().boundedTo({800, 560}), window.minimumSizeHint());
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        const auto is = [control](const char* kind) { return control->inherits(kind); };
        if (control->objectName().startsWith("qt_") ||
            !(is("QAbstractButton") || is("QComboBox") || is("QLineEdit") || is("QSlider")))
            continue;
        EXPECT_TRUE(control->focusPolicy() & Qt::TabFocus) << control->objectName().toStdString();
        for (const QString& said :
             {control->accessibleName(), control->accessibleDescription(), control->toolTip()})
            EXPECT_FALSE(said.isEmpty()) << control->objectName().toStdString();
    }
}

/// Answers the next file panel: chooses `path`, or cancels when it is empty. To be called before the panel
/// opens. `offered` is what it would choose by itself.
inline void answerFilePanel(const QString& path, QString* title = nullptr, QString* offered = nullptr) {
    auto* timer = new QTimer(qApp);
    timer->callOnTimeout([timer, path, title, offered] {
        auto* panel = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!panel)
            return;
        timer->deleteLater();
        if (title)
            *title = panel->windowTitle();
        if (offered)
            *offered = panel->selectedFiles().value(0);
        // As typed: selectFile() does nothing while the name's field has the focus.
        panel->findChild<QLineEdit*>("fileNameEdit")->setText(path);
        path.isEmpty() ? panel->reject() : static_cast<QDialog*>(panel)->accept();
    });
    timer->start(20);
}

/// Whether a view, as it is now, is on a page of the size of the screen, pixel by pixel.
inline bool showsView(const QImage& page, QWidget& view) {
    const QImage face = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QImage picture = page.convertToFormat(QImage::Format_RGB32);
    for (int x = 0; x + face.width() <= picture.width(); ++x)
        for (int y = 0; y + face.height() <= picture.height(); ++y)
            if (picture.pixel(x, y) == qRgb(0, 0, 0) &&
                picture.copy(QRect(QPoint(x, y), face.size())) == face)
                return true;
    return false;
}

/// A test of a window, which finds its controls by their names and may have a store of its own.
class WindowTest : public testing::Test {
protected:
    template <typename Control>
    Control& find(const QString& name) {
        return findControl<Control>(*window_, name);
    }

    void type(const QString& field, const QString& text) { find<QLineEdit>(field).setText(text); }
    void click(const QString& button) { find<QAbstractButton>(button).click(); }
    void trigger(const QString& action) { window_->findChild<QAction*>(action)->trigger(); }
    QString text(const QString& label) { return find<QLabel>(label).text(); }

    /// Chooses from a pop-up as a user does.
    void choose(const QString& popup, int index) {
        auto& box = find<QComboBox>(popup);
        box.setCurrentIndex(index);
        Q_EMIT box.activated(index);
    }

    QTemporaryDir folder_;
    Preferences preferences_{folder_.filePath("Sonotrace.conf")};
    QWidget* window_ = nullptr;
};

/// A window that listens to a loopback whose time the test moves.
template <typename Controller>
class ListeningWindowTest : public WindowTest {
protected:
    void open() {
        if constexpr (std::is_constructible_v<Controller, SoundSystem&, Preferences&>)
            controller_ = std::make_unique<Controller>(system_, preferences_);
        else
            controller_ = std::make_unique<Controller>(system_, runLoop_, preferences_);
        controller_->awakeFromNib();
        window_ = &controller_->window();
    }

    QString status() { return text("inputStatus"); }

    /// Lets time pass, in steps shorter than what a stream holds in store.
    void hear(double seconds) {
        for (double heard = 0; heard < seconds; heard += 0.25) {
            system_.advance(11025);
            QTest::qWait(1);
        }
    }

    LoopbackSystem system_{LoopbackSystem::Clock::Manual};
    QtRunLoop runLoop_;
    std::unique_ptr<Controller> controller_;
};

/// Stores what makes a waterfall listen with full volume to 0 to 22050 Hz in lines of 1024 samples, 43 a
/// second.
inline void storePlainWaterfall(Preferences& preferences) {
    const std::pair<const char*, double> stored[] = {
        {"waterfallEndingFreq", 22050}, {"waterfallGain", 1},
        {"waterfallSpeedup", 1},        {"fftSizeLog2", 10},
        {"WATERFALL_fftSizePopup", 4},  {"WATERFALL_windowPopup", 1},
        {"colorWaterfallPlot", 1},      {"soundInputVolume", 1000},
        {"WATERFALL_minDB", 60},        {"WATERFALL_maxDB", 100}};
    for (const auto& [key, value] : stored)
        preferences.setDouble(key, value);
}

} // namespace sonotrace
