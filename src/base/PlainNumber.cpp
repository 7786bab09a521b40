#include "base/PlainNumber.h"

#include <array>
#include <charconv>

namespace sonotrace {

namespace {

constexpr std::size_t kMostDigits = 1100; // of the smallest number, its sign and its point

template <typename... Precision>
std::string written(double number, Precision... precision) {
    std::array<char, kMostDigits> text{};
    const auto [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, precision...);
    return error == std::errc() ? std::string(text.data(), end) : std::string();
}

} // namespace

std::string plainNumber(double number) {
    return written(number);
}

std::string plainNumber(double number, int decimals) {
    return written(number, decimals);
}

} // namespace sonotrace
