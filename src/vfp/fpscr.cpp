// Floating-point control in the FPSCR layout, selected at compile time:
//
// - 32-bit ARM with a VFP unit: the FPSCR itself (vmrs / vmsr).
// - 64-bit ARM: FPCR holds the control bits (AHP, DN, FZ, RMode, FZ16 and
//   the trap enables) and FPSR the status bits (N, Z, C, V, QC and the
//   cumulative exception flags) at the same positions as in the FPSCR; the
//   word is the two ORed, and a write splits it. LEN and STRIDE do not exist
//   there and read as 0.
// - x86-64: MXCSR. Exception flags and trap enables map to their MXCSR
//   counterparts (an enabled trap is an unmasked exception), RMode to the
//   rounding control, FZ to flush-to-zero plus denormals-are-zero (read back
//   from the flush-to-zero bit). SSE has no default-NaN mode: DN is a stored
//   bit of the thread. The remaining FPSCR bits read as 0; MXCSR bits above
//   15 are kept.
// - Anything else: a stored word of the thread.
#include "vfp/fpscr.hpp"

#if defined(__x86_64__) || defined(_M_X64) || defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace dsp::vfp {

namespace {

#if defined(__arm__) && defined(__ARM_FP)

uint32_t read_word() {
    uint32_t v;
    asm volatile("vmrs %0, fpscr" : "=r"(v));
    return v;
}

void write_word(uint32_t v) { asm volatile("vmsr fpscr, %0" : : "r"(v) : "memory"); }

#elif defined(__aarch64__)

constexpr uint32_t fpcr_bits = 0x07C89F00;  // AHP DN FZ RMode FZ16 IDE IXE UFE OFE DZE IOE
constexpr uint32_t fpsr_bits = 0xF800009F;  // N Z C V QC IDC IXC UFC OFC DZC IOC

uint32_t read_word() {
    uint64_t cr, sr;
    asm volatile("mrs %0, fpcr" : "=r"(cr));
    asm volatile("mrs %0, fpsr" : "=r"(sr));
    return (uint32_t(cr) & fpcr_bits) | (uint32_t(sr) & fpsr_bits);
}

void write_word(uint32_t v) {
    const uint64_t cr = v & fpcr_bits, sr = v & fpsr_bits;
    asm volatile("msr fpcr, %0" : : "r"(cr) : "memory");
    asm volatile("msr fpsr, %0" : : "r"(sr) : "memory");
}

#elif defined(__x86_64__) || defined(_M_X64) || defined(__SSE2_MATH__)

// FPSCR bit, MXCSR bit, and whether the meaning is inverted (MXCSR masks an
// exception where the FPSCR enables its trap).
struct mapped_bit {
    uint32_t fpscr, mxcsr;
    bool inverted;
};
constexpr mapped_bit mapped_bits[] = {
    {1u << 0, 1u << 0, false},    // invalid operation flag
    {1u << 1, 1u << 2, false},    // division by zero flag
    {1u << 2, 1u << 3, false},    // overflow flag
    {1u << 3, 1u << 4, false},    // underflow flag
    {1u << 4, 1u << 5, false},    // inexact flag
    {1u << 7, 1u << 1, false},    // input denormal flag
    {1u << 8, 1u << 7, true},     // invalid operation trap
    {1u << 9, 1u << 9, true},     // division by zero trap
    {1u << 10, 1u << 10, true},   // overflow trap
    {1u << 11, 1u << 11, true},   // underflow trap
    {1u << 12, 1u << 12, true},   // inexact trap
    {1u << 15, 1u << 8, true},    // input denormal trap
    {FPSCR_FZ, 1u << 15, false},  // flush-to-zero (written with DAZ, bit 6)
};
constexpr uint32_t mxcsr_daz = 1u << 6;
constexpr uint32_t mxcsr_low = 0xFFFF;  // every bit below 16 is mapped
// Rounding modes are numbered differently: FPSCR up (1) and down (2) are
// MXCSR down (1) and up (2); the exchange is its own inverse.
constexpr uint32_t rounding_swap[] = {0, 2, 1, 3};

thread_local uint32_t stored_dn = 0;

uint32_t read_word() {
    const uint32_t m = _mm_getcsr();
    uint32_t v = stored_dn | rounding_swap[(m >> 13) & 3] << 22;
    for (const mapped_bit &b : mapped_bits)
        if (((m & b.mxcsr) != 0) != b.inverted) v |= b.fpscr;
    return v;
}

void write_word(uint32_t v) {
    uint32_t m = (_mm_getcsr() & ~mxcsr_low) | rounding_swap[(v >> 22) & 3] << 13;
    for (const mapped_bit &b : mapped_bits)
        if (((v & b.fpscr) != 0) != b.inverted) m |= b.mxcsr;
    if (v & FPSCR_FZ) m |= mxcsr_daz;
    stored_dn = v & FPSCR_DN;
    _mm_setcsr(m);
}

#else

thread_local uint32_t stored_word = 0;

uint32_t read_word() { return stored_word; }
void write_word(uint32_t v) { stored_word = v; }

#endif

}  // namespace

uint32_t get_fpscr() { return read_word(); }

uint32_t set_fpscr(uint32_t value) {
    const uint32_t previous = read_word();
    write_word(value);
    return previous;
}

uint32_t set_runfast(int on) {
    const uint32_t v = on ? read_word() | FPSCR_RUNFAST : read_word() & ~FPSCR_RUNFAST;
    write_word(v);
    return v;
}

}  // namespace dsp::vfp
