// Window metrics: worked values and failures (agreement with the generated
// windows is checked with the normalisation modes).
#include <cmath>
#include <tuple>

#include "support/support.hpp"
#include "window/catalogue.hpp"

using namespace dsp_test;

template <class T>
class WindowMetrics : public ::testing::Test {};
TYPED_TEST_SUITE(WindowMetrics, Precisions);

TYPED_TEST(WindowMetrics, WorkedValuesAndFailures) {
    using T = TypeParam;
    T s = -1;
    for (int kind : {0, 1, 2, 9, 14, 23, 24}) {
        for (int flags : {2, 6}) {
            ASSERT_EQ(DSP(_window_scale)(&s, kind, flags, 1024), 0);
            EXPECT_EQ(s, T(1));
        }
        ASSERT_EQ(DSP(_window_scale)(&s, kind, 0, 0), 0);
        EXPECT_EQ(s, T(1));
    }
    // Unit-mean Hann 2 and Hamming 1 / 0.54, unit-rms Hann sqrt(8 / 3), the
    // triangles of 5 (4 in the single family) and 6.
    const struct {
        int kind, flags, n;
        double want, tol;
    } worked[] = {{DSP_WINDOW_HANN, 0, 1024, 2, 0},
                  {DSP_WINDOW_HANN, 1, 1024, 1.63299322, 1e-7},
                  {DSP_WINDOW_HAMMING, 0, 1024, 1 / 0.54, 1e-6},
                  {DSP_WINDOW_BARTLETT, 0, 5, pick<T>(4.0, 50.0 / 26.0), 0},
                  {DSP_WINDOW_BARTLETT, 0, 6, 2, 0}};
    for (const auto &w : worked) {
        ASSERT_EQ(DSP(_window_scale)(&s, w.kind, w.flags, w.n), 0);
        EXPECT_NEAR(double(s), w.want, w.tol) << w.kind << " " << w.flags << " " << w.n;
    }
    ASSERT_EQ(DSP(_window_enbw)(&s, DSP_WINDOW_HANN, 1024), 0);
    // (2 / (0.816496611 / 0.5))^2 with the stored nine-digit unit-rms value
    EXPECT_NEAR(double(s), 1.5, 1e-6);
    // Failures leave the result alone.
    s = -1;
    EXPECT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_HANN, 3, 16), -1);
    EXPECT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_HANN, 8, 16), -1);
    EXPECT_EQ(DSP(_window_scale)(&s, 30, 0, 16), -1);
    EXPECT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_KAISER70, 4 | 8, 16), -1);
    EXPECT_EQ(DSP(_window2_scale)(&s, DSP_WINDOW_BARTLETT, 8, 16, T(4)), -1);
    EXPECT_EQ(DSP(_window_enbw)(&s, 30, 16), -1);
    EXPECT_EQ(s, T(-1));
    EXPECT_EQ(DSP(_window_enbw)(nullptr, DSP_WINDOW_HANN, 16), -1);
    EXPECT_EQ(DSP(_window2_enbw)(nullptr, DSP_WINDOW_HANN, 16, T(8)), -1);
    // Explicit width: a Hann of 32 samples in a record of 64 has twice the
    // bandwidth in bins of the record.
    for (auto [kind, width, want] :
         {std::tuple{DSP_WINDOW_HANN, 32, 3.0}, {DSP_WINDOW_UNIFORM, 16, 4.0}}) {
        ASSERT_EQ(DSP(_window2_enbw)(&s, kind, 64, T(width)), 0);
        EXPECT_NEAR(double(s), want, 1e-5);
    }
    ASSERT_EQ(DSP(_window2_scale)(&s, DSP_WINDOW_FLATTOP, 8, 1000, T(1000)), 0);
    T plain;
    ASSERT_EQ(DSP(_window_scale)(&plain, DSP_WINDOW_FLATTOP, 0, 1000), 0);
    EXPECT_NEAR(double(s), double(plain), 1e-5);
    // The single family's odd triangle: 4 over the unit-rms peak.
    ASSERT_EQ(DSP(_window_enbw)(&s, DSP_WINDOW_BARTLETT, 5), 0);
    EXPECT_NEAR(double(s), std::pow(pick<T>(4.0, 50.0 / 26) / std::sqrt(3.0 * 25 / 27), 2), 1e-6);
}
