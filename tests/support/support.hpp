// Shared helpers of the test suite: typed tests over both precisions,
// owning records and a way to call the C export of the precision under test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "support/precision.hpp"

// The POSIX constants of <cmath>, which strict-standard Windows headers omit.
#ifndef M_PI
#define M_PI 3.14159265358979323846
#endif
#ifndef M_PIl
#define M_PIl 3.141592653589793238462643383279502884L
#endif

namespace dsp_test {

using Precisions = ::testing::Types<float, double>;

// A typed test suite over both precisions without a fixture of its own:
// DSP_TYPED_SUITE(Fir); then TYPED_TEST(Fir, ...) with TypeParam float or double.
#define DSP_TYPED_SUITE(name)               \
    template <class T>                      \
    class name : public ::testing::Test {}; \
    TYPED_TEST_SUITE(name, ::dsp_test::Precisions)

// True when the suite runs under an instruction-set emulator (CTest sets
// DSP_TEST_EMULATED for the qemu runs of the cross builds): long references
// are then cut down, with a note of what was left out.
inline bool emulated() { return std::getenv("DSP_TEST_EMULATED") != nullptr; }

// Under an emulator whose long double is a software type (AArch64's 128-bit
// format) a long-double reference costs about a hundred times more: sweeps
// against one stop at `longest` points there (reference_reach gives the
// limit); within_reference_reach returns the sizes kept and prints how many
// were left out.
inline int reference_reach(int longest = 1024) {
    const bool software = std::numeric_limits<long double>::digits > 64;
    return emulated() && software ? longest : std::numeric_limits<int>::max();
}
inline std::vector<int> within_reference_reach(std::vector<int> sizes, int longest = 1024) {
    const int reach = reference_reach(longest);
    const auto kept = std::remove_if(sizes.begin(), sizes.end(), [&](int n) { return n > reach; });
    if (kept == sizes.end()) return sizes;
    std::printf("%zu lengths above %d left out: long double is a software type here\n",
                size_t(sizes.end() - kept), longest);
    sizes.erase(kept, sizes.end());
    return sizes;
}

// A record the test owns; destroyed through the library at scope exit.
template <class T>
struct Rec {
    sig<T> s;
    Rec() { init_(); }
    explicit Rec(std::initializer_list<T> v, bool cplx = false, T delta = T(1)) {
        init_();
        set(std::vector<T>(v), cplx, delta);
    }
    // A record of the scalars v (n real or n complex points as 2n scalars).
    explicit Rec(const std::vector<T> &v, bool cplx = false, T delta = T(1)) {
        init_();
        set(v, cplx, delta);
    }
    Rec(const Rec &) = delete;
    Rec &operator=(const Rec &) = delete;
    ~Rec() { pick<T>(dspf_destroy, dsp_destroy)(&s); }

    // Replaces the contents: v holds n scalars (real) or 2n (complex).
    void set(const std::vector<T> &v, bool cplx = false, T delta = T(1)) {
        s.cplx = cplx ? 1 : 0;
        s.n = int32_t(cplx ? v.size() / 2 : v.size());
        s.delta = delta;
        EXPECT_EQ(pick<T>(dspf_alloc, dsp_alloc)(&s), 0);
        for (size_t i = 0; i < v.size(); ++i) s.data[i] = v[i];
    }
    // The scalars the record holds.
    std::vector<T> values() const {
        const size_t count = size_t(s.cplx ? 2 * s.n : s.n);
        return std::vector<T>(s.data, s.data + (s.n > 0 ? count : 0));
    }
    sig<T> *operator&() { return &s; }
    sig<T> *get() { return &s; }
    sig<T> &operator*() { return s; }
    sig<T> *operator->() { return &s; }

 private:
    void init_() { pick<T>(dspf_init, dsp_init)(&s); }
};

// Expects the record's scalars to equal `want` within tol (exact by default).
template <class T>
void expect_values(const sig<T> &s, const std::vector<T> &want, double tol = 0.0) {
    const size_t count = size_t(s.cplx ? 2 * s.n : s.n);
    ASSERT_EQ(count, want.size());
    for (size_t i = 0; i < count; ++i) {
        if (tol == 0.0)
            EXPECT_EQ(s.data[i], want[i]) << "scalar " << i;
        else
            EXPECT_NEAR(double(s.data[i]), double(want[i]), tol) << "scalar " << i;
    }
}

// Expects status 0 from `call`, then the scalars of the record `rec` to be
// the braced list (and an optional tolerance) that follows.
#define EXPECT_OK(call, rec, ...)                                 \
    do {                                                          \
        EXPECT_EQ((call), 0);                                     \
        ::dsp_test::expect_values<TypeParam>((rec), __VA_ARGS__); \
    } while (0)

// A record wrapping the caller's array of n points (alloc 0: not owned, so
// sizing never writes it). Destroy it, or hand it to a Rec: *r = wrap(...).
template <class T>
sig<T> wrap(T *data, int n, bool cplx = false) {
    return sig<T>{T(1), data, 0, int32_t(n), cplx ? 1 : 0, 0};
}

// The scalars of a record of v (complex if cplx, spacing delta) after the
// operation f, whose status must be rc.
template <class T, class F>
std::vector<T> applied(const std::vector<T> &v, bool cplx, F f, T delta = T(1), int rc = 0) {
    Rec<T> r;
    r.set(v, cplx, delta);
    EXPECT_EQ(f(r.get()), rc);
    return r.values();
}

// count values drawn uniformly from [lo, hi) with a fixed seed.
template <class T = double>
std::vector<T> uniform(size_t count, unsigned seed, double lo = -1, double hi = 1) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(lo, hi);
    std::vector<T> v(count);
    for (T &x : v) x = T(u(gen));
    return v;
}

// The points of scalars v (complex when cplx) in long double.
template <class T>
std::vector<std::complex<long double>> as_points(const std::vector<T> &v, bool cplx) {
    std::vector<std::complex<long double>> p(cplx ? v.size() / 2 : v.size());
    for (size_t i = 0; i < p.size(); ++i)
        p[i] = cplx ? std::complex<long double>(v[2 * i], v[2 * i + 1]) : v[i];
    return p;
}

// The scalars x (complex points when cplx) in blocks of the sizes given
// (taken in turn; 0 allowed), each run through op(block, result), the result
// being one record kept across blocks or, for odd-numbered blocks when
// in_place, the block itself; the results' scalars one after the other.
template <class T, class Op>
std::vector<T> blockwise(const std::vector<T> &x, bool cplx, std::vector<int> sizes, Op op,
                         bool in_place = true) {
    const size_t c = cplx ? 2 : 1, n = x.size() / c;
    Rec<T> y;
    std::vector<T> out;
    for (size_t at = 0, b = 0; at < n; ++b) {
        const size_t len = std::min(size_t(sizes[b % sizes.size()]), n - at);
        Rec<T> xb(std::vector<T>(x.begin() + c * at, x.begin() + c * (at + len)), cplx);
        Rec<T> &r = in_place && b % 2 ? xb : y;
        EXPECT_EQ(op(xb.get(), r.get()), 0) << "block " << b << " at " << at;
        const auto v = r.values();
        out.insert(out.end(), v.begin(), v.end());
        at += len;
    }
    return out;
}

// The next `count` values of `all` from `at` on (advancing `at`), as T.
template <class T>
std::vector<T> take(const std::vector<double> &all, size_t &at, size_t count) {
    at += count;
    return std::vector<T>(all.begin() + ptrdiff_t(at - count), all.begin() + ptrdiff_t(at));
}

// Relative tolerance suited to the precision: a few units in the last place.
template <class T>
constexpr double ulps(double k = 4) {
    return k * (std::is_same_v<T, float> ? 1.1920929e-7 : 2.220446049250313e-16);
}

}  // namespace dsp_test
