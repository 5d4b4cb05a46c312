// Circle centres through four points.
#include <cmath>
#include <cstddef>

#include "calib/calib.hpp"
#include "calib/geometry.hpp"
#include "frame/math.hpp"

namespace dsp::calib {

namespace {

// Degrees per radian as each family has it: 180 over pi rounded to single
// precision, and 180 over 3.14159265359.
template <class T>
constexpr double degrees_per_radian = 57.29577951307855;
template <>
constexpr double degrees_per_radian<float> = 57.29577791868205;

}  // namespace

template <class T>
void circle_fit(const T *a, const T *b, const T *c, const T *d, T *centre, int first, int end) {
    for (ptrdiff_t i = first; i < end; ++i) {
        const point<T> A = at(a, i), B = at(b, i), C = at(c, i), D = at(d, i);
        // The two chords closest to perpendicular: A-P and Q-R.
        const T s1 = std::fabs(dot(B - A, D - C)), s2 = std::fabs(dot(C - A, D - B)),
                s3 = std::fabs(dot(D - A, C - B));
        point<T> P = D, Q = C, R = B;
        if (s1 < s2 && s1 < s3) {
            P = B, Q = C, R = D;
        } else if (!(s1 < s2) && s2 < s3) {
            P = C, Q = B, R = D;
        }
        // The angle between the chords in degrees, folded into [0, 90]; a
        // NaN angle passes both tests.
        const point<T> u = P - A, w = R - Q;
        const T cosine = dot(u, w) / (rt::sqrt(dot(u, u)) * rt::sqrt(dot(w, w)));
        T theta = T(std::acos(double(cosine)) * degrees_per_radian<T>);
        if (theta > 90) theta = 180 - theta;
        if (theta < 10) {  // too close to parallel: the fourth point stands in
            centre[2 * i] = D.x;
            centre[2 * i + 1] = D.y;
            continue;
        }
        // Intersection of the perpendicular bisectors, through their slopes
        // (a chord parallel to an axis gives infinities, as it stands).
        const T m1 = (P.y - A.y) / (P.x - A.x), k1 = -1 / m1;
        const T mx1 = (A.x + P.x) / 2, my1 = (A.y + P.y) / 2;
        const T m2 = (R.y - Q.y) / (R.x - Q.x), k2 = -1 / m2;
        const T mx2 = (Q.x + R.x) / 2, my2 = (Q.y + R.y) / 2;
        const T x = ((my2 - my1) + k1 * mx1 - k2 * mx2) / (k1 - k2);
        centre[2 * i] = x;
        centre[2 * i + 1] = my1 + k1 * (x - mx1);
    }
}

#define DSP_INSTANTIATE(T) \
    template void circle_fit<T>(const T *, const T *, const T *, const T *, T *, int, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::calib
