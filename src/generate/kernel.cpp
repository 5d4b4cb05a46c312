// Resampling kernels from descriptions, and the stored descriptions.
#include "generate/kernel.hpp"

#include <iterator>

#include "elementwise/convert.hpp"
#include "elementwise/rearrange.hpp"
#include "frame/math.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"

namespace dsp {

namespace {

// The steps both builders share; value(c, K, theta) evaluates the kernel
// from the coefficients c[1 .. K-1].
template <class T, class V>
int build(signal_t<T> &kernel, const signal_t<T> &desc, V value) {
    if (alloc<T>(kernel) != 0) return -1;
    const int n = kernel.n, k = desc.n;
    if (n <= 1 || k <= 1) {
        if (zero<T>(kernel) != 0) return -1;
        if (n >= 1 && k >= 1) kernel.data[0] = desc.data[0];
        return 0;
    }
    if (n % 2 || desc.cplx) return -1;
    T *d = kernel.data;
    d[0] = desc.data[0];
    const int32_t was_cplx = kernel.cplx;
    kernel.cplx = 0;
    const T step = n == 2 ? T(0) : T(2) * precision<T>::pi / T(n - 2);
    const int mid = n / 2;
    T theta = 0;
    for (int j = 0; j <= (n - 2) / 2; ++j, theta += step)
        d[mid + j] = d[mid - j] = value(desc.data, k, theta);
    return was_cplx ? rtoc<T>(kernel) : 0;
}

// build() with the description copied first when the kernel is written over
// it (the same record, or records sharing storage).
template <class T, class V>
int build_apart(signal_t<T> &kernel, const signal_t<T> &desc, V value) {
    if (&kernel != &desc && (kernel.data != desc.data || !desc.data))
        return build<T>(kernel, desc, value);
    signal_t<T> own;
    init<T>(own);
    const int status = copy<T>(own, desc) == 0 ? build<T>(kernel, own, value) : -1;
    destroy<T>(own);
    return status;
}

// Width, then coefficients: F(x) for a value both families hold as the same
// decimal number, FD(f, d) where the double family holds more digits.
// clang-format off
#define DSP_RSMP_0(F, FD)                                                                      \
    F(8.0) FD(0.039834481, 0.03983447921) FD(0.12957005, 0.129570053212)                       \
    FD(0.15629953, 0.156299536071) FD(0.084178351, 0.084178353573)                             \
    FD(0.018708674, 0.018708674012) FD(0.0010942825, 0.001094282508)
#define DSP_RSMP_1(F, FD)                                                                      \
    F(13.0) F(0.053343888) F(0.099488407) F(-0.55235863) F(-0.96833593) F(0.29091427)           \
    F(1.1917465) F(0.60308439) F(0.072126865)
#define DSP_RSMP_2(F, FD)                                                                      \
    F(8.0) F(0.125) F(0.19411708) F(0.088834807) F(0.022122754) F(0.0024789025) F(7.384843e-05) \
    F(3.3711252e-09) F(3.7491144e-09) F(-1.5946519e-08) F(1.0611266e-08) F(3.180517e-09)
#define DSP_RSMP_3(F, FD)                                                                      \
    F(10.0) F(0.099919662) F(0.20014267) F(0.19999889) F(0.19426551) F(0.14110571)              \
    F(0.054357883) F(0.0078228945) F(0.00016489124)
// Mode 4 keeps its 31 tail terms below 2e-6, the smallest negative
// subnormal float (-1.4012985e-45) among them.
#define DSP_RSMP_4(F, FD)                                                                      \
    F(13.0) FD(0.07692308, 1.0 / 13) FD(0.36361611, 0.3636161165001)                           \
    FD(1.1944897, 1.1944897462217769) F(1.8352455) F(1.2924627) F(0.4147996) F(0.051037475)    \
    F(0.0012502776) F(2.4974344e-07) F(9.7548991e-07) F(-1.2434185e-06) F(6.6735993e-07)       \
    F(-1.6808751e-07) F(-1.4012985e-45) F(-2.7678817e-08) F(2.860854e-08) F(1.0319739e-06)     \
    F(-1.114082e-06) F(3.1005814e-07) F(-6.2820881e-08) F(-6.0338607e-08) F(3.3840141e-07)     \
    F(-1.0192139e-06) F(3.9946127e-07) F(6.7973872e-07) F(-2.8003066e-07) F(-1.4012985e-45)    \
    F(2.9370358e-07) F(-7.9248446e-07) F(-1.2840061e-07) F(9.3090887e-07) F(-3.2972761e-07)    \
    F(7.0902125e-08) F(3.566673e-08) F(-3.217759e-07) F(3.1156813e-07) F(8.6032429e-07)        \
    F(-8.1141309e-07) F(2.8057835e-08)
// clang-format on
#define DSP_F_FLOAT(x) x##f,
#define DSP_FD_FLOAT(x, y) x##f,
#define DSP_F_DOUBLE(x) x,
#define DSP_FD_DOUBLE(x, y) y,
#define DSP_RSMP_TABLES(T, F, FD)                      \
    template <>                                        \
    struct rsmp_tables<T> {                            \
        static constexpr T m0[] = {DSP_RSMP_0(F, FD)}; \
        static constexpr T m1[] = {DSP_RSMP_1(F, FD)}; \
        static constexpr T m2[] = {DSP_RSMP_2(F, FD)}; \
        static constexpr T m3[] = {DSP_RSMP_3(F, FD)}; \
        static constexpr T m4[] = {DSP_RSMP_4(F, FD)}; \
    };

template <class T>
struct rsmp_tables;
DSP_RSMP_TABLES(float, DSP_F_FLOAT, DSP_FD_FLOAT)
DSP_RSMP_TABLES(double, DSP_F_DOUBLE, DSP_FD_DOUBLE)

#undef DSP_RSMP_0
#undef DSP_RSMP_1
#undef DSP_RSMP_2
#undef DSP_RSMP_3
#undef DSP_RSMP_4
#undef DSP_F_FLOAT
#undef DSP_FD_FLOAT
#undef DSP_F_DOUBLE
#undef DSP_FD_DOUBLE
#undef DSP_RSMP_TABLES

}  // namespace

template <class T>
int rsmp_cos(signal_t<T> &kernel, const signal_t<T> &desc) {
    return build_apart<T>(kernel, desc, [](const T *c, int k, T theta) {
        T v = c[1], angle = theta;
        for (int i = 2; i < k; ++i, angle += theta) v += c[i] * rt::cos(angle);
        return v;
    });
}

template <class T>
int rsmp_pcos(signal_t<T> &kernel, const signal_t<T> &desc) {
    return build_apart<T>(kernel, desc, [](const T *c, int k, T theta) {
        const T x = rt::cos(theta);
        T v = c[k - 1];
        for (int i = k - 2; i >= 1; --i) v = v * x + c[i];
        return v;
    });
}

template <class T>
rsmp_description<T> rsmp_stored(int mode) {
    using S = rsmp_tables<T>;
    switch (mode) {
        case 0:
            return {S::m0, int32_t(std::size(S::m0)), true};
        case 1:
            return {S::m1, int32_t(std::size(S::m1)), true};
        case 2:
            return {S::m2, int32_t(std::size(S::m2)), false};
        case 3:
            return {S::m3, int32_t(std::size(S::m3)), false};
        case 4:
            return {S::m4, int32_t(std::size(S::m4)), false};
        default:
            return {nullptr, 0, false};
    }
}

template <class T>
int rsmp_kernel(signal_t<T> &kernel, int mode) {
    const rsmp_description<T> stored = rsmp_stored<T>(mode);
    if (!stored.values) return -1;
    // A description record over the stored table (not owned, never written).
    signal_t<T> desc;
    init<T>(desc);
    desc.data = const_cast<T *>(stored.values);
    desc.n = stored.n;
    return stored.polynomial ? rsmp_pcos<T>(kernel, desc) : rsmp_cos<T>(kernel, desc);
}

#define DSP_INSTANTIATE(T)                                         \
    template int rsmp_cos<T>(signal_t<T> &, const signal_t<T> &);  \
    template int rsmp_pcos<T>(signal_t<T> &, const signal_t<T> &); \
    template rsmp_description<T> rsmp_stored<T>(int);              \
    template int rsmp_kernel<T>(signal_t<T> &, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
