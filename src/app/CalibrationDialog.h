#pragma once

#include "widgets/Calibrations.h"

#include <QDialog>

class QVBoxLayout;

namespace sonotrace {

class AudioDeviceTable;

/// Where the user says what full scale is at each device, and which file corrects an input's microphone. What
/// is entered counts at once. Window thread.
class CalibrationDialog : public QDialog {
    Q_OBJECT

public:
    /// The arguments outlive the dialog.
    CalibrationDialog(Calibrations& calibrations, Preferences& preferences, QWidget* parent);

    /// Shows the devices of `devices`, the generator window's table, in the place of the others.
    void showDevices(const AudioDeviceTable& devices);

    void done(int result) override;

private:
    void addLevels(QVBoxLayout& column, Calibrations::Side side, const QString& number,
                   const std::string& uid);
    void addCorrection(QVBoxLayout& column, const QString& number, const std::string& uid);

    Calibrations& calibrations_;
    Preferences& preferences_;
    QVBoxLayout* groups_;
};

} // namespace sonotrace
