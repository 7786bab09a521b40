#include "widgets/Calibrations.h"

#include "support/ToolWindow.h"
#include "widgets/InputSource.h"
#include "widgets/LevelText.h"
#include "widgets/RealSlider.h"

#include <QSignalSpy>

#include <cmath>
#include <limits>

namespace sonotrace {
namespace {

using enum LevelUnit;
using Side = Calibrations::Side;

TEST(LevelText, WritesAndReadsEveryUnit) {
    const double none = -std::numeric_limits<double>::infinity();
    const std::tuple<Calibration, double, QString> written[] = {
        {{}, -23.456, "-23.46 dBFS"}, {{}, none, "−∞ dBFS"},        {{dBSPL, 94}, -0.004, "94.00 dB SPL"},
        {{dBV, 1}, none, "−∞ dBV"},   {{V, 2}, 0, "2.000 V"},       {{V, 9.99996}, 0, "10.00 V"},
        {{V, 1.0}, -60, "1.000 mV"},  {{V, 0.99996}, 0, "1.000 V"}, {{Pa, 1234.5}, 0, "1.234 kPa"},
        {{V, 0.9998}, 0, "999.8 mV"}, {{V, 1}, -180, "0.001 µV"},   {{V, 1}, none, "0.000 V"},
        {{V, -1}, -6, "-6.00 dBFS"}};
    for (const auto& [calibration, level, text] : written)
        EXPECT_EQ(levelText(calibration, level), text);
    EXPECT_EQ(instantaneousText({V, 1}, -0.5), "-707.1 mV");
    EXPECT_EQ(instantaneousText({dBSPL, 94}, 1), "1.418 Pa");
    EXPECT_EQ(instantaneousText({}, -0.5), "-50.00 %");
    EXPECT_EQ(instantaneousText({}, -1e-6), "0.00 %");

    const std::tuple<Calibration, const char*, double> typed[] = {
        {{V, 1}, "0.5 V", -6.0206},   {{V, 1}, "500mV", -6.0206},      {{dBV, 0}, "500 uv", -66.0206},
        {{V, 1}, "-10 dBV", -10},     {{V, 1}, "0 dbu", -2.2185},      {{dBSPL, 94}, "74 dB SPL", -20},
        {{Pa, 1}, "94dBSPL", 0.0206}, {{dBSPL, 94}, "1 mPa", -60.0206}};
    for (const auto& [calibration, text, level] : typed)
        EXPECT_NEAR(levelFromText(calibration, text).value_or(999), level, 1e-4) << text;
    for (const char* text :
         {"1", "1 dB", "50 %", "1 Pa", "-1 V", "1 mdBV", "V", "1 V V", "", "nan V", "1 dB V x"})
        EXPECT_FALSE(levelFromText({V, 1}, text)) << text;
    EXPECT_FALSE(levelFromText({}, "1 V"));
}

/// An input's controls, as every tool has them.
class CalibrationsTest : public WindowTest {
protected:
    QString file(const char* name, const QByteArray& text) {
        QFile file(folder_.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        return file.fileName();
    }

    LoopbackSystem system_{LoopbackSystem::Clock::Manual};
    QComboBox popup_;
    RealSlider slider_;
    StatusRow status_;
    Calibrations calibrations_{preferences_};
    InputSource source_{system_,
                        AudioDeviceTable::Variant::Input,
                        {"Test", nullptr, false, false, false, nullptr},
                        {&popup_, &slider_, &status_},
                        [](std::span<const std::int16_t>) {}};
};

TEST_F(CalibrationsTest, AreKeptForAnyDeviceAndFile) {
    const std::string uids[] = {"a", "b=c\n[x] ", "ä \xFF", std::string("a\0", 2), "a%00"};
    double value = 1;
    for (const std::string& uid : uids) {
        calibrations_.setCalibration(Side::Input, uid, {V, value});
        calibrations_.setCalibration(Side::Output, uid, {dBV, -value});
        calibrations_.setCorrection(uid, file(qPrintable(QString("=%1 ").arg(value)), "20 1\n20000 -2.5"));
        ++value;
    }
    Preferences stored(folder_.filePath("Sonotrace.conf"));
    Calibrations again(stored);
    value = 1;
    for (const std::string& uid : uids) {
        EXPECT_EQ(again.calibration(Side::Input, uid), (Calibration{V, value})) << uid;
        EXPECT_EQ(again.calibration(Side::Output, uid), (Calibration{dBV, -value})) << uid;
        EXPECT_EQ(describeCorrection(again.correction(uid)),
                  QString("=%1 : 2 points, 20 Hz to 20000 Hz").arg(value++));
    }
    EXPECT_EQ(describeCorrection(again.correction("other")), "no correction");
}

TEST_F(CalibrationsTest, ReachTheToolsThatListenToTheDevice) {
    QSignalSpy spy(&source_, &InputSource::calibrationChanged);
    source_.setCalibrations(calibrations_);
    source_.GetSoundDevices();
    source_.SetSoundDevices();
    source_.startSound();
    const std::string uid = source_.devices().uid(*source_.devices().inputDevice(popup_.currentIndex()));
    EXPECT_EQ(spy.count(), 0);
    calibrations_.setCalibration(Side::Output, uid, {V, 3});
    calibrations_.setCalibration(Side::Input, "another", {V, 3});
    EXPECT_EQ(spy.count(), 0);
    calibrations_.setCalibration(Side::Input, uid, {V, 3});
    calibrations_.setCorrection(uid, file("good.txt", "1000 3\n"));
    EXPECT_EQ(spy.count(), 2);
    EXPECT_EQ(source_.calibration(), (Calibration{V, 3}));
    EXPECT_EQ(source_.correction().correctionDb(20), 3);
    const std::pair<QString, QString> bad[] = {
        {file("bad.txt", "1000"), "line 1: not a frequency and a level"},
        {folder_.filePath("none.txt"), "there is no such file"},
        {folder_.path(), "there is no such file"}};
    for (const auto& [path, trouble] : bad) {
        calibrations_.setCorrection(uid, path);
        EXPECT_TRUE(source_.correction().isEmpty());
        source_.showNotice("said beside");
        EXPECT_TRUE(status_.toolTip().contains(QFileInfo(path).fileName() + " is not used: " + trouble));
    }
    calibrations_.setCalibration(Side::Input, uid, {V, -3});
    source_.showNotice("said beside");
    EXPECT_TRUE(status_.toolTip().contains("Not calibrated: full scale must be above 0"));
}

} // namespace
} // namespace sonotrace
