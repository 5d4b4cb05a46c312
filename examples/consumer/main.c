/* Uses the installed library: wraps two samples in a record, converts them
 * to polar form and checks the result and the library version. Exits
 * nonzero on any mismatch. */
#include <dsp.h>
#include <math.h>
#include <stdio.h>

int main(void) {
    dsp_signal x;
    dsp_init(&x);
    x.n = 2;
    if (dsp_alloc(&x) != 0) return 1;
    x.data[0] = -3.0;
    x.data[1] = 4.0;
    if (dspi_rtop(&x) != 0 || !x.cplx) return 1;
    /* (-3) -> (3, pi), 4 -> (4, 0) */
    if (fabs(x.data[0] - 3.0) > 1e-12 || fabs(x.data[1] - 3.141592653589793) > 1e-12 ||
        fabs(x.data[2] - 4.0) > 1e-12 || x.data[3] != 0.0)
        return 2;
    dsp_destroy(&x);
    if (dsp_version() != 205 || dspf_version() != 205) return 3;
    printf("consumer: dsp %d linked and working\n", dsp_version());
    return 0;
}
