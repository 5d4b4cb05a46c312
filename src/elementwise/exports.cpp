// C exports of the element-wise operations.
#include "dsp.h"
#include "elementwise/convert.hpp"

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

// (end of arithmetic)

// Sequence rearrangement.

// (end of rearrangement)

// Differences, integration and phase unwrapping.

// (end of differences)

}  // extern "C"
