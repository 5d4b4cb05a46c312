// C exports of the element-wise operations.
#include "dsp.h"
#include "elementwise/arith.hpp"
#include "elementwise/convert.hpp"
#include "elementwise/differences.hpp"
#include "elementwise/rearrange.hpp"

using namespace dsp;

extern "C" {

int dspfi_real(dspf_signal *x) { return real<float>(*x); }
int dspi_real(dsp_signal *x) { return real<double>(*x); }
int dspfi_imag(dspf_signal *x) { return imag<float>(*x); }
int dspi_imag(dsp_signal *x) { return imag<double>(*x); }
int dspfi_rtoc(dspf_signal *x) { return rtoc<float>(*x); }
int dspi_rtoc(dsp_signal *x) { return rtoc<double>(*x); }
int dspfi_rtop(dspf_signal *x) { return rtop<float>(*x); }
int dspi_rtop(dsp_signal *x) { return rtop<double>(*x); }
int dspfi_ptor(dspf_signal *x) { return ptor<float>(*x); }
int dspi_ptor(dsp_signal *x) { return ptor<double>(*x); }
int dspfi_mag(dspf_signal *x) { return mag<float>(*x); }
int dspi_mag(dsp_signal *x) { return mag<double>(*x); }
int dspfi_magsq(dspf_signal *x) { return magsq<float>(*x); }
int dspi_magsq(dsp_signal *x) { return magsq<double>(*x); }
int dspfi_phase(dspf_signal *x) { return phase<float>(*x); }
int dspi_phase(dsp_signal *x) { return phase<double>(*x); }
int dspfi_conj(dspf_signal *x) { return conj<float>(*x); }
int dspi_conj(dsp_signal *x) { return conj<double>(*x); }
int dspfi_timesi(dspf_signal *x) { return timesi<float>(*x); }
int dspi_timesi(dsp_signal *x) { return timesi<double>(*x); }

// Arithmetic and math functions.
int dspfi_neg(dspf_signal *x) { return dsp::neg<float>(*x); }
int dspi_neg(dsp_signal *x) { return dsp::neg<double>(*x); }
int dspfi_offset(dspf_signal *x, float d) { return dsp::offset<float>(*x, d); }
int dspi_offset(dsp_signal *x, double d) { return dsp::offset<double>(*x, d); }
int dspfi_scale(dspf_signal *x, float a) { return dsp::scale<float>(*x, a); }
int dspi_scale(dsp_signal *x, double a) { return dsp::scale<double>(*x, a); }
int dspfi_cscale(dspf_signal *x, float a, float b) { return dsp::cscale<float>(*x, a, b); }
int dspi_cscale(dsp_signal *x, double a, double b) { return dsp::cscale<double>(*x, a, b); }
int dspfi_recip(dspf_signal *x) { return dsp::recip<float>(*x); }
int dspi_recip(dsp_signal *x) { return dsp::recip<double>(*x); }
int dspfi_sqrt(dspf_signal *x) { return dsp::sqrt<float>(*x); }
int dspi_sqrt(dsp_signal *x) { return dsp::sqrt<double>(*x); }
int dspfi_square(dspf_signal *x) { return dsp::square<float>(*x); }
int dspi_square(dsp_signal *x) { return dsp::square<double>(*x); }
int dspfi_exp(dspf_signal *x) { return dsp::exp<float>(*x); }
int dspi_exp(dsp_signal *x) { return dsp::exp<double>(*x); }
int dspfi_exp10(dspf_signal *x) { return dsp::exp10<float>(*x); }
int dspi_exp10(dsp_signal *x) { return dsp::exp10<double>(*x); }
int dspfi_log(dspf_signal *x) { return dsp::log<float>(*x); }
int dspi_log(dsp_signal *x) { return dsp::log<double>(*x); }
int dspfi_log10(dspf_signal *x) { return dsp::log10<float>(*x); }
int dspi_log10(dsp_signal *x) { return dsp::log10<double>(*x); }
int dspfi_db(dspf_signal *x, float k) { return dsp::db<float>(*x, k); }
int dspi_db(dsp_signal *x, double k) { return dsp::db<double>(*x, k); }
int dspfi_sinh(dspf_signal *x) { return dsp::sinh<float>(*x); }
int dspi_sinh(dsp_signal *x) { return dsp::sinh<double>(*x); }
int dspfi_cosh(dspf_signal *x) { return dsp::cosh<float>(*x); }
int dspi_cosh(dsp_signal *x) { return dsp::cosh<double>(*x); }
int dspfi_asin(dspf_signal *x) { return dsp::asin<float>(*x); }
int dspi_asin(dsp_signal *x) { return dsp::asin<double>(*x); }
int dspfi_acos(dspf_signal *x) { return dsp::acos<float>(*x); }
int dspi_acos(dsp_signal *x) { return dsp::acos<double>(*x); }
int dspfi_besi0(dspf_signal *x) { return dsp::besi0<float>(*x); }
int dspfi_besy0(dspf_signal *x) { return dsp::besy0<float>(*x); }
int dspi_besy0(dsp_signal *x) { return dsp::besy0<double>(*x); }
int dspfi_besy1(dspf_signal *x) { return dsp::besy1<float>(*x); }
int dspi_besy1(dsp_signal *x) { return dsp::besy1<double>(*x); }
int dspfi_limit(dspf_signal *x, int, float a, float b, int *clipped) {
    return dsp::limit<float>(*x, a, b, clipped);
}
int dspi_limit(dsp_signal *x, double a, double b, int *clipped) {
    return dsp::limit<double>(*x, a, b, clipped);
}
int dspfi_addcos(dspf_signal *x, int flags, float freq, float amp, float phase) {
    return dsp::addcos<float>(*x, flags, freq, amp, phase);
}
int dspi_addcos(dsp_signal *x, int flags, double freq, double amp, double phase) {
    return dsp::addcos<double>(*x, flags, freq, amp, phase);
}

// Sequence rearrangement.
int dspfi_rev(dspf_signal *x) { return rev<float>(*x); }
int dspi_rev(dsp_signal *x) { return rev<double>(*x); }
int dspfi_shift(dspf_signal *x, int k) { return shift<float>(*x, k); }
int dspi_shift(dsp_signal *x, int k) { return shift<double>(*x, k); }
int dspfi_swap_halves(dspf_signal *x) { return swap_halves<float>(*x); }
int dspi_swap_halves(dsp_signal *x) { return swap_halves<double>(*x); }
int dspfi_swap_halves2(dspf_signal *x) { return swap_halves2<float>(*x); }
int dspi_swap_halves2(dsp_signal *x) { return swap_halves2<double>(*x); }
int dspfi_zero(dspf_signal *x) { return zero<float>(*x); }
int dspi_zero(dsp_signal *x) { return zero<double>(*x); }
int dspfi_zpad(dspf_signal *x, int m) { return zpad<float>(*x, m); }
int dspi_zpad(dsp_signal *x, int m) { return zpad<double>(*x, m); }
int dspfi_zpad2(dspf_signal *x, int m, int flags) { return zpad2<float>(*x, m, flags); }
int dspi_zpad2(dsp_signal *x, int m, int flags) { return zpad2<double>(*x, m, flags); }
int dspfi_unzpad(dspf_signal *x, int m, int flags) { return unzpad<float>(*x, m, flags); }
int dspi_unzpad(dsp_signal *x, int m, int flags) { return unzpad<double>(*x, m, flags); }
int dspfi_zinter(dspf_signal *x) { return zinter<float>(*x); }
int dspi_zinter(dsp_signal *x) { return zinter<double>(*x); }
int dspfi_sort(dspf_signal *x) { return sort<float>(*x); }
int dspi_sort(dsp_signal *x) { return sort<double>(*x); }

// Differences, integration and phase unwrapping.
int dspfi_integ(dspf_signal *x) { return integ<float>(*x); }
int dspi_integ(dsp_signal *x) { return integ<double>(*x); }
int dspfi_differ(dspf_signal *x) { return differ<float>(*x); }
int dspi_differ(dsp_signal *x) { return differ<double>(*x); }
int dspfi_pdiffer(dspf_signal *x) { return pdiffer<float>(*x); }
int dspi_pdiffer(dsp_signal *x) { return pdiffer<double>(*x); }
int dspfi_edge(dspf_signal *x, int flags, float level) { return edge<float>(*x, flags, level); }
int dspi_edge(dsp_signal *x, int flags, double level) { return edge<double>(*x, flags, level); }
int dspfi_unwrap(dspf_signal *x) { return unwrap<float>(*x); }
int dspi_unwrap(dsp_signal *x) { return unwrap<double>(*x); }
int dspfi_unwrap_wnd(dspf_signal *x, int w) { return unwrap_wnd<float>(*x, w); }
int dspi_unwrap_wnd(dsp_signal *x, int w) { return unwrap_wnd<double>(*x, w); }
int dspfi_recon(dspf_signal *x) { return recon<float>(*x); }
int dspi_recon(dsp_signal *x) { return recon<double>(*x); }
int dspfi_orecon(dspf_signal *x, int odd) { return orecon<float>(*x, odd); }
int dspi_orecon(dsp_signal *x, int odd) { return orecon<double>(*x, odd); }

}  // extern "C"
