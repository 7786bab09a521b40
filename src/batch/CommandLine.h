#pragma once

#include <QCommandLineParser>

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace sonotrace {

/// The arguments of a subcommand. What is wrong with them is thrown as a CommandError with the status for
/// wrong arguments.
class CommandLine {
public:
    explicit CommandLine(const QString& description);

    /// "--name" or "-n", without a value.
    void addFlag(const QStringList& names, const QString& description);
    /// "--name VALUE"; the help says the default unless it is empty.
    void addOption(const QStringList& names, const QString& value, const QString& description,
                   const QString& standard = {});
    /// An argument without a name, in the order of the calls.
    void addArgument(const QString& name, const QString& description, bool isOptional = false);

    /// Reads what follows the program's name, the subcommand's first. False when it was asked for help, which
    /// is printed.
    bool parse(int argc, char** argv);

    bool isSet(const QString& option) const { return parser_.isSet(option); }
    QString text(const QString& option) const { return parser_.value(option); }
    /// As the system calls want the name of a file.
    std::string path(const QString& option) const;

    /// The same of a file that is to be written, which may not be the one that is read, argument 0.
    std::string outputPath(const QString& option) const;

    /// Finite, from `least` to `most`; also "22k".
    double number(const QString& option, double least, double most) const;
    /// Nothing where the option is not there.
    std::optional<double> numberIfSet(const QString& option, double least, double most) const;
    int integer(const QString& option, int least, int most) const;
    /// The values of --from and --to, in Hz, the one below the other.
    std::pair<double, double> band(double least, double most) const;
    /// Which of the words it is. Capital letters and what stands between letters do not count: "flat-top".
    std::size_t choice(const QString& option, std::span<const char* const> words) const;

    /// Arguments without a name; those that are optional and missing are empty.
    QString argument(std::size_t index) const {
        return parser_.positionalArguments().value(static_cast<qsizetype>(index));
    }
    std::string argumentPath(std::size_t index) const;

private:
    void checkArguments() const;

    struct Argument {
        QString name;
        bool isOptional;
    };

    QCommandLineParser parser_;
    std::vector<Argument> arguments_;
};

/// "rectangular, hann or flat-top": what can be given for words as they stand in a menu.
QString listedChoices(std::span<const char* const> words);

/// The word as it is typed: "Flat top" is "flat-top".
QString typedChoice(const QString& word);

} // namespace sonotrace
