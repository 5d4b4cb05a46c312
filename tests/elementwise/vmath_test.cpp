// The math functions on the vector units against the runtime functions,
// over millions of arguments spread across the whole range (every
// exponent, denormals, infinities, NaN, the substitute thresholds) and on
// every kernel the processor has: within one unit in the last place, the
// single family as the runtime's double result rounded to float.
#include "elementwise/vmath.hpp"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>

#include "support/support.hpp"

using namespace dsp_test;

namespace {

// Arguments per function: fewer under the sanitizers, which are slow, and
// where long double is a software type under an emulator.
#if defined(__SANITIZE_ADDRESS__)
#define DSP_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define DSP_TEST_SANITIZED 1
#endif
#endif
#if DSP_TEST_SANITIZED
const size_t kCount = size_t(1) << 16;
#else
const size_t kCount = size_t(std::min(1 << 21, reference_reach(1 << 16)));
#endif

template <class T>
using bits_t = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;

// Units in the last place between a and b (0 for equal values, two NaN,
// equal infinities; huge when only one is NaN or infinite).
template <class T>
int64_t ulps_apart(T a, T b) {
    if (a == b || (a != a && b != b)) return 0;
    if (a != a || b != b || std::isinf(a) || std::isinf(b)) return INT64_MAX;
    using I = std::make_signed_t<bits_t<T>>;
    auto key = [](T v) {
        I i;
        std::memcpy(&i, &v, sizeof i);
        return i < 0 ? int64_t(std::numeric_limits<I>::min()) - i : int64_t(i);
    };
    const int64_t d = key(a) - key(b);
    return d < 0 ? -d : d;
}

// Random bit patterns (every exponent equally often, denormals, NaN and
// infinities included), values uniform in [lo, hi], and the thresholds.
template <class T>
std::vector<T> arguments(double lo, double hi, std::vector<T> extra, unsigned seed) {
    std::mt19937_64 g(seed);
    std::uniform_real_distribution<double> u(lo, hi);
    std::vector<T> v(std::move(extra));
    for (size_t i = 0; i < kCount / 2; ++i) {
        const bits_t<T> b = bits_t<T>(g());
        T x;
        std::memcpy(&x, &b, sizeof x);
        v.push_back(x);
        v.push_back(T(u(g)));
    }
    return v;
}

// Each value and its neighbours one and two units away.
template <class T>
std::vector<T> around(std::initializer_list<T> values) {
    const T inf = std::numeric_limits<T>::infinity();
    std::vector<T> v{0,
                     -T(0),
                     inf,
                     -inf,
                     std::numeric_limits<T>::quiet_NaN(),
                     std::numeric_limits<T>::denorm_min(),
                     std::numeric_limits<T>::max()};
    for (T x : values)
        for (T y : {x, -x}) {
            const T a = std::nextafter(y, -inf), b = std::nextafter(y, inf);
            v.insert(v.end(), {std::nextafter(a, -inf), a, y, b, std::nextafter(b, inf)});
        }
    return v;
}

// The largest distance between the record after op and want, on every
// kernel; want is computed once, from the runtime functions.
template <class T, class Op>
void expect_close(const std::vector<T> &input, const std::vector<T> &want, bool cplx, Op op,
                  const char *what, int64_t tolerance = 1) {
    for (int level = dsp::vmath::max_level; level >= 0; --level) {
        if (dsp::vmath::select_kernels(level) != level) continue;
        Rec<T> r;
        r.set(input, cplx);
        ASSERT_EQ(op(r.get()), 0);
        int64_t worst = 0;
        size_t at = 0;
        for (size_t i = 0; i < want.size(); ++i) {
            const int64_t d = ulps_apart(r->data[i], want[i]);
            if (d > worst) worst = d, at = i;
        }
        EXPECT_LE(worst, tolerance) << what << " on kernel " << level << ": scalar " << at << " is "
                                    << r->data[at] << ", the runtime gives " << want[at];
    }
    dsp::vmath::select_kernels(dsp::vmath::max_level);
}

template <class T>
T rt(double (*f)(double), T x) {
    return T(f(double(x)));
}

}  // namespace

template <class T>
class VectorMath : public ::testing::Test {};
TYPED_TEST_SUITE(VectorMath, Precisions);

TYPED_TEST(VectorMath, MatchesRuntime) {
    using T = TypeParam;
    using C = dsp::precision<T>;
    const T F = C::normal_min, L = C::large;
    const T lnF = rt<T>(std::log, F), lgF = rt<T>(std::log10, F);
    auto each = [](const std::vector<T> &x, auto f) {
        std::vector<T> y(x.size());
        for (size_t i = 0; i < x.size(); ++i) y[i] = f(x[i]);
        return y;
    };

    const auto logs = arguments<T>(0.25, 4, around<T>({F, 1, 2, 10}), 1);
    expect_close<T>(logs, each(logs, [&](T x) { return x < F ? lnF : rt<T>(std::log, x); }), false,
                    DSP(i_log), "log");
    auto db = [](sig<T> *s) { return DSP(i_db)(s, T(-20)); };
    if constexpr (std::is_same_v<T, double>) {
        // The runtime's log10 is itself up to 1.6 units off; the vectorised
        // one is held to one unit of the long-double value and two of the
        // runtime's.
        auto exact = [&](long double k) {
            return each(logs, [&](T x) { return x < F ? T(k) * lgF : T(k * log10l(x)); });
        };
        // Where long double is double (32-bit ARM) the "long-double" value is
        // the runtime's own, and two units are allowed there as well.
        const int64_t units = sizeof(long double) > sizeof(double) ? 1 : 2;
        expect_close<T>(logs, exact(1), false, DSP(i_log10), "log10", units);
        expect_close<T>(logs, exact(-20), false, db, "db", units);
        expect_close<T>(logs, each(logs, [&](T x) { return x < F ? lgF : rt<T>(std::log10, x); }),
                        false, DSP(i_log10), "log10", 2);
    } else {  // (the single family's decibel walk is tested below)
        expect_close<T>(logs, each(logs, [&](T x) { return x < F ? lgF : rt<T>(std::log10, x); }),
                        false, DSP(i_log10), "log10");
    }

    const double bottom = std::is_same_v<T, float> ? -110 : -760;
    const auto exps =
        arguments<T>(bottom, double(C::exp_max) + 1, around<T>({C::exp_max, 700, 88}), 2);
    expect_close<T>(exps, each(exps, [&](T x) { return x > C::exp_max ? L : rt<T>(std::exp, x); }),
                    false, DSP(i_exp), "exp");
    // exp10 without samples below -L, where the single family's walk stops.
    auto tens =
        arguments<T>(bottom / 2.3, double(C::exp10_max) + 1, around<T>({C::exp10_max, -L}), 3);
    for (T &x : tens)
        if (x < -L) x = -x;
    expect_close<T>(
        tens,
        each(tens, [&](T x) { return x > C::exp10_max ? L : rt<T>(std::exp, T(x * C::ln10)); }),
        false, DSP(i_exp10), "exp10");

    // Magnitudes of complex points, parts drawn like the logarithms'.
    const std::vector<T> parts(logs.begin(), logs.begin() + long(logs.size() / 2 * 2));
    std::vector<T> mags(parts.size() / 2);
    for (size_t i = 0; i < mags.size(); ++i)
        mags[i] = T(std::hypot(double(parts[2 * i]), double(parts[2 * i + 1])));
    expect_close<T>(parts, mags, true, DSP(i_mag), "mag");
}

// The single family's decibel walk: each value at or above F leaves
// k log10 F in its place and its decibels in the next scalar; values below
// F (and NaN) move the walk on by one. Stretches of every kind, against the
// walk written out with the runtime function.
TEST(VectorMath, SingleDecibelWalk) {
    const float F = dsp::precision<float>::normal_min, k = 10;
    const float kF = k * float(std::log10(double(F)));
    std::mt19937 g(4);
    std::uniform_real_distribution<double> u(-40, 40);
    std::vector<float> v;
    for (size_t i = 0; i < kCount / 4; ++i) {
        const int kind = int(g() % 100);
        v.push_back(kind < 3   ? 0.0f
                    : kind < 5 ? -1.0f
                    : kind < 6 ? std::numeric_limits<float>::quiet_NaN()
                    : kind < 7 ? F / 2
                    : kind < 8 ? F
                               : float(std::pow(10.0, u(g))));
    }
    // Long clean stretches too, which the vectors take whole.
    for (size_t i = 0; i < kCount / 4; ++i) v.push_back(float(std::pow(10.0, u(g))));
    std::vector<float> want = v;
    size_t p = 0;
    for (size_t step = 0; step < v.size() && p < v.size(); ++step) {
        const float x = want[p];
        want[p++] = kF;
        if (x >= F) {
            if (p < want.size()) want[p] = k * float(std::log10(double(x)));
            ++p;
        }
    }
    expect_close<float>(
        v, want, false, [&](dspf_signal *s) { return dspfi_db(s, k); }, "db");
}
