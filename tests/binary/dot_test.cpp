#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Dot : public ::testing::Test {};
TYPED_TEST_SUITE(Dot, Precisions);

TYPED_TEST(Dot, ProductSumsOfEveryKind) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3}), y({4, -5, 6}), r({9}, false, T(7)), e, ec({}, true), r2({5});
    EXPECT_OK(DSP(bs_dot)(&x, &y, &r), *r, {12});
    EXPECT_EQ(r->delta, T(7));  // kept
    // Complex with itself: sum of z^2, not of |z|^2.
    Rec<T> z({1, 2, 3, -1}, true), w({1, 1}), zz({1, 2, 3, -1}, true);
    EXPECT_OK(DSP(bs_dot)(&z, &zz, &r), *r, {(1 - 4) + (9 - 1), 4 + -6});
    EXPECT_OK(DSP(bs_dot)(&z, &w, &r), *r, {4, 1});
    EXPECT_OK(DSP(bs_dot)(&w, &z, &w), *w, {4, 1});  // real a into a complex result in place
    EXPECT_OK(DSP(bs_dot)(&x, &y, &y), *y, {12});
    EXPECT_OK(DSP(bs_dot)(&e, &e, &r), *r, {0});
    EXPECT_OK(DSP(bs_dot)(&ec, &e, &ec), *ec, {0, 0});
    EXPECT_EQ(DSP(bs_dot)(&x, &z, &r2), -1);
    expect_values<T>(*r2, {5});
    // Caller storage used in place is read where it is and left unwritten.
    T v[3] = {1, 2, 3};
    Rec<T> a;
    *a = wrap(v, 3);
    EXPECT_OK(DSP(bs_dot)(&a, &x, &a), *a, {14});
    EXPECT_EQ(std::vector<T>(v, v + 3), (std::vector<T>{1, 2, 3}));
    // Accumulated in point order in the working precision: 1e8 + 1 is 1e8 in
    // single precision.
    Rec<T> big({T(1e8), 1, T(-1e8)}), ones({1, 1, 1});
    EXPECT_OK(DSP(bs_dot)(&big, &ones, &big), *big, {pick<T>(0.0f, 1.0)});
}
