// The internal result preparation, tolerant comparison and index helpers.
#include "frame/prepare.hpp"

#include <cmath>
#include <limits>

#include "frame/record.hpp"
#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Prepare : public ::testing::Test {
 protected:
    void TearDown() override { pick<T>(dspf_lib_free, dsp_lib_free)(nullptr, nullptr); }
};
TYPED_TEST_SUITE(Prepare, Precisions);

TYPED_TEST(Prepare, BinaryResult) {
    using T = TypeParam;
    Rec<T> a({1, 2, 3}), b({4, 5, 6, 7, 8, 9}, true, T(2)), c({1, 2}), r({42});
    EXPECT_EQ(dsp::prepare_binary_result<T>(*a, *c, *r), -1);
    expect_values<T>(*r, {42});  // untouched
    ASSERT_EQ(dsp::prepare_binary_result<T>(*a, *b, *r), 0);
    EXPECT_TRUE(r->delta == T(1.5) && r->cplx && r->n == 3 && r->alloc >= 6);  // mean delta
    // In place with a real a and a complex b: a becomes complex and its real
    // scalars stay readable at the front of the grown block.
    ASSERT_EQ(dsp::prepare_binary_result<T>(*a, *b, *a), 0);
    EXPECT_TRUE(a->cplx && a->alloc >= 6 && a->delta == T(1.5));
    EXPECT_TRUE(a->data[0] == T(1) && a->data[2] == T(3));
}

TYPED_TEST(Prepare, ResultScratchStateAndRelease) {
    using T = TypeParam;
    // Nothing built by earlier tests: the release below counts this test's records.
    ASSERT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
    Rec<T> in({1, 2, 3, 4}, true, T(0.5)), coef({1, 1}), state({7}), out;
    // Not in place: the caller's record is sized directly.
    sig<T> *slot = out.get(), *state_slot = state.get();
    ASSERT_EQ(dsp::prepare_result<T>(*in, &slot, coef.get(), &state_slot, 3, dsp::PREP_INPLACE), 0);
    EXPECT_EQ(slot, out.get());
    EXPECT_TRUE(out->n == 2 && out->cplx && out->delta == T(0.5));
    // The state takes the input's kind and spacing and is padded with zeros.
    EXPECT_TRUE(state->cplx && state->delta == T(0.5));
    expect_values<T>(*state, {7, 0, 0, 0, 0, 0});
    EXPECT_EQ(dsp::finish_result<T>(*slot), 0);

    // In place: the operation writes the scratch record and finish_result
    // copies it into the caller's record.
    auto in_place = [&](T first) {
        slot = in.get();
        ASSERT_EQ(dsp::prepare_result<T>(*in, &slot, nullptr, nullptr, 0, dsp::PREP_INPLACE), 0);
        ASSERT_NE(slot, in.get());
        for (int i = 0; i < 4; ++i) slot->data[i] = first + T(10 * i);
        EXPECT_NE(in->data[0], first);
        EXPECT_EQ(dsp::finish_result<T>(*slot), 0);
        expect_values<T>(*in, {first, first + 10, first + 20, first + 30});
    };
    in_place(T(10));
    EXPECT_EQ(dsp::finish_result<T>(*in), 0);  // nothing pending
    expect_values<T>(*in, {10, 20, 30, 40});

    // PREP_KEEP_N keeps the caller's n; a complex coefficient record makes
    // the result complex.
    Rec<T> real_in({1, 2, 3}), cplx_coef({1, 0}, true), kept;
    kept->n = 5;
    slot = kept.get();
    ASSERT_EQ(
        dsp::prepare_result<T>(*real_in, &slot, cplx_coef.get(), nullptr, 0, dsp::PREP_KEEP_N), 0);
    EXPECT_TRUE(kept->n == 5 && kept->cplx);

    // The internal state record is lent to a null state slot.
    sig<T> *lent = nullptr;
    slot = out.get();
    ASSERT_EQ(dsp::prepare_result<T>(*real_in, &slot, nullptr, &lent, 12, dsp::PREP_INTERNAL_STATE),
              0);
    ASSERT_NE(lent, nullptr);
    EXPECT_TRUE(lent->n == 12 && !lent->cplx);

    // Release: both scratch records are destroyed through the free hook,
    // harmlessly twice, and rebuilt on the next use.
    static int frees;
    frees = 0;
    pick<T>(dspf_lib_free, dsp_lib_free)([](sig<T> *x) { ++frees, std::free(x->data); }, nullptr);
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
        EXPECT_EQ(frees, 2);
    }
    pick<T>(dspf_lib_free, dsp_lib_free)(nullptr, nullptr);
    in_place(T(5));
}

TYPED_TEST(Prepare, ApproxEqualAndIndices) {
    using T = TypeParam;
    using P = dsp::precision<T>;
    const T above = std::nextafter(P::tiny, T(1));
    // clang-format off
    const struct { T x, y; int want; } eq[] = {
        {3, 3, 1}, {1, -1, 0}, {0, P::tiny, 1}, {0, P::tiny * T(2), 0}, {0, pick<T>(1e-38f, 1e-307), 1},
        {1, P::tol_hi, 1}, {1, std::nextafter(P::tol_hi, T(2)), 0},
        {1, P::tol_lo, 1}, {1, std::nextafter(P::tol_lo, T(0)), 0},
        // Asymmetric: a reference inside the tiny band only accepts tiny values.
        {P::tiny, above, 0}, {above, P::tiny, 1}};
    // clang-format on
    for (const auto &c : eq) EXPECT_EQ(dsp::approx_equal<T>(c.x, c.y), c.want) << c.x << " " << c.y;

    // Position, floor_index, ceil_index (-1: not checked). Just below an
    // integer counts as that integer for floor_index, just above for ceil_index.
    const int32_t big =
        int32_t(std::min<double>(std::floor(double(P::index_big * P::tol_hi)), 2147483647.0));
    // clang-format off
    const struct { T x; int32_t fl, ce; } idx[] = {
        {T(-0.1), 0, 0}, {T(3e9), 0x7ffffffe, 0x7ffffffe}, {T(2.5), 2, 3}, {T(0.25), 0, 1}, {0, 0, 0},
        {1 - P::tol_eps / 2, 1, 1}, {P::tol_eps / 2, 0, 0}, {T(2.99999), 2, 3},
        {std::nextafter(T(3), T(0)), 3, 3}, {std::nextafter(T(3), T(4)), 3, 3},
        {std::numeric_limits<T>::quiet_NaN(), 0, -1}, {P::index_big, big, -1}};
    // clang-format on
    for (const auto &c : idx) {
        EXPECT_EQ(dsp::floor_index<T>(c.x), c.fl) << c.x;
        EXPECT_EQ(c.ce < 0 ? c.ce : dsp::ceil_index<T>(c.x), c.ce) << c.x;
    }
    EXPECT_EQ(P::large, pick<T>(999999986991104.0f, 1e100));
}
