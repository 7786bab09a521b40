#include "batch/ReadingsJson.h"

#include <QJsonArray>

#include <cmath>

namespace sonotrace {

namespace {

QJsonValue jsonOfTone(const std::optional<SpectrumTone>& tone) {
    if (!tone)
        return QJsonValue::Null;
    return QJsonObject{{"frequencyHz", jsonOf(tone->frequencyHz)}, {"levelDbfs", jsonOf(tone->levelDbfs)}};
}

template <typename Tones>
QJsonArray jsonOfTones(const Tones& tones) {
    QJsonArray array;
    for (const auto& tone : tones)
        array.append(jsonOfTone(tone));
    return array;
}

} // namespace

QJsonValue jsonOf(const std::optional<double>& number) {
    return number && std::isfinite(*number) ? QJsonValue(*number) : QJsonValue(QJsonValue::Null);
}

QJsonObject jsonOf(const SpectrumReadings& readings) {
    return {{"peak", jsonOfTone(readings.peak)},
            {"fundamental", jsonOfTone(readings.fundamental)},
            {"harmonics", jsonOfTones(readings.harmonics)},
            {"thdDb", jsonOf(readings.thdDb)},
            {"thdNoiseDb", jsonOf(readings.thdNoiseDb)},
            {"thdPlusNoiseDb", jsonOf(readings.thdPlusNoiseDb)},
            {"snrDb", jsonOf(readings.snrDb)},
            {"sinadDb", jsonOf(readings.sinadDb)},
            {"noiseFloorDbfs", jsonOf(readings.noiseFloorDbfs)},
            {"noiseDbfs", jsonOf(readings.noiseDbfs)},
            {"noiseADbfs", jsonOf(readings.noiseADbfs)},
            {"mains", jsonOfTones(readings.mains)},
            {"humDbfs", jsonOf(readings.humDbfs)}};
}

} // namespace sonotrace
