// Decimation with a carried phase, and the half-band filter against four
// scipy lfilter stages.
#include <algorithm>
#include <numeric>
#include <vector>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Decimate : public ::testing::Test {};
TYPED_TEST_SUITE(Decimate, Precisions);

TYPED_TEST(Decimate, PhaseCarriesAcrossBlocks) {
    using T = TypeParam;
    std::vector<T> v(10);
    std::iota(v.begin(), v.end(), T(0));
    Rec<T> x(v, false, T(0.5)), y, phase;
    EXPECT_OK(DSP(d_deci)(&x, &y, 3, &phase), *y, {0, 3, 6, 9});
    EXPECT_EQ(y->delta, T(1.5));
    expect_values<T>(*phase, {2});
    for (T &s : v) s += 10;
    x.set(v);
    EXPECT_OK(DSP(d_deci)(&x, &y, 3, &phase), *y, {12, 15, 18});
    expect_values<T>(*phase, {1});
    phase.set({T(25.4)});  // beyond the block: nothing kept, the phase drops by n
    EXPECT_OK(DSP(d_deci)(&x, &y, 3, &phase), *y, {});
    expect_values<T>(*phase, {15});
    EXPECT_OK(DSP(d_deci)(&x, &y, 0, nullptr), *y, v);  // factor below 1: a copy
    EXPECT_EQ(y->delta, T(1));
    EXPECT_EQ(DSP(d_deci)(&x, &phase, 2, &phase), -1);
    EXPECT_EQ(DSP(d_deci)(&phase, &y, 2, &phase), -1);
    expect_values<T>(*phase, {15});

    // Blocks of every size (none, shorter and longer than the factor), real
    // and complex, odd blocks in place, against every D-th point of the whole.
    for (int D : {1, 2, 3, 7})
        for (int cplx : {0, 1}) {
            const int c = cplx ? 2 : 1, n = 200;
            std::vector<T> all(c * n), want, got;
            std::iota(all.begin(), all.end(), T(0));
            for (int i = 0; i < n; i += D) want.insert(want.end(), &all[c * i], &all[c * i + c]);
            Rec<T> ph({-3}), out;
            const int sizes[] = {1, 5, 13, 0, 40};
            for (int at = 0, b = 0; at < n; ++b) {
                const int len = std::min(sizes[b % 5], n - at);
                Rec<T> xb(std::vector<T>(&all[c * at], &all[c * (at + len)]), cplx);
                Rec<T> &r = b % 2 ? xb : out;
                ASSERT_EQ(DSP(d_deci)(&xb, &r, D, &ph), 0);
                const auto vals = r.values();
                got.insert(got.end(), vals.begin(), vals.end());
                at += len;
            }
            EXPECT_EQ(got, want) << D << " " << cplx;
        }
}

TYPED_TEST(Decimate, HalfBandAgainstFourLfilterStages) {
    using T = TypeParam;
    const int n = 400;
    const auto re = random_values<T>(n, 1), im = random_values<T>(n, 2);
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
    // Blocks with a caller's state, odd ones in place; then the in-place entry
    // with the internal state, which carries the delays from call to call.
    for (int cplx : {0, 1}) {
        const auto &all = cplx ? xc : re;
        const int c = cplx ? 2 : 1;
        Rec<T> state, y;
        std::vector<T> got, got_internal;
        ASSERT_EQ(DSP(_free_internal)(), 0);
        for (int at = 0, b = 0; at < n; at += 7 * b, ++b) {
            const int len = std::min(7 * b, n - at);
            std::vector<T> block(all.begin() + c * at, all.begin() + c * (at + len));
            Rec<T> xb(block, cplx), xi(block, cplx);
            Rec<T> &r = b % 2 ? xb : y;
            ASSERT_EQ(DSP(d_hwfilt)(&xb, &r, nullptr, &state), 0);
            const auto v = r.values();
            got.insert(got.end(), v.begin(), v.end());
            ASSERT_EQ(DSP(i_hwfilt)(&xi, nullptr), 0);
            const auto vi = xi.values();
            got_internal.insert(got_internal.end(), vi.begin(), vi.end());
        }
        check(got, c);
        check(got_internal, c);
        EXPECT_TRUE(state->n == 12 && state->cplx == cplx);
    }
    // A state in the in-place entry lands in the reserved position: -1, and
    // nothing is touched.
    Rec<T> x({1, 2}), y({5}), st({3});
    EXPECT_EQ(DSP(i_hwfilt)(&x, &st), -1);
    EXPECT_EQ(DSP(d_hwfilt)(&x, &y, &st, nullptr), -1);
    EXPECT_EQ(DSP(d_hwfilt)(&x, &y, nullptr, &y), -1);
    expect_values<T>(*x, {1, 2});
    expect_values<T>(*y, {5});
    expect_values<T>(*st, {3});
}
