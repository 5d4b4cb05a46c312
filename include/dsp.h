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

/* (end of section) */

/* ------------------------------------------------------------------------
 * Window generation
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Window metrics
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Windowed spectrum
 * ------------------------------------------------------------------------ */

/* (end of section) */

/* ------------------------------------------------------------------------
 * Element-wise binary arithmetic
 * ------------------------------------------------------------------------ */

/*
 * Two records in, one out: (a, b, r), r may be a or b. The result's delta is
 * the mean of the inputs' deltas; it is complex if either input is, and a
 * real operand counts as having imaginary part 0. Unequal point counts give
 * -1 except for add, sub and pmul.
 */
/* a + b, a - b; the shorter input counts as zero-padded to the longer. */
DSP_API int dspfb_add(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspb_add(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);
DSP_API int dspfb_sub(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspb_sub(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);
/* Point-wise (complex) product. */
DSP_API int dspfb_mul(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspb_mul(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);
/* a / b; a zero divisor gives L in every part for a nonzero dividend, 0 for
 * a zero one (L = 1e15 single, 1e100 double). */
DSP_API int dspfb_div(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspb_div(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);
/* a * conj(b). */
DSP_API int dspfb_conj_mul(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspb_conj_mul(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);
/* b + w (a - b): folds record a into the running mean b with weight w. */
DSP_API int dspfb_avg_add(const dspf_signal *a, const dspf_signal *b, dspf_signal *r, float w);
DSP_API int dspb_avg_add(const dsp_signal *a, const dsp_signal *b, dsp_signal *r, double w);
/* Larger / smaller point: reals by value (b on ties); complex points by
 * squared magnitude in the double family. The single family returns b's
 * point for two complex records and a's point (as (a, 0) when a is real)
 * when the kinds differ. */
DSP_API int dspfb_max(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspb_max(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);
DSP_API int dspfb_min(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspb_min(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);
/* Polynomial product: full linear convolution, a.n + b.n - 1 points (0 if
 * either input is empty). */
DSP_API int dspfb_pmul(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspb_pmul(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);
/* Complex record (re[i], im[i]) from two real records of equal length. */
DSP_API int dspfb_ritoc(const dspf_signal *re, const dspf_signal *im, dspf_signal *r);
DSP_API int dspb_ritoc(const dsp_signal *re, const dsp_signal *im, dsp_signal *r);

/* (end of section) */

/* ------------------------------------------------------------------------
 * Dot product
 * ------------------------------------------------------------------------ */

/* r = sum of a[i] * b[i] over equal-length records (complex products are not
 * conjugated): one point, complex if either input is; r's delta is kept. */
DSP_API int dspfbs_dot(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspbs_dot(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);

/* (end of section) */

/* ------------------------------------------------------------------------
 * Descriptive statistics
 * ------------------------------------------------------------------------ */

/*
 * (in, out): out (which may be in) becomes a one-point record, real or of
 * the input's kind. Sums run over blocks of 2048 samples. Samples outside
 * [-L, L] are guarded (L = 1e15 single, 1e100 double).
 */
/* Sum and mean of the samples (per part); 0 for an empty record. */
DSP_API int dspfs_sum(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_sum(const dsp_signal *in, dsp_signal *out);
DSP_API int dspfs_mean(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_mean(const dsp_signal *in, dsp_signal *out);
/* Sum of squared magnitudes and root mean square (real results); a sample
 * with a part outside [-L, L] adds L. */
DSP_API int dspfs_magsq_sum(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_magsq_sum(const dsp_signal *in, dsp_signal *out);
DSP_API int dspfs_rms(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_rms(const dsp_signal *in, dsp_signal *out);

/* Median: mean of the two middle points for even n, after sorting a copy
 * (complex records by magnitude); per part for complex records. */
DSP_API int dspfs_median(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_median(const dsp_signal *in, dsp_signal *out);
/* Largest / smallest sample (complex: by squared magnitude, returned whole);
 * the first of equal extremes; a sample outside [-L, L] compares as L. */
DSP_API int dspfs_max(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_max(const dsp_signal *in, dsp_signal *out);
DSP_API int dspfs_min(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_min(const dsp_signal *in, dsp_signal *out);
/* Geometric mean (principal n-th root of the product; 0 when the product,
 * or its squared magnitude, is below the smallest normal number) and
 * harmonic mean (0 when a sample is zero). */
DSP_API int dspfs_gmean(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_gmean(const dsp_signal *in, dsp_signal *out);
DSP_API int dspfs_hmean(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_hmean(const dsp_signal *in, dsp_signal *out);
/* Population and sample (n - 1) variance and standard deviation, real
 * results. The single family computes the variance of a real record from
 * its guard constants rather than from the samples. */
DSP_API int dspfs_pop_var(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_pop_var(const dsp_signal *in, dsp_signal *out);
DSP_API int dspfs_samp_var(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_samp_var(const dsp_signal *in, dsp_signal *out);
DSP_API int dspfs_pop_stddev(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_pop_stddev(const dsp_signal *in, dsp_signal *out);
DSP_API int dspfs_samp_stddev(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_samp_stddev(const dsp_signal *in, dsp_signal *out);
/* Skewness (0 for an empty record) and excess kurtosis (-3 for an empty
 * record) of a real record; -1 for complex input; a zero variance gives L
 * (skew: 0 when the third moment is 0 too). */
DSP_API int dspfs_skew(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_skew(const dsp_signal *in, dsp_signal *out);
DSP_API int dspfs_excess(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_excess(const dsp_signal *in, dsp_signal *out);
/* Histogram into out (n = bins, real, delta = width): bin k counts values v
 * (complex: magnitudes) with k <= (v - low) / width < k + 1; values up to
 * bins * 1.0000012 widths past low still count in the last bin. */
DSP_API int dspfs_hist(const dspf_signal *in, dspf_signal *out, float low, float width, int bins);
DSP_API int dsps_hist(const dsp_signal *in, dsp_signal *out, double low, double width, int bins);

/* (end of section) */

/* ------------------------------------------------------------------------
 * Peak search
 * ------------------------------------------------------------------------ */

/*
 * out (real, n = 2, delta not set; may be in) = {peak value, position as a
 * fractional sample index}. The value of a complex sample is its squared
 * magnitude. Flags: 0x1000 use `index` (clamped to 0 .. n-1) instead of
 * searching; 0x2000 search the minimum; interpolation in bits 8-10: 0x000
 * none, 0x100 parabola through three samples, 0x200 Gaussian through two
 * samples, 0x300 the same with a correction term, 0x400 and above fail.
 * The search starts from -L (+L for the minimum) and keeps the first of
 * equal extremes. An empty record gives {0, 0}. A Gaussian offset outside
 * -0.5 .. 1.5 is clamped, written, and reported with -1.
 */
DSP_API int dspfs_peak(const dspf_signal *in, dspf_signal *out, int flags, int index);
DSP_API int dsps_peak(const dsp_signal *in, dsp_signal *out, int flags, int index);

/* (end of section) */

#ifdef __cplusplus
}
#endif

#endif /* DSP_H */
