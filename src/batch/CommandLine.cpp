#include "batch/CommandLine.h"

#include "batch/CommandError.h"
#include "batch/StandardStreams.h"
#include "widgets/NumberText.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>

namespace sonotrace {

namespace {

[[noreturn]] void refuse(const QString& reason) {
    throw CommandError((reason + " (try --help)").toStdString(), kWrongArguments);
}

std::optional<double> numberOf(const QString& text) {
    bool isNumber = false;
    const double number = QLocale::c().toDouble(text, &isNumber);
    return isNumber ? std::optional(number) : thousandsFromText(text);
}

QString shortText(double number) {
    return textFromNumber(number);
}

constexpr char16_t kRawByte = 0xDC00; // lone halves of surrogate pairs, which no text has

/// Names of files are bytes. Those that are no text become characters of which each is a byte.
QString wordOf(const char* bytes) {
    QString word = QString::fromUtf8(bytes);
    if (word.toUtf8() == bytes)
        return word;
    word.clear();
    for (; *bytes != '\0'; ++bytes) {
        const auto byte = static_cast<unsigned char>(*bytes);
        word += QChar(byte < 0x80 ? char16_t{byte} : static_cast<char16_t>(kRawByte + byte));
    }
    return word;
}

std::string bytesOf(const QString& word) {
    const auto isRaw = [](QChar c) {
        return c.unicode() >= kRawByte + 0x80 && c.unicode() <= kRawByte + 0xFF;
    };
    std::string bytes;
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (isRaw(word[i]) && (i == 0 || !word[i - 1].isHighSurrogate()))
            bytes += static_cast<char>(word[i].unicode() - kRawByte);
        else
            bytes +=
                word[i].isHighSurrogate() ? word.mid(i++, 2).toStdString() : word.mid(i, 1).toStdString();
    }
    return bytes;
}

} // namespace

CommandLine::CommandLine(const QString& description) {
    parser_.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser_.setApplicationDescription(description);
    parser_.addOption({{"h", "help"}, "Say what the options are, and quit."});
}

void CommandLine::addFlag(const QStringList& names, const QString& description) {
    parser_.addOption({names, description});
}

void CommandLine::addOption(const QStringList& names, const QString& value, const QString& description,
                            const QString& standard) {
    const QString said =
        standard.isEmpty() ? description : description + QString(" Default: %1.").arg(standard);
    parser_.addOption({names, said, value, standard});
}

void CommandLine::addArgument(const QString& name, const QString& description, bool isOptional) {
    parser_.addPositionalArgument(name, description, isOptional ? "[" + name + "]" : name);
    arguments_.push_back({name, isOptional});
}

bool CommandLine::parse(int argc, char** argv) {
    // The name under which the help speaks of it.
    std::string name = "sonotrace";
    if (argc > 1)
        name += std::string(" ") + argv[1];
    QStringList words{QString::fromStdString(name)};
    for (int i = 2; i < argc; ++i)
        words.append(wordOf(argv[i]));
    char* shellWords[] = {name.data(), nullptr};
    int count = 1;
    std::optional<QCoreApplication> shell; // only the help needs it
    if (!QCoreApplication::instance())
        shell.emplace(count, shellWords);
    const bool isParsed = parser_.parse(words);
    if (parser_.isSet("help")) {
        printOut(parser_.helpText().toStdString());
        return false;
    }
    if (!isParsed)
        refuse(parser_.errorText());
    checkArguments();
    return true;
}

void CommandLine::checkArguments() const {
    const QStringList given = parser_.positionalArguments();
    if (given.size() > static_cast<qsizetype>(arguments_.size()))
        refuse(
            QString("\"%1\" is one argument too many").arg(given[static_cast<qsizetype>(arguments_.size())]));
    for (std::size_t i = static_cast<std::size_t>(given.size()); i < arguments_.size(); ++i)
        if (!arguments_[i].isOptional)
            refuse(QString("%1 is missing").arg(arguments_[i].name));
}

double CommandLine::number(const QString& option, double least, double most) const {
    const auto number = numberOf(text(option));
    if (!number || !(*number >= least && *number <= most))
        refuse(QString("--%1 takes a number from %2 to %3, not \"%4\"")
                   .arg(option, shortText(least), shortText(most), text(option)));
    return *number;
}

std::optional<double> CommandLine::numberIfSet(const QString& option, double least, double most) const {
    return isSet(option) ? std::optional(number(option, least, most)) : std::nullopt;
}

int CommandLine::integer(const QString& option, int least, int most) const {
    const double value = number(option, least, most);
    if (value != std::floor(value))
        refuse(QString("--%1 takes a whole number, not \"%2\"").arg(option, text(option)));
    return static_cast<int>(value);
}

std::pair<double, double> CommandLine::band(double least, double most) const {
    const double from = number("from", least, most);
    const double to = number("to", least, most);
    if (!(from < to))
        refuse("--from has to be below --to");
    return {from, to};
}

std::size_t CommandLine::choice(const QString& option, std::span<const char* const> words) const {
    const QString typed = typedChoice(text(option));
    const auto found =
        std::ranges::find_if(words, [&](const char* word) { return typedChoice(word) == typed; });
    if (found == words.end())
        refuse(QString("--%1 is %2, not \"%3\"").arg(option, listedChoices(words), text(option)));
    return static_cast<std::size_t>(found - words.begin());
}

std::string CommandLine::path(const QString& option) const {
    return bytesOf(text(option));
}

std::string CommandLine::argumentPath(std::size_t index) const {
    return bytesOf(argument(index));
}

std::string CommandLine::outputPath(const QString& option) const {
    std::string output = path(option);
    std::error_code unknown;
    if (std::filesystem::is_regular_file(output, unknown) &&
        std::filesystem::equivalent(argumentPath(0), output, unknown))
        throw CommandError(output + " is the file that is read", kWrongArguments);
    return output;
}

QString typedChoice(const QString& word) {
    return word.toLower().replace(u' ', u'-').replace(u'_', u'-');
}

QString listedChoices(std::span<const char* const> words) {
    QString list;
    for (std::size_t i = 0; i < words.size(); ++i)
        list += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + typedChoice(words[i]);
    return list;
}

} // namespace sonotrace
