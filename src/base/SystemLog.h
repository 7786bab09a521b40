#pragma once

namespace sonotrace {

/// Writes one line to the system log (standard error): the printf-style text and a line end, in one write, so
/// that lines of several threads do not mix. Not for audio threads.
[[gnu::format(printf, 1, 2)]] void systemLog(const char* format, ...);

/// Writes a diagnostic line of an audio queue to standard output, exactly as formatted: those texts carry
/// their own line end.
[[gnu::format(printf, 1, 2)]] void printDiagnostic(const char* format, ...);

} // namespace sonotrace
