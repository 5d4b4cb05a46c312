// Element-wise operations on records of 1e6 points, each timed beside a
// memcpy of the record's bytes measured in the same iterations.
//
// Every iteration: (1) restore the input where the operation destroys it
// (untimed), (2) time a memcpy of as many bytes as the record holds between
// two buffers of the same size, (3) time the operation. The copy between
// the restore and the operation also moves the record's data out of the
// nearest caches, so both timed steps start from similar cache states.
// Iteration time is the operation's (manual time); the counters give the
// mean copy time and ratio_to_memcpy = total operation time / total copy
// time.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <vector>

#include "dsp.h"

namespace {

constexpr int kPoints = 1000000;
using Clock = std::chrono::steady_clock;

template <class Restore, class Op>
void run(benchmark::State &state, size_t bytes, Restore restore, Op op) {
    std::vector<char> src(bytes, 1), dst(bytes);
    double op_s = 0, copy_s = 0;
    for (auto _ : state) {
        restore();
        const auto t0 = Clock::now();
        std::memcpy(dst.data(), src.data(), bytes);
        benchmark::ClobberMemory();
        const auto t1 = Clock::now();
        op();
        benchmark::ClobberMemory();
        const auto t2 = Clock::now();
        const double c = std::chrono::duration<double>(t1 - t0).count();
        const double o = std::chrono::duration<double>(t2 - t1).count();
        state.SetIterationTime(o);
        copy_s += c;
        op_s += o;
    }
    benchmark::DoNotOptimize(dst.data());
    state.counters["memcpy_ms"] = copy_s / double(state.iterations()) * 1e3;
    state.counters["ratio_to_memcpy"] = op_s / copy_s;
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(bytes));
}

// An owned record of kPoints points filled from f(i); its pristine scalars
// are kept for restoring.
template <class S, class T, class F>
std::vector<T> fill(S &rec, bool cplx, F f) {
    rec.n = kPoints;
    rec.cplx = cplx;
    const size_t count = cplx ? 2 * size_t(kPoints) : size_t(kPoints);
    std::vector<T> v(count);
    for (size_t i = 0; i < count; ++i) v[i] = T(f(i));
    if constexpr (sizeof(T) == 4)
        dspf_alloc(&rec);
    else
        dsp_alloc(&rec);
    std::memcpy(rec.data, v.data(), count * sizeof(T));
    return v;
}

void BM_dspfi_scale(benchmark::State &state) {
    dspf_signal x;
    dspf_init(&x);
    fill<dspf_signal, float>(x, false, [](size_t i) { return 1.0 + double(i % 97); });
    // -1 keeps the values from drifting towards overflow or denormals.
    run(
        state, kPoints * sizeof(float), [] {}, [&] { dspfi_scale(&x, -1.0f); });
    dspf_destroy(&x);
}

void BM_dspi_scale(benchmark::State &state) {
    dsp_signal x;
    dsp_init(&x);
    fill<dsp_signal, double>(x, false, [](size_t i) { return 1.0 + double(i % 97); });
    run(
        state, kPoints * sizeof(double), [] {}, [&] { dspi_scale(&x, -1.0); });
    dsp_destroy(&x);
}

void BM_dspfi_magsq_complex(benchmark::State &state) {
    dspf_signal x;
    dspf_init(&x);
    const auto v = fill<dspf_signal, float>(x, true, [](size_t i) { return double(i % 113) - 50; });
    // magsq halves the record to real: restore cplx and the input each time.
    auto restore = [&] {
        x.cplx = 1;
        std::memcpy(x.data, v.data(), v.size() * sizeof(float));
    };
    run(state, v.size() * sizeof(float), restore, [&] { dspfi_magsq(&x); });
    dspf_destroy(&x);
}

void BM_dspfi_db_real(benchmark::State &state) {
    dspf_signal x;
    dspf_init(&x);
    const auto v =
        fill<dspf_signal, float>(x, false, [](size_t i) { return 1e-6 + double(i % 1009); });
    // The single family's walk consumes two scalars per positive sample, so
    // a record of positive powers gets about n/2 logarithms.
    auto restore = [&] { std::memcpy(x.data, v.data(), v.size() * sizeof(float)); };
    run(state, v.size() * sizeof(float), restore, [&] { dspfi_db(&x, 10.0f); });
    dspf_destroy(&x);
}

}  // namespace

BENCHMARK(BM_dspfi_scale)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dspfi_magsq_complex)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dspfi_db_real)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dspi_scale)->UseManualTime()->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
