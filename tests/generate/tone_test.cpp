// Tone and ramp generators against the direct formula over long records, the
// exact re-anchoring at block starts and the record kinds; every generator
// and builder on caller storage, empty records and failing storage.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <functional>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Tone : public ::testing::Test {};
TYPED_TEST_SUITE(Tone, Precisions);

TYPED_TEST(Tone, ToneAndLineMatchTheirFormulas) {
    using T = TypeParam;
    const int n = std::min(1000000, reference_reach(100000));
    const T delta = T(0.5), freq = T(0.037), phase = T(-2.1);
    // The step w in the precision of the family; point k is at phase + w k.
    const T w = (delta + delta) * dsp::precision<T>::pi * freq;
    Rec<T> c, e, a;
    c->n = e->n = n;
    a->n = 300;
    c->delta = e->delta = a->delta = delta;
    e->cplx = 1;
    ASSERT_EQ(DSP(c_cos)(&c, freq, phase), 0);
    ASSERT_EQ(DSP(c_cexp)(&e, freq, phase), 0);
    ASSERT_EQ(DSP(c_cexp)(&a, freq, phase), 0);  // real: the cosine
    ASSERT_TRUE(c->n == n && c->delta == delta && e->cplx == 1 && a->cplx == 0);
    long double worst = 0;
    for (int k = 0; k < n; ++k) {
        // The error beyond one ulp of the phase, which the block-start phase
        // carries in its precision; one more where long double is double (32-bit
        // ARM), whose reference phase is rounded as often as the library's.
        const long double p = (long double)phase + (long double)w * k;
        const long double ulp_p =
            std::fabs(p) * pick<T>(0x1p-23L, 0x1p-52L) * (LDBL_MANT_DIG > DBL_MANT_DIG ? 1 : 2);
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
        ASSERT_TRUE(k >= 300 || a->data[k] == c->data[k]) << k;
    }
    // Beyond that: output rounding and the drift of at most 255 rotations.
    EXPECT_LT(double(worst), pick<T>(3e-7, 3e-14));
    // Frequency 0: constant cos and sin of the phase; a complex cos has zero
    // imaginary parts.
    e->n = 2;
    const T c0 = T(std::cos(0.7)), s0 = T(std::sin(0.7));
    EXPECT_OK(DSP(c_cexp)(&e, T(0), T(0.7)), *e, {c0, s0, c0, s0}, 1e-6);
    EXPECT_OK(DSP(c_cos)(&e, T(0), T(0.7)), *e, {c0, 0, c0, 0}, 1e-6);
    // The line: repeated addition of slope delta, which differs from start + k step.
    const T step = T(0.1) * T(0.3);
    Rec<T> r;
    r->n = 5000;
    r->delta = T(0.3);
    r->cplx = 1;
    ASSERT_EQ(DSP(c_line)(&r, T(0.1), T(-7)), 0);
    int differs = 0;
    T v = T(-7);
    for (int k = 0; k < 5000; ++k, v += step) {
        ASSERT_TRUE(r->data[2 * k] == v && r->data[2 * k + 1] == T(0)) << k;
        differs += v != T(-7) + T(k) * step;
    }
    EXPECT_GT(differs, 0);
}

// Caller storage is never written (the record gets a block of its own),
// empty records succeed and keep their kind, and storage that cannot be had
// gives -1.
TYPED_TEST(Tone, EveryGeneratorOnCallerStorageEmptyAndFailing) {
    using T = TypeParam;
    Rec<T> desc({T(4), T(1), T(2)});
    sig<T> *d = desc.get();
    const std::function<int(sig<T> *)> ops[] = {
        [](sig<T> *x) { return DSP(c_cos)(x, T(0.1), T(1)); },
        [](sig<T> *x) { return DSP(c_cexp)(x, T(0.1), T(1)); },
        [](sig<T> *x) { return DSP(c_line)(x, T(0.1), T(1)); },
        [](sig<T> *x) { return DSP(c_fir)(x, 9, T(0), T(0)); },
        [](sig<T> *x) { return DSP(c_fir2)(x, 101); },
        [d](sig<T> *x) { return DSP(c_rsmp_cos)(x, d); },
        [](sig<T> *x) { return DSP(c_rsmp)(x, 3); }};
    const auto fail = +[](sig<T> *s) { s->data = nullptr; };
    for (const auto &op : ops) {
        for (int cplx : {0, 1}) {
            T buf[16] = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
            Rec<T> w, e, f;
            *w = wrap<T>(buf, 8, cplx);
            EXPECT_EQ(op(w.get()), 0);
            EXPECT_TRUE(std::count(buf, buf + 16, T(9)) == 16 && w->alloc > 0);
            e->cplx = f->cplx = cplx;
            EXPECT_EQ(op(e.get()), 0);
            EXPECT_EQ(e->cplx, cplx);
            f->n = 8;
            DSP(_lib_alloc)(fail, nullptr);
            EXPECT_EQ(op(f.get()), -1);
            DSP(_lib_alloc)(nullptr, nullptr);
        }
    }
}
