// The floating-point status and control word of the calling thread, in the
// layout of the ARM FPSCR on every architecture (see fpscr.cpp for the
// mapping on 64-bit ARM and x86-64).
#pragma once

#include <cstdint>

namespace dsp::vfp {

// FPSCR bits used by the library.
enum : uint32_t {
    FPSCR_FZ = 1u << 24,  // flush-to-zero
    FPSCR_DN = 1u << 25,  // default NaN
    FPSCR_RUNFAST = FPSCR_FZ | FPSCR_DN,
};

uint32_t get_fpscr();
// Writes the whole word; returns the previous value.
uint32_t set_fpscr(uint32_t value);
// Sets (on != 0) or clears FZ and DN only; returns the new value.
uint32_t set_runfast(int on);

}  // namespace dsp::vfp
