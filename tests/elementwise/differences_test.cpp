#include <algorithm>
#include <cmath>
#include <vector>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

DSP_TYPED_SUITE(Differences);

// A wrapped phase that moves by up to `step` radians plus `drift` per sample.
template <class T>
std::vector<T> wrapped_phase(int n, double phi, double step, double drift) {
    std::vector<T> v;
    for (int i = 0; i < n; ++i) {
        phi += drift + step * std::sin(0.37 * i * i + 1.0);
        v.push_back(T(std::atan2(std::sin(phi), std::cos(phi))));
    }
    return v;
}

}  // namespace

TYPED_TEST(Differences, OreconMirrorsConjugates) {
    using T = TypeParam;
    using V = std::vector<T>;
    auto orecon = [](int odd) { return [=](sig<T> *s) { return DSP(i_orecon)(s, odd); }; };
    const V abc = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(applied<T>(abc, true, orecon(0)), (V{1, 2, 3, 4, 5, 6, 3, -4}));
    EXPECT_EQ(applied<T>(abc, true, orecon(1)), (V{1, 2, 3, 4, 5, 6, 5, -6, 3, -4}));
    EXPECT_EQ(applied<T>(abc, true, DSP(i_recon)), (V{1, 2, 3, 4, 5, 6, 3, -4}));
    EXPECT_EQ(applied<T>({1, 2, 3, 4, 5}, false, orecon(0)), (V{1, 2, 3, 4, 5, 4, 3, 2}));
    EXPECT_EQ(applied<T>({1, 2, 3, 4, 5}, false, orecon(7)), (V{1, 2, 3, 4, 5, 5, 4, 3, 2}));
    // Unchanged: n < 2, n = 2 with odd 0 (recon: below 3 points).
    EXPECT_EQ(applied<T>({7, 8}, true, orecon(1)), (V{7, 8}));
    EXPECT_EQ(applied<T>({1, 2, 3, 4}, true, DSP(i_recon)), (V{1, 2, 3, 4}));
    EXPECT_EQ(applied<T>({1, 2, 3, 4}, true, orecon(1)), (V{1, 2, 3, 4, 3, -4}));
}

TYPED_TEST(Differences, IntegrateDifferentiate) {
    using T = TypeParam;
    using V = std::vector<T>;
    EXPECT_EQ(applied<T>({1, 1, 1}, false, DSP(i_integ), T(0.5)), (V{0.5, 1.0, 1.5}));
    EXPECT_EQ(applied<T>({0.5, 1.0, 1.5}, false, DSP(i_differ), T(0.5)), (V{1, 1, 1}));
    // Complex parts accumulate and differ separately; delta 0 gives times L.
    EXPECT_EQ(applied<T>({1, -2, 3, 4}, true, DSP(i_integ), T(2)), (V{2, -4, 8, 4}));
    EXPECT_EQ(applied<T>({2, -4, 8, 4}, true, DSP(i_differ), T(2)), (V{1, -2, 3, 4}));
    const T L = pick<T>(999999986991104.0f, 1e100);
    EXPECT_EQ(applied<T>({1, 3}, false, DSP(i_differ), T(0)), (V{L, 2 * L}));
    // d/dx (5 + 3x + 2x^2) and d/dx ((1+i) + (2-i)x + 3i x^2).
    EXPECT_EQ(applied<T>({5, 3, 2}, false, DSP(i_pdiffer)), (V{3, 4}));
    EXPECT_EQ(applied<T>({1, 1, 2, -1, 0, 3}, true, DSP(i_pdiffer)), (V{2, -1, 0, 6}));
    EXPECT_EQ(applied<T>({9}, false, DSP(i_pdiffer)), V{});
    for (auto op : {DSP(i_integ), DSP(i_differ), DSP(i_pdiffer)})
        EXPECT_EQ(applied<T>({}, 0, op), V{});
}

TYPED_TEST(Differences, EdgeCrossings) {
    using T = TypeParam;
    using V = std::vector<T>;
    const V want[4] = {{}, {1.5, 7.5}, {4.5}, {1.5, 4.5, 7.5}};  // delta 3
    for (int flags = 0; flags < 4; ++flags) {
        Rec<T> r({0, 2, 0, 2}, false, T(3));
        EXPECT_OK(DSP(i_edge)(&r, flags, T(1)), *r, want[flags]);
        EXPECT_EQ(r->delta, T(1));
    }
    // A sample at the level: rising needs p <= level < q, falling p >= level > q.
    auto both = [](sig<T> *s) { return DSP(i_edge)(s, 3, T(1)); };
    EXPECT_EQ(applied<T>({1, 1, 2, 1, 1, 0}, false, both), (V{1, 4}));
    EXPECT_EQ(applied<T>({0, 1, 2, 3}, true, both, T(2), -1), (V{0, 1, 2, 3}));
    Rec<T> e({}, false, T(2));  // empty: the spacing stays
    EXPECT_TRUE(both(e.get()) == 0 && e->n == 0 && e->delta == T(2));
}

TYPED_TEST(Differences, UnwrapPlainAndWindowed) {
    using T = TypeParam;
    using V = std::vector<T>;
    const T pi = dsp::precision<T>::pi;
    EXPECT_EQ(applied<T>({0, 3, -3}, false, DSP(i_unwrap)), (V{0, 3, T(-6 + 2 * pi) + 3}));
    EXPECT_EQ(applied<T>({4}, false, DSP(i_unwrap)), (V{T(4) - 2 * pi}));
    // The single family compares with pi as a float (3.1415927 > pi): a step
    // of that size stays, while the double family wraps it.
    EXPECT_EQ(applied<T>({0, 3.14159274f}, false, DSP(i_unwrap))[1],
              pick<T>(3.14159274f, double(3.14159274f) - 2 * M_PI));
    EXPECT_EQ(applied<T>({0, 1}, true, DSP(i_unwrap), T(1), -1), (V{0, 1}));

    // Windowed: against the mean of the last w outputs (1: plain unwrap).
    auto wnd = [](int w) { return [=](sig<T> *s) { return DSP(i_unwrap_wnd)(s, w); }; };
    const V drift = wrapped_phase<T>(120, -0.2, 0.45, 0.25);
    EXPECT_EQ(applied<T>(drift, false, wnd(1)), applied<T>(drift, false, DSP(i_unwrap)));
    const T two_pi = 2 * pi;
    EXPECT_EQ(applied<T>({4, 7, -7, 1}, false, wnd(0)),
              (V{4 - two_pi, 7 - two_pi, -7 + two_pi, 1}));
    // Against the mean of (3, -1), 4.3 is a step of 3.3 and wraps; against
    // the previous output alone -1 wraps instead.
    EXPECT_EQ(applied<T>({1, 3, -1, T(4.3)}, false, wnd(2)), (V{1, 3, -1, T(4.3) - two_pi}));
    EXPECT_EQ(applied<T>({1, 3, -1, T(4.3)}, false, wnd(1)), (V{1, 3, -1 + two_pi, T(4.3)}));
    EXPECT_EQ(applied<T>({1, 2}, false, wnd(-1), T(1), -1), (V{1, 2}));

    // Other windows against the mean of the last w outputs taken directly.
    for (int w : {2, 5, 9, 200}) {
        std::vector<long double> y;
        for (size_t i = 0; i < drift.size(); ++i) {
            const size_t k = std::min(i, size_t(w));
            long double ref = 0;
            for (size_t j = i - k; j < i; ++j) ref += y[j] / k;
            long double d = std::fmod(drift[i] - ref, 2 * M_PIl);
            d += d > M_PIl ? -2 * M_PIl : (d < -M_PIl ? 2 * M_PIl : 0);
            y.push_back(ref + d);
        }
        const V out = applied<T>(drift, false, wnd(w));
        for (size_t i = 0; i < y.size(); ++i)
            EXPECT_NEAR(out[i], double(y[i]), 1e4 * ulps<T>()) << w << " " << i;
    }

    // Steps below pi in size unwrap as numpy does (first sample within pi).
    const V phase = wrapped_phase<T>(200, 0.3, 2.5, 0.0);
    DSP_NEED_PYTHON();
    const std::vector<double> want = python("print(*np.unwrap(x))", {phase.begin(), phase.end()});
    const V got = applied<T>(phase, false, DSP(i_unwrap));
    ASSERT_EQ(got.size(), want.size());
    for (size_t i = 0; i < got.size(); ++i)
        EXPECT_NEAR(got[i], want[i], 200 * double(i + 1) * ulps<T>()) << i;
}
