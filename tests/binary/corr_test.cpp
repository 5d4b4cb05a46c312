// Correlation through the FFT against numpy.correlate.
#include <algorithm>
#include <vector>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Corr : public ::testing::Test {};
TYPED_TEST_SUITE(Corr, Precisions);

TYPED_TEST(Corr, LagsOfTheLinearCorrelation) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    // Every case in turn: n, lags, the kinds of x and y and their scalars.
    auto each = [](auto f) {
        unsigned seed = 0;
        for (int n : {1, 2, 3, 4, 5, 17, 64, 100})
            for (int lags : {1, (n + 1) / 2, n})
                for (int xc = 0; xc < 2; ++xc)
                    for (int yc = 0; yc < 2; ++yc, seed += 2)
                        f(n, lags, xc, yc, uniform<T>((1 + xc) * n, seed),
                          uniform<T>((1 + yc) * n, seed + 1));
    };
    std::vector<double> in;
    each([&](int n, int lags, int xc, int yc, const auto &x, const auto &y) {
        in.insert(in.end(), {double(n), double(lags), double(xc), double(yc)});
        in.insert(in.end(), x.begin(), x.end());
        in.insert(in.end(), y.begin(), y.end());
    });
    const auto want = python(
        "i, out = 0, []\n"
        "while i < len(x):\n"
        "    n, lags, xc, yc = (int(v) for v in x[i:i + 4])\n"
        "    a = x[i + 4:i + 4 + n * (1 + xc)]\n"
        "    b = x[i + 4 + len(a):i + 4 + len(a) + n * (1 + yc)]\n"
        "    i += 4 + len(a) + len(b)\n"
        "    a, b = (v[0::2] + 1j * v[1::2] if c else v for v, c in ((a, xc), (b, yc)))\n"
        "    out += [v for z in np.correlate(a, b, 'full')[n - 1:n - 1 + lags] for v in (z.real, "
        "z.imag)]\n"
        "print(*out)",
        in);
    // Every arrangement of result and scratch: separate records, the result
    // in x or y, the scratch null, the result's, or x's; odd cases halved.
    size_t at = 0;
    int k = 0;
    Rec<T> scratch;
    each([&](int n, int lags, int xc, int yc, const auto &xv, const auto &yv) {
        Rec<T> x(xv, xc, T(1)), y(yv, yc, T(3)), r;
        const int arrangement = k % 4, option = k++ % 2, c = xc || yc ? 2 : 1;
        Rec<T> &res = arrangement == 1 ? x : arrangement == 2 ? y : r;
        auto *s = arrangement == 0 ? scratch.get() : arrangement == 3 ? r.get() : nullptr;
        ASSERT_EQ(DSP(h_corr)(&x, &y, &res, arrangement == 2 ? x.get() : s, lags, option), 0);
        ASSERT_TRUE(res->n == lags && res->cplx == (c == 2) && res->delta == T(2));
        for (int i = 0; i < c * lags; ++i)
            EXPECT_NEAR(res->data[i], want.at(at + 2 * (i / c) + i % c) * (option ? 0.5 : 1),
                        ulps<T>(4) * n)
                << n << " " << lags << " " << xc << yc << " scalar " << i;
        at += 2 * lags;
    });
    EXPECT_EQ(at, want.size());
    // The two-record form is option 0; unequal lengths or a lag count outside
    // 1 .. n give -1 and leave r untouched.
    Rec<T> a({1, 2, 3}), b({1, 1, 0}), c({1, 2}), r({9});
    EXPECT_OK(DSP(b_corr)(&a, &b, &r, nullptr, 3), *r, {3, 5, 3}, ulps<T>(8));
    EXPECT_EQ(DSP(b_corr)(&a, &c, &r, nullptr, 1), -1);
    EXPECT_EQ(DSP(b_corr)(&a, &b, &r, nullptr, 0), -1);
    EXPECT_EQ(DSP(h_corr)(&a, &b, &r, nullptr, 4, 1), -1);
    expect_values<T>(*r, {3, 5, 3}, ulps<T>(8));
}
