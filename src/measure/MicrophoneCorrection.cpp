#include "measure/MicrophoneCorrection.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace sonotrace {

namespace {

constexpr std::size_t kMostLines = 100'000;
constexpr double kMostDecibels = 200.0;
constexpr std::string_view kBlanks = " \t";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Cuts the text's next line off, whatever system has ended it.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, end);
    const bool isPair = text.substr(end, 2) == "\r\n";
    text.remove_prefix(std::min(end + (isPair ? 2 : 1), text.size()));
    return line;
}

/// Whether the line's commas belong to its numbers, because something else is between the columns: "20,5 1".
bool hasDecimalCommas(std::string_view line) {
    if (line.find_first_of("\t;") != line.npos)
        return true;
    if (line.find(' ') == line.npos || line.find('.') != line.npos)
        return false;
    for (std::size_t i = line.find(','); i != line.npos; i = line.find(',', i + 1)) {
        if (i == 0 || i + 1 == line.size() || !isDigit(line[i - 1]) || !isDigit(line[i + 1]))
            return false;
    }
    return true;
}

/// Nothing when the text is no number; what no double can hold is infinite.
std::optional<double> number(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || end != text.data() + text.size() || error == std::errc::invalid_argument)
        return std::nullopt;
    return error == std::errc::result_out_of_range ? HUGE_VAL : value;
}

/// What a line holds.
struct Line {
    std::optional<double> frequencyHz;
    std::optional<double> responseDb;
    bool isComment = true;
};

Line parse(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
    const bool decimalCommas = hasDecimalCommas(text);
    const std::string_view separators = decimalCommas ? " \t;" : " \t;,";
    Line line;
    for (auto* value : {&line.frequencyHz, &line.responseDb}) {
        const std::string_view written = text.substr(0, text.find_first_of(separators));
        if (value == &line.frequencyHz) // "1.000,5" is a number that we cannot read, "1/3 octaves" is none
            line.isComment = written.empty() ||
                             (written.find_first_not_of("0123456789.,") != written.npos && !number(written));
        std::string word(written);
        if (decimalCommas)
            std::ranges::replace(word, ',', '.');
        *value = number(word);
        text.remove_prefix(written.size());
        text.remove_prefix(std::min(text.find_first_not_of(separators), text.size()));
    }
    return line;
}

std::string_view troubleWith(const Line& line) {
    if (!line.frequencyHz || !line.responseDb)
        return "not a frequency and a level";
    if (!(*line.frequencyHz > 0.0) || !std::isfinite(*line.frequencyHz))
        return "the frequency is not above 0";
    return std::abs(*line.responseDb) <= kMostDecibels ? "" : "the level is beyond 200 dB";
}

} // namespace

MicrophoneCorrection MicrophoneCorrection::read(std::string_view text, std::string& trouble) {
    MicrophoneCorrection correction;
    std::vector<Point>& points = correction.points_;
    trouble = text.size() > kMostBytes ? "the file is too large" : "";
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    for (std::size_t number = 1; trouble.empty() && !text.empty(); ++number) {
        const Line line = parse(takeLine(text));
        const std::string_view wrong = number > kMostLines ? "too many lines"
                                       : line.isComment    ? ""
                                                           : troubleWith(line);
        if (!wrong.empty())
            trouble = "line " + std::to_string(number) + ": " + std::string(wrong);
        else if (!line.isComment)
            points.push_back({*line.frequencyHz, *line.responseDb});
    }
    std::ranges::sort(points, {}, &Point::frequencyHz);
    const auto twice = std::ranges::adjacent_find(points, {}, &Point::frequencyHz);
    if (trouble.empty() && points.empty())
        trouble = "no line holds a frequency and a level";
    else if (trouble.empty() && twice != points.end())
        trouble = "two lines are for the same frequency, about " +
                  std::to_string(std::lround(twice->frequencyHz)) + " Hz";
    return trouble.empty() ? correction : MicrophoneCorrection();
}

double MicrophoneCorrection::correctionDb(double frequencyHz) const {
    const auto above = std::ranges::upper_bound(points_, frequencyHz, {}, &Point::frequencyHz);
    if (above == points_.begin())
        return points_.empty() ? 0.0 : points_.front().responseDb;
    const Point& below = *(above - 1);
    if (above == points_.end())
        return below.responseDb;
    const double from = std::log(below.frequencyHz);
    const double share = (std::log(frequencyHz) - from) / (std::log(above->frequencyHz) - from);
    return below.responseDb + share * (above->responseDb - below.responseDb);
}

} // namespace sonotrace
