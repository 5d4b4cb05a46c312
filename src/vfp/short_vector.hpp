// Multiplication of groups of 16 values in the VFP short-vector mode of
// 32-bit ARM cores that have it (VFPv2: ARM11, ARM9 with VFP9). Selected at
// build time: DSP_VFP_SHORT_VECTOR is 1 by default on a hard-float build for
// an architecture below ARMv7 (e.g. -mcpu=arm1176jzf-s) and can be set to 0
// (or, for another VFPv2 target, to 1) by the build.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if !defined(DSP_VFP_SHORT_VECTOR)
#if defined(__arm__) && defined(__ARM_FP) && defined(__ARM_ARCH) && __ARM_ARCH < 7
#define DSP_VFP_SHORT_VECTOR 1
#else
#define DSP_VFP_SHORT_VECTOR 0
#endif
#endif

#if DSP_VFP_SHORT_VECTOR
#if !defined(__arm__) || !defined(__ARM_FP)
#error "DSP_VFP_SHORT_VECTOR needs a 32-bit ARM build with a VFP unit"
#endif

namespace dsp::vfp {

// x[0 .. 16 groups) *= k. The whole loop, with the mode switch around it,
// is one asm statement: while LEN is nonzero every VFP data-processing
// instruction whose destination lies outside bank 0 is a vector operation,
// so no compiler-generated VFP code may run in between. The LEN field
// (bits 16-18) is set by OR and cleared afterwards, not restored.
inline void mul16_short_vector(float k, float *x, size_t groups) {
    uint32_t kbits, tmp;
    std::memcpy(&kbits, &k, sizeof kbits);
    // Vector length 8, stride 1: s8-s15 and s16-s23 are two vectors, s0
    // (bank 0) the scalar factor.
    asm volatile(
        "vmov    s0, %[kb]\n\t"
        "vmrs    %[t], fpscr\n\t"
        "orr     %[t], %[t], #0x70000\n\t"
        "vmsr    fpscr, %[t]\n\t"
        "1:\n\t"
        "vldmia  %[p], {s8-s23}\n\t"
        "vmul.f32 s8, s8, s0\n\t"
        "vmul.f32 s16, s16, s0\n\t"
        "vstmia  %[p]!, {s8-s23}\n\t"
        "subs    %[g], %[g], #1\n\t"
        "bne     1b\n\t"
        "vmrs    %[t], fpscr\n\t"
        "bic     %[t], %[t], #0x70000\n\t"
        "vmsr    fpscr, %[t]\n\t"
        : [p] "+r"(x), [g] "+r"(groups), [t] "=&r"(tmp)
        : [kb] "r"(kbits)
        : "s0", "s8", "s9", "s10", "s11", "s12", "s13", "s14", "s15", "s16", "s17", "s18", "s19",
          "s20", "s21", "s22", "s23", "cc", "memory");
}

// Double precision: a bank holds four registers (d4-d7, d8-d11), so the
// vector length is 4 (LEN = 3) and a group of 16 takes two loads of 8.
inline void mul16_short_vector(double k, double *x, size_t groups) {
    uint64_t kbits;
    uint32_t tmp;
    std::memcpy(&kbits, &k, sizeof kbits);
    asm volatile(
        "vmov    d0, %Q[kb], %R[kb]\n\t"
        "vmrs    %[t], fpscr\n\t"
        "orr     %[t], %[t], #0x30000\n\t"
        "vmsr    fpscr, %[t]\n\t"
        "1:\n\t"
        "vldmia  %[p], {d4-d11}\n\t"
        "vmul.f64 d4, d4, d0\n\t"
        "vmul.f64 d8, d8, d0\n\t"
        "vstmia  %[p]!, {d4-d11}\n\t"
        "vldmia  %[p], {d4-d11}\n\t"
        "vmul.f64 d4, d4, d0\n\t"
        "vmul.f64 d8, d8, d0\n\t"
        "vstmia  %[p]!, {d4-d11}\n\t"
        "subs    %[g], %[g], #1\n\t"
        "bne     1b\n\t"
        "vmrs    %[t], fpscr\n\t"
        "bic     %[t], %[t], #0x70000\n\t"
        "vmsr    fpscr, %[t]\n\t"
        : [p] "+r"(x), [g] "+r"(groups), [t] "=&r"(tmp)
        : [kb] "r"(kbits)
        : "d0", "d4", "d5", "d6", "d7", "d8", "d9", "d10", "d11", "cc", "memory");
}

}  // namespace dsp::vfp

#endif
