// The plan of a mixed-radix DFT: its stages (radix 8 as often as the power
// of two allows, then 4 or 2 for the rest of it, then 7, 5 and 3, so that
// the strides run through powers of two before any odd factor), the widest
// kernel whose vectors suit them (see mixed_simd.hpp), and the twiddle
// tables, kept with a scratch buffer for the length used last.
#include "transform/mixed.hpp"

#include <cmath>
#include <cstdlib>
#include <initializer_list>

#include "elementwise/convert.hpp"
#include "frame/record.hpp"
#include "transform/fft_kernel.hpp"

namespace dsp {

namespace {

template <class T>
struct mixed_cache {
    static inline fft_kernel::mixed_plan<T> plan;  // n = 0: none
    static inline T *tables = nullptr;
    static inline T *scratch = nullptr;  // n points
};

int radices(int64_t n, int *radix) {
    int count = 0;
    int64_t two = 1;
    for (; n % 2 == 0; n /= 2) two *= 2;
    for (; two >= 8; two /= 8) radix[count++] = 8;
    if (two > 1) radix[count++] = int(two);
    for (int p : {7, 5, 3})
        for (; n % p == 0; n /= p) radix[count++] = p;
    return count;
}

// Whether vectors of L points serve every stage: a stage with s < L takes
// L/s values of p at once and needs s to divide L and m >= L/s.
template <class T>
bool serves(const fft_kernel::mixed_plan<T> &plan, int64_t L) {
    for (int i = 0; i < plan.stages; ++i)
        if (plan.s[i] < L && (L % plan.s[i] != 0 || plan.m[i] < L / plan.s[i])) return false;
    return true;
}

template <class T>
int64_t stage_scalars(const fft_kernel::mixed_plan<T> &plan, int i, int64_t L) {
    const int64_t r = plan.radix[i];
    return plan.s[i] < L ? (r - 1) * 4 * plan.m[i] * plan.s[i] : (r - 1) * 2 * plan.m[i];
}

// The plan for n on the widest kernel that serves it; -1 when the tables
// or the scratch cannot be allocated (nothing is kept then).
template <class T>
int prepare(int64_t n) {
    using cache = mixed_cache<T>;
    if (cache::plan.n == n && cache::plan.level == fft_kernel::kernel_level()) return 0;
    fft_kernel::mixed_plan<T> plan;
    plan.level = fft_kernel::kernel_level();
    plan.n = n;
    plan.stages = radices(n, plan.radix);
    int64_t s = 1;
    for (int i = 0; i < plan.stages; ++i) {
        plan.s[i] = s;
        plan.m[i] = n / (s * plan.radix[i]);
        s *= plan.radix[i];
    }
    int64_t L = 1;
    for (int c = 0; fft_kernel::mixed_candidate<T>(c, &plan.isa, &plan.width); ++c) {
        L = plan.width ? plan.width / (2 * int64_t(sizeof(T))) : 1;
        if (serves(plan, L)) break;
    }
    release_mixed<T>();
    int64_t length = 0;
    for (int i = 0; i < plan.stages; ++i) length += stage_scalars(plan, i, L);
    T *tables = static_cast<T *>(std::malloc(size_t(length > 0 ? length : 1) * sizeof(T)));
    T *scratch = static_cast<T *>(std::malloc(size_t(2 * n) * sizeof(T)));
    if (!tables || !scratch) {
        std::free(tables);
        std::free(scratch);
        return -1;
    }
    // Stage i: w^(p k), w = e^(-2 pi i / n'), n' = n / s, as (cos, sin) of
    // 2 pi (p k mod n') / n' in long double.
    constexpr long double two_pi = 6.283185307179586476925286766559005768L;
    T *t = tables;
    for (int i = 0; i < plan.stages; ++i) {
        const int64_t r = plan.radix[i], m = plan.m[i], si = plan.s[i], np = n / si;
        const bool narrow = si < L;
        plan.tw[i] = t;
        for (int64_t k = 1; k < r; ++k)
            for (int64_t p = 0; p < m; ++p) {
                const long double a = two_pi * (long double)((p * k) % np) / (long double)np;
                const T c = T(std::cos(a)), sn = T(std::sin(a));
                if (narrow) {
                    T *C = t + 4 * m * si * (k - 1) + 2 * p * si, *S = C + 2 * m * si;
                    for (int64_t q = 0; q < si; ++q) {
                        C[2 * q] = C[2 * q + 1] = c;
                        S[2 * q] = sn;
                        S[2 * q + 1] = -sn;
                    }
                } else {
                    T *w = t + 2 * ((r - 1) * p + (k - 1));
                    w[0] = c;
                    w[1] = sn;
                }
            }
        t += stage_scalars(plan, i, L);
    }
    cache::plan = plan;
    cache::tables = tables;
    cache::scratch = scratch;
    return 0;
}

}  // namespace

bool smooth(int64_t n) {
    if (n < 2) return false;
    n >>= __builtin_ctzll(uint64_t(n));
    for (; n % 3 == 0; n /= 3) {
    }
    for (; n % 5 == 0; n /= 5) {
    }
    for (; n % 7 == 0; n /= 7) {
    }
    return n == 1;
}

template <class T>
int mixed_dft(signal_t<T> &x, int inverse) {
    const int64_t n = x.n;
    if (prepare<T>(n) != 0) return -1;
    if (rtoc<T>(x) != 0) return -1;
    using cache = mixed_cache<T>;
    fft_kernel::mixed<T>(cache::plan, x.data, cache::scratch, inverse != 0, T(1.0 / double(n)));
    return 0;
}

template <class T>
void release_mixed() {
    using cache = mixed_cache<T>;
    std::free(cache::tables);
    std::free(cache::scratch);
    cache::tables = cache::scratch = nullptr;
    cache::plan = fft_kernel::mixed_plan<T>();
}

#define DSP_INSTANTIATE(T)                         \
    template int mixed_dft<T>(signal_t<T> &, int); \
    template void release_mixed<T>();
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
