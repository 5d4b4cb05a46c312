// FIR design: every kind at odd and even lengths against the design formulas
// in long double (and the low-pass family against scipy), the documented
// values, record kinds and failure paths; the stored sets.
#include "generate/fir.hpp"

#include <cmath>
#include <cstring>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;
using LD = long double;

namespace {

LD sinc(LD x) { return x == 0 ? 1 : std::sin(x) / x; }

// The smoothing kernels of kinds 4 and 9: f(x2 - (m t0)^2 / 4), normalised.
std::vector<LD> smoothing(int n, LD x2, LD t0, bool divided) {
    std::vector<LD> h(static_cast<size_t>(n));
    LD sum = 0;
    for (int k = 0; k < n; ++k) {
        const LD t = (k - (n - 1) / 2.0L) * t0, u = x2 - t * t / 4, r = std::sqrt(std::fabs(u));
        const LD v = u > 0 ? std::sinh(r) : std::sin(r);
        sum += h[size_t(k)] = !divided ? v : r == 0 ? 1 : v / r;
    }
    for (LD &v : h) v /= sum;
    return h;
}

// Design `kind` of n points, straight from the design formulas.
std::vector<LD> reference(int kind, int n, LD a, LD b) {
    const LD pi = std::acos(-1.0L), w = 2 * pi * a;
    if (kind == 4 && a == 0) {
        // Default shapes: tabled coefficients, tabled parameters, formula.
        const std::vector<std::vector<LD>> direct = {
            {0.4243801L, 0.4973406L, 0.0782793L},
            {0.3635819L, 0.4891775L, 0.1365995L, 0.0106411L},
            {0.32321537L, 0.47149214L, 0.17553413L, 0.02849699L, 0.0012613571L}};
        if (n == 5 || n == 7 || n == 9) {
            std::vector<LD> h(static_cast<size_t>(n));
            for (int k = 0; k < n; ++k) {
                const int j = std::abs(k - n / 2);
                h[size_t(k)] = direct[size_t(n - 5) / 2][size_t(j)] / (j ? 2 : 1);
            }
            return h;
        }
        const LD x2[] = {39.955326L, 56.541378L, 0, 114.19059L, 0, 194.93744L, 0, 0, 355.57288L};
        const LD t0[] = {6.3210225L, 30.0776L / 5, 0, 42.744L / 7, 0, 55.848L / 9, 0,
                         0,          6.2855468L};
        if (n >= 3 && n <= 11 && x2[n - 3] != 0) return smoothing(n, x2[n - 3], t0[n - 3], false);
        const LD alpha = n % 2 ? (n + 1) * pi / 2 : n * pi / 2 + 1.4L;
        return smoothing(n, alpha * alpha, 4 * alpha / (n + 1), false);
    }
    if (kind == 4) return smoothing(n, a * a, 4 * a / (n + 1), false);
    if (kind == 9) {
        const LD tabled[][2] = {{35.07455L, 44.944157L},
                                {89.98737L, 99.85697L},
                                {157.93779L, 167.80739L},
                                {254.05711L, 263.92673L},
                                {364.85162L, 374.72122L}};
        const LD beta = a != 0 ? a : 1.386795655L + 1.610830415L * n;
        LD b2 = beta * beta, s = b2 + pi * pi;
        if (a == 0 && n % 2 && n >= 3 && n <= 11) {
            b2 = tabled[(n - 3) / 2][0];
            s = tabled[(n - 3) / 2][1];
        }
        return smoothing(n, b2, 4 * std::sqrt(s) / (n + 1), true);
    }
    std::vector<LD> h(static_cast<size_t>(n));
    LD sum = 0;
    for (int k = 0; k < n; ++k) {
        const LD m = k - (n - 1) / 2.0L, x = w * m, centre = m == 0 ? 1 : 0;
        const LD lowpass = 2 * a * sinc(x), bandpass = 2 * b * sinc(pi * b * m) * std::cos(x);
        const LD quad = x * x < 1.4305115e-6L ? -0.5L : (std::cos(x) - 1) / (x * x);
        const LD values[] = {bandpass,
                             centre - bandpass,
                             centre - lowpass,
                             lowpass,
                             0,
                             2 * a * sinc(w * (m - b)),
                             x == 0 ? 0 : 2 * a * w * (std::cos(x) - sinc(x)) / x,
                             std::exp(-x * x / (2 * 0.83255464L * 0.83255464L)),
                             2 * a * x * quad,
                             0,
                             4 * a * a * (sinc(x) + quad)};
        sum += h[size_t(k)] = values[kind];
    }
    if (kind == 5 || kind == 7)
        for (LD &v : h) v /= sum;
    return h;
}

}  // namespace

template <class T>
class FirDesign : public ::testing::Test {};
TYPED_TEST_SUITE(FirDesign, Precisions);

TYPED_TEST(FirDesign, EveryKindMatchesFormula) {
    using T = TypeParam;
    struct design {
        int kind;
        T a, b;
    };
    const design cases[] = {{0, T(0.2), T(0.1)}, {1, T(0.3), T(0.15)},
                            {2, T(0.15), 0},     {3, T(0.15), 0},
                            {3, 0, 0},           {4, 0, 0},
                            {4, T(3.5), 0},      {4, T(300), 0},
                            {5, T(0.2), T(0.3)}, {6, T(0.2), 0},
                            {6, 0, 0},           {7, T(0.1), 0},
                            {8, T(0.2), 0},      {8, T(1e-5), 0},
                            {9, 0, 0},           {9, T(4), 0},
                            {10, T(0.2), 0},     {10, T(1e-5), 0}};
    for (const design &c : cases) {
        for (int n : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 33, 64, 120}) {
            if ((c.kind == 1 || c.kind == 2) && n % 2 == 0) continue;
            // a = 1e-5 keeps x^2 below the threshold up to n = 33 (the limit
            // branch); beyond, (cos x - 1) / x^2 cancels in the precision.
            if (c.a == T(1e-5) && n > 33) continue;
            Rec<T> h;
            h->n = n;
            ASSERT_EQ(DSP(c_fir)(&h, c.kind, c.a, c.b), 0);
            const std::vector<LD> want = reference(c.kind, n, c.a, c.b);
            LD top = 0, err = 0;
            for (int k = 0; k < n; ++k) {
                top = std::max(top, std::fabs(want[size_t(k)]));
                err = std::max(err, std::fabs(h->data[k] - want[size_t(k)]));
            }
            EXPECT_LE(double(err), pick<T>(2e-5, 5e-14) * double(top) + 1e-30)
                << "kind " << c.kind << " a " << c.a << " n " << n;
        }
    }
}

TYPED_TEST(FirDesign, LowpassFamilyMatchesScipy) {
    using T = TypeParam;
    // firwin with a rectangular window and no scaling samples the same ideal
    // responses: kind 3 at cut-off a is firwin(n, 2a); kind 0 at centre a,
    // bandwidth b is the band (a - b/2, a + b/2); kinds 2 and 1 are their
    // complements; scaling to unit sum is kind 5 without delay.
    const auto want = python(
        "from scipy.signal import firwin\n"
        "for n in (7, 8):\n"
        "  print(*firwin(n, 0.3, window='boxcar', scale=False))\n"
        "  print(*firwin(n, [0.3, 0.5], window='boxcar', scale=False, pass_zero=False))\n"
        "  print(*firwin(n, 0.3, window='boxcar'))\n"
        "print(*firwin(7, 0.3, window='boxcar', scale=False, pass_zero=False))\n"
        "print(*firwin(7, [0.3, 0.5], window='boxcar', scale=False))");
    ASSERT_EQ(want.size(), 3 * 7 + 3 * 8 + 2 * 7);
    std::vector<T> got;
    const auto design = [&](int kind, int n, T a, T b) {
        Rec<T> h;
        h->n = n;
        ASSERT_EQ(DSP(c_fir)(&h, kind, a, b), 0);
        got.insert(got.end(), h->data, h->data + n);
    };
    for (int n : {7, 8}) {
        design(3, n, T(0.15), 0);
        design(0, n, T(0.2), T(0.1));
        design(5, n, T(0.15), 0);
    }
    design(2, 7, T(0.15), 0);
    design(1, 7, T(0.2), T(0.1));
    for (size_t i = 0; i < want.size(); ++i)
        EXPECT_NEAR(got[i], want[i], pick<T>(3e-7, 1e-15)) << i;
}

TYPED_TEST(FirDesign, DocumentedValuesRecordsAndFailures) {
    using T = TypeParam;
    Rec<T> h;
    h->n = 7;
    EXPECT_OK(DSP(c_fir)(&h, 4, 0, 0), *h,
              {T(0.00532055), T(0.06829975), T(0.24458875), T(0.3635819), T(0.24458875),
               T(0.06829975), T(0.00532055)});
    h->n = 1;
    EXPECT_OK(DSP(c_fir)(&h, 3, T(0.2), 0), *h, {T(0.4)});
    EXPECT_OK(DSP(c_fir)(&h, 2, T(0.2), 0), *h, {T(1) - T(0.4)});
    // A complex record (here over caller storage, left untouched) gets the
    // real design with zero imaginary parts.
    T buf[6] = {7, 7, 7, 7, 7, 7};
    Rec<T> c;
    *c = wrap<T>(buf, 3, true);
    h->n = 3;
    ASSERT_EQ(DSP(c_fir)(&h, 10, T(0.1), 0), 0);
    EXPECT_OK(DSP(c_fir)(&c, 10, T(0.1), 0), *c, {h->data[0], 0, h->data[1], 0, h->data[2], 0});
    EXPECT_EQ(buf[0], T(7));
    // Bad kinds and even lengths for kinds 1 and 2: -1, and the record is
    // left real.
    for (int kind : {11, -1, 1, 2}) {
        c->n = 4;
        c->cplx = 1;
        EXPECT_EQ(DSP(c_fir)(&c, kind, T(0.1), T(0.1)), -1) << kind;
        EXPECT_EQ(c->cplx, 0) << kind;
    }
    // Empty records: nothing to design (an empty kind 1 is even).
    Rec<T> e;
    EXPECT_EQ(DSP(c_fir)(&e, 3, T(0.1), 0), 0);
    EXPECT_EQ(DSP(c_fir)(&e, 1, T(0.1), 0), -1);
    // Storage that cannot be had.
    DSP(_lib_alloc)
    (
        +[](sig<T> *s) { s->data = nullptr; }, nullptr);
    Rec<T> f;
    f->n = 5;
    EXPECT_EQ(DSP(c_fir)(&f, 3, T(0.1), 0), -1);
    EXPECT_EQ(DSP(c_fir2)(&f, 100), -1);
    DSP(_lib_alloc)(nullptr, nullptr);
}

// The stored sets hold the decimal values: checksums of the bit patterns of
// the doubles (each pattern times its index + 1, modulo 2^64), and the floats
// are their roundings.
TEST(FirStored, SetsHoldTheDecimalValues) {
    const struct {
        int code, n;
        uint64_t sum;
    } sets[] = {
        {100, 12, 0x67d39768299c9ff5}, {101, 20, 0x2ca5e37746bd0c93}, {102, 5, 0xbbca6e34a342314b}};
    for (const auto &s : sets) {
        const auto d = dsp::fir_stored_set<double>(s.code);
        const auto f = dsp::fir_stored_set<float>(s.code);
        ASSERT_TRUE(d.values && f.values);
        ASSERT_EQ(d.n, s.n);
        ASSERT_EQ(f.n, s.n);
        uint64_t sum = 0;
        for (int i = 0; i < s.n; ++i) {
            uint64_t bits;
            std::memcpy(&bits, &d.values[i], sizeof bits);
            sum += bits * uint64_t(i + 1);
            EXPECT_EQ(f.values[i], float(d.values[i])) << s.code << " " << i;
        }
        EXPECT_EQ(sum, s.sum) << s.code;
    }
    EXPECT_EQ(dsp::fir_stored_set<double>(103).values, nullptr);
}

TYPED_TEST(FirDesign, StoredSetsIntoRecords) {
    using T = TypeParam;
    Rec<T> h({1, 2}, true);
    EXPECT_OK(DSP(c_fir2)(&h, 102), *h,
              {T(0.0021159896), 0, T(-0.0077329464), 0, T(0.024345828), 0, T(-0.09624514), 0,
               T(1.1550325), 0});
    h->cplx = 0;
    ASSERT_EQ(DSP(c_fir2)(&h, 100), 0);
    EXPECT_EQ(h->n, 12);
    EXPECT_EQ(h->data[11], T(0.49474683));
    ASSERT_EQ(DSP(c_fir2)(&h, 101), 0);
    EXPECT_EQ(h->n, 20);
    EXPECT_EQ(h->data[0], T(0.00036813278));
    // An unknown code touches nothing.
    const T *data = h->data;
    EXPECT_EQ(DSP(c_fir2)(&h, 99), -1);
    EXPECT_EQ(h->n, 20);
    EXPECT_EQ(h->data, data);
    EXPECT_EQ(h->data[19], T(0.48080382));
}
