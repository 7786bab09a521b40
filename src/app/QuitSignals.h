#pragma once

#include <QObject>

namespace sonotrace {

/// Turns SIGINT, SIGTERM and SIGHUP into an orderly quit of the application. One instance, made after the
/// application object.
class QuitSignals : public QObject {
    Q_OBJECT

public:
    QuitSignals();
    ~QuitSignals() override;

private:
    int ends_[2] = {-1, -1};
};

} // namespace sonotrace
