// Circle centres through four points: known circles, noisy points, the
// near-parallel substitute and chords parallel to the axes.
#include <cmath>
#include <random>
#include <vector>

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
