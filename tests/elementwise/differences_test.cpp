#include <cmath>
#include <vector>

#include "support/support.hpp"

using namespace dsp_test;

namespace {

template <class T>
class Differences : public ::testing::Test {};
TYPED_TEST_SUITE(Differences, Precisions);

}  // namespace

TYPED_TEST(Differences, OreconMirrorsConjugates) {
    using T = TypeParam;
    // Complex (a, b, c): odd 0 gives (a, b, c, conj b); odd 1 (a, b, c, conj c, conj b).
    const std::vector<T> abc = {1, 2, 3, 4, 5, 6};
    Rec<T> even;
    even.set(abc, true);
    EXPECT_EQ(DSP(i_orecon)(&even, 0), 0);
    expect_values<T>(*even, {1, 2, 3, 4, 5, 6, 3, -4});
    Rec<T> odd;
    odd.set(abc, true);
    EXPECT_EQ(DSP(i_orecon)(&odd, 1), 0);
    expect_values<T>(*odd, {1, 2, 3, 4, 5, 6, 5, -6, 3, -4});
    Rec<T> rec;
    rec.set(abc, true);
    EXPECT_EQ(DSP(i_recon)(&rec), 0);
    expect_values<T>(*rec, {1, 2, 3, 4, 5, 6, 3, -4});

    // Real records copy the values; X[N - k] = X[k] for every k.
    for (int odd_flag = 0; odd_flag < 2; ++odd_flag) {
        Rec<T> r{1, 2, 3, 4, 5};
        EXPECT_EQ(DSP(i_orecon)(&r, odd_flag), 0);
        const int N = 8 + odd_flag;
        ASSERT_EQ(r->n, N);
        for (int k = 1; k < N; ++k) EXPECT_EQ(r->data[N - k], r->data[k]) << k;
    }

    // Too short to change: n < 2, and n = 2 with odd 0 (recon: n < 3).
    Rec<T> one{7};
    EXPECT_EQ(DSP(i_orecon)(&one, 1), 0);
    EXPECT_EQ(one->n, 1);
    Rec<T> two({1, 2, 3, 4}, true);
    EXPECT_EQ(DSP(i_orecon)(&two, 0), 0);
    EXPECT_EQ(two->n, 2);
    EXPECT_EQ(DSP(i_recon)(&two), 0);
    EXPECT_EQ(two->n, 2);
    EXPECT_EQ(DSP(i_orecon)(&two, 1), 0);
    expect_values<T>(*two, {1, 2, 3, 4, 3, -4});

    // Caller storage: the mirrored spectrum lands in an owned block.
    T buf[3] = {1, 2, 3};
    Rec<T> wrapped;
    wrapped->data = buf;
    wrapped->n = 3;
    EXPECT_EQ(DSP(i_recon)(&wrapped), 0);
    EXPECT_NE(wrapped->data, buf);
    expect_values<T>(*wrapped, {1, 2, 3, 2});
    EXPECT_EQ(buf[2], T(3));
}
