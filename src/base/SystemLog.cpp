#include "base/SystemLog.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace sonotrace {

namespace {

[[gnu::format(printf, 1, 0)]] std::string formatted(const char* format, std::va_list arguments) {
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0)
        return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace

void systemLog(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string line = formatted(format, arguments);
    va_end(arguments);
    if (line.empty() || line.back() != '\n') // some texts carry a line end of their own
        line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void printDiagnostic(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace sonotrace
