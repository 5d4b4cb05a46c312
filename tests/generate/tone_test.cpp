// Tone and ramp generators: accuracy against the direct formula over long
// records, the exact re-anchoring at block starts, record kinds and shapes,
// and the failure paths.
#include <cmath>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Tone : public ::testing::Test {};
TYPED_TEST_SUITE(Tone, Precisions);

TYPED_TEST(Tone, MatchesDirectFormula) {
    using T = TypeParam;
    const int n = 1000000;
    const T delta = T(0.5), freq = T(0.037), phase = T(-2.1);
    // The documented step w (in the precision of the family); the exact
    // phase of point k is phase + w k.
    const T w = (delta + delta) * dsp::precision<T>::pi * freq;
    Rec<T> c, e;
    c->n = e->n = n;
    c->delta = e->delta = delta;
    e->cplx = 1;
    ASSERT_EQ(DSP(c_cos)(&c, freq, phase), 0);
    ASSERT_EQ(DSP(c_cexp)(&e, freq, phase), 0);
    ASSERT_EQ(c->n, n);
    ASSERT_EQ(e->cplx, 1);
    long double worst = 0;
    for (int k = 0; k < n; ++k) {
        const long double p = (long double)phase + (long double)w * k;
        // Error beyond one ulp of the phase, which the block-start phase
        // carries in its precision.
        const long double ulp_p = std::fabs(p) * pick<T>(0x1p-23L, 0x1p-52L);
        worst = std::max({worst, std::fabs(c->data[k] - std::cos(p)) - ulp_p,
                          std::fabs(e->data[2 * k] - std::cos(p)) - ulp_p,
                          std::fabs(e->data[2 * k + 1] - std::sin(p)) - ulp_p});
        if (k % 256 == 0) {
            // Each block starts from the directly computed value (single
            // precision: the float phase reduced in double, back to float).
            double q = double(phase + w * T(k));
            if constexpr (std::is_same_v<T, float>) q = double(T(std::fmod(q, 6.283185307179586)));
            ASSERT_EQ(c->data[k], T(std::cos(q))) << k;
            ASSERT_EQ(e->data[2 * k + 1], T(std::sin(q))) << k;
        }
    }
    // Beyond that: output rounding and the drift of at most 255 rotations.
    EXPECT_LT(double(worst), pick<T>(3e-7, 3e-14));
}

TYPED_TEST(Tone, KindsAndShapes) {
    using T = TypeParam;
    const T ph = T(0.7);
    // Real cexp is cos; a complex cos has zero imaginary parts; frequency 0
    // is constant.
    Rec<T> a, b, z;
    a->n = b->n = 300;
    z->n = 3;
    z->cplx = b->cplx = 1;
    ASSERT_EQ(DSP(c_cexp)(&a, T(0.01), ph), 0);
    ASSERT_EQ(DSP(c_cos)(&b, T(0.01), ph), 0);
    EXPECT_EQ(a->cplx, 0);
    for (int k = 0; k < 300; ++k) {
        EXPECT_EQ(b->data[2 * k], a->data[k]);
        EXPECT_EQ(b->data[2 * k + 1], T(0));
    }
    const T c0 = T(std::cos(double(ph))), s0 = T(std::sin(double(ph)));
    EXPECT_OK(DSP(c_cexp)(&z, T(0), ph), *z, {c0, s0, c0, s0, c0, s0}, 1e-6);
    // Caller storage is never written: the record gets a block of its own.
    T buf[4] = {9, 9, 9, 9};
    Rec<T> w;
    *w = wrap<T>(buf, 4);
    EXPECT_OK(DSP(c_line)(&w, T(2), T(1)), *w, {1, 3, 5, 7});
    EXPECT_EQ(buf[0], T(9));
    EXPECT_GT(w->alloc, 0);
    // Empty records: nothing written; a complex cos still ends complex.
    Rec<T> e;
    e->cplx = 1;
    EXPECT_EQ(DSP(c_cos)(&e, T(1), T(0)), 0);
    EXPECT_EQ(e->cplx, 1);
    e->n = -3;
    EXPECT_EQ(DSP(c_line)(&e, T(1), T(0)), 0);
    // Storage that cannot be had: -1 from each generator.
    DSP(_lib_alloc)
    (
        +[](sig<T> *s) { s->data = nullptr; }, nullptr);
    Rec<T> f;
    f->n = 5;
    f->cplx = 1;
    EXPECT_EQ(DSP(c_cos)(&f, T(1), T(0)), -1);
    EXPECT_EQ(DSP(c_cexp)(&f, T(1), T(0)), -1);
    EXPECT_EQ(DSP(c_line)(&f, T(1), T(0)), -1);
    DSP(_lib_alloc)(nullptr, nullptr);
}

TYPED_TEST(Tone, LineAccumulates) {
    using T = TypeParam;
    const T slope = T(0.1), delta = T(0.3), start = T(-7);
    Rec<T> r, c;
    r->n = c->n = 5000;
    r->delta = c->delta = delta;
    c->cplx = 1;
    ASSERT_EQ(DSP(c_line)(&r, slope, start), 0);
    ASSERT_EQ(DSP(c_line)(&c, slope, start), 0);
    // Repeated addition, which differs from start + k step in the last bits.
    T v = start;
    int differs = 0;
    for (int k = 0; k < 5000; ++k, v += slope * delta) {
        ASSERT_EQ(r->data[k], v) << k;
        ASSERT_EQ(c->data[2 * k], v) << k;
        ASSERT_EQ(c->data[2 * k + 1], T(0)) << k;
        differs += v != start + T(k) * (slope * delta);
    }
    EXPECT_GT(differs, 0);
    EXPECT_OK(DSP(c_line)(&r, T(0), T(4)), *r, std::vector<T>(5000, T(4)));
}
