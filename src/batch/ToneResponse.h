#pragma once

#include "generator/SettingsFile.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace sonotrace {

/// What a frequency response is measured with.
struct ResponseQuestion {
    double fromHz = 20;
    double toHz = 20000;
    int points = 31;      ///< over that range, equally far apart on a logarithmic scale
    int tonesAtOnce = 13; ///< 1 to 13
    double peakDbfs = -6; ///< that all tones of a time together do not exceed
};

struct ResponsePoint {
    double frequencyHz = 0;
    /// Heard to played, left and right; none where the tone does not stand out of the noise by 10 dB.
    std::array<std::optional<double>, 2> gainDb;
};

/// Frames of a block that tones are read in: bins of 0.67 Hz.
inline constexpr std::int32_t kToneBlock = 65536;

/// The tones of a response, each an odd multiple of a bin (with 22050 Hz as the end), so that a block holds
/// whole periods of all and their even products fall between them. Ascending; points that fall together are
/// one.
std::vector<double> responseFrequencies(const ResponseQuestion& question);

/// Which of the tones are played together: far enough apart for a block to tell them apart, which is 16 bins,
/// and no more than the question allows.
std::vector<std::vector<double>> tonesTogether(const std::vector<double>& frequencies, int tonesAtOnce);

/// Settings of the generators that play these sines in both channels, equally loud, together with a peak of
/// at most `peakDbfs`.
SettingsOfAll settingsOfTones(std::span<const double> frequencies, double peakDbfs);

/// Plays these generators, waits until nothing else is heard, and gives kToneBlock frames of what is,
/// interleaved.
using Hear = std::function<std::vector<std::int16_t>(const SettingsOfAll& generators)>;

/// Measures tones of both channels: how much louder than played they are heard, by the reading that the
/// spectrum's pointer shows. `progress` is called with the parts done and all of them.
std::vector<ResponsePoint> measureResponse(const Hear& hear, const ResponseQuestion& question,
                                           const std::function<void(int done, int all)>& progress);

} // namespace sonotrace
