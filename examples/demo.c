/* A first look at the library: records, growth from a caller's array,
 * appending, sub-ranges, conversions between real, complex and polar form,
 * and the allocator hooks. */
#include <dsp.h>
#include <stdio.h>
#include <stdlib.h>

static int allocations;

static void counting_alloc(dsp_signal *x) {
    ++allocations;
    x->data = malloc((size_t)(x->cplx ? 2 * x->n : x->n) * sizeof(double));
}

static void show(const char *label, const dsp_signal *x) {
    printf("%-34s n=%d %s delta=%g:", label, x->n, x->cplx ? "complex" : "real", x->delta);
    for (int i = 0; i < x->n; ++i) {
        if (x->cplx)
            printf(" (%.4g, %.4g)", x->data[2 * i], x->data[2 * i + 1]);
        else
            printf(" %.4g", x->data[i]);
    }
    printf("\n");
}

int main(void) {
    printf("dsp library version %d\n\n", dsp_version());

    /* A record that wraps the caller's array: the library never writes it. */
    double samples[4] = {3.0, -4.0, 0.5, 2.0};
    dsp_signal x;
    dsp_init(&x);
    x.data = samples;
    x.n = 4;
    x.delta = 0.001;
    show("wrapped caller array", &x);

    /* Widening to complex takes the samples into storage the record owns. */
    dspi_rtoc(&x);
    show("complex (owned copy)", &x);
    printf("%-34s %g %g %g %g (unchanged)\n", "caller array", samples[0], samples[1],
           samples[2], samples[3]);

    dspi_timesi(&x);
    show("times i", &x);
    dspi_rtop(&x);
    show("polar (magnitude, phase)", &x);
    dspi_ptor(&x);
    show("back to rectangular", &x);

    dsp_signal y;
    dsp_init(&y);
    dsp_copy(&y, &x);
    dsp_append(&y, &x);
    show("appended to itself", &y);
    dspu_subvec(&y, &y, 3, 3);
    show("points 3..5", &y);
    dspu_magsq(&y, &y);
    show("squared magnitudes", &y);

    /* Allocator hooks count the library's allocations. */
    dsp_alloc_hook previous;
    dsp_lib_alloc(counting_alloc, &previous);
    dsp_signal z;
    dsp_init(&z);
    z.n = 1000;
    dsp_alloc(&z);
    dsp_lib_alloc(previous, NULL);
    printf("\nallocation hook saw %d allocation(s) of the 1000-point record\n", allocations);

    dsp_destroy(&x);
    dsp_destroy(&y);
    dsp_destroy(&z);
    dsp_free_internal();
    return 0;
}
