// The internal result preparation, tolerant comparison and index helpers.
#include <cmath>
#include <limits>

#include "frame/prepare.hpp"
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
    Rec<T> a({1, 2, 3}, false, T(1)), b({4, 5, 6, 7, 8, 9}, true, T(2)), c({1, 2});
    Rec<T> r({42});
    EXPECT_EQ(dsp::prepare_binary_result<T>(*a, *c, *r), -1);
    expect_values<T>(*r, {42});  // untouched
    ASSERT_EQ(dsp::prepare_binary_result<T>(*a, *b, *r), 0);
    EXPECT_EQ(r->delta, T(1.5));  // mean of the deltas
    EXPECT_TRUE(r->cplx);
    EXPECT_EQ(r->n, 3);
    EXPECT_GE(r->alloc, 6);

    // In place with a real a and a complex b: a becomes complex and its real
    // scalars stay readable at the front of the grown block.
    ASSERT_EQ(dsp::prepare_binary_result<T>(*a, *b, *a), 0);
    EXPECT_TRUE(a->cplx);
    EXPECT_GE(a->alloc, 6);
    EXPECT_EQ(a->data[0], T(1));
    EXPECT_EQ(a->data[2], T(3));
    EXPECT_EQ(a->delta, T(1.5));
}

TYPED_TEST(Prepare, ResultScratchStateAndRelease) {
    using T = TypeParam;
    Rec<T> in({1, 2, 3, 4}, true, T(0.5));
    Rec<T> coef({1, 1});
    Rec<T> state({7});

    // Not in place: the caller's record is sized directly.
    Rec<T> out;
    sig<T> *slot = out.get();
    sig<T> *state_slot = state.get();
    ASSERT_EQ(dsp::prepare_result<T>(*in, &slot, coef.get(), &state_slot, 3, dsp::PREP_INPLACE), 0);
    EXPECT_EQ(slot, out.get());
    EXPECT_EQ(out->n, 2);
    EXPECT_TRUE(out->cplx);
    EXPECT_EQ(out->delta, T(0.5));
    // The state takes the input's kind and spacing and is padded with zeros.
    EXPECT_TRUE(state->cplx);
    EXPECT_EQ(state->delta, T(0.5));
    expect_values<T>(*state, {7, 0, 0, 0, 0, 0});
    EXPECT_EQ(dsp::finish_result<T>(*slot), 0);

    // In place: the operation writes the scratch record and finish_result
    // copies it into the caller's record.
    slot = in.get();
    ASSERT_EQ(dsp::prepare_result<T>(*in, &slot, nullptr, nullptr, 0, dsp::PREP_INPLACE), 0);
    ASSERT_NE(slot, in.get());
    slot->data[0] = T(10);
    slot->data[1] = T(20);
    slot->data[2] = T(30);
    slot->data[3] = T(40);
    expect_values<T>(*in, {1, 2, 3, 4});
    EXPECT_EQ(dsp::finish_result<T>(*slot), 0);
    expect_values<T>(*in, {10, 20, 30, 40});
    EXPECT_EQ(dsp::finish_result<T>(*in), 0);  // nothing pending

    // PREP_KEEP_N keeps the caller's n; a complex coefficient record makes
    // the result complex.
    Rec<T> real_in({1, 2, 3}), cplx_coef({1, 0}, true), kept;
    kept->n = 5;
    slot = kept.get();
    ASSERT_EQ(dsp::prepare_result<T>(*real_in, &slot, cplx_coef.get(), nullptr, 0, dsp::PREP_KEEP_N), 0);
    EXPECT_EQ(kept->n, 5);
    EXPECT_TRUE(kept->cplx);

    // The internal state record is lent to a null state slot.
    sig<T> *lent = nullptr;
    slot = out.get();
    ASSERT_EQ(dsp::prepare_result<T>(*real_in, &slot, nullptr, &lent, 12, dsp::PREP_INTERNAL_STATE), 0);
    ASSERT_NE(lent, nullptr);
    EXPECT_EQ(lent->n, 12);
    EXPECT_FALSE(lent->cplx);

    // Release: both scratch records are destroyed through the free hook.
    static int frees;
    frees = 0;
    pick<T>(dspf_lib_free, dsp_lib_free)([](sig<T> *x) { ++frees; std::free(x->data); }, nullptr);
    EXPECT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
    EXPECT_EQ(frees, 2);
    EXPECT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);  // harmless twice
    EXPECT_EQ(frees, 2);
    pick<T>(dspf_lib_free, dsp_lib_free)(nullptr, nullptr);

    // Everything is rebuilt on the next use.
    slot = in.get();
    ASSERT_EQ(dsp::prepare_result<T>(*in, &slot, nullptr, nullptr, 0, dsp::PREP_INPLACE), 0);
    slot->data[0] = T(5);
    EXPECT_EQ(dsp::finish_result<T>(*slot), 0);
    EXPECT_EQ(in->data[0], T(5));
}

TYPED_TEST(Prepare, ApproxEqualAndIndices) {
    using T = TypeParam;
    using P = dsp::precision<T>;
    EXPECT_EQ(dsp::approx_equal<T>(T(3), T(3)), 1);
    EXPECT_EQ(dsp::approx_equal<T>(T(0), P::tiny), 1);
    EXPECT_EQ(dsp::approx_equal<T>(T(0), P::tiny * T(2)), 0);
    EXPECT_EQ(dsp::approx_equal<T>(T(1), T(-1)), 0);
    EXPECT_EQ(dsp::approx_equal<T>(T(1), P::tol_hi), 1);
    EXPECT_EQ(dsp::approx_equal<T>(T(1), std::nextafter(P::tol_hi, T(2))), 0);
    EXPECT_EQ(dsp::approx_equal<T>(T(1), P::tol_lo), 1);
    EXPECT_EQ(dsp::approx_equal<T>(T(1), std::nextafter(P::tol_lo, T(0))), 0);
    // Asymmetric: a reference inside the tiny band only accepts tiny values.
    const T above = std::nextafter(P::tiny, T(1));
    EXPECT_EQ(dsp::approx_equal<T>(P::tiny, above), 0);
    EXPECT_EQ(dsp::approx_equal<T>(above, P::tiny), 1);

    EXPECT_EQ(dsp::floor_index<T>(T(-0.1)), 0);
    EXPECT_EQ(dsp::floor_index<T>(T(3e9)), 0x7ffffffe);
    EXPECT_EQ(dsp::ceil_index<T>(T(3e9)), 0x7ffffffe);
    EXPECT_EQ(dsp::floor_index<T>(T(2.5)), 2);
    EXPECT_EQ(dsp::ceil_index<T>(T(2.5)), 3);
    EXPECT_EQ(dsp::floor_index<T>(T(0.25)), 0);
    EXPECT_EQ(dsp::ceil_index<T>(T(0.25)), 1);
    EXPECT_EQ(dsp::ceil_index<T>(T(0)), 0);
    EXPECT_EQ(dsp::floor_index<T>(T(1) - P::tol_eps / 2), 1);  // forgiven below 1
    EXPECT_EQ(dsp::ceil_index<T>(P::tol_eps / 2), 0);           // forgiven above 0
    EXPECT_EQ(dsp::floor_index<T>(std::numeric_limits<T>::quiet_NaN()), 0);
    EXPECT_EQ(dsp::floor_index<T>(P::index_big), int32_t(std::min<double>(
                  std::floor(double(P::index_big * P::tol_hi)), 2147483647.0)));
    if constexpr (std::is_same_v<T, float>) {
        EXPECT_EQ(P::large, 999999986991104.0f);
        EXPECT_EQ(dsp::floor_index<float>(2.9999998f), 3);
        EXPECT_EQ(dsp::ceil_index<float>(3.0000002f), 3);
        EXPECT_EQ(dsp::approx_equal<float>(0.0f, 1e-38f), 1);
    } else {
        EXPECT_EQ(dsp::floor_index<double>(2.9999999999999996), 3);
        EXPECT_EQ(dsp::ceil_index<double>(3.0000000000000004), 3);
        EXPECT_EQ(dsp::floor_index<double>(2.99999), 2);
    }
}
