#include "frame/prepare.hpp"

#include <cmath>

#include "elementwise/convert.hpp"
#include "elementwise/rearrange.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"

namespace dsp {

namespace {

// Internal scratch of the result preparation, one set per precision.
template <class T>
struct result_scratch {
    static inline signal_t<T> output{};
    static inline bool output_ready = false;
    static inline bool output_in_use = false;
    static inline signal_t<T> *saved = nullptr;
    static inline signal_t<T> state{};
    static inline bool state_ready = false;
};

}  // namespace

template <class T>
int prepare_binary_result(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    if (a.n != b.n) return -1;
    const int32_t old_cplx = r.cplx;
    const int32_t n = a.n;
    r.delta = (a.delta + b.delta) * T(0.5);
    r.cplx = (a.cplx || b.cplx) ? 1 : 0;
    r.n = n;
    if (r.data != a.data && r.data != b.data) return alloc<T>(r);
    return realloc<T>(r, n, old_cplx);
}

template <class T>
int prepare_result(const signal_t<T> &in, signal_t<T> **result_slot, const signal_t<T> *coef,
                   signal_t<T> **state_slot, int state_len, int flags) {
    using S = result_scratch<T>;
    if (state_slot && (flags & PREP_INTERNAL_STATE) && !*state_slot) {
        if (!S::state_ready) {
            if (init<T>(S::state) != 0) return -1;
            S::state_ready = true;
        }
        *state_slot = &S::state;
    }
    if (state_slot && *state_slot) {
        signal_t<T> &s = **state_slot;
        s.delta = in.delta;
        const bool convert = (s.cplx != 0) != (in.cplx != 0);
        if ((convert && (in.cplx ? rtoc<T>(s) : real<T>(s)) != 0) || zpad<T>(s, state_len) != 0) {
            // A failed growth leaves the record's new n without storage (the
            // old block, and with it the state, is gone). The record is
            // emptied instead, so that the next call with it, or with the
            // internal state record that no caller can repair, starts again
            // from zeros rather than reading a record without storage.
            s.n = 0;
            return -1;
        }
    }
    signal_t<T> *r = *result_slot;
    if ((flags & PREP_INPLACE) && in.data == r->data) {
        S::output_in_use = true;
        if (!S::output_ready) {
            if (init<T>(S::output) != 0) return -1;
            S::output_ready = true;
        }
        S::saved = r;
        *result_slot = &S::output;
        S::output.n = (flags & PREP_KEEP_N) ? r->n : in.n;
        r = &S::output;
    } else {
        S::output_in_use = false;
        if (!(flags & PREP_KEEP_N)) r->n = in.n;
    }
    r->cplx = (in.cplx || (coef && coef->cplx)) ? 1 : 0;
    r->delta = in.delta;
    return alloc<T>(*r);
}

template <class T>
int finish_result(signal_t<T> &r) {
    using S = result_scratch<T>;
    if (!S::output_in_use) return 0;
    S::output_in_use = false;
    return copy<T>(*S::saved, r);
}

template <class T>
int release_result_scratch() {
    using S = result_scratch<T>;
    if (S::output_ready) {
        S::output_ready = false;
        if (destroy<T>(S::output) != 0) return -1;
    }
    if (S::state_ready) {
        S::state_ready = false;
        if (destroy<T>(S::state) != 0) return -1;
    }
    return 0;
}

template <class T>
int approx_equal(T x, T y) {
    using P = precision<T>;
    if (x == y) return 1;
    if (-P::tiny <= x && x <= P::tiny) return (-P::tiny <= y && y <= P::tiny) ? 1 : 0;
    const T q = y / x;
    return (P::tol_lo <= q && q <= P::tol_hi) ? 1 : 0;
}

namespace {

// Converts an integral floating value to an index; values past the int range
// saturate and NaN gives 0, as the instrument's conversion does.
template <class T>
int32_t to_index(T v) {
    if (!(v == v)) return 0;
    if (v >= T(2147483647.0)) return INT32_MAX;
    if (v <= T(-2147483648.0)) return INT32_MIN;
    return int32_t(v);
}

}  // namespace

template <class T>
int32_t floor_index(T x) {
    using P = precision<T>;
    if (x > P::index_big) return 0x7ffffffe;
    if (x < T(0)) return 0;
    if (x > T(0.5)) return to_index(std::floor(x * P::tol_hi));
    return to_index(std::floor(x + P::tol_eps));
}

template <class T>
int32_t ceil_index(T x) {
    using P = precision<T>;
    if (x > P::index_big) return 0x7ffffffe;
    if (x < T(0)) return 0;
    if (x > T(0.5)) return to_index(std::ceil(x * P::tol_lo));
    return to_index(std::ceil(x - P::tol_eps));
}

#define DSP_INSTANTIATE(T)                                                                       \
    template int prepare_binary_result<T>(const signal_t<T> &, const signal_t<T> &,              \
                                          signal_t<T> &);                                        \
    template int prepare_result<T>(const signal_t<T> &, signal_t<T> **, const signal_t<T> *,     \
                                   signal_t<T> **, int, int);                                    \
    template int finish_result<T>(signal_t<T> &);                                                \
    template int release_result_scratch<T>();                                                    \
    template int approx_equal<T>(T, T);                                                          \
    template int32_t floor_index<T>(T);                                                          \
    template int32_t ceil_index<T>(T);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
