/*
 * dsp.h - public C interface of the dsp signal-processing library.
 *
 * Every operation exists in single precision (prefix dspf, record
 * dspf_signal, float scalars) and in double precision (prefix dsp, record
 * dsp_signal, double scalars). Operations return 0 on success and -1 on
 * failure unless stated otherwise. Inputs come first in every argument list,
 * the result record last; any result may be the same record as an input.
 * Pointer arguments are not checked for null unless stated.
 *
 * The library keeps process-wide caches and is for use by one thread at a
 * time.
 */
#ifndef DSP_H
#define DSP_H

#include <stdint.h>

#if defined(_WIN32) || defined(__CYGWIN__)
#  if defined(DSP_BUILDING_LIBRARY)
#    define DSP_API __declspec(dllexport)
#  elif defined(DSP_STATIC)
#    define DSP_API
#  else
#    define DSP_API __declspec(dllimport)
#  endif
#else
#  define DSP_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Records
 * ------------------------------------------------------------------------ */

/*
 * A sampled signal. `data` holds n scalars (real) or 2n interleaved
 * scalars re0, im0, re1, im1, ... (complex, cplx != 0). `alloc` is the
 * number of scalars the record owns at `data`; 0 or less means the storage
 * belongs to the caller and is never freed, reallocated or written by the
 * library's sizing. Storage only grows.
 */
typedef struct {
    float delta;     /* sample spacing; 1.0 after init */
    float *data;     /* samples */
    int32_t alloc;   /* scalars owned at data (<= 0: not owned) */
    int32_t n;       /* number of points */
    int32_t cplx;    /* nonzero: complex samples */
    int32_t reserved;/* zeroed by init/destroy, otherwise untouched */
} dspf_signal;

typedef struct {
    double delta;
    double *data;
    int32_t alloc;
    int32_t n;
    int32_t cplx;
    int32_t reserved;
} dsp_signal;

/* ------------------------------------------------------------------------
 * Window kinds (values 0 to 23; several names per value)
 * ------------------------------------------------------------------------ */

typedef int32_t dsp_window;

enum {
    DSP_WINDOW_UNIFORM = 0,
    DSP_WINDOW_RECTANGULAR = 0,
    DSP_WINDOW_NONE = 0,
    DSP_WINDOW_P000 = 0,
    DSP_WINDOW_BARTLETT = 1,
    DSP_WINDOW_TRIANGULAR = 1,
    DSP_WINDOW_HANN = 2,
    DSP_WINDOW_P110 = 2,
    DSP_WINDOW_HAMMING = 3,
    DSP_WINDOW_P100 = 3,
    DSP_WINDOW_BLACKMAN = 4,
    DSP_WINDOW_BLACKMAN_HARRIS3 = 5,
    DSP_WINDOW_P200 = 5,
    DSP_WINDOW_BLACKMAN_HARRIS4 = 6,
    DSP_WINDOW_P310 = 6,
    DSP_WINDOW_LOWLEAK = 6,
    DSP_WINDOW_GAUSSTOP = 7,
    DSP_WINDOW_P400 = 7,
    DSP_WINDOW_FLAT4 = 8,
    DSP_WINDOW_P301 = 8,
    DSP_WINDOW_FLATTOP = 9,
    DSP_WINDOW_FLAT5 = 9,
    DSP_WINDOW_P401 = 9,
    DSP_WINDOW_FLAT6 = 10,
    DSP_WINDOW_P511 = 10,
    DSP_WINDOW_FLAT7 = 11,
    DSP_WINDOW_P611 = 11,
    DSP_WINDOW_P501 = 12,
    DSP_WINDOW_P601 = 13,
    DSP_WINDOW_KAISER70 = 14,
    DSP_WINDOW_KAISER80 = 15,
    DSP_WINDOW_KAISER90 = 16,
    DSP_WINDOW_KAISER100 = 17,
    DSP_WINDOW_KAISER110 = 18,
    DSP_WINDOW_KAISER120 = 19,
    DSP_WINDOW_GAUSS60 = 20,
    DSP_WINDOW_GAUSS70 = 21,
    DSP_WINDOW_GAUSS80 = 22,
    DSP_WINDOW_RIEMANN = 23,
    DSP_WINDOW_SINC_LOBE = 23
};

/* ------------------------------------------------------------------------
 * Record management and allocator hooks
 * ------------------------------------------------------------------------ */

/* Allocation hook: replaces free-then-malloc in dspf_alloc; must leave the
 * new storage (or null) in data. */
typedef void (*dspf_alloc_hook)(dspf_signal *);
/* Reallocation hook: replaces realloc in dspf_realloc; called with the
 * record, the previous point count and the previous complex flag. */
typedef void (*dspf_realloc_hook)(dspf_signal *, int prev_n, int prev_cplx);
/* Free hook: replaces free in dspf_destroy. */
typedef void (*dspf_free_hook)(dspf_signal *);
typedef void (*dsp_alloc_hook)(dsp_signal *);
typedef void (*dsp_realloc_hook)(dsp_signal *, int prev_n, int prev_cplx);
typedef void (*dsp_free_hook)(dsp_signal *);

/* delta 1, data null, alloc/n/cplx/reserved 0. Frees nothing. */
DSP_API int dspf_init(dspf_signal *x);
DSP_API int dsp_init(dsp_signal *x);
/* Frees owned storage (free hook if set), then resets like init. */
DSP_API int dspf_destroy(dspf_signal *x);
DSP_API int dsp_destroy(dsp_signal *x);
/* Sizes the storage for n points of the record's kind; contents are not
 * kept when a new block is taken. */
DSP_API int dspf_alloc(dspf_signal *x);
DSP_API int dsp_alloc(dsp_signal *x);
/* Like alloc, but keeps the leading points of the previous shape. */
DSP_API int dspf_realloc(dspf_signal *x, int prev_n, int prev_cplx);
DSP_API int dsp_realloc(dsp_signal *x, int prev_n, int prev_cplx);
/* Appends the points of b to a (a becomes complex if b is). */
DSP_API int dspf_append(dspf_signal *a, const dspf_signal *b);
DSP_API int dsp_append(dsp_signal *a, const dsp_signal *b);
/* dst becomes a copy of src (delta, cplx, n, samples). */
DSP_API int dspf_copy(dspf_signal *dst, const dspf_signal *src);
DSP_API int dsp_copy(dsp_signal *dst, const dsp_signal *src);
/* Copies the first min(max(count, 0), src.n) points. */
DSP_API int dspf_copy_at_most(dspf_signal *dst, const dspf_signal *src, int count);
DSP_API int dsp_copy_at_most(dsp_signal *dst, const dsp_signal *src, int count);
/* Tolerant three-way comparison: delta first, then the samples in storage
 * order; -1 (result untouched) when the point counts differ. */
DSP_API int dspf_cmp(const dspf_signal *a, const dspf_signal *b, float tol, int *result);
DSP_API int dsp_cmp(const dsp_signal *a, const dsp_signal *b, double tol, int *result);

DSP_API int dspf_lib_init(void);
DSP_API int dsp_lib_init(void);
/* Replace a hook (null restores the system allocator); the previous hook is
 * stored through `previous` when it is not null. */
DSP_API int dspf_lib_alloc(dspf_alloc_hook hook, dspf_alloc_hook *previous);
DSP_API int dsp_lib_alloc(dsp_alloc_hook hook, dsp_alloc_hook *previous);
DSP_API int dspf_lib_realloc(dspf_realloc_hook hook, dspf_realloc_hook *previous);
DSP_API int dsp_lib_realloc(dsp_realloc_hook hook, dsp_realloc_hook *previous);
DSP_API int dspf_lib_free(dspf_free_hook hook, dspf_free_hook *previous);
DSP_API int dsp_lib_free(dsp_free_hook hook, dsp_free_hook *previous);
/* Releases every internal cache and scratch record of one precision. */
DSP_API int dspf_free_internal(void);
DSP_API int dsp_free_internal(void);
/* The library version, 205. */
DSP_API int dspf_version(void);
DSP_API int dsp_version(void);

/* ------------------------------------------------------------------------
 * Utilities (result may be the source record unless stated)
 * ------------------------------------------------------------------------ */

/* Points start .. start+count-1 of src, clamped to src. */
DSP_API int dspfu_subvec(const dspf_signal *src, dspf_signal *dst, int start, int count);
DSP_API int dspu_subvec(const dsp_signal *src, dsp_signal *dst, int start, int count);
/* Single-precision copy; -1 when src and dst are the same record. */
DSP_API int dspfu_tof(const dspf_signal *src, dspf_signal *dst);
DSP_API int dspu_tof(const dsp_signal *src, dspf_signal *dst);
/* Real record of magnitudes. */
DSP_API int dspfu_mag(const dspf_signal *src, dspf_signal *dst);
DSP_API int dspu_mag(const dsp_signal *src, dsp_signal *dst);
/* Real record of squared magnitudes, clamped to the large value L. */
DSP_API int dspfu_magsq(const dspf_signal *src, dspf_signal *dst);
DSP_API int dspu_magsq(const dsp_signal *src, dsp_signal *dst);
/* Square roots (principal root for complex; 0 for negative reals). */
DSP_API int dspfu_sqrt(const dspf_signal *src, dspf_signal *dst);
DSP_API int dspu_sqrt(const dsp_signal *src, dsp_signal *dst);

/* ------------------------------------------------------------------------
 * Representation conversions (in place)
 * ------------------------------------------------------------------------ */

DSP_API int dspfi_real(dspf_signal *x);
DSP_API int dspi_real(dsp_signal *x);
DSP_API int dspfi_imag(dspf_signal *x);
DSP_API int dspi_imag(dsp_signal *x);
DSP_API int dspfi_rtoc(dspf_signal *x);
DSP_API int dspi_rtoc(dsp_signal *x);
DSP_API int dspfi_rtop(dspf_signal *x);
DSP_API int dspi_rtop(dsp_signal *x);
DSP_API int dspfi_ptor(dspf_signal *x);
DSP_API int dspi_ptor(dsp_signal *x);
DSP_API int dspfi_mag(dspf_signal *x);
DSP_API int dspi_mag(dsp_signal *x);
DSP_API int dspfi_magsq(dspf_signal *x);
DSP_API int dspi_magsq(dsp_signal *x);
DSP_API int dspfi_phase(dspf_signal *x);
DSP_API int dspi_phase(dsp_signal *x);
DSP_API int dspfi_conj(dspf_signal *x);
DSP_API int dspi_conj(dsp_signal *x);
DSP_API int dspfi_timesi(dspf_signal *x);
DSP_API int dspi_timesi(dsp_signal *x);

/* ------------------------------------------------------------------------
 * Arithmetic and math functions (in place)
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Sequence rearrangement (in place)
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Differences, integration and phase unwrapping (in place)
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Complex FFT, bit reversal and raw-array entry points
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Real FFT, DFT, DCT, Hilbert transform and analytic signal
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Window names
 * ------------------------------------------------------------------------ */

/* Window kind of a name: the 80 names ("Hann", "P110", "DSP_WINDOW_HANN",
 * ...) in any mix of upper and lower case, whole names only. 0 and the value
 * written on a match; -1 and 0 written otherwise; -1 for null pointers. */
DSP_API int dspf_window_from_str(const char *name, dsp_window *value);
DSP_API int dsp_window_from_str(const char *name, dsp_window *value);
/* Name of a window kind: never finds one; writes an empty text into buf
 * (when buf is not null and len > 0) and returns -1. */
DSP_API int dspf_window_to_str(dsp_window code, char *buf, int len);
DSP_API int dsp_window_to_str(dsp_window code, char *buf, int len);

/* (end of section) */

/* ------------------------------------------------------------------------
 * Window generation
 * ------------------------------------------------------------------------ */

/*
 * Window flags: bits 0-1 normalisation (0 unit mean, 1 unit rms, 2 unit
 * peak, 3 invalid); 4 symmetric sampling (Gauss, Kaiser, sinc, Tukey only);
 * 8 explicit width from the parameter (cosine sums and the uniform box
 * only); 16 rotate even the uniform window; 32 do not rotate. Windows are
 * centred at index n/2 and, unless flag 32, the windowed record is rotated
 * left by n/2 points so that the centre lands at index 0. A complex record is
 * multiplied point by point (both parts) by the real window.
 */
/* Multiplies x by the window of a kind (0-24); -1 with flag 8. */
DSP_API int dspfi_window(dspf_signal *x, dsp_window kind, int flags);
DSP_API int dspi_window(dsp_signal *x, dsp_window kind, int flags);
/* As dspfi_window with the explicit width p (flag 8); generated windows are
 * kept in a cache of 16 (first in, first out). */
DSP_API int dspfi_window2(dspf_signal *x, dsp_window kind, int flags, float p);
DSP_API int dspi_window2(dsp_signal *x, dsp_window kind, int flags, double p);
/* Cosine sum with the caller's coefficients (real record), periodic, not
 * normalised, always rotated. */
DSP_API int dspfi_window_cos(dspf_signal *x, const dspf_signal *coef);
DSP_API int dspi_window_cos(dsp_signal *x, const dsp_signal *coef);
/* Gaussian exp(-d^2 / (2 sigma^2 n^2)) at distance d from the centre. */
DSP_API int dspfi_window_gauss(dspf_signal *x, float sigma, int flags);
DSP_API int dspi_window_gauss(dsp_signal *x, double sigma, int flags);
/* Kaiser I0(beta sqrt(1 - (2d/n)^2)) (symmetric: 2d/(n-1)). */
DSP_API int dspfi_window_kaiser(dspf_signal *x, float beta, int flags);
DSP_API int dspi_window_kaiser(dsp_signal *x, double beta, int flags);
/* Sinc power (sin(u)/u)^power over u in [-half_span, half_span]; the single
 * family uses sin(u) as the base. */
DSP_API int dspfi_window_sinc(dspf_signal *x, float half_span, float power, int flags);
DSP_API int dspi_window_sinc(dsp_signal *x, double half_span, double power, int flags);
/* Tukey window: flat over the fraction 1 - alpha, cosine tapers outside. */
DSP_API int dspfi_window_tukey(dspf_signal *x, float alpha, int flags);
DSP_API int dspi_window_tukey(dsp_signal *x, double alpha, int flags);
/* Filter-design windows (unit peak, symmetric, not rotated): code 100
 * Gaussian, 101 Kaiser from the transition width p, 102 and 103 sinc
 * powers; other codes are window kinds. */
DSP_API int dspfi_window_fir(dspf_signal *x, int code, float p);
DSP_API int dspi_window_fir(dsp_signal *x, int code, double p);

/* (end of section) */

/* ------------------------------------------------------------------------
 * Window metrics
 * ------------------------------------------------------------------------ */

/* Peak of the window of n points normalised by the mode of flags (1 for
 * unit peak or n <= 0); -1 with flag 8 or mode 3. */
DSP_API int dspf_window_scale(float *out, dsp_window kind, int flags, int n);
DSP_API int dsp_window_scale(double *out, dsp_window kind, int flags, int n);
/* As window_scale with the explicit width p when flags has bit 8. */
DSP_API int dspf_window2_scale(float *out, dsp_window kind, int flags, int n, float p);
DSP_API int dsp_window2_scale(double *out, dsp_window kind, int flags, int n, double p);
/* Equivalent noise bandwidth in bins: mean square over squared mean. */
DSP_API int dspf_window_enbw(float *out, dsp_window kind, int n);
DSP_API int dsp_window_enbw(double *out, dsp_window kind, int n);
DSP_API int dspf_window2_enbw(float *out, dsp_window kind, int n, float p);
DSP_API int dsp_window2_enbw(double *out, dsp_window kind, int n, double p);

/* (end of section) */

/* ------------------------------------------------------------------------
 * Windowed spectrum
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Element-wise binary arithmetic
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Dot product
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Descriptive statistics
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Peak search
 * ------------------------------------------------------------------------ */

/* (end of section) */

#ifdef __cplusplus
}
#endif

#endif /* DSP_H */
