// C exports of the calibration and circle-geometry functions.
#include "calib/calib.hpp"
#include "dsp.h"

using namespace dsp::calib;

extern "C" {

int MatrixMult(const double *a, const double *b, double *c, int rows, int inner, int cols) {
    return matrix_mult(a, b, c, rows, inner, cols);
}
int invert(double *m, int n) { return dsp::calib::invert(m, n); }
int Compute1PortTerms(double *m1, double *m2, double *m3, const double *g1, const double *g2,
                      const double *g3, int first, int end) {
    return compute_1port_terms(m1, m2, m3, g1, g2, g3, first, end);
}
void vfps_CircleFit(const float *a, const float *b, const float *c, const float *d, float *centre,
                    int first, int end) {
    circle_fit<float>(a, b, c, d, centre, first, end);
}
void vfpd_CircleFit(const double *a, const double *b, const double *c, const double *d,
                    double *centre, int first, int end) {
    circle_fit<double>(a, b, c, d, centre, first, end);
}
int CircularInterpolation(const double *freq, const double *refl, int n, const double *at,
                          double *result, int m) {
    return circular_interpolation(freq, refl, n, at, result, m);
}
}
