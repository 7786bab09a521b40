#pragma once

#include <QLabel>
#include <QTextDocument>

namespace sonotrace {

/// Shows a text, and all of it as a tool tip where the label cuts it. It may hold names of devices and files:
/// neither takes them for markup.
inline void showPlainly(QLabel& label, const QString& text) {
    label.setTextFormat(Qt::PlainText);
    label.setText(text);
    label.setToolTip(Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text);
}

} // namespace sonotrace
