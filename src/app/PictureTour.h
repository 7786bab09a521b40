#pragma once

#include <QDir>
#include <QObject>
#include <QString>

namespace sonotrace {

class Preferences;
class WindowControl;

/// Shows that the program works where nobody can look at it: plays a tone, records it, opens every window and
/// writes the recording and pictures of all windows, in light and dark colours, to a folder. The manual's
/// pictures come from here too.
class PictureTour : public QObject {
    Q_OBJECT

public:
    /// Makes the folder. `isReady()` tells whether it can be written.
    PictureTour(WindowControl& control, const QString& folder);

    /// Settings under which every window has something to show; for a store of the tour's own.
    static void prepare(Preferences& preferences);

    bool isReady() const;

    /// Runs the tour on the event loop and quits the application at its end.
    void begin();

private:
    void openWindows();
    void finish();
    void takePictures(const QString& suffix);
    void report(const QString& path, bool written);

    WindowControl& control_;
    const QDir folder_;
    bool failed_ = false; ///< something could not be written: the exit status says so
};

} // namespace sonotrace
