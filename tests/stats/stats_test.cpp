#include <random>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

template <class T>
std::vector<T> random_values(unsigned seed, size_t count, double lo = -3, double hi = 5) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> d(lo, hi);
    std::vector<T> v(count);
    for (auto &x : v) x = T(d(gen));
    return v;
}

// A record wrapping scalars the test owns (not owned by the record).
template <class T>
sig<T> wrap(std::vector<T> &v, size_t first, size_t points, bool cplx = false) {
    return sig<T>{T(1), v.data() + first, 0, int32_t(points), cplx ? 1 : 0, 0};
}

}  // namespace

template <class T>
class Stats : public ::testing::Test {};
TYPED_TEST_SUITE(Stats, Precisions);

TYPED_TEST(Stats, SumsAndMeansOfBothKinds) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3, 6}), z({1, -1, 2, -2, 6, 0}, true), r;
    ASSERT_EQ(DSP(s_sum)(&x, &r), 0);
    expect_values<T>(*r, {12});
    ASSERT_EQ(DSP(s_mean)(&x, &r), 0);
    expect_values<T>(*r, {3});
    EXPECT_EQ(r->cplx, 0);
    ASSERT_EQ(DSP(s_sum)(&z, &r), 0);
    expect_values<T>(*r, {9, -3});
    ASSERT_EQ(DSP(s_mean)(&z, &z), 0);  // out is the input
    expect_values<T>(*z, {3, -1});
    ASSERT_EQ(DSP(s_magsq_sum)(&x, &r), 0);
    expect_values<T>(*r, {50});
    Rec<T> e, ec({}, true);
    for (auto fn : {DSP(s_sum), DSP(s_mean), DSP(s_magsq_sum), DSP(s_rms)}) {
        ASSERT_EQ(fn(&e, &r), 0);
        expect_values<T>(*r, {0});
    }
    ASSERT_EQ(DSP(s_mean)(&ec, &r), 0);
    expect_values<T>(*r, {0, 0});
    // A caller's array is read, never written.
    std::vector<T> v = {3, 4};
    sig<T> w = wrap(v, 0, 1, true);
    ASSERT_EQ(DSP(s_rms)(&w, &w), 0);
    expect_values<T>(w, {5});
    EXPECT_EQ(v, (std::vector<T>{3, 4}));
    DSP(_destroy)(&w);
}

TYPED_TEST(Stats, SquaresBeyondTheLargeValueAddIt) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> x({2 * L, T(0)}), z({3, 4, T(1), -2 * L}, true), r;
    ASSERT_EQ(DSP(s_magsq_sum)(&x, &r), 0);
    expect_values<T>(*r, {L});
    ASSERT_EQ(DSP(s_rms)(&x, &r), 0);
    expect_values<T>(*r, {T(std::sqrt(double(L / 2)))});
    ASSERT_EQ(DSP(s_magsq_sum)(&z, &r), 0);
    expect_values<T>(*r, {L + T(25)});
}

// Sums run over blocks of 2048 samples added to a running total: the result
// equals the blocks summed one by one and added in order.
TYPED_TEST(Stats, BlockAccumulation) {
    using T = TypeParam;
    for (bool cplx : {false, true}) {
        const size_t n = 2048 * 3 + 77, width = cplx ? 2 : 1;
        auto v = random_values<T>(11, n * width, -1e3, 1e4);
        sig<T> all = wrap(v, 0, n, cplx);
        Rec<T> r, part;
        ASSERT_EQ(DSP(s_sum)(&all, &r), 0);
        T total[2] = {0, 0};
        for (size_t s = 0; s < n; s += 2048) {
            sig<T> block = wrap(v, s * width, std::min<size_t>(2048, n - s), cplx);
            ASSERT_EQ(DSP(s_sum)(&block, &part), 0);
            for (size_t p = 0; p < width; ++p) total[p] += part->data[p];
        }
        EXPECT_EQ(r->data[0], total[0]);
        if (cplx) {
            EXPECT_EQ(r->data[1], total[1]);
        }
    }
}

// The double family against numpy on random data, lengths across the block
// size.
TEST(StatsDouble, AgreesWithNumpy) {
    for (size_t n : {1u, 2u, 7u, 2048u, 2049u, 5000u}) {
        SCOPED_TRACE(n);
        auto v = random_values<double>(unsigned(n), n);
        const auto want = python("print(repr(np.mean(x)), repr(np.sqrt(np.mean(x * x))))",
                                 std::vector<double>(v.begin(), v.end()));
        ASSERT_EQ(want.size(), 2u);
        sig<double> x = wrap(v, 0, n);
        Rec<double> r;
        ASSERT_EQ(dsps_mean(&x, &r), 0);
        EXPECT_NEAR(r->data[0], want[0], 1e-14);
        ASSERT_EQ(dsps_rms(&x, &r), 0);
        EXPECT_NEAR(r->data[0], want[1], 1e-14);
    }
}
