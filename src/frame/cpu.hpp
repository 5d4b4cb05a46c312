// Processor features by which kernels are chosen at run time.
#pragma once

namespace dsp {

// True on x86 processors with AVX2 and FMA (asked once); false elsewhere.
inline bool have_avx2_fma() {
#if (defined(__x86_64__) || defined(__i386__)) && (defined(__GNUC__) || defined(__clang__))
    static const bool yes = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    }();
    return yes;
#else
    return false;
#endif
}

// True on x86 processors with AVX-512 F, VL and DQ and FMA (asked once);
// false elsewhere.
inline bool have_avx512() {
#if (defined(__x86_64__) || defined(__i386__)) && (defined(__GNUC__) || defined(__clang__))
    static const bool yes = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
               __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("fma");
    }();
    return yes;
#else
    return false;
#endif
}

}  // namespace dsp
