// Circle centres through four points: known circles, noisy points, the
// near-parallel substitute and chords parallel to the axes.
#include <cmath>
#include <complex>
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
    // Circles of random centre and radius, four points at angles 40 to 80
    // degrees apart, every other one with noise of 1e-4 r. Three more
    // indices: the unit circle at 0, 90, 180 and 270 degrees from cos/sin,
    // (0, 0) up to rounding; the same points exactly, so that the chords
    // are horizontal and vertical: NaN from the slopes; nearly collinear
    // points, chords under 10 degrees apart: d itself.
    const int n = 200;
    std::mt19937 gen(21);
    std::uniform_real_distribution<double> u(-1, 1), gap(0.7, 1.4);
    std::normal_distribution<double> noise(0, 1);
    const double q = std::acos(-1.0) / 2;
    std::vector<T> p[4] = {{1, 0, 1, 0, 0, 0},
                           {T(std::cos(q)), 1, 0, 1, 1, T(0.01)},
                           {-1, T(std::sin(4 * q)), -1, 0, 2, 0},
                           {T(std::cos(3 * q)), -1, 0, -1, 3, T(0.02)}};
    std::vector<double> want = {0, 0, NAN, NAN, 3, T(0.02)}, radius(3, 0);
    for (int i = 0; i < n; ++i) {
        const double cx = 5 * u(gen), cy = 5 * u(gen), r = 0.1 + std::fabs(u(gen));
        const double sigma = i % 2 ? 1e-4 * r : 0;
        double angle = 3 * u(gen);
        for (auto &v : p) {
            v.push_back(T(cx + r * std::cos(angle) + sigma * noise(gen)));
            v.push_back(T(cy + r * std::sin(angle) + sigma * noise(gen)));
            angle += gap(gen);
        }
        want.insert(want.end(), {cx, cy});
        radius.push_back(i % 2 ? r : 0);
    }
    std::vector<T> centre(2 * (n + 5), T(-7));
    VFP(_CircleFit)
    (p[0].data(), p[1].data(), p[2].data(), p[3].data(), centre.data() + 2, 0, n + 3);
    VFP(_CircleFit)(p[0].data(), p[1].data(), p[2].data(), p[3].data(), centre.data(), 4, 4);
    VFP(_CircleFit)(p[0].data(), p[1].data(), p[2].data(), p[3].data(), centre.data(), 5, 1);
    EXPECT_EQ(centre[0], T(-7));
    EXPECT_EQ(centre[1], T(-7));
    EXPECT_EQ(centre.back(), T(-7));
    for (size_t i = 0; i < want.size(); ++i) {
        const double tol = 2e-3 * radius[i / 2] + 5e4 * ulps<T>();
        if (std::isnan(want[i]))
            EXPECT_TRUE(std::isnan(centre[i + 2])) << i;
        else
            EXPECT_NEAR(double(centre[i + 2]), want[i], i == 4 || i == 5 ? 0 : tol) << i;
    }
    // In place: the centre replaces d.
    VFP(_CircleFit)(p[0].data(), p[1].data(), p[2].data(), p[3].data(), p[3].data(), 0, n + 3);
    for (size_t i = 0; i < want.size(); ++i)
        EXPECT_TRUE(p[3][i] == centre[i + 2] || std::isnan(want[i])) << i;
}

TEST(CircularInterpolation, FollowsCirclesAndFallsBackToLines) {
    // Points at uneven frequencies on circles whose angle is linear in
    // frequency, turning either way: every frequency between lands on the
    // circle. On a line (n = 2, or collinear data) the interpolation is
    // linear.
    const std::vector<double> f = {0, 0.2, 0.5, 0.6, 1.1, 1.5, 1.9, 2.4, 3};
    const int n = int(f.size()), m = 301;
    std::vector<double> at(m), out(2 * m), g(2 * n);
    for (int j = 0; j < m; ++j) at[size_t(j)] = 3.0 * j / (m - 1);
    for (double turn : {2.1, -2.1, 0.0}) {
        auto z = [turn](double x) {
            return turn ? std::complex<long double>(0.3, -0.2) + std::polar(0.5L, 0.2L + turn * x)
                        : std::complex<long double>(0.7 - 0.4 * x, 0.1 + 0.3 * x);
        };
        for (int k = 0; k < n; ++k)
            g[size_t(2 * k)] = double(z(f[size_t(k)]).real()),
                         g[size_t(2 * k + 1)] = double(z(f[size_t(k)]).imag());
        for (int points : {n, 2}) {
            const std::vector<double> f2 = {0, 3}, g2 = {g[0], g[1], g[2 * n - 2], g[2 * n - 1]};
            ASSERT_EQ(CircularInterpolation(points == 2 ? f2.data() : f.data(),
                                            points == 2 ? g2.data() : g.data(), points, at.data(),
                                            out.data(), m),
                      0);
            for (int j = 0; j < m; ++j) {
                const auto want = points == 2 && turn
                                      ? z(0) + (z(3) - z(0)) * (long double)(at[size_t(j)] / 3)
                                      : z(at[size_t(j)]);
                EXPECT_NEAR(out[size_t(2 * j)], double(want.real()), 1e-12) << turn << " " << j;
                EXPECT_NEAR(out[size_t(2 * j + 1)], double(want.imag()), 1e-12) << turn << " " << j;
            }
        }
    }
}

TEST(CircularInterpolation, MatchesNumpyAndRefusesBadInput) {
    // Random reflections (points 5 to 7 collinear) at uneven frequencies,
    // queried at random frequencies and at the data frequencies; numpy
    // fits each circle by solving for x^2 + y^2 + Dx + Ey + F = 0.
    const int n = 12;
    std::mt19937 gen(4);
    std::uniform_real_distribution<double> u(-0.7, 0.7), step(0.1, 1);
    std::vector<double> f(n), g(2 * n), at;
    for (int k = 0; k < n; ++k) {
        f[size_t(k)] = (k ? f[size_t(k - 1)] : 1) + step(gen);
        g[size_t(2 * k)] = u(gen), g[size_t(2 * k + 1)] = u(gen);
    }
    g[12] = (g[10] + g[14]) / 2, g[13] = (g[11] + g[15]) / 2;
    for (int j = 0; j < 40; ++j) at.push_back(f[0] + (f[n - 1] - f[0]) * (u(gen) + 0.7) / 1.4);
    at.insert(at.end(), f.begin(), f.end());
    const int m = int(at.size());
    std::vector<double> in = f;
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
    if turn < 0: arc -= 2 * np.pi
    return c + (g[k] - c) * np.exp(1j * t * arc)
print(*np.array([interp(v) for v in q]).view(float))
)",
                            in);
    std::vector<double> out(2 * m, 9.0);
    ASSERT_EQ(CircularInterpolation(f.data(), g.data(), n, at.data(), out.data(), m), 0);
    for (size_t i = 0; i < out.size(); ++i) EXPECT_NEAR(out[i], ref[i], 1e-12) << i;
    for (int k = 0; k < n; ++k) EXPECT_EQ(out[size_t(2 * (40 + k))], g[size_t(2 * k)]);
    // The result over the reflections themselves.
    std::vector<double> self = g;
    ASSERT_EQ(CircularInterpolation(f.data(), self.data(), n, at.data() + 20, self.data(), n), 0);
    for (size_t i = 0; i < self.size(); ++i) EXPECT_EQ(self[i], out[40 + i]);
    // Refused, nothing written: no points, a negative count, frequencies
    // not increasing or NaN, queries outside the range or NaN. One point
    // answers at its own frequency only; no queries: nothing to do.
    const double nan = std::nan(""), down[] = {1, 3, 2}, flat[] = {1, 2, 2}, bad[] = {1, nan, 3};
    const double outside[] = {f[0] - 1e-9}, beyond[] = {f[n - 1] * (1 + 1e-15)}, q_nan[] = {nan};
    std::vector<double> r(4, 9.0);
    const double *fp = f.data(), *ap = at.data();
    for (auto [freq, count, q, queries] : {std::tuple{fp, 0, ap, 1},
                                           {fp, n, ap, -1},
                                           {down, 3, ap, 1},
                                           {flat, 3, ap, 1},
                                           {bad, 3, ap, 1},
                                           {fp, n, outside, 1},
                                           {fp, n, beyond, 1},
                                           {fp, n, q_nan, 1},
                                           {fp, 1, fp + 1, 1}})
        EXPECT_EQ(CircularInterpolation(freq, g.data(), count, q, r.data(), queries), -1);
    EXPECT_EQ(CircularInterpolation(f.data(), g.data(), n, at.data(), r.data(), 0), 0);
    EXPECT_EQ(r, std::vector<double>(4, 9.0));
    EXPECT_EQ(CircularInterpolation(f.data(), g.data(), 1, f.data(), r.data(), 1), 0);
    EXPECT_EQ(r, (std::vector<double>{g[0], g[1], 9, 9}));
}
