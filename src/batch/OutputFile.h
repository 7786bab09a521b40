#pragma once

#include "batch/Interruption.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace sonotrace {

/// A file that is there whole or not at all: it is written beside its place and renamed at the end. "-" is
/// standard output; that, a FIFO or a device is written straight through. Failures are thrown as
/// CommandErrors, and nothing is left behind. One thread at a time.
class OutputFile {
public:
    /// Creates it. A FIFO is waited for until somebody reads it.
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(std::span<const std::byte> bytes);
    void write(std::string_view text) { write(std::as_bytes(std::span(text))); }

    /// Puts the file in its place. Without it, it is dropped.
    void commit();

    const std::string& path() const { return path_; }

    /// Whether what is written is for a person's eyes.
    bool isTerminal() const;

private:
    void openThrough();
    void openBeside();

    const std::string path_; ///< as it was given
    std::string target_;     ///< what a link at that place points to
    std::optional<UnfinishedFile> beside_;
    int descriptor_ = -1;
};

} // namespace sonotrace
