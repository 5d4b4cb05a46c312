// Record lifecycle, sizing, append, copy, compare and the allocator hooks;
// the internal result preparation, tolerant comparison and index helpers;
// sub-ranges, precision conversion, magnitudes and square roots.
#include "frame/record.hpp"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "frame/prepare.hpp"
#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Record : public ::testing::Test {
 protected:
    void TearDown() override {
        // Every test leaves the system allocator in place.
        pick<T>(dspf_lib_alloc, dsp_lib_alloc)(nullptr, nullptr);
        pick<T>(dspf_lib_realloc, dsp_lib_realloc)(nullptr, nullptr);
        pick<T>(dspf_lib_free, dsp_lib_free)(nullptr, nullptr);
    }
};
template <class T>
class Prepare : public Record<T> {};
template <class T>
class Utility : public Record<T> {};
TYPED_TEST_SUITE(Record, Precisions);
TYPED_TEST_SUITE(Prepare, Precisions);
TYPED_TEST_SUITE(Utility, Precisions);

// Counters and behaviour switches of the test hooks, per precision.
template <class T>
struct hook_log {
    static inline int allocs = 0, reallocs = 0, frees = 0, last_prev_n = -1, last_prev_cplx = -1;
    static inline bool fail = false;
    static void reset() {
        allocs = reallocs = frees = 0, last_prev_n = last_prev_cplx = -1, fail = false;
    }
    static size_t bytes(const sig<T> *x) { return size_t(x->cplx ? 2 * x->n : x->n) * sizeof(T); }
    static void on_alloc(sig<T> *x) {
        ++allocs;
        if (x->alloc > 0) std::free(x->data);
        x->data = fail ? nullptr : static_cast<T *>(std::malloc(bytes(x)));
    }
    static void on_realloc(sig<T> *x, int prev_n, int prev_cplx) {
        ++reallocs, last_prev_n = prev_n, last_prev_cplx = prev_cplx;
        // As realloc: a failure keeps the old block.
        x->data = fail ? nullptr : static_cast<T *>(std::realloc(x->data, bytes(x)));
    }
    static void on_free(sig<T> *x) { ++frees, std::free(x->data); }
};

TYPED_TEST(Record, InitDestroyAndVersion) {
    using T = TypeParam;
    auto expect_reset = [](const sig<T> &x) {
        EXPECT_TRUE(x.delta == T(1) && x.data == nullptr && x.alloc == 0 && x.n == 0 &&
                    x.cplx == 0 && x.reserved == 0);
    };
    sig<T> x;
    std::memset(&x, 0x5a, sizeof x);
    EXPECT_EQ(DSP(_init)(&x), 0);
    expect_reset(x);
    x.n = 3, x.cplx = 1;
    ASSERT_EQ(DSP(_alloc)(&x), 0);
    EXPECT_EQ(x.alloc, 6);
    x.reserved = 77, x.delta = T(0.25);
    EXPECT_EQ(DSP(_destroy)(&x), 0);
    expect_reset(x);
    EXPECT_EQ(DSP(_destroy)(&x) + DSP(_lib_init)(), 0);  // reusable, nothing to free
    EXPECT_EQ(DSP(_version)(), 205);
}

TYPED_TEST(Record, SizingGrowsOnlyAndCopiesCallerStorage) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3, 4});
    T *const block = x->data;
    // As complex: 2 points fit the 4 scalars (block and contents kept), 1
    // never shrinks it, 3 get a new block of exactly the needed count.
    for (int n : {2, 1, 3}) {
        x->n = n, x->cplx = 1;
        EXPECT_EQ(DSP(_alloc)(&x), 0);
        EXPECT_EQ(x->alloc, std::max(4, 2 * n));
        EXPECT_TRUE(n == 3 || (x->data == block && x->data[3] == T(4)));
    }
    // A negative alloc counts as 0: an empty record needs nothing, a
    // non-empty one gets a fresh block and the caller's storage stays.
    T caller[6] = {7, 8, 3, 4, 5, 6};
    Rec<T> w;
    *w = wrap(caller, 0);
    w->alloc = -5;
    EXPECT_EQ(DSP(_alloc)(&w), 0);
    EXPECT_EQ(w->data, caller);
    w->n = 2;
    EXPECT_EQ(DSP(_alloc)(&w), 0);
    EXPECT_TRUE(w->data != caller && w->alloc == 2);
    // Realloc keeps the leading points.
    Rec<T> r({1, 2, 3});
    r->n = 5;
    EXPECT_EQ(DSP(_realloc)(&r, 3, 0), 0);
    EXPECT_TRUE(r->alloc == 5 && r->data[0] == T(1) && r->data[2] == T(3));
    // On caller storage the old points (no more than the new shape needs)
    // move into a fresh owned block; the caller's array is never written.
    for (int n : {3, 1}) {
        Rec<T> c;
        *c = wrap(caller, n, true);
        EXPECT_EQ(DSP(_realloc)(&c, 2, 1), 0);
        EXPECT_TRUE(c->data != caller && c->alloc == 2 * n);
        for (int i = 0; i < std::min(2 * n, 4); ++i) EXPECT_EQ(c->data[i], caller[i]);
    }
    EXPECT_EQ(std::vector<T>(caller, caller + 6), (std::vector<T>{7, 8, 3, 4, 5, 6}));
}

TYPED_TEST(Record, HooksAndFailingAllocation) {
    using T = TypeParam;
    using H = hook_log<T>;
    H::reset();
    typename dsp::hooks<T>::alloc_fn prev_alloc = reinterpret_cast<decltype(prev_alloc)>(1);
    EXPECT_EQ(DSP(_lib_alloc)(H::on_alloc, &prev_alloc), 0);
    EXPECT_EQ(prev_alloc, nullptr);  // the system allocator was in place
    EXPECT_EQ(DSP(_lib_realloc)(H::on_realloc, nullptr) + DSP(_lib_free)(H::on_free, nullptr), 0);
    sig<T> x;
    DSP(_init)(&x);
    x.n = 4;
    EXPECT_EQ(DSP(_alloc)(&x), 0);
    EXPECT_EQ(DSP(_alloc)(&x), 0);  // already large enough: no call
    x.data[3] = T(9);
    x.n = 8;
    EXPECT_EQ(DSP(_realloc)(&x, 4, 0), 0);
    EXPECT_TRUE(H::last_prev_n == 4 && H::last_prev_cplx == 0 && x.data[3] == T(9));
    EXPECT_EQ(DSP(_destroy)(&x), 0);
    EXPECT_TRUE(H::allocs == 1 && H::reallocs == 1 && H::frees == 1);
    // Destroying a record that does not own its storage calls no hook.
    T caller[1] = {T(1)};
    x = wrap(caller, 1);
    EXPECT_EQ(DSP(_destroy)(&x), 0);
    EXPECT_EQ(H::frees, 1);
    // The previous hook comes back and restores the state.
    typename dsp::hooks<T>::alloc_fn got = nullptr;
    EXPECT_EQ(DSP(_lib_alloc)(nullptr, &got), 0);
    EXPECT_EQ(got, &H::on_alloc);
    DSP(_lib_free)(nullptr, nullptr);
    x.n = 2;
    EXPECT_EQ(DSP(_alloc)(&x), 0);
    DSP(_destroy)(&x);
    EXPECT_TRUE(H::allocs == 1 && H::frees == 1);
    // The other precision's hooks are separate.
    DSP(_lib_alloc)(H::on_alloc, nullptr);
    if constexpr (std::is_same_v<T, float>) {
        Rec<double> d({1, 2, 3});
        EXPECT_EQ(H::allocs, 1);
    }
    // A failing allocation leaves nothing owned; a failed reallocation
    // releases the old block through the free hook.
    DSP(_lib_realloc)(H::on_realloc, nullptr);
    DSP(_lib_free)(H::on_free, nullptr);
    Rec<T> f({1, 2}), y({1, 2, 3}), a({1}), b({2, 3});
    const int frees = H::frees;
    H::fail = true;
    f->n = 10;
    EXPECT_EQ(DSP(_alloc)(&f), -1);
    y->n = 4, y->cplx = 1;
    EXPECT_EQ(DSP(_realloc)(&y, 3, 0), -1);
    // Append reports the failed growth with the new count already set.
    EXPECT_EQ(DSP(_append)(&a, &b), -1);
    EXPECT_EQ(a->n, 3);
    for (auto *r : {&f, &y, &a}) EXPECT_TRUE(r->alloc == 0 && r->data == nullptr);
    EXPECT_EQ(H::frees, frees + 2);
}

TYPED_TEST(Record, AppendAndCopy) {
    using T = TypeParam;
    using V = std::vector<T>;
    // Real + real (a keeps its own delta), complex to real (a becomes complex
    // first), real to complex (imaginary parts 0), empty source.
    struct Case {
        bool ac, bc;
        V a, b, want;
    };
    for (const Case &c : {Case{false, false, {1, 2}, {3}, {1, 2, 3}},
                          {false, false, {1}, {}, {1}},
                          {false, true, {1, 2}, {3, 4}, {1, 0, 2, 0, 3, 4}},
                          {true, false, {1, 2}, {5, 6}, {1, 2, 5, 0, 6, 0}}}) {
        Rec<T> a(c.a, c.ac, T(0.5)), b(c.b, c.bc, T(4));
        ASSERT_EQ(DSP(_append)(&a, &b), 0);
        EXPECT_TRUE(a->delta == T(0.5) && a->cplx == int(c.ac || c.bc));
        expect_values<T>(*a, c.want);
    }
    // To itself: owned storage that has to move; then a real record sharing
    // the complex destination's block.
    Rec<T> a({1, 2, 3, 4}, true);
    ASSERT_EQ(DSP(_append)(&a, &a), 0);
    expect_values<T>(*a, {1, 2, 3, 4, 1, 2, 3, 4});
    sig<T> view = *a;
    view.cplx = 0, view.n = 3, view.alloc = 0;
    ASSERT_EQ(DSP(_append)(&a, &view), 0);
    expect_values<T>(*a, {1, 2, 3, 4, 1, 2, 3, 4, 1, 0, 2, 0, 3, 0});
    // To itself, wrapping a caller's array: grown into an owned block.
    T caller[3] = {1, 2, 3};
    Rec<T> w;
    *w = wrap(caller, 3);
    ASSERT_EQ(DSP(_append)(&w, &w), 0);
    expect_values<T>(*w, {1, 2, 3, 1, 2, 3});
    EXPECT_EQ(V(caller, caller + 3), (V{1, 2, 3}));
    // Copy (delta too), at most m points (clipped; negative: none), onto itself.
    Rec<T> src({1, 2, 3, 4, 5, 6}, true, T(0.125)), dst({9});
    EXPECT_OK(DSP(_copy)(&dst, &src), *dst, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(dst->delta, T(0.125));
    EXPECT_OK(DSP(_copy_at_most)(&dst, &src, 2), *dst, {1, 2, 3, 4});
    ASSERT_EQ(DSP(_copy_at_most)(&dst, &src, 99), 0);
    EXPECT_EQ(dst->n, 3);
    ASSERT_EQ(DSP(_copy_at_most)(&dst, &src, -4), 0);
    EXPECT_TRUE(dst->n == 0 && dst->cplx && dst->delta == T(0.125));
    EXPECT_OK(DSP(_copy)(&src, &src), *src, {1, 2, 3, 4, 5, 6});
}

TYPED_TEST(Record, CompareWithTolerance) {
    using T = TypeParam;
    auto cmp = [](Rec<T> &a, Rec<T> &b, T tol) {
        int r = 42;
        EXPECT_EQ(DSP(_cmp)(&a, &b, tol, &r), 0);
        return r;
    };
    int r = 42;
    Rec<T> a({1, 2, 3}), b({1, 2}), c({1, 2, 3}, false, T(1.5)), d({1, 5, 0});
    EXPECT_EQ(DSP(_cmp)(&a, &b, T(0), &r), -1);
    EXPECT_EQ(r, 42);
    EXPECT_EQ(cmp(a, c, T(0.1)), -1);  // delta decides before any sample
    EXPECT_EQ(cmp(c, a, T(0.1)), 1);
    EXPECT_EQ(cmp(c, a, T(0.5)), 0);   // a difference equal to the tolerance counts as equal
    EXPECT_EQ(cmp(a, d, T(0.5)), -1);  // the first difference decides (2 < 5)
    // Complex against real: the imaginary part is compared with 0, after
    // the real part.
    Rec<T> z({1, 0, 2, 0.25, 3, 0}, true), w({1, 0, 2, 0, 2.5, 9}, true), e1, e2;
    EXPECT_EQ(cmp(z, a, T(0.1)), 1);
    EXPECT_EQ(cmp(a, z, T(0.1)), -1);
    EXPECT_EQ(cmp(a, z, T(0.25)), 0);
    EXPECT_EQ(cmp(w, a, T(0.1)), -1);
    EXPECT_EQ(cmp(e1, e2, T(0)), 0);
}

TYPED_TEST(Prepare, BinaryResult) {
    using T = TypeParam;
    Rec<T> a({1, 2, 3}), b({4, 5, 6, 7, 8, 9}, true, T(2)), c({1, 2}), r({42});
    EXPECT_EQ(dsp::prepare_binary_result<T>(*a, *c, *r), -1);
    expect_values<T>(*r, {42});  // untouched
    ASSERT_EQ(dsp::prepare_binary_result<T>(*a, *b, *r), 0);
    EXPECT_TRUE(r->delta == T(1.5) && r->cplx && r->n == 3 && r->alloc >= 6);  // mean delta
    // In place with a real a and a complex b: a becomes complex and its real
    // scalars stay readable at the front of the grown block.
    ASSERT_EQ(dsp::prepare_binary_result<T>(*a, *b, *a), 0);
    EXPECT_TRUE(a->cplx && a->alloc >= 6 && a->delta == T(1.5));
    EXPECT_TRUE(a->data[0] == T(1) && a->data[2] == T(3));
}

TYPED_TEST(Prepare, ResultScratchStateAndRelease) {
    using T = TypeParam;
    // Nothing built by earlier tests: the release below counts this test's records.
    ASSERT_EQ(DSP(_free_internal)(), 0);
    Rec<T> in({1, 2, 3, 4}, true, T(0.5)), coef({1, 1}), state({7}), out;
    // Not in place: the caller's record is sized directly. The state takes
    // the input's kind and spacing and is padded with zeros.
    sig<T> *slot = out.get(), *state_slot = state.get();
    ASSERT_EQ(dsp::prepare_result<T>(*in, &slot, coef.get(), &state_slot, 3, dsp::PREP_INPLACE), 0);
    EXPECT_EQ(slot, out.get());
    EXPECT_TRUE(out->n == 2 && out->cplx && out->delta == T(0.5));
    EXPECT_TRUE(state->cplx && state->delta == T(0.5));
    expect_values<T>(*state, {7, 0, 0, 0, 0, 0});
    EXPECT_EQ(dsp::finish_result<T>(*slot), 0);
    // In place: the operation writes the scratch record and finish_result
    // copies it into the caller's record.
    auto in_place = [&](T first) {
        slot = in.get();
        ASSERT_EQ(dsp::prepare_result<T>(*in, &slot, nullptr, nullptr, 0, dsp::PREP_INPLACE), 0);
        ASSERT_NE(slot, in.get());
        for (int i = 0; i < 4; ++i) slot->data[i] = first + T(10 * i);
        EXPECT_NE(in->data[0], first);
        EXPECT_EQ(dsp::finish_result<T>(*slot), 0);
        expect_values<T>(*in, {first, first + 10, first + 20, first + 30});
    };
    in_place(T(10));
    EXPECT_EQ(dsp::finish_result<T>(*in), 0);  // nothing pending
    expect_values<T>(*in, {10, 20, 30, 40});
    // PREP_KEEP_N keeps the caller's n; a complex coefficient record makes
    // the result complex.
    Rec<T> real_in({1, 2, 3}), cplx_coef({1, 0}, true), kept;
    kept->n = 5;
    slot = kept.get();
    ASSERT_EQ(
        dsp::prepare_result<T>(*real_in, &slot, cplx_coef.get(), nullptr, 0, dsp::PREP_KEEP_N), 0);
    EXPECT_TRUE(kept->n == 5 && kept->cplx);
    // The internal state record is lent to a null state slot.
    sig<T> *lent = nullptr;
    slot = out.get();
    ASSERT_EQ(dsp::prepare_result<T>(*real_in, &slot, nullptr, &lent, 12, dsp::PREP_INTERNAL_STATE),
              0);
    ASSERT_NE(lent, nullptr);
    EXPECT_TRUE(lent->n == 12 && !lent->cplx);
    // Release: both scratch records are destroyed through the free hook,
    // harmlessly twice, and rebuilt on the next use.
    static int frees;
    frees = 0;
    DSP(_lib_free)([](sig<T> *x) { ++frees, std::free(x->data); }, nullptr);
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_EQ(DSP(_free_internal)(), 0);
        EXPECT_EQ(frees, 2);
    }
    DSP(_lib_free)(nullptr, nullptr);
    in_place(T(5));
}

TYPED_TEST(Prepare, ApproxEqualAndIndices) {
    using T = TypeParam;
    using P = dsp::precision<T>;
    const T above = std::nextafter(P::tiny, T(1));
    // clang-format off
    const struct { T x, y; int want; } eq[] = {
        {3, 3, 1}, {1, -1, 0}, {0, P::tiny, 1}, {0, P::tiny * T(2), 0}, {0, pick<T>(1e-38f, 1e-307), 1},
        {1, P::tol_hi, 1}, {1, std::nextafter(P::tol_hi, T(2)), 0},
        {1, P::tol_lo, 1}, {1, std::nextafter(P::tol_lo, T(0)), 0},
        // Asymmetric: a reference inside the tiny band only accepts tiny values.
        {P::tiny, above, 0}, {above, P::tiny, 1}};
    // clang-format on
    for (const auto &c : eq) EXPECT_EQ(dsp::approx_equal<T>(c.x, c.y), c.want) << c.x << " " << c.y;
    // Position, floor_index, ceil_index (-1: not checked). Just below an
    // integer counts as that integer for floor_index, just above for ceil_index.
    const int32_t big =
        int32_t(std::min<double>(std::floor(double(P::index_big * P::tol_hi)), 2147483647.0));
    // clang-format off
    const struct { T x; int32_t fl, ce; } idx[] = {
        {T(-0.1), 0, 0}, {T(3e9), 0x7ffffffe, 0x7ffffffe}, {T(2.5), 2, 3}, {T(0.25), 0, 1}, {0, 0, 0},
        {1 - P::tol_eps / 2, 1, 1}, {P::tol_eps / 2, 0, 0}, {T(2.99999), 2, 3},
        {std::nextafter(T(3), T(0)), 3, 3}, {std::nextafter(T(3), T(4)), 3, 3},
        {std::numeric_limits<T>::quiet_NaN(), 0, -1}, {P::index_big, big, -1}};
    // clang-format on
    for (const auto &c : idx) {
        EXPECT_EQ(dsp::floor_index<T>(c.x), c.fl) << c.x;
        EXPECT_EQ(c.ce < 0 ? c.ce : dsp::ceil_index<T>(c.x), c.ce) << c.x;
    }
    EXPECT_EQ(P::large, pick<T>(999999986991104.0f, 1e100));
}

TYPED_TEST(Utility, SubvecAndTof) {
    using T = TypeParam;
    Rec<T> src({0, 1, 2, 3}, false, T(0.5)), c({0, 10, 1, 11, 2, 12}, true), dst;
    // First point and count are clipped to the record.
    const struct {
        int first, count;
        std::vector<T> want;
    } cases[] = {{-3, 5, {0, 1, 2, 3}}, {10, 2, {}}, {1, -2, {}}, {3, 7, {3}}};
    for (const auto &k : cases) {
        EXPECT_OK(DSP(u_subvec)(&src, &dst, k.first, k.count), *dst, k.want);
        EXPECT_EQ(dst->delta, T(0.5));
    }
    EXPECT_OK(DSP(u_subvec)(&c, &dst, 1, 2), *dst, {1, 11, 2, 12});
    EXPECT_TRUE(dst->cplx);
    EXPECT_OK(DSP(u_subvec)(&src, &src, 2, 2), *src, {2, 3});  // in place
    // In place on a caller's array: the points come from the array into a
    // fresh block and the array is not written.
    T caller[5] = {5, 6, 7, 8, 9};
    Rec<T> w;
    *w = wrap(caller, 5);
    EXPECT_OK(DSP(u_subvec)(&w, &w, 1, 3), *w, {6, 7, 8});
    EXPECT_EQ(std::vector<T>(caller, caller + 5), (std::vector<T>{5, 6, 7, 8, 9}));
    // To single precision: kind and spacing kept; onto itself refused, unchanged.
    Rec<T> z({1.25, -2, 3, 1e-3}, true, T(0.1));
    Rec<float> f;
    ASSERT_EQ(DSP(u_tof)(&z, &f), 0);
    EXPECT_TRUE(f->cplx && f->delta == float(T(0.1)));
    expect_values<float>(*f, {1.25f, -2.f, 3.f, float(T(1e-3))});
    if constexpr (std::is_same_v<T, float>) {
        EXPECT_EQ(dspfu_tof(&z, &z), -1);
        expect_values<float>(*z, {1.25f, -2.f, 3.f, 1e-3f});
    }
}

TYPED_TEST(Utility, MagnitudesAndRoots) {
    using T = TypeParam;
    using V = std::vector<T>;
    constexpr T L = dsp::precision<T>::large;
    const T big = T(L * 10), r2 = T(std::sqrt(2.0)), r45 = T(std::sqrt(4.5));
    auto out = [](auto op, Rec<T> &in) {
        Rec<T> r;
        EXPECT_EQ(op(&in, &r), 0);
        EXPECT_TRUE(!r->cplx || op == DSP(u_sqrt));
        EXPECT_EQ(r->delta, in->delta);
        return r.values();
    };
    Rec<T> c({3, 4, -5, 12, 0, 0}, true, T(2)), h({big, big, -big, 0}, true), real({-3, big});
    EXPECT_EQ(out(DSP(u_magsq), c), (V{25, 169, 0}));
    // No overflow for huge parts: hypot for the magnitude, L for the square.
    EXPECT_NEAR(double(out(DSP(u_mag), h)[0]), double(big) * std::sqrt(2.0),
                double(big) * ulps<T>());
    EXPECT_EQ(out(DSP(u_magsq), h), (V{L, L}));
    EXPECT_EQ(out(DSP(u_magsq), real), (V{9, L}));
    EXPECT_EQ(out(DSP(u_mag), real), (V{3, big}));
    EXPECT_OK(DSP(u_mag)(&c, &c), *c, {5, 13, 0});  // in place, complex to real
    // In place on a caller's complex array: the array is never written.
    T caller[4] = {6, 8, 0, -2};
    Rec<T> w;
    *w = wrap(caller, 2, true);
    EXPECT_OK(DSP(u_magsq)(&w, &w), *w, {100, 4});
    EXPECT_TRUE(caller[0] == T(6) && caller[1] == T(8));
    Rec<T> s({4, -4, 2}), z({-4, 0, 0, 0, 3, 4, 0, -9}, true), zh({big, 0}, true);
    EXPECT_OK(DSP(u_sqrt)(&z, &z), *z, {0, 2, 0, 0, 2, 1, r45, -r45}, 4 * ulps<T>());
    const V sq = out(DSP(u_sqrt), s), sqh = out(DSP(u_sqrt), zh);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(sq[i], (V{2, 0, r2})[i], ulps<T>());
    // A part beyond L makes the modulus L, so the root's magnitude is sqrt(L).
    EXPECT_NEAR(double(sqh[0]), std::sqrt(double(L)), std::sqrt(double(L)) * ulps<T>());
}
