// The kernel resampler against a long-double evaluation of the polyphase sum,
// block by block with a history; the stored kernels' gains.
#include <cmath>
#include <complex>
#include <tuple>
#include <vector>

#include "generate/kernel.hpp"
#include "support/support.hpp"

using namespace dsp_test;
using cld = std::complex<long double>;

template <class T>
class Resample : public ::testing::Test {};
TYPED_TEST_SUITE(Resample, Precisions);

namespace {

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

}  // namespace

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
    for (auto [mode, k, step] : {std::tuple{0, &ck, T(1)},
                                 {0, &odd, T(1)},
                                 {0, &w0, T(1)},
                                 {2, &kernel, T(1)},
                                 {0, &kernel, T(-0.5)}})
        EXPECT_EQ(DSP(d_rsmp)(&x, &y, mode, k, step, nullptr), -1);
    Rec<T> xc({1, 2}, true);
    EXPECT_EQ(DSP(d_rsmp)(&xc, &y, 2, &kernel, T(1), nullptr), -1);
    EXPECT_EQ(DSP(d_rsmp2)(&x, &y, 0, 5, T(1), nullptr), -1);
    EXPECT_EQ(DSP(d_rsmp2)(&x, &y, 0, -1, T(1), nullptr), -1);
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
