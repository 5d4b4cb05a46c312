// Trace kernels on raw arrays (documented values, brute-force and
// long-double references, numpy axes) and the floating-point control: return
// conventions, run-fast bits, rounding modes and flush-to-zero as observed in
// arithmetic; the caller's mode restored.
#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

DSP_TYPED_SUITE(Trace);

TYPED_TEST(Trace, MultiplyAndScale) {
    using T = TypeParam;
    // Both products alike, also around the groups of 16; the value after
    // the n-th is never touched.
    for (int n : {-3, 0, 1, 15, 16, 17, 48, 100}) {
        const auto v = uniform<T>(size_t(std::max(n, 0)) + 1, unsigned(n + 10));
        auto one = v, two = v, want = v;
        for (int i = 0; i < n; ++i) want[size_t(i)] *= T(-1.7);
        VFPB(Mul1)(T(-1.7), one.data(), n);
        VFPB(Mul2)(T(-1.7), two.data(), n);
        EXPECT_EQ(one, want);
        EXPECT_EQ(two, want);
    }
    EXPECT_EQ(get_fpscr() & 0x70000u, 0u);  // vector length back to 1
    // To integers with k = 10: toward zero on both sides, saturated beyond
    // the int range, NaN 0; then a falling axis 250 - 5 (x + 50).
    const std::vector<T> src = {0,        T(0.05),  T(0.99),
                                T(-0.05), T(-0.15), 10,
                                1e9,      -1e9,     std::numeric_limits<T>::quiet_NaN()};
    std::vector<int> dst(src.size() + 1, 77);
    VFPB(_ScaleToInt)(src.data(), int(src.size()), 0, 10, dst.data(), 0, 100);
    EXPECT_EQ(dst, (std::vector<int>{0, 0, 9, 0, -1, 100, INT32_MAX, INT32_MIN, 0, 77}));
    VFPB(_ScaleToInt)(std::vector<T>{-50, 0, T(-20.1)}.data(), 3, -50, 0, dst.data(), 250, 0);
    EXPECT_EQ(dst[0] * 1000000 + dst[1] * 1000 + dst[2], 250000100);
    // To floating point, in place.
    std::vector<T> x = {-50, 10, -20, 40};
    VFPB(_ScaleToFP)(x.data(), 3, -50, 10, x.data(), 1, 4);
    expect_values<T>(wrap(x.data(), 4), {1, 4, T(2.5), 40}, 4 * ulps<T>());
}

TYPED_TEST(Trace, ScaleToIntRoundedMatchesNumpy) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    // Per case lo, hi, ilo, ihi: random values in [-1, 1), values on ties
    // and values beyond the range (clamped at 0, -5 and INT32_MAX); numpy
    // rounds in the same precision and clips in double (the int range is
    // exact there).
    const std::vector<double> cases = {-1.5, 1.5, 480, 0, 0,         10,
                                       -5,   5,   -1,  1, INT32_MIN, INT32_MAX};
    std::vector<double> in = cases;
    std::vector<T> x = uniform<T>(30, 6);
    for (T v : {-0.6, -0.1, 0.0, 0.5, 1.0, 1.5, 2.5, 3.5, 1e-8}) x.push_back(v);
    in.insert(in.end(), x.begin(), x.end());
    const auto ref = python(std::string("t = np.float") + (sizeof(T) == 4 ? "32" : "64") + R"(
v = x[12:].astype(t)
for lo, hi, a, b in x[:12].reshape(-1, 4):
    k = (t(b) - t(a)) / (t(hi) - t(lo))
    print(*np.clip(np.rint(t(a) + k * (v - t(lo))).astype(float), min(a, b), max(a, b)))
)",
                            in);
    std::vector<int> dst(x.size() + 1, 77);
    for (size_t c = 0; c < cases.size(); c += 4) {
        const T lo = T(cases[c]), hi = T(cases[c + 1]);
        const int ilo = int(cases[c + 2]), ihi = int(cases[c + 3]);
        ASSERT_EQ(VFPB(_ScaleToInt2)(x.data(), int(x.size()), lo, hi, dst.data(), ilo, ihi), 0);
        for (size_t i = 0; i < x.size(); ++i)
            EXPECT_EQ(dst[i], ref[c / 4 * x.size() + i]) << c << " " << i;
        EXPECT_EQ(dst.back(), 77);
    }
    // NaN gives ilo; no scale (equal or infinite bounds, an overflowing
    // factor) gives -1 with nothing written.
    const T nan = std::numeric_limits<T>::quiet_NaN(), inf = std::numeric_limits<T>::infinity();
    EXPECT_EQ(VFPB(_ScaleToInt2)(&nan, 1, 0, 1, dst.data(), 9, 3), 0);
    EXPECT_EQ(dst[0], 9);
    for (auto [lo, hi] :
         {std::pair<T, T>{1, 1}, {0, inf}, {-inf, 0}, {nan, 1}, {0, pick<T>(1e-38f, 1e-308)}})
        EXPECT_EQ(VFPB(_ScaleToInt2)(x.data(), 3, lo, hi, dst.data() + 1, 0, INT32_MAX), -1);
    EXPECT_EQ(dst[1], int(ref[2 * x.size() + 1]));  // the last case's, kept
}

TYPED_TEST(Trace, Extremes) {
    using T = TypeParam;
    const T big = std::numeric_limits<T>::max();
    std::vector<T> a = {5, 1, 5}, b = {1, 5, 3}, c = {1, big, big};
    EXPECT_EQ(VFP(_FindMax)(a.data(), 0, 3), 0);
    EXPECT_EQ(VFP(_FindMin)(b.data(), 0, 3), 2);  // x[start] is never compared
    EXPECT_EQ(VFP(_FindMin)(c.data(), 0, 3), 0);
    EXPECT_EQ(VFP(_FindMax)(a.data(), 2, 2), 2);
    EXPECT_EQ(VFP(_FindMin)(a.data(), 2, 1), 2);
    // Skip-range forms against a brute-force search of the allowed indices
    // (the first of equal extremes), over all ranges of a record with ties.
    const std::vector<T> x = {4, 9, 1, 9, 0, 7, 2, 0, 9};
    const int n = int(x.size());
    for (int start = 0; start < n; ++start)
        for (int end = start + 1; end <= n; ++end)
            for (int s0 = 0; s0 <= n; ++s0)
                for (int s1 = 0; s1 <= n; ++s1) {
                    int hi = -1, lo = -1;
                    for (int j = start; j < end; ++j) {
                        if (s0 <= j && j < s1) continue;
                        if (hi < 0 || x[size_t(j)] > x[size_t(hi)]) hi = j;
                        if (lo < 0 || x[size_t(j)] < x[size_t(lo)]) lo = j;
                    }
                    ASSERT_EQ(std::pair(VFP(_FindMax2)(x.data(), start, end, s0, s1),
                                        VFP(_FindMin2)(x.data(), start, end, s0, s1)),
                              std::pair(hi, lo))
                        << start << " " << end << " " << s0 << " " << s1;
                }
}

TYPED_TEST(Trace, AxesMatchNumpy) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    const std::vector<double> cases = {2, 0.5, 5, 3, 1, 100, 7, 0.25, 1e4, 101, 1e6, 3e9, 50, 9, 2};
    const auto ref = python(
        "for n, a, b in x.reshape(-1, 3):\n"
        "    print(*np.linspace(a, b, int(n)), *np.logspace(np.log10(a), np.log10(b), int(n)))",
        cases);
    const double *r = ref.data();
    for (size_t c = 0; c < cases.size(); c += 3) {
        const int n = int(cases[c]);
        const T a = T(cases[c + 1]), b = T(cases[c + 2]);
        std::vector<T> lin(n), log(n);
        VFP(_ExpandLinear)(lin.data(), n, a, b);
        VFP(_ExpandLog)(log.data(), n, a, b);
        for (int i = 0; i < n; ++i, ++r)
            EXPECT_NEAR(double(lin[size_t(i)]), double(T(*r)), 4 * ulps<T>() * std::fabs(b));
        // The ends are a and b exactly; numpy's vectorised power may differ
        // in the last place.
        EXPECT_EQ(log[0], a);
        EXPECT_EQ(log[size_t(n - 1)], b);
        for (int i = 0; i < n; ++i, ++r)
            EXPECT_NEAR(double(log[size_t(i)]), *r, 4 * ulps<T>() * *r);
    }
    // One point, and nothing written for n <= 0 or a bound <= 0.
    std::vector<T> x = {7, 7, 7};
    VFP(_ExpandLinear)(x.data(), 1, 2, 9), VFP(_ExpandLinear)(x.data() + 2, 0, 3, 1);
    VFP(_ExpandLog)(x.data() + 1, 1, 3, 9), VFP(_ExpandLog)(x.data() + 2, 2, 0, 9);
    VFP(_ExpandLog)(x.data() + 2, 2, 3, -1);
    EXPECT_EQ(x, (std::vector<T>{2, 3, 7}));
}

TYPED_TEST(Trace, SmoothingIsTheWindowedMean) {
    using T = TypeParam;
    const int n = 40;
    const auto v = uniform<T>(2 * n, 3);
    const double tol = 8 * ulps<T>();
    for (int width : {3, 5, 9})
        for (auto [first, end] : {std::pair{0, n}, {5, 30}, {17, 18}, {36, 39}}) {
            SCOPED_TRACE(::testing::Message() << width << " " << first << " " << end);
            std::vector<T> out(2 * n, T(-9)), cplx(2 * n, T(-9)), self = v;
            const int count = VFP(_Smooth)(v.data(), out.data(), n, first, end, width, 0);
            EXPECT_EQ(VFP(_SmoothCpx)(v.data(), cplx.data(), n, first, end, width), count);
            EXPECT_EQ(VFP(_Smooth)(self.data(), self.data(), n, first, end, width, 0), count);
            // Direct means over [i - h, i + h] (h shrinking near the array's
            // ends, the end outputs are inputs); the walk stops where a
            // window would pass end - 1.
            int i = first;
            for (; i < end; ++i) {
                const int h = std::min({width / 2, i, n - 1 - i});
                if (i + h > end - 1) break;
                long double s = 0, mags = 0, args = 0;
                for (int j = i - h; j <= i + h; ++j) {
                    const std::complex<long double> z(v[size_t(2 * j)], v[size_t(2 * j + 1)]);
                    s += v[size_t(j)];
                    mags += std::abs(z);
                    args += std::arg(z);
                }
                const auto zm = std::polar(mags / (2 * h + 1), args / (2 * h + 1));
                EXPECT_NEAR(double(out[size_t(i)]), double(s / (2 * h + 1)), tol);
                EXPECT_NEAR(double(cplx[size_t(2 * i)]), double(zm.real()), tol);
                EXPECT_NEAR(double(cplx[size_t(2 * i + 1)]), double(zm.imag()), tol);
                EXPECT_EQ(self[size_t(i)], out[size_t(i)]);
            }
            EXPECT_EQ(count, i - first);
        }
    // Bad ranges and widths: -1, nothing written; an empty range: 0.
    std::vector<T> untouched(2 * n, T(5));
    for (auto [first, end, width] :
         {std::tuple{0, n, 4}, {0, n, 1}, {-1, 5, 3}, {6, 5, 3}, {0, n + 1, 3}, {2, 0, 3}}) {
        EXPECT_EQ(VFP(_Smooth)(v.data(), untouched.data(), n, first, end, width, 1), -1);
        EXPECT_EQ(VFP(_SmoothCpx)(v.data(), untouched.data(), n, first, end, width), -1);
    }
    EXPECT_EQ(VFP(_Smooth)(v.data(), untouched.data(), n, 4, 4, 2, 0), 0);
    EXPECT_EQ(untouched, std::vector<T>(2 * n, T(5)));
}

TYPED_TEST(Trace, PhaseSmoothingAndUnwrapping) {
    using T = TypeParam;
    const long double two_pi = 6.283185307179586476925286766559L;
    const int n = 60;
    // A wrapped phase ramp: the window mean of the unwrapped ramp is the
    // centre's phase, brought back into [-pi, pi].
    std::vector<T> ramp(n), out(n);
    for (int i = 0; i < n; ++i) ramp[size_t(i)] = T(std::remainder(0.1L + 0.45L * i, two_pi));
    EXPECT_EQ(VFP(_Smooth)(ramp.data(), out.data(), n, 0, n, 7, 1), n);
    for (int i = 0; i < n; ++i)
        EXPECT_NEAR(double(std::remainder(out[size_t(i)] - 0.1L - 0.45L * i, two_pi)), 0,
                    16 * ulps<T>());
    // Unwrapping points of random phase steps below pi, and of steady 3
    // radian steps; in two blocks as in one, and in place.
    std::mt19937 gen(5);
    std::uniform_real_distribution<long double> step(-3.1L, 3.1L);
    for (int rising = 0; rising < 2; ++rising) {
        std::vector<long double> phase(n, 0.3L);
        std::vector<T> z(2 * n), whole(n), blocks(n);
        for (int i = 0; i < n; ++i) {
            if (i) phase[size_t(i)] = phase[size_t(i - 1)] + (rising ? 3 : step(gen));
            z[size_t(2 * i)] = T(std::cos(phase[size_t(i)]));
            z[size_t(2 * i + 1)] = T(std::sin(phase[size_t(i)]));
        }
        VFP(_UnwrapPhase)(z.data(), 0, n, whole.data());
        VFP(_UnwrapPhase)(z.data(), 0, 23, blocks.data());
        VFP(_UnwrapPhase)(z.data(), 23, n, blocks.data());
        VFP(_UnwrapPhase)(z.data(), 0, n, z.data());
        for (int i = 0; i < n; ++i) {
            EXPECT_NEAR(double(whole[size_t(i)]), double(phase[size_t(i)]), 1e3 * ulps<T>()) << i;
            EXPECT_NEAR(double(blocks[size_t(i)]), double(whole[size_t(i)]), 1e3 * ulps<T>()) << i;
            EXPECT_EQ(z[size_t(i)], whole[size_t(i)]) << i;
        }
    }
}

TYPED_TEST(Trace, DisplayFormats) {
    using T = TypeParam;
    // Points (3, 4), (1, 0), (0, 0), (0.5, 0), (0, 1), (0.1, 0). Degrees are
    // radians times 180 / 3.14159265359 (pi / 2 gives 89.999999999994); a
    // standing-wave ratio of 1e6 stands for any reflection magnitude above
    // 0.999998.
    const std::vector<T> z = {3, 4, 1, 0, 0, 0, T(0.5), 0, 0, 1, T(0.1), 0};
    const T inf = std::numeric_limits<T>::infinity(), db25 = T(10 * std::log10(25.0)),
            db4 = T(10 * std::log10(0.25));
    const std::vector<T> want[5] = {{db25, 0, -inf, db4, 0, -20},
                                    {5, 1, 0, T(0.5), 1, T(0.1)},
                                    {T(std::atan2(4.0, 3.0) * 57.29577951307855), 0, 0, 0,
                                     T(1.5707963267948966 * 57.29577951307855), 0},
                                    {1000000, 1000000, 1, 3, 1000000, T(1.1 / 0.9)},
                                    {-db25, 0, inf, -db4, 0, 20}};
    for (int format = 0; format < 6; ++format) {
        std::vector<T> out(7, T(-5)), self = z;
        VFP(_FormatBuffer)(format, z.data(), out.data(), 0, 6);
        VFP(_FormatBuffer)(format, self.data(), self.data(), 2, 6);  // in place, from point 2
        VFP(_FormatBuffer)(format, z.data(), out.data(), 3, 3);
        EXPECT_EQ(out[6], T(-5));
        for (size_t i = 0; i < 6; ++i) {
            const T w = format < 5 ? want[format][i] : T(-5);  // nothing for format 5
            EXPECT_TRUE(out[i] == w || std::fabs(out[i] - w) <= 160 * ulps<T>())
                << format << " " << i << " " << out[i];
            EXPECT_EQ(self[i], i < 2 || format == 5 ? z[i] : out[i]);
        }
    }
}

namespace {

// The control bits: the status bits (condition and exception flags) change
// with every computation in between.
uint32_t control(uint32_t word) { return word & 0x07FF9F00u; }

// Denormal products and operands flushed to zero (volatile: computed at run
// time under the current mode).
bool flushes() {
    volatile float a = 1e-20f, dn = 1e-40f;
    volatile double b = 1e-160, dd = 1e-310;
    EXPECT_EQ(a * a == 0.0f && b * b == 0.0, dn * 1.0f == 0.0f && dd * 1.0 == 0.0);
    return a * a == 0.0f && b * b == 0.0;
}

double third() {
    volatile double one = 1, three = 3;
    return one / three;
}

}  // namespace

TEST(FloatingPointControl, RunFastRoundingAndRestore) {
    const uint32_t word = get_fpscr(), saved = control(word), fast = 0x03000000;
    const uint32_t up = (saved & ~(3u << 22)) | 1u << 22, down = (saved & ~(3u << 22)) | 2u << 22;
    ASSERT_EQ(saved & fast, 0u);  // the process runs with IEEE denormals
    EXPECT_FALSE(flushes());
    // Run-fast on and off: only bits 24 and 25 change; the new word returns.
    EXPECT_EQ(control(set_runfast(1)), saved | fast);
    EXPECT_EQ(control(get_fpscr()), saved | fast);
    EXPECT_TRUE(flushes());
    EXPECT_EQ(control(set_runfast(0)), saved);
    EXPECT_FALSE(flushes());
    // set_fpscr returns the previous word; rounding up and down tell 1/3
    // apart, and run-fast leaves the rounding mode alone.
    const double nearest = third();
    EXPECT_EQ(control(set_fpscr(up)), saved);
    EXPECT_EQ(control(set_runfast(7)), up | fast);
    const double above = third();
    EXPECT_EQ(control(set_fpscr(down)), up | fast);
    EXPECT_EQ(control(get_fpscr()), down);
    const double below = third();
    EXPECT_EQ(control(set_fpscr(word)), down);
    EXPECT_GT(above, below);
    EXPECT_TRUE(nearest == above || nearest == below);
    EXPECT_EQ(third(), nearest);
    EXPECT_EQ(control(get_fpscr()), saved);
}

DSP_TYPED_SUITE(RunFast);

// The library's own products under run-fast: denormal results of both
// multiplications (one by one and, in vfpsbMul2, the groups of 16) become
// zeros, and are kept once it is off again; the caller's word comes back.
TYPED_TEST(RunFast, KernelsFlushDenormalProducts) {
    using T = TypeParam;
    const uint32_t word = get_fpscr();
    const T tiny = pick<T>(1e-20f, 1e-160), denormal = tiny * tiny;
    ASSERT_NE(denormal, T(0));
    for (int fast : {1, 0}) {
        set_runfast(fast);
        std::vector<T> one(37, tiny), two(37, tiny);
        VFPB(Mul1)(tiny, one.data(), 37);
        VFPB(Mul2)(tiny, two.data(), 37);
        const T want = fast ? T(0) : denormal;
        EXPECT_EQ(one, std::vector<T>(37, want)) << fast;
        EXPECT_EQ(two, std::vector<T>(37, want)) << fast;
    }
#if defined(__arm__) || defined(__aarch64__)
    // Default NaN (ARM only; elsewhere DN is a stored bit): a NaN operand's
    // payload is dropped while run-fast is on.
    using Bits = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
    const Bits payload = pick<T>(0x7FC01234u, 0x7FF8000000001234ull),
               dflt = pick<T>(0x7FC00000u, 0x7FF8000000000000ull);
    for (int fast : {1, 0}) {
        set_runfast(fast);
        T x = std::bit_cast<T>(payload);
        VFPB(Mul1)(T(2), &x, 1);
        EXPECT_EQ(std::bit_cast<Bits>(x), fast ? dflt : payload) << fast;
    }
#endif
    set_fpscr(word);
    EXPECT_EQ(control(get_fpscr()), control(word));
}
