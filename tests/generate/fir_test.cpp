// FIR design: every kind at odd and even lengths against the design formulas
// in long double, documented values, record kinds and failure paths; the
// stored coefficient sets and kernel descriptions value by value.
#include "generate/fir.hpp"

#include <cmath>
#include <cstring>

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

template <class T>
class FirDesign : public ::testing::Test {};
TYPED_TEST_SUITE(FirDesign, Precisions);

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
    c->n = h->n = 3;
    c->cplx = 1;
    ASSERT_EQ(DSP(c_fir)(&h, 10, T(0.1), 0), 0);
    EXPECT_OK(DSP(c_fir)(&c, 10, T(0.1), 0), *c, {h->data[0], 0, h->data[1], 0, h->data[2], 0});
    ASSERT_EQ(DSP(c_fir2)(&c, 102), 0);
    EXPECT_TRUE(c->n == 5 && c->cplx && c->data[8] == T(1.1550325) && c->data[9] == 0);
    // Bad kinds and even lengths (0 included) for kinds 1 and 2: -1, and the
    // record is left real.
    for (int n : {4, 0}) {
        for (int kind : {11, -1, 1, 2}) {
            c->n = n;
            c->cplx = 1;
            EXPECT_EQ(DSP(c_fir)(&c, kind, T(0.1), T(0.1)), -1) << kind;
            EXPECT_EQ(c->cplx, 0) << kind;
        }
        EXPECT_EQ(DSP(c_fir)(&c, 3, T(0.1), 0), 0);
    }
    // An unknown stored set touches nothing.
    EXPECT_EQ(DSP(c_fir2)(&c, 99), -1);
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
