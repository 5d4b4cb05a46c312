// The cache of the generic windowing operation.
#include "support/support.hpp"
#include "window/window.hpp"

using namespace dsp_test;

template <class T>
class WindowCache : public ::testing::Test {
 protected:
    void SetUp() override { ASSERT_EQ(DSP_free_internal(), 0); }
    void TearDown() override { EXPECT_EQ(DSP_free_internal(), 0); }
    static int DSP_free_internal() { return pick<T>(dspf_free_internal, dsp_free_internal)(); }
};
TYPED_TEST_SUITE(WindowCache, Precisions);

TYPED_TEST(WindowCache, ReuseAndFirstInFirstOut) {
    using T = TypeParam;
    auto run = [](int n, int kind, int flags) {
        return applied<T>(std::vector<T>(size_t(n), T(1)), false,
                          [&](sig<T> *x) { return DSP(i_window)(x, kind, flags); });
    };
    EXPECT_EQ(dsp::window_cache_used<T>(), 0);
    const std::vector<T> first = run(8, DSP_WINDOW_HANN, 0);
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    const dsp::signal_t<T> *entry = dsp::window_cache_entry<T>(0);
    ASSERT_NE(entry, nullptr);
    const T *storage = entry->data;
    // The same n, kind and masked flags reuse the entry; bits above 3 are not
    // part of the key.
    EXPECT_EQ(run(8, DSP_WINDOW_HANN, 0), first);
    run(8, DSP_WINDOW_HANN, 32);
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    EXPECT_EQ(dsp::window_cache_entry<T>(0)->data, storage);
    // The uniform window never enters the cache.
    run(8, DSP_WINDOW_UNIFORM, 16);
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    // Fifteen more distinct windows fill the ring; the seventeenth replaces
    // the oldest entry, the next one the second oldest.
    for (int i = 1; i < 16; ++i) run(8 + i, DSP_WINDOW_HANN, 0);
    EXPECT_EQ(dsp::window_cache_used<T>(), 16);
    EXPECT_EQ(dsp::window_cache_last<T>(), 15);
    run(100, DSP_WINDOW_BLACKMAN, 1);
    EXPECT_EQ(dsp::window_cache_used<T>(), 16);
    EXPECT_EQ(dsp::window_cache_last<T>(), 0);
    EXPECT_EQ(dsp::window_cache_entry<T>(0)->n, 100);
    EXPECT_EQ(run(8, DSP_WINDOW_HANN, 0), first);  // evicted: generated again
    EXPECT_EQ(dsp::window_cache_last<T>(), 1);
    EXPECT_EQ(dsp::window_cache_entry<T>(1)->n, 8);
    run(9, DSP_WINDOW_HANN, 0);  // entry 1 of the first round was n = 9: now at 2
    EXPECT_EQ(dsp::window_cache_last<T>(), 2);
    // Release: everything goes, the next call builds a new cache.
    ASSERT_EQ(pick<T>(dspf_free_internal, dsp_free_internal)(), 0);
    EXPECT_EQ(dsp::window_cache_used<T>(), 0);
    EXPECT_EQ(dsp::window_cache_entry<T>(0), nullptr);
    EXPECT_EQ(run(8, DSP_WINDOW_HANN, 0), first);
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
}

TYPED_TEST(WindowCache, ExplicitWidthAndFailedGeneration) {
    using T = TypeParam;
    Rec<T> x;
    auto run = [&](T p) {
        x.set(std::vector<T>(16, T(1)));
        EXPECT_EQ(DSP(i_window2)(&x, DSP_WINDOW_HANN, 8 | 2, p), 0);
    };
    run(T(8));
    const std::vector<T> w8 = x.values();
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    // Within the relative tolerance of approx_equal: the same entry.
    run(T(8) * (T(1) + T(4) * std::numeric_limits<T>::epsilon()));
    EXPECT_EQ(dsp::window_cache_used<T>(), 1);
    EXPECT_EQ(x.values(), w8);
    run(T(8.01));
    EXPECT_EQ(dsp::window_cache_used<T>(), 2);
    // Without the width flag the parameter is not part of the key.
    for (T p : {T(1), T(5)}) ASSERT_EQ(DSP(i_window2)(&x, DSP_WINDOW_HANN, 2, p), 0);
    EXPECT_EQ(dsp::window_cache_used<T>(), 3);
    // A symmetric triangle cannot be generated, but its key is stored.
    // A second call finds the key and succeeds without generating.
    x.set({1, 2, 3, 4});
    for (int want : {-1, 0}) {
        EXPECT_EQ(DSP(i_window)(&x, DSP_WINDOW_BARTLETT, 4 | 32), want);
        EXPECT_EQ(dsp::window_cache_used<T>(), 4);
    }
    EXPECT_EQ(x->n, 4);
}
