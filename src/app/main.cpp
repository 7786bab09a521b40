#include "app/Arguments.h"
#include "app/FirstInstance.h"
#include "app/PictureTour.h"
#include "app/QuitSignals.h"
#include "app/Resources.h"
#include "app/WindowControl.h"
#include "base/SystemLog.h"
#include "batch/Subcommands.h"
#include "widgets/Preferences.h"
#include "widgets/WindowVisibility.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QTemporaryDir>

#include <clocale>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

int runPictureTour(sonotrace::SoundSystem& system, const QString& folder) {
    using namespace sonotrace;
    const QTemporaryDir home;
    Preferences preferences(home.filePath("Sonotrace.conf"));
    PictureTour::prepare(preferences);
    WindowControl control(system, preferences);
    control.awakeFromNib();
    PictureTour tour(control, folder);
    if (!tour.isReady()) {
        std::fprintf(stderr, "sonotrace: %s cannot be written\n", qUtf8Printable(folder));
        return 2;
    }
    tour.begin();
    return QApplication::exec();
}

/// What the program opens first must not become its standard error.
void openMissingStandardFiles() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0)
            open("/dev/null", O_RDWR); // takes the lowest number there is
    }
}

/// The toolkit's own messages must not wait for a reader either.
void logToolkitMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
    sonotrace::systemLog("%s", qUtf8Printable(text));
}

} // namespace

int main(int argc, char** argv) {
    using namespace sonotrace;
    openMissingStandardFiles();
    const QString activationToken = qEnvironmentVariable("XDG_ACTIVATION_TOKEN"); // the toolkit removes it
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // what a crash follows is still to be read
    qInstallMessageHandler(logToolkitMessage);
    QCoreApplication::setApplicationName("Sonotrace");
    QCoreApplication::setApplicationVersion(SONOTRACE_VERSION);
    if (const auto ended = runSubcommand(argc, argv))
        return *ended;
    int status = 0;
    const auto arguments = readArguments(argc, argv, status);
    if (!arguments)
        return status;
    QApplication application(argc, argv);
    // Numbers have a point in every field, text and log line. No thread of ours runs yet.
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe)
    QApplication::setDesktopFileName("sonotrace");
    QApplication::setWindowIcon(QIcon(resourcePath("sonotrace.png")));

    const QuitSignals quitSignals;
    if (!arguments->pictures.isEmpty())
        return runPictureTour(*openSoundSystem(arguments->audio), arguments->pictures);
    FirstInstance instance(Preferences::defaultPath());
    const QString settings =
        arguments->settings.isEmpty() ? QString() : QFileInfo(arguments->settings).absoluteFilePath();
    switch (instance.takeRole({settings, activationToken})) {
    case FirstInstance::Role::Second:
        std::printf("Sonotrace runs already: its window comes to the front\n");
        return 0;
    case FirstInstance::Role::Beside:
        systemLog("Sonotrace runs already and does not answer: this one runs beside it");
        break;
    case FirstInstance::Role::First:
        break;
    }
    const std::unique_ptr<SoundSystem> system = openSoundSystem(arguments->audio);
    WindowVisibility visibility;
    Preferences preferences;
    WindowControl control(*system, preferences);
    control.awakeFromNib();
    const auto open = [&control](const QString& file) {
        if (file.isEmpty())
            return;
        control.openSettings(file);
        control.syncPhases();
    };
    open(arguments->settings);
    QObject::connect(&instance, &FirstInstance::wanted, &control, [&](const FirstInstance::Request& request) {
        if (!request.token.isEmpty()) // the toolkit takes it from there
            qputenv("XDG_ACTIVATION_TOKEN", request.token.toUtf8());
        control.menuGenerators();
        open(request.settings);
    });
    return QApplication::exec();
}
