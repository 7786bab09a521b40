#pragma once

#include <cstddef>
#include <memory>

namespace sonotrace {

/// A block of single-precision numbers, all zero at first, on a cache line's boundary: the transform's vector
/// code needs every block it works on to be aligned like the one it was planned for.
class AlignedFloats {
public:
    /// Throws std::bad_alloc.
    explicit AlignedFloats(std::size_t count);

    float* data() { return numbers_.get(); }
    const float* data() const { return numbers_.get(); }
    std::size_t size() const { return count_; }
    float& operator[](std::size_t i) { return numbers_[i]; }
    float operator[](std::size_t i) const { return numbers_[i]; }

private:
    struct Release {
        void operator()(float* numbers) const;
    };
    std::size_t count_;
    std::unique_ptr<float[], Release> numbers_;
};

} // namespace sonotrace
