#pragma once

#include "app/Preferences.h"
#include "platform/loopback/LoopbackSystem.h"
#include "support/RenderBench.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QSlider>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <stdexcept>

namespace sonotrace {

/// A store of the test's own, filled before the window under test is made.
class StoreTest : public testing::Test {
protected:
    StoreTest() : preferences_(folder_.filePath("Sonotrace.conf")) {}

    template <typename Control>
    static Control& find(const QWidget& window, const QString& name) {
        auto* control = window.findChild<Control*>(name);
        if (!control)
            throw std::runtime_error("no control " + name.toStdString());
        return *control;
    }

    QTemporaryDir folder_;
    Preferences preferences_;
};

/// Plays what a test puts into its bank on a device that a window under test listens to.
class Tone {
public:
    explicit Tone(SoundSystem& system, const std::string& uid = {}) {
        StreamDescription format;
        format.frameCount = kOutputFramesPerBuffer;
        system.newOutput(
            format,
            [this](AudioQueue& queue, AudioQueueBuffer& buffer) {
                bench.output.render(buffer.allSamples());
                queue.enqueueBuffer(buffer);
            },
            {}, queue_);
        queue_->setCurrentDevice(uid);
        for (int i = 0; i < kBuffersPerQueue; ++i) {
            AudioQueueBuffer* buffer = nullptr;
            queue_->allocateBuffer(format.bufferBytes(), buffer);
            buffer->byteSize = format.bufferBytes();
            queue_->enqueueBuffer(*buffer);
        }
        queue_->start();
    }

    RenderBench bench;

private:
    std::unique_ptr<AudioQueue> queue_;
};

/// The window fits a small screen, and every control that does something is reached with the Tab key and says
/// what it does, to screen readers and to the mouse.
inline void expectUsableWindow(const QWidget& window) {
    EXPECT_LE(window.minimumSizeHint().width(), 800);
    EXPECT_LE(window.minimumSizeHint().height(), 560);
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        const bool works = qobject_cast<const QAbstractButton*>(control) ||
                           qobject_cast<const QComboBox*>(control) ||
                           qobject_cast<const QLineEdit*>(control) || qobject_cast<const QSlider*>(control);
        if (!works || control->objectName().startsWith("qt_"))
            continue;
        EXPECT_TRUE(control->focusPolicy() & Qt::TabFocus) << control->objectName().toStdString();
        EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
        EXPECT_FALSE(control->accessibleDescription().isEmpty()) << control->objectName().toStdString();
        EXPECT_FALSE(control->toolTip().isEmpty()) << control->objectName().toStdString();
    }
}

} // namespace sonotrace
