#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace sonotrace {

enum class QuitAnswer { StopRecordingAndQuit, Quit, Cancel };

/// Asks the user what is to become of the recording in file `path`. Cancel as well when the program is told
/// to end meanwhile.
QuitAnswer askHowToQuit(QWidget& window, const QString& path);

/// Closes the window only when `mayClose` says so. The end of the session does not ask.
void guardClosing(QWidget& window, std::function<bool()> mayClose);

} // namespace sonotrace
