#pragma once

#include <cstdint>

namespace sonotrace {

class AudioFile;
class RecordedWaterfall;
struct RecordedWaterfallSettings;

/// What was painted.
struct PaintedSound {
    std::uint64_t frames = 0;
    std::uint64_t wrapped = 0; ///< those whose channels are together beyond 16 bits
};

/// Paints a file to its end, on all processors where its columns do not depend on each other; the picture is
/// the same. `settings` are the waterfall's own.
PaintedSound paintFile(RecordedWaterfall& waterfall, const RecordedWaterfallSettings& settings,
                       AudioFile& file);

} // namespace sonotrace
