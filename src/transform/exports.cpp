// C exports of the transforms.
#include "dsp.h"
#include "transform/fft.hpp"
#include "transform/fourier.hpp"

using namespace dsp;

extern "C" {

// Complex FFT and bit reversal.
int dspfi_fft(dspf_signal *x, int inverse) { return fft<float>(*x, inverse); }
int dspi_fft(dsp_signal *x, int inverse) { return fft<double>(*x, inverse); }
int dspfi_bitrev(dspf_signal *x) { return bitrev<float>(*x); }
int dspi_bitrev(dsp_signal *x) { return bitrev<double>(*x); }
int dspfi_bitrev_scale(dspf_signal *x) { return bitrev_scale<float>(*x); }
int dspi_bitrev_scale(dsp_signal *x) { return bitrev_scale<double>(*x); }
int cf_dspfi_fft(float *data, int n, int cplx, int inverse) {
    return raw_fft<float>(data, n, cplx, inverse);
}
int cf_dspi_fft(double *data, int n, int cplx, int inverse) {
    return raw_fft<double>(data, n, cplx, inverse);
}

// Real FFT, DFT, DCT, Hilbert transform and analytic signal.
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
