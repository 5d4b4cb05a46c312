// Interpolation benchmarks: 2^20 positions spread over a record of 4096
// knots, linear and by a not-a-knot spline (its tridiagonal solve
// included), on the record's uniform grid and on tabulated knots (a binary
// search per position).
#include <benchmark/benchmark.h>

#include <cmath>

#include "dsp.h"

namespace {

struct record {
    dsp_signal s;
    explicit record(int n, double step) {
        dsp_init(&s);
        s.n = n;
        dsp_alloc(&s);
        for (int i = 0; i < n; ++i) s.data[i] = step > 0 ? step * i : std::sin(0.01 * i);
    }
    ~record() { dsp_destroy(&s); }
};

void interpolate(benchmark::State &state) {
    const int knots = 4096, points = 1 << 20, mode = int(state.range(0));
    const bool tabulated = state.range(1) != 0;
    record y(knots, 0), x(knots, 1.0), pos(points, double(knots - 1) / points), out(1, 0);
    for (auto _ : state) {
        if (tabulated)
            dspb_inter(&x.s, &y.s, &pos.s, &out.s, mode);
        else
            dsp_interp(&y.s, &pos.s, &out.s, mode);
        benchmark::DoNotOptimize(out.s.data);
    }
    state.SetItemsProcessed(state.iterations() * points);
}

BENCHMARK(interpolate)
    ->ArgNames({"mode", "tabulated"})
    ->Args({DSP_INTERP_LINEAR, 0})
    ->Args({DSP_INTERP_NOT_A_KNOT, 0})
    ->Args({DSP_INTERP_LINEAR, 1})
    ->Args({DSP_INTERP_NOT_A_KNOT, 1});

}  // namespace

BENCHMARK_MAIN();
