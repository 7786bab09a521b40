#include "batch/ScopeJson.h"

#include "batch/ReadingsJson.h"

namespace sonotrace {

namespace {

constexpr double kFullScale = 32768.0;

QJsonObject channelJson(const SignalReadings& read) {
    QJsonObject object{{"maximum", read.maximum / kFullScale}, {"minimum", read.minimum / kFullScale},
                       {"mean", read.mean / kFullScale},       {"rms", read.rms / kFullScale},
                       {"frequencyHz", QJsonValue::Null},      {"periods", QJsonValue::Null},
                       {"dutyPerCent", QJsonValue::Null}};
    if (read.period) {
        object["frequencyHz"] = read.period->frequencyHz;
        object["periods"] = read.period->periods;
        object["dutyPerCent"] = read.period->dutyPerCent;
    }
    return object;
}

} // namespace

QJsonObject scopeJson(const ScopeBlockReadings& readings) {
    QJsonValue delay = QJsonValue::Null;
    if (readings.delay)
        delay = QJsonObject{{"delaySeconds", readings.delay->delaySeconds},
                            {"correlation", readings.delay->correlation},
                            {"ambiguous", readings.delay->ambiguous},
                            {"periodSeconds", jsonOf(readings.delay->periodSeconds)},
                            {"phaseDegrees", jsonOf(readings.delay->phaseDegrees)}};
    return {{"left", channelJson(readings.channels[0])},
            {"right", channelJson(readings.channels[1])},
            {"rightBehindLeft", delay}};
}

} // namespace sonotrace
