// Record lifecycle, sizing, append, copy, compare and the allocator hooks.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "frame/record.hpp"
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
    static inline int allocs = 0, reallocs = 0, frees = 0;
    static inline int last_prev_n = -1, last_prev_cplx = -1;
    static inline bool fail = false;
    static void reset() { allocs = reallocs = frees = 0; last_prev_n = last_prev_cplx = -1; fail = false; }
    static size_t bytes(const sig<T> *x) { return size_t(x->cplx ? 2 * x->n : x->n) * sizeof(T); }
    static void on_alloc(sig<T> *x) {
        ++allocs;
        if (x->alloc > 0) std::free(x->data);
        x->data = fail ? nullptr : static_cast<T *>(std::malloc(bytes(x)));
    }
    static void on_realloc(sig<T> *x, int prev_n, int prev_cplx) {
        ++reallocs;
        last_prev_n = prev_n;
        last_prev_cplx = prev_cplx;
        if (fail) {
            std::free(x->data);  // the test hook does not leak the old block
            x->data = nullptr;
        } else {
            x->data = static_cast<T *>(std::realloc(x->data, bytes(x)));
        }
    }
    static void on_free(sig<T> *x) {
        ++frees;
        std::free(x->data);
    }
};

TYPED_TEST(Record, InitDestroyAndVersion) {
    using T = TypeParam;
    sig<T> x;
    std::memset(&x, 0x5a, sizeof x);
    EXPECT_EQ(DSP(_init)(&x), 0);
    EXPECT_EQ(x.delta, T(1));
    EXPECT_EQ(x.data, nullptr);
    EXPECT_EQ(x.alloc, 0);
    EXPECT_EQ(x.n, 0);
    EXPECT_EQ(x.cplx, 0);
    EXPECT_EQ(x.reserved, 0);
    x.n = 3;
    x.cplx = 1;
    ASSERT_EQ(DSP(_alloc)(&x), 0);
    EXPECT_EQ(x.alloc, 6);
    x.reserved = 77;
    x.delta = T(0.25);
    EXPECT_EQ(DSP(_destroy)(&x), 0);
    EXPECT_EQ(x.data, nullptr);
    EXPECT_EQ(x.alloc, 0);
    EXPECT_EQ(x.n, 0);
    EXPECT_EQ(x.reserved, 0);
    EXPECT_EQ(x.delta, T(1));
    EXPECT_EQ(DSP(_destroy)(&x), 0);  // reusable, nothing to free
    EXPECT_EQ(DSP(_lib_init)(), 0);
    EXPECT_EQ(DSP(_version)(), 205);
}

TYPED_TEST(Record, AllocOnlyGrows) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3, 4});
    T *const block = x->data;
    x->n = 2;
    x->cplx = 1;  // needs 4 scalars: the block and its contents are kept
    EXPECT_EQ(DSP(_alloc)(&x), 0);
    EXPECT_EQ(x->data, block);
    EXPECT_EQ(x->alloc, 4);
    expect_values<T>(*x, {1, 2, 3, 4});
    x->n = 1;  // smaller: never shrinks
    EXPECT_EQ(DSP(_alloc)(&x), 0);
    EXPECT_EQ(x->alloc, 4);
    x->n = 3;  // larger: a new block of exactly the needed count
    EXPECT_EQ(DSP(_alloc)(&x), 0);
    EXPECT_EQ(x->alloc, 6);

    // A negative alloc counts as 0: an empty record needs nothing, a
    // non-empty one gets a fresh block and the caller's storage stays.
    T caller[2] = {T(7), T(8)};
    sig<T> w;
    DSP(_init)(&w);
    w.data = caller;
    w.alloc = -5;
    EXPECT_EQ(DSP(_alloc)(&w), 0);
    EXPECT_EQ(w.data, caller);
    w.n = 2;
    EXPECT_EQ(DSP(_alloc)(&w), 0);
    EXPECT_NE(w.data, caller);
    EXPECT_EQ(w.alloc, 2);
    EXPECT_EQ(caller[0], T(7));
    DSP(_destroy)(&w);
}

TYPED_TEST(Record, ReallocKeepsLeadingPointsAndCopiesCallerStorage) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3});
    x->n = 5;
    EXPECT_EQ(DSP(_realloc)(&x, 3, 0), 0);
    EXPECT_EQ(x->alloc, 5);
    EXPECT_EQ(x->data[0], T(1));
    EXPECT_EQ(x->data[2], T(3));

    // A record wrapping a caller's array: the old points move into a fresh
    // owned block; the caller's array is neither written nor freed.
    T caller[4] = {1, 2, 3, 4};  // two complex points
    sig<T> w;
    DSP(_init)(&w);
    w.data = caller;
    w.n = 2;
    w.cplx = 1;
    w.n = 3;
    EXPECT_EQ(DSP(_realloc)(&w, 2, 1), 0);
    EXPECT_NE(w.data, caller);
    EXPECT_EQ(w.alloc, 6);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(w.data[i], caller[i]);
    EXPECT_EQ(caller[3], T(4));
    DSP(_destroy)(&w);

    // The copy is limited to what the new shape needs.
    T wide[6] = {1, 2, 3, 4, 5, 6};
    DSP(_init)(&w);
    w.data = wide;
    w.n = 1;  // previously 3 complex points, now 1 complex point: 2 scalars
    w.cplx = 1;
    w.alloc = 0;
    EXPECT_EQ(DSP(_realloc)(&w, 3, 1), 0);
    EXPECT_EQ(w.alloc, 2);
    EXPECT_EQ(w.data[1], T(2));
    DSP(_destroy)(&w);
}

TYPED_TEST(Record, HooksAreCalledReturnedAndRestored) {
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
    EXPECT_EQ(H::last_prev_n, 4);
    EXPECT_EQ(H::last_prev_cplx, 0);
    EXPECT_EQ(x.data[3], T(9));
    EXPECT_EQ(DSP(_destroy)(&x), 0);
    EXPECT_EQ(H::allocs, 1);
    EXPECT_EQ(H::reallocs, 1);
    EXPECT_EQ(H::frees, 1);

    // Destroying a record that does not own its storage calls no hook.
    T caller[1] = {T(1)};
    x.data = caller;
    x.n = 1;
    EXPECT_EQ(DSP(_destroy)(&x), 0);
    EXPECT_EQ(H::frees, 1);

    // The previous hook comes back and restores the state.
    typename dsp::hooks<T>::alloc_fn got = nullptr;
    EXPECT_EQ(DSP(_lib_alloc)(nullptr, &got), 0);
    EXPECT_EQ(got, &H::on_alloc);
    x.n = 2;
    EXPECT_EQ(DSP(_alloc)(&x), 0);
    EXPECT_EQ(H::allocs, 1);
    DSP(_lib_free)(nullptr, nullptr);
    DSP(_destroy)(&x);
    EXPECT_EQ(H::frees, 1);

    // The other precision's hooks are separate.
    if constexpr (std::is_same_v<T, float>) {
        DSP(_lib_alloc)(H::on_alloc, nullptr);
        dsp_signal d;
        dsp_init(&d);
        d.n = 3;
        EXPECT_EQ(dsp_alloc(&d), 0);
        dsp_destroy(&d);
        EXPECT_EQ(H::allocs, 1);
    }
}

TYPED_TEST(Record, FailingAllocationLeavesNothingOwned) {
    using T = TypeParam;
    using H = hook_log<T>;
    H::reset();
    DSP(_lib_alloc)(H::on_alloc, nullptr);
    DSP(_lib_realloc)(H::on_realloc, nullptr);
    Rec<T> x({1, 2});
    H::fail = true;
    x->n = 10;
    EXPECT_EQ(DSP(_alloc)(&x), -1);
    EXPECT_EQ(x->alloc, 0);
    EXPECT_EQ(x->data, nullptr);

    Rec<T> y;
    H::fail = false;
    y.set({1, 2, 3});
    H::fail = true;
    y->n = 4;
    y->cplx = 1;
    EXPECT_EQ(DSP(_realloc)(&y, 3, 0), -1);
    EXPECT_EQ(y->alloc, 0);
    EXPECT_EQ(y->data, nullptr);

    // Append reports the failed growth with the new count already set.
    Rec<T> a, b;
    H::fail = false;
    a.set({1});
    b.set({2, 3});
    H::fail = true;
    EXPECT_EQ(DSP(_append)(&a, &b), -1);
    EXPECT_EQ(a->n, 3);
    EXPECT_EQ(a->alloc, 0);
}

TYPED_TEST(Record, Append) {
    using T = TypeParam;
    {  // real + real; a keeps its own delta
        Rec<T> a({1, 2}, false, T(0.5)), b({3}, false, T(4));
        ASSERT_EQ(DSP(_append)(&a, &b), 0);
        EXPECT_EQ(a->delta, T(0.5));
        expect_values<T>(*a, {1, 2, 3});
    }
    {  // complex appended to real: a becomes complex first
        Rec<T> a({1, 2}), b({3, 4}, true);
        ASSERT_EQ(DSP(_append)(&a, &b), 0);
        EXPECT_TRUE(a->cplx);
        expect_values<T>(*a, {1, 0, 2, 0, 3, 4});
    }
    {  // real appended to complex: imaginary parts 0
        Rec<T> a({1, 2}, true), b({5, 6});
        ASSERT_EQ(DSP(_append)(&a, &b), 0);
        expect_values<T>(*a, {1, 2, 5, 0, 6, 0});
    }
    {  // to itself: owned storage that has to move
        Rec<T> a({1, 2, 3, 4}, true);
        ASSERT_EQ(DSP(_append)(&a, &a), 0);
        expect_values<T>(*a, {1, 2, 3, 4, 1, 2, 3, 4});
    }
    {  // to itself, wrapping a caller's array: grown into an owned block
        T caller[3] = {1, 2, 3};
        sig<T> a;
        DSP(_init)(&a);
        a.data = caller;
        a.n = 3;
        ASSERT_EQ(DSP(_append)(&a, &a), 0);
        expect_values<T>(a, {1, 2, 3, 1, 2, 3});
        EXPECT_NE(a.data, caller);
        EXPECT_EQ(caller[2], T(3));
        DSP(_destroy)(&a);
    }
    {  // a real record sharing a complex destination's block
        Rec<T> a({1, 2, 3, 4}, true);
        sig<T> view = *a;
        view.cplx = 0;
        view.n = 3;
        view.alloc = 0;
        ASSERT_EQ(DSP(_append)(&a, &view), 0);
        expect_values<T>(*a, {1, 2, 3, 4, 1, 0, 2, 0, 3, 0});
    }
    {  // empty source
        Rec<T> a({1}), b;
        ASSERT_EQ(DSP(_append)(&a, &b), 0);
        expect_values<T>(*a, {1});
    }
}

TYPED_TEST(Record, CopyAndCopyAtMost) {
    using T = TypeParam;
    Rec<T> src({1, 2, 3, 4, 5, 6}, true, T(0.125));
    Rec<T> dst({9});
    ASSERT_EQ(DSP(_copy)(&dst, &src), 0);
    EXPECT_EQ(dst->delta, T(0.125));
    expect_values<T>(*dst, {1, 2, 3, 4, 5, 6});
    ASSERT_EQ(DSP(_copy_at_most)(&dst, &src, 2), 0);
    expect_values<T>(*dst, {1, 2, 3, 4});
    ASSERT_EQ(DSP(_copy_at_most)(&dst, &src, 99), 0);
    EXPECT_EQ(dst->n, 3);
    ASSERT_EQ(DSP(_copy_at_most)(&dst, &src, -4), 0);
    EXPECT_EQ(dst->n, 0);
    EXPECT_TRUE(dst->cplx);
    EXPECT_EQ(dst->delta, T(0.125));
    ASSERT_EQ(DSP(_copy)(&src, &src), 0);  // onto itself: unchanged
    expect_values<T>(*src, {1, 2, 3, 4, 5, 6});
}

TYPED_TEST(Record, CompareWithTolerance) {
    using T = TypeParam;
    int r = 42;
    Rec<T> a({1, 2, 3}), b({1, 2});
    EXPECT_EQ(DSP(_cmp)(&a, &b, T(0), &r), -1);
    EXPECT_EQ(r, 42);

    Rec<T> c({1, 2, 3}, false, T(1.5));
    EXPECT_EQ(DSP(_cmp)(&a, &c, T(0.1), &r), 0);
    EXPECT_EQ(r, -1);  // delta decides before any sample
    EXPECT_EQ(DSP(_cmp)(&c, &a, T(0.1), &r), 0);
    EXPECT_EQ(r, 1);
    EXPECT_EQ(DSP(_cmp)(&c, &a, T(0.5), &r), 0);
    EXPECT_EQ(r, 0);  // a difference equal to the tolerance counts as equal

    Rec<T> d({1, 5, 0});
    EXPECT_EQ(DSP(_cmp)(&a, &d, T(0.5), &r), 0);
    EXPECT_EQ(r, -1);  // the first difference decides (2 < 5)

    // complex against real: the imaginary part is compared with 0
    Rec<T> z({1, 0, 2, 0.25, 3, 0}, true), zr({1, 2, 3});
    EXPECT_EQ(DSP(_cmp)(&z, &zr, T(0.1), &r), 0);
    EXPECT_EQ(r, 1);
    EXPECT_EQ(DSP(_cmp)(&zr, &z, T(0.1), &r), 0);
    EXPECT_EQ(r, -1);
    EXPECT_EQ(DSP(_cmp)(&zr, &z, T(0.25), &r), 0);
    EXPECT_EQ(r, 0);
    Rec<T> w({1, 0, 2, 0, 2.5, 9}, true);
    EXPECT_EQ(DSP(_cmp)(&w, &zr, T(0.1), &r), 0);
    EXPECT_EQ(r, -1);  // real parts decide before the imaginary part
    Rec<T> e1, e2;
    EXPECT_EQ(DSP(_cmp)(&e1, &e2, T(0), &r), 0);
    EXPECT_EQ(r, 0);
}
