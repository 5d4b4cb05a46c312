// C exports of the real FFT, DFT, DCT, Hilbert transform and analytic signal.
#include "dsp.h"
#include "transform/fourier.hpp"

using namespace dsp;

extern "C" {

int dspfi_rfft(dspf_signal *x) { return rfft<float>(*x); }
int dspi_rfft(dsp_signal *x) { return rfft<double>(*x); }
int dspfi_irfft(dspf_signal *x) { return irfft<float>(*x); }
int dspi_irfft(dsp_signal *x) { return irfft<double>(*x); }
int dspfi_dft(dspf_signal *x, int inverse) { return dft<float>(*x, inverse); }
int dspi_dft(dsp_signal *x, int inverse) { return dft<double>(*x, inverse); }
int dspfi_rdft(dspf_signal *x) { return rdft<float>(*x); }
int dspi_rdft(dsp_signal *x) { return rdft<double>(*x); }
int dspfi_irdft(dspf_signal *x, int odd) { return irdft<float>(*x, odd); }
int dspi_irdft(dsp_signal *x, int odd) { return irdft<double>(*x, odd); }
int dspfi_dct(dspf_signal *x, int inverse) { return dct<float>(*x, inverse); }
int dspi_dct(dsp_signal *x, int inverse) { return dct<double>(*x, inverse); }
int dspfi_hilbert(dspf_signal *x) { return hilbert<float>(*x); }
int dspi_hilbert(dsp_signal *x) { return hilbert<double>(*x); }
int dspfi_analytic(dspf_signal *x) { return analytic<float>(*x); }
int dspi_analytic(dsp_signal *x) { return analytic<double>(*x); }

}  // extern "C"
