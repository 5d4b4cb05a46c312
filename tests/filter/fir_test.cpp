// Block FIR filtering against long-double direct sums: both methods, every
// kind of input and filter, block-wise with a history against one piece,
// the transform cache, and the symmetric form against its expanded filter.
#include <algorithm>
#include <complex>
#include <vector>

#include "filter/kernels.hpp"
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

}  // namespace

template <class T>
class Fir : public ::testing::Test {
 protected:
    void TearDown() override { dsp::filter_kernel::select_kernels(1); }
};
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
        EXPECT_EQ(filter(xc, am) | filter(x, b), 0);
        EXPECT_EQ(filter(xc, b), ma == 36 ? 0 : -1);
        auto want = convolve(as_points(cv, true), as_points(am, false));
        const auto head = convolve(as_points(cv, true), as_points(b, false));
        std::copy(head.begin(), head.begin() + 45, want.begin());
        EXPECT_TRUE(ma == 35 || worst(y.values(), true, want, as_points(b, false)) < ulps<T>(8));
    }
    // Below 46 taps a real block goes direct and leaves no key behind.
    const std::vector<T> b45(b.begin(), b.begin() + 45);
    ASSERT_EQ(DSP(_free_internal)(), 0);
    EXPECT_EQ(filter(x, b45) | filter(xc, b45), 0);
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
