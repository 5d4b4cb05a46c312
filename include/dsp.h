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
 *
 * The layout is fixed, for callers that declare or allocate records
 * themselves (byte offsets; the test RecordLayout checks them):
 *
 *                                delta data alloc  n  cplx reserved  size align
 *   dspf_signal  32-bit ARM        0     4     8  12   16     20      24    4
 *                64-bit (x86-64,   0     8    16  20   24     28      32    8
 *                AArch64, Win64)
 *   dsp_signal   32-bit ARM        0     8    12  16   20     24      32    8
 *                64-bit            0     8    16  20   24     28      32    8
 *
 * On 32-bit ARM, doubles are aligned to 8 bytes: dsp_signal's data follows
 * its delta at offset 8 and the record ends with 4 bytes of padding.
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
/* Like alloc, but keeps the leading points of the previous shape. A failed
 * growth leaves alloc 0 and data null, releasing the block the record owned
 * (through the free hook when one is set). */
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

/* Every scalar negated (re and im of complex points). */
DSP_API int dspfi_neg(dspf_signal *x);
DSP_API int dspi_neg(dsp_signal *x);
/* x + d; for complex points d is added to the real part only. */
DSP_API int dspfi_offset(dspf_signal *x, float d);
DSP_API int dspi_offset(dsp_signal *x, double d);
/* Every scalar times a. */
DSP_API int dspfi_scale(dspf_signal *x, float a);
DSP_API int dspi_scale(dsp_signal *x, double a);
/* Times the complex factor a + ib; a real record becomes complex (-1 when
 * its storage cannot grow; cplx is then already 1). */
DSP_API int dspfi_cscale(dspf_signal *x, float a, float b);
DSP_API int dspi_cscale(dsp_signal *x, double a, double b);
/* 1/x (L for 0); complex: conjugate over squared magnitude. The single
 * family differs: a real zero also overwrites the scalar after it, and
 * complex points are scaled by 1/L instead of 1/|x|^2. */
DSP_API int dspfi_recip(dspf_signal *x);
DSP_API int dspi_recip(dsp_signal *x);
/* Square root, 0 for negative reals; principal root of complex points. */
DSP_API int dspfi_sqrt(dspf_signal *x);
DSP_API int dspi_sqrt(dsp_signal *x);
/* x squared, L outside [-L, L]; complex square with the parts clamped. */
DSP_API int dspfi_square(dspf_signal *x);
DSP_API int dspi_square(dsp_signal *x);
/* e^x, L above ln L; complex: magnitude e^re, phase im. */
DSP_API int dspfi_exp(dspf_signal *x);
DSP_API int dspi_exp(dsp_signal *x);
/* 10^x, L above 15 (single) / 100 (double); complex: magnitude 10^re,
 * phase im ln 10. Single family, real: the walk stops at the first sample
 * below -L and leaves the rest unchanged. */
DSP_API int dspfi_exp10(dspf_signal *x);
DSP_API int dspi_exp10(dsp_signal *x);
/* ln x, ln F below the smallest normal number F; complex logarithm. */
DSP_API int dspfi_log(dspf_signal *x);
DSP_API int dspi_log(dsp_signal *x);
/* log10 x, log10 F below F; complex base-ten logarithm (the single family
 * takes the real part of every complex point as L). */
DSP_API int dspfi_log10(dspf_signal *x);
DSP_API int dspi_log10(dsp_signal *x);
/* k log10 x (k = 10 power, 20 amplitude), k log10 F below F. The single
 * family on real data writes k log10 F in place and the decibel value into
 * the following scalar; on complex data it behaves as dspfi_log10 times k. */
DSP_API int dspfi_db(dspf_signal *x, float k);
DSP_API int dspi_db(dsp_signal *x, double k);
/* Real records only (-1 for complex, record untouched): sinh and cosh with
 * L beyond +-ln L, asin and acos with 0 beyond [-1, 1], I0 (single only)
 * with L beyond +-ln L, Y0 and Y1 with 0 for x <= 0. */
DSP_API int dspfi_sinh(dspf_signal *x);
DSP_API int dspi_sinh(dsp_signal *x);
DSP_API int dspfi_cosh(dspf_signal *x);
DSP_API int dspi_cosh(dsp_signal *x);
DSP_API int dspfi_asin(dspf_signal *x);
DSP_API int dspi_asin(dsp_signal *x);
DSP_API int dspfi_acos(dspf_signal *x);
DSP_API int dspi_acos(dsp_signal *x);
DSP_API int dspfi_besi0(dspf_signal *x);
DSP_API int dspfi_besy0(dspf_signal *x);
DSP_API int dspi_besy0(dsp_signal *x);
DSP_API int dspfi_besy1(dspf_signal *x);
DSP_API int dspi_besy1(dsp_signal *x);
/* Clips every scalar to [min(a, b), max(a, b)]; *clipped (if not null)
 * receives 1 when a scalar lay outside, else 0. The single family takes an
 * ignored second argument and sets every scalar not above the range to the
 * lower bound. */
DSP_API int dspfi_limit(dspf_signal *x, int unused, float a, float b, int *clipped);
DSP_API int dspi_limit(dsp_signal *x, double a, double b, int *clipped);
/* Adds amp cos(2 pi freq delta i + phase) to point i; on a complex record
 * with flags bit 0 set, adds amp e^(i (2 pi freq delta i + phase)). */
DSP_API int dspfi_addcos(dspf_signal *x, int flags, float freq, float amp, float phase);
DSP_API int dspi_addcos(dsp_signal *x, int flags, double freq, double amp, double phase);

/* ------------------------------------------------------------------------
 * Sequence rearrangement (in place)
 * ------------------------------------------------------------------------ */

/* Reverses the order of the points. */
DSP_API int dspfi_rev(dspf_signal *x);
DSP_API int dspi_rev(dsp_signal *x);
/* Drops the first k points (dspfu_subvec(x, x, k, n - k)). */
DSP_API int dspfi_shift(dspf_signal *x, int k);
DSP_API int dspi_shift(dsp_signal *x, int k);
/* Rotates left by (n + 1) / 2 points: the zero-frequency point moves to n / 2. */
DSP_API int dspfi_swap_halves(dspf_signal *x);
DSP_API int dspi_swap_halves(dsp_signal *x);
/* Rotates left by n / 2 points: the inverse of swap_halves. */
DSP_API int dspfi_swap_halves2(dspf_signal *x);
DSP_API int dspi_swap_halves2(dsp_signal *x);
/* Sets all n points to zero (storage grown to n points if needed). */
DSP_API int dspfi_zero(dspf_signal *x);
DSP_API int dspi_zero(dsp_signal *x);
/* Grows to m points, the new points zero; m <= n leaves the record as it is. */
DSP_API int dspfi_zpad(dspf_signal *x, int m);
DSP_API int dspi_zpad(dsp_signal *x, int m);
/* Grows to m points. flags bits 0-1: scaling 0 = times m/n, 1 = times sqrt(m/n),
 * 2 = none; bits 8-10: placement 0x000 = pad after, 0x100 = centred,
 * 0x200 = pad before, 0x300 = padding in the middle (spectra). Invalid flags
 * give -1 after the record has been lengthened. */
DSP_API int dspfi_zpad2(dspf_signal *x, int m, int flags);
DSP_API int dspi_zpad2(dsp_signal *x, int m, int flags);
/* Shrinks to m points with the flags of zpad2: 0x000 keeps the first m points,
 * 0x100 the centred ones, 0x200 the last ones, 0x300 the first (m + 1) / 2 and
 * the last m / 2. m >= n leaves the record as it is; invalid flags give -1. */
DSP_API int dspfi_unzpad(dspf_signal *x, int m, int flags);
DSP_API int dspi_unzpad(dsp_signal *x, int m, int flags);
/* Inserts a zero point after every point: n doubles, delta halves. */
DSP_API int dspfi_zinter(dspf_signal *x);
DSP_API int dspi_zinter(dsp_signal *x);
/* Sorts ascending; complex points by squared magnitude, then real part, then
 * imaginary part. */
DSP_API int dspfi_sort(dspf_signal *x);
DSP_API int dspi_sort(dsp_signal *x);

/* ------------------------------------------------------------------------
 * Differences, integration and phase unwrapping (in place)
 * ------------------------------------------------------------------------ */

/* Running sum times delta. */
DSP_API int dspfi_integ(dspf_signal *x);
DSP_API int dspi_integ(dsp_signal *x);
/* Backward difference over delta (the first output is x[0] / delta); a delta
 * of exactly 0 multiplies by the large substitute value instead. */
DSP_API int dspfi_differ(dspf_signal *x);
DSP_API int dspi_differ(dsp_signal *x);
/* Derivative of the polynomial whose coefficient of x^i is point i; n - 1. */
DSP_API int dspfi_pdiffer(dspf_signal *x);
DSP_API int dspi_pdiffer(dsp_signal *x);
/* Replaces a real record by the times of its crossings of level, in delta
 * units from sample 0; flags bit 0 rising, bit 1 falling. delta becomes 1. */
DSP_API int dspfi_edge(dspf_signal *x, int flags, float level);
DSP_API int dspi_edge(dsp_signal *x, int flags, double level);
/* Unwraps a real phase record against the previous output. */
DSP_API int dspfi_unwrap(dspf_signal *x);
DSP_API int dspi_unwrap(dsp_signal *x);
/* Unwraps a real phase record against the mean of up to w previous outputs;
 * w = 0 brings every sample into [-pi, pi]; w = 1 is dspfi_unwrap. */
DSP_API int dspfi_unwrap_wnd(dspf_signal *x, int w);
DSP_API int dspi_unwrap_wnd(dsp_signal *x, int w);
/* Half spectrum of n points to the full spectrum of 2(n - 1) points. */
DSP_API int dspfi_recon(dspf_signal *x);
DSP_API int dspi_recon(dsp_signal *x);
/* Half spectrum of n points to the full spectrum of 2(n - 1) points (odd 0)
 * or 2n - 1 points (odd nonzero). */
DSP_API int dspfi_orecon(dspf_signal *x, int odd);
DSP_API int dspi_orecon(dsp_signal *x, int odd);

/* ------------------------------------------------------------------------
 * Complex FFT, bit reversal and raw-array entry points
 * ------------------------------------------------------------------------ */

/*
 * In-place complex FFT of n = 2^k points (1, 2, 4, ...; else -1 and the
 * record is untouched). inverse == 0: forward transform
 * X[k] = (1/n) sum_m x[m] e^(-2 pi i k m / n); otherwise the unscaled inverse
 * x[m] = sum_k X[k] e^(+2 pi i k m / n). Input and output in natural order;
 * a real record becomes complex (except n = 1, which only updates delta).
 * delta becomes 1 / (delta * n), or L when delta is 0. The bit-reversal and
 * twiddle tables of each size are built on first use and kept until
 * dspf_free_internal / dsp_free_internal.
 */
DSP_API int dspfi_fft(dspf_signal *x, int inverse);
DSP_API int dspi_fft(dsp_signal *x, int inverse);
/*
 * Bit-reversal permutation of a record of 2^k points: point i and the point
 * at the bit reversal of i (over k bits) change places (single scalars for a
 * real record). bitrev_scale also multiplies every scalar by 1/n. -1 when n
 * is not a power of two.
 */
DSP_API int dspfi_bitrev(dspf_signal *x);
DSP_API int dspi_bitrev(dsp_signal *x);
DSP_API int dspfi_bitrev_scale(dspf_signal *x);
DSP_API int dspi_bitrev_scale(dsp_signal *x);
/*
 * dspfi_fft of the n points (cplx != 0: 2n interleaved scalars) at data,
 * wrapped in a temporary record that does not own the array. Complex data
 * is transformed in the caller's array. Real data must not be passed: the
 * transform widens the temporary record into storage of its own, so the
 * result never reaches the caller's array (that storage is released; the
 * status is that of the transform).
 */
DSP_API int cf_dspfi_fft(float *data, int n, int cplx, int inverse);
DSP_API int cf_dspi_fft(double *data, int n, int cplx, int inverse);

/* ------------------------------------------------------------------------
 * Real FFT, DFT, DCT, Hilbert transform and analytic signal
 * ------------------------------------------------------------------------ */

/* Real record of n = 2^b points to its half spectrum X[0..n/2] (n/2 + 1
 * complex points), X[k] = (1/n) sum x[m] e^(-2 pi i k m / n); delta becomes
 * 1/(delta n) (L when 0). -1 for complex input or n not a power of two. */
DSP_API int dspfi_rfft(dspf_signal *x);
DSP_API int dspi_rfft(dsp_signal *x);
/* Half spectrum of n points to the real signal of 2(n - 1) points
 * (unscaled inverse); 2(n - 1) must be a power of two. */
DSP_API int dspfi_irfft(dspf_signal *x);
DSP_API int dspi_irfft(dsp_signal *x);
/* Complex DFT of any length (inverse != 0: unscaled inverse); powers of two
 * go through the FFT, other lengths through the chirp-z transform. n < 2:
 * samples unchanged, delta becomes 1/delta. */
DSP_API int dspfi_dft(dspf_signal *x, int inverse);
DSP_API int dspi_dft(dsp_signal *x, int inverse);
/* Real record of any length to its half spectrum of n/2 + 1 points. */
DSP_API int dspfi_rdft(dspf_signal *x);
DSP_API int dspi_rdft(dsp_signal *x);
/* Half spectrum to the real signal of 2(n - 1) points (odd == 0) or 2n - 1
 * points (odd != 0), unscaled inverse. */
DSP_API int dspfi_irdft(dspf_signal *x, int odd);
DSP_API int dspi_irdft(dsp_signal *x, int odd);
/* DCT-II of a real record, C[k] = (2/n) w[k] sum x[m] cos(pi k (2m+1) / (2n))
 * with w[0] = sqrt(1/2), w[k] = 1 otherwise; inverse != 0 applies the exact
 * inverse. -1 for complex input. */
DSP_API int dspfi_dct(dspf_signal *x, int inverse);
DSP_API int dspi_dct(dsp_signal *x, int inverse);
/* Hilbert transform: positive frequencies times -i, negative times +i, DC
 * and Nyquist removed; a real record stays real. */
DSP_API int dspfi_hilbert(dspf_signal *x);
DSP_API int dspi_hilbert(dsp_signal *x);
/* Analytic signal: positive frequencies doubled, negative ones removed. */
DSP_API int dspfi_analytic(dspf_signal *x);
DSP_API int dspi_analytic(dsp_signal *x);

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

/* ------------------------------------------------------------------------
 * Windowed spectrum
 * ------------------------------------------------------------------------ */

/*
 * The windowed, zero-padded spectrum in one call. A copy of `in` is windowed
 * with `kind` and the window flags (bits 0-5 as for dspfi_window: the mode
 * sets the calibration, unit mean for tone amplitudes and unit rms for noise
 * power; flag 8 is refused), zero-padded to `length` points and transformed:
 * a real input gives the half spectrum of length/2 + 1 points, a complex
 * input the full spectrum of length points (zero frequency at index 0);
 * `delta` becomes the bin spacing 1 / (delta * length). `length` 0 takes n
 * rounded up to a power of two; otherwise it must be a power of two of at
 * least n. The padding keeps the level of an unpadded transform: with a
 * unit-mean window, a real tone of amplitude A peaks at A/2. A rotated
 * window (the default) puts the record centre at time 0 and the padding in
 * the middle. Flag bits 8-9 choose the form of the result: complex values,
 * magnitudes or squared magnitudes (real records). `scratch` is a working
 * record the caller keeps between calls so that repeated spectra allocate
 * nothing (null: a temporary one is used; it may be the result record).
 * -1 for an empty input, an invalid length or form, or a failing step.
 */
enum {
    DSP_SPECTRUM_COMPLEX = 0x000,
    DSP_SPECTRUM_MAGNITUDE = 0x100,
    DSP_SPECTRUM_POWER = 0x200
};
DSP_API int dspfh_fft(const dspf_signal *in, dspf_signal *result, dspf_signal *scratch,
                      dsp_window kind, int flags, int length);
DSP_API int dsph_fft(const dsp_signal *in, dsp_signal *result, dsp_signal *scratch,
                     dsp_window kind, int flags, int length);
/* dspfh_fft of the n points (2n scalars when cplx) at `in` into a temporary
 * result; copies the scalars of n input points (n, or 2n when cplx) of the
 * result to `out`, at most as many as the result holds (the rest of `out` is
 * left as it was), and returns the status. */
DSP_API int cf_dspfh_fft(const float *in, float *out, int n, int cplx, dsp_window kind, int flags,
                         int length);
DSP_API int cf_dsph_fft(const double *in, double *out, int n, int cplx, dsp_window kind,
                        int flags, int length);
/* As cf_dspfh_fft, but the result record uses `out` (n or 2n scalars) as if
 * it owned it: no copy. A result larger than `out` (a complex half spectrum
 * needs n + 2 scalars, padding makes it longer) would have to grow into
 * storage the caller's array cannot give: such a call returns -1 and writes
 * nothing. Use it for complex input or with the magnitude or power form,
 * with length 0 and n a power of two. */
DSP_API int cf_dspfh_fft_fast_but_dirty(const float *in, float *out, int n, int cplx,
                                        dsp_window kind, int flags, int length);
/* dspfh_fft for any length through the DFT (powers of two still go through
 * the FFT): the same arguments, flags and result, except that `length` 0
 * means n (no padding) and any length of at least n is accepted. */
DSP_API int dspfh_dft(const dspf_signal *in, dspf_signal *result, dspf_signal *scratch,
                      dsp_window kind, int flags, int length);
DSP_API int dsph_dft(const dsp_signal *in, dsp_signal *result, dsp_signal *scratch,
                     dsp_window kind, int flags, int length);
/*
 * Averaged power spectrum (Welch's method) of a long record. Segments of
 * N = `segment` points (0: N = n) start every N - `overlap` points
 * (overlap < 0: N / 2 points shared); points after the last whole segment
 * are not used. Each segment, less its mean with DSP_SPECTRUM_DETREND, is
 * multiplied by the window of N points (kind, flags bits 0-5; flag 8 is
 * refused; mode and rotation do not change the result) and transformed by
 * the DFT. The result is the real record of the mean |DFT_unscaled|^2 of the
 * segments divided by (sum w)^2 with DSP_SPECTRUM_POWER (a tone of amplitude
 * A reads A^2/2 in its bin, one-sided), or by fs sum w^2, fs = 1 / delta,
 * with DSP_SPECTRUM_DENSITY (power per unit of frequency; white noise of
 * variance s^2 reads s^2 / (fs / 2) one-sided). A real input gives the
 * one-sided spectrum of N/2 + 1 points (every bin but 0 Hz and the Nyquist
 * bin of even N doubled), a complex input the two-sided spectrum of N points
 * (0 Hz at index 0). delta becomes 1 / (delta * N). `scratch` as for
 * dspfh_fft. -1 for an empty input, N outside 1 .. n, overlap >= N, another
 * form than power or density, a window whose sum (power) or sum of squares
 * (density) is 0, or a failing step; invalid arguments leave the result
 * untouched.
 */
enum {
    DSP_SPECTRUM_DENSITY = 0x300,
    DSP_SPECTRUM_DETREND = 0x400
};
DSP_API int dspfh_avg(const dspf_signal *in, dspf_signal *result, dspf_signal *scratch,
                      dsp_window kind, int flags, int segment, int overlap);
DSP_API int dsph_avg(const dsp_signal *in, dsp_signal *result, dsp_signal *scratch,
                     dsp_window kind, int flags, int segment, int overlap);

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

/* ------------------------------------------------------------------------
 * Dot product
 * ------------------------------------------------------------------------ */

/* r = sum of a[i] * b[i] over equal-length records (complex products are not
 * conjugated): one point, complex if either input is; r's delta is kept. */
DSP_API int dspfbs_dot(const dspf_signal *a, const dspf_signal *b, dspf_signal *r);
DSP_API int dspbs_dot(const dsp_signal *a, const dsp_signal *b, dsp_signal *r);

/* ------------------------------------------------------------------------
 * Correlation
 * ------------------------------------------------------------------------ */

/*
 * Cross-correlation through the FFT: r[k] = sum_i x[i+k] conj(y[i]) for the
 * lags k = 0 .. lags-1, the linear correlation (x counts as zero beyond its
 * end; equal to numpy.correlate(x, y, "full") at index n-1+k). x and y need
 * the same n, and 1 <= lags <= n (else -1, r untouched). Both are zero-padded
 * to the power of two of at least n + lags - 1 points, so that no lag
 * receives wrap-around. r (which may be x or y) gets `lags` points, complex
 * if either input is, delta the mean of the inputs' deltas. `scratch` is a
 * working record the caller keeps between calls so that repeated calls
 * allocate nothing; null, or one sharing storage with x, y or r, makes the
 * call use a temporary record. A nonzero `option` halves the result.
 */
DSP_API int dspfh_corr(const dspf_signal *x, const dspf_signal *y, dspf_signal *r,
                       dspf_signal *scratch, int lags, int option);
DSP_API int dsph_corr(const dsp_signal *x, const dsp_signal *y, dsp_signal *r,
                      dsp_signal *scratch, int lags, int option);
/* dspfh_corr with option 0. */
DSP_API int dspfb_corr(const dspf_signal *x, const dspf_signal *y, dspf_signal *r,
                       dspf_signal *scratch, int lags);
DSP_API int dspb_corr(const dsp_signal *x, const dsp_signal *y, dsp_signal *r, dsp_signal *scratch,
                      int lags);

/* ------------------------------------------------------------------------
 * Signal generators
 * ------------------------------------------------------------------------ */

/*
 * The caller sets n, cplx and delta; the generator sizes the storage and
 * writes the n points (delta, n and cplx are kept). Frequencies are in
 * cycles per unit of delta. A rotation oscillator advances the phase and is
 * re-anchored at the exact phase every 256 points (the single family reduces
 * that phase modulo 2 pi in double). -1 only when the storage cannot be had.
 */
/* cos(phase + 2 pi freq delta k); a complex record gets zero imaginary parts. */
DSP_API int dspfc_cos(dspf_signal *x, float freq, float phase);
DSP_API int dspc_cos(dsp_signal *x, double freq, double phase);
/* exp(i (phase + 2 pi freq delta k)) on a complex record; on a real record
 * the same as dspfc_cos. */
DSP_API int dspfc_cexp(dspf_signal *x, float freq, float phase);
DSP_API int dspc_cexp(dsp_signal *x, double freq, double phase);
/* start + k slope delta, accumulated by repeated addition of slope delta;
 * zero imaginary parts on a complex record. */
DSP_API int dspfc_line(dspf_signal *x, float slope, float start);
DSP_API int dspc_line(dsp_signal *x, double slope, double start);

/* ------------------------------------------------------------------------
 * FIR design
 * ------------------------------------------------------------------------ */

/*
 * h receives the n = h->n coefficients of a linear-phase design in closed
 * form (no window), frequencies in cycles per sample. kind: 0 band-pass
 * (a centre, b bandwidth), 1 band-stop (a, b; odd n), 2 high-pass (a
 * cut-off; odd n), 3 low-pass (a cut-off), 4 sinh smoothing kernel (a shape,
 * 0 for the default of the length), 5 low-pass delayed by b samples, 6
 * differentiator, 7 Gaussian (a bandwidth), 8 band-limited quadrature
 * filter, 9 Kaiser-transform smoothing kernel (a shape, 0 for the default),
 * 10 |f|-weighted low-pass. Kinds 4 (except the tabled n = 5, 7, 9), 5, 7
 * and 9 are scaled to unit sum; 6 and 8 are antisymmetric. A complex h gets
 * zero imaginary parts. -1 for storage failure, a kind outside 0..10 or an
 * even n for kinds 1 and 2; h is then left real.
 */
DSP_API int dspfc_fir(dspf_signal *h, int kind, float a, float b);
DSP_API int dspc_fir(dsp_signal *h, int kind, double a, double b);
/* h becomes a stored coefficient set: code 100 (12 points), 101 (20), 102
 * (5); -1 for any other code, h untouched. */
DSP_API int dspfc_fir2(dspf_signal *h, int code);
DSP_API int dspc_fir2(dsp_signal *h, int code);

/* ------------------------------------------------------------------------
 * Resampling kernels
 * ------------------------------------------------------------------------ */

/*
 * A kernel record of N points (N set by the caller, even) holds its width
 * at point 0 and v(theta) at points N/2 + j and N/2 - j (bit-identical),
 * theta = j 2 pi / (N - 2), j = 0 .. (N - 2)/2. A description holds the
 * width at point 0 and the coefficients c1 .. c(K-1) after it. N <= 1 or
 * K <= 1 gives a zero kernel holding only the width. -1 for storage
 * failure, odd N or a complex description. Note the argument order: the
 * kernel (result) comes first.
 */
/* v(theta) = c1 + sum over i >= 2 of c_i cos((i - 1) theta). */
DSP_API int dspfc_rsmp_cos(dspf_signal *kernel, const dspf_signal *desc);
DSP_API int dspc_rsmp_cos(dsp_signal *kernel, const dsp_signal *desc);
/* v(theta) = sum over i >= 1 of c_i cos(theta)^(i - 1). */
DSP_API int dspfc_rsmp_pcos(dspf_signal *kernel, const dspf_signal *desc);
DSP_API int dspc_rsmp_pcos(dsp_signal *kernel, const dsp_signal *desc);
/* One of the stored kernels, mode 0 .. 4 (widths 8, 13, 8, 10, 13; modes 0
 * and 1 polynomial, 2 to 4 cosine series); -1 for other modes. */
DSP_API int dspfc_rsmp(dspf_signal *kernel, int mode);
DSP_API int dspc_rsmp(dsp_signal *kernel, int mode);

/* ------------------------------------------------------------------------
 * FIR filtering
 * ------------------------------------------------------------------------ */

/*
 * Causal FIR filter over a block: y[k] = sum_{j<m} h[j] x[k-j] for the n
 * points of x, where x[-1], x[-2], ... are the last points of `history`.
 * The history (optional) holds the m-1 samples before the block, oldest
 * first; it is converted to x's kind and zero-padded (a fresh record means
 * zeros before the block), and afterwards holds the m-1 samples before the
 * next block, so a signal filtered block by block gives the samples of one
 * call on the whole (to rounding). Null: zeros before every block, nothing
 * kept. y has n points, complex when x or h is, delta of x; y may be x.
 * An empty filter (m <= 0) copies x. -1 when the filter or the history
 * shares storage with y, or the history with x. A history (or a decimation
 * phase, a half-band state) whose growth fails is left empty: -1, and the
 * next block starts from zeros.
 *
 * Direct convolution for a complex filter, a block shorter than m-1 points,
 * or m < 46 (real x) / m < 36 (complex x); otherwise through the FFT over
 * L points, L the power of two of at least n+m-1 when m^2 > 9 n log2 n,
 * else of at least n. The filter's spectrum is cached per precision under a
 * key shared by real and complex blocks: a filter within |h[0]| * 5.96e-7 of
 * the key is not transformed again. Hence a real block followed by a complex
 * one with the same filter uses whatever complex spectrum is held (an
 * earlier filter's, or none: -1), and a block needing another L than the
 * cached spectrum's gives -1. A new filter (or dspf_free_internal) clears
 * this.
 */
DSP_API int dspfd_fir(const dspf_signal *x, dspf_signal *y, const dspf_signal *h,
                      dspf_signal *history);
DSP_API int dspd_fir(const dsp_signal *x, dsp_signal *y, const dsp_signal *h, dsp_signal *history);
/* dspfd_fir with the linear-phase filter of 2k-1 (odd != 0) or 2k taps whose
 * first k coefficients are `half` (index k-1 is the centre tap when odd),
 * mirrored to the rest and negated there when antisym != 0. A real filter of
 * at most 60 taps over a block of at least m-1 points runs directly, adding
 * (antisym: subtracting) the two samples of each coefficient pair before one
 * multiplication; anything else builds the full filter and calls dspfd_fir. */
DSP_API int dspfd_sfir(const dspf_signal *x, dspf_signal *y, const dspf_signal *half, int odd,
                       int antisym, dspf_signal *history);
DSP_API int dspd_sfir(const dsp_signal *x, dsp_signal *y, const dsp_signal *half, int odd,
                      int antisym, dsp_signal *history);

/* ------------------------------------------------------------------------
 * Decimation and half-band filter
 * ------------------------------------------------------------------------ */

/* Keeps every factor-th point (factor < 1 counts as 1), starting at the index
 * in `phase` (optional one-point record, read rounded, negative as 0), which
 * afterwards holds the index of the next kept point within the next block:
 * n points from offset o give ceil((n - o) / factor) points (none when o >= n,
 * the phase then dropping by n). y's delta is x's times the factor; y may be
 * x. -1 when the phase record shares storage with x or y. */
DSP_API int dspfd_deci(const dspf_signal *x, dspf_signal *y, int factor, dspf_signal *phase);
DSP_API int dspd_deci(const dsp_signal *x, dsp_signal *y, int factor, dsp_signal *phase);
/* Low-pass before a decimation by two: four cascaded stages
 * H(z) = (0.25 + 0.5 z^-1 + 0.5 z^-2 + 0.25 z^-3) / (1 + 0.5 z^-2) (unit gain
 * at 0, zeros at the Nyquist frequency and at a third of the rate), computed
 * in double precision and rounded to the record's precision after each
 * stage's internal value and output. `state` keeps the three delays of each
 * stage (12 points, of x's kind; padded with zeros when shorter); null uses
 * the library's internal state record, which carries the delays from call to
 * call (shared by every such caller). `reserved` must be null, else -1 and
 * nothing is touched. y may be x. */
DSP_API int dspfd_hwfilt(const dspf_signal *x, dspf_signal *y, const void *reserved,
                         dspf_signal *state);
DSP_API int dspd_hwfilt(const dsp_signal *x, dsp_signal *y, const void *reserved,
                        dsp_signal *state);
/* dspfd_hwfilt(x, x, state, NULL): the state argument lands in the reserved
 * position, so a non-null state gives -1 (x unchanged) and a null one filters
 * with the internal state record. */
DSP_API int dspfi_hwfilt(dspf_signal *x, dspf_signal *state);
DSP_API int dspi_hwfilt(dsp_signal *x, dsp_signal *state);

/* ------------------------------------------------------------------------
 * Resampling
 * ------------------------------------------------------------------------ */

/*
 * Polyphase resampling by `step` input samples per output (0.5 doubles the
 * rate) with a kernel record from dspfc_rsmp & co.: point 0 the width W,
 * then W P + 1 values (P phases per tap, N - 2 = W P); tap t at phase i is
 * kernel[1 + i + t P]. Each output is sum_t s[idx + t] c_t over a window of
 * W samples at the read position pos in (-1, 0], phase -pos P: mode 0 takes
 * the nearest lower phase, mode 1 interpolates linearly between the two
 * neighbouring phases. The window moves on by whole samples and outputs are
 * made while it lies within the block, at most y.n on entry (the number
 * wanted); y.n becomes the number made and y.delta = step x.delta. The
 * optional history (W + 2 points, converted to x's kind and padded with
 * zeros) holds the W samples the next window starts with, the carried
 * position and, as a number, how many of those samples came from the last
 * block; samples before the block are zeros without it. Blocks run with one
 * history give the outputs of one call on the whole. A kernel of at most
 * one point copies x. -1 for a negative or NaN step, a width below 1, a
 * complex kernel, N - 2 not a multiple of W, a mode other than 0 or 1, a
 * carried position at or below -1, or the history sharing storage with x,
 * y or the kernel (or the kernel with y). y may be x.
 */
DSP_API int dspfd_rsmp(const dspf_signal *x, dspf_signal *y, int mode, const dspf_signal *kernel,
                       float step, dspf_signal *history);
DSP_API int dspd_rsmp(const dsp_signal *x, dsp_signal *y, int mode, const dsp_signal *kernel,
                      double step, dsp_signal *history);
/* dspfd_rsmp with stored kernel kernel_mode 0 .. 4 of 8194, 13314, 2050,
 * 10242 or 13314 points (1024 phases per tap; 256 for kernel 2), built once
 * per process; -1 for another kernel mode. */
DSP_API int dspfd_rsmp2(const dspf_signal *x, dspf_signal *y, int mode, int kernel_mode,
                        float step, dspf_signal *history);
DSP_API int dspd_rsmp2(const dsp_signal *x, dsp_signal *y, int mode, int kernel_mode, double step,
                       dsp_signal *history);

/* ------------------------------------------------------------------------
 * Streaming resampler
 * ------------------------------------------------------------------------ */

/*
 * The resampler records' layout (byte offsets; RecordLayout checks them):
 *
 *   coef            halfband _odd prefilter _odd kernel mode ratio stages fine
 *                                               skip_in skip_out  size align
 *   dspfh  ARM32        0     24     28     52    56     80   84    88    92
 *                                                   96      100    104    4
 *          64-bit       0     32     40     72    80    112  116   120   124
 *                                                  128      132    136    8
 *   dsph   both         0     32     40     72    80    112  120   128   132
 *                                                  136      140    144    8
 *
 *   state           stages stage_history stage_phase skip_in prefilter_history
 *                   kernel_history halfband_history phase skip_out  size align
 *   dspfh  ARM32      0        4           8          12        16
 *                       40           64          88      112     116    4
 *          64-bit     0        8          16          24        32
 *                       64           96         128      160     168    8
 *   dsph   ARM32      0        4           8          12        16
 *                       48           80         112      144     152    8
 *          64-bit     as dspfh_rsmp_state                        168    8
 */
/* Constant data of the streaming resampler (fields in this order). */
typedef struct {
    dspf_signal halfband;  /* first half of the half-band filter (stored set 101) */
    int32_t halfband_odd;  /* 1: full length 2 n - 1 (39 taps) */
    dspf_signal prefilter; /* first half of the pre-filter (stored set 100) */
    int32_t prefilter_odd; /* 1: full length 2 n - 1 (23 taps) */
    dspf_signal kernel;    /* stored kernel 4: width 13, 1024 phases per tap */
    int32_t kernel_mode;   /* 1 once the kernel is made; the dspfd_rsmp mode */
    float ratio;           /* ratio in use (1.0 after setup) */
    int32_t stages;        /* half-band and decimation-by-two stages before the fine stage */
    int32_t fine;          /* fine stage switch */
    int32_t skip_in;       /* samples dropped after the coarse stages */
    int32_t skip_out;      /* samples dropped after the fine stage */
} dspfh_rsmp_coef;

typedef struct {
    dsp_signal halfband;
    int32_t halfband_odd;
    dsp_signal prefilter;
    int32_t prefilter_odd;
    dsp_signal kernel;
    int32_t kernel_mode;
    double ratio;
    int32_t stages;
    int32_t fine;
    int32_t skip_in;
    int32_t skip_out;
} dsph_rsmp_coef;

/* History of the streaming resampler (fields in this order). */
typedef struct {
    int32_t stages;                /* coarse stages the arrays below hold */
    dspf_signal *stage_history;    /* per coarse stage: half-band filter history */
    dspf_signal *stage_phase;      /* per coarse stage: decimation phase */
    int32_t skip_in;               /* input-side samples still to drop */
    dspf_signal prefilter_history; /* fine stage: pre-filter history */
    dspf_signal kernel_history;    /* fine stage: dspfd_rsmp history */
    dspf_signal halfband_history;  /* fine stage: half-band filter history */
    dspf_signal phase;             /* fine stage: decimation phase */
    int32_t skip_out;              /* output-side samples still to drop */
} dspfh_rsmp_state;

typedef struct {
    int32_t stages;
    dsp_signal *stage_history;
    dsp_signal *stage_phase;
    int32_t skip_in;
    dsp_signal prefilter_history;
    dsp_signal kernel_history;
    dsp_signal halfband_history;
    dsp_signal phase;
    int32_t skip_out;
} dsph_rsmp_state;

/*
 * Calling order: coef_init, coef_alloc, coef_setup; state_init, state_alloc
 * (optional), state_reset; dspfh_rsmp per block; state_destroy and
 * coef_destroy. init, destroy and reset accept null records (0, nothing
 * done).
 */
/* Empty records; flags, counts and skips 0. */
DSP_API int dspfh_rsmp_coef_init(dspfh_rsmp_coef *coef);
DSP_API int dsph_rsmp_coef_init(dsph_rsmp_coef *coef);
/* mode must be 0 (else -1, nothing touched): loads the half-band and
 * pre-filter halves (odd flags 1) and builds the kernel (kernel_mode 1). */
DSP_API int dspfh_rsmp_coef_alloc(dspfh_rsmp_coef *coef, int mode);
DSP_API int dsph_rsmp_coef_alloc(dsph_rsmp_coef *coef, int mode);
/* reserved must be 0 (else -1, nothing touched). The chain always runs at
 * the ratio 1.0, whatever `ratio` says: no coarse stages, no input skip, and
 * an output skip of 54 when `fine` is set (0 otherwise). */
DSP_API int dspfh_rsmp_coef_setup(dspfh_rsmp_coef *coef, float ratio, int fine, int reserved);
DSP_API int dsph_rsmp_coef_setup(dsph_rsmp_coef *coef, double ratio, int fine, int reserved);
/* Frees the three records, then as init. */
DSP_API int dspfh_rsmp_coef_destroy(dspfh_rsmp_coef *coef);
DSP_API int dsph_rsmp_coef_destroy(dsph_rsmp_coef *coef);
/* Empty state: no stages, empty records, skips 0. */
DSP_API int dspfh_rsmp_state_init(dspfh_rsmp_state *state);
DSP_API int dsph_rsmp_state_init(dsph_rsmp_state *state);
/* Shapes the state for coef and the input kind (cplx != 0): one history
 * and one phase record per coarse stage, each history converted to the kind
 * and padded with zeros to its filter's length - 1 (the kernel history to
 * W + 2), each phase to one point. -1 for null records or no memory. */
DSP_API int dspfh_rsmp_state_alloc(const dspfh_rsmp_coef *coef, dspfh_rsmp_state *state,
                                   int cplx);
DSP_API int dsph_rsmp_state_alloc(const dsph_rsmp_coef *coef, dsph_rsmp_state *state, int cplx);
/* Zeros every history and phase; loads the skips from coef. */
DSP_API int dspfh_rsmp_state_reset(const dspfh_rsmp_coef *coef, dspfh_rsmp_state *state);
DSP_API int dsph_rsmp_state_reset(const dsph_rsmp_coef *coef, dsph_rsmp_state *state);
/* Frees every record and both arrays, then as init. */
DSP_API int dspfh_rsmp_state_destroy(dspfh_rsmp_state *state);
DSP_API int dsph_rsmp_state_destroy(dsph_rsmp_state *state);
/*
 * One block x into y (at most y.n on entry points): each coarse stage
 * filters with the half-band filter and keeps every second sample, then the
 * fine stage (when switched on, or at a ratio other than 1) filters with the
 * pre-filter, resamples with the kernel at step ratio / 2, filters with the
 * half-band filter and keeps every second sample; the state's skips drop the
 * first samples of the stream. Neither stage: y is a copy of x. The state
 * is shaped for x's kind first. A null state runs the block alone (fresh
 * histories, nothing dropped); a null scratch uses a temporary record.
 * -1 (or the failing step's status) on failure; -1 for a null coef or a
 * scratch sharing storage with y. y may be x.
 */
DSP_API int dspfh_rsmp(const dspf_signal *x, dspf_signal *y, dspf_signal *scratch,
                       const dspfh_rsmp_coef *coef, dspfh_rsmp_state *state);
DSP_API int dsph_rsmp(const dsp_signal *x, dsp_signal *y, dsp_signal *scratch,
                      const dsph_rsmp_coef *coef, dsph_rsmp_state *state);

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

/* ------------------------------------------------------------------------
 * Trace kernels
 * ------------------------------------------------------------------------ */

/*
 * Raw arrays and counts instead of records: complex arrays hold interleaved
 * re, im pairs, ranges are half-open [start, end). No status unless stated;
 * the arguments are trusted (no null or range checks beyond those stated).
 */
/* x[i] *= k for i in [0, n); nothing for n < 1. */
DSP_API void vfpsbMul1(float k, float *x, int n);
DSP_API void vfpdbMul1(double k, double *x, int n);
/* The same result; the first n mod 16 values one by one, the rest 16 at a
 * time, in the VFP short-vector mode on ARM cores that have it (the LEN
 * field of FPSCR is 0 afterwards). */
DSP_API void vfpsbMul2(float k, float *x, int n);
DSP_API void vfpdbMul2(double k, double *x, int n);
/* dst[i] = ilo + k (src[i] - lo), k = (ihi - ilo) / (hi - lo), in the
 * working precision, truncated toward zero to an int (beyond the int range
 * the nearest int, NaN 0). */
DSP_API void vfpsb_ScaleToInt(const float *src, int n, float lo, float hi, int *dst, int ilo,
                              int ihi);
DSP_API void vfpdb_ScaleToInt(const double *src, int n, double lo, double hi, int *dst, int ilo,
                              int ihi);
/* dst[i] = ilo + k (src[i] - lo) as for vfpsb_ScaleToInt, rounded to the
 * nearest int (ties to even, whatever the rounding mode; numpy.rint) and
 * clamped to [min(ilo, ihi), max(ilo, ihi)]; NaN gives ilo. Returns 0, or
 * -1 with nothing written when lo or hi is not finite or k is not (lo = hi,
 * or a range so narrow that k overflows). */
DSP_API int vfpsb_ScaleToInt2(const float *src, int n, float lo, float hi, int *dst, int ilo,
                              int ihi);
DSP_API int vfpdb_ScaleToInt2(const double *src, int n, double lo, double hi, int *dst, int ilo,
                              int ihi);
/* dst[i] = olo + k (src[i] - lo), k = (ohi - olo) / (hi - lo); dst may be src. */
DSP_API void vfpsb_ScaleToFP(const float *src, int n, float lo, float hi, float *dst, float olo,
                             float ohi);
DSP_API void vfpdb_ScaleToFP(const double *src, int n, double lo, double hi, double *dst,
                             double olo, double ohi);
/* Index of the largest value in [start, end), the first of equal ones;
 * start when start + 1 >= end. */
DSP_API int vfps_FindMax(const float *x, int start, int end);
DSP_API int vfpd_FindMax(const double *x, int start, int end);
/* Index of the smallest of x[start+1] .. x[end-1], starting from the
 * largest finite value with index start: x[start] itself never wins unless
 * every later value is at least that large. start when start + 1 >= end. */
DSP_API int vfps_FindMin(const float *x, int start, int end);
DSP_API int vfpd_FindMin(const double *x, int start, int end);
/* Index of the largest / smallest value in [start, end) outside
 * [skip_start, skip_end), the first of equal ones; -1 when start lies in the
 * skipped range and skip_end >= end. */
DSP_API int vfps_FindMax2(const float *x, int start, int end, int skip_start, int skip_end);
DSP_API int vfpd_FindMax2(const double *x, int start, int end, int skip_start, int skip_end);
DSP_API int vfps_FindMin2(const float *x, int start, int end, int skip_start, int skip_end);
DSP_API int vfpd_FindMin2(const double *x, int start, int end, int skip_start, int skip_end);
/* x[0] = a, x[n-1] = b, x[i] = a + i (b - a) / (n - 1) between; nothing
 * for n < 1. */
DSP_API void vfps_ExpandLinear(float *x, int n, float a, float b);
DSP_API void vfpd_ExpandLinear(double *x, int n, double a, double b);
/* x[0] = a, x[n-1] = b, x[i] = 10^(la + i (lb - la) / (n - 1)) between,
 * la = log10 a, lb = log10 b in double; nothing for n <= 0, a <= 0 or b <= 0. */
DSP_API void vfps_ExpandLog(float *x, int n, float a, float b);
DSP_API void vfpd_ExpandLog(double *x, int n, double a, double b);
/* Moving average of odd width over the outputs [first, end) of an array of
 * n values; the window shrinks symmetrically near the ends of the array and
 * the walk stops where it would reach past end - 1. phase != 0: radians,
 * each window unwrapped and its mean brought into [-pi, pi]. Returns the
 * number of outputs written (0 for first = end), or -1 for a bad range
 * (also end > n) or a width below 3 or even. out may be in. */
DSP_API int vfps_Smooth(const float *in, float *out, int n, int first, int end, int width,
                        int phase);
DSP_API int vfpd_Smooth(const double *in, double *out, int n, int first, int end, int width,
                        int phase);
/* The same on n complex points: mean magnitude A and mean phase P (not
 * unwrapped) of each window give (A cos P, A sin P). */
DSP_API int vfps_SmoothCpx(const float *in, float *out, int n, int first, int end, int width);
DSP_API int vfpd_SmoothCpx(const double *in, double *out, int n, int first, int end, int width);
/* out[i] = phase of complex point i for i in [start, end), moved by one
 * 2 pi step wherever it jumps by more than pi from out[i-1]; for start >= 2
 * the wrap count continues from out[0] .. out[start-1]. out may be in. */
DSP_API void vfps_UnwrapPhase(const float *in, int start, int end, float *out);
DSP_API void vfpd_UnwrapPhase(const double *in, int start, int end, double *out);
/* out[i] for complex point i in [start, end), q = re^2 + im^2: format 0
 * 10 log10 q, 1 sqrt q, 2 phase in degrees, 3 standing-wave ratio
 * (1 + r) / (1 - r) with r = sqrt q (1e6 for r > 0.999998), 4 return loss
 * -10 log10 q; other formats write nothing. out may be in. */
DSP_API void vfps_FormatBuffer(int format, const float *in, float *out, int start, int end);
DSP_API void vfpd_FormatBuffer(int format, const double *in, double *out, int start, int end);

/* ------------------------------------------------------------------------
 * Floating-point control
 * ------------------------------------------------------------------------ */

/*
 * The calling thread's floating-point status and control word in the ARM
 * FPSCR layout: bit 24 FZ (flush-to-zero), bit 25 DN (default NaN), bits
 * 22-23 rounding mode, exception flags and trap enables. On 32-bit ARM it
 * is the FPSCR itself; other processors map it onto their own control
 * registers (see the README).
 */
DSP_API uint32_t get_fpscr(void);
/* Writes the whole word; returns the value it held before. */
DSP_API uint32_t set_fpscr(uint32_t value);
/* on != 0 sets FZ and DN, 0 clears them; no other bit changes. Returns the
 * new value. */
DSP_API uint32_t set_runfast(int on);

/* ------------------------------------------------------------------------
 * Calibration and circle fit
 * ------------------------------------------------------------------------ */

/*
 * Complex values are interleaved (re, im) doubles (floats for
 * vfps_CircleFit); matrices are row-major.
 */
/* c = a b for a of rows x inner and b of inner x cols elements. Returns
 * rows * cols, or -1 when inner > rows (inner * inner > rows * inner: such
 * products are refused), for a negative size or when memory runs out.
 * c may be a or b. */
DSP_API int MatrixMult(const double *a, const double *b, double *c, int rows, int inner,
                       int cols);
/* m (n x n) replaced by its inverse (Gauss-Jordan, partial pivoting):
 * 1, or 0 with m unchanged when a pivot's modulus is below
 * 2.220446049250313e-12 (singular), n < 0 or memory runs out. */
DSP_API int invert(double *m, int n);
/* One-port error terms at the points [first, end). m1, m2, m3 hold the
 * measured reflections of three standards whose actual reflections are
 * g1, g2, g3, and receive the directivity e00, the source match e11 and the
 * reflection tracking e01 e10 of the model M = e00 + e01 e10 G / (1 - e11 G).
 * Singular standards are not reported. Returns 0, or -1 with the arrays
 * untouched when memory runs out. */
DSP_API int Compute1PortTerms(double *m1, double *m2, double *m3, const double *g1,
                              const double *g2, const double *g3, int first, int end);
/* centre[i] = centre of the circle through a[i], b[i], c[i], d[i] for i in
 * [first, end): the perpendicular bisectors of the two chords closest to
 * perpendicular are intersected through their slopes (chords parallel to an
 * axis give infinities or NaN); chords less than 10 degrees apart give d[i]. */
DSP_API void vfps_CircleFit(const float *a, const float *b, const float *c, const float *d,
                            float *centre, int first, int end);
DSP_API void vfpd_CircleFit(const double *a, const double *b, const double *c, const double *d,
                            double *centre, int first, int end);

/*
 * Complex reflections `refl` (n points) at the strictly increasing
 * frequencies `freq` interpolated at the m frequencies `at` (any order,
 * within [freq[0], freq[n-1]]) into `result` (m points). At a data
 * frequency the result is that point. Between freq[k] and freq[k+1], with
 * t = (x - freq[k]) / (freq[k+1] - freq[k]), it lies on the circle through
 * the three points from j = min(max(k - 1, 0), n - 3) (the interval's ends
 * and the point before it; after it for the first interval): refl[k]
 * rotated about the centre by t times the angle from refl[k] to refl[k+1],
 * taken in the sense in which the three points run round the circle.
 * Linear, refl[k] + t (refl[k+1] - refl[k]), for n = 2 or collinear points
 * (|cross(q1 - q0, q2 - q0)| <= 1e-12 |q1 - q0| |q2 - q0|). Returns 0, or
 * -1 with result untouched for n < 1, m < 0, frequencies not strictly
 * increasing, a query outside the range or NaN, or no memory for the
 * scratch copy taken when result overlaps an input (which it may).
 */
DSP_API int CircularInterpolation(const double *freq, const double *refl, int n, const double *at,
                                  double *result, int m);

/* ------------------------------------------------------------------------
 * Regression and polynomials
 * ------------------------------------------------------------------------ */

/*
 * A polynomial is a record of coefficients in ascending order: point i is
 * the coefficient of x^i (as dspfi_pdiffer reads it; numpy.polyfit and
 * numpy.poly1d list them the other way round). The computations run in
 * double precision in both families. Results are written only on success
 * and may be an input record; a statistic's result keeps its delta.
 */
/* out = {slope, intercept, r} (real, 3 points): the least-squares line
 * y = slope x + intercept through the points (k delta, in[k]) and their
 * correlation coefficient r (0 when in is constant). -1 for complex input,
 * fewer than two points or delta 0. */
DSP_API int dspfs_lin_regres(const dspf_signal *in, dspf_signal *out);
DSP_API int dsps_lin_regres(const dsp_signal *in, dsp_signal *out);
/* The same through the points (x[k], y[k]); -1 also for complex x, unequal
 * lengths or all x equal. */
DSP_API int dspfs_lin_regres2(const dspf_signal *x, const dspf_signal *y, dspf_signal *out);
DSP_API int dsps_lin_regres2(const dsp_signal *x, const dsp_signal *y, dsp_signal *out);
/* out (real, degree + 1 points) = the coefficients c minimising
 * sum |y[k] - sum c[i] x[k]^i|^2, by a QR decomposition of the Vandermonde
 * matrix with columns scaled to unit norm (never the normal equations).
 * -1 for complex records, unequal lengths, degree < 0, fewer than
 * degree + 1 points, or fewer distinct x than degree + 1 (a singular fit). */
DSP_API int dspfs_psolve(const dspf_signal *x, const dspf_signal *y, dspf_signal *out, int degree);
DSP_API int dsps_psolve(const dsp_signal *x, const dsp_signal *y, dsp_signal *out, int degree);
/* As psolve with real or complex x and y; out is always complex. */
DSP_API int dspfs_pcsolve(const dspf_signal *x, const dspf_signal *y, dspf_signal *out,
                          int degree);
DSP_API int dsps_pcsolve(const dsp_signal *x, const dsp_signal *y, dsp_signal *out, int degree);
/* out[k] = sum coef[i] x[k]^i (Horner) for every point of x: x.n points
 * with x's delta, complex when coef or x is; no coefficients give zeros. */
DSP_API int dspfs_peval(const dspf_signal *coef, const dspf_signal *x, dspf_signal *out);
DSP_API int dsps_peval(const dsp_signal *coef, const dsp_signal *x, dsp_signal *out);
/* Coefficients in place to the roots: a complex record of as many points as
 * the degree (the index of the last nonzero coefficient), sorted by real
 * part, then imaginary part; zero low-order coefficients give roots at 0.
 * The roots are the eigenvalues of the balanced companion matrix, by a
 * shifted Hessenberg QR iteration (in real arithmetic for real
 * coefficients, so complex roots come in exact conjugate pairs). -1, the
 * record unchanged, when every coefficient is 0 (or there is none), a
 * coefficient is NaN or infinite, the coefficients' ratios leave the range
 * (a root would not be finite), or the iteration does not converge. */
DSP_API int dspfi_proots(dspf_signal *x);
DSP_API int dspi_proots(dsp_signal *x);
/* Roots r[0 .. n-1] in place to the n + 1 coefficients of the monic
 * polynomial (x - r[0]) ... (x - r[n-1]), real for real roots and complex
 * for complex ones; no roots give the constant 1. */
DSP_API int dspfi_pztoc(dspf_signal *x);
DSP_API int dspi_pztoc(dsp_signal *x);

/* ------------------------------------------------------------------------
 * Interpolation and splines
 * ------------------------------------------------------------------------ */

/*
 * A tabulated function has knots x[0] < x[1] < ... < x[n-1] and values
 * y[k], real or complex (complex values are interpolated part by part).
 * Modes: DSP_INTERP_LINEAR joins the knots by straight lines and takes the
 * first or last value outside them; DSP_INTERP_NATURAL and
 * DSP_INTERP_NOT_A_KNOT are cubic splines (continuous second derivative)
 * with zero second derivative at both ends, or with a continuous third
 * derivative at x[1] and x[n-2]; outside the knots the first and last
 * cubic pieces continue. Two knots give the straight line in every mode,
 * three knots with not-a-knot ends the parabola through them, one knot its
 * value everywhere. The knots are worked in double precision in both
 * families. Results are written only on success and may be an input record.
 */
enum {
    DSP_INTERP_LINEAR = 0,
    DSP_INTERP_NATURAL = 1,
    DSP_INTERP_NOT_A_KNOT = 2
};
/* out[j] = the function with knots x[k] = k in.delta and values in[k] at
 * the real positions pos[j] (in the units of delta, from in's first point):
 * pos.n points of in's kind with pos's delta. -1 for an unknown mode, an
 * empty in, delta not positive and finite, or complex pos. */
DSP_API int dspf_interp(const dspf_signal *in, const dspf_signal *pos, dspf_signal *out, int mode);
DSP_API int dsp_interp(const dsp_signal *in, const dsp_signal *pos, dsp_signal *out, int mode);
/* The second derivatives of the cubic spline (mode natural or not-a-knot)
 * at the knots k in.delta: n points of in's kind with in's delta. -1 also
 * for the linear mode. */
DSP_API int dspf_cspline(const dspf_signal *in, dspf_signal *out, int mode);
DSP_API int dsp_cspline(const dsp_signal *in, dsp_signal *out, int mode);
/* The same for the knots x[k] with values y[k]: n points of y's kind, delta
 * the mean of x's and y's. -1 also for complex x, unequal lengths or x not
 * strictly increasing. */
DSP_API int dspfb_cspline_2d(const dspf_signal *x, const dspf_signal *y, dspf_signal *out,
                             int mode);
DSP_API int dspb_cspline_2d(const dsp_signal *x, const dsp_signal *y, dsp_signal *out, int mode);
/* The function with knots x[k] and values y[k] at the real positions pos[j]:
 * pos.n points of y's kind with pos's delta. -1 for an unknown mode, an
 * empty or complex x, unequal lengths, x not strictly increasing, or
 * complex pos. */
DSP_API int dspfb_inter(const dspf_signal *x, const dspf_signal *y, const dspf_signal *pos,
                        dspf_signal *out, int mode);
DSP_API int dspb_inter(const dsp_signal *x, const dsp_signal *y, const dsp_signal *pos,
                       dsp_signal *out, int mode);

#ifdef __cplusplus
}
#endif

#endif /* DSP_H */
