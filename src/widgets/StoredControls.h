#pragma once

#include <cstdint>
#include <functional>
#include <vector>

class QCheckBox;
class QComboBox;
class QWidget;

namespace sonotrace {

class NumberField;
class Preferences;
class RealSlider;

/// What a window keeps in the preferences: its frame, and a table of values, each with its key, what is done
/// with the stored value and where the value to store comes from. Window thread.
class StoredControls {
public:
    /// Takes a stored value, 0 where there is none, and says what the control is to show of it.
    template <typename Value>
    using Adopt = std::function<Value(Value)>;

    /// `preferences`, `window` and whatever is added outlive the table.
    StoredControls(Preferences& preferences, QWidget& window, const char* frameKey);

    /// A field or a slider is kept in single precision, a box as 0 or 1, a pop-up as its index.
    void add(const char* key, NumberField& field, const Adopt<float>& adopt = std::identity());
    void add(const char* key, RealSlider& slider, const Adopt<float>& adopt = std::identity());
    void add(const char* key, QCheckBox& box, const Adopt<std::int32_t>& adopt = std::identity());
    void add(const char* key, QComboBox& popup, const Adopt<std::int32_t>& adopt = std::identity());

    /// An input volume is kept as a whole number in double precision.
    void addVolume(const char* key, RealSlider& slider);

    /// Values that are not kept as a control shows them.
    void addInteger(const char* key, const std::function<void(std::int32_t)>& restore,
                    const std::function<std::int32_t()>& store);
    void addDouble(const char* key, const std::function<void(double)>& restore,
                   const std::function<double()>& store);

    void restore() const;
    void store() const;

private:
    struct Row {
        std::function<void()> restore;
        std::function<void()> store;
    };

    Preferences& preferences_;
    QWidget& window_;
    const char* const frameKey_;
    std::vector<Row> rows_;
};

/// For StoredControls::add(): hands the stored value to `parameter` as well, which a control may pin.
template <typename Parameter>
auto alsoInto(Parameter& parameter) {
    return [&parameter](auto stored) {
        parameter = stored;
        return stored;
    };
}

} // namespace sonotrace
