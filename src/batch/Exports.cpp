#include "batch/Exports.h"

#include "base/MeasurementOrigin.h"
#include "batch/CommandError.h"
#include "batch/CommandLine.h"
#include "widgets/ReportPicture.h"

#include <QDateTime>
#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <set>

namespace sonotrace {

namespace {

constexpr int kLeastSize = 320; // pixels
constexpr int kMostSize = 16384;
constexpr const char* kDash = "-";

QSize sizeOf(const CommandLine& line) {
    const QStringList parts = line.text("size").toLower().split('x');
    const QSize size(parts.value(0).toInt(), parts.value(1).toInt());
    const auto isInRange = [](int pixels) { return pixels >= kLeastSize && pixels <= kMostSize; };
    if (parts.size() != 2 || !isInRange(size.width()) || !isInRange(size.height()))
        throw CommandError("--size takes width and height in pixels from " + std::to_string(kLeastSize) +
                               " to " + std::to_string(kMostSize) + ", such as 1280x720 (try --help)",
                           kWrongArguments);
    return size;
}

std::string_view textOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

} // namespace

void Exports::addOptions(CommandLine& line) {
    line.addOption({"csv"}, "FILE", "Write a table; - is standard output.");
    line.addOption({"png"}, "FILE", "Write the picture with its scales and readings.");
    line.addOption({"pdf"}, "FILE", "The same as a page of A4.");
    line.addOption({"size"}, "WxH", "Pixels of the PNG picture.", "1280x720");
}

Exports::Exports(const CommandLine& line) : size_(sizeOf(line)) {
    std::set<std::string> paths;
    for (const auto& [option, file] :
         {std::pair("csv", &csv_), std::pair("png", &png_), std::pair("pdf", &pdf_)}) {
        if (!line.isSet(option))
            continue;
        file->emplace(line.outputPath(option));
        const std::string& path = (*file)->path();
        if (!paths.insert(path).second)
            throw CommandError("only one of the files can be " +
                                   (path == kDash ? std::string("standard output") : path),
                               kWrongArguments);
        if (file != &csv_ && (*file)->isTerminal())
            throw CommandError("a terminal cannot show a picture: give a file or a pipe", kWrongArguments);
    }
}

bool Exports::takeStandardOutput() const {
    return std::ranges::any_of(std::array{&csv_, &png_, &pdf_},
                               [](const auto* file) { return *file && (*file)->path() == kDash; });
}

void Exports::write(const std::function<std::string()>& table,
                    const std::function<ReportPicture()>& picture) {
    if (csv_)
        csv_->write(table());
    if (hasPicture()) {
        qputenv("QT_QPA_PLATFORM", "offscreen"); // for its fonts; nothing is shown
        // What the toolkit has to say of a desktop that is not there is of no use.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        int argc = 1;
        char name[] = "sonotrace";
        char* argv[] = {name, nullptr};
        const QGuiApplication application(argc, argv);
        const ReportPicture page = picture();
        for (const auto& [file, bytes] :
             {std::pair(&png_, png_ ? page.png(PageSize::ofPixels(size_)) : QByteArray()),
              std::pair(&pdf_, pdf_ ? page.pdf(PageSize::a4()) : QByteArray())}) {
            if (!*file)
                continue;
            if (bytes.isEmpty())
                throw CommandError((*file)->path() + ": there is not enough memory for the picture");
            (*file)->write(textOf(bytes));
        }
    }
    for (auto* file : {&csv_, &png_, &pdf_})
        if (*file)
            (*file)->commit();
}

MeasurementOrigin originOf(const std::string& source) {
    const QDateTime now = QDateTime::currentDateTime();
    return {.program = "Sonotrace " SONOTRACE_VERSION,
            .time = now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate).toStdString(),
            .source = source};
}

} // namespace sonotrace
