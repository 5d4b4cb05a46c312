// Circle centres through four points (known circles, noisy points, the
// near-parallel substitute, chords parallel to the axes) and interpolation
// along circles through three points, or along the chord.
#include <cmath>
#include <random>
#include <vector>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class CircleFit : public ::testing::Test {};
TYPED_TEST_SUITE(CircleFit, Precisions);

TYPED_TEST(CircleFit, CentresOfCircles) {
    using T = TypeParam;
    // Index 0: the unit circle at 0, 90, 180 and 270 degrees from cos/sin:
    // (0, 0) up to rounding. 1: the same points exactly, so that the chords
    // are horizontal and vertical: NaN from the slopes. 2: nearly collinear
    // points, chords 5.6 degrees apart (under 10): d itself. Then circles of
    // random centre and radius, four points 40 to 80 degrees apart, every
    // other one with noise of 1e-4 r.
    const int n = 200;
    std::mt19937 gen(21);
    std::uniform_real_distribution<double> u(-1, 1), gap(0.7, 1.4);
    std::normal_distribution<double> noise(0, 1);
    const double q = std::acos(-1.0) / 2;
    std::vector<T> p[4] = {{1, 0, 1, 0, 0, 0},
                           {T(std::cos(q)), 1, 0, 1, 1, T(0.1)},
                           {-1, T(std::sin(4 * q)), -1, 0, 2, 0},
                           {T(std::cos(3 * q)), -1, 0, -1, 3, T(0.2)}};
    std::vector<double> want = {0, 0, NAN, NAN, 3, T(0.2)}, tol(6, 0);
    tol[0] = tol[1] = 4 * ulps<T>();
    for (int i = 0; i < n; ++i) {
        const double cx = 5 * u(gen), cy = 5 * u(gen), r = 0.1 + std::fabs(u(gen));
        double angle = 3 * u(gen), sigma = i % 2 ? 1e-4 * r : 0;
        for (auto &v : p) {
            v.push_back(T(cx + r * std::cos(angle) + sigma * noise(gen)));
            v.push_back(T(cy + r * std::sin(angle) + sigma * noise(gen)));
            angle += gap(gen);
        }
        want.insert(want.end(), {cx, cy});
        tol.insert(tol.end(), 2, 20 * sigma + 5e4 * ulps<T>());
    }
    std::vector<T> centre(2 * (n + 5), T(-7));
    auto fit = [&](T *to, int first, int end) {
        VFP(_CircleFit)(p[0].data(), p[1].data(), p[2].data(), p[3].data(), to, first, end);
    };
    fit(centre.data() + 2, 0, n + 3);
    fit(centre.data(), 4, 4);
    fit(centre.data(), 5, 1);
    EXPECT_EQ(centre[0] + centre[1] + centre.back(), T(-21));
    fit(p[3].data(), 0, n + 3);  // in place: the centres replace d
    for (size_t i = 0; i < want.size(); ++i) {
        EXPECT_TRUE(std::isnan(want[i]) ? std::isnan(centre[i + 2])
                                        : std::fabs(centre[i + 2] - want[i]) <= tol[i])
            << i << " " << centre[i + 2];
        EXPECT_TRUE(p[3][i] == centre[i + 2] || std::isnan(want[i])) << i;
    }
}

TEST(CircularInterpolation, MatchesNumpyAndRefusesBadInput) {
    DSP_NEED_PYTHON();
    // Random reflections (points 5 to 7 collinear, 9 to 11 nearly) at uneven frequencies,
    // queried at random frequencies and then at the data frequencies; numpy
    // fits each circle by solving for x^2 + y^2 + Dx + Ey + F = 0.
    const int n = 12, m = 40 + n;
    std::vector<double> f = uniform(n, 4, 0.1, 1), g = uniform(2 * n, 5, -0.7, 0.7);
    for (int k = 1; k < n; ++k) f[size_t(k)] += f[size_t(k - 1)];
    g[12] = (g[10] + g[14]) / 2, g[13] = (g[11] + g[15]) / 2;
    g[20] = (g[18] + g[22]) / 2 + 3e-4, g[21] = (g[19] + g[23]) / 2;  // nearly: still a circle
    std::vector<double> at = uniform(40, 6, f[0], f[n - 1]), in = f;
    at.insert(at.end(), f.begin(), f.end());
    in.insert(in.end(), g.begin(), g.end());
    in.insert(in.end(), at.begin(), at.end());
    const auto ref = python(R"(
n = 12
f, g, q = x[:n], x[n:3 * n].view(complex), x[3 * n:]
def interp(x):
    k = np.searchsorted(f, x, 'right') - 1
    if f[k] == x: return g[k]
    t = (x - f[k]) / (f[k + 1] - f[k])
    z = g[min(max(k - 1, 0), n - 3):][:3]
    turn = ((z[1] - z[0]).conjugate() * (z[2] - z[0])).imag
    if abs(turn) <= 1e-12 * abs(z[1] - z[0]) * abs(z[2] - z[0]): return g[k] + t * (g[k + 1] - g[k])
    d, e, _ = np.linalg.solve(np.column_stack([z.real, z.imag, np.ones(3)]), -abs(z) ** 2)
    c = complex(-d / 2, -e / 2)
    arc = np.angle((g[k + 1] - c) / (g[k] - c)) % (2 * np.pi)
    return c + (g[k] - c) * np.exp(1j * t * (arc if turn > 0 else arc - 2 * np.pi))
print(*np.array([interp(v) for v in q]).view(float))
)",
                            in);
    std::vector<double> out(2 * m), self = g;
    ASSERT_EQ(CircularInterpolation(f.data(), g.data(), n, at.data(), out.data(), m), 0);
    expect_values<double>(wrap(out.data(), 2 * m), ref, 1e-12);
    EXPECT_EQ(std::vector<double>(out.begin() + 80, out.end()), g);  // data points exactly
    // Two points give the chord.
    const double f2[] = {f[0], f[n - 1]}, g2[] = {g[0], g[1], g[2 * n - 2], g[2 * n - 1]};
    std::vector<double> chord(80);
    ASSERT_EQ(CircularInterpolation(f2, g2, 2, at.data(), chord.data(), 40), 0);
    for (int j = 0; j < 80; ++j) {
        const double t = (at[size_t(j / 2)] - f[0]) / (f[n - 1] - f[0]);
        EXPECT_NEAR(chord[size_t(j)], g2[j % 2] + t * (g2[2 + j % 2] - g2[j % 2]), 1e-12) << j;
    }
    // The result written over the reflections themselves.
    ASSERT_EQ(CircularInterpolation(f.data(), self.data(), n, at.data() + 20, self.data(), n), 0);
    EXPECT_EQ(self, std::vector<double>(out.begin() + 40, out.begin() + 64));
    // Refused, nothing written: no points, a negative count, frequencies
    // not increasing or NaN, queries outside the range or NaN. One point
    // answers at its own frequency only; no queries: nothing to do.
    const double nan = NAN, down[] = {1, 3, 2}, flat[] = {1, 2, 2}, bad[] = {1, nan, 3},
                 outside[] = {f[0] - 1e-9, f[n - 1] * (1 + 1e-15), nan}, *fp = f.data();
    std::vector<double> r(4, 9.0);
    for (auto [freq, count, q, queries] : {std::tuple{fp, 0, fp, 1},
                                           {fp, n, fp, -1},
                                           {down, 3, fp, 1},
                                           {flat, 3, fp, 1},
                                           {bad, 3, fp, 1},
                                           {fp, n, outside, 1},
                                           {fp, n, outside + 1, 1},
                                           {fp, n, outside + 2, 1},
                                           {fp, 1, fp + 1, 1}})
        EXPECT_EQ(CircularInterpolation(freq, g.data(), count, q, r.data(), queries), -1);
    EXPECT_EQ(CircularInterpolation(fp, g.data(), n, fp, r.data(), 0), 0);
    EXPECT_EQ(r, std::vector<double>(4, 9.0));
    EXPECT_EQ(CircularInterpolation(fp, g.data(), 1, fp, r.data(), 1), 0);
    EXPECT_EQ(r, (std::vector<double>{g[0], g[1], 9, 9}));
}
