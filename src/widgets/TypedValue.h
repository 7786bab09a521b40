#pragma once

#include <QString>

#include <functional>
#include <optional>

class QLabel;

namespace sonotrace {

class RealSlider;

/// How a slider's value is written for the user to edit, and what is typed then is read. Nothing is read from
/// what makes no sense.
struct ValueNotation {
    std::function<QString(double value)> write;
    std::function<std::optional<double>(const QString& text)> read;
    /// What a tool tip says of the value beside; may be missing, and may have nothing to say.
    std::function<QString(double value)> describe = {};
};

/// The value itself, in `unit`, which may be left out.
ValueNotation plainNotation(const QString& unit = {});

/// A volume, of which `full` is 100 %, in per cent or decibels. The amplitude is the volume to the power of
/// `exponent`.
ValueNotation volumeNotation(double full = 1.0, double exponent = 1.0);

/// Lets the user type a slider's value: a double click on the label that shows it, or F2 on the slider, opens
/// a field in the label's place. Enter, or leaving the field, enters the value; Escape does not.
void letType(RealSlider& slider, QLabel& label, const ValueNotation& notation);

/// Keeps the per cent and decibels of an input volume, whose slider is in thousandths, and lets the user type
/// it.
void showInputVolume(RealSlider& slider, QLabel& label, double exponent);

} // namespace sonotrace
