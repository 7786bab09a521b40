#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sonotrace {

/// What a microphone makes of a level, by frequency: the content of a correction file. Empty it corrects
/// nothing.
class MicrophoneCorrection {
public:
    struct Point {
        double frequencyHz;
        double responseDb;
    };

    /// Reads a file's text: lines of a frequency and the response there in dB, and whatever follows them,
    /// between blanks, tabulators, semicolons or commas. Lines that do not begin with a number are comments.
    /// A comma is a decimal point where something else is between the columns. Where the text makes no sense
    /// nothing is read of it, and `trouble` says why; otherwise that is empty.
    static MicrophoneCorrection read(std::string_view text, std::string& trouble);

    /// The largest text there may be.
    static constexpr std::size_t kMostBytes = 10'000'000;

    bool isEmpty() const { return points_.empty(); }
    const std::vector<Point>& points() const { return points_; } ///< in the order of their frequencies

    /// The response, to be subtracted from a level at a frequency: linear over the frequency's logarithm,
    /// held beyond the ends; 0 where there are no points.
    double correctionDb(double frequencyHz) const;

private:
    std::vector<Point> points_;
};

} // namespace sonotrace
