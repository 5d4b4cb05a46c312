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
    // The resampler records: records of the precision, then int flags, counts
    // and skips (and the array pointers of the state) in the declared order.
    {"sizeof(dspfh_rsmp_coef)", sizeof(dspfh_rsmp_coef), 104, 136},
    {"alignof(dspfh_rsmp_coef)", alignof(dspfh_rsmp_coef), 4, 8},
    DSP_FIELD(dspfh_rsmp_coef, halfband, 0, 0),
    DSP_FIELD(dspfh_rsmp_coef, halfband_odd, 24, 32),
    DSP_FIELD(dspfh_rsmp_coef, prefilter, 28, 40),
    DSP_FIELD(dspfh_rsmp_coef, prefilter_odd, 52, 72),
    DSP_FIELD(dspfh_rsmp_coef, kernel, 56, 80),
    DSP_FIELD(dspfh_rsmp_coef, kernel_mode, 80, 112),
    DSP_FIELD(dspfh_rsmp_coef, ratio, 84, 116),
    DSP_FIELD(dspfh_rsmp_coef, stages, 88, 120),
    DSP_FIELD(dspfh_rsmp_coef, fine, 92, 124),
    DSP_FIELD(dspfh_rsmp_coef, skip_in, 96, 128),
    DSP_FIELD(dspfh_rsmp_coef, skip_out, 100, 132),
    {"sizeof(dsph_rsmp_coef)", sizeof(dsph_rsmp_coef), 144, 144},
    {"alignof(dsph_rsmp_coef)", alignof(dsph_rsmp_coef), 8, 8},
    DSP_FIELD(dsph_rsmp_coef, halfband, 0, 0),
    DSP_FIELD(dsph_rsmp_coef, halfband_odd, 32, 32),
    DSP_FIELD(dsph_rsmp_coef, prefilter, 40, 40),
    DSP_FIELD(dsph_rsmp_coef, prefilter_odd, 72, 72),
    DSP_FIELD(dsph_rsmp_coef, kernel, 80, 80),
    DSP_FIELD(dsph_rsmp_coef, kernel_mode, 112, 112),
    DSP_FIELD(dsph_rsmp_coef, ratio, 120, 120),
    DSP_FIELD(dsph_rsmp_coef, stages, 128, 128),
    DSP_FIELD(dsph_rsmp_coef, fine, 132, 132),
    DSP_FIELD(dsph_rsmp_coef, skip_in, 136, 136),
    DSP_FIELD(dsph_rsmp_coef, skip_out, 140, 140),
    {"sizeof(dspfh_rsmp_state)", sizeof(dspfh_rsmp_state), 116, 168},
    {"alignof(dspfh_rsmp_state)", alignof(dspfh_rsmp_state), 4, 8},
    DSP_FIELD(dspfh_rsmp_state, stages, 0, 0),
    DSP_FIELD(dspfh_rsmp_state, stage_history, 4, 8),
    DSP_FIELD(dspfh_rsmp_state, stage_phase, 8, 16),
    DSP_FIELD(dspfh_rsmp_state, skip_in, 12, 24),
    DSP_FIELD(dspfh_rsmp_state, prefilter_history, 16, 32),
    DSP_FIELD(dspfh_rsmp_state, kernel_history, 40, 64),
    DSP_FIELD(dspfh_rsmp_state, halfband_history, 64, 96),
    DSP_FIELD(dspfh_rsmp_state, phase, 88, 128),
    DSP_FIELD(dspfh_rsmp_state, skip_out, 112, 160),
    {"sizeof(dsph_rsmp_state)", sizeof(dsph_rsmp_state), 152, 168},
    {"alignof(dsph_rsmp_state)", alignof(dsph_rsmp_state), 8, 8},
    DSP_FIELD(dsph_rsmp_state, stages, 0, 0),
    DSP_FIELD(dsph_rsmp_state, stage_history, 4, 8),
    DSP_FIELD(dsph_rsmp_state, stage_phase, 8, 16),
    DSP_FIELD(dsph_rsmp_state, skip_in, 12, 24),
    DSP_FIELD(dsph_rsmp_state, prefilter_history, 16, 32),
    DSP_FIELD(dsph_rsmp_state, kernel_history, 48, 64),
    DSP_FIELD(dsph_rsmp_state, halfband_history, 80, 96),
    DSP_FIELD(dsph_rsmp_state, phase, 112, 128),
    DSP_FIELD(dsph_rsmp_state, skip_out, 144, 160),
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
