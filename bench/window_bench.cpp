// Window benchmarks: windowing with a cached window (a product and a half
// swap) against generating the window on every call, a plain multiply of
// two records as the floor, and the windowed spectrum in one call against
// the same steps made one by one. The windowed record is restored from a
// copy on every iteration (in all of them alike), so that repeated
// windowing cannot drive its values into denormals.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "dsp.h"

namespace {

struct record {
    dsp_signal s;
    explicit record(int n, int cplx = 0) {
        dsp_init(&s);
        s.n = n;
        s.cplx = cplx;
        dsp_alloc(&s);
        for (int i = 0; i < (cplx ? 2 * n : n); ++i) s.data[i] = 1.0 + 1e-3 * (i % 17);
    }
    ~record() { dsp_destroy(&s); }
};

void restore(dsp_signal &x, const dsp_signal &from) {
    std::memcpy(x.data, from.data, sizeof(double) * size_t(x.n));
}

void multiply_floor(benchmark::State &state) {
    const int n = int(state.range(0));
    record x(n), w(n), pristine(n);
    for (auto _ : state) {
        restore(x.s, pristine.s);
        dspb_mul(&x.s, &w.s, &x.s);
        benchmark::DoNotOptimize(x.s.data);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void cached_window(benchmark::State &state) {
    const int n = int(state.range(0));
    record x(n), pristine(n);
    for (auto _ : state) {
        restore(x.s, pristine.s);
        dspi_window(&x.s, DSP_WINDOW_FLATTOP, 32);
        benchmark::DoNotOptimize(x.s.data);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void generated_window(benchmark::State &state) {
    const int n = int(state.range(0));
    record x(n), pristine(n);
    for (auto _ : state) {
        restore(x.s, pristine.s);
        dspi_window_kaiser(&x.s, 9.0, 32);
        benchmark::DoNotOptimize(x.s.data);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void spectrum_one_call(benchmark::State &state) {
    const int n = int(state.range(0));
    record x(n), out(1), scratch(1);
    for (auto _ : state) {
        dsph_fft(&x.s, &out.s, &scratch.s, DSP_WINDOW_HANN, DSP_SPECTRUM_POWER, 0);
        benchmark::DoNotOptimize(out.s.data);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void spectrum_steps(benchmark::State &state) {
    const int n = int(state.range(0));
    record x(n), work(1);
    for (auto _ : state) {
        dsp_copy(&work.s, &x.s);
        dspi_window(&work.s, DSP_WINDOW_HANN, 0);
        dspi_rfft(&work.s);
        dspi_magsq(&work.s);
        benchmark::DoNotOptimize(work.s.data);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// Welch's averaged spectrum of 2^20 points in half-overlapping segments of
// 4096 (FFT) and 3000 (chirp-z) points; items are input points, each of
// which enters two segments.
void averaged_spectrum(benchmark::State &state) {
    const int n = 1 << 20;
    record x(n), out(1), scratch(1);
    for (auto _ : state) {
        dsph_avg(&x.s, &out.s, &scratch.s, DSP_WINDOW_HANN, DSP_SPECTRUM_DENSITY,
                 int(state.range(0)), -1);
        benchmark::DoNotOptimize(out.s.data);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

BENCHMARK(multiply_floor)->Arg(1024)->Arg(65536);
BENCHMARK(cached_window)->Arg(1024)->Arg(65536);
BENCHMARK(generated_window)->Arg(1024)->Arg(65536);
BENCHMARK(spectrum_one_call)->Arg(1024)->Arg(65536);
BENCHMARK(spectrum_steps)->Arg(1024)->Arg(65536);
BENCHMARK(averaged_spectrum)->Arg(4096)->Arg(3000);

}  // namespace

BENCHMARK_MAIN();
