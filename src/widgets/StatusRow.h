#pragma once

#include <QLabel>

#include <vector>

namespace sonotrace {

/// A sentence for the user. The more urgent kinds come later.
struct Hint {
    enum class Urgency {
        Usual,    ///< what goes on
        Progress, ///< why there is nothing new to see yet
        Warning,  ///< what is seen is not what was meant
        Fault,    ///< nothing can be seen
        News      ///< what the user has just asked for
    };
    Urgency urgency = Urgency::Usual;
    QString text;
    bool operator==(const Hint&) const = default;
};

using Hints = std::vector<Hint>;

/// The row under an instrument's picture. It shows the most urgent hint, elided; all of them are in its tool
/// tip and for a screen reader.
class StatusRow : public QLabel {
    Q_OBJECT

public:
    explicit StatusRow(QWidget* parent = nullptr);

    /// Shows these, the most urgent first; of several as urgent as the first the first, unless they are the
    /// usual ones, which stand side by side.
    void say(Hints hints);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Hints said_;
    Hint::Urgency urgency_ = Hint::Urgency::Usual;
};

} // namespace sonotrace
