// The streaming resampler: records, the fixed ratio and skips, the chain
// against its stages called one by one, block by block with a state.
#include <tuple>
#include <vector>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Stream : public ::testing::Test {};
TYPED_TEST_SUITE(Stream, Precisions);

namespace {

template <class T>
using coef_t = std::conditional_t<std::is_same_v<T, float>, dspfh_rsmp_coef, dsph_rsmp_coef>;
template <class T>
using state_t = std::conditional_t<std::is_same_v<T, float>, dspfh_rsmp_state, dsph_rsmp_state>;

}  // namespace

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
