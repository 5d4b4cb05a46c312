// Resampling kernels: both builders against the series in long double, the
// layout, record shapes and failures, and the stored kernels.
#include "generate/kernel.hpp"

#include <cmath>
#include <cstring>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Kernel : public ::testing::Test {};
TYPED_TEST_SUITE(Kernel, Precisions);

TYPED_TEST(Kernel, BuildersMatchSeries) {
    using T = TypeParam;
    const std::vector<T> d = {T(6), T(0.3), T(-0.25), T(0.5), T(0.125), T(-0.0625)};
    Rec<T> desc(d);
    for (int n : {2, 4, 14, 6 * 256 + 2}) {
        for (int cplx : {0, 1}) {
            for (int poly : {0, 1}) {
                Rec<T> k;
                k->n = n;
                k->cplx = cplx;
                ASSERT_EQ((poly ? DSP(c_rsmp_pcos) : DSP(c_rsmp_cos))(&k, desc.get()), 0);
                ASSERT_EQ(k->cplx, cplx);
                EXPECT_EQ(k->data[0], T(6));
                // Angles accumulated in the precision as documented, the
                // series in long double.
                const T step = n == 2 ? T(0) : T(2) * dsp::precision<T>::pi / T(n - 2);
                T theta = 0;
                for (int j = 0, s = 1 + cplx; j <= (n - 2) / 2; ++j, theta += step) {
                    long double want = 0;
                    T angle = 0;
                    for (size_t i = 1; i < d.size(); ++i, angle += theta)
                        want += d[i] * (poly ? std::pow(std::cos((long double)theta), i - 1)
                                             : std::cos((long double)angle));
                    const T right = k->data[s * (n / 2 + j)], left = k->data[s * (n / 2 - j)];
                    EXPECT_EQ(std::memcmp(&right, &left, sizeof(T)), 0) << n << " " << j;
                    EXPECT_NEAR(right, double(want), pick<T>(4e-7, 1e-15)) << n << " " << j;
                    EXPECT_EQ(k->data[s * (n / 2 + j) + s - 1], cplx ? T(0) : right);
                }
            }
        }
    }
}

TYPED_TEST(Kernel, ShapesFailuresAndStoredKernels) {
    using T = TypeParam;
    Rec<T> desc({T(4), T(1), T(2)}), width_only({T(4)}), empty, cdesc({T(4), 0, T(1), 0}, true);
    // One point: only the width; no coefficients: zeros and the width;
    // nothing to describe: zeros.
    Rec<T> k({9});
    EXPECT_OK(DSP(c_rsmp_cos)(&k, desc.get()), *k, {4});
    k.set({9, 9, 9, 9}, true);
    EXPECT_OK(DSP(c_rsmp_pcos)(&k, width_only.get()), *k, {4, 0, 0, 0});
    EXPECT_OK(DSP(c_rsmp_pcos)(&k, empty.get()), *k, {0, 0, 0, 0});
    // Odd length, complex description, unknown mode: -1, kernel untouched.
    k.set({9, 9, 9});
    EXPECT_EQ(DSP(c_rsmp_cos)(&k, desc.get()), -1);
    k.set({9, 9, 9, 9});
    EXPECT_EQ(DSP(c_rsmp_cos)(&k, cdesc.get()), -1);
    EXPECT_EQ(DSP(c_rsmp)(&k, 5), -1);
    EXPECT_EQ(DSP(c_rsmp)(&k, -1), -1);
    expect_values<T>(*k, {9, 9, 9, 9});
    // Built over its own description (the same record): as from a copy.
    Rec<T> self({T(4), T(1), T(2), T(0.5)}), other;
    other->n = 4;
    ASSERT_EQ(DSP(c_rsmp_cos)(&other, self.get()), 0);
    EXPECT_OK(DSP(c_rsmp_cos)(&self, self.get()), *self, other.values());
    // Each stored kernel is its description through its builder.
    for (int mode = 0; mode < 5; ++mode) {
        const auto d = dsp::rsmp_stored<T>(mode);
        Rec<T> k, ref, desc(std::vector<T>(d.values, d.values + d.n));
        k->n = ref->n = int(d.values[0]) * 64 + 2;
        ASSERT_EQ(DSP(c_rsmp)(&k, mode), 0);
        ASSERT_EQ((d.polynomial ? DSP(c_rsmp_pcos) : DSP(c_rsmp_cos))(&ref, desc.get()), 0);
        EXPECT_EQ(k.values(), ref.values()) << mode;
    }
}
