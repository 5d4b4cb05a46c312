#include <algorithm>
#include <cmath>
#include <vector>

#include "support/support.hpp"

using namespace dsp_test;

namespace {

DSP_TYPED_SUITE(Rearrange);

// m points; point i is j + 1 (complex: (j + 1, -j - 1)) for j = at(i),
// times f; j = -1 gives a zero point.
template <class T, class At>
std::vector<T> points(long m, bool cplx, At at, T f = T(1)) {
    std::vector<T> v;
    for (long i = 0; i < m; ++i) {
        const long j = at(i);
        v.push_back(j < 0 ? T(0) : T(j + 1) * f);
        if (cplx) v.push_back(j < 0 ? T(0) : T(-j - 1) * f);
    }
    return v;
}
const auto same = [](long i) { return i; };

}  // namespace

TYPED_TEST(Rearrange, HalfSwapsRotate) {
    using T = TypeParam;
    using V = std::vector<T>;
    // Rotations left by (n + 1) / 2 and by n / 2 points: {1, 2, 3, 4, 5}
    // becomes {4, 5, 1, 2, 3} and {3, 4, 5, 1, 2}.
    for (bool cplx : {false, true})
        for (long n = 0; n <= 9; ++n) {
            const V v = points<T>(n, cplx, same);
            EXPECT_EQ(applied<T>(v, cplx, DSP(i_swap_halves)),
                      points<T>(n, cplx, [&](long i) { return (i + (n + 1) / 2) % n; }));
            EXPECT_EQ(applied<T>(v, cplx, DSP(i_swap_halves2)),
                      points<T>(n, cplx, [&](long i) { return (i + n / 2) % n; }));
        }
}

TYPED_TEST(Rearrange, LengthChangesEveryPlacementAndScaling) {
    using T = TypeParam;
    using V = std::vector<T>;
    // Point s of the shorter length lo sits at point at(s) of the longer hi;
    // e.g. {1, 2, 3, 4} padded to 8 with 0x300 (split, scaled by m / n) is
    // {2, 4, 0, 0, 0, 0, 6, 8}.
    for (bool cplx : {false, true})
        for (int place : {0x000, 0x100, 0x200, 0x300})
            for (int mode = 0; mode < 3; ++mode)
                for (long n0 : {0, 1, 4, 5, 8})
                    for (long m = 0; m <= 2 * n0 + 1; ++m) {
                        const long lo = std::min(n0, m), hi = std::max(n0, m);
                        auto at = [&](long s) {
                            const bool back =
                                place == 0x200 || (place == 0x300 && s >= (lo + 1) / 2);
                            return s + (place == 0x100 ? hi / 2 - lo / 2 : back ? hi - lo : 0);
                        };
                        std::vector<long> index(size_t(m), -1);
                        for (long s = 0; s < lo; ++s)
                            index[size_t(m > n0 ? at(s) : s)] = m > n0 ? s : at(s);
                        const double r = lo == 0 || mode == 2 ? 1.0 : double(m) / double(n0);
                        const T f = T(mode == 1 ? std::sqrt(r) : r);
                        auto op = m > n0 ? DSP(i_zpad2) : DSP(i_unzpad);
                        const V got = applied<T>(points<T>(n0, cplx, same), cplx, [&](sig<T> *x) {
                            return op(x, int(m), place | mode);
                        });
                        const V want = points<T>(
                            m, cplx, [&](long i) { return index[size_t(i)]; }, f);
                        ASSERT_EQ(got.size(), want.size());
                        for (size_t i = 0; i < got.size(); ++i)
                            EXPECT_NEAR(got[i], want[i], 64 * ulps<T>()) << n0 << ">" << m;
                    }
}

TYPED_TEST(Rearrange, FailuresAndCallerStorage) {
    using T = TypeParam;
    using V = std::vector<T>;
    // Invalid flags: zpad2 fails after lengthening (the new points are 0),
    // unzpad before any change; requests that keep the length succeed.
    for (int flags : {0x400, 0x700, 0x103}) {
        Rec<T> a({1, 2, 3, 4}, true);
        EXPECT_EQ(DSP(i_zpad2)(&a, 4, flags), -1);
        EXPECT_EQ(a.values(), (V{1, 2, 3, 4, 0, 0, 0, 0}));
        EXPECT_EQ(DSP(i_unzpad)(&a, 1, flags), -1);
        EXPECT_EQ(DSP(i_zpad2)(&a, 3, flags), 0);
        EXPECT_EQ(DSP(i_unzpad)(&a, 5, flags), 0);
        EXPECT_EQ(a->n, 4);
    }
    // A record wrapping caller storage gets a block of its own when sized;
    // the caller's array is never written.
    T buf[4] = {1, 2, 3, 4};
    auto on_buf = [&](bool cplx, auto op) {
        Rec<T> r;
        *r = wrap(buf, cplx ? 2 : 4, cplx);
        EXPECT_EQ(op(r.get()), 0);
        EXPECT_NE(r->data, buf);
        return r.values();
    };
    EXPECT_EQ(on_buf(true, [](sig<T> *s) { return DSP(i_shift)(s, 1); }), (V{3, 4}));
    EXPECT_EQ(on_buf(false, [](sig<T> *s) { return DSP(i_zpad)(s, 6); }), (V{1, 2, 3, 4, 0, 0}));
    EXPECT_EQ(on_buf(false, DSP(i_zinter)), (V{1, 0, 2, 0, 3, 0, 4, 0}));
    EXPECT_EQ(on_buf(true, DSP(i_zero)), (V{0, 0, 0, 0}));

    // A reallocation hook that fails: the new length stays, nothing is
    // owned. The records wrap caller storage so that nothing is lost.
    void (*previous)(sig<T> *, int, int) = nullptr;
    DSP(_lib_realloc)([](sig<T> *s, int, int) { s->data = nullptr; }, &previous);
    // clang-format off
    const struct { int (*op)(sig<T> *); int n; } cases[] = {
        {[](sig<T> *s) { return DSP(i_zpad)(s, 5); }, 5}, {[](sig<T> *s) { return DSP(i_zpad2)(s, 4, 0x100); }, 4},
        {[](sig<T> *s) { return DSP(i_orecon)(s, 1); }, 5}, {DSP(i_zinter), 6}, {DSP(i_zero), 3}};
    // clang-format on
    for (const auto &c : cases) {
        Rec<T> r;
        *r = wrap(buf, 3);
        EXPECT_EQ(c.op(r.get()), -1);
        EXPECT_TRUE(r->n == c.n && r->data == nullptr && r->alloc == 0);
    }
    DSP(_lib_realloc)(previous, nullptr);
    EXPECT_EQ(V(buf, buf + 4), (V{1, 2, 3, 4}));
}

TYPED_TEST(Rearrange, ReverseShiftInterleaveSort) {
    using T = TypeParam;
    using V = std::vector<T>;
    auto shift = [](int k) { return [=](sig<T> *s) { return DSP(i_shift)(s, k); }; };
    EXPECT_EQ(applied<T>({1, 2, 3, 4, 5}, false, DSP(i_rev)), (V{5, 4, 3, 2, 1}));
    EXPECT_EQ(applied<T>({1, 2, 3, 4, 5, 6, 7, 8}, true, DSP(i_rev)), (V{7, 8, 5, 6, 3, 4, 1, 2}));
    EXPECT_EQ(applied<T>({1, 2, 3, 4, 5, 6}, true, shift(2)), (V{5, 6}));
    EXPECT_EQ(applied<T>({1, 2, 3}, false, shift(-2)), (V{1, 2, 3}));
    EXPECT_EQ(applied<T>({1, 2, 3}, false, shift(9)), V{});
    Rec<T> z({1, 2, 3, 4, 5, 6}, true);
    EXPECT_OK(DSP(i_zinter)(&z), *z, {1, 2, 0, 0, 3, 4, 0, 0, 5, 6, 0, 0});
    EXPECT_EQ(z->delta, T(0.5));
    for (auto op : {DSP(i_rev), DSP(i_swap_halves), DSP(i_swap_halves2), DSP(i_sort), DSP(i_zinter),
                    DSP(i_zero)})
        EXPECT_EQ(applied<T>({}, true, op), V{});

    EXPECT_EQ(applied<T>({3, -1, 2, -7, 0, 2}, false, DSP(i_sort)), (V{-7, -1, 0, 2, 2, 3}));
    // Complex: squared magnitude, then real part, then imaginary part.
    EXPECT_EQ(applied<T>({3, 0, 0, -1, -1, 0, 0, 1, 1, 0}, true, DSP(i_sort)),
              (V{-1, 0, 0, -1, 0, 1, 1, 0, 3, 0}));
    // Parts beyond L all count as L^2: such points tie and go by real part,
    // then imaginary part, whatever their true magnitudes.
    const T L = dsp::precision<T>::large;
    EXPECT_EQ(applied<T>({2 * L, 0, 0, 3 * L, 0, 2 * L, 1, 0}, true, DSP(i_sort)),
              (V{1, 0, 0, 2 * L, 0, 3 * L, 2 * L, 0}));
}
