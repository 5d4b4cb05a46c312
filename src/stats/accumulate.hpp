// Block accumulation shared by the statistics: sums over blocks of
// stats_block samples, each block summed from zero into its own partial sum
// that is then added to the running total.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "stats/stats.hpp"

namespace dsp::acc {

// Unsigned integer of a scalar's width.
template <class T>
using bits_t = std::conditional_t<single<T>, uint32_t, uint64_t>;

// All ones when v lies outside [-L, L] (infinities included, NaN not), else
// zero. Worked out on the bit pattern: integer compares, unlike floating
// compares that may trap, leave the block loops free to vectorise.
template <class T>
inline bits_t<T> beyond_large(T v) {
    using U = bits_t<T>;
    constexpr U magnitude = ~(U(1) << (8 * sizeof(U) - 1));
    constexpr U large = std::bit_cast<U>(precision<T>::large);
    constexpr U inf = std::bit_cast<U>(std::numeric_limits<T>::infinity());
    const U a = std::bit_cast<U>(v) & magnitude;
    return U(0) - (U(a > large) & U(a <= inf));
}

// yes where the mask is all ones, no where it is zero.
template <class T>
inline T select(bits_t<T> mask, T yes, T no) {
    using U = bits_t<T>;
    return std::bit_cast<T>((std::bit_cast<U>(no) & ~mask) | (std::bit_cast<U>(yes) & mask));
}

// Sums term(i) over i < count into totals[0 .. Parts-1]: with Parts = 2 the
// terms alternate between two totals (real and imaginary parts of an
// interleaved complex record, term(i) reading scalar i), so a block of
// stats_block samples spans Parts * stats_block terms. Inside a block the
// terms go into a fixed set of lanes (a plain contiguous loop the compiler
// turns into vector additions), which are folded pairwise into the block's
// partial sum.
template <int Parts, class T, class F>
void block_sum(int64_t count, F term, T *totals) {
    constexpr int lanes = 16;
    static_assert(lanes % Parts == 0);
    constexpr int64_t block = stats_block * Parts;
    for (int p = 0; p < Parts; ++p) totals[p] = T(0);
    for (int64_t start = 0; start < count; start += block) {
        const int64_t end = count - start > block ? start + block : count;
        T lane[lanes] = {};
        int64_t i = start;
        for (; i + lanes <= end; i += lanes)
            for (int k = 0; k < lanes; ++k) lane[k] += term(i + k);
        for (int k = 0; i < end; ++i, ++k) lane[k] += term(i);
        for (int w = lanes / 2; w >= Parts; w /= 2)
            for (int k = 0; k < w; ++k) lane[k] += lane[k + w];
        for (int p = 0; p < Parts; ++p) totals[p] += lane[p];
    }
}

}  // namespace dsp::acc
