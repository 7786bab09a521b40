#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <vector>

struct soxr;

namespace sonotrace {

/// Brings stereo of any rate to the program's, with the library's very high quality: flat to 0.1 dB up to
/// 0.91 of half the lower rate, all else 150 dB down. One thread.
class Resampler {
public:
    /// Fills as much as it can of `interleaved` and gives the number of frames, 0 at the end.
    using Source = std::function<std::size_t(std::span<double> interleaved)>;

    /// Throws a CommandError for a rate in Hz that cannot be converted.
    Resampler(double rate, Source source);

    /// Fills `interleaved`; gives the number of frames, fewer only at the end.
    std::size_t read(std::span<double> interleaved);

private:
    struct Delete {
        void operator()(soxr* converter) const;
    };

    static std::size_t feed(void* self, const void** data, std::size_t frames);

    const Source source_;
    std::vector<double> input_;
    std::exception_ptr failure_; ///< of the source
    std::unique_ptr<soxr, Delete> converter_;
};

} // namespace sonotrace
