#include "widgets/StoredControls.h"

#include "base/Numbers.h"
#include "widgets/NumberField.h"
#include "widgets/PopUp.h"
#include "widgets/Preferences.h"
#include "widgets/RealSlider.h"

#include <QCheckBox>

namespace sonotrace {

StoredControls::StoredControls(Preferences& preferences, QWidget& window, const char* frameKey)
    : preferences_(preferences), window_(window), frameKey_(frameKey) {}

void StoredControls::add(const char* key, NumberField& field, const Adopt<float>& adopt) {
    rows_.push_back({[=, this, &field] { field.setFloatValue(adopt(preferences_.floatValue(key))); },
                     [=, this, &field] { preferences_.setFloat(key, field.doubleValue()); }});
}

void StoredControls::add(const char* key, RealSlider& slider, const Adopt<float>& adopt) {
    rows_.push_back({[=, this, &slider] { slider.setDoubleValue(adopt(preferences_.floatValue(key))); },
                     [=, this, &slider] { preferences_.setFloat(key, slider.doubleValue()); }});
}

void StoredControls::add(const char* key, QCheckBox& box, const Adopt<std::int32_t>& adopt) {
    addInteger(
        key, [=, &box](std::int32_t stored) { box.setChecked(adopt(stored) != 0); },
        [&box] { return box.isChecked() ? 1 : 0; });
}

void StoredControls::add(const char* key, QComboBox& popup, const Adopt<std::int32_t>& adopt) {
    addInteger(
        key, [=, &popup](std::int32_t stored) { selectItem(popup, adopt(stored)); },
        [&popup] { return popup.currentIndex(); });
}

void StoredControls::addVolume(const char* key, RealSlider& slider) {
    addDouble(
        key, [&slider](double stored) { slider.setDoubleValue(truncateToInt32(stored)); },
        [&slider] { return slider.integerValue(); });
}

void StoredControls::addInteger(const char* key, const std::function<void(std::int32_t)>& restore,
                                const std::function<std::int32_t()>& store) {
    rows_.push_back({[=, this] { restore(preferences_.integerValue(key)); },
                     [=, this] { preferences_.setInteger(key, store()); }});
}

void StoredControls::addDouble(const char* key, const std::function<void(double)>& restore,
                               const std::function<double()>& store) {
    rows_.push_back({[=, this] { restore(preferences_.doubleValue(key)); },
                     [=, this] { preferences_.setDouble(key, store()); }});
}

void StoredControls::restore() const {
    preferences_.restoreFrame(window_, frameKey_);
    for (const Row& row : rows_)
        row.restore();
}

void StoredControls::store() const {
    for (const Row& row : rows_)
        row.store();
    preferences_.setFrame(window_, frameKey_);
    preferences_.synchronise();
}

} // namespace sonotrace
