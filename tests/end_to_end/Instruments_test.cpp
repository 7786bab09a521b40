#include "app/WindowControl.h"
#include "end_to_end/EndToEnd.h"
#include "support/ToolWindow.h"

#include <QAction>
#include <QImage>
#include <QMainWindow>

#include <gtest/gtest.h>

#include <algorithm>

namespace sonotrace {
namespace {

/// A sine on the left at a quarter of 0 to 22050 Hz, which is the range of both frequency pictures, a square
/// on the right, and every input at full volume.
constexpr const char* kSession =
    "Freq0=5512.5\nVolL0=1\nEnabled0=1\nFreq1=441\nVolR1=0.5\nGenType1=1\nEnabled1=1\nspectrumEndFreq=22050\n"
    "SPECTRUM_fftSizePopup=6\nSPECTRUM_windowPopup=1\nSPECTRUM_soundInputVolume=1000\nwaterfallEndingFreq="
    "22050\n"
    "waterfallGain=1\nwaterfallSpeedup=1\nfftSizeLog2=10\nWATERFALL_fftSizePopup=4\nWATERFALL_windowPopup=1\n"
    "colorWaterfallPlot=1\nWATERFALL_minDB=60\nWATERFALL_maxDB=100\nsoundInputVolume=1000\n"
    "SCOPE_sweepText=3\nSCOPE_soundInputVolume=1000\n";

/// The whole program's windows on a private server, the instruments opened from the menu.
class Instruments : public OnEachServer {
protected:
    Instruments() {
        writePreferences(kSession);
        preferences_ = std::make_unique<Preferences>();
        EXPECT_TRUE(system_.connected(std::chrono::seconds(10)));
        control_ = std::make_unique<WindowControl>(system_, *preferences_);
        control_->awakeFromNib();
        for (const char* item : {"menuSpectrum", "menuWaterfall", "menuWScope"})
            findControl<QAction>(control_->window(), item).trigger();
    }

    static QWidget& window(const char* name) {
        const auto windows = QApplication::topLevelWidgets();
        return **std::ranges::find(windows, QString(name), &QWidget::objectName);
    }

    /// Whether a colour covers the pixel at this part of the plot's width and height, counted from the lower
    /// left.
    static bool shows(const char* name, double x, double y, bool (*isColour)(const QColor&)) {
        QImage image = findControl<QWidget>(window(name), "mainView").grab().toImage();
        if (QString(name) == "SpectrumWindow") // the plot has a margin on both sides
            image = image.copy(50, 0, image.width() - 130, image.height());
        return isColour(image.pixelColor(static_cast<int>(x * image.width()),
                                         static_cast<int>((1.0 - y) * (image.height() - 1))));
    }

    static bool isGreen(const QColor& colour) { return colour.green() > 50 && colour.red() < 50; }
    static bool isRed(const QColor& colour) { return colour.red() > 250 && colour.green() < 50; }
    static bool spectrumHears() {
        bool hears = false;
        for (int column = -3; column <= 3; ++column)
            hears = hears || shows("SpectrumWindow", 0.25 + column * 0.001, 0.7, isGreen);
        return hears;
    }
    static bool waterfallHears() { return shows("WaterfallWindow", 0.99, 0.25, isRed); }
    /// The square's upper level, a quarter of full scale above the lower trace's base line.
    static bool scopeHears() {
        const double level = 0.25 + 0.25 * 8191 / 35000;
        bool hears = false;
        for (int row = -3; row <= 3; ++row)
            hears = hears || shows("ScopeWindow", 0.25, level + row * 0.002, isGreen); // no row is left out
        return hears;
    }

    void listenTo(const char* name, int input) {
        auto& popup = findControl<QComboBox>(window(name), "inputPopup");
        popup.setCurrentIndex(input);
        Q_EMIT popup.activated(input);
    }
    /// All that is said under a picture.
    static QString status(const char* name) {
        return findControl<QLabel>(window(name), "inputStatus").accessibleDescription();
    }

    PulseSoundSystem system_;
    std::unique_ptr<Preferences> preferences_;
    std::unique_ptr<WindowControl> control_;
};

TEST_P(Instruments, HearWhatTheirInputHearsAndMayChangeOrLoseIt) {
    const std::pair<const char*, bool (*)()> tools[] = {
        {"SpectrumWindow", spectrumHears}, {"WaterfallWindow", waterfallHears}, {"ScopeWindow", scopeHears}};
    for (const auto& [name, hears] : tools)
        EXPECT_TRUE(QTest::qWaitFor(hears, 15000)) << name;
    findControl<QSlider>(window("SpectrumWindow"), "soundInputVolume2").setValue(500);
    EXPECT_TRUE(waitFor([this] {
        return server_.pactl("get-source-volume speaker.monitor").find("50%") != std::string::npos;
    }));
    findControl<QSlider>(window("SpectrumWindow"), "soundInputVolume2").setValue(1000);
    for (const auto& [name, hears] : tools) {
        listenTo(name, 1);
        EXPECT_TRUE(
            QTest::qWaitFor([name = name] { return status(name).contains("Monitor of <b>line</b>"); }, 10000))
            << name;
    }
    for (const QWidget* widget : QApplication::allWidgets()) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        EXPECT_FALSE(widget->toolTip().contains("<b>")) << widget->objectName().toStdString();
        EXPECT_FALSE(label && label->text().contains("<b>") && label->textFormat() != Qt::PlainText);
    }
    for (const auto hears : {spectrumHears, waterfallHears}) // the scope holds its last trace
        EXPECT_TRUE(QTest::qWaitFor([hears] { return !hears(); }, 10000));
    server_.pactl("unload-module $(pactl list short modules | grep sink_name=line | cut -f1)");
    for (const auto& [name, hears] : tools) {
        EXPECT_TRUE(QTest::qWaitFor(
            [name = name] {
                return status(name).contains("not on the chosen device") || status(name).contains("gone");
            },
            10000))
            << status(name).toStdString();
    }
    findControl<QAction>(control_->window(), "refreshDevices").trigger();
    for (const auto& [name, hears] : tools)
        EXPECT_TRUE(status(name).startsWith("Monitor of <b>line</b> is gone")) << status(name).toStdString();
    QTest::qWait(2000); // what is away for less than a second may have been moved by the user
    server_.pactl("load-module module-null-sink sink_name=line sink_properties=device.description=Line");
    for (const auto& [name, hears] : tools) {
        const auto back = [name = name] { return status(name).contains("is back and listened to again"); };
        EXPECT_TRUE(QTest::qWaitFor(back, 10000)) << status(name).toStdString();
        EXPECT_EQ(findControl<QComboBox>(window(name), "inputPopup").currentText(), "Monitor of Line");
        listenTo(name, 0);
        EXPECT_TRUE(QTest::qWaitFor(hears, 15000)) << name << " again";
    }
}

INSTANTIATE_TEST_SUITE_P(Servers, Instruments, testing::Values(PrivateServer::Kind::PulseAudio), serverName);

} // namespace
} // namespace sonotrace
