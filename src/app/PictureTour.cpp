#include "app/PictureTour.h"

#include "app/WindowControl.h"
#include "generator/GeneratorBank.h"
#include "widgets/Preferences.h"

#include <QApplication>
#include <QFileInfo>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace sonotrace {

namespace {

constexpr double kFullVolume = 1000.0;
constexpr int kSettling = 3500; // ms until every instrument has something to show

QPalette darkPalette() {
    QPalette palette(QColor(0x3a, 0x3a, 0x3e), QColor(0x36, 0x36, 0x3a));
    palette.setColor(QPalette::Base, QColor(0x24, 0x24, 0x27));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x7e, 0xc9));
    return palette;
}

} // namespace

PictureTour::PictureTour(WindowControl& control, const QString& folder) : control_(control), folder_(folder) {
    folder_.mkpath(".");
}

void PictureTour::prepare(Preferences& preferences) {
    preferences.setFloat("Freq0", 1000.0);
    preferences.setFloat("Freq1", 3000.0);
    preferences.setInteger("GenType1", 1);
    for (int slot = 0; slot < kGeneratorCount; ++slot) {
        preferences.setFloat(QString("VolL%1").arg(slot), 1.0);
        preferences.setFloat(QString("VolR%1").arg(slot), 1.0);
        if (slot > 1)
            preferences.setFloat(QString("Freq%1").arg(slot), 1000.0 + 100.0 * slot);
    }
    preferences.setFloat("VolR0", 0.0);
    preferences.setFloat("VolL1", 0.0);
    preferences.setFloat("VolR1", 0.5);
    preferences.setInteger("Enabled0", 1);
    preferences.setInteger("Enabled1", 1);

    preferences.setFloat("sweepStart", 20.0);
    preferences.setFloat("sweepEnd", 20000.0);
    preferences.setFloat("sweepRate", 9000.0);
    preferences.setFloat("sweepAmplitudeLeft", 0.02);
    preferences.setInteger("sweepLeftEnabled", 1);
    preferences.setInteger("sweepReverse", 1);
    preferences.setInteger("sweepEnabled", 1);

    preferences.setFloat("spectrumEndFreq", 20000.0);
    preferences.setInteger("spectrumGridCheckbox", 1);
    preferences.setInteger("SPECTRUM_fftSizePopup", 8);
    preferences.setInteger("SPECTRUM_windowPopup", 1);
    preferences.setDouble("SPECTRUM_soundInputVolume", kFullVolume);

    preferences.setFloat("waterfallEndingFreq", 20000.0);
    preferences.setFloat("waterfallGain", 1.0);
    preferences.setInteger("waterfallSpeedup", 12);
    preferences.setDouble("WATERFALL_minDB", 55.0);
    preferences.setDouble("WATERFALL_maxDB", 105.0);
    preferences.setInteger("fftSizeLog2", 11);
    preferences.setInteger("WATERFALL_fftSizePopup", 5);
    preferences.setInteger("WATERFALL_windowPopup", 1);
    preferences.setInteger("colorWaterfallPlot", 1);
    preferences.setDouble("soundInputVolume", kFullVolume);

    preferences.setFloat("SCOPE_sweepText", 2.6);
    preferences.setDouble("SCOPE_soundInputVolume", kFullVolume);
}

bool PictureTour::isReady() const {
    return QFileInfo(folder_.path()).isWritable();
}

void PictureTour::begin() {
    QTimer::singleShot(0, this, [this] {
        openWindows();
        QTimer::singleShot(kSettling, this, &PictureTour::finish);
    });
}

void PictureTour::openWindows() {
    const QString recording = folder_.filePath("tone.wav");
    if (!control_.startRecording(recording))
        report(recording, false);
    control_.menuSweep();
    control_.menuSpectrum();
    control_.menuWaterfall();
    control_.menuWScope();
}

void PictureTour::finish() {
    takePictures(QString());
    QApplication::setPalette(darkPalette());
    QCoreApplication::processEvents();
    takePictures("-dark");
    control_.doStopRecordingFileMenu();
    const QString recording = folder_.filePath("tone.wav");
    if (QFileInfo(recording).isFile())
        report(recording, true);
    QCoreApplication::exit(failed_ ? 1 : 0);
}

void PictureTour::takePictures(const QString& suffix) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() || window->objectName().isEmpty())
            continue;
        const QString path = folder_.filePath(window->objectName() + suffix + ".png");
        report(path, window->grab().save(path));
    }
}

void PictureTour::report(const QString& path, bool written) {
    failed_ = failed_ || !written;
    if (written)
        std::printf("%s\n", qUtf8Printable(path));
    else
        std::fprintf(stderr, "sonotrace: %s cannot be written\n", qUtf8Printable(path));
}

} // namespace sonotrace
