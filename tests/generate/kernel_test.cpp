// Resampling kernels: both builders against the series in long double, the
// kernel layout, record shapes and failures; the stored descriptions value by
// value (checksums) and the stored kernels built from them.
#include "generate/kernel.hpp"

#include <cmath>
#include <cstring>

#include "support/support.hpp"

using namespace dsp_test;
using LD = long double;

namespace {

// v(theta_j) for j = 0 .. (n-2)/2 from the description d (width first). The
// angles are accumulated in the precision T as documented; the series is
// evaluated in long double.
template <class T>
std::vector<LD> series(const std::vector<T> &d, int n, bool polynomial) {
    const T step = n == 2 ? T(0) : T(2) * dsp::precision<T>::pi / T(n - 2);
    std::vector<LD> v;
    T theta = 0;
    for (int j = 0; j <= (n - 2) / 2; ++j, theta += step) {
        LD s = 0;
        T angle = 0;
        for (size_t i = 1; i < d.size(); ++i, angle += theta)
            s += d[i] *
                 (polynomial ? std::pow(std::cos(LD(theta)), LD(i - 1)) : std::cos(LD(angle)));
        v.push_back(s);
    }
    return v;
}

}  // namespace

template <class T>
class Kernel : public ::testing::Test {};
TYPED_TEST_SUITE(Kernel, Precisions);

TYPED_TEST(Kernel, BuildersMatchSeries) {
    using T = TypeParam;
    const std::vector<T> d = {T(6), T(0.3), T(-0.25), T(0.5), T(0.125), T(-0.0625)};
    Rec<T> desc(d);
    for (bool polynomial : {false, true}) {
        const auto build = polynomial ? DSP(c_rsmp_pcos) : DSP(c_rsmp_cos);
        for (int n : {2, 4, 14, 6 * 256 + 2}) {
            for (bool cplx : {false, true}) {
                Rec<T> k;
                k->n = n;
                k->cplx = cplx;
                ASSERT_EQ(build(&k, desc.get()), 0);
                ASSERT_EQ(k->cplx, int(cplx));
                const int s = cplx ? 2 : 1;
                EXPECT_EQ(k->data[0], T(6));
                const std::vector<LD> want = series<T>(d, n, polynomial);
                for (int j = 0; j <= (n - 2) / 2; ++j) {
                    const T right = k->data[s * (n / 2 + j)], left = k->data[s * (n / 2 - j)];
                    EXPECT_EQ(std::memcmp(&right, &left, sizeof(T)), 0) << n << " " << j;
                    EXPECT_NEAR(right, double(want[size_t(j)]), pick<T>(4e-7, 1e-15))
                        << n << " " << j;
                    EXPECT_EQ(k->data[s * (n / 2 + j) + s - 1], cplx ? T(0) : right);
                }
            }
        }
    }
    // Two points: the width and v(0), the sum of the coefficients.
    Rec<T> k;
    k->n = 2;
    ASSERT_EQ(DSP(c_rsmp_cos)(&k, desc.get()), 0);
    EXPECT_NEAR(k->data[1], 0.3 - 0.25 + 0.5 + 0.125 - 0.0625, 1e-7);
}

TYPED_TEST(Kernel, ShapesAndFailures) {
    using T = TypeParam;
    Rec<T> desc({T(4), T(1), T(2)}), width_only({T(4)}), empty;
    Rec<T> cdesc({T(4), 0, T(1), 0}, true);
    // One point: only the width; no coefficients: zeros and the width;
    // nothing to describe: zeros.
    Rec<T> k({9});
    EXPECT_OK(DSP(c_rsmp_cos)(&k, desc.get()), *k, {4});
    k.set({9, 9, 9, 9}, true);
    EXPECT_OK(DSP(c_rsmp_pcos)(&k, width_only.get()), *k, {4, 0, 0, 0});
    EXPECT_OK(DSP(c_rsmp_pcos)(&k, empty.get()), *k, {0, 0, 0, 0});
    // Odd length or complex description: -1, the kernel untouched.
    k.set({9, 9, 9});
    EXPECT_EQ(DSP(c_rsmp_cos)(&k, desc.get()), -1);
    k.set({9, 9, 9, 9});
    EXPECT_EQ(DSP(c_rsmp_cos)(&k, cdesc.get()), -1);
    expect_values<T>(*k, {9, 9, 9, 9});
    // Built over its own description (the same record): as from a copy.
    Rec<T> self({T(4), T(1), T(2), T(0.5)}), other;
    other->n = 4;
    ASSERT_EQ(DSP(c_rsmp_cos)(&other, self.get()), 0);
    EXPECT_OK(DSP(c_rsmp_cos)(&self, self.get()), *self, other.values());
    // Caller storage is left as it is; storage failure gives -1.
    T buf[4] = {5, 5, 5, 5};
    *k = wrap<T>(buf, 4);
    EXPECT_EQ(DSP(c_rsmp_cos)(&k, desc.get()), 0);
    EXPECT_EQ(buf[1], T(5));
    DSP(_lib_alloc)
    (
        +[](sig<T> *s) { s->data = nullptr; }, nullptr);
    Rec<T> f;
    f->n = 8;
    EXPECT_EQ(DSP(c_rsmp_cos)(&f, desc.get()), -1);
    EXPECT_EQ(DSP(c_rsmp)(&f, 0), -1);
    DSP(_lib_alloc)(nullptr, nullptr);
}

// The stored descriptions hold the decimal values (the longer ones of mode 0
// and of the first terms of mode 4 in double): checksums of the bit patterns
// of the doubles (pattern times index + 1, modulo 2^64); the floats are
// their roundings.
TEST(KernelStored, DescriptionsHoldTheDecimalValues) {
    const struct {
        int n;
        bool polynomial;
        uint64_t sum;
    } modes[] = {{7, true, 0xf4f6c4277dd74149},
                 {9, true, 0xb8d46c692c35e055},
                 {12, false, 0x18fe726f6f1f89ec},
                 {9, false, 0x2d989d61c73aa7a6},
                 {40, false, 0xc8caad6803c47ee9}};
    for (int mode = 0; mode < 5; ++mode) {
        const auto d = dsp::rsmp_stored<double>(mode);
        const auto f = dsp::rsmp_stored<float>(mode);
        ASSERT_EQ(d.n, modes[mode].n);
        ASSERT_EQ(f.n, d.n);
        EXPECT_EQ(d.polynomial, modes[mode].polynomial);
        EXPECT_EQ(f.polynomial, d.polynomial);
        uint64_t sum = 0;
        for (int i = 0; i < d.n; ++i) {
            uint64_t bits;
            std::memcpy(&bits, &d.values[i], sizeof bits);
            sum += bits * uint64_t(i + 1);
            EXPECT_EQ(f.values[i], float(d.values[i])) << mode << " " << i;
        }
        EXPECT_EQ(sum, modes[mode].sum) << mode;
    }
    EXPECT_EQ(dsp::rsmp_stored<double>(4).values[1], 1.0 / 13);
    EXPECT_EQ(dsp::rsmp_stored<float>(4).values[14], -0x1p-149f);
    EXPECT_EQ(dsp::rsmp_stored<float>(5).values, nullptr);
}

TYPED_TEST(Kernel, StoredKernels) {
    using T = TypeParam;
    for (int mode = 0; mode < 5; ++mode) {
        const auto d = dsp::rsmp_stored<T>(mode);
        Rec<T> k, ref;
        Rec<T> desc(std::vector<T>(d.values, d.values + d.n));
        k->n = ref->n = int(d.values[0]) * 64 + 2;
        ASSERT_EQ(DSP(c_rsmp)(&k, mode), 0);
        ASSERT_EQ((d.polynomial ? DSP(c_rsmp_pcos) : DSP(c_rsmp_cos))(&ref, desc.get()), 0);
        EXPECT_EQ(k.values(), ref.values()) << mode;
    }
    Rec<T> k;
    k->n = 8;
    EXPECT_EQ(DSP(c_rsmp)(&k, 5), -1);
    EXPECT_EQ(DSP(c_rsmp)(&k, -1), -1);
}
