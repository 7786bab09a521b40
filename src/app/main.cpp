#include "app/PictureTour.h"
#include "app/Preferences.h"
#include "app/QuitSignals.h"
#include "app/SoundSystemChoice.h"
#include "app/WindowControl.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTemporaryDir>

#include <cstdio>

namespace {

/// One clear line, as a shell user expects of a wrong argument.
int refuse(const QString& reason) {
    std::fprintf(stderr, "sonotrace: %s (try --help)\n", qUtf8Printable(reason));
    return 2;
}

int runPictureTour(sonotrace::SoundSystem& system, const QString& folder) {
    using namespace sonotrace;
    const QTemporaryDir home;
    Preferences preferences(home.filePath("Sonotrace.conf"));
    PictureTour::prepare(preferences);
    WindowControl control(system, preferences);
    control.awakeFromNib();
    PictureTour tour(control, folder);
    if (!tour.isReady())
        return refuse(QObject::tr("%1 cannot be written").arg(folder));
    tour.begin();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    using namespace sonotrace;
    QApplication application(argc, argv);
    QApplication::setApplicationName("Sonotrace");
    QApplication::setApplicationVersion(SONOTRACE_VERSION);
    QApplication::setDesktopFileName("sonotrace");

    QCommandLineParser arguments;
    arguments.setApplicationDescription(
        "Audio test bench: signal generators, spectrum, waterfall, oscilloscope.");
    arguments.addHelpOption();
    arguments.addVersionOption();
    const QCommandLineOption audio("audio", "Sound system to use: pulse or loopback.", "system");
    arguments.addOption(audio);
    const QCommandLineOption pictures(
        "pictures",
        "Play a tone, write a recording of it and a picture of every window to a "
        "folder, and quit. The user's preferences are left alone.",
        "folder");
    arguments.addOption(pictures);
    arguments.addPositionalArgument("settings", "Settings file to open.", "[settings]");
    if (!arguments.parse(QApplication::arguments()))
        return refuse(arguments.errorText());
    if (arguments.isSet("help"))
        arguments.showHelp();
    if (arguments.isSet("version"))
        arguments.showVersion();
    const auto choice = soundSystemChoice(arguments.value(audio));
    if (!choice)
        return refuse(QObject::tr("there is no sound system \"%1\"").arg(arguments.value(audio)));
    if (arguments.positionalArguments().size() > 1)
        return refuse(QObject::tr("only one settings file can be opened"));

    const QuitSignals quitSignals;
    const std::unique_ptr<SoundSystem> system = openSoundSystem(*choice);
    if (arguments.isSet(pictures))
        return runPictureTour(*system, arguments.value(pictures));
    Preferences preferences;
    WindowControl control(*system, preferences);
    control.awakeFromNib();
    if (!arguments.positionalArguments().isEmpty())
        control.openSettings(arguments.positionalArguments().first());
    return QApplication::exec();
}
