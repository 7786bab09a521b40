#include "batch/SpectrumJson.h"

#include <QJsonArray>

#include <cmath>
#include <optional>

namespace sonotrace {

namespace {

QJsonValue value(const std::optional<double>& number) {
    return number && std::isfinite(*number) ? QJsonValue(*number) : QJsonValue(QJsonValue::Null);
}

QJsonValue value(const std::optional<SpectrumTone>& tone) {
    if (!tone)
        return QJsonValue::Null;
    return QJsonObject{{"frequencyHz", tone->frequencyHz}, {"levelDbfs", value(tone->levelDbfs)}};
}

template <typename Tones>
QJsonArray list(const Tones& tones) {
    QJsonArray values;
    for (const auto& tone : tones)
        values.append(value(tone));
    return values;
}

} // namespace

QJsonObject spectrumJson(const SpectrumReadings& readings, const SpectrumQuestion& question) {
    QJsonObject object{{"peak", value(readings.peak)},
                       {"fundamental", value(readings.fundamental)},
                       {"harmonics", list(readings.harmonics)},
                       {"thdDb", value(readings.thdDb)},
                       {"thdNoiseDb", value(readings.thdNoiseDb)},
                       {"thdPlusNoiseDb", value(readings.thdPlusNoiseDb)},
                       {"snrDb", value(readings.snrDb)},
                       {"sinadDb", value(readings.sinadDb)},
                       {"noiseDbfs", value(readings.noiseDbfs)},
                       {"noiseADbfs", value(readings.noiseADbfs)},
                       {"noiseFloorDbfs", value(readings.noiseFloorDbfs)}};
    if (question.mainsHz > 0.0) {
        object["mains"] = list(readings.mains);
        object["humDbfs"] = value(readings.humDbfs);
    }
    return object;
}

} // namespace sonotrace
