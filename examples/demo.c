/* The library's typical job, end to end: a sampled signal is windowed,
 * transformed by the real FFT, converted to decibels and searched for its
 * strongest peak; the window's equivalent noise bandwidth turns the level of
 * the noise floor into a noise density.
 *
 *   dsp_demo                                 built-in signal: 1 kHz tone plus noise
 *   dsp_demo [--rate HZ] [--window NAME] [FILE]
 *
 * FILE holds the samples as text (numbers separated by blanks or new lines;
 * '#' starts a comment up to the end of the line). The sample rate defaults
 * to 48000 Hz, the window to "Flattop" (any name of the window table:
 * "Hann", "Blackman_Harris4", "Kaiser90", ...).
 *
 * Output: the peak frequency (interpolated between bins), its level as the
 * power of a sine in dB re 1 (0 dB: rms 1, amplitude 1.414), and the noise
 * density of the rest of the spectrum in dB re 1/Hz. The level and the noise
 * come from the chosen window: the flat-top measures a tone within 0.01 dB
 * wherever it falls between bins, at the price of a wide, flat peak. The
 * frequency therefore comes from a second spectrum with a Kaiser window,
 * whose narrow, nearly Gaussian peak the parabola through the three highest
 * decibel values locates to a small fraction of a bin (a 1 kHz tone reads
 * 1000.000 Hz with 0.73 Hz bins). */
#include <dsp.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The window whose spectrum locates the tone's frequency. */
#define LOCATING_WINDOW DSP_WINDOW_KAISER90

/* Built-in signal. */
#define DEFAULT_N 65536
#define DEFAULT_TONE_HZ 1000.0
#define DEFAULT_AMPLITUDE 1.0
#define DEFAULT_NOISE_RMS 0.001

static int usage(const char *program) {
    fprintf(stderr, "usage: %s [--rate HZ] [--window NAME] [FILE]\n", program);
    return 2;
}

/* A deterministic noise source: a 64-bit linear congruential generator and
 * the sum of twelve uniform numbers (mean 0, variance 1, nearly Gaussian). */
static unsigned long long noise_state = 0x2545f4914f6cdd1dULL;

static double noise(void) {
    double s = -6.0;
    for (int i = 0; i < 12; ++i) {
        noise_state = noise_state * 6364136223846793005ULL + 1442695040888963407ULL;
        s += (double)(noise_state >> 11) * (1.0 / 9007199254740992.0);
    }
    return s;
}

/* The built-in signal: zeros, a tone added by the library, then noise. */
static int make_signal(dsp_signal *x, double rate) {
    x->n = DEFAULT_N;
    x->delta = 1.0 / rate;
    if (dspi_zero(x) != 0) return -1;
    /* addcos takes the frequency in cycles per unit of delta: Hz here. */
    if (dspi_addcos(x, 0, DEFAULT_TONE_HZ, DEFAULT_AMPLITUDE, 0.0) != 0) return -1;
    for (int i = 0; i < x->n; ++i) x->data[i] += DEFAULT_NOISE_RMS * noise();
    return 0;
}

/* Reads whitespace-separated samples; '#' comments to the end of the line. */
static int read_signal(const char *path, dsp_signal *x, double rate) {
    FILE *f = fopen(path, "r");
    if (!f) {
        fprintf(stderr, "cannot open %s\n", path);
        return -1;
    }
    int capacity = 0, status = 0;
    double *samples = NULL;
    x->n = 0;
    for (;;) {
        int c = fgetc(f);
        if (c == EOF) break;
        if (c == '#') {
            while (c != EOF && c != '\n') c = fgetc(f);
            continue;
        }
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == ',') continue;
        ungetc(c, f);
        double v;
        if (fscanf(f, "%lf", &v) != 1) {
            fprintf(stderr, "%s: not a number after sample %d\n", path, x->n);
            status = -1;
            break;
        }
        if (x->n == capacity) {
            capacity = capacity ? 2 * capacity : 1024;
            double *grown = realloc(samples, (size_t)capacity * sizeof *samples);
            if (!grown) {
                status = -1;
                break;
            }
            samples = grown;
        }
        samples[x->n++] = v;
    }
    fclose(f);
    if (status == 0 && x->n < 2) {
        fprintf(stderr, "%s: at least two samples are needed\n", path);
        status = -1;
    }
    if (status == 0) {
        x->delta = 1.0 / rate;
        status = dsp_alloc(x);
        if (status == 0) memcpy(x->data, samples, (size_t)x->n * sizeof *samples);
    }
    free(samples);
    return status;
}

/* x becomes the power of a sine in each bin of its spectrum: windowed with
 * unit mean (a tone keeps its amplitude), unrotated, zero-padded to m points
 * (zpad2 scales by m/n so that the level is that of the n samples), real FFT
 * (m/2 + 1 complex points, delta the bin spacing in Hz), then 2 |X|^2 (the
 * other half of the spectrum holds the rest of the power). */
static int power_spectrum(dsp_signal *x, dsp_window kind, int m) {
    if (dspi_window(x, kind, 32) != 0 || dspi_zpad2(x, m, 0) != 0 || dspi_rfft(x) != 0) return -1;
    return dspi_magsq(x) == 0 && dspi_scale(x, 2.0) == 0 ? 0 : -1;
}

int main(int argc, char **argv) {
    double rate = 48000.0;
    const char *window_name = "Flattop", *path = NULL;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--rate") == 0 && i + 1 < argc) {
            rate = atof(argv[++i]);
            if (!(rate > 0)) return usage(argv[0]);
        } else if (strcmp(argv[i], "--window") == 0 && i + 1 < argc) {
            window_name = argv[++i];
        } else if (argv[i][0] == '-' || path) {
            return usage(argv[0]);
        } else {
            path = argv[i];
        }
    }
    dsp_window kind;
    if (dsp_window_from_str(window_name, &kind) != 0) {
        fprintf(stderr, "unknown window %s\n", window_name);
        return 2;
    }

    dsp_signal x, peak;
    dsp_init(&x);
    dsp_init(&peak);
    int ok = path ? read_signal(path, &x, rate) == 0 : make_signal(&x, rate) == 0;
    if (!ok) {
        dsp_destroy(&x);
        return 1;
    }
    const int n = x.n;
    if (path)
        printf("signal: %d samples at %g Hz from %s\n", n, rate, path);
    else
        printf("signal: %d samples at %g Hz: %g Hz tone of amplitude %g plus noise of rms %g\n", n,
               rate, DEFAULT_TONE_HZ, DEFAULT_AMPLITUDE, DEFAULT_NOISE_RMS);

    /* The level spectrum with the chosen window and the locating spectrum,
     * both zero-padded to four times the next power of two. */
    int m = 1;
    while (m < n) m *= 2;
    m *= 4;
    double enbw = 0.0;
    dsp_signal locate;
    dsp_init(&locate);
    ok = dsp_copy(&locate, &x) == 0 && power_spectrum(&x, kind, m) == 0 &&
         power_spectrum(&locate, LOCATING_WINDOW, m) == 0 && dsp_window_enbw(&enbw, kind, n) == 0;
    if (!ok) {
        fprintf(stderr, "spectrum failed\n");
        dsp_destroy(&x);
        dsp_destroy(&locate);
        return 1;
    }
    const double bin = x.delta;
    const double rbw = enbw * rate / n; /* resolution bandwidth of the window */

    /* The noise floor: mean power outside the tone (20 bins of the unpadded
     * spectrum around the strongest bin) and away from 0 Hz. */
    int top = 1;
    for (int k = 1; k < x.n; ++k)
        if (x.data[k] > x.data[top]) top = k;
    const int guard = (int)(20.0 * m / n);
    double floor_sum = 0.0;
    int floor_count = 0;
    for (int k = guard; k < x.n - 1; ++k) {
        if (k > top - guard && k < top + guard) continue;
        floor_sum += x.data[k];
        ++floor_count;
    }

    /* Level: the parabola through the three highest decibel values of the
     * level spectrum. Frequency: the same in the locating spectrum. */
    dsp_signal where;
    dsp_init(&where);
    ok = dspi_db(&x, 10.0) == 0 && dsps_peak(&x, &peak, 0x100, 0) == 0 &&
         dspi_db(&locate, 10.0) == 0 && dsps_peak(&locate, &where, 0x100, 0) == 0;
    if (!ok) {
        fprintf(stderr, "peak search failed\n");
        dsp_destroy(&x);
        dsp_destroy(&peak);
        dsp_destroy(&locate);
        dsp_destroy(&where);
        return 1;
    }
    printf("window: %s, ENBW %.4f bins, resolution bandwidth %.3f Hz, bin spacing %.3f Hz\n",
           window_name, enbw, rbw, bin);
    printf("frequency: %.3f Hz\n", where.data[1] * bin);
    printf("level: %.3f dB\n", peak.data[0]);
    if (floor_count > 0 && floor_sum > 0.0)
        printf("noise density: %.2f dB/Hz\n", 10.0 * log10(floor_sum / floor_count / rbw));
    else
        printf("noise density: not measurable\n");

    dsp_destroy(&x);
    dsp_destroy(&peak);
    dsp_destroy(&locate);
    dsp_destroy(&where);
    dsp_free_internal();
    return 0;
}
