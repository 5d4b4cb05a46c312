// Scratch arrays of one call, from std::malloc and freed at scope exit, and
// the sizing of a result computed point by point from an input record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "frame/record.hpp"

namespace dsp {

// Storage for count elements of `size` bytes from std::malloc, or null when
// it cannot be had, also when the byte count does not fit in size_t (as on
// a 32-bit target, where a count worked out in 64 bits may not).
inline void *scratch_alloc(uint64_t count, size_t size) {
    if (count > SIZE_MAX / size) return nullptr;
    return std::malloc(count > 0 ? size_t(count) * size : 1);
}

// `count` elements of a trivially copyable type, uninitialised; `ok()` is
// false when the allocation failed (the call then returns -1).
template <class S>
class buffer {
 public:
    explicit buffer(uint64_t count) : data_(static_cast<S *>(scratch_alloc(count, sizeof(S)))) {}
    ~buffer() { std::free(data_); }
    buffer(const buffer &) = delete;
    buffer &operator=(const buffer &) = delete;
    bool ok() const { return data_ != nullptr; }
    S *get() { return data_; }
    S &operator[](size_t i) { return data_[i]; }

 private:
    S *data_;
};

// Sizes out to the n points of `in` as a record of the kind cplx (delta from
// `in`) and returns where in's scalars are now, or null when sizing fails.
// When out shares in's storage the leading scalars survive, and out is at
// least as wide per point as in is (cplx >= in.cplx): writing point k from
// the last to the first then never overwrites a point not yet read.
template <class T>
const T *size_over(signal_t<T> &out, const signal_t<T> &in, int32_t cplx) {
    const T *src = in.data;
    const int32_t old_n = out.n, old_cplx = out.cplx;
    const bool shared = &out == &in || (out.data != nullptr && out.data == src);
    out.delta = in.delta;
    out.n = in.n;
    out.cplx = cplx;
    if ((shared ? realloc<T>(out, old_n, old_cplx) : alloc<T>(out)) != 0) return nullptr;
    return &out == &in ? out.data : src;
}

}  // namespace dsp
