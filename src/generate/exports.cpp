// C exports of the generators, the FIR design and the resampling kernels.
#include "dsp.h"
#include "generate/fir.hpp"
#include "generate/kernel.hpp"
#include "generate/tone.hpp"

using namespace dsp;

extern "C" {

int dspfc_cos(dspf_signal *x, float freq, float phase) { return tone_cos<float>(*x, freq, phase); }
int dspc_cos(dsp_signal *x, double freq, double phase) { return tone_cos<double>(*x, freq, phase); }
int dspfc_cexp(dspf_signal *x, float freq, float phase) {
    return tone_cexp<float>(*x, freq, phase);
}
int dspc_cexp(dsp_signal *x, double freq, double phase) {
    return tone_cexp<double>(*x, freq, phase);
}
int dspfc_line(dspf_signal *x, float slope, float start) { return ramp<float>(*x, slope, start); }
int dspc_line(dsp_signal *x, double slope, double start) { return ramp<double>(*x, slope, start); }

int dspfc_fir(dspf_signal *h, int kind, float a, float b) {
    return fir_design<float>(*h, kind, a, b);
}
int dspc_fir(dsp_signal *h, int kind, double a, double b) {
    return fir_design<double>(*h, kind, a, b);
}
int dspfc_fir2(dspf_signal *h, int code) { return fir_stored<float>(*h, code); }
int dspc_fir2(dsp_signal *h, int code) { return fir_stored<double>(*h, code); }

int dspfc_rsmp_cos(dspf_signal *kernel, const dspf_signal *desc) {
    return rsmp_cos<float>(*kernel, *desc);
}
int dspc_rsmp_cos(dsp_signal *kernel, const dsp_signal *desc) {
    return rsmp_cos<double>(*kernel, *desc);
}
int dspfc_rsmp_pcos(dspf_signal *kernel, const dspf_signal *desc) {
    return rsmp_pcos<float>(*kernel, *desc);
}
int dspc_rsmp_pcos(dsp_signal *kernel, const dsp_signal *desc) {
    return rsmp_pcos<double>(*kernel, *desc);
}
int dspfc_rsmp(dspf_signal *kernel, int mode) { return rsmp_kernel<float>(*kernel, mode); }
int dspc_rsmp(dsp_signal *kernel, int mode) { return rsmp_kernel<double>(*kernel, mode); }

}  // extern "C"
