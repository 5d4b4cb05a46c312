// C exports of the interpolation subsystem.
#include "dsp.h"
#include "interp/interp.hpp"

using namespace dsp;

extern "C" {

int dspf_interp(const dspf_signal *in, const dspf_signal *pos, dspf_signal *out, int mode) {
    return interp<float>(*in, *pos, *out, mode);
}
int dsp_interp(const dsp_signal *in, const dsp_signal *pos, dsp_signal *out, int mode) {
    return interp<double>(*in, *pos, *out, mode);
}
int dspf_cspline(const dspf_signal *in, dspf_signal *out, int mode) {
    return cspline<float>(*in, *out, mode);
}
int dsp_cspline(const dsp_signal *in, dsp_signal *out, int mode) {
    return cspline<double>(*in, *out, mode);
}
int dspfb_cspline_2d(const dspf_signal *x, const dspf_signal *y, dspf_signal *out, int mode) {
    return cspline_2d<float>(*x, *y, *out, mode);
}
int dspb_cspline_2d(const dsp_signal *x, const dsp_signal *y, dsp_signal *out, int mode) {
    return cspline_2d<double>(*x, *y, *out, mode);
}
int dspfb_inter(const dspf_signal *x, const dspf_signal *y, const dspf_signal *pos,
                dspf_signal *out, int mode) {
    return inter<float>(*x, *y, *pos, *out, mode);
}
int dspb_inter(const dsp_signal *x, const dsp_signal *y, const dsp_signal *pos, dsp_signal *out,
               int mode) {
    return inter<double>(*x, *y, *pos, *out, mode);
}

}  // extern "C"
