#include "widgets/LevelText.h"

#include "widgets/NumberText.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sonotrace {

namespace {

struct Prefix {
    const char* name;
    double factor;
};

constexpr std::array<Prefix, 4> kPrefixes = {{{"k", 1e3}, {"", 1.0}, {"m", 1e-3}, {"µ", 1e-6}}};
constexpr double kDigits = 1e4; // of a number, as an upper limit

QString unitText(LevelUnit unit) {
    const std::string_view name = unitName(unit);
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}

/// Four digits, with the prefix that leaves one to three of them before the point.
QString withPrefix(double value, LevelUnit unit) {
    const double magnitude = std::abs(value);
    const auto fits = [magnitude](const Prefix& prefix) { return magnitude >= 0.9999499 * prefix.factor; };
    const auto found = magnitude == 0.0 ? &kPrefixes[1] : std::ranges::find_if(kPrefixes, fits);
    const Prefix& prefix = found == kPrefixes.end() ? kPrefixes.back() : *found;
    const double shown = value / prefix.factor;
    int decimals = 3;
    for (double limit = 10.0; limit < kDigits && std::abs(shown) >= limit - 0.5 * limit / kDigits;
         limit *= 10.0)
        --decimals;
    return QString("%1 %2%3").arg(textWithDecimals(shown, std::max(decimals, 0)), prefix.name,
                                  unitText(unit));
}

QString decibels(double level, const QString& unit) {
    return QString("%1 %2").arg(std::isinf(level) ? (level < 0.0 ? "−∞" : "∞") : textWithDecimals(level, 2),
                                unit);
}

} // namespace

QString levelText(const Calibration& calibration, double levelDbfs) {
    const auto value = levelInUnit(calibration, levelDbfs);
    if (!value)
        return decibels(levelDbfs, "dBFS");
    if (isLogarithmic(calibration.unit))
        return decibels(*value, unitText(calibration.unit));
    return withPrefix(*value, calibration.unit);
}

QString instantaneousText(const Calibration& calibration, double part) {
    const auto value = instantaneousValue(calibration, part);
    return value ? withPrefix(*value, linearUnit(calibration.unit))
                 : textWithDecimals(part * 100.0, 2) + " %";
}

std::optional<double> levelFromText(const Calibration& calibration, const QString& text) {
    const auto typed = numberAndUnit(text);
    if (!typed)
        return std::nullopt;
    QString name = typed->unit;
    name.remove(u' ');
    if (name.startsWith(u'u')) // on keyboards without the Greek letter
        name[0] = u'µ';
    for (const LevelUnit unit : kLevelUnits) {
        QString known = unitText(unit).toLower();
        known.remove(u' ');
        if (known.isEmpty())
            continue;
        if (name == known)
            return levelDbfs(calibration, typed->number, unit);
        for (const Prefix& prefix : kPrefixes) {
            if (!isLogarithmic(unit) && name == prefix.name + known)
                return levelDbfs(calibration, typed->number * prefix.factor, unit);
        }
    }
    return std::nullopt;
}

} // namespace sonotrace
