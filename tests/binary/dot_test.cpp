#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Dot : public ::testing::Test {};
TYPED_TEST_SUITE(Dot, Precisions);

TYPED_TEST(Dot, ProductSumsOfEveryKind) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3}), y({4, -5, 6}), r({9}, false, T(7));
    ASSERT_EQ(DSP(bs_dot)(&x, &y, &r), 0);
    expect_values<T>(*r, {12});
    EXPECT_EQ(r->delta, T(7));  // kept
    // Complex with itself: sum of z^2, not of |z|^2.
    Rec<T> z({1, 2, 3, -1}, true), w({1, 1}), zz({1, 2, 3, -1}, true);
    ASSERT_EQ(DSP(bs_dot)(&z, &zz, &r), 0);
    expect_values<T>(*r, {(1 - 4) + (9 - 1), 4 + -6});
    ASSERT_EQ(DSP(bs_dot)(&z, &w, &r), 0);
    expect_values<T>(*r, {4, 1});
    ASSERT_EQ(DSP(bs_dot)(&w, &z, &w), 0);  // real a into a complex result in place
    expect_values<T>(*w, {4, 1});
    ASSERT_EQ(DSP(bs_dot)(&x, &y, &y), 0);
    expect_values<T>(*y, {12});
    Rec<T> e, ec({}, true);
    ASSERT_EQ(DSP(bs_dot)(&e, &e, &r), 0);
    expect_values<T>(*r, {0});
    ASSERT_EQ(DSP(bs_dot)(&ec, &e, &ec), 0);
    expect_values<T>(*ec, {0, 0});
    Rec<T> r2({5});
    EXPECT_EQ(DSP(bs_dot)(&x, &z, &r2), -1);
    expect_values<T>(*r2, {5});
    // Caller storage used in place is read where it is and left unwritten.
    std::vector<T> v = {1, 2, 3};
    sig<T> a{T(1), v.data(), 0, 3, 0, 0};
    ASSERT_EQ(DSP(bs_dot)(&a, &x, &a), 0);
    expect_values<T>(a, {14});
    EXPECT_EQ(v, (std::vector<T>{1, 2, 3}));
    DSP(_destroy)(&a);
}

TYPED_TEST(Dot, AccumulatesInPointOrderInTheWorkingPrecision) {
    using T = TypeParam;
    Rec<T> x({T(1e8), 1, T(-1e8)}), ones({1, 1, 1}), r;
    ASSERT_EQ(DSP(bs_dot)(&x, &ones, &r), 0);
    // 1e8 + 1 is 1e8 in single precision.
    expect_values<T>(*r, {std::is_same_v<T, float> ? T(0) : T(1)});
}
