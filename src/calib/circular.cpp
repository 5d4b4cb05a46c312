// Interpolation of complex reflection data between frequency points along
// the circle through neighbouring points.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "calib/calib.hpp"
#include "calib/geometry.hpp"

namespace dsp::calib {

namespace {

constexpr double two_pi = 6.283185307179586;

using pt = point<double>;

// The point at fraction t of the way from g[k] to g[k + 1] along the circle
// through the three points starting at j = min(max(k - 1, 0), n - 3), the
// angle advancing in proportion to t, in the sense in which the three
// points run round it. Linear where they are collinear.
pt arc_point(const double *g, int n, ptrdiff_t k, double t) {
    const pt p0 = at(g, k), chord = at(g, k + 1) - p0;
    if (n < 3) return p0 + t * chord;
    const ptrdiff_t j = std::clamp<ptrdiff_t>(k - 1, 0, n - 3);
    const pt q0 = at(g, j), a = at(g, j + 1) - q0, b = at(g, j + 2) - q0;
    const double turn = cross(a, b), aa = dot(a, a), bb = dot(b, b);
    if (!(std::fabs(turn) > 1e-12 * std::sqrt(aa * bb))) return p0 + t * chord;
    // The centre relative to q0 (intersection of the perpendicular
    // bisectors of the chords q0-q1 and q0-q2), then v = p0 - centre.
    const pt u = {(b.y * aa - a.y * bb) / (2 * turn), (a.x * bb - b.x * aa) / (2 * turn)};
    const pt v = (p0 - q0) - u;
    // The angle from p0 to g[k + 1], taken the way round the triple turns.
    double angle = std::atan2(cross(v, chord), dot(v, v) + dot(v, chord));
    if (turn > 0 && angle < 0) angle += two_pi;
    if (turn < 0 && angle > 0) angle -= two_pi;
    // p0 rotated about the centre by t * angle, as p0 + (R - I) v so that a
    // far centre loses no precision.
    const double phi = t * angle, s = std::sin(phi / 2);
    return p0 + std::sin(phi) * pt{-v.y, v.x} - 2 * s * s * v;
}

bool overlaps(const void *p, size_t p_bytes, const void *q, size_t q_bytes) {
    const auto a = reinterpret_cast<uintptr_t>(p), b = reinterpret_cast<uintptr_t>(q);
    return a < b + q_bytes && b < a + p_bytes;
}

}  // namespace

int circular_interpolation(const double *f, const double *g, int n, const double *at_f, double *out,
                           int m) {
    if (n < 1 || m < 0) return -1;
    for (int k = 1; k < n; ++k)
        if (!(f[k] > f[k - 1])) return -1;  // not strictly increasing, or NaN
    for (int j = 0; j < m; ++j)
        if (!(at_f[j] >= f[0] && at_f[j] <= f[n - 1])) return -1;
    // Results go to a scratch array when out overlaps an input.
    const size_t out_bytes = 2 * size_t(m) * sizeof(double);
    std::vector<double> scratch;
    double *dst = out;
    if (overlaps(out, out_bytes, f, size_t(n) * sizeof(double)) ||
        overlaps(out, out_bytes, g, 2 * size_t(n) * sizeof(double)) ||
        overlaps(out, out_bytes, at_f, size_t(m) * sizeof(double))) {
        try {
            scratch.resize(2 * size_t(m));
        } catch (const std::bad_alloc &) {
            return -1;
        }
        dst = scratch.data();
    }
    for (ptrdiff_t j = 0; j < m; ++j) {
        const double x = at_f[j];
        // f[k] <= x < f[k + 1]; a data frequency gives its own point.
        const ptrdiff_t k = std::upper_bound(f, f + n, x) - f - 1;
        const pt p = x == f[k] ? at(g, k) : arc_point(g, n, k, (x - f[k]) / (f[k + 1] - f[k]));
        dst[2 * j] = p.x;
        dst[2 * j + 1] = p.y;
    }
    if (dst != out) std::copy(scratch.begin(), scratch.end(), out);
    return 0;
}

}  // namespace dsp::calib
