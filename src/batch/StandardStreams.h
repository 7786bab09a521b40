#pragma once

#include <string_view>

namespace sonotrace {

/// Writes a result to standard output, all of it before it returns. Throws a CommandError where it cannot be
/// written; without a word where its reader has gone, as other programs end then.
void printOut(std::string_view text);

/// A line on standard error about something that does not end the work.
void warn(std::string_view sentence);

/// End the work because `name` cannot be written or read, for the reason that the system gave.
[[noreturn]] void failToWrite(std::string_view name, int systemError);
[[noreturn]] void failToRead(std::string_view name, int systemError);

} // namespace sonotrace
