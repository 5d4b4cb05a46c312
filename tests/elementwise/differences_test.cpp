#include <algorithm>
#include <cmath>
#include <vector>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

template <class T>
class Differences : public ::testing::Test {};
TYPED_TEST_SUITE(Differences, Precisions);

}  // namespace

TYPED_TEST(Differences, OreconMirrorsConjugates) {
    using T = TypeParam;
    // Complex (a, b, c): odd 0 gives (a, b, c, conj b); odd 1 (a, b, c, conj c, conj b).
    const std::vector<T> abc = {1, 2, 3, 4, 5, 6};
    Rec<T> even;
    even.set(abc, true);
    EXPECT_EQ(DSP(i_orecon)(&even, 0), 0);
    expect_values<T>(*even, {1, 2, 3, 4, 5, 6, 3, -4});
    Rec<T> odd;
    odd.set(abc, true);
    EXPECT_EQ(DSP(i_orecon)(&odd, 1), 0);
    expect_values<T>(*odd, {1, 2, 3, 4, 5, 6, 5, -6, 3, -4});
    Rec<T> rec;
    rec.set(abc, true);
    EXPECT_EQ(DSP(i_recon)(&rec), 0);
    expect_values<T>(*rec, {1, 2, 3, 4, 5, 6, 3, -4});

    // Real records copy the values; X[N - k] = X[k] for every k.
    for (int odd_flag = 0; odd_flag < 2; ++odd_flag) {
        Rec<T> r{1, 2, 3, 4, 5};
        EXPECT_EQ(DSP(i_orecon)(&r, odd_flag), 0);
        const int N = 8 + odd_flag;
        ASSERT_EQ(r->n, N);
        for (int k = 1; k < N; ++k) EXPECT_EQ(r->data[N - k], r->data[k]) << k;
    }

    // Too short to change: n < 2, and n = 2 with odd 0 (recon: n < 3).
    Rec<T> one{7};
    EXPECT_EQ(DSP(i_orecon)(&one, 1), 0);
    EXPECT_EQ(one->n, 1);
    Rec<T> two({1, 2, 3, 4}, true);
    EXPECT_EQ(DSP(i_orecon)(&two, 0), 0);
    EXPECT_EQ(two->n, 2);
    EXPECT_EQ(DSP(i_recon)(&two), 0);
    EXPECT_EQ(two->n, 2);
    EXPECT_EQ(DSP(i_orecon)(&two, 1), 0);
    expect_values<T>(*two, {1, 2, 3, 4, 3, -4});

    // Caller storage: the mirrored spectrum lands in an owned block.
    T buf[3] = {1, 2, 3};
    Rec<T> wrapped;
    wrapped->data = buf;
    wrapped->n = 3;
    EXPECT_EQ(DSP(i_recon)(&wrapped), 0);
    EXPECT_NE(wrapped->data, buf);
    expect_values<T>(*wrapped, {1, 2, 3, 2});
    EXPECT_EQ(buf[2], T(3));
}

TYPED_TEST(Differences, IntegrateDifferentiate) {
    using T = TypeParam;
    Rec<T> a({1, 1, 1}, false, T(0.5));
    EXPECT_EQ(DSP(i_integ)(&a), 0);
    expect_values<T>(*a, {0.5, 1.0, 1.5});
    EXPECT_EQ(DSP(i_differ)(&a), 0);
    expect_values<T>(*a, {1, 1, 1});
    EXPECT_EQ(a->delta, T(0.5));

    // Complex parts accumulate and differ separately.
    Rec<T> c({1, -2, 3, 4}, true, T(2));
    EXPECT_EQ(DSP(i_integ)(&c), 0);
    expect_values<T>(*c, {2, -4, 8, 4});
    EXPECT_EQ(DSP(i_differ)(&c), 0);
    expect_values<T>(*c, {1, -2, 3, 4});

    // A spacing of exactly 0 multiplies by L instead of dividing.
    Rec<T> z({1, 3}, false, T(0));
    EXPECT_EQ(DSP(i_differ)(&z), 0);
    const T L = pick<T>(999999986991104.0f, 1e100);
    expect_values<T>(*z, {L, 2 * L});

    // Derivative of 5 + 3x + 2x^2 (real) and of (1+i) + (2-i)x + 3i x^2.
    Rec<T> p{5, 3, 2};
    EXPECT_EQ(DSP(i_pdiffer)(&p), 0);
    expect_values<T>(*p, {3, 4});
    Rec<T> q({1, 1, 2, -1, 0, 3}, true);
    EXPECT_EQ(DSP(i_pdiffer)(&q), 0);
    expect_values<T>(*q, {2, -1, 0, 6});
    Rec<T> one{9}, e;
    EXPECT_EQ(DSP(i_pdiffer)(&one), 0);
    EXPECT_EQ(one->n, 0);
    EXPECT_EQ(DSP(i_pdiffer)(&e), 0);
    EXPECT_EQ(DSP(i_integ)(&e), 0);
    EXPECT_EQ(DSP(i_differ)(&e), 0);
    EXPECT_EQ(e->n, 0);
}

TYPED_TEST(Differences, EdgeCrossings) {
    using T = TypeParam;
    const std::vector<T> wave = {0, 2, 0, 2};
    const std::vector<std::vector<T>> want = {{}, {0.5, 2.5}, {1.5}, {0.5, 1.5, 2.5}};
    for (int flags = 0; flags < 4; ++flags) {
        Rec<T> r;
        r.set(wave, false, T(3));
        EXPECT_EQ(DSP(i_edge)(&r, flags, T(1)), 0);
        std::vector<T> scaled;
        for (T t : want[size_t(flags)]) scaled.push_back(3 * t);
        expect_values<T>(*r, scaled);
        EXPECT_EQ(r->delta, T(1));
    }
    // A sample at the level: rising needs p <= level < q, falling p >= level > q.
    Rec<T> touch{1, 1, 2, 1, 1, 0};
    EXPECT_EQ(DSP(i_edge)(&touch, 3, T(1)), 0);
    expect_values<T>(*touch, {1, 4});

    Rec<T> c({0, 1, 2, 3}, true, T(2));
    EXPECT_EQ(DSP(i_edge)(&c, 3, T(1)), -1);
    EXPECT_EQ(c->n, 2);
    EXPECT_EQ(c->delta, T(2));
    Rec<T> e;
    e->delta = T(2);
    EXPECT_EQ(DSP(i_edge)(&e, 3, T(1)), 0);
    EXPECT_EQ(e->delta, T(2));
}

TYPED_TEST(Differences, UnwrapAgainstNumpy) {
    using T = TypeParam;
    const T pi = dsp::precision<T>::pi;
    Rec<T> a{0, 3, -3};
    EXPECT_EQ(DSP(i_unwrap)(&a), 0);
    expect_values<T>(*a, {0, 3, T(T(-3 - 3) + 2 * pi) + 3});
    EXPECT_NEAR(double(a->data[2]), 3.2831853, 1e-6);
    Rec<T> first{4};
    EXPECT_EQ(DSP(i_unwrap)(&first), 0);
    expect_values<T>(*first, {T(4) - 2 * pi});

    // A wrapped phase whose steps stay away from +-pi unwraps as numpy does
    // (the first sample is already inside [-pi, pi]).
    std::vector<double> phase;
    double phi = 0.3;
    for (int i = 0; i < 200; ++i) {
        phi += 2.5 * std::sin(0.37 * i * i + 1.0);
        phase.push_back(std::atan2(std::sin(phi), std::cos(phi)));
    }
    const std::vector<double> want = python("print(*np.unwrap(x))", phase);
    ASSERT_EQ(want.size(), phase.size());
    Rec<T> r;
    r.set(std::vector<T>(phase.begin(), phase.end()));
    EXPECT_EQ(DSP(i_unwrap)(&r), 0);
    double top = 0;
    for (double v : want) top = std::max(top, std::fabs(v));
    for (size_t i = 0; i < want.size(); ++i)
        EXPECT_NEAR(double(r->data[i]), want[i], 4 * double(i + 1) * ulps<T>() * top) << i;

    Rec<T> c({0, 1}, true);
    EXPECT_EQ(DSP(i_unwrap)(&c), -1);
    EXPECT_EQ(DSP(i_unwrap_wnd)(&c, 2), -1);
    expect_values<T>(*c, {0, 1});
}

TYPED_TEST(Differences, PiThresholdOfEachPrecision) {
    using T = TypeParam;
    // The single family compares against pi as a float (3.1415927 > pi): a
    // step of exactly that size stays; the double family wraps it.
    Rec<T> r{T(0), T(3.14159274f)};
    EXPECT_EQ(DSP(i_unwrap)(&r), 0);
    if constexpr (std::is_same_v<T, float>)
        EXPECT_EQ(r->data[1], 3.14159274f);
    else
        EXPECT_EQ(r->data[1], double(3.14159274f) - 2 * M_PI);
}

TYPED_TEST(Differences, UnwrapWindowed) {
    using T = TypeParam;
    std::vector<T> phase;
    double phi = -0.2;
    for (int i = 0; i < 120; ++i) {
        phi += 0.25 + 0.45 * std::sin(0.71 * i * i);
        phase.push_back(T(std::atan2(std::sin(phi), std::cos(phi))));
    }
    // w = 1 is exactly unwrap.
    Rec<T> plain, one;
    plain.set(phase);
    one.set(phase);
    EXPECT_EQ(DSP(i_unwrap)(&plain), 0);
    EXPECT_EQ(DSP(i_unwrap_wnd)(&one, 1), 0);
    expect_values<T>(*one, plain.values());

    // w = 0: every sample into [-pi, pi] on its own.
    Rec<T> zero{4, 7, -7, 1};
    EXPECT_EQ(DSP(i_unwrap_wnd)(&zero, 0), 0);
    const T two_pi = 2 * dsp::precision<T>::pi;
    expect_values<T>(*zero, {T(4) - two_pi, T(7) - two_pi, T(-7) + two_pi, 1}, 8 * ulps<T>());

    // Other windows against the mean of the last w outputs, taken directly.
    for (int w : {2, 5, 9, 200}) {
        std::vector<long double> y;
        for (size_t i = 0; i < phase.size(); ++i) {
            long double ref = 0;
            const size_t k = std::min(i, size_t(w));
            for (size_t j = i - k; j < i; ++j) ref += y[j] / k;
            long double d = std::fmod(phase[i] - ref, 2 * M_PIl);
            if (d > M_PIl) d -= 2 * M_PIl;
            if (d < -M_PIl) d += 2 * M_PIl;
            y.push_back(ref + d);
        }
        Rec<T> r;
        r.set(phase);
        EXPECT_EQ(DSP(i_unwrap_wnd)(&r, w), 0);
        for (size_t i = 0; i < y.size(); ++i)
            EXPECT_NEAR(double(r->data[i]), double(y[i]), 1e4 * ulps<T>()) << w << " " << i;
    }
    // The reference leaves the window: against the mean of (3, -1), 4.3 is a
    // step of 3.3 and wraps; against the previous output -1 nothing wraps
    // after -1 itself does.
    Rec<T> h2{1, 3, -1, T(4.3)}, h1{1, 3, -1, T(4.3)};
    EXPECT_EQ(DSP(i_unwrap_wnd)(&h2, 2), 0);
    expect_values<T>(*h2, {1, 3, -1, T(4.3) - two_pi}, 8 * ulps<T>());
    EXPECT_EQ(DSP(i_unwrap_wnd)(&h1, 1), 0);
    expect_values<T>(*h1, {1, 3, T(-1) + two_pi, T(4.3)}, 8 * ulps<T>());

    Rec<T> r{1, 2};
    EXPECT_EQ(DSP(i_unwrap_wnd)(&r, -1), -1);
    expect_values<T>(*r, {1, 2});
}
