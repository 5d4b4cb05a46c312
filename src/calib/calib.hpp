// Calibration and circle geometry on caller arrays. Complex values are
// interleaved (re, im) scalars; matrices are row-major.
#pragma once

namespace dsp::calib {

// c = a b for a (rows x inner) and b (inner x cols) complex matrices:
// rows * cols, or -1 when inner * inner > rows * inner (inner above rows),
// for a negative size, or when the matrix code fails. c may be a or b.
int matrix_mult(const double *a, const double *b, double *c, int rows, int inner, int cols);

// m (n x n complex) replaced by its inverse: 1, or 0 (m unchanged) when a
// pivot is below 1e4 machine epsilons, n is negative or the matrix code
// fails.
int invert(double *m, int n);

// One-port error terms at the points [first, end): m1, m2, m3 hold the
// measured reflections of three standards with actual reflections g1, g2,
// g3 and receive e00, e11 and e01 e10. 0, or -1 (arrays untouched) when
// the matrix code fails.
int compute_1port_terms(double *m1, double *m2, double *m3, const double *g1, const double *g2,
                        const double *g3, int first, int end);

// Centre of the circle through the four points a[i], b[i], c[i], d[i]
// (complex, as (x, y)) for i in [first, end).
template <class T>
void circle_fit(const T *a, const T *b, const T *c, const T *d, T *centre, int first, int end);

// Complex reflections g at n increasing frequencies f interpolated at the
// m frequencies at[] into out, along the circle through three neighbouring
// points (linearly where they are collinear). 0, or -1 (out untouched).
int circular_interpolation(const double *f, const double *g, int n, const double *at, double *out,
                           int m);

}  // namespace dsp::calib
