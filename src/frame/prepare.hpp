// Operand checks and result preparation shared by the binary and filtering
// operations, and the tolerant real comparison and index conversions.
#pragma once

#include <cstdint>

#include "frame/traits.hpp"

namespace dsp {

// prepare_result flags.
enum : int {
    PREP_INPLACE = 1,         // compute into the output scratch when result aliases input
    PREP_INTERNAL_STATE = 2,  // lend the internal state record to a null state slot
    PREP_KEEP_N = 4,          // the caller has set the result's n already
};

// Checks equal point counts and sizes r for a binary operation: delta is the
// mean of the inputs', r is complex if either input is, r.n = a.n. When r
// shares storage with an input its leading scalars are kept.
template <class T>
int prepare_binary_result(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);

// Prepares the result (and optional state) of a filtering operation; may put
// the internal output scratch record into *result_slot (see finish_result).
template <class T>
int prepare_result(const signal_t<T> &in, signal_t<T> **result_slot, const signal_t<T> *coef,
                   signal_t<T> **state_slot, int state_len, int flags);

// Copies the output scratch back into the caller's record if prepare_result
// substituted it.
template <class T>
int finish_result(signal_t<T> &r);

// Release step of the two scratch records above.
template <class T>
int release_result_scratch();

// 1 when y equals the reference x within the precision's relative tolerance
// (both within +-tiny also counts as equal); asymmetric in x and y.
template <class T>
int approx_equal(T x, T y);

// Index of a position, forgiving a position slightly below (floor_index) or
// slightly above (ceil_index) an integer. Negative positions give 0, huge
// ones 0x7ffffffe.
template <class T>
int32_t floor_index(T x);
template <class T>
int32_t ceil_index(T x);

}  // namespace dsp
