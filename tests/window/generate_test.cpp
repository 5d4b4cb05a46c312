// Window generation: coefficient tables, samples against independent
// formulas and scipy, normalisation modes, layouts, flags and rotation, and
// the cache of generated windows.
#include <cmath>
#include <string>

#include "elementwise/bessel.hpp"
#include "support/python.hpp"
#include "support/support.hpp"
#include "window/catalogue.hpp"
#include "window/window.hpp"

using namespace dsp_test;

namespace {

// The record of n ones after op (a family's own operation).
template <class T, class F>
std::vector<double> gen(F op, int n) {
    const std::vector<T> v = applied<T>(std::vector<T>(size_t(n), T(1)), false, op);
    return std::vector<double>(v.begin(), v.end());
}

// The window itself: a record of ones windowed without rotation.
template <class T>
std::vector<double> make(int kind, int n, int flags, T p = 0) {
    return gen<T>(
        [&](sig<T> *x) {
            return (flags & 8) ? pick<T>(dspfi_window2, dspi_window2)(x, kind, flags | 32, p)
                               : pick<T>(dspfi_window, dspi_window)(x, kind, flags | 32);
        },
        n);
}

// The mean of the window's values raised to the power p, to the power 1/p.
double mean_of(const std::vector<double> &w, int p = 1) {
    long double s = 0;
    for (double v : w) s += std::pow((long double)v, p);
    return double(std::pow(s / w.size(), 1.0L / p));
}

template <class T>
void expect_close(const std::vector<double> &got, const std::vector<double> &want, double tol,
                  const std::string &what) {
    ASSERT_EQ(got.size(), want.size()) << what;
    for (size_t i = 0; i < got.size(); ++i)
        EXPECT_NEAR(got[i], want[i], tol) << what << " [" << i << "]";
}

}  // namespace

DSP_TYPED_SUITE(WindowGenerate);

TYPED_TEST(WindowGenerate, CoefficientTablesAreConsistent) {
    using T = TypeParam;
    const double tol = 3e-7;
    for (int kind : {0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}) {
        const auto mean = dsp::cosine_coefficients<T>(kind, 0),
                   rms = dsp::cosine_coefficients<T>(kind, 1),
                   peak = dsp::cosine_coefficients<T>(kind, 2);
        ASSERT_TRUE(mean.a && rms.a && peak.a && mean.m == peak.m && rms.m == peak.m) << kind;
        long double sum = 0, energy = 0;
        for (int j = 0; j < peak.m; ++j) {
            sum += peak.a[j];
            energy += (long double)rms.a[j] * rms.a[j] * (j ? 0.5L : 1.0L);
            EXPECT_NEAR(mean.a[j] / mean.a[0], peak.a[j] / peak.a[0], tol) << kind;
            // The two families hold the same values.
            EXPECT_NEAR(dsp::cosine_coefficients<float>(kind, 1).a[j],
                        dsp::cosine_coefficients<double>(kind, 1).a[j], tol)
                << kind;
        }
        EXPECT_NEAR(double(sum), 1.0, tol) << kind;
        EXPECT_NEAR(double(energy), 1.0, tol) << kind;
        // Unit-mean a0 is 1 but for the flat-tops (kinds 8 to 13).
        EXPECT_TRUE(kind <= 7 ? mean.a[0] == T(1) : mean.a[0] < T(1)) << kind;
    }
    EXPECT_EQ(dsp::cosine_coefficients<T>(3, 2).a[0], pick<T>(0.540000021f, 0.54));
    EXPECT_EQ(dsp::cosine_coefficients<double>(6, 2).a[3], 0.012604);
}

TYPED_TEST(WindowGenerate, RotationKindsAndFailures) {
    using T = TypeParam;
    const double tol = 1e-6;
    // Default: rotated so that the centre is at index 0; a complex record is
    // multiplied point by point (the samples themselves against scipy below).
    Rec<T> x({1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1, 2}, true, T(0.5));
    EXPECT_OK(DSP(i_window)(&x, DSP_WINDOW_HANN, 2), *x,
              {1, 2, T(0.853553), T(1.707107), 0.5, 1, T(0.146447), T(0.292893), 0, 0, T(0.146447),
               T(0.292893), 0.5, 1, T(0.853553), T(1.707107)},
              tol);
    EXPECT_EQ(x->delta, T(0.5));
    // Odd length: centre at index 2, distances 1 and 2.
    const double c1 = 0.5 + 0.5 * std::cos(2 * M_PI / 5), c2 = 0.5 + 0.5 * std::cos(4 * M_PI / 5);
    Rec<T> y({1, 1, 1, 1, 1});
    EXPECT_OK(DSP(i_window)(&y, DSP_WINDOW_HANN, 2), *y, {1, T(c1), T(c2), T(c2), T(c1)}, tol);
    // Uniform: rotated only on request.
    x.set({1, 2, 3, 4, 5});
    EXPECT_OK(DSP(i_window)(&x, DSP_WINDOW_UNIFORM, 0), *x, {1, 2, 3, 4, 5});
    EXPECT_OK(DSP(i_window)(&x, DSP_WINDOW_UNIFORM, 16), *x, {3, 4, 5, 1, 2});
    // Mode 3, explicit width in the plain operation, symmetric cosine sums
    // and triangles, width for the parameterised families: -1, x unchanged.
    for (int flags : {3, 8, 4}) EXPECT_EQ(DSP(i_window)(&x, DSP_WINDOW_HANN, flags), -1) << flags;
    EXPECT_EQ(DSP(i_window)(&x, DSP_WINDOW_BARTLETT, 4), -1);
    EXPECT_EQ(DSP(i_window2)(&x, DSP_WINDOW_BARTLETT, 8, T(4)), -1);
    EXPECT_EQ(DSP(i_window2)(&x, DSP_WINDOW_KAISER70, 8, T(4)), -1);
    EXPECT_EQ(DSP(i_window)(&x, 25, 0), -1);
    EXPECT_EQ(DSP(i_window_gauss)(&x, T(0.2), 8), -1);
    EXPECT_EQ(DSP(i_window_kaiser)(&x, T(3), 8), -1);
    EXPECT_EQ(DSP(i_window_sinc)(&x, T(3), T(1), 8), -1);
    EXPECT_EQ(DSP(i_window_tukey)(&x, T(0.5), 8), -1);
    expect_values<T>(*x, {3, 4, 5, 1, 2});
    // An empty record (one-point records are among the normalisation cases).
    Rec<T> e;
    EXPECT_EQ(DSP(i_window)(&e, DSP_WINDOW_BLACKMAN, 0), 0);
    EXPECT_EQ(e->n, 0);
}

TYPED_TEST(WindowGenerate, NormalisationModes) {
    using T = TypeParam;
    for (int kind = 1; kind <= 24; ++kind) {
        // Hann's unit-rms set and the flat-top kinds hold nine-digit
        // coefficients in both families.
        const double tol = std::is_same_v<T, float>                   ? 2e-6
                           : (kind == 2 || (kind >= 8 && kind <= 13)) ? 3e-8
                                                                      : 1e-12;
        for (int n : {1, 2, 3, 4, 5, 6, 8, 13, 64, 101, 1000}) {
            const std::vector<double> m0 = make<T>(kind, n, 0), m1 = make<T>(kind, n, 1),
                                      m2 = make<T>(kind, n, 2);
            const std::string what = "kind " + std::to_string(kind) + " n " + std::to_string(n);
            const double a0 =
                dsp::is_cosine_kind(kind) ? dsp::cosine_coefficients<T>(kind, 0).a[0] : 1.0;
            EXPECT_NEAR(mean_of(m0), a0, tol * 4) << what;
            EXPECT_NEAR(mean_of(m1, 2), 1.0, tol * 4) << what;
            EXPECT_NEAR(m2[size_t(n / 2)], 1.0, tol) << what;
            EXPECT_NEAR(*std::max_element(m2.begin(), m2.end()), 1.0, tol) << what;
            // The metrics agree: the scale is the centre of the normalised
            // window; the ENBW is n times the sum of squares over the squared
            // sum, times a0^2 (the flat-tops' unit-mean a0 lies below 1). The
            // single family's odd triangle is checked on its own.
            T s0, s1, e;
            ASSERT_EQ(DSP(_window_scale)(&s0, kind, 0, n) + DSP(_window_scale)(&s1, kind, 1, n) +
                          DSP(_window_enbw)(&e, kind, n),
                      0);
            EXPECT_NEAR(double(s1), m1[size_t(n / 2)], 2e-6 * double(s1)) << what;
            if (kind == 1 && n % 2 && std::is_same_v<T, float>) continue;
            EXPECT_NEAR(double(s0), m0[size_t(n / 2)], 2e-6 * double(s0)) << what;
            EXPECT_NEAR(double(e), std::pow(mean_of(m2, 2) / mean_of(m2), 2) * a0 * a0,
                        4e-6 * double(e))
                << what;
        }
    }
}

TYPED_TEST(WindowGenerate, AgainstScipy) {
    using T = TypeParam;
    const double tol = std::is_same_v<T, float> ? 3e-6 : 1e-12;
    // Code 101 of the filter-design operation: Kaiser from the transition
    // width p, symmetric, unit peak.
    const int nf = 31;
    const double p = 0.1, beta = 0.1102 * (7.95 + 14.36 * (nf - 1) * p - 8.7);
    DSP_NEED_PYTHON();
    const std::vector<double> ref = python(R"(
import scipy.signal.windows as w
out = []
for n in (8, 64):
    out += list(w.hann(n, sym=False)) + list(w.hamming(n, sym=False)) + list(w.blackman(n, sym=False))
    out += list(w.kaiser(n, 9.473960131326246, sym=False)) + list(w.tukey(n, 0.25, sym=False))
    out += list(w.gaussian(n, 0.1583722 * n, sym=False))
for n in (7, 8):
    out += list(w.kaiser(n, 5.5, sym=True)) + list(w.gaussian(n, 0.3 * n, sym=True))
out += list(w.kaiser()" + std::to_string(nf) +
                                           ", " + std::to_string(beta) + R"(, sym=True))
print(' '.join(repr(float(v)) for v in out))
)");
    size_t at = 0;
    auto next = [&](int n) { return take<double>(ref, at, size_t(n)); };
    for (int n : {8, 64}) {
        for (int kind : {int(DSP_WINDOW_HANN), int(DSP_WINDOW_HAMMING), int(DSP_WINDOW_BLACKMAN),
                         int(DSP_WINDOW_KAISER70), 24})
            expect_close<T>(make<T>(kind, n, 2), next(n), kind >= 14 ? tol * 10 : tol,
                            "kind " + std::to_string(kind));
        // Gauss60 in the double family (the single family stores 0.158372194).
        const std::vector<double> g = next(n);
        if (std::is_same_v<T, double>)
            expect_close<T>(make<T>(DSP_WINDOW_GAUSS60, n, 2), g, tol, "gauss60");
    }
    for (int n : {7, 8}) {
        expect_close<T>(gen<T>([](sig<T> *x) { return DSP(i_window_kaiser)(x, T(5.5), 38); }, n),
                        next(n), tol * 10, "kaiser sym");
        expect_close<T>(gen<T>([](sig<T> *x) { return DSP(i_window_gauss)(x, T(0.3), 38); }, n),
                        next(n), tol, "gauss sym");
    }
    expect_close<T>(gen<T>([&](sig<T> *x) { return DSP(i_window_fir)(x, 101, T(p)); }, nf),
                    next(nf), std::is_same_v<T, float> ? 1e-5 : 1e-9, "fir kaiser");
    EXPECT_EQ(at, ref.size());
}

TYPED_TEST(WindowGenerate, LayoutsAndFamilies) {
    using T = TypeParam;
    const double tol = std::is_same_v<T, float> ? 2e-6 : 1e-13;
    auto gauss = [](T sigma, int f, int n) {
        return gen<T>([&](sig<T> *x) { return DSP(i_window_gauss)(x, sigma, f); }, n);
    };
    auto sinc = [](int f, int n) {
        return gen<T>([&](sig<T> *x) { return DSP(i_window_sinc)(x, T(2), T(1.5), f); }, n);
    };
    auto tukey = [](T r, int f, int n) {
        return gen<T>([&](sig<T> *x) { return DSP(i_window_tukey)(x, r, f); }, n);
    };
    // Odd n: symmetric sampling equals periodic sampling.
    for (int n : {1, 5, 9})
        for (int mode : {0, 1, 2}) {
            EXPECT_EQ(gauss(T(0.2), mode | 32, n), gauss(T(0.2), mode | 36, n));
            EXPECT_EQ(sinc(mode | 32, n), sinc(mode | 36, n));
            EXPECT_EQ(tukey(T(0.5), mode | 32, n), tukey(T(0.5), mode | 36, n));
        }
    // Even n, symmetric: distances 0.5, 1.5, ... about the point between
    // c-1 and c. The single family's sinc power uses sin(u), not sin(u)/u.
    const int n = 6;
    std::vector<double> g(n), sc(n), tk(n);
    for (int i = 0; i < n; ++i) {
        const long double d = std::fabs(i - 2.5L), u = d * 2 * 2 / n, h = 0.5L * n / 2;
        g[i] = double(std::exp(-d * d / (2 * 0.04L * n * n)));
        sc[i] = double(std::pow(std::is_same_v<T, float> ? std::sin(u) : std::sin(u) / u, 1.5L));
        tk[i] = d <= h ? 1.0 : double(0.5L + 0.5L * std::cos(2 * M_PIl / (0.5L * n) * (d - h)));
    }
    expect_close<T>(gauss(T(0.2), 38, n), g, tol, "gauss");
    expect_close<T>(sinc(38, n), sc, tol, "sinc");
    expect_close<T>(tukey(T(0.5), 38, n), tk, tol, "tukey");
    // Sigma 0: a single 1 at the centre (two for symmetric even n).
    EXPECT_EQ(gauss(T(0), 34, 6), (std::vector<double>{0, 0, 0, 1, 0, 0}));
    EXPECT_EQ(gauss(T(0), 38, 6), (std::vector<double>{0, 0, 1, 1, 0, 0}));
    // Periodic even Tukey: index 0 is 0, or 1 without taper.
    EXPECT_EQ(tukey(T(0.5), 34, 8)[0], 0.0);
    EXPECT_EQ(tukey(T(0), 34, 8), std::vector<double>(8, 1.0));
    // Triangle, unit peak: 0, 0.5, 1, 0.5 and 0.6, 1, 0.6 with the 0.2 ends.
    expect_close<T>(make<T>(DSP_WINDOW_BARTLETT, 4, 2), {0, 0.5, 1, 0.5}, tol, "triangle 4");
    expect_close<T>(make<T>(DSP_WINDOW_BARTLETT, 5, 2), {0.2, 0.6, 1, 0.6, 0.2}, tol, "triangle 5");
    // Kaiser symmetric: the two outer samples are exactly 1 before scaling.
    const auto k = gen<T>([](sig<T> *x) { return DSP(i_window_kaiser)(x, T(4), 38); }, 6);
    EXPECT_EQ(k[0], double(T(1) / dsp::bessel_i0<T>(T(4))));
    EXPECT_EQ(k[0], k[5]);
    // Riemann of 8, unit peak at index 4: the single family again uses
    // sin(u), u = pi d / 4 at distance d (sin(pi) = 0 at the far end).
    std::vector<double> rm(8, 1.0);
    for (int i = 0; i < 8; ++i) {
        const double u = M_PI * std::abs(i - 4) / 4;
        if (i != 4) rm[size_t(i)] = std::is_same_v<T, float> ? std::sin(u) : std::sin(u) / u;
    }
    expect_close<T>(make<T>(DSP_WINDOW_RIEMANN, 8, 2), rm, 1e-6, "riemann");
}

TYPED_TEST(WindowGenerate, ExplicitWidth) {
    using T = TypeParam;
    const double tol = 1e-6;
    // Hann of width 8 or 7 in a record of 16: zero outside, distances up to 3
    // on both sides (the right end of the even width is zero).
    for (int width : {8, 7}) {
        std::vector<double> want(16, 0.0);
        for (int k = -3; k <= 3; ++k)
            want[size_t(8 + k)] = 0.5 + 0.5 * std::cos(2 * M_PI * k / width);
        expect_close<T>(make<T>(DSP_WINDOW_HANN, 16, 2 | 8, T(width)), want, tol, "hann width");
    }
    // Unit mean with explicit width: mean of the record is a0.
    EXPECT_NEAR(mean_of(make<T>(DSP_WINDOW_FLATTOP, 16, 8, T(9))),
                dsp::cosine_coefficients<T>(9, 0).a[0], tol);
    // Width equal to n is the plain window.
    expect_close<T>(make<T>(DSP_WINDOW_BLACKMAN, 16, 8, T(16)), make<T>(DSP_WINDOW_BLACKMAN, 16, 0),
                    tol, "width n");
    // Uniform box: the first ceil(p) samples, not centred, scaled to unit
    // mean, and rotated only on request.
    expect_close<T>(make<T>(DSP_WINDOW_UNIFORM, 8, 2 | 8, T(2.5)), {1, 1, 1, 0, 0, 0, 0, 0}, 0,
                    "box");
    expect_close<T>(make<T>(DSP_WINDOW_UNIFORM, 4, 8, T(2)), {2, 2, 0, 0}, tol, "box mean");
    Rec<T> x({1, 1, 1, 1});
    EXPECT_OK(DSP(i_window2)(&x, DSP_WINDOW_UNIFORM, 2 | 8 | 16, T(1)), *x, {0, 0, 1, 0});
}

TYPED_TEST(WindowGenerate, CosineAndFilterDesignWindows) {
    using T = TypeParam;
    Rec<T> coef({0.5, 0.5}), ccoef({1, 0}, true), none, x(std::vector<T>(8, T(1)));
    const auto hann = applied<T>(std::vector<T>(8, T(1)), false,
                                 [](sig<T> *y) { return DSP(i_window)(y, DSP_WINDOW_HANN, 2); });
    EXPECT_OK(DSP(i_window_cos)(&x, &coef), *x, hann, std::is_same_v<T, float> ? 3e-6 : 1e-12);
    EXPECT_EQ(DSP(i_window_cos)(&x, &ccoef), -1);
    EXPECT_OK(DSP(i_window_cos)(&x, &none), *x, std::vector<T>(8, T(0)));
    // Code 100 with p = 0 leaves the record; a cosine kind fails (symmetric);
    // code 103 has its unit peak at the centre.
    Rec<T> z({1, 2, 3});
    EXPECT_EQ(DSP(i_window_fir)(&z, 100, T(0)), 0);
    EXPECT_EQ(DSP(i_window_fir)(&z, DSP_WINDOW_HANN, T(0)), -1);
    expect_values<T>(*z, {1, 2, 3});
    EXPECT_EQ(DSP(i_window_fir)(&z, 103, T(0.3)), 0);
    EXPECT_NEAR(double(z->data[1]), 2.0, 1e-6);
}

// The cache of the generic windowing operation, from empty to empty.
TYPED_TEST(WindowGenerate, CacheReuseFirstInFirstOutAndWidthKeys) {
    using T = TypeParam;
    auto run = [](int n, int kind, int flags) {
        return applied<T>(std::vector<T>(size_t(n), T(1)), false,
                          [&](sig<T> *x) { return DSP(i_window)(x, kind, flags); });
    };
    auto ring = [](int used, int last) {
        EXPECT_EQ(dsp::window_cache_used<T>(), used);
        EXPECT_EQ(dsp::window_cache_last<T>(), last);
    };
    ASSERT_EQ(DSP(_free_internal)(), 0);
    EXPECT_EQ(dsp::window_cache_used<T>(), 0);
    const std::vector<T> first = run(8, DSP_WINDOW_HANN, 0);
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    const dsp::signal_t<T> *entry = dsp::window_cache_entry<T>(0);
    ASSERT_NE(entry, nullptr);
    const T *storage = entry->data;
    // The same n, kind and masked flags reuse the entry; bits above 3 are not
    // part of the key.
    EXPECT_EQ(run(8, DSP_WINDOW_HANN, 0), first);
    run(8, DSP_WINDOW_HANN, 32);
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    EXPECT_EQ(dsp::window_cache_entry<T>(0)->data, storage);
    // The uniform window never enters the cache.
    run(8, DSP_WINDOW_UNIFORM, 16);
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    // Fifteen more distinct windows fill the ring; the seventeenth replaces
    // the oldest entry, the next one the second oldest.
    for (int i = 1; i < 16; ++i) run(8 + i, DSP_WINDOW_HANN, 0);
    ring(16, 15);
    run(100, DSP_WINDOW_BLACKMAN, 1);
    ring(16, 0);
    EXPECT_EQ(dsp::window_cache_entry<T>(0)->n, 100);
    EXPECT_EQ(run(8, DSP_WINDOW_HANN, 0), first);  // evicted: generated again
    ring(16, 1);
    EXPECT_EQ(dsp::window_cache_entry<T>(1)->n, 8);
    run(9, DSP_WINDOW_HANN, 0);  // entry 1 of the first round was n = 9: now at 2
    ring(16, 2);
    // Release: everything goes, the next call builds a new cache.
    ASSERT_EQ(DSP(_free_internal)(), 0);
    EXPECT_EQ(dsp::window_cache_used<T>(), 0);
    EXPECT_EQ(dsp::window_cache_entry<T>(0), nullptr);
    EXPECT_EQ(run(8, DSP_WINDOW_HANN, 0), first);
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    ASSERT_EQ(DSP(_free_internal)(), 0);

    // With the width flag the width is part of the key.
    Rec<T> x;
    auto width = [&](T p) {
        x.set(std::vector<T>(16, T(1)));
        EXPECT_EQ(DSP(i_window2)(&x, DSP_WINDOW_HANN, 8 | 2, p), 0);
    };
    width(T(8));
    const std::vector<T> w8 = x.values();
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    // Within the relative tolerance of approx_equal: the same entry.
    width(T(8) * (T(1) + T(4) * std::numeric_limits<T>::epsilon()));
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    EXPECT_EQ(x.values(), w8);
    width(T(8.01));
    EXPECT_EQ(dsp::window_cache_used<T>(), 2);
    // Without the width flag the parameter is not part of the key.
    for (T p : {T(1), T(5)}) ASSERT_EQ(DSP(i_window2)(&x, DSP_WINDOW_HANN, 2, p), 0);
    EXPECT_EQ(dsp::window_cache_used<T>(), 3);
    // A symmetric triangle cannot be generated, but its key is stored.
    // A second call finds the key and succeeds without generating.
    x.set({1, 2, 3, 4});
    for (int want : {-1, 0}) {
        EXPECT_EQ(DSP(i_window)(&x, DSP_WINDOW_BARTLETT, 4 | 32), want);
        EXPECT_EQ(dsp::window_cache_used<T>(), 4);
    }
    EXPECT_EQ(x->n, 4);
    EXPECT_EQ(DSP(_free_internal)(), 0);
}
