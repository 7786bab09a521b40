#include "batch/Resampler.h"

#include "base/SampleRate.h"
#include "batch/CommandError.h"

#include <soxr.h>

#include <algorithm>
#include <string>
#include <utility>

namespace sonotrace {

namespace {
constexpr unsigned kChannels = 2;
constexpr std::size_t kInputFrames = 8192;
} // namespace

Resampler::Resampler(double rate, Source source)
    : source_(std::move(source)), input_(kChannels * kInputFrames) {
    const soxr_io_spec_t format = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
    soxr_error_t error = nullptr;
    converter_.reset(soxr_create(rate, kSampleRate, kChannels, &error, &format, &quality, nullptr));
    if (!error)
        error = soxr_set_input_fn(converter_.get(), feed, this, kInputFrames);
    if (error)
        throw CommandError("the sample rate cannot be converted: " + std::string(error));
}

/// What is thrown must not pass through the library.
std::size_t Resampler::feed(void* self, const void** data, std::size_t frames) {
    auto& resampler = *static_cast<Resampler*>(self);
    *data = resampler.input_.data();
    try {
        return resampler.source_(
            std::span(resampler.input_).first(kChannels * std::min(frames, kInputFrames)));
    } catch (...) {
        resampler.failure_ = std::current_exception();
        return 0;
    }
}

std::size_t Resampler::read(std::span<double> interleaved) {
    const std::size_t frames = interleaved.size() / kChannels;
    const std::size_t done = soxr_output(converter_.get(), interleaved.data(), frames);
    if (failure_)
        std::rethrow_exception(std::exchange(failure_, nullptr));
    if (const soxr_error_t error = soxr_error(converter_.get()))
        throw CommandError("the sample rate cannot be converted: " + std::string(error));
    return done;
}

void Resampler::Delete::operator()(soxr* converter) const {
    soxr_delete(converter);
}

} // namespace sonotrace
