// Block FIR filtering of a real single-precision stream (blocks of 4096
// samples, the history carried from block to block) beside two peers in the
// same run: liquid-dsp's firfilt_rrrf block execution (a direct filter) and
// an overlap-save filter on FFTW (FFTW_MEASURE plans, one r2c and one c2r of
// the power of two of at least 4096 + m - 1 points per block, the filter's
// spectrum computed once). "dsp" is the library as it runs on this
// processor; "dsp-base" is limited to the vectors of the build's baseline
// instruction set (SSE2 on x86-64), as on processors without AVX2.
//
// The table after the timings gives the median throughput of each contender
// in Msamples/s of processor time (robust on a shared machine), the ratios of this library's time
// to the peers', and the largest error of each against a long-double direct sum over eight blocks,
// relative to sum |h| (the bound of every output for samples in [-1, 1]).
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <liquid/liquid.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

#include "dsp.h"
#include "filter/kernels.hpp"
#include "transform/fft_kernel.hpp"

namespace {

constexpr int kBlock = 4096;
constexpr int kBlocks = 8;  // distinct input blocks, cycled
const int kTaps[] = {16, 32, 64, 256, 1024};

std::vector<float> noise(size_t count, unsigned seed) {
    std::mt19937 g(seed);
    std::uniform_real_distribution<float> u(-1.0f, 1.0f);
    std::vector<float> v(count);
    for (auto &x : v) x = u(g);
    return v;
}

// A Hann-windowed sinc low-pass with its cut-off at a fifth of the rate.
std::vector<float> lowpass(int m) {
    std::vector<float> h(static_cast<size_t>(m));
    const double pi = 3.141592653589793, c = m / 2.0 - 0.5;
    for (int j = 0; j < m; ++j) {
        const double t = j - c, a = 2 * pi * 0.2 * t;
        const double sinc = t == 0 ? 0.4 : std::sin(a) / (pi * t);
        h[size_t(j)] = float(sinc * (0.5 - 0.5 * std::cos(2 * pi * (j + 0.5) / m)));
    }
    return h;
}

const std::vector<float> &input() {
    static const std::vector<float> x = noise(size_t(kBlock) * kBlocks, 7);
    return x;
}

// A filter run block by block: run(in, out) filters one block of kBlock
// samples, carrying its history.
struct dsp_filter {
    dspf_signal h, x, y, hist;
    explicit dsp_filter(const std::vector<float> &taps) {
        for (auto *s : {&h, &x, &y, &hist}) dspf_init(s);
        h.n = int32_t(taps.size());
        dspf_alloc(&h);
        std::copy(taps.begin(), taps.end(), h.data);
        x.n = kBlock;
        dspf_alloc(&x);
    }
    ~dsp_filter() {
        for (auto *s : {&h, &x, &y, &hist}) dspf_destroy(s);
    }
    void run(const float *in, float *out) {
        std::memcpy(x.data, in, kBlock * sizeof(float));
        dspfd_fir(&x, &y, &h, &hist);
        if (out) std::memcpy(out, y.data, kBlock * sizeof(float));
    }
};

struct liquid_filter {
    firfilt_rrrf q;
    explicit liquid_filter(std::vector<float> taps)
        : q(firfilt_rrrf_create(taps.data(), unsigned(taps.size()))) {}
    ~liquid_filter() { firfilt_rrrf_destroy(q); }
    std::vector<float> y = std::vector<float>(kBlock);
    void run(const float *in, float *out) {
        firfilt_rrrf_execute_block(q, const_cast<float *>(in), kBlock, out ? out : y.data());
    }
};

// Overlap-save: buf = the m - 1 previous samples, the block, zeros; the
// outputs are buf's circular convolution at m - 1 .. m - 2 + kBlock.
struct fftw_filter {
    int m, N;
    float *buf;
    fftwf_complex *X, *H;
    fftwf_plan fwd, inv;
    std::vector<float> hist, y = std::vector<float>(kBlock);
    explicit fftw_filter(const std::vector<float> &taps) : m(int(taps.size())), N(1) {
        while (N < kBlock + m - 1) N *= 2;
        buf = fftwf_alloc_real(size_t(N));
        X = fftwf_alloc_complex(size_t(N / 2 + 1));
        H = fftwf_alloc_complex(size_t(N / 2 + 1));
        fwd = fftwf_plan_dft_r2c_1d(N, buf, X, FFTW_MEASURE);
        inv = fftwf_plan_dft_c2r_1d(N, X, buf, FFTW_MEASURE);
        std::fill(buf, buf + N, 0.0f);
        for (int j = 0; j < m; ++j) buf[j] = taps[size_t(j)] / float(N);
        fftwf_execute(fwd);
        std::memcpy(H, X, sizeof(fftwf_complex) * size_t(N / 2 + 1));
        hist.assign(size_t(m - 1), 0.0f);
    }
    ~fftw_filter() {
        fftwf_destroy_plan(fwd);
        fftwf_destroy_plan(inv);
        fftwf_free(buf);
        fftwf_free(X);
        fftwf_free(H);
    }
    void run(const float *in, float *out) {
        std::copy(hist.begin(), hist.end(), buf);
        std::memcpy(buf + m - 1, in, kBlock * sizeof(float));
        std::fill(buf + m - 1 + kBlock, buf + N, 0.0f);
        std::copy(in + kBlock - (m - 1), in + kBlock, hist.begin());
        fftwf_execute(fwd);
        for (int k = 0; k <= N / 2; ++k) {
            const float a = X[k][0], b = X[k][1], c = H[k][0], d = H[k][1];
            X[k][0] = a * c - b * d;
            X[k][1] = a * d + b * c;
        }
        fftwf_execute(inv);
        std::memcpy(out ? out : y.data(), buf + m - 1, kBlock * sizeof(float));
    }
};

// Largest error over kBlocks blocks against the long-double direct sum,
// relative to sum |h|.
template <class Filter>
double max_error(const std::vector<float> &taps) {
    Filter f(taps);
    const auto &x = input();
    std::vector<float> y(x.size());
    for (int b = 0; b < kBlocks; ++b) f.run(&x[size_t(b) * kBlock], &y[size_t(b) * kBlock]);
    long double g = 0, worst = 0;
    for (float c : taps) g += std::fabs(c);
    for (size_t k = 0; k < x.size(); ++k) {
        long double s = 0;
        for (size_t j = 0; j < taps.size() && j <= k; ++j) s += (long double)taps[j] * x[k - j];
        worst = std::max(worst, std::fabs(s - y[k]));
    }
    return double(worst / g);
}

template <class Filter, int level = 1>
void bench(benchmark::State &state) {
    const auto taps = lowpass(int(state.range(0)));
    dsp::filter_kernel::select_kernels(level);
    dsp::fft_kernel::select_kernels(level + 1);
    Filter f(taps);
    const auto &x = input();
    int b = 0;
    for (auto _ : state) {
        f.run(&x[size_t(b) * kBlock], nullptr);
        b = (b + 1) % kBlocks;
    }
    dsp::filter_kernel::select_kernels(1);
    dsp::fft_kernel::select_kernels(2);
    state.SetItemsProcessed(state.iterations() * kBlock);
}

class collecting_reporter : public benchmark::ConsoleReporter {
 public:
    std::map<std::string, double> ns;  // median time per block
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const auto &r : runs)
            if (!r.error_occurred && r.run_type == Run::RT_Aggregate &&
                r.aggregate_name == "median")
                ns[r.run_name.function_name + "/" + r.run_name.args] =
                    r.GetAdjustedCPUTime() * (r.time_unit == benchmark::kMicrosecond ? 1e3 : 1.0);
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace

int main(int argc, char **argv) {
    const std::vector<std::pair<std::string, void (*)(benchmark::State &)>> contenders = {
        {"dsp", bench<dsp_filter>},
        {"dsp-base", bench<dsp_filter, 0>},
        {"liquid", bench<liquid_filter>},
        {"fftw-os", bench<fftw_filter>}};
    std::map<std::pair<std::string, int>, double> err;
    for (int m : kTaps) {
        const auto taps = lowpass(m);
        err[{"dsp", m}] = max_error<dsp_filter>(taps);
        err[{"liquid", m}] = max_error<liquid_filter>(taps);
        err[{"fftw-os", m}] = max_error<fftw_filter>(taps);
    }
#if defined(__SSE__)
    _mm_setcsr(_mm_getcsr() | 0x8040);  // flush denormals to zero (FTZ, DAZ)
#endif
    for (const auto &[name, fn] : contenders) {
        auto *b = benchmark::RegisterBenchmark(("fir/" + name).c_str(), fn);
        for (int m : kTaps) b->Arg(m);
        b->Repetitions(5)->ReportAggregatesOnly(true);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    collecting_reporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);

    std::printf(
        "\nReal FIR, blocks of %d with carried history: Msamples/s (median of 5), time "
        "ratios, largest error / sum|h|\n",
        kBlock);
    std::printf("%6s %9s %9s %9s %9s %12s %12s %10s %10s %10s\n", "taps", "dsp", "dsp-base",
                "liquid", "fftw-os", "dsp/liquid", "dsp/fftw-os", "err dsp", "err liquid",
                "err fftw");
    for (int m : kTaps) {
        auto t = [&](const std::string &c) {
            auto it = rep.ns.find("fir/" + c + "/" + std::to_string(m));
            return it == rep.ns.end() ? NAN : it->second;
        };
        auto rate = [&](const std::string &c) { return kBlock / t(c) * 1e3; };
        std::printf("%6d %9.0f %9.0f %9.0f %9.0f %12.2f %12.2f %10.1e %10.1e %10.1e\n", m,
                    rate("dsp"), rate("dsp-base"), rate("liquid"), rate("fftw-os"),
                    t("dsp") / t("liquid"), t("dsp") / t("fftw-os"), err[{"dsp", m}],
                    err[{"liquid", m}], err[{"fftw-os", m}]);
    }
    benchmark::Shutdown();
    fftwf_cleanup();
    return 0;
}
