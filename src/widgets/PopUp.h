#pragma once

#include <QComboBox>

#include <string>
#include <vector>

namespace sonotrace {

/// Selects the item at `index`. An index without an item, as an old preference can hold, changes nothing.
inline void selectItem(QComboBox& popup, int index) {
    if (index >= 0 && index < popup.count())
        popup.setCurrentIndex(index);
}

/// Replaces the items of a pop-up.
inline void setItems(QComboBox& popup, const std::vector<std::string>& titles) {
    popup.clear();
    popup.setPlaceholderText(QString()); // with one, nothing would be selected
    for (const std::string& title : titles)
        popup.addItem(QString::fromStdString(title));
}

} // namespace sonotrace
