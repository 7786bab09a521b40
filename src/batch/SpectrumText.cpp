#include "base/SampleRate.h"
#include "batch/ChannelOption.h"
#include "batch/CommandLine.h"
#include "batch/ReadingsJson.h"
#include "batch/SpectrumMeasurement.h"
#include "spectrum/SpectrumWording.h"
#include "widgets/LevelText.h"
#include "widgets/NumberText.h"

#include <QJsonDocument>

namespace sonotrace {

namespace {

QString textLine(const QString& name, const QString& value) {
    return name.leftJustified(14) + value + "\n";
}

QString clipText(std::uint64_t clips) {
    return clips == 0 ? "not clipped"
                      : QString("clipped in %1 place%2").arg(clips).arg(clips == 1 ? "" : "s");
}

QString levelLine(const ChannelLevel& level) {
    const auto dbfs = [](double value) { return levelText({}, value); };
    return QString("peak %1  RMS %2  %3")
        .arg(dbfs(level.peakDbfs()), dbfs(level.rmsDbfs()), clipText(level.clips));
}

QJsonObject jsonOfLevel(const ChannelLevel& level) {
    return {{"peakDbfs", jsonOf(level.peakDbfs())},
            {"rmsDbfs", jsonOf(level.rmsDbfs())},
            {"clips", static_cast<qint64>(level.clips)}};
}

} // namespace

std::string textOf(const SpectrumMeasurement& measurement) {
    const FileSpectraSettings& settings = measurement.spectra.settings();
    const double seconds = static_cast<double>(measurement.levels.frames()) / kSampleRate;
    QString text = textLine("File", QString::fromStdString(measurement.file.name()).simplified());
    text += textLine("Sound", QString("%1 Hz, %2, %3 s, %4")
                                  .arg(measurement.file.rate())
                                  .arg(measurement.file.channels() == 1 ? "mono" : "stereo",
                                       textWithDecimals(seconds, 3),
                                       QString::fromStdString(measurement.file.format())));
    text += textLine("Left", levelLine(measurement.levels.left()));
    text += textLine("Right", levelLine(measurement.levels.right()));
    text += textLine("Spectrum", QString("%1 points, %2, %3, %4 averaged, the last of %5, at %6 s")
                                     .arg(settings.fftSize)
                                     .arg(kFftWindowTitles[static_cast<std::size_t>(settings.windowType)],
                                          kChannelFoldTitles[static_cast<std::size_t>(settings.fold)])
                                     .arg(settings.blocks)
                                     .arg(measurement.spectra.spectra())
                                     .arg(textWithDecimals(measurement.lastSpectrumAt(), 3)));
    const auto level = [](double levelDbfs) { return levelText({}, levelDbfs); };
    for (const Reading& reading :
         wordedSpectrum(measurement.readings, measurement.question, true, level, measurement.isAveraged))
        text += textLine(reading.name, reading.value);
    return text.toStdString();
}

std::string jsonTextOf(const SpectrumMeasurement& measurement) {
    const FileSpectraSettings& settings = measurement.spectra.settings();
    const QJsonObject sound{{"name", QString::fromStdString(measurement.file.name())},
                            {"format", QString::fromStdString(measurement.file.format())},
                            {"rateHz", measurement.file.rate()},
                            {"channels", measurement.file.channels()},
                            {"frames", static_cast<qint64>(measurement.levels.frames())},
                            {"left", jsonOfLevel(measurement.levels.left())},
                            {"right", jsonOfLevel(measurement.levels.right())}};
    const QJsonObject asked{
        {"fftSize", settings.fftSize},
        {"window", typedChoice(kFftWindowTitles[static_cast<std::size_t>(settings.windowType)])},
        {"average", settings.blocks},
        {"channel", channelName(settings.fold)},
        {"fromHz", measurement.question.fromHz},
        {"toHz", measurement.question.toHz},
        {"fundamentalHz", jsonOf(measurement.question.fundamentalHz)},
        {"mainsHz",
         measurement.question.mainsHz > 0.0 ? QJsonValue(measurement.question.mainsHz) : QJsonValue()},
        {"startSeconds", measurement.file.startSeconds()}};
    const QJsonObject all{{"file", sound},
                          {"settings", asked},
                          {"spectra", static_cast<qint64>(measurement.spectra.spectra())},
                          {"lastSpectrumAtSeconds", measurement.lastSpectrumAt()},
                          {"readings", jsonOf(measurement.readings)}};
    return QJsonDocument(all).toJson().toStdString();
}

} // namespace sonotrace
