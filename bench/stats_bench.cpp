// Statistics and binary arithmetic on 1e6-point single-precision records,
// beside a memcpy of the same bytes (the target: within 2x of the copy).
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "dsp.h"

namespace {

constexpr int kPoints = 1000000;

struct Record {
    dspf_signal s;
    explicit Record(int n, bool cplx) {
        dspf_init(&s);
        s.n = n;
        s.cplx = cplx ? 1 : 0;
        dspf_alloc(&s);
        for (int i = 0; i < (cplx ? 2 * n : n); ++i) s.data[i] = float(i % 1000) * 0.001f - 0.4f;
    }
    ~Record() { dspf_destroy(&s); }
};

void BM_memcpy(benchmark::State &state) {
    const size_t bytes = size_t(state.range(0));
    std::vector<char> src(bytes, 1), dst(bytes);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), bytes);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(bytes));
}
BENCHMARK(BM_memcpy)->Arg(kPoints * sizeof(float))->Arg(2 * kPoints * sizeof(float));

void BM_dspfs_sum(benchmark::State &state) {
    Record x(kPoints, false), r(0, false);
    for (auto _ : state) {
        dspfs_sum(&x.s, &r.s);
        benchmark::DoNotOptimize(r.s.data[0]);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * kPoints * int64_t(sizeof(float)));
}
BENCHMARK(BM_dspfs_sum);

void BM_dspfs_rms(benchmark::State &state) {
    Record x(kPoints, false), r(0, false);
    for (auto _ : state) {
        dspfs_rms(&x.s, &r.s);
        benchmark::DoNotOptimize(r.s.data[0]);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * kPoints * int64_t(sizeof(float)));
}
BENCHMARK(BM_dspfs_rms);

void BM_dspfb_mul_complex(benchmark::State &state) {
    Record a(kPoints, true), b(kPoints, true), r(kPoints, true);
    for (auto _ : state) {
        dspfb_mul(&a.s, &b.s, &r.s);
        benchmark::DoNotOptimize(r.s.data);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * 2 * kPoints * int64_t(sizeof(float)));
}
BENCHMARK(BM_dspfb_mul_complex);

void BM_dspfb_add(benchmark::State &state) {
    Record a(kPoints, false), b(kPoints, false), r(kPoints, false);
    for (auto _ : state) {
        dspfb_add(&a.s, &b.s, &r.s);
        benchmark::DoNotOptimize(r.s.data);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * kPoints * int64_t(sizeof(float)));
}
BENCHMARK(BM_dspfb_add);

}  // namespace

BENCHMARK_MAIN();
