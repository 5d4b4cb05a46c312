// C exports of the binary operations.
#include "binary/binary.hpp"
#include "binary/corr.hpp"
#include "binary/dot.hpp"
#include "dsp.h"

using namespace dsp;

extern "C" {

int dspfb_add(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return add<float>(*a, *b, *r);
}
int dspb_add(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return add<double>(*a, *b, *r);
}
int dspfb_sub(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return sub<float>(*a, *b, *r);
}
int dspb_sub(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return sub<double>(*a, *b, *r);
}
int dspfb_mul(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return mul<float>(*a, *b, *r);
}
int dspb_mul(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return mul<double>(*a, *b, *r);
}
int dspfb_div(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return div<float>(*a, *b, *r);
}
int dspb_div(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return div<double>(*a, *b, *r);
}
int dspfb_conj_mul(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return conj_mul<float>(*a, *b, *r);
}
int dspb_conj_mul(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return conj_mul<double>(*a, *b, *r);
}
int dspfb_avg_add(const dspf_signal *a, const dspf_signal *b, dspf_signal *r, float w) {
    return avg_add<float>(*a, *b, *r, w);
}
int dspb_avg_add(const dsp_signal *a, const dsp_signal *b, dsp_signal *r, double w) {
    return avg_add<double>(*a, *b, *r, w);
}
int dspfb_max(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return dsp::max<float>(*a, *b, *r);
}
int dspb_max(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return dsp::max<double>(*a, *b, *r);
}
int dspfb_min(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return dsp::min<float>(*a, *b, *r);
}
int dspb_min(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return dsp::min<double>(*a, *b, *r);
}
int dspfb_pmul(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return pmul<float>(*a, *b, *r);
}
int dspb_pmul(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return pmul<double>(*a, *b, *r);
}
int dspfb_ritoc(const dspf_signal *re, const dspf_signal *im, dspf_signal *r) {
    return ritoc<float>(*re, *im, *r);
}
int dspb_ritoc(const dsp_signal *re, const dsp_signal *im, dsp_signal *r) {
    return ritoc<double>(*re, *im, *r);
}

// Dot product.

int dspfbs_dot(const dspf_signal *a, const dspf_signal *b, dspf_signal *r) {
    return dot<float>(*a, *b, *r);
}
int dspbs_dot(const dsp_signal *a, const dsp_signal *b, dsp_signal *r) {
    return dot<double>(*a, *b, *r);
}

// Correlation.

int dspfh_corr(const dspf_signal *x, const dspf_signal *y, dspf_signal *r, dspf_signal *scratch,
               int lags, int option) {
    return corr<float>(*x, *y, *r, scratch, lags, option);
}
int dsph_corr(const dsp_signal *x, const dsp_signal *y, dsp_signal *r, dsp_signal *scratch,
              int lags, int option) {
    return corr<double>(*x, *y, *r, scratch, lags, option);
}
int dspfb_corr(const dspf_signal *x, const dspf_signal *y, dspf_signal *r, dspf_signal *scratch,
               int lags) {
    return corr<float>(*x, *y, *r, scratch, lags, 0);
}
int dspb_corr(const dsp_signal *x, const dsp_signal *y, dsp_signal *r, dsp_signal *scratch,
              int lags) {
    return corr<double>(*x, *y, *r, scratch, lags, 0);
}

}  // extern "C"
