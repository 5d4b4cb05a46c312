// C exports of the filtering and decimation operations.
#include "dsp.h"
#include "filter/decimate.hpp"
#include "filter/fir.hpp"

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

}  // extern "C"
