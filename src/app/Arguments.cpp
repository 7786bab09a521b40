#include "app/Arguments.h"

#include "batch/Subcommands.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

namespace sonotrace {

namespace {

constexpr int kWrongArgument = 2;

/// Options that the toolkit takes for itself; all but the last have a value.
const QStringList& toolkitOptions() {
    static const QStringList names = {
        "platform", "platformpluginpath", "platformtheme", "plugin", "style", "stylesheet",
        "display",  "geometry",           "session",       "reverse"};
    return names;
}

/// One clear line, as a shell user expects of a wrong argument.
int refuse(const QString& reason) {
    std::fprintf(stderr, "sonotrace: %s (try --help)\n", qUtf8Printable(reason));
    return kWrongArgument;
}

bool hasDisplay(const QCommandLineParser& parser) {
    return parser.isSet("platform") || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace

std::optional<Arguments> readArguments(int argc, char** argv, int& status) {
    const QCoreApplication shell(argc, argv);
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.setApplicationDescription(
        "Audio test bench: signal generators, spectrum, waterfall, oscilloscope.\n\n"
        "Subcommands, which need no display and have each a --help of its own:\n" +
        QString::fromStdString(listSubcommands()).trimmed().prepend("  "));
    parser.addOption({{"h", "help"}, "Say what the options are, and quit."});
    parser.addOption({{"v", "version"}, "Say which version this is, and quit."});
    parser.addOption({"audio", "Sound system to use: pulse or loopback.", "system"});
    parser.addOption({"pictures",
                      "Play a tone, write a recording of it and a picture of every window to a folder, and "
                      "quit. The user's preferences are left alone.",
                      "folder"});
    for (const QString& name : toolkitOptions()) {
        QCommandLineOption option(name);
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        if (name != toolkitOptions().last())
            option.setValueName("value");
        parser.addOption(option);
    }
    parser.addPositionalArgument("settings", "Settings file to open.", "[settings]");

    const bool parsed = parser.parse(QCoreApplication::arguments());
    const auto choice = soundSystemChoice(parser.value("audio").toStdString());
    const QStringList files = parser.positionalArguments();
    status = 0;
    if (!parsed)
        status = refuse(parser.errorText());
    else if (parser.isSet("help"))
        std::printf("%s", qUtf8Printable(parser.helpText()));
    else if (parser.isSet("version"))
        std::printf("Sonotrace %s\n", qUtf8Printable(QCoreApplication::applicationVersion()));
    else if (!choice)
        status = refuse(QString("there is no sound system \"%1\"").arg(parser.value("audio")));
    else if (files.size() > 1)
        status = refuse("only one settings file can be opened");
    else if (!files.isEmpty() && !QFileInfo(files.first()).isFile())
        status = refuse(QString("there is no settings file \"%1\"").arg(files.first()));
    else if (parser.isSet("pictures") && parser.value("pictures").isEmpty())
        status = refuse("the pictures need a folder");
    else if (!hasDisplay(parser)) {
        std::fprintf(stderr, "sonotrace: there is no display\n");
        status = 1;
    } else
        return Arguments{*choice, parser.value("pictures"), files.value(0)};
    return std::nullopt;
}

} // namespace sonotrace
