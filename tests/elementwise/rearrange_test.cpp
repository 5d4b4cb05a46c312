#include <cmath>
#include <vector>

#include "support/support.hpp"

using namespace dsp_test;

namespace {

template <class T>
class Rearrange : public ::testing::Test {};
TYPED_TEST_SUITE(Rearrange, Precisions);

// n distinct points (complex: distinct imaginary parts too), as scalars.
template <class T>
std::vector<T> ramp(int n, bool cplx) {
    std::vector<T> v;
    for (int i = 0; i < n; ++i) {
        v.push_back(T(i + 1));
        if (cplx) v.push_back(T(-0.5 - i));
    }
    return v;
}

// Scalars of the points of v (w scalars per point) picked by index, each
// times f; index -1 gives a zero point.
template <class T>
std::vector<T> pick_points(const std::vector<T> &v, int w, const std::vector<long> &index, T f) {
    std::vector<T> out;
    for (long j : index)
        for (int k = 0; k < w; ++k) out.push_back(j < 0 ? T(0) : v[size_t(j * w + k)] * f);
    return out;
}

template <class T>
T scale_of(int mode, int from, int to) {
    if (mode == 2 || from <= 0 || to <= 0) return T(1);
    const double r = double(to) / double(from);
    return T(mode == 1 ? std::sqrt(r) : r);
}

}  // namespace

TYPED_TEST(Rearrange, HalfSwapsRotate) {
    using T = TypeParam;
    Rec<T> a{0, 1, 2, 3, 4};
    EXPECT_EQ(DSP(i_swap_halves)(&a), 0);
    expect_values<T>(*a, {3, 4, 0, 1, 2});
    EXPECT_EQ(DSP(i_swap_halves2)(&a), 0);
    expect_values<T>(*a, {0, 1, 2, 3, 4});
    Rec<T> b{0, 1, 2, 3};
    EXPECT_EQ(DSP(i_swap_halves)(&b), 0);
    expect_values<T>(*b, {2, 3, 0, 1});
    EXPECT_EQ(DSP(i_swap_halves2)(&b), 0);
    expect_values<T>(*b, {0, 1, 2, 3});

    // Against a rotation by (n + 1) / 2 and n / 2 points, real and complex.
    for (int cplx = 0; cplx < 2; ++cplx) {
        const int w = cplx + 1;
        for (int n = 0; n <= 9; ++n) {
            const std::vector<T> v = ramp<T>(n, cplx);
            std::vector<long> left1, left2;
            for (int i = 0; i < n; ++i) {
                left1.push_back((i + (n + 1) / 2) % n);
                left2.push_back((i + n / 2) % n);
            }
            Rec<T> r;
            r.set(v, cplx);
            EXPECT_EQ(DSP(i_swap_halves)(&r), 0);
            expect_values<T>(*r, pick_points<T>(v, w, left1, T(1)));
            r.set(v, cplx);
            EXPECT_EQ(DSP(i_swap_halves2)(&r), 0);
            expect_values<T>(*r, pick_points<T>(v, w, left2, T(1)));
            EXPECT_EQ(DSP(i_swap_halves)(&r), 0);
            expect_values<T>(*r, v);
        }
    }
}

TYPED_TEST(Rearrange, ZeroGivesOwnStorage) {
    using T = TypeParam;
    Rec<T> a({1, 2, 3, 4}, true);
    T *before = a->data;
    EXPECT_EQ(DSP(i_zero)(&a), 0);
    EXPECT_EQ(a->data, before);
    expect_values<T>(*a, {0, 0, 0, 0});

    // Caller storage is replaced by an owned block; the caller's array stays.
    T buf[3] = {5, 6, 7};
    Rec<T> b;
    b->data = buf;
    b->n = 3;
    EXPECT_EQ(DSP(i_zero)(&b), 0);
    EXPECT_NE(b->data, buf);
    EXPECT_EQ(b->alloc, 3);
    expect_values<T>(*b, {0, 0, 0});
    EXPECT_EQ(buf[0], T(5));
    EXPECT_EQ(buf[2], T(7));

    Rec<T> e;
    EXPECT_EQ(DSP(i_zero)(&e), 0);
    EXPECT_EQ(e->data, nullptr);
}

TYPED_TEST(Rearrange, Zpad2EveryPlacementAndScaling) {
    using T = TypeParam;
    Rec<T> a{1, 2, 3, 4};
    EXPECT_EQ(DSP(i_zpad2)(&a, 8, 0x300), 0);
    expect_values<T>(*a, {2, 4, 0, 0, 0, 0, 6, 8});

    const int places[] = {0x000, 0x100, 0x200, 0x300};
    for (int cplx = 0; cplx < 2; ++cplx)
        for (int n0 : {0, 1, 4, 5})
            for (int m : {n0 + 1, n0 + 2, n0 + 3, 2 * n0 + 1})
                for (int place : places)
                    for (int mode = 0; mode < 3; ++mode) {
                        const int w = cplx + 1;
                        const std::vector<T> v = ramp<T>(n0, cplx);
                        std::vector<long> index(size_t(m), -1);
                        for (int j = 0; j < n0; ++j) {
                            long to = j;
                            if (place == 0x100) to = m / 2 - n0 / 2 + j;
                            if (place == 0x200) to = m - n0 + j;
                            if (place == 0x300 && j >= (n0 + 1) / 2) to = j + m - n0;
                            index[size_t(to)] = j;
                        }
                        Rec<T> r;
                        r.set(v, cplx);
                        EXPECT_EQ(DSP(i_zpad2)(&r, m, place | mode), 0);
                        expect_values<T>(*r, pick_points<T>(v, w, index, scale_of<T>(mode, n0, m)),
                                         16 * ulps<T>());
                    }
}

TYPED_TEST(Rearrange, UnzpadEveryPlacementAndScaling) {
    using T = TypeParam;
    Rec<T> a{0, 1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(DSP(i_unzpad)(&a, 4, 0x302), 0);
    expect_values<T>(*a, {0, 1, 6, 7});

    const int places[] = {0x000, 0x100, 0x200, 0x300};
    for (int cplx = 0; cplx < 2; ++cplx)
        for (int n0 : {1, 4, 5, 8})
            for (int m = 0; m < n0; ++m)
                for (int place : places)
                    for (int mode = 0; mode < 3; ++mode) {
                        const int w = cplx + 1;
                        const std::vector<T> v = ramp<T>(n0, cplx);
                        std::vector<long> index;
                        for (int i = 0; i < m; ++i) {
                            long from = i;
                            if (place == 0x100) from = n0 / 2 - m / 2 + i;
                            if (place == 0x200) from = n0 - m + i;
                            if (place == 0x300 && i >= (m + 1) / 2) from = i + n0 - m;
                            index.push_back(from);
                        }
                        Rec<T> r;
                        r.set(v, cplx);
                        const T *block = r->data;
                        EXPECT_EQ(DSP(i_unzpad)(&r, m, place | mode), 0);
                        EXPECT_EQ(r->data, block);
                        expect_values<T>(*r, pick_points<T>(v, w, index, scale_of<T>(mode, n0, m)),
                                         16 * ulps<T>());
                    }
}

TYPED_TEST(Rearrange, LengthChangeFailures) {
    using T = TypeParam;
    // Invalid flags in zpad2 fail after the record has been lengthened.
    for (int flags : {0x400, 0x700, 0x103}) {
        Rec<T> a({1, 2, 3, 4}, true);
        EXPECT_EQ(DSP(i_zpad2)(&a, 4, flags), -1);
        EXPECT_EQ(a->n, 4);
        expect_values<T>(*a, {1, 2, 3, 4, 0, 0, 0, 0});
        EXPECT_EQ(DSP(i_unzpad)(&a, 1, flags), -1);
        EXPECT_EQ(a->n, 4);
        // Length requests that change nothing succeed before the flags count.
        EXPECT_EQ(DSP(i_zpad2)(&a, 3, flags), 0);
        EXPECT_EQ(DSP(i_unzpad)(&a, 4, flags), 0);
        EXPECT_EQ(a->n, 4);
    }
    Rec<T> b{1, 2, 3};
    EXPECT_EQ(DSP(i_zpad)(&b, 2), 0);
    expect_values<T>(*b, {1, 2, 3});
    // Truncating to nothing keeps the values unscaled.
    EXPECT_EQ(DSP(i_unzpad)(&b, 0, 0x100), 0);
    EXPECT_EQ(b->n, 0);
    EXPECT_EQ(b->data[1], T(2));
}

TYPED_TEST(Rearrange, CallerStorageIsNeverWritten) {
    using T = TypeParam;
    T buf[4] = {1, 2, 3, 4};
    auto wrap = [&](Rec<T> &r, bool cplx) {
        r->data = buf;
        r->n = cplx ? 2 : 4;
        r->cplx = cplx;
    };
    {
        Rec<T> r;
        wrap(r, true);
        EXPECT_EQ(DSP(i_shift)(&r, 1), 0);
        expect_values<T>(*r, {3, 4});
        EXPECT_NE(r->data, buf);
    }
    {
        Rec<T> r;
        wrap(r, false);
        EXPECT_EQ(DSP(i_zpad)(&r, 6), 0);
        expect_values<T>(*r, {1, 2, 3, 4, 0, 0});
    }
    {
        Rec<T> r;
        wrap(r, false);
        r->delta = T(2);
        EXPECT_EQ(DSP(i_zinter)(&r), 0);
        expect_values<T>(*r, {1, 0, 2, 0, 3, 0, 4, 0});
        EXPECT_EQ(r->delta, T(1));
    }
    {
        Rec<T> r;
        wrap(r, true);
        EXPECT_EQ(DSP(i_zpad2)(&r, 3, 0x202), 0);
        expect_values<T>(*r, {0, 0, 1, 2, 3, 4});
    }
    for (int i = 0; i < 4; ++i) EXPECT_EQ(buf[i], T(i + 1));
}

TYPED_TEST(Rearrange, ReverseShiftInterleave) {
    using T = TypeParam;
    Rec<T> a{1, 2, 3, 4, 5};
    EXPECT_EQ(DSP(i_rev)(&a), 0);
    expect_values<T>(*a, {5, 4, 3, 2, 1});
    Rec<T> c({1, 2, 3, 4, 5, 6, 7, 8}, true);
    EXPECT_EQ(DSP(i_rev)(&c), 0);
    expect_values<T>(*c, {7, 8, 5, 6, 3, 4, 1, 2});

    // shift: in place in the owned block, clamped like subvec.
    const T *block = c->data;
    EXPECT_EQ(DSP(i_shift)(&c, 3), 0);
    EXPECT_EQ(c->data, block);
    expect_values<T>(*c, {1, 2});
    EXPECT_EQ(DSP(i_shift)(&a, -2), 0);
    expect_values<T>(*a, {5, 4, 3, 2, 1});
    EXPECT_EQ(DSP(i_shift)(&a, 9), 0);
    EXPECT_EQ(a->n, 0);

    Rec<T> z({1, 2, 3, 4, 5, 6}, true);
    EXPECT_EQ(DSP(i_zinter)(&z), 0);
    EXPECT_EQ(z->delta, T(0.5));
    expect_values<T>(*z, {1, 2, 0, 0, 3, 4, 0, 0, 5, 6, 0, 0});

    // Empty and one-point records.
    Rec<T> e, one{7};
    for (sig<T> *r : {e.get(), one.get()}) {
        const int n = r->n;
        EXPECT_EQ(DSP(i_rev)(r), 0);
        EXPECT_EQ(DSP(i_swap_halves)(r), 0);
        EXPECT_EQ(DSP(i_swap_halves2)(r), 0);
        EXPECT_EQ(DSP(i_sort)(r), 0);
        EXPECT_EQ(r->n, n);
        EXPECT_EQ(DSP(i_zinter)(r), 0);
        EXPECT_EQ(r->n, 2 * n);
    }
    expect_values<T>(*one, {7, 0});
}

TYPED_TEST(Rearrange, SortOrder) {
    using T = TypeParam;
    Rec<T> r{3, -1, 2, -7, 0, 2};
    EXPECT_EQ(DSP(i_sort)(&r), 0);
    expect_values<T>(*r, {-7, -1, 0, 2, 2, 3});

    // Complex: squared magnitude, then real part, then imaginary part.
    Rec<T> c({3, 0, 0, -1, -1, 0, 0, 1, 1, 0}, true);
    EXPECT_EQ(DSP(i_sort)(&c), 0);
    expect_values<T>(*c, {-1, 0, 0, -1, 0, 1, 1, 0, 3, 0});

    // Components beyond L all count as L^2: the huge points tie and go by
    // real part, then by imaginary part, whatever their true magnitudes.
    const T L = dsp::precision<T>::large;
    Rec<T> h({2 * L, 0, 0, 3 * L, 0, 2 * L, 1, 0}, true);
    EXPECT_EQ(DSP(i_sort)(&h), 0);
    expect_values<T>(*h, {1, 0, 0, 2 * L, 0, 3 * L, 2 * L, 0});
}
