#pragma once

#include <cstdint>

namespace sonotrace {

/// Writes one line to the system log (standard error): the printf-style text and a line end, in one write, so
/// that lines of several threads do not mix. Where nobody reads the log, the line is dropped and counted: no
/// thread ever waits for a reader. Not for audio threads.
[[gnu::format(printf, 1, 2)]] void systemLog(const char* format, ...);

/// The same for a line that comes many times a second. Under a journal it is marked as one for debugging, so
/// that it need not be kept. Window thread.
[[gnu::format(printf, 1, 2)]] void frequentLog(const char* format, ...);

/// Writes a diagnostic line of an audio queue to standard output, exactly as formatted: those texts carry
/// their own line end. Does not wait for a reader either.
[[gnu::format(printf, 1, 2)]] void printDiagnostic(const char* format, ...);

/// Has the system log drop all that is written from now on: for work whose standard error is for its user.
void silenceSystemLog();

/// Lines of the system log that were dropped. When the log is read again, it says how many. Any thread.
std::uint64_t droppedLogLines();

} // namespace sonotrace
