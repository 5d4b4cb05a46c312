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
    EXPECT_TRUE(y->delta == T(1.5) && phase->data[0] == 2);
    for (T &s : v) s += 10;
    x.set(v);
    EXPECT_OK(DSP(d_deci)(&x, &y, 3, &phase), *y, {12, 15, 18});
    EXPECT_EQ(phase->data[0], 1);
    phase.set({T(25.4)});  // beyond the block: nothing kept, the phase drops by n
    EXPECT_OK(DSP(d_deci)(&x, &y, 3, &phase), *y, {});
    EXPECT_EQ(phase->data[0], 15);
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
        const std::vector<int> sizes = {0, 7, 14, 21, 28, 35};
        check(blockwise(all, cplx, sizes,
                        [&](auto *xb, auto *r) { return DSP(d_hwfilt)(xb, r, nullptr, &state); }),
              cplx ? 2 : 1);
        check(blockwise(all, cplx, sizes,
                        [&](auto *xb, auto *r) {
                            return xb == r ? DSP(i_hwfilt)(xb, nullptr)
                                           : DSP(d_hwfilt)(xb, r, nullptr, nullptr);
                        }),
              cplx ? 2 : 1);
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
