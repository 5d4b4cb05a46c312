// C exports of the window subsystem.
#include "dsp.h"
#include "window/catalogue.hpp"
#include "window/metrics.hpp"
#include "window/windowed_fft.hpp"
#include "window/window.hpp"

using namespace dsp;

extern "C" {

// Window names.
int dspf_window_from_str(const char *name, dsp_window *value) {
    return window_from_str<float>(name, value);
}
int dsp_window_from_str(const char *name, dsp_window *value) {
    return window_from_str<double>(name, value);
}
int dspf_window_to_str(dsp_window code, char *buf, int len) {
    return window_to_str<float>(code, buf, len);
}
int dsp_window_to_str(dsp_window code, char *buf, int len) {
    return window_to_str<double>(code, buf, len);
}

// Window generation.
int dspfi_window(dspf_signal *x, dsp_window kind, int flags) {
    return window<float>(*x, kind, flags);
}
int dspi_window(dsp_signal *x, dsp_window kind, int flags) {
    return window<double>(*x, kind, flags);
}
int dspfi_window2(dspf_signal *x, dsp_window kind, int flags, float p) {
    return window2<float>(*x, kind, flags, p);
}
int dspi_window2(dsp_signal *x, dsp_window kind, int flags, double p) {
    return window2<double>(*x, kind, flags, p);
}
int dspfi_window_cos(dspf_signal *x, const dspf_signal *coef) {
    return window_cos<float>(*x, *coef);
}
int dspi_window_cos(dsp_signal *x, const dsp_signal *coef) { return window_cos<double>(*x, *coef); }
int dspfi_window_gauss(dspf_signal *x, float sigma, int flags) {
    return window_gauss<float>(*x, sigma, flags);
}
int dspi_window_gauss(dsp_signal *x, double sigma, int flags) {
    return window_gauss<double>(*x, sigma, flags);
}
int dspfi_window_kaiser(dspf_signal *x, float beta, int flags) {
    return window_kaiser<float>(*x, beta, flags);
}
int dspi_window_kaiser(dsp_signal *x, double beta, int flags) {
    return window_kaiser<double>(*x, beta, flags);
}
int dspfi_window_sinc(dspf_signal *x, float half_span, float power, int flags) {
    return window_sinc<float>(*x, half_span, power, flags);
}
int dspi_window_sinc(dsp_signal *x, double half_span, double power, int flags) {
    return window_sinc<double>(*x, half_span, power, flags);
}
int dspfi_window_tukey(dspf_signal *x, float alpha, int flags) {
    return window_tukey<float>(*x, alpha, flags);
}
int dspi_window_tukey(dsp_signal *x, double alpha, int flags) {
    return window_tukey<double>(*x, alpha, flags);
}
int dspfi_window_fir(dspf_signal *x, int code, float p) { return window_fir<float>(*x, code, p); }
int dspi_window_fir(dsp_signal *x, int code, double p) { return window_fir<double>(*x, code, p); }

// Window metrics.
int dspf_window_scale(float *out, dsp_window kind, int flags, int n) {
    return window_scale<float>(out, kind, flags, n);
}
int dsp_window_scale(double *out, dsp_window kind, int flags, int n) {
    return window_scale<double>(out, kind, flags, n);
}
int dspf_window2_scale(float *out, dsp_window kind, int flags, int n, float p) {
    return window2_scale<float>(out, kind, flags, n, p);
}
int dsp_window2_scale(double *out, dsp_window kind, int flags, int n, double p) {
    return window2_scale<double>(out, kind, flags, n, p);
}
int dspf_window_enbw(float *out, dsp_window kind, int n) {
    return window_enbw<float>(out, kind, n);
}
int dsp_window_enbw(double *out, dsp_window kind, int n) {
    return window_enbw<double>(out, kind, n);
}
int dspf_window2_enbw(float *out, dsp_window kind, int n, float p) {
    return window2_enbw<float>(out, kind, n, p);
}
int dsp_window2_enbw(double *out, dsp_window kind, int n, double p) {
    return window2_enbw<double>(out, kind, n, p);
}

// Windowed spectrum.
int dspfh_fft(const dspf_signal *in, dspf_signal *result, dspf_signal *scratch, dsp_window kind, int flags, int length) { return windowed_fft<float>(*in, *result, scratch, kind, flags, length); }
int dsph_fft(const dsp_signal *in, dsp_signal *result, dsp_signal *scratch, dsp_window kind, int flags, int length) { return windowed_fft<double>(*in, *result, scratch, kind, flags, length); }
int dspfh_dft(const dspf_signal *in, dspf_signal *result, dspf_signal *scratch, dsp_window kind,
              int flags, int length) {
    return windowed_dft<float>(*in, *result, scratch, kind, flags, length);
}
int dsph_dft(const dsp_signal *in, dsp_signal *result, dsp_signal *scratch, dsp_window kind,
             int flags, int length) {
    return windowed_dft<double>(*in, *result, scratch, kind, flags, length);
}
int dspfh_avg(const dspf_signal *in, dspf_signal *result, dspf_signal *scratch, dsp_window kind,
              int flags, int segment, int overlap) {
    return averaged_spectrum<float>(*in, *result, scratch, kind, flags, segment, overlap);
}
int dsph_avg(const dsp_signal *in, dsp_signal *result, dsp_signal *scratch, dsp_window kind,
             int flags, int segment, int overlap) {
    return averaged_spectrum<double>(*in, *result, scratch, kind, flags, segment, overlap);
}
int cf_dspfh_fft(const float *in, float *out, int n, int cplx, dsp_window kind, int flags, int length) { return windowed_fft_array<float>(in, out, n, cplx, kind, flags, length); }
int cf_dsph_fft(const double *in, double *out, int n, int cplx, dsp_window kind, int flags, int length) { return windowed_fft_array<double>(in, out, n, cplx, kind, flags, length); }
int cf_dspfh_fft_fast_but_dirty(const float *in, float *out, int n, int cplx, dsp_window kind, int flags, int length) { return windowed_fft_array_in_place(in, out, n, cplx, kind, flags, length); }

}  // extern "C"
