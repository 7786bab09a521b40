#pragma once

#include "platform/AudioQueue.h"

#include <QObject>
#include <QString>

class QLabel;
class QStatusBar;

namespace sonotrace {

/// The generator window's status bar: what plays and where, the running recording, and what went wrong last.
class StatusLine : public QObject {
    Q_OBJECT

public:
    StatusLine(QStatusBar& bar, const QString& soundSystem);

    void showOutput(const QueueState& state);

    /// `file` empty: no recording runs.
    void showRecording(const QString& file, double seconds);

    /// Something the user should know; stays until the next notice or clearNotice().
    void showNotice(const QString& text);
    void clearNotice() { showNotice(QString()); }

private:
    const QString soundSystem_;
    QLabel* notice_;
    QLabel* recording_;
    QLabel* output_;
};

} // namespace sonotrace
