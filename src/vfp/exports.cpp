// C exports of the trace kernels and the floating-point control.
#include "dsp.h"
#include "vfp/fpscr.hpp"
#include "vfp/trace.hpp"

using namespace dsp::vfp;

extern "C" {

void vfpsbMul1(float k, float *x, int n) { mul<float>(k, x, n); }
void vfpdbMul1(double k, double *x, int n) { mul<double>(k, x, n); }
void vfpsbMul2(float k, float *x, int n) { mul_vector<float>(k, x, n); }
void vfpdbMul2(double k, double *x, int n) { mul_vector<double>(k, x, n); }
void vfpsb_ScaleToInt(const float *src, int n, float lo, float hi, int *dst, int ilo, int ihi) {
    scale_to_int<float>(src, n, lo, hi, dst, ilo, ihi);
}
void vfpdb_ScaleToInt(const double *src, int n, double lo, double hi, int *dst, int ilo, int ihi) {
    scale_to_int<double>(src, n, lo, hi, dst, ilo, ihi);
}
int vfpsb_ScaleToInt2(const float *src, int n, float lo, float hi, int *dst, int ilo, int ihi) {
    return scale_to_int_rounded<float>(src, n, lo, hi, dst, ilo, ihi);
}
int vfpdb_ScaleToInt2(const double *src, int n, double lo, double hi, int *dst, int ilo, int ihi) {
    return scale_to_int_rounded<double>(src, n, lo, hi, dst, ilo, ihi);
}
void vfpsb_ScaleToFP(const float *src, int n, float lo, float hi, float *dst, float olo,
                     float ohi) {
    scale_to_fp<float>(src, n, lo, hi, dst, olo, ohi);
}
void vfpdb_ScaleToFP(const double *src, int n, double lo, double hi, double *dst, double olo,
                     double ohi) {
    scale_to_fp<double>(src, n, lo, hi, dst, olo, ohi);
}
int vfps_FindMax(const float *x, int start, int end) { return find_max<float>(x, start, end); }
int vfpd_FindMax(const double *x, int start, int end) { return find_max<double>(x, start, end); }
int vfps_FindMin(const float *x, int start, int end) { return find_min<float>(x, start, end); }
int vfpd_FindMin(const double *x, int start, int end) { return find_min<double>(x, start, end); }
int vfps_FindMax2(const float *x, int start, int end, int skip_start, int skip_end) {
    return find_max_skip<float>(x, start, end, skip_start, skip_end);
}
int vfpd_FindMax2(const double *x, int start, int end, int skip_start, int skip_end) {
    return find_max_skip<double>(x, start, end, skip_start, skip_end);
}
int vfps_FindMin2(const float *x, int start, int end, int skip_start, int skip_end) {
    return find_min_skip<float>(x, start, end, skip_start, skip_end);
}
int vfpd_FindMin2(const double *x, int start, int end, int skip_start, int skip_end) {
    return find_min_skip<double>(x, start, end, skip_start, skip_end);
}
void vfps_ExpandLinear(float *x, int n, float a, float b) { expand_linear<float>(x, n, a, b); }
void vfpd_ExpandLinear(double *x, int n, double a, double b) { expand_linear<double>(x, n, a, b); }
void vfps_ExpandLog(float *x, int n, float a, float b) { expand_log<float>(x, n, a, b); }
void vfpd_ExpandLog(double *x, int n, double a, double b) { expand_log<double>(x, n, a, b); }
int vfps_Smooth(const float *in, float *out, int n, int first, int end, int width, int phase) {
    return smooth<float>(in, out, n, first, end, width, phase);
}
int vfpd_Smooth(const double *in, double *out, int n, int first, int end, int width, int phase) {
    return smooth<double>(in, out, n, first, end, width, phase);
}
int vfps_SmoothCpx(const float *in, float *out, int n, int first, int end, int width) {
    return smooth_complex<float>(in, out, n, first, end, width);
}
int vfpd_SmoothCpx(const double *in, double *out, int n, int first, int end, int width) {
    return smooth_complex<double>(in, out, n, first, end, width);
}
void vfps_UnwrapPhase(const float *in, int start, int end, float *out) {
    unwrap_phase<float>(in, start, end, out);
}
void vfpd_UnwrapPhase(const double *in, int start, int end, double *out) {
    unwrap_phase<double>(in, start, end, out);
}
void vfps_FormatBuffer(int format, const float *in, float *out, int start, int end) {
    format_buffer<float>(format, in, out, start, end);
}
void vfpd_FormatBuffer(int format, const double *in, double *out, int start, int end) {
    format_buffer<double>(format, in, out, start, end);
}

uint32_t get_fpscr(void) { return dsp::vfp::get_fpscr(); }
uint32_t set_fpscr(uint32_t value) { return dsp::vfp::set_fpscr(value); }
uint32_t set_runfast(int on) { return dsp::vfp::set_runfast(on); }
}
