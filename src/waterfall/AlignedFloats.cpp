#include "waterfall/AlignedFloats.h"

#include <algorithm>
#include <new>

namespace sonotrace {

namespace {

constexpr std::align_val_t kAlignment{64};

} // namespace

AlignedFloats::AlignedFloats(std::size_t count)
    : count_(count), numbers_(static_cast<float*>(::operator new[](count * sizeof(float), kAlignment))) {
    std::fill_n(data(), count, 0.0F);
}

void AlignedFloats::Release::operator()(float* numbers) const {
    ::operator delete[](numbers, kAlignment);
}

} // namespace sonotrace
