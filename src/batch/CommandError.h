#pragma once

#include <stdexcept>
#include <string>

namespace sonotrace {

inline constexpr int kCouldNot = 1;       ///< exit status: what was asked for could not be done
inline constexpr int kWrongArguments = 2; ///< exit status: it was not asked for in a way that is understood
inline constexpr int kAfterSignal = 128;  ///< exit status: this and the number of the signal that ended it

/// Ends a subcommand with a status, and a sentence for standard error unless it is empty.
class CommandError : public std::runtime_error {
public:
    explicit CommandError(const std::string& message, int status = kCouldNot)
        : std::runtime_error(message), status_(status) {}

    int status() const { return status_; }

private:
    int status_;
};

} // namespace sonotrace
