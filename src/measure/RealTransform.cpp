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

void RealTransform::power(std::span<const double> samples, std::vector<double>& power) {
    if (samples.size() != size_)
        plan(samples.size());
    std::ranges::copy(samples, input_.get());
    fftw_execute(plan_.get());
    power.resize(size_ / 2 + 1);
    for (std::size_t k = 0; k < power.size(); ++k) {
        const double* const value = output_[k];
        power[k] = value[0] * value[0] + value[1] * value[1];
    }
}

} // namespace sonotrace
