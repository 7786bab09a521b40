#include "batch/ResponseText.h"

#include "base/CsvText.h"
#include "base/MeasurementOrigin.h"
#include "batch/Exports.h"
#include "batch/ReadingsJson.h"
#include "widgets/NumberText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <cmath>

namespace sonotrace {

namespace {

std::string number(double value) {
    return QString::number(value).toStdString();
}

} // namespace

std::string responseText(std::span<const ResponsePoint> points) {
    QString text = QString("%1%2%3\n").arg("Frequency", 12).arg("Left", 12).arg("Right", 12);
    for (const ResponsePoint& point : points) {
        text += QString("%1 Hz").arg(point.frequencyHz, 9, 'f', 2);
        for (const auto& gain : point.gainDb)
            text += gain ? QString("%1 dB").arg(textWithDecimals(*gain, 2), 9)
                         : QString("%1").arg("–", 9) + "   ";
        text += "\n";
    }
    return text.toStdString();
}

std::string responseTable(std::span<const ResponsePoint> points, const ResponseConditions& conditions) {
    const ResponseQuestion& question = conditions.question;
    CsvText text;
    text.comments(originLines("frequency response", originOf(conditions.input)));
    text.comments(std::array<Setting, 7>{{{"Output", conditions.output},
                                          {"From", number(question.fromHz) + " Hz"},
                                          {"To", number(question.toHz) + " Hz"},
                                          {"Points", std::to_string(question.points)},
                                          {"Tones at a time", std::to_string(question.tonesAtOnce)},
                                          {"Peak level", number(question.peakDbfs) + " dBFS"},
                                          {"Settle", number(conditions.settleSeconds) + " s"}}});
    text.columns(std::vector<std::string>{"frequency_hz", "left_db", "right_db"});
    for (const ResponsePoint& point : points) {
        text.value(point.frequencyHz, 4);
        for (const auto& gain : point.gainDb)
            text.value(gain.value_or(NAN), 4);
        text.endRow();
    }
    return text.text();
}

std::string responseJson(std::span<const ResponsePoint> points, const ResponseConditions& conditions) {
    QJsonArray list;
    for (const ResponsePoint& point : points)
        list.append(QJsonObject{{"frequencyHz", point.frequencyHz},
                                {"leftDb", jsonOf(point.gainDb[0])},
                                {"rightDb", jsonOf(point.gainDb[1])}});
    const QJsonObject all{{"measurement", "response"},
                          {"output", QString::fromStdString(conditions.output)},
                          {"input", QString::fromStdString(conditions.input)},
                          {"peakDbfs", conditions.question.peakDbfs},
                          {"points", list}};
    return QJsonDocument(all).toJson().toStdString();
}

} // namespace sonotrace
