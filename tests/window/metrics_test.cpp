// Window metrics: worked values, failures, and agreement with the windows
// the generator makes.
#include <cmath>
#include <string>

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
    ASSERT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_HANN, 0, 1024), 0);
    EXPECT_EQ(s, T(2));
    ASSERT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_HANN, 1, 1024), 0);
    EXPECT_NEAR(double(s), 1.63299322, 1e-7);
    ASSERT_EQ(DSP(_window_enbw)(&s, DSP_WINDOW_HANN, 1024), 0);
    // (2 / (0.816496611 / 0.5))^2 with the stored nine-digit unit-rms value
    EXPECT_NEAR(double(s), 1.5, 1e-6);
    ASSERT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_HAMMING, 0, 1024), 0);
    EXPECT_NEAR(double(s), 1 / 0.54, 1e-6);
    ASSERT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_BARTLETT, 0, 5), 0);
    EXPECT_EQ(s, pick<T>(4.0f, 50.0 / 26.0));
    ASSERT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_BARTLETT, 0, 6), 0);
    EXPECT_EQ(s, T(2));
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
    ASSERT_EQ(DSP(_window2_enbw)(&s, DSP_WINDOW_HANN, 64, T(32)), 0);
    EXPECT_NEAR(double(s), 3.0, 1e-5);
    ASSERT_EQ(DSP(_window2_enbw)(&s, DSP_WINDOW_UNIFORM, 64, T(16)), 0);
    EXPECT_NEAR(double(s), 4.0, 1e-5);
    ASSERT_EQ(DSP(_window2_scale)(&s, DSP_WINDOW_FLATTOP, 8, 1000, T(1000)), 0);
    T plain;
    ASSERT_EQ(DSP(_window_scale)(&plain, DSP_WINDOW_FLATTOP, 0, 1000), 0);
    EXPECT_NEAR(double(s), double(plain), 1e-5);
}

TYPED_TEST(WindowMetrics, AgreeWithGeneratedWindows) {
    using T = TypeParam;
    for (int kind = 1; kind <= 24; ++kind) {
        for (int n : {1, 2, 3, 7, 16, 1000}) {
            const std::string what = "kind " + std::to_string(kind) + " n " + std::to_string(n);
            // The scale is the peak of the normalised window.
            for (int mode : {0, 1}) {
                if (kind == 1 && mode == 0 && n % 2 && std::is_same_v<T, float>) continue;
                Rec<T> x(std::vector<T>(size_t(n), T(1)));
                ASSERT_EQ(DSP(i_window)(&x, kind, mode | 32), 0) << what;
                T s;
                ASSERT_EQ(DSP(_window_scale)(&s, kind, mode, n), 0) << what;
                EXPECT_NEAR(double(s), double(x->data[n / 2]), 2e-6 * double(s))
                    << what << " mode " << mode;
            }
            // ENBW: n * sum of squares / squared sum of the window.
            Rec<T> w(std::vector<T>(size_t(n), T(1)));
            ASSERT_EQ(DSP(i_window)(&w, kind, 2 | 32), 0);
            long double sum = 0, sq = 0;
            for (int i = 0; i < n; ++i) {
                sum += w->data[i];
                sq += (long double)w->data[i] * w->data[i];
            }
            T e;
            ASSERT_EQ(DSP(_window_enbw)(&e, kind, n), 0);
            if (kind == 1 && n % 2 && std::is_same_v<T, float>) continue;
            // The flat-top kinds' unit-mean a0 lies below 1 on purpose and
            // enters the ratio squared.
            const double a0 =
                dsp::is_cosine_kind(kind) ? dsp::cosine_coefficients<T>(kind, 0).a[0] : 1.0;
            EXPECT_NEAR(double(e), double(n * sq / (sum * sum)) * a0 * a0, 4e-6 * double(e))
                << what;
        }
    }
    // The single family's odd triangle: 4 over the unit-rms peak.
    T e;
    ASSERT_EQ(DSP(_window_enbw)(&e, DSP_WINDOW_BARTLETT, 5), 0);
    const double s1 = std::sqrt(3.0 * 25 / 27);
    EXPECT_NEAR(double(e), std::pow(pick<T>(4.0, 50.0 / 26) / s1, 2), 1e-6);
}
