// Floating-point control: return conventions, run-fast bits, rounding modes
// and flush-to-zero as observed in arithmetic; the caller's mode restored.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "support/support.hpp"

namespace {

// The control bits: the status bits (condition and exception flags) change
// with every computation in between.
uint32_t control(uint32_t word) { return word & 0x07FF9F00u; }

// Denormal products and operands flushed to zero (volatile: computed at run
// time under the current mode).
bool flushes() {
    volatile float a = 1e-20f, dn = 1e-40f;
    volatile double b = 1e-160, dd = 1e-310;
    EXPECT_EQ(a * a == 0.0f && b * b == 0.0, dn * 1.0f == 0.0f && dd * 1.0 == 0.0);
    return a * a == 0.0f && b * b == 0.0;
}

double third() {
    volatile double one = 1, three = 3;
    return one / three;
}

}  // namespace

TEST(FloatingPointControl, RunFastRoundingAndRestore) {
    const uint32_t word = get_fpscr(), saved = control(word), fast = 0x03000000;
    const uint32_t up = (saved & ~(3u << 22)) | 1u << 22, down = (saved & ~(3u << 22)) | 2u << 22;
    ASSERT_EQ(saved & fast, 0u);  // the process runs with IEEE denormals
    EXPECT_FALSE(flushes());
    // Run-fast on and off: only bits 24 and 25 change; the new word returns.
    EXPECT_EQ(control(set_runfast(1)), saved | fast);
    EXPECT_EQ(control(get_fpscr()), saved | fast);
    EXPECT_TRUE(flushes());
    EXPECT_EQ(control(set_runfast(0)), saved);
    EXPECT_FALSE(flushes());
    // set_fpscr returns the previous word; rounding up and down tell 1/3
    // apart, and run-fast leaves the rounding mode alone.
    const double nearest = third();
    EXPECT_EQ(control(set_fpscr(up)), saved);
    EXPECT_EQ(control(set_runfast(7)), up | fast);
    const double above = third();
    EXPECT_EQ(control(set_fpscr(down)), up | fast);
    EXPECT_EQ(control(get_fpscr()), down);
    const double below = third();
    EXPECT_EQ(control(set_fpscr(word)), down);
    EXPECT_GT(above, below);
    EXPECT_TRUE(nearest == above || nearest == below);
    EXPECT_EQ(third(), nearest);
    EXPECT_EQ(control(get_fpscr()), saved);
}

namespace {

template <class T>
class RunFast : public ::testing::Test {};
TYPED_TEST_SUITE(RunFast, dsp_test::Precisions);

}  // namespace

// The library's own products under run-fast: denormal results of both
// multiplications (one by one and, in vfpsbMul2, the groups of 16) become
// zeros, and are kept once it is off again; the caller's word comes back.
TYPED_TEST(RunFast, KernelsFlushDenormalProducts) {
    using T = TypeParam;
    const uint32_t word = get_fpscr();
    const T tiny = dsp_test::pick<T>(1e-20f, 1e-160), denormal = tiny * tiny;
    ASSERT_NE(denormal, T(0));
    for (int fast : {1, 0}) {
        set_runfast(fast);
        std::vector<T> one(37, tiny), two(37, tiny);
        VFPB(Mul1)(tiny, one.data(), 37);
        VFPB(Mul2)(tiny, two.data(), 37);
        const T want = fast ? T(0) : denormal;
        EXPECT_EQ(one, std::vector<T>(37, want)) << fast;
        EXPECT_EQ(two, std::vector<T>(37, want)) << fast;
    }
#if defined(__arm__) || defined(__aarch64__)
    // Default NaN (ARM only; elsewhere DN is a stored bit): a NaN operand's
    // payload is dropped while run-fast is on.
    using Bits = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
    const Bits payload = dsp_test::pick<T>(0x7FC01234u, 0x7FF8000000001234ull),
               dflt = dsp_test::pick<T>(0x7FC00000u, 0x7FF8000000000000ull);
    for (int fast : {1, 0}) {
        set_runfast(fast);
        T x = std::bit_cast<T>(payload);
        VFPB(Mul1)(T(2), &x, 1);
        EXPECT_EQ(std::bit_cast<Bits>(x), fast ? dflt : payload) << fast;
    }
#endif
    set_fpscr(word);
    EXPECT_EQ(control(get_fpscr()), control(word));
}
