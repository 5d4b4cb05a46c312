// C exports of the statistics and the peak search.
#include "dsp.h"
#include "stats/peak.hpp"
#include "stats/polynomial.hpp"
#include "stats/stats.hpp"

using namespace dsp;

extern "C" {

int dspfs_sum(const dspf_signal *in, dspf_signal *out) { return sum<float>(*in, *out); }
int dsps_sum(const dsp_signal *in, dsp_signal *out) { return sum<double>(*in, *out); }
int dspfs_mean(const dspf_signal *in, dspf_signal *out) { return mean<float>(*in, *out); }
int dsps_mean(const dsp_signal *in, dsp_signal *out) { return mean<double>(*in, *out); }
int dspfs_magsq_sum(const dspf_signal *in, dspf_signal *out) { return magsq_sum<float>(*in, *out); }
int dsps_magsq_sum(const dsp_signal *in, dsp_signal *out) { return magsq_sum<double>(*in, *out); }
int dspfs_rms(const dspf_signal *in, dspf_signal *out) { return rms<float>(*in, *out); }
int dsps_rms(const dsp_signal *in, dsp_signal *out) { return rms<double>(*in, *out); }
int dspfs_median(const dspf_signal *in, dspf_signal *out) { return median<float>(*in, *out); }
int dsps_median(const dsp_signal *in, dsp_signal *out) { return median<double>(*in, *out); }
int dspfs_max(const dspf_signal *in, dspf_signal *out) { return dsp::max<float>(*in, *out); }
int dsps_max(const dsp_signal *in, dsp_signal *out) { return dsp::max<double>(*in, *out); }
int dspfs_min(const dspf_signal *in, dspf_signal *out) { return dsp::min<float>(*in, *out); }
int dsps_min(const dsp_signal *in, dsp_signal *out) { return dsp::min<double>(*in, *out); }
int dspfs_gmean(const dspf_signal *in, dspf_signal *out) { return gmean<float>(*in, *out); }
int dsps_gmean(const dsp_signal *in, dsp_signal *out) { return gmean<double>(*in, *out); }
int dspfs_hmean(const dspf_signal *in, dspf_signal *out) { return hmean<float>(*in, *out); }
int dsps_hmean(const dsp_signal *in, dsp_signal *out) { return hmean<double>(*in, *out); }
int dspfs_pop_var(const dspf_signal *in, dspf_signal *out) { return pop_var<float>(*in, *out); }
int dsps_pop_var(const dsp_signal *in, dsp_signal *out) { return pop_var<double>(*in, *out); }
int dspfs_samp_var(const dspf_signal *in, dspf_signal *out) { return samp_var<float>(*in, *out); }
int dsps_samp_var(const dsp_signal *in, dsp_signal *out) { return samp_var<double>(*in, *out); }
int dspfs_pop_stddev(const dspf_signal *in, dspf_signal *out) {
    return pop_stddev<float>(*in, *out);
}
int dsps_pop_stddev(const dsp_signal *in, dsp_signal *out) { return pop_stddev<double>(*in, *out); }
int dspfs_samp_stddev(const dspf_signal *in, dspf_signal *out) {
    return samp_stddev<float>(*in, *out);
}
int dsps_samp_stddev(const dsp_signal *in, dsp_signal *out) {
    return samp_stddev<double>(*in, *out);
}
int dspfs_skew(const dspf_signal *in, dspf_signal *out) { return skew<float>(*in, *out); }
int dsps_skew(const dsp_signal *in, dsp_signal *out) { return skew<double>(*in, *out); }
int dspfs_excess(const dspf_signal *in, dspf_signal *out) { return excess<float>(*in, *out); }
int dsps_excess(const dsp_signal *in, dsp_signal *out) { return excess<double>(*in, *out); }
int dspfs_hist(const dspf_signal *in, dspf_signal *out, float low, float width, int bins) {
    return hist<float>(*in, *out, low, width, bins);
}
int dsps_hist(const dsp_signal *in, dsp_signal *out, double low, double width, int bins) {
    return hist<double>(*in, *out, low, width, bins);
}

// Peak search.
int dspfs_peak(const dspf_signal *in, dspf_signal *out, int flags, int index) {
    return peak<float>(*in, *out, flags, index);
}
int dsps_peak(const dsp_signal *in, dsp_signal *out, int flags, int index) {
    return peak<double>(*in, *out, flags, index);
}

// Regression and polynomials.
int dspfs_lin_regres(const dspf_signal *in, dspf_signal *out) {
    return lin_regres<float>(*in, *out);
}
int dsps_lin_regres(const dsp_signal *in, dsp_signal *out) { return lin_regres<double>(*in, *out); }
int dspfs_lin_regres2(const dspf_signal *x, const dspf_signal *y, dspf_signal *out) {
    return lin_regres2<float>(*x, *y, *out);
}
int dsps_lin_regres2(const dsp_signal *x, const dsp_signal *y, dsp_signal *out) {
    return lin_regres2<double>(*x, *y, *out);
}
int dspfs_psolve(const dspf_signal *x, const dspf_signal *y, dspf_signal *out, int degree) {
    return psolve<float>(*x, *y, *out, degree);
}
int dsps_psolve(const dsp_signal *x, const dsp_signal *y, dsp_signal *out, int degree) {
    return psolve<double>(*x, *y, *out, degree);
}
int dspfs_pcsolve(const dspf_signal *x, const dspf_signal *y, dspf_signal *out, int degree) {
    return pcsolve<float>(*x, *y, *out, degree);
}
int dsps_pcsolve(const dsp_signal *x, const dsp_signal *y, dsp_signal *out, int degree) {
    return pcsolve<double>(*x, *y, *out, degree);
}
int dspfs_peval(const dspf_signal *coef, const dspf_signal *x, dspf_signal *out) {
    return peval<float>(*coef, *x, *out);
}
int dsps_peval(const dsp_signal *coef, const dsp_signal *x, dsp_signal *out) {
    return peval<double>(*coef, *x, *out);
}
int dspfi_proots(dspf_signal *x) { return proots<float>(*x); }
int dspi_proots(dsp_signal *x) { return proots<double>(*x); }
int dspfi_pztoc(dspf_signal *x) { return pztoc<float>(*x); }
int dspi_pztoc(dsp_signal *x) { return pztoc<double>(*x); }

}  // extern "C"
