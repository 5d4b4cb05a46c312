// C exports of the complex FFT and the bit reversal (the other transforms
// are exported from fourier_exports.cpp).
#include "dsp.h"
#include "frame/record.hpp"
#include "transform/fft.hpp"

using namespace dsp;

namespace {

// A record on the stack over the caller's array (not owned), transformed in
// place. Real data is widened into storage the record takes for itself,
// which is neither returned nor released.
template <class T>
int raw_fft(T *data, int n, int cplx, int inverse) {
    signal_t<T> x;
    init<T>(x);
    x.data = data;
    x.n = n;
    x.cplx = cplx;
    x.alloc = 0;
    return fft<T>(x, inverse);
}

}  // namespace

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

}  // extern "C"
