#pragma once

#include <QHash>
#include <QStaticText>

namespace sonotrace {

/// Texts that are painted again and again, laid out once each: that takes longer than to paint them.
class CachedTexts {
public:
    /// The text laid out for painters that use this font. Valid until the next call.
    const QStaticText& laidOut(const QString& text, const QFont& font) {
        if (font != font_ || texts_.size() > kMost)
            texts_.clear();
        font_ = font;
        QStaticText& kept = texts_[text];
        if (kept.text().isEmpty()) {
            kept.setText(text);
            kept.setTextFormat(Qt::PlainText);
            kept.setPerformanceHint(QStaticText::AggressiveCaching);
            kept.prepare(QTransform(), font);
        }
        return kept;
    }

private:
    static constexpr qsizetype kMost = 1000; // a meter has 602 readings

    QFont font_;
    QHash<QString, QStaticText> texts_;
};

} // namespace sonotrace
