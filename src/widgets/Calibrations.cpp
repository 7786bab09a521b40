#include "widgets/Calibrations.h"

#include "widgets/Preferences.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

namespace sonotrace {

namespace {

/// A UID may hold what ends a line or a key.
QString key(const char* what, const std::string& uid) {
    return QString("CALIBRATION_%1_%2")
        .arg(what, QString::fromLatin1(QByteArray::fromStdString(uid).toPercentEncoding()));
}

QString unitKey(Calibrations::Side side, const std::string& uid) {
    return key(side == Calibrations::Side::Input ? "inputUnit" : "outputUnit", uid);
}

QString fullScaleKey(Calibrations::Side side, const std::string& uid) {
    return key(side == Calibrations::Side::Input ? "inputFullScale" : "outputFullScale", uid);
}

QString correctionKey(const std::string& uid) {
    return key("inputCorrection", uid);
}

Calibrations::Correction readCorrection(const QString& path) {
    Calibrations::Correction correction;
    correction.path = path;
    QFile file(path);
    if (path.isEmpty())
        return correction;
    if (!QFileInfo(path).isFile()) { // opening a pipe would wait for its writer
        correction.trouble = "there is no such file";
    } else if (!file.open(QIODevice::ReadOnly)) {
        correction.trouble = file.errorString();
    } else {
        std::string trouble;
        const std::string text = file.read(MicrophoneCorrection::kMostBytes + 1).toStdString();
        correction.curve = std::make_shared<MicrophoneCorrection>(MicrophoneCorrection::read(text, trouble));
        correction.trouble = QString::fromStdString(trouble);
    }
    return correction;
}

} // namespace

Calibration Calibrations::calibration(Side side, const std::string& uid) const {
    return {static_cast<LevelUnit>(preferences_.integerValue(unitKey(side, uid))),
            preferences_.doubleValue(fullScaleKey(side, uid))};
}

void Calibrations::setCalibration(Side side, const std::string& uid, const Calibration& calibration) {
    if (calibration == this->calibration(side, uid))
        return;
    preferences_.setInteger(unitKey(side, uid), static_cast<std::int32_t>(calibration.unit));
    preferences_.setDouble(fullScaleKey(side, uid), calibration.fullScale);
    preferences_.synchronise();
    Q_EMIT changed();
}

const Calibrations::Correction& Calibrations::correction(const std::string& uid) {
    const auto known = corrections_.find(uid);
    if (known != corrections_.end())
        return known->second;
    return corrections_[uid] = readCorrection(preferences_.path(correctionKey(uid)));
}

void Calibrations::setCorrection(const std::string& uid, const QString& path) {
    corrections_[uid] = readCorrection(path);
    preferences_.setPath(correctionKey(uid), path);
    preferences_.synchronise();
    Q_EMIT changed();
}

QString describeCorrection(const Calibrations::Correction& correction) {
    const auto& points = correction.curve->points();
    if (correction.path.isEmpty())
        return "no correction";
    const QString name = QFileInfo(correction.path).fileName();
    if (points.empty())
        return QString("%1 is not used: %2").arg(name, correction.trouble);
    return QString("%1: %2 points, %3 Hz to %4 Hz")
        .arg(name)
        .arg(points.size())
        .arg(points.front().frequencyHz)
        .arg(points.back().frequencyHz);
}

} // namespace sonotrace
