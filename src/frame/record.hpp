// Signal records: sizing, copying, comparison and the allocator hooks.
#pragma once

#include <cstdint>

#include "frame/traits.hpp"

namespace dsp {

// Scalars a record of n points of the given kind holds (2n when complex).
inline int64_t scalar_count(int64_t n, int32_t cplx) { return cplx ? 2 * n : n; }

template <class T>
inline int64_t scalar_count(const signal_t<T> &x) {
    return scalar_count(x.n, x.cplx);
}

// Scalars the record owns; a negative alloc counts as 0.
template <class T>
inline int64_t owned(const signal_t<T> &x) {
    return x.alloc > 0 ? x.alloc : 0;
}

// True when a and b are the same record or a's samples start where b's do
// (a null a shares nothing).
template <class T>
inline bool same_storage(const signal_t<T> *a, const signal_t<T> *b) {
    return a && (a == b || (a->data && a->data == b->data));
}

// Process-wide allocator hooks of one precision (null: the system allocator).
template <class T>
struct hooks {
    using alloc_fn = void (*)(signal_t<T> *);
    using realloc_fn = void (*)(signal_t<T> *, int, int);
    using free_fn = void (*)(signal_t<T> *);
    static inline alloc_fn alloc = nullptr;
    static inline realloc_fn realloc = nullptr;
    static inline free_fn free = nullptr;
};

template <class T> int init(signal_t<T> &x);
template <class T> int destroy(signal_t<T> &x);
template <class T> int alloc(signal_t<T> &x);
template <class T> int realloc(signal_t<T> &x, int prev_n, int prev_cplx);
template <class T> int append(signal_t<T> &a, const signal_t<T> &b);
template <class T> int cmp(const signal_t<T> &a, const signal_t<T> &b, T tol, int *result);

// Replaces a hook, storing the previous one through `previous` if not null.
template <class Hook>
int swap_hook(Hook &slot, Hook hook, Hook *previous) {
    if (previous) *previous = slot;
    slot = hook;
    return 0;
}

}  // namespace dsp
