#pragma once

#include <QLabel>
#include <QTextDocument>

namespace sonotrace {

/// A text as a tool tip takes it that may hold names of devices and files, which are no markup.
inline QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

/// Shows such a text, and all of it as a tool tip where the label cuts it.
inline void showPlainly(QLabel& label, const QString& text) {
    label.setTextFormat(Qt::PlainText);
    label.setText(text);
    label.setToolTip(plainToolTip(text));
}

} // namespace sonotrace
