// Size, alignment and field offsets of the records a caller declares or
// allocates itself: they must stay as documented in dsp.h on every
// processor the library is built for.
#include <cstddef>

#include "support/support.hpp"

namespace {

struct Expected {
    const char *what;
    size_t got;
    size_t arm32, bits64;  // 32-bit ARM; 64-bit processors (x86-64, AArch64)
};

#define DSP_FIELD(R, f, arm32, bits64) \
    { #R "." #f, offsetof(R, f), arm32, bits64 }

// clang-format off
const Expected layout[] = {
    {"sizeof(dspf_signal)", sizeof(dspf_signal), 24, 32},
    {"alignof(dspf_signal)", alignof(dspf_signal), 4, 8},
    DSP_FIELD(dspf_signal, delta, 0, 0),   DSP_FIELD(dspf_signal, data, 4, 8),
    DSP_FIELD(dspf_signal, alloc, 8, 16),  DSP_FIELD(dspf_signal, n, 12, 20),
    DSP_FIELD(dspf_signal, cplx, 16, 24),  DSP_FIELD(dspf_signal, reserved, 20, 28),
    // The double's 8-byte alignment puts data at 8 and pads the end on 32-bit ARM.
    {"sizeof(dsp_signal)", sizeof(dsp_signal), 32, 32},
    {"alignof(dsp_signal)", alignof(dsp_signal), 8, 8},
    DSP_FIELD(dsp_signal, delta, 0, 0),    DSP_FIELD(dsp_signal, data, 8, 8),
    DSP_FIELD(dsp_signal, alloc, 12, 16),  DSP_FIELD(dsp_signal, n, 16, 20),
    DSP_FIELD(dsp_signal, cplx, 20, 24),   DSP_FIELD(dsp_signal, reserved, 24, 28),
    // ---- Resampler records: dspfh_rsmp_coef, dspfh_rsmp_state and the
    // double twins dsph_rsmp_coef, dsph_rsmp_state. Rows to add here with
    // their declarations, every field through DSP_FIELD, and the table
    // copied beside the records in dsp.h. Laid out in their documented field
    // order with int flags and counts, they come to (size, align; 32-bit
    // ARM, then 64-bit):
    //   dspfh_rsmp_coef   104, 4   136, 8   ratio (float) at 84 / 116
    //   dsph_rsmp_coef    144, 8   144, 8   ratio (double) at 120 / 120
    //   dspfh_rsmp_state  116, 4   168, 8   output skip at 112 / 160
    //   dsph_rsmp_state   152, 8   168, 8   output skip at 144 / 160
    // ----
};
// clang-format on

#if defined(__arm__) || defined(_M_ARM)
#define DSP_WIDE_POINTERS 0
#elif defined(__aarch64__) || defined(_M_ARM64) || defined(__x86_64__) || defined(_M_X64)
#define DSP_WIDE_POINTERS 1
#endif

TEST(RecordLayout, SizesAlignmentAndOffsets) {
#ifdef DSP_WIDE_POINTERS
    for (const Expected &e : layout)
        EXPECT_EQ(e.got, DSP_WIDE_POINTERS ? e.bits64 : e.arm32) << e.what;
#else
    GTEST_SKIP() << "no documented record layout for this processor";
#endif
}

}  // namespace
