// C exports of the statistics and the peak search.
#include "dsp.h"
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

}  // extern "C"
