// Arithmetic and math functions in place: values against the runtime
// functions, the documented substitutes and the kept single-precision paths.
#include <algorithm>
#include <complex>
#include <cstring>
#include <limits>
#include <type_traits>

#include "elementwise/bessel.hpp"
#include "frame/math.hpp"  // the runtime's y0, y1 under their platform names
#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

using dsp::single;
template <class T>
constexpr T L = dsp::precision<T>::large;
template <class T>
constexpr T F = std::numeric_limits<T>::min();
template <class T>
T rt(double (*f)(double), T v) {
    return T(f(double(v)));
}

// Units in the last place between a and b (0 for equal values, NaN and NaN,
// equal infinities).
template <class T>
int64_t ulp_distance(T a, T b) {
    if (a == b || (a != a && b != b)) return 0;
    if (a != a || b != b || std::isinf(a) || std::isinf(b)) return INT64_MAX;
    using I = std::conditional_t<sizeof(T) == 4, int32_t, int64_t>;
    auto key = [](T v) {  // monotonic integer image of v
        I i;
        std::memcpy(&i, &v, sizeof i);
        return i < 0 ? int64_t(std::numeric_limits<I>::min()) - i : int64_t(i);
    };
    const int64_t d = key(a) - key(b);
    return d < 0 ? -d : d;
}

}  // namespace

template <class T>
class Arith : public ::testing::Test {};
TYPED_TEST_SUITE(Arith, Precisions);

TYPED_TEST(Arith, LinearOperations) {
    using T = TypeParam;
    using V = std::vector<T>;
    Rec<T> r({1, -2, 3, 4}, true), real({1, 2, 3}), empty;
    EXPECT_EQ(DSP(i_neg)(&r), 0);
    expect_values<T>(*r, {-1, 2, -3, -4});
    EXPECT_EQ(DSP(i_offset)(&r, T(10)), 0);  // real parts only
    expect_values<T>(*r, {9, 2, 7, -4});
    EXPECT_EQ(DSP(i_scale)(&r, T(0.5)), 0);
    expect_values<T>(*r, {4.5, 1, 3.5, -2});
    EXPECT_EQ(DSP(i_cscale)(&r, T(2), T(3)), 0);  // (re 2 - im 3, re 3 + im 2)
    expect_values<T>(*r, {6, 15.5, 13, 6.5});
    EXPECT_EQ(DSP(i_offset)(&real, T(1)), 0);
    expect_values<T>(*real, {2, 3, 4});
    for (auto f : {DSP(i_neg), DSP(i_recip), DSP(i_sqrt), DSP(i_log), DSP(i_exp10)})
        EXPECT_EQ(f(&empty), 0);  // nothing to do, no failure
    EXPECT_EQ(DSP(i_addcos)(&empty, 0, T(1), T(1), T(0)), 0);

    // A real record wrapping caller storage is widened into owned storage;
    // when the storage cannot grow cscale fails, the record complex. The
    // caller's array is never written.
    T buf[3] = {1, -2, 4};
    Rec<T> w, f;
    *w = wrap(buf, 3);
    EXPECT_EQ(DSP(i_cscale)(&w, T(1), T(-1)), 0);
    expect_values<T>(*w, {1, -1, -2, 2, 4, -4});
    *f = wrap(buf, 2);
    void (*prev)(sig<T> *, int, int) = nullptr;
    DSP(_lib_realloc)([](sig<T> *s, int, int) { s->data = nullptr; }, &prev);
    EXPECT_EQ(DSP(i_cscale)(&f, T(1), T(1)), -1);
    DSP(_lib_realloc)(prev, nullptr);
    EXPECT_EQ(f->cplx, 1);
    EXPECT_EQ(V(buf, buf + 3), (V{1, -2, 4}));
}

TYPED_TEST(Arith, RealFunctionsFollowRuntimeAndSubstitutes) {
    using T = TypeParam;
    const T E = single<T> ? T(34.538776f) : T(230.25850929940458);
    const T X = single<T> ? T(15) : T(100), ln10 = single<T> ? T(2.3025851f) : T(2.302585092994046);
    const T inf = std::numeric_limits<T>::infinity();
    std::vector<T> v{T(-200), T(-50),   T(-2.5),     T(-1), T(-0.25),
                     T(0),    F<T> / 4, T(0.5),      T(1),  T(3.75),
                     T(40),   T(300),   T(2) * L<T>, F<T>,  std::nextafter(T(1), inf)};
    for (T t : {E, -E, X}) v.insert(v.end(), {std::nextafter(t, -inf), t, std::nextafter(t, inf)});
    const T lnF = rt<T>(std::log, F<T>), lgF = rt<T>(std::log10, F<T>);
    // The logarithms and exponentials run on the vector units, within one
    // unit in the last place of the runtime function (the sweep in
    // VectorMathMatchesRuntime goes through many more arguments).
    auto run = [&](auto f, auto want, int64_t ulps = 0) {
        Rec<T> r;
        r.set(v);
        EXPECT_EQ(f(&r), 0);
        for (size_t i = 0; i < v.size(); ++i)
            EXPECT_LE(ulp_distance(r->data[i], T(want(v[i]))), ulps)
                << "x = " << v[i] << " got " << r->data[i];
    };
    run(
        DSP(i_log), [&](T x) { return x < F<T> ? lnF : rt<T>(std::log, x); }, 1);
    run(
        DSP(i_log10), [&](T x) { return x < F<T> ? lgF : rt<T>(std::log10, x); }, 1);
    run(
        DSP(i_exp), [&](T x) { return x > E ? L<T> : rt<T>(std::exp, x); }, 1);
    run(DSP(i_sqrt), [&](T x) { return x < 0 ? T(0) : rt<T>(std::sqrt, x); });
    run(DSP(i_square), [&](T x) { return std::fabs(x) > L<T> ? L<T> : x * x; });
    run(DSP(i_sinh), [&](T x) { return x > E ? L<T> : x < -E ? -L<T> : rt<T>(std::sinh, x); });
    run(DSP(i_cosh), [&](T x) { return std::fabs(x) > E ? L<T> : rt<T>(std::cosh, x); });
    run(DSP(i_asin), [&](T x) { return std::fabs(x) > 1 ? T(0) : rt<T>(std::asin, x); });
    run(DSP(i_acos), [&](T x) { return std::fabs(x) > 1 ? T(0) : rt<T>(std::acos, x); });
    run(DSP(i_besy0), [&](T x) { return x <= 0 ? T(0) : rt<T>(dsp::rt::y0<double>, x); });
    run(DSP(i_besy1), [&](T x) { return x <= 0 ? T(0) : rt<T>(dsp::rt::y1<double>, x); });
    run(
        DSP(i_exp10), [&](T x) { return x > X ? L<T> : rt<T>(std::exp, T(x * ln10)); }, 1);
    if (!single<T>) {  // the single family's walks are tested apart
        run(DSP(i_recip), [&](T x) { return x == 0 ? L<T> : T(1) / x; });
        run([](sig<T> *s) { return DSP(i_db)(s, T(20)); },
            [&](T x) { return x < F<T> ? T(20) * lgF : T(20) * rt<T>(std::log10, x); }, 1);
    }
    // Documented values.
    EXPECT_EQ(lnF, single<T> ? T(-87.33655f) : T(-708.3964185322641));
    EXPECT_EQ(lgF, single<T> ? T(-37.92978f) : T(-307.6526555685888));
    EXPECT_NEAR(applied<T>({1}, false, DSP(i_asin))[0], dsp::precision<T>::pi / 2, ulps<T>());
    // The real-only functions refuse a complex record and leave it as it was.
    for (auto f : {DSP(i_sinh), DSP(i_cosh), DSP(i_asin), DSP(i_acos), DSP(i_besy0), DSP(i_besy1)})
        EXPECT_EQ(applied<T>({1, 2}, true, f, T(1), -1), (std::vector<T>{1, 2}));
}

TYPED_TEST(Arith, ComplexFunctions) {
    using T = TypeParam;
    using C = std::complex<double>;
    const std::vector<T> v{-4, 0,  3,        -4,       T(0.5), 2,         0,
                           0,  -1, T(-1e-3), 2 * L<T>, 1,      -2 * L<T>, T(0.5)};
    double tol = ulps<T>(8);
    auto run = [&](auto f, auto want) {
        Rec<T> r;
        r.set(v, true);
        EXPECT_EQ(f(&r), 0);
        for (size_t i = 0; i < v.size() / 2; ++i) {
            const C w = want(C(v[2 * i], v[2 * i + 1]));
            EXPECT_NEAR(r->data[2 * i], w.real(), tol * (1 + std::abs(w))) << "point " << i;
            EXPECT_NEAR(r->data[2 * i + 1], w.imag(), tol * (1 + std::abs(w))) << "point " << i;
        }
    };
    const double Ld = double(L<T>), L2 = double(dsp::precision<T>::large_sq);
    const double E = single<T> ? 34.538776 : 230.25850929940458, X = single<T> ? 15 : 100;
    auto cl = [&](double a) { return std::clamp(a, -Ld, Ld); };
    auto big = [&](C z) { return std::fabs(z.real()) > Ld || std::fabs(z.imag()) > Ld; };
    auto lg = [&](C z, double base) {  // (0.5 ln L, phase of the clamped point) beyond L
        if (big(z))
            return C(0.5 * std::log(Ld), std::atan2(cl(z.imag()), cl(z.real()))) / std::log(base);
        return std::norm(z) < double(F<T>) ? C(std::log(double(F<T>)) / std::log(base), 0)
                                           : std::log(z) / std::log(base);
    };
    auto rect = [](double m, double q) { return C(m * std::cos(q), m * std::sin(q)); };
    auto sq = [&](double a) { return std::fabs(a) > Ld ? L2 : a * a; };
    auto exp10_ref = [&](C z) {  // magnitude 10^re (L above X, -L below -L), phase im ln 10
        const double m = z.real() > X ? Ld : z.real() < -Ld ? -Ld : std::pow(10.0, z.real());
        return rect(m, z.imag() * std::log(10.0));
    };
    run(DSP(i_sqrt),
        [&](C z) { return big(z) ? std::polar(std::sqrt(Ld), std::arg(z) / 2) : sqrt(z); });
    run(DSP(i_square),
        [&](C z) { return C(sq(z.real()) - sq(z.imag()), 2 * cl(z.real()) * cl(z.imag())); });
    run(DSP(i_exp), [&](C z) { return rect(z.real() > E ? Ld : std::exp(z.real()), z.imag()); });
    run(DSP(i_log), [&](C z) { return lg(z, std::exp(1.0)); });
    tol *= 10;
    run(DSP(i_exp10), exp10_ref);
    if (single<T>) return;  // the single log10, db and recip paths are tested apart
    run(DSP(i_log10), [&](C z) { return lg(z, 10); });
    run([](sig<T> *s) { return DSP(i_db)(s, T(10)); }, [&](C z) { return 10.0 * lg(z, 10); });
    run(DSP(i_recip), [&](C z) {
        return big(z) ? std::conj(z) * 1e-100 : z == 0.0 ? C(0) : 1.0 / z;
    });
}

TYPED_TEST(Arith, LimitAndFlag) {
    using T = TypeParam;
    using V = std::vector<T>;
    // The single family's export takes an extra, unused argument.
    const auto limit = pick<T>(
        [](dspf_signal *s, float a, float b, int *f) { return dspfi_limit(s, 12345, a, b, f); },
        [](dsp_signal *s, double a, double b, int *f) { return dspi_limit(s, a, b, f); });
    Rec<T> r({-7, 2, 5, 9, -5, 0}, true), in({-1, 1}), empty;
    int flag = -1;
    EXPECT_EQ(limit(&r, T(5), T(-5), &flag), 0);  // the bounds in either order
    EXPECT_EQ(flag, 1);
    // The single family makes every scalar not above the range the lower bound.
    expect_values<T>(*r, pick<T>(V{-5, -5, -5, 5, -5, -5}, V{-5, 2, 5, 5, -5, 0}));
    EXPECT_EQ(limit(&in, T(-1), T(1), &flag), 0);  // the bounds are inside: no flag
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(limit(&in, T(-1), T(1), nullptr), 0);
    expect_values<T>(*in, pick<T>(V{-1, -1}, V{-1, 1}));  // single: hi itself is not above
    flag = -1;
    EXPECT_EQ(limit(&empty, T(0), T(1), &flag), 0);
    EXPECT_EQ(flag, 0);
}

TYPED_TEST(Arith, AddcosOscillator) {
    using T = TypeParam;
    const int n = 1000;
    const T f = T(0.0123), A = T(2.5), p = T(0.7), delta = T(0.5);
    const T w = ((delta + delta) * dsp::precision<T>::pi) * f;
    const double tol = single<T> ? 2e-4 : 1e-11;
    for (int mode = 0; mode < 3; ++mode) {  // real; complex; complex exponential
        Rec<T> r;
        r.set(std::vector<T>(mode ? 2 * n : n, T(1)), mode > 0, delta);
        EXPECT_EQ(DSP(i_addcos)(&r, mode == 2 ? 1 : 0, f, A, p), 0);
        for (int i = 0; i < n; ++i) {
            const long double ph = (long double)w * i + p;
            const T im = mode ? r->data[2 * i + 1] : T(1);
            EXPECT_NEAR(r->data[mode ? 2 * i : i], 1 + A * std::cos(ph), tol) << "point " << i;
            EXPECT_NEAR(im, mode == 2 ? 1 + A * std::sin(ph) : 1, tol) << "point " << i;
        }
        // Every 256 points the oscillator restarts from the exact phase.
        const T u = T(std::cos(std::fmod(double(p) + double(w) * 512.0, 6.283185307179586)));
        EXPECT_EQ(mode ? r->data[1024] : r->data[512], T(1) + A * u);
    }
    Rec<T> c({1, 2});
    DSP(i_addcos)(&c, 0, T(0), T(3), T(0));  // frequency 0, phase 0: adds A
    expect_values<T>(*c, {4, 5});
}

TYPED_TEST(Arith, BesselI0AgainstScipy) {
    using T = TypeParam;
    std::vector<double> xs;
    for (double x = -30; x <= 30; x += 0.37) xs.push_back(double(T(x)));  // as T holds it
    xs.push_back(16.0);
    DSP_NEED_PYTHON();
    const auto want = python("import scipy.special\nprint(*scipy.special.i0(x))", xs);
    ASSERT_EQ(want.size(), xs.size());
    for (size_t i = 0; i < xs.size(); ++i)
        EXPECT_NEAR(dsp::bessel_i0<T>(T(xs[i])) / want[i], 1.0, 1e-6) << "x = " << xs[i];
}

// The kept single-precision paths.

namespace {

using VF = std::vector<float>;

// The whole storage of a record of v holding n points after op: the walk
// may reach spare scalars beyond n but never past the storage.
template <class Op>
VF storage(Op op, const VF &v, int n) {
    Rec<float> r;
    r.set(v);
    r->n = n;
    EXPECT_EQ(op(r.get()), 0);
    return VF(r->data, r->data + v.size());
}

}  // namespace

TEST(ArithSingle, Besi0ClampsAndRefusesComplex) {
    EXPECT_EQ(applied<float>({-40, 0, 3, 34}, false, dspfi_besi0),
              (VF{L<float>, 1, dsp::bessel_i0(3.0f), dsp::bessel_i0(34.0f)}));
    EXPECT_EQ(applied<float>({1, 2}, true, dspfi_besi0, 1.0f, -1), (VF{1, 2}));
}

TEST(ArithSingle, RecipWalkStaysInStorage) {
    const float l = L<float>, s = 1.0f / l;
    // Storage 6, 4 points: the walk enters the spare scalars.
    EXPECT_EQ(storage(dspfi_recip, {2, 0, 5, 4, 7, 9}, 4), (VF{0.5f, l, 0, 0.25f, 1 / 7.0f, 9}));
    // Storage exactly n: the trailing zero is dropped.
    EXPECT_EQ(storage(dspfi_recip, {1, 2, 4, -0.0f}, 4), (VF{1, 0.5f, 0.25f, l}));
    // A zero mid-record copies its sign.
    const VF exact = storage(dspfi_recip, {1, -0.0f, 3, 8, 0}, 5);
    EXPECT_EQ(exact, (VF{1, l, -0.0f, 0.125f, l}));
    EXPECT_TRUE(std::signbit(exact[2]));
    // Complex: a fixed 1/L, L for m = 0, 1e-15 beyond L.
    EXPECT_EQ(applied<float>({3, 4, 0, 0, 2e15f, 1}, true, dspfi_recip),
              (VF{s * 3, -(4 * s), 0, -0.0f, 2e15f * 1e-15f, -(1 * 1e-15f)}));
}

TEST(ArithSingle, DbWalkStaysInStorage) {
    const float kF = 10 * rt<float>(std::log10, F<float>);
    auto db10 = [](sig<float> *x) { return dspfi_db(x, 10); };
    // Storage 8, 4 points: the walk reaches into the spare scalars.
    EXPECT_EQ(storage(db10, {100, 1000, 0, 10, 1e4f, 1e5f, 1e6f, 1e7f}, 4),
              (VF{kF, 20, kF, kF, 10, kF, 50, 1e7f}));
    EXPECT_EQ(storage(db10, {100, 1000, 0, 10}, 4), (VF{kF, 20, kF, kF}));  // storage exactly n
    // Complex: the real part is taken as L, so m = im^2 + L^2 and the phase
    // is atan2(im, L), both times k.
    const float l = L<float>, l2 = 9.99999944e29f, ph = float(std::atan2(double(l), double(l)));
    for (float k : {1.0f, 20.0f}) {
        Rec<float> c({-5, 3e15f, 123, 0, 0, 0}, true);
        EXPECT_EQ(k == 1 ? dspfi_log10(&c) : dspfi_db(&c, k), 0);
        const float half = k * 0.5f * rt<float>(std::log10, l2 + l2);
        const float mid = k * 0.5f * rt<float>(std::log10, 0 + l2);
        expect_values<float>(*c, {half, k * 0.4342945f * ph, mid, 0, mid, 0});
    }
}

TEST(ArithSingle, Exp10StopsBelowMinusL) {
    EXPECT_EQ(applied<float>({1, -2e15f, 2, 20}, false, dspfi_exp10),
              (VF{float(std::exp(double(2.3025851f))), -2e15f, 2, 20}));
    EXPECT_EQ(applied<double>({1, -2e100, 2, 200}, false, dspi_exp10),
              (std::vector<double>{std::exp(2.302585092994046), 0, std::exp(2 * 2.302585092994046),
                                   1e100}));
}
