#include "measure/RealTransform.h"

#include <algorithm>
#include <new>

namespace sonotrace {

void RealTransform::plan(std::size_t size) {
    plan_.reset();
    input_.reset(fftw_alloc_real(size));
    output_.reset(fftw_alloc_complex(size / 2 + 1));
    if (!input_ || !output_)
        throw std::bad_alloc();
    plan_.reset(fftw_plan_dft_r2c_1d(static_cast<int>(size), input_.get(), output_.get(), FFTW_ESTIMATE));
    if (!plan_)
        throw std::bad_alloc();
    size_ = size;
}

std::span<double> RealTransform::input(std::size_t size) {
    if (size != size_)
        plan(size);
    return {input_.get(), size_};
}

std::span<const double> RealTransform::transform() {
    fftw_execute(plan_.get());
    return {output_[0], 2 * (size_ / 2 + 1)};
}

void RealTransform::power(std::span<const double> samples, std::vector<double>& power) {
    std::ranges::copy(samples, input(samples.size()).data());
    const std::span<const double> spectrum = transform();
    power.resize(spectrum.size() / 2);
    for (std::size_t k = 0; k < power.size(); ++k)
        power[k] = spectrum[2 * k] * spectrum[2 * k] + spectrum[2 * k + 1] * spectrum[2 * k + 1];
}

} // namespace sonotrace
