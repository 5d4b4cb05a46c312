// C exports of the filtering and decimation operations.
#include "dsp.h"
#include "filter/decimate.hpp"
#include "filter/fir.hpp"
#include "filter/resample.hpp"
#include "filter/stream.hpp"

using namespace dsp;

extern "C" {

int dspfd_fir(const dspf_signal *x, dspf_signal *y, const dspf_signal *h, dspf_signal *history) {
    return fir<float>(*x, *y, *h, history);
}
int dspd_fir(const dsp_signal *x, dsp_signal *y, const dsp_signal *h, dsp_signal *history) {
    return fir<double>(*x, *y, *h, history);
}
int dspfd_sfir(const dspf_signal *x, dspf_signal *y, const dspf_signal *half, int odd, int antisym,
               dspf_signal *history) {
    return sfir<float>(*x, *y, *half, odd, antisym, history);
}
int dspd_sfir(const dsp_signal *x, dsp_signal *y, const dsp_signal *half, int odd, int antisym,
              dsp_signal *history) {
    return sfir<double>(*x, *y, *half, odd, antisym, history);
}

// Decimation and half-band filter.

int dspfd_deci(const dspf_signal *x, dspf_signal *y, int factor, dspf_signal *phase) {
    return deci<float>(*x, *y, factor, phase);
}
int dspd_deci(const dsp_signal *x, dsp_signal *y, int factor, dsp_signal *phase) {
    return deci<double>(*x, *y, factor, phase);
}
int dspfd_hwfilt(const dspf_signal *x, dspf_signal *y, const void *reserved, dspf_signal *state) {
    return hwfilt<float>(*x, *y, reserved, state);
}
int dspd_hwfilt(const dsp_signal *x, dsp_signal *y, const void *reserved, dsp_signal *state) {
    return hwfilt<double>(*x, *y, reserved, state);
}
// The in-place entries hand on as (x, x, state, null): the state lands in the
// reserved position.
int dspfi_hwfilt(dspf_signal *x, dspf_signal *state) {
    return hwfilt<float>(*x, *x, state, nullptr);
}
int dspi_hwfilt(dsp_signal *x, dsp_signal *state) { return hwfilt<double>(*x, *x, state, nullptr); }

// Resampling.

int dspfd_rsmp(const dspf_signal *x, dspf_signal *y, int mode, const dspf_signal *kernel,
               float step, dspf_signal *history) {
    return rsmp<float>(*x, *y, mode, *kernel, step, history);
}
int dspd_rsmp(const dsp_signal *x, dsp_signal *y, int mode, const dsp_signal *kernel, double step,
              dsp_signal *history) {
    return rsmp<double>(*x, *y, mode, *kernel, step, history);
}
int dspfd_rsmp2(const dspf_signal *x, dspf_signal *y, int mode, int kernel_mode, float step,
                dspf_signal *history) {
    return rsmp2<float>(*x, *y, mode, kernel_mode, step, history);
}
int dspd_rsmp2(const dsp_signal *x, dsp_signal *y, int mode, int kernel_mode, double step,
               dsp_signal *history) {
    return rsmp2<double>(*x, *y, mode, kernel_mode, step, history);
}

// Streaming resampler.

int dspfh_rsmp_coef_init(dspfh_rsmp_coef *coef) { return rsmp_coef_init<float>(coef); }
int dsph_rsmp_coef_init(dsph_rsmp_coef *coef) { return rsmp_coef_init<double>(coef); }
int dspfh_rsmp_coef_alloc(dspfh_rsmp_coef *coef, int mode) {
    return rsmp_coef_alloc<float>(coef, mode);
}
int dsph_rsmp_coef_alloc(dsph_rsmp_coef *coef, int mode) {
    return rsmp_coef_alloc<double>(coef, mode);
}
int dspfh_rsmp_coef_setup(dspfh_rsmp_coef *coef, float ratio, int fine, int reserved) {
    return rsmp_coef_setup<float>(coef, ratio, fine, reserved);
}
int dsph_rsmp_coef_setup(dsph_rsmp_coef *coef, double ratio, int fine, int reserved) {
    return rsmp_coef_setup<double>(coef, ratio, fine, reserved);
}
int dspfh_rsmp_coef_destroy(dspfh_rsmp_coef *coef) { return rsmp_coef_destroy<float>(coef); }
int dsph_rsmp_coef_destroy(dsph_rsmp_coef *coef) { return rsmp_coef_destroy<double>(coef); }
int dspfh_rsmp_state_init(dspfh_rsmp_state *state) { return rsmp_state_init<float>(state); }
int dsph_rsmp_state_init(dsph_rsmp_state *state) { return rsmp_state_init<double>(state); }
int dspfh_rsmp_state_alloc(const dspfh_rsmp_coef *coef, dspfh_rsmp_state *state, int cplx) {
    return rsmp_state_alloc<float>(coef, state, cplx);
}
int dsph_rsmp_state_alloc(const dsph_rsmp_coef *coef, dsph_rsmp_state *state, int cplx) {
    return rsmp_state_alloc<double>(coef, state, cplx);
}
int dspfh_rsmp_state_reset(const dspfh_rsmp_coef *coef, dspfh_rsmp_state *state) {
    return rsmp_state_reset<float>(coef, state);
}
int dsph_rsmp_state_reset(const dsph_rsmp_coef *coef, dsph_rsmp_state *state) {
    return rsmp_state_reset<double>(coef, state);
}
int dspfh_rsmp_state_destroy(dspfh_rsmp_state *state) { return rsmp_state_destroy<float>(state); }
int dsph_rsmp_state_destroy(dsph_rsmp_state *state) { return rsmp_state_destroy<double>(state); }
int dspfh_rsmp(const dspf_signal *x, dspf_signal *y, dspf_signal *scratch,
               const dspfh_rsmp_coef *coef, dspfh_rsmp_state *state) {
    return rsmp_stream<float>(*x, *y, scratch, coef, state);
}
int dsph_rsmp(const dsp_signal *x, dsp_signal *y, dsp_signal *scratch, const dsph_rsmp_coef *coef,
              dsph_rsmp_state *state) {
    return rsmp_stream<double>(*x, *y, scratch, coef, state);
}

}  // extern "C"
