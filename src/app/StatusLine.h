#pragma once

#include "platform/AudioQueue.h"

#include <QString>
#include <QWidget>

#include <chrono>

class QLabel;

namespace sonotrace {

/// The generator window's status bar: what plays and where, and under it the running recording and what went
/// wrong last. It grows where the window is too narrow for a text.
class StatusLine : public QWidget {
    Q_OBJECT

public:
    explicit StatusLine(const QString& soundSystem);

    void showOutput(const QueueState& state);

    /// `file` empty: no recording runs.
    void showRecording(const QString& file, double seconds);

    /// Something the user should know; stays until the next notice or clearNotice().
    void showNotice(const QString& text);
    void showNotice(const QString& text, std::chrono::milliseconds duration);
    void clearNotice() { showNotice(QString()); }

private:
    void shareRow();

    const QString soundSystem_;
    QLabel* notice_;
    QLabel* recording_;
    QLabel* output_;
};

} // namespace sonotrace
