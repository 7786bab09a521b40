#pragma once

#include "batch/OutputFile.h"

#include <QSize>

#include <functional>
#include <optional>
#include <string>

namespace sonotrace {

class CommandLine;
class ReportPicture;
struct MeasurementOrigin;

/// The table and the pictures that a subcommand writes beside what it prints. Failures are thrown as
/// CommandErrors, and then none of the files is left behind.
class Exports {
public:
    static void addOptions(CommandLine& line);

    /// Opens the files, so that what cannot be written is known before the work begins.
    explicit Exports(const CommandLine& line);

    bool hasTable() const { return csv_.has_value(); }
    bool hasPicture() const { return png_ || pdf_; }
    /// Whether one of them goes to standard output, which is no place for anything else then.
    bool takeStandardOutput() const;

    /// Asks for what is wanted, writes it, and puts the files in their places.
    void write(const std::function<std::string()>& table, const std::function<ReportPicture()>& picture);

private:
    QSize size_;
    std::optional<OutputFile> csv_;
    std::optional<OutputFile> png_;
    std::optional<OutputFile> pdf_;
};

/// Where a measurement of this file or device, made now, comes from.
MeasurementOrigin originOf(const std::string& source);

} // namespace sonotrace
