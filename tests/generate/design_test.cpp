// The generators: FIR design (every kind at odd and even lengths against the
// design formulas in long double, documented values, failure paths), tones
// and ramps against their formulas, the resampling kernel builders against
// their series, the stored sets and kernels value by value; every generator
// on caller storage, empty records and failing storage.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <functional>

#include "generate/fir.hpp"
#include "generate/kernel.hpp"
#include "support/support.hpp"

using namespace dsp_test;
using LD = long double;

namespace {

LD sinc(LD x) { return x == 0 ? 1 : std::sin(x) / x; }

// Design `kind` of n points straight from the design formulas.
std::vector<LD> reference(int kind, int n, LD a, LD b) {
    const LD pi = std::acos(-1.0L), n1 = n + 1;
    // Smoothing kernels: shape x2 and step t0, defaults by length.
    LD x2 = a * a, t0 = 4 * a / n1;
    // clang-format off
    static const LD direct[3][5] = {{0.4243801L, 0.4973406L, 0.0782793L},
        {0.3635819L, 0.4891775L, 0.1365995L, 0.0106411L},
        {0.32321537L, 0.47149214L, 0.17553413L, 0.02849699L, 0.0012613571L}};
    static const LD tabled4[][3] = {{3, 39.955326L, 6.3210225L}, {4, 56.541378L, 30.0776L / 5},
        {6, 114.19059L, 42.744L / 7}, {8, 194.93744L, 55.848L / 9}, {11, 355.57288L, 6.2855468L}};
    static const LD tabled9[][2] = {{35.07455L, 44.944157L}, {89.98737L, 99.85697L},
        {157.93779L, 167.80739L}, {254.05711L, 263.92673L}, {364.85162L, 374.72122L}};
    // clang-format on
    if (kind == 4 && a == 0) {
        std::vector<LD> h(static_cast<size_t>(n));
        if (n == 5 || n == 7 || n == 9) {
            for (int k = 0; k < n; ++k)
                h[size_t(k)] = direct[(n - 5) / 2][std::abs(k - n / 2)] / (k == n / 2 ? 1 : 2);
            return h;
        }
        const LD alpha = n % 2 ? n1 * pi / 2 : n * pi / 2 + 1.4L;
        x2 = alpha * alpha;
        t0 = 4 * alpha / n1;
        for (const auto &t : tabled4)
            if (t[0] == n) x2 = t[1], t0 = t[2];
    }
    if (kind == 9) {
        const LD beta = a != 0 ? a : 1.386795655L + 1.610830415L * n;
        const bool fixed = a == 0 && n % 2 && n >= 3 && n <= 11;
        x2 = fixed ? tabled9[(n - 3) / 2][0] : beta * beta;
        t0 = 4 * std::sqrt(fixed ? tabled9[(n - 3) / 2][1] : x2 + pi * pi) / n1;
    }
    std::vector<LD> h(static_cast<size_t>(n));
    LD sum = 0;
    for (int k = 0; k < n; ++k) {
        const LD m = k - (n - 1) / 2.0L, x = 2 * pi * a * m, centre = m == 0;
        const LD lowpass = 2 * a * sinc(x), bandpass = 2 * b * sinc(pi * b * m) * std::cos(x);
        const LD quad = x * x < 1.4305115e-6L ? -0.5L : (std::cos(x) - 1) / (x * x);
        const LD u = x2 - m * t0 * m * t0 / 4, r = std::sqrt(std::fabs(u));
        const LD shape = u > 0 ? std::sinh(r) : std::sin(r);
        // clang-format off
        const LD values[] = {bandpass, centre - bandpass, centre - lowpass, lowpass, shape,
                             2 * a * sinc(2 * pi * a * (m - b)),
                             x == 0 ? 0 : 2 * a * 2 * pi * a * (std::cos(x) - sinc(x)) / x,
                             std::exp(-x * x / (2 * 0.83255464L * 0.83255464L)),
                             2 * a * x * quad, r == 0 ? 1 : shape / r,
                             4 * a * a * (sinc(x) + quad)};
        // clang-format on
        sum += h[size_t(k)] = values[kind];
    }
    if (kind == 4 || kind == 5 || kind == 7 || kind == 9)
        for (LD &v : h) v /= sum;
    return h;
}

}  // namespace

DSP_TYPED_SUITE(FirDesign);
DSP_TYPED_SUITE(Tone);
DSP_TYPED_SUITE(Kernel);

TYPED_TEST(FirDesign, EveryKindMatchesFormula) {
    using T = TypeParam;
    // Large shapes (300) take the evaluation relative to the centre in both
    // families; a = 1e-5 keeps x^2 below the threshold of kinds 8 and 10 up
    // to n = 33 (beyond, (cos x - 1) / x^2 cancels in the precision).
    // clang-format off
    const T cases[][3] = {{0, T(0.2), T(0.1)}, {1, T(0.3), T(0.15)}, {2, T(0.15), 0},
        {3, T(0.15), 0}, {3, 0, 0}, {4, 0, 0}, {4, T(3.5), 0}, {4, T(300), 0}, {5, T(0.2), T(0.3)},
        {6, T(0.2), 0}, {6, 0, 0}, {7, T(0.1), 0}, {8, T(0.2), 0}, {8, T(1e-5), 0}, {9, 0, 0},
        {9, T(4), 0}, {10, T(0.2), 0}, {10, T(1e-5), 0}};
    // clang-format on
    for (const auto &c : cases) {
        const int kind = int(c[0]);
        for (int n : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 33, 64, 120}) {
            if (((kind == 1 || kind == 2) && n % 2 == 0) || (c[1] == T(1e-5) && n > 33)) continue;
            Rec<T> h;
            h->n = n;
            ASSERT_EQ(DSP(c_fir)(&h, kind, c[1], c[2]), 0);
            const std::vector<LD> want = reference(kind, n, c[1], c[2]);
            LD top = 0, err = 0;
            for (int k = 0; k < n; ++k) {
                top = std::max(top, std::fabs(want[size_t(k)]));
                err = std::max(err, std::fabs(h->data[k] - want[size_t(k)]));
            }
            EXPECT_LE(double(err), pick<T>(2e-5, 5e-14) * double(top) + 1e-30)
                << "kind " << kind << " a " << c[1] << " n " << n;
        }
    }
}

TYPED_TEST(FirDesign, DocumentedValuesRecordsAndFailures) {
    using T = TypeParam;
    Rec<T> h;
    h->n = 7;
    EXPECT_OK(DSP(c_fir)(&h, 4, 0, 0), *h,
              {T(0.00532055), T(0.06829975), T(0.24458875), T(0.3635819), T(0.24458875),
               T(0.06829975), T(0.00532055)});
    // A complex record gets the real design with zero imaginary parts; so
    // does a stored set.
    Rec<T> c;
    c->n = h->n = 3, c->cplx = 1;
    ASSERT_EQ(DSP(c_fir)(&h, 10, T(0.1), 0), 0);
    EXPECT_OK(DSP(c_fir)(&c, 10, T(0.1), 0), *c, {h->data[0], 0, h->data[1], 0, h->data[2], 0});
    ASSERT_EQ(DSP(c_fir2)(&c, 102), 0);
    EXPECT_TRUE(c->n == 5 && c->cplx && c->data[8] == T(1.1550325) && c->data[9] == 0);
    // Bad kinds and even lengths (0 included) for kinds 1 and 2: -1, and the
    // record is left real.
    for (int n : {4, 0}) {
        for (int kind : {11, -1, 1, 2}) {
            c->n = n, c->cplx = 1;
            EXPECT_EQ(DSP(c_fir)(&c, kind, T(0.1), T(0.1)), -1) << kind;
            EXPECT_EQ(c->cplx, 0) << kind;
        }
        EXPECT_EQ(DSP(c_fir)(&c, 3, T(0.1), 0), 0);
    }
    EXPECT_EQ(DSP(c_fir2)(&c, 99), -1);  // an unknown stored set touches nothing
    EXPECT_EQ(c->n, 0);
}

// The stored sets and kernel descriptions hold the decimal values (the
// longer ones of kernel mode 0 and the first terms of mode 4 in double): the
// checksums (bit patterns of the printed decimals as doubles, each times its
// index + 1) match, and the floats are their roundings.
TEST(GenerateTables, HoldTheDecimalValues) {
    const struct {
        int code, n;
        uint64_t sum;
    } sets[] = {{100, 12, 0x67d39768299c9ff5}, {101, 20, 0x2ca5e37746bd0c93},
                {102, 5, 0xbbca6e34a342314b},  {0, 7, 0xf4f6c4277dd74149},
                {1, 9, 0xb8d46c692c35e055},    {2, 12, 0x18fe726f6f1f89ec},
                {3, 9, 0x2d989d61c73aa7a6},    {4, 40, 0xc8caad6803c47ee9}};
    for (const auto &s : sets) {
        const bool fir = s.code >= 100;
        const auto fd = dsp::fir_stored_set<double>(s.code);
        const auto ff = dsp::fir_stored_set<float>(s.code);
        const auto kd = dsp::rsmp_stored<double>(s.code);
        const auto kf = dsp::rsmp_stored<float>(s.code);
        ASSERT_TRUE((fir ? fd.n : kd.n) == s.n && (fir ? ff.n : kf.n) == s.n) << s.code;
        uint64_t sum = 0, bits;
        for (int i = 0; i < s.n; ++i) {
            const double d = fir ? fd.values[i] : kd.values[i];
            std::memcpy(&bits, &d, sizeof bits);
            sum += bits * uint64_t(i + 1);
            EXPECT_EQ(fir ? ff.values[i] : kf.values[i], float(d)) << s.code << " " << i;
        }
        EXPECT_EQ(sum, s.sum) << s.code;
    }
    for (int mode = 0; mode < 5; ++mode)
        EXPECT_EQ(
            dsp::rsmp_stored<double>(mode).polynomial + dsp::rsmp_stored<float>(mode).polynomial,
            mode < 2 ? 2 : 0);
    EXPECT_EQ(dsp::rsmp_stored<double>(4).values[1], 1.0 / 13);
    EXPECT_EQ(dsp::rsmp_stored<float>(4).values[14], -0x1p-149f);
}

TYPED_TEST(Tone, ToneAndLineMatchTheirFormulas) {
    using T = TypeParam;
    const int n = std::min(1000000, reference_reach(100000));
    const T delta = T(0.5), freq = T(0.037), phase = T(-2.1);
    // The step w in the precision of the family; point k is at phase + w k.
    const T w = (delta + delta) * dsp::precision<T>::pi * freq;
    Rec<T> c, e, a;
    c->n = e->n = n, a->n = 300, e->cplx = 1;
    c->delta = e->delta = a->delta = delta;
    // A real record from c_cexp: the cosine.
    ASSERT_EQ(
        DSP(c_cos)(&c, freq, phase) | DSP(c_cexp)(&e, freq, phase) | DSP(c_cexp)(&a, freq, phase),
        0);
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
    r->n = 5000, r->delta = T(0.3), r->cplx = 1;
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
            e->cplx = f->cplx = cplx, f->n = 8;
            EXPECT_EQ(op(e.get()), 0);
            EXPECT_EQ(e->cplx, cplx);
            DSP(_lib_alloc)(fail, nullptr);
            EXPECT_EQ(op(f.get()), -1);
            DSP(_lib_alloc)(nullptr, nullptr);
        }
    }
}

TYPED_TEST(Kernel, BuildersMatchSeries) {
    using T = TypeParam;
    const std::vector<T> d = {T(6), T(0.3), T(-0.25), T(0.5), T(0.125), T(-0.0625)};
    Rec<T> desc(d);
    for (int n : {2, 4, 14, 6 * 256 + 2})
        for (int f = 0; f < 4; ++f) {
            const int cplx = f & 1, poly = f >> 1, s = 1 + cplx;
            Rec<T> k;
            k->n = n, k->cplx = cplx;
            ASSERT_EQ((poly ? DSP(c_rsmp_pcos) : DSP(c_rsmp_cos))(&k, desc.get()), 0);
            ASSERT_EQ(k->cplx, cplx);
            EXPECT_EQ(k->data[0], T(6));
            // Angles accumulated in the precision as documented, the series in
            // long double; both halves bit for bit alike, zero imaginary parts.
            const T step = n == 2 ? T(0) : T(2) * dsp::precision<T>::pi / T(n - 2);
            T theta = 0;
            for (int j = 0; j <= (n - 2) / 2; ++j, theta += step) {
                long double want = 0;
                T angle = 0;
                for (size_t i = 1; i < d.size(); ++i, angle += theta)
                    want += d[i] * (poly ? std::pow(std::cos((long double)theta), i - 1)
                                         : std::cos((long double)angle));
                const T right = k->data[s * (n / 2 + j)], left = k->data[s * (n / 2 - j)];
                EXPECT_EQ(std::memcmp(&right, &left, sizeof(T)), 0) << n << " " << j;
                EXPECT_NEAR(right, double(want), pick<T>(4e-7, 1e-15)) << n << " " << j;
                EXPECT_EQ(k->data[s * (n / 2 + j) + s - 1], cplx ? T(0) : right);
            }
        }
}

TYPED_TEST(Kernel, ShapesFailuresAndStoredKernels) {
    using T = TypeParam;
    Rec<T> desc({T(4), T(1), T(2)}), width_only({T(4)}), empty, cdesc({T(4), 0, T(1), 0}, true);
    // One point: only the width; no coefficients: zeros and the width;
    // nothing to describe: zeros.
    Rec<T> k({9});
    EXPECT_OK(DSP(c_rsmp_cos)(&k, desc.get()), *k, {4});
    k.set({9, 9, 9, 9}, true);
    EXPECT_OK(DSP(c_rsmp_pcos)(&k, width_only.get()), *k, {4, 0, 0, 0});
    EXPECT_OK(DSP(c_rsmp_pcos)(&k, empty.get()), *k, {0, 0, 0, 0});
    // Odd length, complex description, unknown mode: -1, kernel untouched.
    k.set({9, 9, 9});
    EXPECT_EQ(DSP(c_rsmp_cos)(&k, desc.get()), -1);
    k.set({9, 9, 9, 9});
    EXPECT_EQ(DSP(c_rsmp_cos)(&k, cdesc.get()) + DSP(c_rsmp)(&k, 5) + DSP(c_rsmp)(&k, -1), -3);
    expect_values<T>(*k, {9, 9, 9, 9});
    // Built over its own description (the same record): as from a copy.
    Rec<T> self({T(4), T(1), T(2), T(0.5)}), other;
    other->n = 4;
    ASSERT_EQ(DSP(c_rsmp_cos)(&other, self.get()), 0);
    EXPECT_OK(DSP(c_rsmp_cos)(&self, self.get()), *self, other.values());
    // Each stored kernel is its description through its builder.
    for (int mode = 0; mode < 5; ++mode) {
        const auto d = dsp::rsmp_stored<T>(mode);
        Rec<T> k, ref, desc(std::vector<T>(d.values, d.values + d.n));
        k->n = ref->n = int(d.values[0]) * 64 + 2;
        ASSERT_EQ(DSP(c_rsmp)(&k, mode), 0);
        ASSERT_EQ((d.polynomial ? DSP(c_rsmp_pcos) : DSP(c_rsmp_cos))(&ref, desc.get()), 0);
        EXPECT_EQ(k.values(), ref.values()) << mode;
    }
}
