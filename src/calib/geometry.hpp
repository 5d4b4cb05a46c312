// Points of the plane taken from interleaved complex arrays.
#pragma once

#include <cstddef>

namespace dsp::calib {

template <class T>
struct point {
    T x, y;
    point operator-(point o) const { return {x - o.x, y - o.y}; }
    point operator+(point o) const { return {x + o.x, y + o.y}; }
    friend point operator*(T k, point p) { return {k * p.x, k * p.y}; }
};
template <class T>
T dot(point<T> u, point<T> v) {
    return u.x * v.x + u.y * v.y;
}
template <class T>
T cross(point<T> u, point<T> v) {
    return u.x * v.y - u.y * v.x;
}
template <class T>
point<T> at(const T *z, ptrdiff_t i) {
    return {z[2 * i], z[2 * i + 1]};
}

}  // namespace dsp::calib
