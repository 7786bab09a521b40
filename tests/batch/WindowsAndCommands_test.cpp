#include "batch/OutputFile.h"
#include "generator/WavRecorder.h"
#include "scope/ScopeController.h"
#include "spectrum/SpectrumController.h"
#include "support/ToolWindow.h"
#include "widgets/ExportMenu.h"
#include "widgets/ReadingsPanel.h"

#include <QClipboard>
#include <QProcess>

#include <gtest/gtest.h>

#include <vector>

namespace sonotrace {
namespace {

/// A tone and noise that a window and a file hear alike.
template <typename Controller>
class WindowAndCommand : public ListeningWindowTest<Controller> {
protected:
    /// Hears so many buffers of a quarter of a second, and writes what arrived to a file.
    void hearBuffers(int buffers) {
        Tone tone(this->system_);
        tone.bench.set(0, {997, 0, 0.5, 0.3, 0, 1});
        tone.bench.set(1, {1, 0, 0.5, 0.5, 4, 1});
        std::vector<std::int16_t> heard;
        const auto recorder = startQueue(this->system_, &SoundSystem::newInput, kCaptureFramesPerBuffer,
                                         [&](AudioQueue& queue, AudioQueueBuffer& buffer) {
                                             const auto samples = buffer.allSamples();
                                             heard.insert(heard.end(), samples.begin(), samples.end());
                                             queue.enqueueBuffer(buffer);
                                         });
        this->open();
        this->window_->show(); // what is not seen is not read
        this->hear(0.25 * buffers);
        OutputFile file(path("heard.wav"));
        file.write(wavHeader(2, 2, 16, static_cast<std::uint32_t>(2 * heard.size())));
        file.write(std::as_bytes(std::span(heard)));
        file.commit();
    }

    std::string path(const char* name) { return this->folder_.filePath(name).toStdString(); }

    /// The lines of what the window exports, without the comments.
    QStringList exported() {
        this->window_->template findChild<ExportMenu*>()->copyData();
        return rows(QApplication::clipboard()->text());
    }

    static QStringList rows(const QString& table) {
        QStringList lines = table.split('\n');
        lines.removeIf([](const QString& line) { return line.startsWith('#'); });
        return lines;
    }

    /// What the program prints to these arguments.
    QString said(const QStringList& arguments) {
        QProcess program;
        program.setWorkingDirectory(this->folder_.path());
        program.start(SONOTRACE_PROGRAM, arguments);
        EXPECT_TRUE(program.waitForFinished(60000));
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
        return QString::fromUtf8(program.readAllStandardOutput());
    }

    /// All readings of the window stand in what the program has said, too.
    void expectReadingsIn(const QString& text) {
        const auto& panel = this->template find<ReadingsPanel>("readings");
        const auto missing = [&] {
            for (const QString& reading : panel.text().split('\n'))
                if (!text.simplified().contains(reading.simplified()))
                    return reading.simplified();
            return QString();
        };
        // The last of them come with the next painting.
        EXPECT_TRUE(QTest::qWaitFor([&] {
            this->window_->template findChild<ExportMenu*>()->copyPicture();
            return panel.text().contains("Hz") && missing().isEmpty();
        })) << missing().toStdString()
            << "\nnot in\n"
            << text.toStdString();
    }
};

class SpectrumAndCommand : public WindowAndCommand<SpectrumController> {};

TEST_F(SpectrumAndCommand, AgreeToTheBitOnTheSameSamples) {
    preferences_.setFloat("spectrumStartFreq", 100);
    preferences_.setFloat("spectrumEndFreq", 15000);
    preferences_.setInteger("spectrumNumAvg", 2);
    preferences_.setInteger("SPECTRUM_fftSizePopup", 6); // 4096
    preferences_.setInteger("SPECTRUM_windowPopup", 7);
    preferences_.setInteger("SPECTRUM_channelPopup", 2);
    preferences_.setInteger("SPECTRUM_harmonicsCheckbox", 1);
    preferences_.setInteger("SPECTRUM_mainsPopup", 1);
    preferences_.setDouble("SPECTRUM_soundInputVolume", 1000);
    hearBuffers(9);
    const QStringList asked = {"spectrum",  "heard.wav", "--fft-size", "4096",  "--window", "nuttall",
                               "--average", "2",         "--channel",  "right", "--from",   "100",
                               "--to",      "15000",     "--mains",    "50"};
    const QStringList shown = exported();
    const QStringList printed = rows(said(asked + QStringList{"--csv", "-"}));
    ASSERT_EQ(shown.size(), printed.size());
    EXPECT_GT(shown.size(), 1000);
    for (qsizetype i = 0; i + 1 < shown.size(); ++i) // where the mean and the highest of all are added
        ASSERT_TRUE(printed[i].startsWith(shown[i] + ",")) << printed[i].toStdString();
    expectReadingsIn(said(asked));
}

class ScopeAndCommand : public WindowAndCommand<ScopeController> {};

TEST_F(ScopeAndCommand, AgreeToTheBitOnTheSameSamples) {
    preferences_.setDouble("SCOPE_soundInputVolume", 1000);
    hearBuffers(6); // the block of the last two shows the first of them
    const QStringList asked = {"scope", "heard.wav", "--start", "1", "--samples", "10"};
    expectReadingsIn(said(asked));
    const QStringList shown = exported();
    const QStringList printed = rows(said(asked + QStringList{"--csv", "-"}));
    ASSERT_EQ(shown.size(), printed.size());
    ASSERT_GT(shown.size(), 11025);
    for (qsizetype i = 0; i < shown.size(); ++i) // times differ by where the triggers stand
        ASSERT_EQ(shown[i].section(',', 1), printed[i].section(',', 1));
}

} // namespace
} // namespace sonotrace
