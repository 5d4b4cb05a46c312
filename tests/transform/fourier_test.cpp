// Real FFT, DFT of any length, DCT, Hilbert transform and analytic signal,
// against long-double references and scipy.
#include <cmath>
#include <complex>
#include <random>
#include <sstream>
#include <vector>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

using cld = std::complex<long double>;
constexpr long double kPi = 3.141592653589793238462643383279502884L;

std::vector<double> random_values(size_t count, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<double> v(count);
    for (double &x : v) x = u(gen);
    return v;
}

// Direct DFT in long double with the library's convention.
std::vector<cld> direct_dft(const std::vector<cld> &x, bool inverse) {
    const size_t n = x.size();
    std::vector<cld> tw(n), y(n);
    for (size_t k = 0; k < n; ++k)
        tw[k] = std::polar(1.0L, (inverse ? 2 : -2) * kPi * (long double)k / (long double)n);
    for (size_t k = 0; k < n; ++k) {
        cld s = 0;
        for (size_t m = 0; m < n; ++m) s += x[m] * tw[(k * m) % n];
        y[k] = inverse ? s : s / (long double)n;
    }
    return y;
}

// Radix-2 FFT in long double (forward, scaled by 1/n) for the long powers of two.
void ref_fft(std::vector<cld> &a) {
    const size_t n = a.size();
    for (size_t i = 1, j = 0; i < n; ++i) {
        size_t bit = n >> 1;
        for (; j & bit; bit >>= 1) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(a[i], a[j]);
    }
    for (size_t len = 2; len <= n; len <<= 1)
        for (size_t j = 0; j < len / 2; ++j) {
            const cld w = std::polar(1.0L, -2 * kPi * (long double)j / (long double)len);
            for (size_t i = 0; i < n; i += len) {
                const cld u = a[i + j], v = a[i + j + len / 2] * w;
                a[i + j] = u + v;
                a[i + j + len / 2] = u - v;
            }
        }
    for (cld &v : a) v /= (long double)n;
}

std::vector<cld> reference(const std::vector<cld> &x, bool inverse) {
    const size_t n = x.size();
    if (inverse || (n & (n - 1)) != 0 || n <= 4096) return direct_dft(x, inverse);
    std::vector<cld> a = x;
    ref_fft(a);
    return a;
}

// Relative RMS error of the first count points of a complex record.
template <class T>
double rel_rms(const sig<T> &s, const std::vector<cld> &want, size_t count) {
    long double err = 0, ref = 0;
    for (size_t k = 0; k < count; ++k) {
        const cld got(s.data[2 * k], s.data[2 * k + 1]);
        err += std::norm(got - want[k]);
        ref += std::norm(want[k]);
    }
    return double(std::sqrt(err / ref));
}

template <class T>
double bound(size_t n, bool chirp) {
    const double lg = std::max(1.0, std::log2(double(n)));
    return (chirp ? 4 : 1) * lg * (std::is_same_v<T, float> ? 5e-7 : 1e-15);
}

template <class T>
void fill_real(Rec<T> &r, const std::vector<double> &v, T delta = T(1)) {
    std::vector<T> t(v.begin(), v.end());
    r.set(t, false, delta);
}

const std::vector<int> kOddSizes = {3, 5, 6, 7, 12, 100, 243, 1000, 4097};

}  // namespace

template <class T>
class Spectral : public ::testing::Test {};
TYPED_TEST_SUITE(Spectral, Precisions);

TYPED_TEST(Spectral, DocumentedCases) {
    using T = TypeParam;
    constexpr T L = dsp::precision<T>::large;
    Rec<T> x({1, 2, 3, 4});
    ASSERT_EQ(DSP(i_rfft)(&x), 0);
    EXPECT_EQ(x->delta, T(0.25));
    expect_values<T>(*x, {2.5, 0, -0.5, 0.5, -0.5, 0}, ulps<T>());
    ASSERT_EQ(DSP(i_irfft)(&x), 0);
    EXPECT_EQ(x->cplx, 0);
    EXPECT_EQ(x->delta, T(1));
    expect_values<T>(*x, {1, 2, 3, 4}, ulps<T>(8));

    // Refusals leave the record unchanged.
    Rec<T> c({1, 0, 2, 0}, true);
    EXPECT_EQ(DSP(i_rfft)(&c), -1);
    EXPECT_EQ(DSP(i_rdft)(&c), -1);
    EXPECT_EQ(DSP(i_dct)(&c, 0), -1);
    expect_values<T>(*c, {1, 0, 2, 0});
    Rec<T> three({1, 2, 3}), empty;
    EXPECT_EQ(DSP(i_rfft)(&three), -1);
    EXPECT_EQ(DSP(i_rfft)(&empty), -1);
    expect_values<T>(*three, {1, 2, 3});

    // One and two points; delta 0 becomes L.
    Rec<T> one({5}, false, T(2));
    ASSERT_EQ(DSP(i_rfft)(&one), 0);
    EXPECT_EQ(one->cplx, 0);
    EXPECT_EQ(one->delta, T(0.5));
    expect_values<T>(*one, {5});
    Rec<T> two({3, 1}, false, T(0));
    ASSERT_EQ(DSP(i_rfft)(&two), 0);
    EXPECT_EQ(two->delta, L);
    expect_values<T>(*two, {2, 0, 1, 0});
    Rec<T> d1({7}, false, T(4));
    ASSERT_EQ(DSP(i_dft)(&d1, 1), 0);
    EXPECT_EQ(d1->delta, T(0.25));
    expect_values<T>(*d1, {7});  // still real
    Rec<T> none;
    none->delta = T(0);
    EXPECT_EQ(DSP(i_rdft)(&none), 0);
    EXPECT_EQ(none->delta, L);
    EXPECT_EQ(DSP(i_hilbert)(&none), 0);
    EXPECT_EQ(DSP(i_analytic)(&none), 0);
    EXPECT_EQ(none->n, 0);

    // Three points go through the chirp-z path: the direct DFT with 1/3.
    Rec<T> t3({1, 2, 3}, false, T(0.5));
    ASSERT_EQ(DSP(i_dft)(&t3, 0), 0);
    const T s3 = T(std::sqrt(3.0) / 6);
    expect_values<T>(*t3, {2, 0, -0.5, s3, -0.5, -s3}, ulps<T>(16));
    EXPECT_NEAR(t3->delta, T(2.0 / 3), ulps<T>());

    // Five real points: half spectrum of 3; odd inverse restores 5, even gives 4.
    Rec<T> f({1, -2, 3, 0.5, 4}, false, T(1));
    ASSERT_EQ(DSP(i_rdft)(&f), 0);
    EXPECT_EQ(f->n, 3);
    EXPECT_EQ(f->cplx, 1);
    EXPECT_NEAR(f->delta, T(0.2), ulps<T>());
    std::vector<T> half = f.values();
    ASSERT_EQ(DSP(i_irdft)(&f, 1), 0);
    EXPECT_EQ(f->cplx, 0);
    EXPECT_NEAR(f->delta, T(1), ulps<T>());
    expect_values<T>(*f, {1, -2, 3, 0.5, 4}, ulps<T>(32));
    Rec<T> g;
    g.set(half, true);
    ASSERT_EQ(DSP(i_irdft)(&g, 0), 0);
    EXPECT_EQ(g->n, 4);
    EXPECT_EQ(g->cplx, 0);

    // irfft needs 2(n - 1) to be a power of two; irdft takes any length,
    // and a single point stays as it is.
    Rec<T> h4({1, 0, 2, 0, 3, 0, 4, 0}, true);
    EXPECT_EQ(DSP(i_irfft)(&h4), -1);
    Rec<T> p1({6, 1}, true, T(0.5));
    ASSERT_EQ(DSP(i_irdft)(&p1, 1), 0);
    EXPECT_EQ(p1->delta, T(2));
    expect_values<T>(*p1, {6});
    // irdft of a 4-point half spectrum (a, b, c, d) as 7 points: the
    // length-7 inverse DFT of (a, b, c, d, conj d, conj c, conj b).
    Rec<T> p4({1, 0, 0.5, 0.25, -1, 2, 0.5, -0.5}, true);
    ASSERT_EQ(DSP(i_irdft)(&p4, 1), 0);
    ASSERT_EQ(p4->n, 7);
    std::vector<cld> full = {{1, 0}, {0.5, 0.25}, {-1, 2}, {0.5, -0.5}, {0.5, 0.5}, {-1, -2}, {0.5, -0.25}};
    const auto want = direct_dft(full, true);
    for (int m = 0; m < 7; ++m) EXPECT_NEAR(p4->data[m], T(want[size_t(m)].real()), ulps<T>(32));
}

TYPED_TEST(Spectral, RealTransformsAgainstLongDouble) {
    using T = TypeParam;
    std::vector<int> sizes = kOddSizes;
    for (int n = 1; n <= 65536; n *= 2) sizes.push_back(n);
    for (int n : sizes) {
        const auto v = random_values(size_t(n), unsigned(n));
        Rec<T> x;
        fill_real(x, v);
        ASSERT_EQ(DSP(i_rdft)(&x), 0) << n;
        ASSERT_EQ(x->n, n / 2 + 1);
        std::vector<cld> in(v.begin(), v.end());
        const auto want = reference(in, false);
        if (n == 1) {
            EXPECT_EQ(x->data[0], T(v[0]));
            continue;
        }
        const bool chirp = (n & (n - 1)) != 0;
        const double e = rel_rms<T>(*x, want, size_t(n / 2 + 1));
        EXPECT_LE(e, bound<T>(size_t(n), chirp)) << "n = " << n;
        if (n % 2 == 0 && !chirp) {
            EXPECT_EQ(x->data[1], T(0));
            EXPECT_EQ(x->data[n + 1], T(0));
        }
        // The inverse restores samples and spacing.
        const T d = x->delta;
        EXPECT_NEAR(d, T(1.0 / n), ulps<T>() / n);
        ASSERT_EQ(DSP(i_irdft)(&x, n % 2), 0);
        ASSERT_EQ(x->n, n);
        EXPECT_NEAR(x->delta, T(1), ulps<T>(2));
        double err = 0, ref = 0;
        for (int m = 0; m < n; ++m) {
            err += std::pow(double(x->data[m]) - v[m], 2);
            ref += v[m] * v[m];
        }
        EXPECT_LE(std::sqrt(err / ref), 2 * bound<T>(size_t(n), chirp)) << "inverse n = " << n;
    }
}

TYPED_TEST(Spectral, ComplexDftBothDirectionsAndChirpCache) {
    using T = TypeParam;
    // Lengths and directions interleaved: same length both ways, new lengths,
    // back to an earlier one, and the caches released in between.
    const int plan[][2] = {{12, 0}, {12, 1}, {12, 1}, {12, 0}, {100, 1}, {7, 0},  {12, 1},
                           {7, 1},  {1000, 0}, {6, 0}, {6, 1}, {243, 1}, {64, 0}, {4097, 1}};
    int step = 0;
    for (const auto &p : plan) {
        const int n = p[0], inv = p[1];
        const auto v = random_values(size_t(2 * n), unsigned(1000 + step));
        std::vector<T> t(v.begin(), v.end());
        std::vector<cld> in(static_cast<size_t>(n));
        for (int k = 0; k < n; ++k) in[size_t(k)] = cld(t[2 * k], t[2 * k + 1]);
        Rec<T> x;
        x.set(t, true, T(0.5));
        ASSERT_EQ(DSP(i_dft)(&x, inv), 0);
        ASSERT_EQ(x->n, n);
        EXPECT_NEAR(x->delta, T(2.0 / n), ulps<T>(2) * 2.0 / n);
        const auto want = reference(in, inv != 0);
        const bool chirp = (n & (n - 1)) != 0;
        EXPECT_LE(rel_rms<T>(*x, want, size_t(n)), bound<T>(size_t(n), chirp))
            << "n = " << n << " inverse " << inv;
        // The other direction brings the samples back.
        ASSERT_EQ(DSP(i_dft)(&x, !inv), 0);
        EXPECT_NEAR(x->delta, T(0.5), ulps<T>(2));
        EXPECT_LE(rel_rms<T>(*x, in, size_t(n)), 2 * bound<T>(size_t(n), chirp)) << n;
        if (++step % 5 == 0) {
            EXPECT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
        }
    }
    // A real input is widened; storage that the record does not own is only read.
    T caller[6] = {1, 2, 3, 4, 5, 99};
    sig<T> w;
    pick<T>(dspf_init, dsp_init)(&w);
    w.data = caller;
    w.n = 5;
    ASSERT_EQ(DSP(i_dft)(&w, 0), 0);
    EXPECT_EQ(w.cplx, 1);
    EXPECT_GT(w.alloc, 0);
    EXPECT_EQ(caller[5], T(99));
    EXPECT_NEAR(w.data[0], T(3), ulps<T>(8));
    pick<T>(dspf_destroy, dsp_destroy)(&w);
}

TYPED_TEST(Spectral, RfftOfCallerStorage) {
    using T = TypeParam;
    T caller[9] = {1, 0, -1, 0, 1, 0, -1, 0, 42};  // the record wraps the first 8
    sig<T> w;
    pick<T>(dspf_init, dsp_init)(&w);
    w.data = caller;
    w.n = 8;
    ASSERT_EQ(DSP(i_rfft)(&w), 0);
    EXPECT_EQ(caller[8], T(42));
    expect_values<T>(w, {0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0}, ulps<T>());
    pick<T>(dspf_destroy, dsp_destroy)(&w);
}

TYPED_TEST(Spectral, DctMatchesScipyAndInverts) {
    using T = TypeParam;
    const std::vector<int> sizes = {1, 2, 3, 4, 5, 8, 12, 15, 16, 100, 1024};
    std::vector<double> all;
    std::ostringstream list;
    for (int n : sizes) {
        const auto v = random_values(size_t(n), unsigned(7 * n));
        all.insert(all.end(), v.begin(), v.end());
        list << n << ',';
    }
    // Our normalisation is sqrt(2/n) times the orthonormal DCT-II.
    const auto want = python("from scipy.fft import dct\nstart = 0\nfor n in [" + list.str() +
                             "]:\n"
                             "    y = dct(x[start:start + n], type=2, norm='ortho') * np.sqrt(2 / n)\n"
                             "    print(' '.join(repr(float(v)) for v in y))\n"
                             "    start += n\n",
                             all);
    ASSERT_EQ(want.size(), all.size());
    size_t start = 0;
    for (int n : sizes) {
        Rec<T> x;
        fill_real(x, std::vector<double>(all.begin() + long(start), all.begin() + long(start + n)),
                  T(0.25));
        ASSERT_EQ(DSP(i_dct)(&x, 0), 0);
        ASSERT_EQ(x->n, n);
        EXPECT_EQ(x->cplx, 0);
        EXPECT_NEAR(x->delta, T(4.0 / n), ulps<T>(2) * 4 / n);
        double err = 0, ref = 0;
        for (int k = 0; k < n; ++k) {
            err += std::pow(double(x->data[k]) - want[start + size_t(k)], 2);
            ref += want[start + size_t(k)] * want[start + size_t(k)];
        }
        EXPECT_LE(std::sqrt(err / ref), 2 * bound<T>(size_t(n), (n & (n - 1)) != 0)) << n;
        ASSERT_EQ(DSP(i_dct)(&x, 1), 0);
        ASSERT_EQ(x->n, n);
        EXPECT_EQ(x->cplx, 0);
        EXPECT_NEAR(x->delta, T(0.25), ulps<T>(2));
        for (int m = 0; m < n; ++m) EXPECT_NEAR(x->data[m], T(all[start + size_t(m)]), ulps<T>(64)) << n;
        if (n == 12) {
            EXPECT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
        }
        start += size_t(n);
    }
    // One point: sqrt(2) x; an empty record only changes delta.
    Rec<T> one({3}), none;
    ASSERT_EQ(DSP(i_dct)(&one, 0), 0);
    EXPECT_NEAR(one->data[0], T(3 * std::sqrt(2.0)), ulps<T>(4));
    EXPECT_EQ(DSP(i_dct)(&none, 0), 0);
    EXPECT_EQ(none->n, 0);
}

TYPED_TEST(Spectral, HilbertAndAnalyticOfCosines) {
    using T = TypeParam;
    for (int n : {64, 100, 63}) {
        std::vector<T> c(static_cast<size_t>(n)), k(static_cast<size_t>(n), T(3));
        for (int m = 0; m < n; ++m) c[size_t(m)] = T(std::cos(2 * kPi * 5 * m / n));
        Rec<T> h, z, a, cc;
        h.set(c);
        ASSERT_EQ(DSP(i_hilbert)(&h), 0);
        EXPECT_EQ(h->cplx, 0);
        EXPECT_NEAR(h->delta, T(1), ulps<T>(2));
        for (int m = 0; m < n; ++m)
            EXPECT_NEAR(h->data[m], T(std::sin(2 * kPi * 5 * m / n)), ulps<T>(64)) << n;
        z.set(k);
        ASSERT_EQ(DSP(i_hilbert)(&z), 0);
        for (int m = 0; m < n; ++m) EXPECT_NEAR(z->data[m], T(0), ulps<T>(64));
        a.set(c);
        ASSERT_EQ(DSP(i_analytic)(&a), 0);
        ASSERT_EQ(a->cplx, 1);
        ASSERT_EQ(a->n, n);
        for (int m = 0; m < n; ++m) {
            EXPECT_NEAR(a->data[2 * m], c[size_t(m)], ulps<T>(64));
            EXPECT_NEAR(a->data[2 * m + 1], T(std::sin(2 * kPi * 5 * m / n)), ulps<T>(64));
        }
        // A complex input stays complex: the transform of e^(i w m) is -i e^(i w m).
        std::vector<T> e(size_t(2 * n));
        for (int m = 0; m < n; ++m) {
            e[size_t(2 * m)] = T(std::cos(2 * kPi * 3 * m / n));
            e[size_t(2 * m + 1)] = T(std::sin(2 * kPi * 3 * m / n));
        }
        cc.set(e, true);
        ASSERT_EQ(DSP(i_hilbert)(&cc), 0);
        ASSERT_EQ(cc->cplx, 1);
        for (int m = 0; m < n; ++m) {
            EXPECT_NEAR(cc->data[2 * m], e[size_t(2 * m + 1)], ulps<T>(64));
            EXPECT_NEAR(cc->data[2 * m + 1], -e[size_t(2 * m)], ulps<T>(64));
        }
    }
    // One point: DC only, removed by the Hilbert transform, kept by analytic.
    Rec<T> one({2}), two({2});
    ASSERT_EQ(DSP(i_hilbert)(&one), 0);
    expect_values<T>(*one, {0});
    ASSERT_EQ(DSP(i_analytic)(&two), 0);
    expect_values<T>(*two, {2});
}

TYPED_TEST(Spectral, ChirpCacheReuseAndFailedAllocation) {
    using T = TypeParam;
    const auto v = random_values(24, 5);
    const std::vector<T> a(v.begin(), v.end());
    auto forward = [&]() {
        Rec<T> x;
        x.set(a, true);
        EXPECT_EQ(DSP(i_dft)(&x, 0), 0);
        return x.values();
    };
    const auto first = forward();
    Rec<T> b;
    b.set(a, true);
    ASSERT_EQ(DSP(i_dft)(&b, 1), 0);  // same length, other direction
    // Flipping the cached chirp and kernel back is exact.
    EXPECT_EQ(forward(), first);

    // A cache that cannot be built fails before the record is touched, and
    // the next call builds it.
    ASSERT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
    Rec<T> x, y({1, 2, 3, 4, 5});
    x.set(a, true);
    DSP(_lib_alloc)(+[](sig<T> *s) { s->data = nullptr; }, nullptr);
    EXPECT_EQ(DSP(i_dft)(&x, 0), -1);
    EXPECT_EQ(DSP(i_dct)(&y, 0), -1);
    DSP(_lib_alloc)(nullptr, nullptr);
    expect_values<T>(*x, a);
    expect_values<T>(*y, {1, 2, 3, 4, 5});
    ASSERT_EQ(DSP(i_dft)(&x, 0), 0);
    EXPECT_EQ(x.values(), first);
    ASSERT_EQ(DSP(i_dct)(&y, 0), 0);
}
