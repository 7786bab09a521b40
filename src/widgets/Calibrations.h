#pragma once

#include "measure/Calibration.h"
#include "measure/MicrophoneCorrection.h"

#include <QObject>
#include <QString>

#include <map>
#include <memory>
#include <string>

namespace sonotrace {

class Preferences;

/// What the user has said about the devices, each known by its UID: what full scale is, and of an input the
/// file that corrects its microphone. Kept in the preferences, which are written at once. Window thread.
class Calibrations : public QObject {
    Q_OBJECT

public:
    enum class Side { Input, Output };

    /// `preferences` outlives the calibrations.
    explicit Calibrations(Preferences& preferences) : preferences_(preferences) {}

    Calibration calibration(Side side, const std::string& uid) const;
    void setCalibration(Side side, const std::string& uid, const Calibration& calibration);

    struct Correction {
        QString path; ///< empty: there is none
        std::shared_ptr<const MicrophoneCorrection> curve = std::make_shared<MicrophoneCorrection>();
        QString trouble; ///< why the file is not used; empty when it is
    };

    /// The file is read when it is asked for first, and when it is set.
    const Correction& correction(const std::string& uid);
    void setCorrection(const std::string& uid, const QString& path);

Q_SIGNALS:
    void changed();

private:
    Preferences& preferences_;
    std::map<std::string, Correction> corrections_; ///< that were asked for
};

/// "24 points, 20 Hz to 20000 Hz", or why a correction is not used.
QString describeCorrection(const Calibrations::Correction& correction);

} // namespace sonotrace
