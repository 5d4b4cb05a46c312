// Complex FFT and bit reversal against a long-double reference.
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "support/support.hpp"
#include "transform/fft_kernel.hpp"

using namespace dsp_test;

namespace {

using cld = std::complex<long double>;
constexpr long double two_pi = 6.283185307179586476925286766559005768L;

// Reference spectrum with the library's convention (forward: kernel
// e^(-2 pi i k m / n) and factor 1/n; inverse: e^(+...), unscaled). A direct
// sum up to 4096 points (512 under emulation, where long double can be a
// software type), above that a long-double radix-2 FFT.
std::vector<cld> reference(std::vector<cld> x, bool inverse) {
    const size_t n = x.size();
    const long double sign = inverse ? 1.0L : -1.0L;
    std::vector<cld> y(n);
    if (n <= (emulated() ? 512u : 4096u)) {
        std::vector<cld> w(n);
        for (size_t k = 0; k < n; ++k)
            w[k] = std::polar(1.0L, sign * two_pi * (long double)k / (long double)n);
        for (size_t k = 0; k < n; ++k) {
            cld s = 0;
            for (size_t m = 0; m < n; ++m) s += x[m] * w[(k * m) % n];
            y[k] = s;
        }
    } else {
        for (size_t i = 1, j = 0; i < n; ++i) {  // bit-reversed copy, then butterflies
            size_t bit = n >> 1;
            for (; j & bit; bit >>= 1) j ^= bit;
            j ^= bit;
            if (i < j) std::swap(x[i], x[j]);
        }
        for (size_t len = 2; len <= n; len <<= 1)
            for (size_t k = 0; k < len / 2; ++k) {
                const cld w = std::polar(1.0L, sign * two_pi * (long double)k / (long double)len);
                for (size_t i = 0; i < n; i += len) {
                    const cld u = x[i + k], v = x[i + k + len / 2] * w;
                    x[i + k] = u + v, x[i + k + len / 2] = u - v;
                }
            }
        y = x;
    }
    if (!inverse)
        for (auto &v : y) v /= (long double)n;
    return y;
}

template <class T>
std::vector<cld> points(const sig<T> &s) {
    std::vector<cld> v(size_t(s.n));
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = s.cplx ? cld(s.data[2 * i], s.data[2 * i + 1]) : cld(s.data[i], 0);
    return v;
}

// Relative RMS error of a record against reference points.
template <class T>
double rel_rms(const sig<T> &s, const std::vector<cld> &ref) {
    long double num = 0, den = 0;
    const auto got = points<T>(s);
    for (size_t i = 0; i < ref.size(); ++i)
        num += std::norm(got[i] - ref[i]), den += std::norm(ref[i]);
    return double(std::sqrt(num / den));
}

// The accuracy targets per precision, relative RMS error.
template <class T>
double bound(int n) {
    const double l = std::max(1.0, std::log2(double(n)));
    return (std::is_same_v<T, float> ? 5e-7 : 1e-15) * l;
}

template <class T>
std::vector<T> noise(size_t count, unsigned seed) {
    std::mt19937 g(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<T> v(count);
    for (auto &x : v) x = T(u(g));
    return v;
}

}  // namespace

template <class T>
class Fft : public ::testing::Test {};
TYPED_TEST_SUITE(Fft, Precisions);

// Every power of two up to 65536, forward, inverse and back, with each
// kernel the processor offers (scalar, the build's vectors, AVX2); sizes
// interleaved so that the tables of several sizes coexist, and rebuilt after
// a release.
TYPED_TEST(Fft, MatchesLongDoubleReference) {
    using T = TypeParam;
    const auto order = within_reference_reach({1, 65536, 4, 2, 1024, 8, 32768, 16, 32, 64, 16384,
                                               128, 256, 512, 2048, 4096, 8192, 4, 1024, 65536},
                                              4096);
    for (int round = 0; round < 2; ++round) {
        for (int n : order) {
            SCOPED_TRACE(n);
            const auto v = noise<T>(2 * size_t(n), unsigned(n + round));
            std::vector<cld> x(static_cast<size_t>(n));
            for (size_t i = 0; i < x.size(); ++i) x[i] = cld(v[2 * i], v[2 * i + 1]);
            const auto forward = reference(x, false), inverse = reference(x, true);
            for (int level = dsp::fft_kernel::max_level; level >= 0; --level) {
                if (dsp::fft_kernel::select_kernels(level) != level) continue;
                SCOPED_TRACE(level);
                Rec<T> r;
                r.set(v, true, T(0.25));
                ASSERT_EQ(DSP(i_fft)(&r, 0), 0);
                EXPECT_EQ(r->delta, T(1) / (T(0.25) * T(n)));
                EXPECT_LE(rel_rms<T>(*r, forward), bound<T>(n));
                ASSERT_EQ(DSP(i_fft)(&r, -7), 0);  // any nonzero flag: inverse
                EXPECT_EQ(r->delta, T(0.25));
                EXPECT_LE(rel_rms<T>(*r, x), 2 * bound<T>(n));
                r.set(v, true);
                ASSERT_EQ(DSP(i_fft)(&r, 1), 0);
                EXPECT_LE(rel_rms<T>(*r, inverse), bound<T>(n));
            }
            dsp::fft_kernel::select_kernels(dsp::fft_kernel::max_level);
        }
        EXPECT_EQ(DSP(_free_internal)(), 0);
    }
    // Real records are widened first.
    for (int n : {4, 8, 64, 2048}) {
        Rec<T> r;
        r.set(noise<T>(size_t(n), 99), false);
        const auto x = points<T>(*r);
        ASSERT_EQ(DSP(i_fft)(&r, 0), 0);
        EXPECT_EQ(r->cplx, 1);
        EXPECT_LE(rel_rms<T>(*r, reference(x, false)), bound<T>(n));
    }
}

TYPED_TEST(Fft, EdgeCases) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    {  // not a power of two, or empty: -1, untouched
        Rec<T> r({1, 2, 3}, false, T(2));
        EXPECT_EQ(DSP(i_fft)(&r, 0), -1);
        EXPECT_EQ(r->delta, T(2));
        EXPECT_EQ(r->cplx, 0);
        expect_values<T>(*r, {1, 2, 3});
        EXPECT_EQ(DSP(i_bitrev)(&r), -1);
        EXPECT_EQ(DSP(i_bitrev_scale)(&r), -1);
        Rec<T> e;
        EXPECT_EQ(DSP(i_fft)(&e, 1), -1);
        EXPECT_EQ(e->delta, T(1));
    }
    {  // one real point stays real
        Rec<T> r({3}, false, T(2));
        EXPECT_EQ(DSP(i_fft)(&r, 0), 0);
        EXPECT_EQ(r->cplx, 0);
        expect_values<T>(*r, {3});
        EXPECT_EQ(r->delta, T(0.5));
    }
    {  // (1, 1)
        Rec<T> r({1, 1}, false, T(1));
        EXPECT_EQ(DSP(i_fft)(&r, 0), 0);
        expect_values<T>(*r, {1, 0, 0, 0});
        EXPECT_EQ(r->delta, T(0.5));
        EXPECT_EQ(DSP(i_fft)(&r, 1), 0);
        expect_values<T>(*r, {1, 0, 1, 0});
        EXPECT_EQ(r->delta, T(1));
    }
    {  // unit impulse; delta 0 gives L
        Rec<T> r({1, 0, 0, 0, 0, 0, 0, 0}, false, T(0));
        EXPECT_EQ(DSP(i_fft)(&r, 0), 0);
        expect_values<T>(*r,
                         {.125, 0, .125, 0, .125, 0, .125, 0, .125, 0, .125, 0, .125, 0, .125, 0});
        EXPECT_EQ(r->delta, L);
    }
    {  // e^(+2 pi i m / 8): a single line at index 1
        std::vector<T> v;
        for (int m = 0; m < 8; ++m)
            v.push_back(T(std::cos(M_PI * m / 4))), v.push_back(T(std::sin(M_PI * m / 4)));
        Rec<T> r;
        r.set(v, true);
        EXPECT_EQ(DSP(i_fft)(&r, 0), 0);
        std::vector<T> want(16, T(0));
        want[2] = 1;
        expect_values<T>(*r, want, ulps<T>(4));
    }
}

// Widening that fails: -1, the record already complex (and unscaled).
TYPED_TEST(Fft, FailedWidening) {
    using T = TypeParam;
    struct hook {
        static void fail(sig<T> *x, int, int) { x->data = nullptr; }
    };
    Rec<T> r({1, 2, 3, 4, 5, 6, 7, 8}, false, T(2));
    ASSERT_EQ(DSP(_lib_realloc)(hook::fail, nullptr), 0);
    EXPECT_EQ(DSP(i_fft)(&r, 0), -1);
    DSP(_lib_realloc)(nullptr, nullptr);
    EXPECT_EQ(r->cplx, 1);
    EXPECT_EQ(r->delta, T(2));
}

TYPED_TEST(Fft, BitReversal) {
    using T = TypeParam;
    Rec<T> r({0, 1, 2, 3, 4, 5, 6, 7});
    EXPECT_EQ(DSP(i_bitrev)(&r), 0);
    expect_values<T>(*r, {0, 4, 2, 6, 1, 5, 3, 7});
    EXPECT_EQ(DSP(i_bitrev_scale)(&r), 0);  // back, each scalar scaled once
    expect_values<T>(*r, {0, .125, .25, .375, .5, .625, .75, .875});
    Rec<T> c({0, 10, 1, 11, 2, 12, 3, 13}, true);
    EXPECT_EQ(DSP(i_bitrev)(&c), 0);
    expect_values<T>(*c, {0, 10, 2, 12, 1, 11, 3, 13});
    EXPECT_EQ(DSP(i_bitrev_scale)(&c), 0);
    expect_values<T>(*c, {0, 2.5, .25, 2.75, .5, 3, .75, 3.25});
    Rec<T> one({5});
    EXPECT_EQ(DSP(i_bitrev_scale)(&one), 0);
    expect_values<T>(*one, {5});
    // Longer records, real and complex: point i and point rev(i) change
    // places (larger complex records take a blockwise path).
    EXPECT_EQ(DSP(_free_internal)(), 0);
    for (int b : {4, 5, 6, 7, 10, 11}) {
        const int n = 1 << b;
        for (bool cplx : {false, true}) {
            SCOPED_TRACE(testing::Message() << n << (cplx ? " complex" : " real"));
            std::vector<T> v;
            for (int i = 0; i < n; ++i) {
                v.push_back(T(i));
                if (cplx) v.push_back(T(-i));
            }
            Rec<T> big;
            big.set(v, cplx);
            EXPECT_EQ(DSP(i_bitrev)(&big), 0);
            std::vector<T> want(v.size());
            for (int i = 0; i < n; ++i) {
                int j = 0;
                for (int k = 0; k < b; ++k) j |= ((i >> k) & 1) << (b - 1 - k);
                if (cplx)
                    want[2 * size_t(i)] = T(j), want[2 * size_t(i) + 1] = T(-j);
                else
                    want[size_t(i)] = T(j);
            }
            expect_values<T>(*big, want);
            EXPECT_EQ(DSP(i_bitrev_scale)(&big), 0);
            for (auto &x : v) x /= T(n);
            expect_values<T>(*big, v);
        }
    }
}

// The raw-array entry point transforms complex data in the caller's array.
TYPED_TEST(Fft, RawArray) {
    using T = TypeParam;
    auto cf = pick<T>(cf_dspfi_fft, cf_dspi_fft);
    for (int n : {1, 2, 16, 4096}) {
        std::vector<T> data = noise<T>(2 * size_t(n), 5);
        Rec<T> r;
        r.set(data, true);
        ASSERT_EQ(cf(data.data(), n, 1, 0), 0);
        ASSERT_EQ(DSP(i_fft)(&r, 0), 0);
        expect_values<T>(*r, data);
        ASSERT_EQ(cf(data.data(), n, 1, 1), 0);
        ASSERT_EQ(DSP(i_fft)(&r, 1), 0);
        expect_values<T>(*r, data);
    }
    std::vector<T> data = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(cf(data.data(), 3, 1, 0), -1);
    EXPECT_EQ(data, (std::vector<T>{1, 2, 3, 4, 5, 6}));
}

// Real data given to the raw-array entry point: the transform happens in a
// block the temporary record takes and releases again, so the caller's array
// keeps its samples; only the halving that precedes the widening of two
// points reaches it.
TYPED_TEST(Fft, RawArrayRealDataLeavesTheArray) {
    using T = TypeParam;
    auto cf = pick<T>(cf_dspfi_fft, cf_dspi_fft);
    std::vector<T> data = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(cf(data.data(), 8, 0, 0), 0);
    EXPECT_EQ(data, (std::vector<T>{1, 2, 3, 4, 5, 6, 7, 8}));
    std::vector<T> two = {1, 3};
    EXPECT_EQ(cf(two.data(), 2, 0, 0), 0);
    EXPECT_EQ(two, (std::vector<T>{0.5, 1.5}));
}
