#pragma once

#include <fftw3.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace sonotrace {

/// Power spectra of real samples in double precision. Estimated plans: measured ones would differ in the last
/// bits from run to run. One thread; the library's planner is shared by all objects of that thread.
class RealTransform {
public:
    /// Writes |X|² of bins 0 to N / 2 for N samples, at least 2, not scaled. Allocates after a change of
    /// size.
    void power(std::span<const double> samples, std::vector<double>& power);

    /// The same without copies: the place for `size` samples, and then their spectrum, re and im of bins 0 to
    /// N / 2 in turn. Valid until the next call.
    std::span<double> input(std::size_t size);
    std::span<const double> transform();

private:
    void plan(std::size_t size);

    struct DestroyPlan {
        void operator()(fftw_plan_s* plan) const { fftw_destroy_plan(plan); }
    };
    struct Free {
        void operator()(void* memory) const { fftw_free(memory); }
    };

    std::size_t size_ = 0;
    std::unique_ptr<double[], Free> input_;
    std::unique_ptr<fftw_complex[], Free> output_;
    std::unique_ptr<fftw_plan_s, DestroyPlan> plan_;
};

} // namespace sonotrace
