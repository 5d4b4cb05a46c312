// Record lifecycle, sizing, append, copy, compare and the allocator hooks.
#include "frame/record.hpp"

#include <cstdlib>
#include <cstring>
#include <vector>

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
TYPED_TEST_SUITE(Record, Precisions);

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
    EXPECT_EQ(DSP(_destroy)(&x), 0);  // reusable, nothing to free
    EXPECT_EQ(DSP(_lib_init)(), 0);
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
    EXPECT_NE(w->data, caller);
    EXPECT_EQ(w->alloc, 2);

    // Realloc keeps the leading points.
    Rec<T> r({1, 2, 3});
    r->n = 5;
    EXPECT_EQ(DSP(_realloc)(&r, 3, 0), 0);
    EXPECT_EQ(r->alloc, 5);
    EXPECT_TRUE(r->data[0] == T(1) && r->data[2] == T(3));

    // On caller storage the old points (no more than the new shape needs)
    // move into a fresh owned block; the caller's array is never written.
    for (int n : {3, 1}) {
        Rec<T> c;
        *c = wrap(caller, n, true);
        EXPECT_EQ(DSP(_realloc)(&c, 2, 1), 0);
        EXPECT_NE(c->data, caller);
        EXPECT_EQ(c->alloc, 2 * n);
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
    EXPECT_EQ(DSP(_lib_realloc)(H::on_realloc, nullptr), 0);
    EXPECT_EQ(DSP(_lib_free)(H::on_free, nullptr), 0);

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

TYPED_TEST(Record, Append) {
    using T = TypeParam;
    using V = std::vector<T>;
    // Real + real (a keeps its own delta), complex to real (a becomes complex
    // first), real to complex (imaginary parts 0), empty source.
    // clang-format off
    struct Case { bool ac, bc; V a, b, want; };
    for (const Case &c : {Case{false, false, {1, 2}, {3}, {1, 2, 3}}, Case{false, false, {1}, {}, {1}},
                          Case{false, true, {1, 2}, {3, 4}, {1, 0, 2, 0, 3, 4}},
                          Case{true, false, {1, 2}, {5, 6}, {1, 2, 5, 0, 6, 0}}}) {
        // clang-format on
        Rec<T> a, b;
        a.set(c.a, c.ac, T(0.5));
        b.set(c.b, c.bc, T(4));
        ASSERT_EQ(DSP(_append)(&a, &b), 0);
        EXPECT_EQ(a->delta, T(0.5));
        EXPECT_EQ(a->cplx, int(c.ac || c.bc));
        expect_values<T>(*a, c.want);
    }
    // To itself: owned storage that has to move.
    Rec<T> a({1, 2, 3, 4}, true);
    ASSERT_EQ(DSP(_append)(&a, &a), 0);
    expect_values<T>(*a, {1, 2, 3, 4, 1, 2, 3, 4});
    // A real record sharing a complex destination's block.
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
}

TYPED_TEST(Record, CopyAndCopyAtMost) {
    using T = TypeParam;
    Rec<T> src({1, 2, 3, 4, 5, 6}, true, T(0.125)), dst({9});
    ASSERT_EQ(DSP(_copy)(&dst, &src), 0);
    EXPECT_EQ(dst->delta, T(0.125));
    expect_values<T>(*dst, {1, 2, 3, 4, 5, 6});
    ASSERT_EQ(DSP(_copy_at_most)(&dst, &src, 2), 0);
    expect_values<T>(*dst, {1, 2, 3, 4});
    ASSERT_EQ(DSP(_copy_at_most)(&dst, &src, 99), 0);
    EXPECT_EQ(dst->n, 3);
    ASSERT_EQ(DSP(_copy_at_most)(&dst, &src, -4), 0);
    EXPECT_TRUE(dst->n == 0 && dst->cplx && dst->delta == T(0.125));
    ASSERT_EQ(DSP(_copy)(&src, &src), 0);  // onto itself: unchanged
    expect_values<T>(*src, {1, 2, 3, 4, 5, 6});
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
