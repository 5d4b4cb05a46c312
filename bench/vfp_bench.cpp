// Trace kernels on a display trace of 4001 points (single precision): the
// per-sweep path. The smoother's running sum keeps its cost independent of
// the width; the phase smoother recomputes every window.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "dsp.h"

namespace {

constexpr int kPoints = 4001;

std::vector<float> trace(int scalars) {
    std::vector<float> v(size_t(scalars), 0.0f);
    for (int i = 0; i < scalars; ++i)
        v[size_t(i)] = std::sin(0.01f * float(i)) + 0.001f * float(i % 7);
    return v;
}

template <void (*Mul)(float, float *, int)>
void BM_mul(benchmark::State &state) {
    auto x = trace(kPoints);
    for (auto _ : state) {
        Mul(1.0000001f, x.data(), kPoints);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kPoints);
}
BENCHMARK(BM_mul<vfpsbMul1>)->Name("vfpsbMul1");
BENCHMARK(BM_mul<vfpsbMul2>)->Name("vfpsbMul2");

void BM_vfpsb_ScaleToInt(benchmark::State &state) {
    const auto x = trace(kPoints);
    std::vector<int> y(kPoints);
    for (auto _ : state) {
        vfpsb_ScaleToInt(x.data(), kPoints, -1.5f, 1.5f, y.data(), 480, 0);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kPoints);
}
BENCHMARK(BM_vfpsb_ScaleToInt);

// Argument: window width; second argument 1 for phases.
void BM_vfps_Smooth(benchmark::State &state) {
    const auto x = trace(kPoints);
    std::vector<float> y(kPoints);
    const int width = int(state.range(0)), phase = int(state.range(1));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            vfps_Smooth(x.data(), y.data(), kPoints, 0, kPoints, width, phase));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kPoints);
}
BENCHMARK(BM_vfps_Smooth)->Args({5, 0})->Args({101, 0})->Args({5, 1})->Args({101, 1});

void BM_vfps_SmoothCpx(benchmark::State &state) {
    const auto x = trace(2 * kPoints);
    std::vector<float> y(2 * kPoints);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            vfps_SmoothCpx(x.data(), y.data(), kPoints, 0, kPoints, int(state.range(0))));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kPoints);
}
BENCHMARK(BM_vfps_SmoothCpx)->Arg(5)->Arg(101);

// Argument: display format (0 log magnitude ... 4 return loss).
void BM_vfps_FormatBuffer(benchmark::State &state) {
    const auto x = trace(2 * kPoints);
    std::vector<float> y(kPoints);
    for (auto _ : state) {
        vfps_FormatBuffer(int(state.range(0)), x.data(), y.data(), 0, kPoints);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kPoints);
}
BENCHMARK(BM_vfps_FormatBuffer)->DenseRange(0, 4);

}  // namespace

BENCHMARK_MAIN();
