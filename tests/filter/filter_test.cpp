// Filtering: block FIR against long-double direct sums (both methods, every
// kind of input and filter, block-wise with a history, the transform cache,
// the symmetric form); decimation with a carried phase and the half-band
// filter against scipy; the kernel resampler against a long-double
// polyphase sum; the streaming resampler against its stages.
#include <algorithm>
#include <cmath>
#include <complex>
#include <numeric>
#include <tuple>
#include <vector>

#include "filter/kernels.hpp"
#include "generate/kernel.hpp"
#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

using cld = std::complex<long double>;

// y[k] = sum_j h[j] x[k - j], zeros before x.
std::vector<cld> convolve(const std::vector<cld> &x, const std::vector<cld> &h) {
    std::vector<cld> y(x.size());
    for (size_t k = 0; k < x.size(); ++k)
        for (size_t j = 0; j < h.size() && j <= k; ++j) y[k] += h[j] * x[k - j];
    return y;
}

// Largest distance of the scalars got from the points want, relative to
// sum |h| (the bound of every output for samples within the unit square).
template <class T>
double worst(const std::vector<T> &got, bool cplx, const std::vector<cld> &want,
             const std::vector<cld> &h) {
    long double g = 0, e = 0;
    for (const cld &c : h) g += std::abs(c);
    const auto p = as_points(got, cplx);
    if (p.size() != want.size()) return 1e9;
    for (size_t i = 0; i < p.size(); ++i) e = std::max(e, std::abs(p[i] - want[i]));
    return double(e / g);
}

// The walk written out: the read position in T, consumed one sample at a
// time; the sum in long double, samples before the block zeros. At most cap
// outputs.
template <class T>
std::vector<cld> walk(const std::vector<cld> &s, const std::vector<T> &k, int mode, T step,
                      size_t cap) {
    const long W = std::lround(k[0]), P = long(k.size() - 2) / W, n = long(s.size());
    std::vector<cld> out;
    T pos = 0;
    for (long idx = -W; out.size() < cap; pos += step) {
        while (pos > T(0)) pos -= 1, ++idx;
        if (idx > n - W) break;
        const T f = -pos * T(P);
        const long i = long(f);
        const T r = f - T(i);
        cld sum = 0;
        for (long t = 0; t < W; ++t) {
            const long double a = k[1 + i + t * P], b = mode ? k[2 + i + t * P] : a;
            sum += (idx + t < 0 ? cld(0) : s[idx + t]) * (a + (long double)r * (b - a));
        }
        out.push_back(sum);
    }
    return out;
}

// The stored kernel `mode` at phase 0 evaluated from its description:
// tap t sits at angle 2 pi (t / W - 1/2).
template <class T>
std::vector<long double> stored_taps(int mode) {
    const auto d = dsp::rsmp_stored<T>(mode);
    const int W = int(d.values[0]);
    std::vector<long double> c(W);
    for (int t = 0; t < W; ++t) {
        const long double th = 2 * 3.141592653589793238L * (t / (long double)W - 0.5L);
        long double v = 0;
        for (int i = d.n - 1; i >= 1; --i)
            v = d.polynomial ? v * std::cos(th) + d.values[i]
                             : v + d.values[i] * std::cos((i - 1) * th);
        c[t] = v;
    }
    return c;
}

template <class T>
using coef_t = std::conditional_t<std::is_same_v<T, float>, dspfh_rsmp_coef, dsph_rsmp_coef>;
template <class T>
using state_t = std::conditional_t<std::is_same_v<T, float>, dspfh_rsmp_state, dsph_rsmp_state>;

}  // namespace

template <class T>
class Fir : public ::testing::Test {
 protected:
    void TearDown() override { dsp::filter_kernel::select_kernels(1); }
};
DSP_TYPED_SUITE(Decimate);
DSP_TYPED_SUITE(Resample);
DSP_TYPED_SUITE(Stream);
TYPED_TEST_SUITE(Fir, Precisions);

TYPED_TEST(Fir, BlockwiseEqualsOnePieceDirectSum) {
    using T = TypeParam;
    // Lengths on both sides of the method thresholds (36 complex, 46 real
    // input); blocks that go direct, transform the whole convolution, or
    // transform the block alone and repair the first outputs.
    const int N = 3840;
    double err = 0;
    for (int m : {1, 7, 35, 36, 45, 46, 64, 200})
        for (int kinds = 0; kinds < 4; ++kinds) {
            const bool xc = kinds & 1, hc = kinds & 2;
            const auto x = uniform<T>(xc ? 2 * N : N, m);
            const auto h = uniform<T>(hc ? 2 * m : m, m + 1);
            const auto want = convolve(as_points(x, xc), as_points(h, hc));
            Rec<T> hr(h, hc);
            for (int level : {1, 0}) {  // AVX2 loops (where present), the build's vectors
                dsp::filter_kernel::select_kernels(level);
                for (int B : {N, 320, 256, 30, 7}) {
                    ASSERT_EQ(DSP(_free_internal)(), 0);  // each block length its own spectrum
                    Rec<T> hist;
                    const auto got = blockwise(x, xc, {B}, [&](auto *xb, auto *y) {
                        return DSP(d_fir)(xb, y, &hr, &hist);
                    });
                    err = std::max(err, worst(got, xc || hc, want, as_points(h, hc)));
                }
            }
        }
    EXPECT_LT(err, ulps<T>(8));
}

TYPED_TEST(Fir, HistoryCopiesAndFailures) {
    using T = TypeParam;
    Rec<T> h({1, 2, 3, 4}), hist({5, 6, 7}), y, none, x({1});
    EXPECT_OK(DSP(d_fir)(&x, &y, &h, &hist), *y, {1 * 1 + 2 * 7 + 3 * 6 + 4 * 5});
    expect_values<T>(*hist, {6, 7, 1});  // shifted left by one, the sample behind
    // An empty filter copies x (kind and delta too) and leaves the history.
    Rec<T> xc({1, 2, 3, 4}, true, T(0.5));
    EXPECT_OK(DSP(d_fir)(&xc, &y, &none, &hist), *y, {1, 2, 3, 4});
    EXPECT_TRUE(y->cplx && y->delta == T(0.5));
    expect_values<T>(*hist, {6, 7, 1});
    // A fresh history takes x's kind and m - 1 points.
    Rec<T> fresh;
    EXPECT_OK(DSP(d_fir)(&xc, &y, &h, &fresh), *y, {1, 2, 5, 8});
    expect_values<T>(*fresh, {0, 0, 1, 2, 3, 4});
    // Failures leave the records that would alias untouched.
    Rec<T> neg({1, 2});
    neg->n = -1;
    EXPECT_EQ(DSP(d_fir)(&neg, &y, &h, nullptr), -1);
    EXPECT_EQ(DSP(d_fir)(&x, &hist, &h, &hist), -1);
    EXPECT_EQ(DSP(d_fir)(&x, &h, &h, nullptr), -1);
    EXPECT_EQ(DSP(d_fir)(&hist, &y, &h, &hist), -1);
    expect_values<T>(*hist, {6, 7, 1});
    expect_values<T>(*h, {1, 2, 3, 4});
    // In place on a caller's array: the result moves to storage of the
    // record's own, the array is left as it was.
    T v[3] = {1, 1, 1};
    Rec<T> w;
    *w = wrap(v, 3);
    EXPECT_OK(DSP(d_fir)(&w, &w, &h, nullptr), *w, {1, 3, 6});
    EXPECT_TRUE(v[0] == 1 && v[1] == 1 && v[2] == 1);
}

TYPED_TEST(Fir, TransformCacheKeyIsSharedByBothKinds) {
    using T = TypeParam;
    const auto cv = uniform<T>(512, 2), a = uniform<T>(36, 3);
    const auto b = uniform<T>(46, 4);
    Rec<T> x(uniform<T>(256, 1)), xc(cv, true), x512(uniform<T>(512, 5)), y;
    auto filter = [&](Rec<T> &in, const std::vector<T> &h) {
        Rec<T> hr(h);
        return DSP(d_fir)(in.get(), y.get(), hr.get(), nullptr);
    };
    // A complex block with a (35 taps: direct; 36: its complex spectrum
    // cached), a real one with b (key b), then a complex one with b: it finds
    // the key and takes the complex spectrum held, a's or none. Its first 45
    // outputs are repaired directly, with b.
    for (int ma : {35, 36}) {
        ASSERT_EQ(DSP(_free_internal)(), 0);
        const std::vector<T> am(a.begin(), a.begin() + ma);
        EXPECT_EQ(filter(xc, am), 0);
        EXPECT_EQ(filter(x, b), 0);
        EXPECT_EQ(filter(xc, b), ma == 36 ? 0 : -1);
        auto want = convolve(as_points(cv, true), as_points(am, false));
        const auto head = convolve(as_points(cv, true), as_points(b, false));
        std::copy(head.begin(), head.begin() + 45, want.begin());
        EXPECT_TRUE(ma == 35 || worst(y.values(), true, want, as_points(b, false)) < ulps<T>(8));
    }
    // Below 46 taps a real block goes direct and leaves no key behind.
    const std::vector<T> b45(b.begin(), b.begin() + 45);
    ASSERT_EQ(DSP(_free_internal)(), 0);
    EXPECT_EQ(filter(x, b45), 0);
    EXPECT_EQ(filter(xc, b45), 0);
    // A block needing another transform length than the cached spectrum's.
    ASSERT_EQ(DSP(_free_internal)(), 0);
    EXPECT_EQ(filter(x, b), 0);
    EXPECT_EQ(filter(x512, b), -1);
    // A filter within |h[0]| * 5.96e-7 of the key reuses its spectrum: the
    // outputs past the repaired ones stay exactly as they were.
    ASSERT_EQ(DSP(_free_internal)(), 0);
    EXPECT_EQ(filter(x, b), 0);
    const auto first = y.values();
    for (double d : {2e-7, 2e-6}) {
        auto b2 = b;
        b2[0] *= T(1 + d);
        EXPECT_EQ(filter(x, b2), 0);
        const auto v = y.values();
        EXPECT_EQ(std::equal(first.begin() + 45, first.end(), v.begin() + 45), d < 5.9e-7);
    }
}

TYPED_TEST(Fir, SymmetricEqualsExpandedFilter) {
    using T = TypeParam;
    const int N = 600;
    double err = 0;
    for (int k : {1, 2, 5, 30, 31, 40})
        for (int flags = 0; flags < 16; ++flags) {
            const bool odd = flags & 1, anti = flags & 2, xc = flags & 4, hc = flags & 8;
            const auto x = uniform<T>(xc ? 2 * N : N, k);
            const auto half = uniform<T>(hc ? 2 * k : k, k + 7);
            auto full = as_points(half, hc);
            for (int j = k - 1 - odd; j >= 0; --j) full.push_back(anti ? -full[j] : full[j]);
            const auto want = convolve(as_points(x, xc), full);
            Rec<T> hr(half, hc);
            for (int B : {N, 100, 7, 1}) {
                dsp::filter_kernel::select_kernels(B != N);  // first the build's vectors only
                ASSERT_EQ(DSP(_free_internal)(), 0);
                Rec<T> hist;
                const auto got = blockwise(x, xc, {B}, [&](auto *xb, auto *y) {
                    return DSP(d_sfir)(xb, y, &hr, odd, anti, &hist);
                });
                err = std::max(err, worst(got, xc || hc, want, full));
            }
        }
    EXPECT_LT(err, ulps<T>(8));
    Rec<T> x({1, 2, 3}), y, none, hist({9});
    EXPECT_OK(DSP(d_sfir)(&x, &y, &none, 1, 0, &hist), *y, {1, 2, 3});
    expect_values<T>(*hist, {9});
}

TYPED_TEST(Decimate, PhaseCarriesAcrossBlocks) {
    using T = TypeParam;
    std::vector<T> v(10);
    std::iota(v.begin(), v.end(), T(0));
    Rec<T> x(v, false, T(0.5)), y, phase;
    EXPECT_OK(DSP(d_deci)(&x, &y, 3, &phase), *y, {0, 3, 6, 9});
    EXPECT_TRUE(y->delta == T(1.5) && phase->data[0] == 2);
    phase.set({T(25.4)});  // beyond the block: nothing kept, the phase drops by n
    EXPECT_OK(DSP(d_deci)(&x, &y, 3, &phase), *y, {});
    EXPECT_EQ(phase->data[0], 15);
    EXPECT_OK(DSP(d_deci)(&x, &y, 0, nullptr), *y, v);  // factor below 1: a copy
    EXPECT_EQ(y->delta, T(0.5));
    EXPECT_EQ(DSP(d_deci)(&x, &phase, 2, &phase) + DSP(d_deci)(&phase, &y, 2, &phase), -2);
    expect_values<T>(*phase, {15});

    // Blocks of every size (none, shorter and longer than the factor), real
    // and complex, odd blocks in place, against every D-th point of the whole.
    for (int D : {1, 2, 3, 7})
        for (int cplx : {0, 1}) {
            const int c = cplx ? 2 : 1, n = 200;
            std::vector<T> all(c * n), want;
            std::iota(all.begin(), all.end(), T(0));
            for (int i = 0; i < n; i += D) want.insert(want.end(), &all[c * i], &all[c * i + c]);
            Rec<T> ph({-3});
            EXPECT_EQ(blockwise(all, cplx, {1, 5, 13, 0, 40},
                                [&](auto *xb, auto *r) { return DSP(d_deci)(xb, r, D, &ph); }),
                      want);
        }
}

TYPED_TEST(Decimate, HalfBandAgainstFourLfilterStages) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    const int n = 400;
    const auto re = uniform<T>(n, 1), im = uniform<T>(n, 2);
    std::vector<double> in(re.begin(), re.end());
    in.insert(in.end(), im.begin(), im.end());
    const auto want = python(
        "from scipy.signal import lfilter\n"
        "y = x.reshape(2, -1)\n"
        "for _ in range(4): y = lfilter([0.25, 0.5, 0.5, 0.25], [1, 0, 0.5], y, axis=1)\n"
        "print(' '.join(repr(v) for v in y.ravel()))",
        in);
    ASSERT_EQ(want.size(), size_t(2 * n));
    std::vector<T> xc(2 * n);
    for (int i = 0; i < n; ++i) xc[2 * i] = re[i], xc[2 * i + 1] = im[i];
    auto check = [&](const std::vector<T> &got, int c) {
        ASSERT_EQ(got.size(), size_t(c * n));
        for (int i = 0; i < c * n; ++i) EXPECT_NEAR(got[i], want[i % c * n + i / c], ulps<T>(16));
    };
    // Blocks with a caller's state, and with the internal state, which
    // carries the delays from call to call (the in-place entry without a state).
    for (int cplx : {0, 1}) {
        const auto &all = cplx ? xc : re;
        Rec<T> state;
        ASSERT_EQ(DSP(_free_internal)(), 0);
        for (bool internal : {false, true})
            check(blockwise(all, cplx, {0, 7, 14, 21, 28, 35},
                            [&](auto *xb, auto *r) {
                                return !internal ? DSP(d_hwfilt)(xb, r, nullptr, &state)
                                       : xb == r ? DSP(i_hwfilt)(xb, nullptr)
                                                 : DSP(d_hwfilt)(xb, r, nullptr, nullptr);
                            }),
                  cplx ? 2 : 1);
        EXPECT_TRUE(state->n == 12 && state->cplx == cplx);
    }
    // A state in the in-place entry lands in the reserved position: -1, and
    // nothing is touched.
    Rec<T> x({1, 2}), y({5}), st({3});
    EXPECT_EQ(DSP(i_hwfilt)(&x, &st), -1);
    EXPECT_EQ(DSP(d_hwfilt)(&x, &y, &st, nullptr) + DSP(d_hwfilt)(&x, &y, nullptr, &y), -2);
    EXPECT_TRUE(x.values() == (std::vector<T>{1, 2}) && y->data[0] == 5 && st->data[0] == 3);
}

TYPED_TEST(Resample, PolyphaseSumBlockwiseAndFailures) {
    using T = TypeParam;
    // Width 3, 4 phases per tap.
    auto kv = uniform<T>(14, 7);
    kv[0] = T(3.2);
    Rec<T> kernel(kv);
    for (int cplx : {0, 1})
        for (int mode : {0, 1})
            for (T step : {T(0.37), T(1), T(0.5), T(2.6)}) {
                const auto v = uniform<T>(cplx ? 120 : 60, 3 + cplx);
                const auto want = walk<T>(as_points(v, cplx), kv, mode, step, 1000);
                Rec<T> x(v, cplx, T(2)), y;
                y->n = 1000;
                ASSERT_EQ(DSP(d_rsmp)(&x, &y, mode, &kernel, step, nullptr), 0);
                ASSERT_EQ(size_t(y->n), want.size()) << mode << " " << step;
                EXPECT_EQ(y->delta, step * T(2));
                const auto got = as_points(y.values(), cplx);
                for (size_t i = 0; i < want.size(); ++i)
                    EXPECT_NEAR(std::abs(got[i] - want[i]), 0, ulps<T>(16)) << i;
                // With a history, blocks of any size (none, one point, shorter
                // and longer than the kernel) give the same outputs.
                Rec<T> h;
                EXPECT_EQ(blockwise(
                              v, cplx, {1, 0, 2, 7, 13, 4},
                              [&](auto *xb, auto *r) {
                                  r->n = 1000;
                                  return DSP(d_rsmp)(xb, r, mode, &kernel, step, &h);
                              },
                              false),
                          std::vector<T>(y->data, y->data + (cplx ? 2 : 1) * y->n));
                EXPECT_EQ(h->n, 5);
                // At most y.n outputs; in place wants x.n of them.
                y->n = 4;
                ASSERT_EQ(DSP(d_rsmp)(&x, &y, mode, &kernel, step, nullptr), 0);
                EXPECT_EQ(y->n, std::min<int32_t>(4, int32_t(want.size())));
                ASSERT_EQ(DSP(d_rsmp)(&x, &x, mode, &kernel, step, nullptr), 0);
                EXPECT_EQ(size_t(x->n), std::min(v.size() / (cplx ? 2 : 1), want.size()));
            }

    // The history: samples, carried position and count; a position of -1
    // or less is refused. A block shorter than the width keeps older samples.
    std::vector<T> buf = {1, 2};
    Rec<T> x, y, h;
    *x = wrap(buf.data(), 2);
    y->n = 10;
    ASSERT_EQ(DSP(d_rsmp)(&x, &y, 0, &kernel, T(0.75), &h), 0);
    expect_values<T>(*h, {0, 1, 2, T(0.25), 2});
    EXPECT_EQ(y->n, 3);
    h->data[3] = -1;
    EXPECT_EQ(DSP(d_rsmp)(&x, &y, 0, &kernel, T(1), &h), -1);

    // A kernel of at most one point copies x; everything else refused.
    Rec<T> one({5}), empty, ck(std::vector<T>(28, T(3)), true), odd({3, 1, 2, 3, 4, 5}),
        w0({T(0.4), 1, 2});
    y->n = 0;
    EXPECT_OK(DSP(d_rsmp)(&x, &y, 7, &one, T(1), nullptr), *y, {1, 2});
    EXPECT_OK(DSP(d_rsmp)(&x, &y, 7, &empty, T(1), nullptr), *y, {1, 2});
    y->n = 10;
    Rec<T> xc({1, 2}, true);
    for (auto [in, mode, k, step] : {std::tuple{&x, 0, &ck, T(1)},
                                     {&x, 0, &odd, T(1)},
                                     {&x, 0, &w0, T(1)},
                                     {&x, 2, &kernel, T(1)},
                                     {&x, 0, &kernel, T(-0.5)},
                                     {&xc, 2, &kernel, T(1)}})
        EXPECT_EQ(DSP(d_rsmp)(in, &y, mode, k, step, nullptr), -1);
    EXPECT_EQ(
        DSP(d_rsmp2)(&x, &y, 0, 5, T(1), nullptr) + DSP(d_rsmp2)(&x, &y, 0, -1, T(1), nullptr), -2);
    EXPECT_TRUE(y->n == 10 && y->data[0] == 1 && y->data[1] == 2);  // untouched
}

TYPED_TEST(Resample, StoredKernels) {
    using T = TypeParam;
    const int points[5] = {8194, 13314, 2050, 10242, 13314};
    for (int km = 0; km < 5; ++km) {
        const auto c = stored_taps<T>(km);
        const int W = int(c.size());
        // A constant comes out at the kernel's DC gain, a complex tone at
        // the magnitude of the taps' response, once the window is full.
        for (double f : {0.0, 0.073, 0.25}) {
            const int n = 200;
            std::vector<T> v(2 * n);
            for (int i = 0; i < n; ++i)
                v[2 * i] = T(std::cos(2 * M_PI * f * i)),
                      v[2 * i + 1] = T(std::sin(2 * M_PI * f * i));
            cld gain = 0;
            for (int t = 0; t < W; ++t)
                gain += c[t] * std::polar(1.0L, 2 * 3.141592653589793238L * f * t);
            Rec<T> x(v, true), y;
            y->n = n;
            ASSERT_EQ(DSP(d_rsmp2)(&x, &y, 1, km, T(1), nullptr), 0);
            ASSERT_EQ(y->n, n);
            for (int i = W; i < y->n; ++i)
                EXPECT_NEAR(std::hypot(y->data[2 * i], y->data[2 * i + 1]), std::abs(gain),
                            pick<T>(2e-3, 1e-9))
                    << km << " " << f << " " << i;
            if (km == 4 && f > 0) {
                EXPECT_NEAR(double(std::abs(gain)), f < 0.1 ? 2.2021 : 11.7369, 1e-4);
            }
        }
        // The same bits as the kernel built by the caller, read straight from
        // it (short blocks) or laid out by phase; block-wise with a history.
        Rec<T> kernel;
        kernel->n = points[km];
        ASSERT_EQ(DSP(c_rsmp)(&kernel, km), 0);
        for (int n : {9, 3000}) {
            const auto v = uniform<T>(n, km);
            Rec<T> x(v), y1, y2, h;
            y1->n = y2->n = 4 * n;
            ASSERT_EQ(DSP(d_rsmp2)(&x, &y1, 1, km, T(0.9), nullptr), 0);
            ASSERT_EQ(DSP(d_rsmp)(&x, &y2, 1, &kernel, T(0.9), nullptr), 0);
            EXPECT_EQ(y1.values(), y2.values());
            EXPECT_EQ(blockwise(
                          v, false, {700, 1, 64},
                          [&](auto *xb, auto *r) {
                              r->n = 4 * n;
                              return DSP(d_rsmp2)(xb, r, 1, km, T(0.9), &h);
                          },
                          false),
                      y1.values());
        }
        EXPECT_EQ(DSP(_free_internal)(), 0);
    }
}

TYPED_TEST(Stream, RecordsSkipsAndBlocks) {
    using T = TypeParam;
    coef_t<T> c;
    state_t<T> st;
    EXPECT_EQ(DSP(h_rsmp_coef_init)(&c), 0);
    EXPECT_EQ(DSP(h_rsmp_state_init)(&st), 0);
    for (int rc : {DSP(h_rsmp_coef_init)(nullptr), DSP(h_rsmp_coef_destroy)(nullptr),
                   DSP(h_rsmp_state_init)(nullptr), DSP(h_rsmp_state_destroy)(nullptr),
                   DSP(h_rsmp_state_reset)(&c, nullptr), DSP(h_rsmp_state_reset)(nullptr, &st)})
        EXPECT_EQ(rc, 0);
    // Bad mode or reserved argument: -1, nothing touched.
    EXPECT_EQ(DSP(h_rsmp_coef_alloc)(&c, 1), -1);
    EXPECT_EQ(DSP(h_rsmp_coef_setup)(&c, T(1), 1, 1), -1);
    EXPECT_TRUE(c.halfband.n == 0 && c.kernel.n == 0 && c.kernel_mode == 0 && c.ratio == 0);
    ASSERT_EQ(DSP(h_rsmp_coef_alloc)(&c, 0), 0);
    EXPECT_TRUE(c.halfband.n == 20 && c.halfband_odd == 1 && c.prefilter.n == 12 &&
                c.prefilter_odd == 1 && c.kernel.n == 13314 && c.kernel.data[0] == 13 &&
                c.kernel_mode == 1);
    EXPECT_EQ(c.halfband.data[19], T(0.48080382));
    // Whatever ratio is asked, the chain runs at 1: no coarse stages.
    for (auto [ratio, fine, skip] : {std::tuple{T(4.5), 1, 54}, {T(0.3), 0, 0}}) {
        ASSERT_EQ(DSP(h_rsmp_coef_setup)(&c, ratio, fine, 0), 0);
        EXPECT_TRUE(c.ratio == 1 && c.stages == 0 && c.fine == fine && c.skip_in == 0 &&
                    c.skip_out == skip);
    }

    // Fine stage off: each block is copied, at most y.n points of it.
    const auto v = uniform<T>(400, 9);
    Rec<T> x(std::vector<T>(v.begin(), v.begin() + 10)), y, scratch;
    y->n = 6;
    EXPECT_OK(DSP(h_rsmp)(&x, &y, &scratch, &c, &st), *y, std::vector<T>(v.begin(), v.begin() + 6));

    // Fine stage on. State shaped for the input kind, histories converted on
    // a change of kind.
    ASSERT_EQ(DSP(h_rsmp_coef_setup)(&c, T(1), 1, 0), 0);
    ASSERT_EQ(DSP(h_rsmp_state_alloc)(&c, &st, 1), 0);
    EXPECT_TRUE(st.stages == 0 && st.prefilter_history.n == 22 && st.kernel_history.n == 15 &&
                st.halfband_history.n == 38 && st.phase.n == 1 && st.phase.cplx == 1);
    ASSERT_EQ(DSP(h_rsmp_state_reset)(&c, &st), 0);
    EXPECT_EQ(st.skip_out, 54);
    y->n = 0;
    EXPECT_EQ(DSP(h_rsmp)(&x, &y, nullptr, &c, &st), 0);
    EXPECT_TRUE(y->n == 0 && st.kernel_history.cplx == 0 && st.phase.cplx == 0);

    // The chain without a state equals its stages called one by one, real
    // and complex, in place too; at most y.n points.
    for (int cplx : {0, 1}) {
        Rec<T> in(v, cplx), out, pre, rs, hb, want, kh, ph;
        out->n = 1000;
        ASSERT_EQ(DSP(h_rsmp)(&in, &out, nullptr, &c, nullptr), 0);
        rs->n = 2 * 1000 - 1;
        ASSERT_EQ(DSP(d_sfir)(&in, &pre, &c.prefilter, 1, 0, nullptr), 0);
        ASSERT_EQ(DSP(d_rsmp)(&pre, &rs, 1, &c.kernel, T(0.5), &kh), 0);
        ASSERT_EQ(DSP(d_sfir)(&rs, &hb, &c.halfband, 1, 0, nullptr), 0);
        ASSERT_EQ(DSP(d_deci)(&hb, &want, 2, &ph), 0);
        EXPECT_EQ(out.values(), want.values());
        EXPECT_EQ(out->n, cplx ? 201 : 401);  // 2 n + 1 resampled points
        ASSERT_EQ(DSP(h_rsmp)(&in, &in, &scratch, &c, nullptr), 0);
        EXPECT_EQ(in.values(), std::vector<T>(want->data, want->data + (cplx ? 2 : 1) * in->n));
        out->n = 7;
        ASSERT_EQ(DSP(h_rsmp)(&in, &out, nullptr, &c, nullptr), 0);
        EXPECT_EQ(out->n, 7);

        // Blocks through a primed state: the same stream less its first 54
        // samples, dropped across as many blocks as it takes.
        ASSERT_EQ(DSP(h_rsmp_state_reset)(&c, &st), 0);
        const auto blocks = blockwise(
            v, cplx, {10, 0, 1, 33, 64, 7},
            [&](auto *xb, auto *r) {
                r->n = 1000;
                return DSP(h_rsmp)(xb, r, &scratch, &c, &st);
            },
            false);
        const auto w = want.values();
        ASSERT_EQ(blocks.size() + (cplx ? 108 : 54), w.size());
        for (size_t i = 0; i < blocks.size(); ++i)  // up to the filters' summing order
            EXPECT_NEAR(blocks[i], w[i + (cplx ? 108 : 54)], ulps<T>(64)) << i;
        EXPECT_EQ(st.skip_out, 0);
    }

    // Failures: no coefficients, scratch sharing y's storage, no state shape.
    EXPECT_EQ(DSP(h_rsmp)(&x, &y, &y, &c, &st), -1);
    EXPECT_EQ(DSP(h_rsmp)(&x, &y, nullptr, nullptr, &st), -1);
    EXPECT_EQ(DSP(h_rsmp_state_alloc)(nullptr, &st, 0), -1);
    EXPECT_EQ(DSP(h_rsmp_state_destroy)(&st), 0);
    EXPECT_EQ(DSP(h_rsmp_coef_destroy)(&c), 0);
    EXPECT_TRUE(st.kernel_history.data == nullptr && c.kernel.data == nullptr && c.fine == 0);
}
