// Real FFT, DFT of any length, DCT, Hilbert transform and analytic signal,
// against long-double references and scipy.
#include <cmath>
#include <complex>
#include <random>
#include <sstream>
#include <vector>

#include "support/python.hpp"
#include "support/support.hpp"
#include "transform/fft_kernel.hpp"

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
    if (inverse || (n & (n - 1)) != 0 || n <= 64) return direct_dft(x, inverse);
    std::vector<cld> a = x;
    ref_fft(a);
    return a;
}

// Relative RMS error of n scalars against a reference (real values, or
// the real and imaginary parts of complex points).
template <class T, class W>
double rel_rms(const T *got, const W *want, size_t n) {
    long double err = 0, ref = 0;
    for (size_t k = 0; k < n; ++k) {
        err += std::pow((long double)got[k] - (long double)want[k], 2);
        ref += (long double)want[k] * want[k];
    }
    return double(std::sqrt(err / ref));
}

// The scalars of complex points (std::complex is laid out as two values).
const long double *scalars(const std::vector<cld> &v) {
    return reinterpret_cast<const long double *>(v.data());
}

template <class T>
double bound(size_t n, bool chirp) {
    const double lg = std::max(1.0, std::log2(double(n)));
    return (chirp ? 4 : 1) * lg * (std::is_same_v<T, float> ? 5e-7 : 1e-15);
}

template <class T>
std::vector<T> as(const std::vector<double> &v) {
    return std::vector<T>(v.begin(), v.end());
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
    EXPECT_OK(DSP(i_rfft)(&x), *x, {2.5, 0, -0.5, 0.5, -0.5, 0}, ulps<T>());
    EXPECT_EQ(x->delta, T(0.25));
    EXPECT_OK(DSP(i_irfft)(&x), *x, {1, 2, 3, 4}, ulps<T>(8));
    EXPECT_EQ(x->delta, T(1));

    // Refusals leave the record unchanged; irfft needs 2(n - 1) to be a
    // power of two.
    Rec<T> c({1, 0, 2, 0}, true), three({1, 2, 3}), empty, h4({1, 0, 2, 0, 3, 0, 4, 0}, true);
    EXPECT_EQ(DSP(i_rfft)(&c), -1);
    EXPECT_EQ(DSP(i_rdft)(&c), -1);
    EXPECT_EQ(DSP(i_dct)(&c, 0), -1);
    expect_values<T>(*c, {1, 0, 2, 0});
    EXPECT_EQ(DSP(i_rfft)(&three), -1);
    EXPECT_EQ(DSP(i_rfft)(&empty), -1);
    expect_values<T>(*three, {1, 2, 3});
    EXPECT_EQ(DSP(i_irfft)(&h4), -1);

    // One and two points; delta 0 becomes L; a single point stays as it is.
    Rec<T> one({5}, false, T(2)), two({3, 1}, false, T(0)), d1({7}, false, T(4));
    Rec<T> p1({6, 1}, true, T(0.5)), none;
    EXPECT_OK(DSP(i_rfft)(&one), *one, {5});
    EXPECT_EQ(one->delta, T(0.5));
    EXPECT_OK(DSP(i_rfft)(&two), *two, {2, 0, 1, 0});
    EXPECT_EQ(two->delta, L);
    EXPECT_OK(DSP(i_dft)(&d1, 1), *d1, {7});  // still real
    EXPECT_EQ(d1->delta, T(0.25));
    EXPECT_OK(DSP(i_irdft)(&p1, 1), *p1, {6});
    EXPECT_EQ(p1->delta, T(2));
    none->delta = T(0);
    EXPECT_EQ(DSP(i_rdft)(&none), 0);
    EXPECT_EQ(none->delta, L);
    EXPECT_EQ(DSP(i_hilbert)(&none), 0);
    EXPECT_EQ(DSP(i_analytic)(&none), 0);
    EXPECT_EQ(none->n, 0);

    // Three points go through the chirp-z path: the direct DFT with 1/3.
    Rec<T> t3({1, 2, 3}, false, T(0.5));
    const T s3 = T(std::sqrt(3.0) / 6);
    EXPECT_OK(DSP(i_dft)(&t3, 0), *t3, {2, 0, -0.5, s3, -0.5, -s3}, ulps<T>(16));
    EXPECT_NEAR(t3->delta, T(2.0 / 3), ulps<T>());

    // Five real points: half spectrum of 3 (its values and the odd inverse
    // are checked with the other lengths below); the even inverse gives 4.
    Rec<T> f({1, -2, 3, 0.5, 4});
    ASSERT_EQ(DSP(i_rdft)(&f), 0);
    ASSERT_EQ(f->n, 3);
    ASSERT_EQ(DSP(i_irdft)(&f, 0), 0);
    EXPECT_EQ(f->n, 4);
    EXPECT_EQ(f->cplx, 0);
    // irdft of a 4-point half spectrum (a, b, c, d) as 7 points: the
    // length-7 inverse DFT of (a, b, c, d, conj d, conj c, conj b).
    Rec<T> p4({1, 0, 0.5, 0.25, -1, 2, 0.5, -0.5}, true);
    ASSERT_EQ(DSP(i_irdft)(&p4, 1), 0);
    ASSERT_EQ(p4->n, 7);
    const auto want = direct_dft(
        {{1, 0}, {0.5, 0.25}, {-1, 2}, {0.5, -0.5}, {0.5, 0.5}, {-1, -2}, {0.5, -0.25}}, true);
    for (int m = 0; m < 7; ++m) EXPECT_NEAR(p4->data[m], T(want[size_t(m)].real()), ulps<T>(32));
}

// Every kernel the processor offers, as in the complex FFT test.
TYPED_TEST(Spectral, RealTransformsAgainstLongDouble) {
    using T = TypeParam;
    std::vector<int> sizes = kOddSizes;
    for (int n = 1; n <= 65536; n *= 2) sizes.push_back(n);
    for (int n : within_reference_reach(sizes)) {
        const auto v = random_values(size_t(n), unsigned(n));
        const auto want = reference(std::vector<cld>(v.begin(), v.end()), false);
        const bool chirp = (n & (n - 1)) != 0;
        for (int level = dsp::fft_kernel::max_level; level >= 0; --level) {
            if (dsp::fft_kernel::select_kernels(level) != level) continue;
            SCOPED_TRACE(testing::Message() << n << " level " << level);
            Rec<T> x(as<T>(v));
            ASSERT_EQ(DSP(i_rdft)(&x), 0);
            ASSERT_EQ(x->n, n / 2 + 1);
            EXPECT_NEAR(x->delta, T(1.0 / n), ulps<T>() / n);
            if (n == 1) {
                EXPECT_EQ(x->data[0], T(v[0]));
                continue;
            }
            EXPECT_LE(rel_rms(x->data, scalars(want), 2 * size_t(n / 2 + 1)),
                      bound<T>(size_t(n), chirp));
            if (n % 2 == 0 && !chirp) {
                EXPECT_EQ(x->data[1], T(0));
                EXPECT_EQ(x->data[n + 1], T(0));
            }
            // The inverse restores samples and spacing.
            ASSERT_EQ(DSP(i_irdft)(&x, n % 2), 0);
            ASSERT_EQ(x->n, n);
            EXPECT_NEAR(x->delta, T(1), ulps<T>(2));
            EXPECT_LE(rel_rms(x->data, v.data(), size_t(n)), 2 * bound<T>(size_t(n), chirp));
        }
        dsp::fft_kernel::select_kernels(dsp::fft_kernel::max_level);
    }
}

// Every length up to 400 with no prime factor beyond 7 (a power of two
// excepted) and two longer ones, both directions, on every kernel: the
// mixed-radix transform against the direct long-double DFT, held to the
// accuracy of the power-of-two FFT.
TYPED_TEST(Spectral, MixedRadixLengthsOnEveryKernel) {
    using T = TypeParam;
    auto smooth = [](int n) {
        for (int p : {2, 3, 5, 7})
            while (n % p == 0) n /= p;
        return n == 1;
    };
    std::vector<int> sizes;
    for (int n = 3; n <= 400; ++n)
        if (smooth(n) && (n & (n - 1)) != 0) sizes.push_back(n);
    sizes.insert(sizes.end(), {1000, 2401});
    for (int n : within_reference_reach(sizes, 400)) {
        const auto t = as<T>(random_values(size_t(2 * n), unsigned(n)));
        std::vector<cld> in(static_cast<size_t>(n));
        for (int k = 0; k < n; ++k) in[size_t(k)] = cld(t[2 * k], t[2 * k + 1]);
        const auto forward = direct_dft(in, false), inverse = direct_dft(in, true);
        for (int level = dsp::fft_kernel::max_level; level >= 0; --level) {
            if (dsp::fft_kernel::select_kernels(level) != level) continue;
            SCOPED_TRACE(testing::Message() << n << " level " << level);
            Rec<T> x(t, true);
            ASSERT_EQ(DSP(i_dft)(&x, 0), 0);
            EXPECT_LE(rel_rms(x->data, scalars(forward), 2 * size_t(n)),
                      bound<T>(size_t(n), false));
            x.set(t, true);
            ASSERT_EQ(DSP(i_dft)(&x, 1), 0);
            EXPECT_LE(rel_rms(x->data, scalars(inverse), 2 * size_t(n)),
                      bound<T>(size_t(n), false));
        }
        dsp::fft_kernel::select_kernels(dsp::fft_kernel::max_level);
    }
}

TYPED_TEST(Spectral, ComplexDftBothDirectionsAndChirpCache) {
    using T = TypeParam;
    // Lengths and directions interleaved: same length both ways, new lengths,
    // back to an earlier one, and the caches released in between.
    const int plan[][2] = {{12, 0}, {12, 1},   {12, 1}, {12, 0}, {100, 1}, {7, 0},  {12, 1},
                           {7, 1},  {1000, 0}, {6, 0},  {6, 1},  {243, 1}, {64, 0}, {4097, 1}};
    int step = 0;
    for (const auto &p : plan) {
        const int n = p[0], inv = p[1];
        SCOPED_TRACE(::testing::Message() << "n " << n << " inverse " << inv);
        const auto t = as<T>(random_values(size_t(2 * n), unsigned(1000 + step)));
        std::vector<cld> in(static_cast<size_t>(n));
        for (int k = 0; k < n; ++k) in[size_t(k)] = cld(t[2 * k], t[2 * k + 1]);
        Rec<T> x(t, true, T(0.5));
        ASSERT_EQ(DSP(i_dft)(&x, inv), 0);
        ASSERT_EQ(x->n, n);
        EXPECT_NEAR(x->delta, T(2.0 / n), ulps<T>(2) * 2.0 / n);
        const bool chirp = (n & (n - 1)) != 0;
        if (n <= reference_reach()) {  // (else the way back alone)
            EXPECT_LE(rel_rms(x->data, scalars(reference(in, inv != 0)), 2 * size_t(n)),
                      bound<T>(size_t(n), chirp));
        }
        // The other direction brings the samples back.
        ASSERT_EQ(DSP(i_dft)(&x, !inv), 0);
        EXPECT_NEAR(x->delta, T(0.5), ulps<T>(2));
        EXPECT_LE(rel_rms(x->data, scalars(in), 2 * size_t(n)), 2 * bound<T>(size_t(n), chirp));
        EXPECT_EQ(++step % 5 ? 0 : pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
    }
    // Storage that the record does not own is only read: a real input
    // widened by the DFT, and the rfft of the first 8 of 9 values.
    T caller[9] = {1, 2, 3, 4, 5, 99}, c8[9] = {1, 0, -1, 0, 1, 0, -1, 0, 42};
    Rec<T> w, w8;
    *w = wrap(caller, 5);
    *w8 = wrap(c8, 8);
    ASSERT_EQ(DSP(i_dft)(&w, 0), 0);
    EXPECT_EQ(w->cplx, 1);
    EXPECT_EQ(caller[5], T(99));
    EXPECT_NEAR(w->data[0], T(3), ulps<T>(8));
    EXPECT_OK(DSP(i_rfft)(&w8), *w8, {0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0}, ulps<T>());
    EXPECT_EQ(c8[8], T(42));
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
    DSP_NEED_PYTHON();
    const auto want =
        python("from scipy.fft import dct\nstart = 0\nfor n in [" + list.str() +
                   "]:\n"
                   "    y = dct(x[start:start + n], type=2, norm='ortho') * np.sqrt(2 / n)\n"
                   "    print(' '.join(repr(float(v)) for v in y))\n"
                   "    start += n\n",
               all);
    ASSERT_EQ(want.size(), all.size());
    size_t start = 0;
    for (int n : sizes) {
        SCOPED_TRACE(n);
        Rec<T> x;
        x.set(std::vector<T>(all.begin() + long(start), all.begin() + long(start + n)), false,
              T(0.25));
        ASSERT_EQ(DSP(i_dct)(&x, 0), 0);
        ASSERT_EQ(x->n, n);
        EXPECT_EQ(x->cplx, 0);
        EXPECT_NEAR(x->delta, T(4.0 / n), ulps<T>(2) * 4 / n);
        EXPECT_LE(rel_rms(x->data, &want[start], size_t(n)),
                  2 * bound<T>(size_t(n), (n & (n - 1)) != 0));
        ASSERT_EQ(DSP(i_dct)(&x, 1), 0);
        EXPECT_NEAR(x->delta, T(0.25), ulps<T>(2));
        expect_values<T>(*x, as<T>({all.begin() + long(start), all.begin() + long(start + n)}),
                         ulps<T>(64));
        EXPECT_EQ(n != 12 ? 0 : pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
        start += size_t(n);
    }
    // One point: sqrt(2) x; an empty record only changes delta.
    Rec<T> one({3}), none;
    EXPECT_OK(DSP(i_dct)(&one, 0), *one, {T(3 * std::sqrt(2.0))}, ulps<T>(4));
    EXPECT_EQ(DSP(i_dct)(&none, 0), 0);
    EXPECT_EQ(none->n, 0);
}

TYPED_TEST(Spectral, HilbertAndAnalyticOfCosines) {
    using T = TypeParam;
    const double tol = ulps<T>(64);
    for (int n : {64, 100, 63}) {
        SCOPED_TRACE(n);
        // cos and sin of 5 cycles, and the complex tone e^(i w m) of 3 cycles
        // whose transform is -i e^(i w m).
        std::vector<T> c, s, both, e, e_h;
        for (int m = 0; m < n; ++m) {
            c.push_back(T(std::cos(2 * kPi * 5 * m / n)));
            s.push_back(T(std::sin(2 * kPi * 5 * m / n)));
            both.insert(both.end(), {c.back(), s.back()});
            const T re = T(std::cos(2 * kPi * 3 * m / n)), im = T(std::sin(2 * kPi * 3 * m / n));
            e.insert(e.end(), {re, im});
            e_h.insert(e_h.end(), {im, -re});
        }
        Rec<T> h(c), z(std::vector<T>(size_t(n), T(3))), a(c), cc(e, true);
        EXPECT_OK(DSP(i_hilbert)(&h), *h, s, tol);
        EXPECT_NEAR(h->delta, T(1), ulps<T>(2));
        EXPECT_OK(DSP(i_hilbert)(&z), *z, std::vector<T>(size_t(n), T(0)), tol);
        EXPECT_OK(DSP(i_analytic)(&a), *a, both, tol);
        EXPECT_EQ(a->cplx, 1);
        EXPECT_OK(DSP(i_hilbert)(&cc), *cc, e_h, tol);
    }
    // One point: DC only, removed by the Hilbert transform, kept by analytic.
    Rec<T> one({2}), two({2});
    EXPECT_OK(DSP(i_hilbert)(&one), *one, {0});
    EXPECT_OK(DSP(i_analytic)(&two), *two, {2});
}

TYPED_TEST(Spectral, ChirpCacheReuseAndFailedAllocation) {
    using T = TypeParam;
    const auto a = as<T>(random_values(22, 5));  // 11 points: chirp-z
    auto forward = [&]() {
        return applied<T>(a, true, [](sig<T> *x) { return DSP(i_dft)(x, 0); });
    };
    const auto first = forward();
    Rec<T> b(a, true);
    ASSERT_EQ(DSP(i_dft)(&b, 1), 0);  // same length, other direction
    // Flipping the cached chirp and kernel back is exact.
    EXPECT_EQ(forward(), first);

    // A cache that cannot be built fails before the record is touched, and
    // the next call builds it.
    ASSERT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
    Rec<T> x(a, true), y({1, 2, 3, 4, 5});
    DSP(_lib_alloc)
    (
        +[](sig<T> *s) { s->data = nullptr; }, nullptr);
    EXPECT_EQ(DSP(i_dft)(&x, 0), -1);
    EXPECT_EQ(DSP(i_dct)(&y, 0), -1);
    DSP(_lib_alloc)(nullptr, nullptr);
    expect_values<T>(*x, a);
    expect_values<T>(*y, {1, 2, 3, 4, 5});
    ASSERT_EQ(DSP(i_dft)(&x, 0), 0);
    EXPECT_EQ(x.values(), first);
    ASSERT_EQ(DSP(i_dct)(&y, 0), 0);
}
