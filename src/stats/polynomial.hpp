// Linear regression, least-squares polynomials, their evaluation, roots and
// construction from roots. Polynomials are records of coefficients in
// ascending order: point i is the coefficient of x^i (as dspfi_pdiffer
// takes them). Every computation runs in double precision, for the single
// family too; results are rounded to the record's precision at the end.
#pragma once

#include <complex>
#include <cstdint>
#include <type_traits>

#include "frame/traits.hpp"

namespace dsp {

// {slope, intercept, r} of the least-squares line through (k delta, in[k]),
// into a real three-point record; -1 for complex input, fewer than two
// points or a zero delta.
template <class T>
int lin_regres(const signal_t<T> &in, signal_t<T> &out);
// The same through (x[k], y[k]); -1 also for unequal lengths or equal x.
template <class T>
int lin_regres2(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out);

// Least-squares polynomial of the given degree through (x[k], y[k]), by a
// QR decomposition (Givens rotations, one row at a time) of the Vandermonde
// matrix with unit-norm columns: real (psolve, real records only) or
// complex (pcsolve). -1 for unequal lengths, degree < 0, fewer points than
// degree + 1, or a rank-deficient matrix (fewer distinct x than terms).
template <class T>
int psolve(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out, int degree);
template <class T>
int pcsolve(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out, int degree);

// out[k] = sum coef[i] x[k]^i (Horner); complex when either input is.
template <class T>
int peval(const signal_t<T> &coef, const signal_t<T> &x, signal_t<T> &out);

// Coefficients in place to the complex record of the polynomial's roots
// (eigenvalues of the balanced companion matrix by a Hessenberg QR
// iteration), sorted by real part, then imaginary part. -1 when every
// coefficient is 0, one is not finite, or the iteration does not converge.
template <class T>
int proots(signal_t<T> &x);

// Roots in place to the coefficients of the monic polynomial prod (x - r),
// n + 1 points, complex when the roots are.
template <class T>
int pztoc(signal_t<T> &x);

namespace poly {

using cd = std::complex<double>;

// Point k of a record as a real or complex double (real records read with
// imaginary part 0; a real S reads the real part).
template <class S, class Record>
inline S point(const Record &r, int64_t k) {
    if constexpr (std::is_same_v<S, cd>)
        return r.cplx ? cd(r.data[2 * k], r.data[2 * k + 1]) : cd(r.data[k], 0.0);
    else
        return r.cplx ? double(r.data[2 * k]) : double(r.data[k]);
}

// Stores v as point k of a record of its kind.
template <class T>
inline void store(signal_t<T> &r, int64_t k, cd v) {
    if (r.cplx) {
        r.data[2 * k] = T(v.real());
        r.data[2 * k + 1] = T(v.imag());
    } else {
        r.data[k] = T(v.real());
    }
}

}  // namespace poly
}  // namespace dsp
