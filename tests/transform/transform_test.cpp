// Complex and real FFT, bit reversal, DFT of any length, DCT, Hilbert
// transform and analytic signal, against long-double references.
#include <cmath>
#include <complex>
#include <vector>

#include "support/support.hpp"
#include "transform/fft_kernel.hpp"

using namespace dsp_test;

namespace {

using cld = std::complex<long double>;
constexpr long double kPi = 3.141592653589793238462643383279502884L;

// Reference spectrum with the library's convention (forward: kernel
// e^(-2 pi i k m / n) and factor 1/n; inverse: e^(+...), unscaled): a direct
// sum, for powers of two above 64 a long-double radix-2 FFT.
std::vector<cld> reference(std::vector<cld> x, bool inverse) {
    const size_t n = x.size();
    const long double sign = inverse ? 2 : -2;
    if ((n & (n - 1)) != 0 || n <= 64) {
        std::vector<cld> w(n), y(n);
        for (size_t k = 0; k < n; ++k) w[k] = std::polar(1.0L, sign * kPi * k / n);
        for (size_t k = 0; k < n; ++k)
            for (size_t m = 0; m < n; ++m) y[k] += x[m] * w[(k * m) % n];
        x = y;
    } else {
        for (size_t i = 1, j = 0; i < n; ++i) {  // bit-reversed copy, then butterflies
            size_t bit = n >> 1;
            for (; j & bit; bit >>= 1) j ^= bit;
            j ^= bit;
            if (i < j) std::swap(x[i], x[j]);
        }
        for (size_t len = 2; len <= n; len <<= 1)
            for (size_t k = 0; k < len / 2; ++k) {
                const cld w = std::polar(1.0L, sign * kPi * k / len);
                for (size_t i = 0; i < n; i += len) {
                    const cld u = x[i + k], v = x[i + k + len / 2] * w;
                    x[i + k] = u + v, x[i + k + len / 2] = u - v;
                }
            }
    }
    if (!inverse)
        for (auto &v : x) v /= (long double)n;
    return x;
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

// The accuracy targets per precision, relative RMS error (the chirp-z path
// of lengths other than powers of two is allowed four times as much).
template <class T>
double bound(size_t n, bool chirp = false) {
    const double lg = std::max(1.0, std::log2(double(n)));
    return (chirp ? 4 : 1) * lg * (std::is_same_v<T, float> ? 5e-7 : 1e-15);
}

// Runs f(level) on each kernel the processor offers (scalar, the build's
// vectors, AVX2), then selects the best one again.
template <class F>
void on_every_kernel(F f) {
    for (int level = dsp::fft_kernel::max_level; level >= 0; --level)
        if (dsp::fft_kernel::select_kernels(level) == level) f(level);
    dsp::fft_kernel::select_kernels(dsp::fft_kernel::max_level);
}

}  // namespace

DSP_TYPED_SUITE(Transform);

// Every power of two up to 65536, forward, inverse and back, on every
// kernel; sizes interleaved so that the tables of several sizes coexist, and
// rebuilt after a release. Real records are widened first.
TYPED_TEST(Transform, FftMatchesLongDoubleReference) {
    using T = TypeParam;
    const auto order =
        within_reference_reach({1,     65536, 4,   2,   1024, 8,    32768, 16, 32,   64,
                                16384, 128,   256, 512, 2048, 4096, 8192,  4,  1024, 65536},
                               4096);
    for (int round = 0; round < 2; ++round) {
        for (int n : order) {
            const auto v = uniform<T>(2 * size_t(n), unsigned(n + round));
            const auto x = as_points(v, true);
            const auto forward = reference(x, false), inverse = reference(x, true);
            on_every_kernel([&](int level) {
                SCOPED_TRACE(testing::Message() << n << " level " << level);
                Rec<T> r(v, true, T(0.25));
                ASSERT_EQ(DSP(i_fft)(&r, 0), 0);
                EXPECT_EQ(r->delta, T(1) / (T(0.25) * T(n)));
                EXPECT_LE(rel_rms(r->data, scalars(forward), 2 * size_t(n)), bound<T>(n));
                ASSERT_EQ(DSP(i_fft)(&r, -7), 0);  // any nonzero flag: inverse
                EXPECT_EQ(r->delta, T(0.25));
                EXPECT_LE(rel_rms(r->data, v.data(), 2 * size_t(n)), 2 * bound<T>(n));
                r.set(v, true);
                ASSERT_EQ(DSP(i_fft)(&r, 1), 0);
                EXPECT_LE(rel_rms(r->data, scalars(inverse), 2 * size_t(n)), bound<T>(n));
            });
        }
        EXPECT_EQ(DSP(_free_internal)(), 0);
    }
    for (int n : {4, 8, 64, 2048}) {
        const auto v = uniform<T>(size_t(n), 99);
        Rec<T> r(v);
        ASSERT_EQ(DSP(i_fft)(&r, 0), 0);
        EXPECT_EQ(r->cplx, 1);
        EXPECT_LE(rel_rms(r->data, scalars(reference(as_points(v, false), false)), 2 * size_t(n)),
                  bound<T>(n));
    }
}

// Real and complex records of 1 to 2048 points: point i and point rev(i)
// change places (larger complex records take a blockwise path), and
// bitrev_scale undoes that with each scalar scaled by 1/n once.
TYPED_TEST(Transform, BitReversal) {
    using T = TypeParam;
    EXPECT_EQ(DSP(_free_internal)(), 0);
    for (int b : {0, 3, 4, 5, 6, 7, 10, 11}) {
        const int n = 1 << b;
        for (bool cplx : {false, true}) {
            SCOPED_TRACE(testing::Message() << n << (cplx ? " complex" : " real"));
            std::vector<T> v, want;
            for (int i = 0; i < n; ++i) {
                int j = 0;
                for (int k = 0; k < b; ++k) j |= ((i >> k) & 1) << (b - 1 - k);
                v.push_back(T(i + 1)), want.push_back(T(j + 1));
                if (cplx) v.push_back(T(-10 - i)), want.push_back(T(-10 - j));
            }
            Rec<T> r(v, cplx);
            EXPECT_OK(DSP(i_bitrev)(&r), *r, want);
            for (auto &x : v) x /= T(n);
            EXPECT_OK(DSP(i_bitrev_scale)(&r), *r, v);
        }
    }
}

// The raw-array entry point transforms complex data in the caller's array.
// Real data is transformed in a block the temporary record takes and
// releases again, so the array keeps its samples; only the halving that
// precedes the widening of two points reaches it.
TYPED_TEST(Transform, FftRawArray) {
    using T = TypeParam;
    auto cf = pick<T>(cf_dspfi_fft, cf_dspi_fft);
    for (int n : {1, 2, 16, 4096}) {
        std::vector<T> data = uniform<T>(2 * size_t(n), 5);
        Rec<T> r(data, true);
        for (int inverse : {0, 1}) {
            ASSERT_EQ(cf(data.data(), n, 1, inverse), 0);
            ASSERT_EQ(DSP(i_fft)(&r, inverse), 0);
            expect_values<T>(*r, data);
        }
    }
    std::vector<T> six = {1, 2, 3, 4, 5, 6}, eight = {1, 2, 3, 4, 5, 6, 7, 8}, two = {1, 3};
    EXPECT_EQ(cf(six.data(), 3, 1, 0), -1);
    EXPECT_EQ(six, (std::vector<T>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(cf(eight.data(), 8, 0, 0), 0);
    EXPECT_EQ(eight, (std::vector<T>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(cf(two.data(), 2, 0, 0), 0);
    EXPECT_EQ(two, (std::vector<T>{0.5, 1.5}));
}

// Exact values and spacings of short records, and refusals.
TYPED_TEST(Transform, ExactCasesAndRefusals) {
    using T = TypeParam;
    constexpr T L = dsp::precision<T>::large;
    // Status 0, then the record's scalars want (within tol) and spacing d.
    auto check = [](int status, Rec<T> &r, const std::vector<T> &want, T d, double tol = 0) {
        EXPECT_EQ(status, 0);
        expect_values<T>(*r, want, tol);
        EXPECT_EQ(r->delta, d);
    };
    // FFT: one real point stays real; (1, 1) and back; a unit impulse, delta
    // 0 giving L; e^(+2 pi i m / 8), a single line at index 1.
    Rec<T> one({3}, false, T(2)), two({1, 1}), imp({1, 0, 0, 0, 0, 0, 0, 0}, false, T(0)), line;
    check(DSP(i_fft)(&one, 0), one, {3}, T(0.5));
    check(DSP(i_fft)(&two, 0), two, {1, 0, 0, 0}, T(0.5));
    check(DSP(i_fft)(&two, 1), two, {1, 0, 1, 0}, T(1));
    std::vector<T> flat, tone, single(16, T(0));
    for (int m = 0; m < 8; ++m) {
        flat.insert(flat.end(), {T(0.125), T(0)});
        tone.insert(tone.end(), {T(std::cos(M_PI * m / 4)), T(std::sin(M_PI * m / 4))});
    }
    check(DSP(i_fft)(&imp, 0), imp, flat, L);
    single[2] = 1;
    line.set(tone, true);
    check(DSP(i_fft)(&line, 0), line, single, T(0.125), ulps<T>(4));
    // Real FFT and its inverse; one and two points, delta 0 becoming L; a
    // single point stays as it is.
    Rec<T> x({1, 2, 3, 4}), r1({5}, false, T(2)), r2({3, 1}, false, T(0)), d1({7}, false, T(4));
    Rec<T> p1({6, 1}, true, T(0.5)), none;
    check(DSP(i_rfft)(&x), x, {2.5, 0, -0.5, 0.5, -0.5, 0}, T(0.25), ulps<T>());
    check(DSP(i_irfft)(&x), x, {1, 2, 3, 4}, T(1), ulps<T>(8));
    check(DSP(i_rfft)(&r1), r1, {5}, T(0.5));
    check(DSP(i_rfft)(&r2), r2, {2, 0, 1, 0}, L);
    check(DSP(i_dft)(&d1, 1), d1, {7}, T(0.25));  // still real
    check(DSP(i_irdft)(&p1, 1), p1, {6}, T(2));
    none->delta = T(0);
    EXPECT_EQ(DSP(i_rdft)(&none), 0);
    EXPECT_EQ(none->delta, L);
    EXPECT_EQ(DSP(i_hilbert)(&none), 0);
    EXPECT_EQ(DSP(i_analytic)(&none), 0);
    EXPECT_EQ(none->n, 0);

    // Refusals leave the record unchanged: a length not a power of two, or
    // none, for the FFT and bit reversal; a complex record for the real
    // transforms; irfft needs 2(n - 1) to be a power of two.
    Rec<T> r3({1, 2, 3}, false, T(2)), e, c({1, 0, 2, 0}, true), h4({1, 0, 2, 0, 3, 0, 4, 0}, true);
    EXPECT_EQ(DSP(i_fft)(&r3, 0), -1);
    EXPECT_EQ(DSP(i_bitrev)(&r3), -1);
    EXPECT_EQ(DSP(i_bitrev_scale)(&r3), -1);
    EXPECT_EQ(DSP(i_rfft)(&r3), -1);
    EXPECT_TRUE(r3->delta == T(2) && r3->cplx == 0);
    expect_values<T>(*r3, {1, 2, 3});
    EXPECT_EQ(DSP(i_fft)(&e, 1), -1);
    EXPECT_EQ(DSP(i_rfft)(&e), -1);
    EXPECT_EQ(e->delta, T(1));
    EXPECT_EQ(DSP(i_rfft)(&c), -1);
    EXPECT_EQ(DSP(i_rdft)(&c), -1);
    EXPECT_EQ(DSP(i_dct)(&c, 0), -1);
    expect_values<T>(*c, {1, 0, 2, 0});
    EXPECT_EQ(DSP(i_irfft)(&h4), -1);
    // Widening that fails: -1, the record already complex (and unscaled).
    struct hook {
        static void fail(sig<T> *x, int, int) { x->data = nullptr; }
    };
    Rec<T> w({1, 2, 3, 4, 5, 6, 7, 8}, false, T(2));
    ASSERT_EQ(DSP(_lib_realloc)(hook::fail, nullptr), 0);
    EXPECT_EQ(DSP(i_fft)(&w, 0), -1);
    DSP(_lib_realloc)(nullptr, nullptr);
    EXPECT_TRUE(w->cplx == 1 && w->delta == T(2));

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
    EXPECT_TRUE(f->n == 4 && f->cplx == 0);
    // irdft of a 4-point half spectrum (a, b, c, d) as 7 points: the
    // length-7 inverse DFT of (a, b, c, d, conj d, conj c, conj b).
    Rec<T> p4({1, 0, 0.5, 0.25, -1, 2, 0.5, -0.5}, true);
    ASSERT_EQ(DSP(i_irdft)(&p4, 1), 0);
    ASSERT_EQ(p4->n, 7);
    const auto want = reference(
        {{1, 0}, {0.5, 0.25}, {-1, 2}, {0.5, -0.5}, {0.5, 0.5}, {-1, -2}, {0.5, -0.25}}, true);
    for (int m = 0; m < 7; ++m) EXPECT_NEAR(p4->data[m], T(want[size_t(m)].real()), ulps<T>(32));
}

// rdft and irdft of odd lengths and every power of two up to 65536, on
// every kernel.
TYPED_TEST(Transform, RealTransformsAgainstLongDouble) {
    using T = TypeParam;
    std::vector<int> sizes = {3, 5, 6, 7, 12, 100, 243, 1000, 4097};
    for (int n = 1; n <= 65536; n *= 2) sizes.push_back(n);
    for (int n : within_reference_reach(sizes)) {
        const auto v = uniform(size_t(n), unsigned(n));
        const auto want = reference(std::vector<cld>(v.begin(), v.end()), false);
        const bool chirp = (n & (n - 1)) != 0;
        on_every_kernel([&](int level) {
            SCOPED_TRACE(testing::Message() << n << " level " << level);
            Rec<T> x(std::vector<T>(v.begin(), v.end()));
            ASSERT_EQ(DSP(i_rdft)(&x), 0);
            ASSERT_EQ(x->n, n / 2 + 1);
            EXPECT_NEAR(x->delta, T(1.0 / n), ulps<T>() / n);
            if (n == 1) {
                EXPECT_EQ(x->data[0], T(v[0]));
                return;
            }
            EXPECT_LE(rel_rms(x->data, scalars(want), 2 * size_t(n / 2 + 1)),
                      bound<T>(size_t(n), chirp));
            EXPECT_TRUE(n % 2 || chirp || (x->data[1] == T(0) && x->data[n + 1] == T(0)));
            // The inverse restores samples and spacing.
            ASSERT_EQ(DSP(i_irdft)(&x, n % 2), 0);
            ASSERT_EQ(x->n, n);
            EXPECT_NEAR(x->delta, T(1), ulps<T>(2));
            EXPECT_LE(rel_rms(x->data, v.data(), size_t(n)), 2 * bound<T>(size_t(n), chirp));
        });
    }
}

// Every length up to 400 with no prime factor beyond 7 (a power of two
// excepted) and two longer ones, both directions, on every kernel: the
// mixed-radix transform held to the accuracy of the power-of-two FFT.
TYPED_TEST(Transform, MixedRadixLengthsOnEveryKernel) {
    using T = TypeParam;
    std::vector<int> sizes = {1000, 2401};
    for (int n = 3; n <= 400; ++n) {
        int m = n;
        for (int p : {2, 3, 5, 7})
            while (m % p == 0) m /= p;
        if (m == 1 && (n & (n - 1)) != 0) sizes.push_back(n);
    }
    for (int n : within_reference_reach(sizes, 400)) {
        const auto t = uniform<T>(size_t(2 * n), unsigned(n));
        const auto in = as_points(t, true);
        const auto forward = reference(in, false), inverse = reference(in, true);
        on_every_kernel([&](int level) {
            SCOPED_TRACE(testing::Message() << n << " level " << level);
            for (int inv : {0, 1}) {
                Rec<T> x(t, true);
                ASSERT_EQ(DSP(i_dft)(&x, inv), 0);
                EXPECT_LE(rel_rms(x->data, scalars(inv ? inverse : forward), 2 * size_t(n)),
                          bound<T>(size_t(n)));
            }
        });
    }
}

TYPED_TEST(Transform, ComplexDftBothDirectionsChirpCacheAndFailedAllocation) {
    using T = TypeParam;
    // Lengths and directions interleaved: same length both ways, new lengths,
    // back to an earlier one, and the caches released in between.
    const int plan[][2] = {{12, 0}, {12, 1},   {12, 1}, {12, 0}, {100, 1}, {7, 0},  {12, 1},
                           {7, 1},  {1000, 0}, {6, 0},  {6, 1},  {243, 1}, {64, 0}, {4097, 1}};
    int step = 0;
    for (const auto &[n, inv] : plan) {
        SCOPED_TRACE(::testing::Message() << "n " << n << " inverse " << inv);
        const auto t = uniform<T>(size_t(2 * n), unsigned(1000 + step));
        const auto in = as_points(t, true);
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
        EXPECT_LE(rel_rms(x->data, t.data(), 2 * size_t(n)), 2 * bound<T>(size_t(n), chirp));
        EXPECT_EQ(++step % 5 ? 0 : DSP(_free_internal)(), 0);
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

    const auto a = uniform<T>(22, 5);  // 11 points: chirp-z
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
    ASSERT_EQ(DSP(_free_internal)(), 0);
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

TYPED_TEST(Transform, DctAgainstLongDoubleAndInverse) {
    using T = TypeParam;
    for (int n : within_reference_reach({1, 2, 3, 4, 5, 8, 12, 15, 16, 100, 1024})) {
        SCOPED_TRACE(n);
        const auto v = uniform<T>(size_t(n), unsigned(7 * n));
        // Our normalisation is sqrt(2/n) times the orthonormal DCT-II: the
        // cosine sums times 2/n, the first times sqrt(2)/n.
        std::vector<long double> c(4 * size_t(n)), want(static_cast<size_t>(n));
        for (size_t j = 0; j < c.size(); ++j) c[j] = std::cos(kPi * j / (2 * n));
        for (int k = 0; k < n; ++k) {
            for (int m = 0; m < n; ++m) want[k] += v[m] * c[size_t(k * (2 * m + 1) % (4 * n))];
            want[k] *= (k ? 2.0L : std::sqrt(2.0L)) / n;
        }
        Rec<T> x(v, false, T(0.25));
        ASSERT_EQ(DSP(i_dct)(&x, 0), 0);
        ASSERT_TRUE(x->n == n && x->cplx == 0);
        EXPECT_NEAR(x->delta, T(4.0 / n), ulps<T>(2) * 4 / n);
        EXPECT_LE(rel_rms(x->data, want.data(), size_t(n)),
                  2 * bound<T>(size_t(n), (n & (n - 1)) != 0));
        ASSERT_EQ(DSP(i_dct)(&x, 1), 0);
        EXPECT_NEAR(x->delta, T(0.25), ulps<T>(2));
        expect_values<T>(*x, v, ulps<T>(64));
        EXPECT_EQ(n != 12 ? 0 : DSP(_free_internal)(), 0);
    }
    // One point: sqrt(2) x; an empty record only changes delta.
    Rec<T> one({3}), none;
    EXPECT_OK(DSP(i_dct)(&one, 0), *one, {T(3 * std::sqrt(2.0))}, ulps<T>(4));
    EXPECT_EQ(DSP(i_dct)(&none, 0), 0);
    EXPECT_EQ(none->n, 0);
}

TYPED_TEST(Transform, HilbertAndAnalyticOfCosines) {
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
        EXPECT_OK(DSP(i_hilbert)(&cc), *cc, e_h, tol);
    }
    // One point: DC only, removed by the Hilbert transform, kept by analytic.
    Rec<T> one({2}), two({2});
    EXPECT_OK(DSP(i_hilbert)(&one), *one, {0});
    EXPECT_OK(DSP(i_analytic)(&two), *two, {2});
}
