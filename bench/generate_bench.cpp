// Generators and design-time builders.
//
// The tones are timed on records of 1e6 points beside a loop that calls the
// runtime cos (and sin) for every point, the cost the rotation oscillator
// avoids. The builders are timed at the sizes the resamplers use: the
// 13314-point stored kernel of mode 4 and a 1023-tap smoothing kernel.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "dsp.h"

namespace {

constexpr int kPoints = 1000000;

template <class S, class Init, class Op>
void time_record(benchmark::State &state, Init init, int (*destroy)(S *), int n, int cplx, Op op) {
    S x;
    init(&x);
    x.n = n;
    x.cplx = cplx;
    for (auto _ : state) {
        op(&x);
        benchmark::DoNotOptimize(x.data);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * n);
    destroy(&x);
}

void BM_dspfc_cos(benchmark::State &state) {
    time_record<dspf_signal>(state, dspf_init, dspf_destroy, kPoints, 0,
                             [](dspf_signal *x) { dspfc_cos(x, 0.0123f, 0.5f); });
}
void BM_dspc_cos(benchmark::State &state) {
    time_record<dsp_signal>(state, dsp_init, dsp_destroy, kPoints, 0,
                            [](dsp_signal *x) { dspc_cos(x, 0.0123, 0.5); });
}
void BM_dspfc_cexp(benchmark::State &state) {
    time_record<dspf_signal>(state, dspf_init, dspf_destroy, kPoints, 1,
                             [](dspf_signal *x) { dspfc_cexp(x, 0.0123f, 0.5f); });
}
void BM_runtime_cos_sin_float(benchmark::State &state) {
    std::vector<float> v(2 * size_t(kPoints));
    const double w = 2 * 3.141592653589793 * 0.0123;
    for (auto _ : state) {
        for (int k = 0; k < kPoints; ++k) {
            v[2 * size_t(k)] = float(std::cos(0.5 + w * k));
            v[2 * size_t(k) + 1] = float(std::sin(0.5 + w * k));
        }
        benchmark::DoNotOptimize(v.data());
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kPoints);
}
void BM_dspfc_rsmp_mode4(benchmark::State &state) {
    time_record<dspf_signal>(state, dspf_init, dspf_destroy, 13314, 0,
                             [](dspf_signal *x) { dspfc_rsmp(x, 4); });
}
void BM_dspc_fir_kind9(benchmark::State &state) {
    time_record<dsp_signal>(state, dsp_init, dsp_destroy, 1023, 0,
                            [](dsp_signal *x) { dspc_fir(x, 9, 0.0, 0.0); });
}

}  // namespace

BENCHMARK(BM_dspfc_cos)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dspc_cos)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dspfc_cexp)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_runtime_cos_sin_float)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dspfc_rsmp_mode4)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dspc_fir_kind9)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
