// The library's own modified Bessel function of the first kind, order 0,
// shared by dspfi_besi0 and the Kaiser window.
#pragma once

#include "frame/math.hpp"
#include "frame/traits.hpp"

namespace dsp {

// I0(x): a power series of twenty terms up to |x| = 16, an asymptotic
// expansion beyond. The series coefficients 1/(k!)^2 are held in the
// precision of the family (floats in the single family).
template <class T>
T bessel_i0(T x) {
    const T a = x < T(0) ? -x : x;
    if (a <= T(16)) {
        struct table {
            T c[20];
        };
        static const table coef = [] {
            table t{};
            double f = 1.0;
            for (int k = 0; k < 20; ++k) {
                if (k > 0) f *= k;
                t.c[k] = T(1.0 / (f * f));
            }
            return t;
        }();
        const T y = (a / T(2)) * (a / T(2));
        T s = coef.c[19];
        for (int k = 18; k >= 0; --k) s = s * y + coef.c[k];
        return s;
    }
    const T t = T(0.125) / a;
    const T p = T(1) + t * (T(1) + t * (T(4.5) + t * (T(37.5) + t * (T(459.375) + t * T(7441.875)))));
    return rt::exp(a) * p / rt::sqrt(T(2) * precision<T>::pi * a);
}

}  // namespace dsp
