// Butterfly passes of the complex FFT (portable scalar code).
#include "transform/fft_kernel.hpp"

namespace dsp::fft_kernel {

namespace {

// One radix-4 stage over every block of 4m points of the n at d. With the
// quarters x0..x3 of a block and w = e^(-+2 pi i k / 4m), the quarters
// become x0 + x1 + x2 + x3, (x0 - x1 + x2 - x3) w^2k,
// (x0 -+ i x1 - x2 +- i x3) w^k and (x0 +- i x1 - x2 -+ i x3) w^3k: the even
// half of the radix-2 split followed by its odd half, so that the result
// ends up in bit-reversed order.
template <class T, bool Inverse>
void radix4(T *d, int64_t n, int64_t m, const T *w) {
    const T *w1r = w, *w1i = w + m, *w2r = w + 2 * m, *w2i = w + 3 * m, *w3r = w + 4 * m,
            *w3i = w + 5 * m;
    for (int64_t base = 0; base < n; base += 4 * m) {
        T *p0 = d + 2 * base, *p1 = p0 + 2 * m, *p2 = p1 + 2 * m, *p3 = p2 + 2 * m;
        for (int64_t k = 0; k < m; ++k) {
            const int64_t i = 2 * k;
            const T ar = p0[i] + p2[i], ai = p0[i + 1] + p2[i + 1];
            const T br = p1[i] + p3[i], bi = p1[i + 1] + p3[i + 1];
            const T cr = p0[i] - p2[i], ci = p0[i + 1] - p2[i + 1];
            // e = -i (x1 - x3) forward, +i (x1 - x3) inverse
            T er = p1[i + 1] - p3[i + 1], ei = p3[i] - p1[i];
            if constexpr (Inverse) er = -er, ei = -ei;
            const T s = Inverse ? T(-1) : T(1);
            p0[i] = ar + br, p0[i + 1] = ai + bi;
            const T yr = ar - br, yi = ai - bi;
            const T ur = cr + er, ui = ci + ei;
            const T vr = cr - er, vi = ci - ei;
            const T c1 = w1r[k], s1 = s * w1i[k];
            const T c2 = w2r[k], s2 = s * w2i[k];
            const T c3 = w3r[k], s3 = s * w3i[k];
            p1[i] = yr * c2 - yi * s2, p1[i + 1] = yr * s2 + yi * c2;
            p2[i] = ur * c1 - ui * s1, p2[i + 1] = ur * s1 + ui * c1;
            p3[i] = vr * c3 - vi * s3, p3[i + 1] = vr * s3 + vi * c3;
        }
    }
}

// The last stage of an odd power of two: pairs (x0 + x1, x0 - x1).
template <class T>
void radix2(T *d, int64_t n) {
    for (int64_t i = 0; i < 2 * n; i += 4) {
        const T r0 = d[i], i0 = d[i + 1], r1 = d[i + 2], i1 = d[i + 3];
        d[i] = r0 + r1, d[i + 1] = i0 + i1;
        d[i + 2] = r0 - r1, d[i + 3] = i0 - i1;
    }
}

template <class T, bool Inverse>
void scalar_transform(T *d, int b, const T *tw) {
    const int64_t n = int64_t(1) << b;
    int64_t m = n / 4;
    for (; m >= 1; m /= 4) {
        radix4<T, Inverse>(d, n, m, tw);
        tw += 6 * m;
        if (m == 2) radix2(d, n);
    }
}

}  // namespace

template <class T>
void transform(T *d, int b, const T *tw, bool inverse) {
    if (inverse)
        scalar_transform<T, true>(d, b, tw);
    else
        scalar_transform<T, false>(d, b, tw);
}

template void transform<float>(float *, int, const float *, bool);
template void transform<double>(double *, int, const double *, bool);

}  // namespace dsp::fft_kernel
