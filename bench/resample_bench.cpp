// Resampling a real single-precision stream of 1e6 samples in blocks of 4096
// beside two peers in the same run: libsamplerate (SRC_SINC_MEDIUM_QUALITY)
// and soxr (SOXR_MQ), each at the same step (input samples per output; the
// peers' output/input ratio is 1 / step). "rsmp2" is dspfd_rsmp2 with stored
// kernel 4, linear interpolation between phases and a carried history;
// "stream" is the streaming resampler with its fine stage on (ratio 1).
//
// After the timings: the median throughput (Msamples/s of input, processor
// time, robust on a shared machine) and the time ratios to the peers; then
// the response to a swept tone, measured the same way for every contender:
// a unit tone placed on a bin of the output, 4096 settled outputs under a
// 4-term Blackman-Harris window, the gain at the tone and the largest other
// component (spurious, dB below the input tone) over the sweep.
#include <benchmark/benchmark.h>
#include <samplerate.h>
#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "dsp.h"

namespace {

constexpr int kBlock = 4096;
constexpr int kTotal = 1000000;

// A resampler run block by block: run(in, n) appends its outputs to out.
struct resampler {
    std::vector<float> out;
    virtual ~resampler() = default;
    virtual void run(const float *in, int n) = 0;
};

struct dsp_kernel final : resampler {
    int kernel_mode;
    float step;
    dspf_signal x, y, hist;
    dsp_kernel(int km, float s) : kernel_mode(km), step(s) {
        for (auto *r : {&x, &y, &hist}) dspf_init(r);
    }
    ~dsp_kernel() override {
        for (auto *r : {&x, &y, &hist}) dspf_destroy(r);
    }
    void run(const float *in, int n) override {
        dspf_signal b = {1.0f, const_cast<float *>(in), 0, n, 0, 0};
        y.n = int32_t(n / step) + 16;
        dspfd_rsmp2(&b, &y, 1, kernel_mode, step, &hist);
        out.insert(out.end(), y.data, y.data + y.n);
    }
};

struct dsp_stream final : resampler {
    dspfh_rsmp_coef c;
    dspfh_rsmp_state st;
    dspf_signal y, scratch;
    dsp_stream() {
        dspfh_rsmp_coef_init(&c);
        dspfh_rsmp_coef_alloc(&c, 0);
        dspfh_rsmp_coef_setup(&c, 1.0f, 1, 0);
        dspfh_rsmp_state_init(&st);
        dspfh_rsmp_state_alloc(&c, &st, 0);
        dspfh_rsmp_state_reset(&c, &st);
        dspf_init(&y);
        dspf_init(&scratch);
    }
    ~dsp_stream() override {
        dspf_destroy(&y);
        dspf_destroy(&scratch);
        dspfh_rsmp_state_destroy(&st);
        dspfh_rsmp_coef_destroy(&c);
    }
    void run(const float *in, int n) override {
        dspf_signal b = {1.0f, const_cast<float *>(in), 0, n, 0, 0};
        y.n = 2 * n + 16;
        dspfh_rsmp(&b, &y, &scratch, &c, &st);
        out.insert(out.end(), y.data, y.data + y.n);
    }
};

struct src_medium final : resampler {
    SRC_STATE *s;
    double ratio;
    std::vector<float> buf;
    explicit src_medium(float step) : ratio(1.0 / step) {
        int err = 0;
        s = src_new(SRC_SINC_MEDIUM_QUALITY, 1, &err);
    }
    ~src_medium() override { src_delete(s); }
    void run(const float *in, int n) override {
        buf.resize(size_t(n * ratio) + 64);
        SRC_DATA d{};
        d.data_in = in;
        d.input_frames = n;
        d.data_out = buf.data();
        d.output_frames = long(buf.size());
        d.src_ratio = ratio;
        while (d.input_frames > 0) {
            if (src_process(s, &d) != 0) return;
            out.insert(out.end(), buf.begin(), buf.begin() + d.output_frames_gen);
            d.data_in += d.input_frames_used;
            d.input_frames -= d.input_frames_used;
            if (d.input_frames_used == 0 && d.output_frames_gen == 0) break;
        }
    }
};

struct soxr_medium final : resampler {
    soxr_t s;
    std::vector<float> buf;
    explicit soxr_medium(float step) {
        soxr_error_t err;
        const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
        const soxr_quality_spec_t q = soxr_quality_spec(SOXR_MQ, 0);
        s = soxr_create(1.0, 1.0 / step, 1, &err, &io, &q, nullptr);
    }
    ~soxr_medium() override { soxr_delete(s); }
    void run(const float *in, int n) override {
        buf.resize(size_t(2 * n) + 64);
        while (n > 0) {
            size_t idone = 0, odone = 0;
            soxr_process(s, in, size_t(n), &idone, buf.data(), buf.size(), &odone);
            out.insert(out.end(), buf.begin(), buf.begin() + long(odone));
            in += idone;
            n -= int(idone);
            if (idone == 0 && odone == 0) break;
        }
    }
};

using maker = std::function<std::unique_ptr<resampler>()>;

struct contender {
    std::string name;
    float step;
    maker make;
};

std::vector<contender> contenders() {
    std::vector<contender> c;
    for (float step : {0.9f, 1.1f}) {
        c.push_back({"rsmp2-k4", step, [=] { return std::make_unique<dsp_kernel>(4, step); }});
        c.push_back({"src-medium", step, [=] { return std::make_unique<src_medium>(step); }});
        c.push_back({"soxr-mq", step, [=] { return std::make_unique<soxr_medium>(step); }});
    }
    c.push_back({"stream", 1.0f, [] { return std::make_unique<dsp_stream>(); }});
    c.push_back({"src-medium", 1.0f, [] { return std::make_unique<src_medium>(1.0f); }});
    c.push_back({"soxr-mq", 1.0f, [] { return std::make_unique<soxr_medium>(1.0f); }});
    return c;
}

const std::vector<float> &input() {
    static const std::vector<float> x = [] {
        std::mt19937 g(7);
        std::uniform_real_distribution<float> u(-1.0f, 1.0f);
        std::vector<float> v(kTotal);
        for (auto &s : v) s = u(g);
        return v;
    }();
    return x;
}

void feed(resampler &r, const std::vector<float> &x) {
    for (size_t at = 0; at < x.size(); at += kBlock)
        r.run(x.data() + at, int(std::min<size_t>(kBlock, x.size() - at)));
}

void bench(benchmark::State &state, const maker &make) {
    const auto &x = input();
    for (auto _ : state) {
        auto r = make();
        r->out.reserve(size_t(kTotal * 1.2) + 64);
        feed(*r, x);
        benchmark::DoNotOptimize(r->out.data());
    }
    state.SetItemsProcessed(state.iterations() * kTotal);
}

// Spectrum magnitudes of the real v (length a power of two), unscaled, by the
// library's double-precision FFT.
std::vector<double> spectrum(const std::vector<double> &v) {
    dsp_signal x;
    dsp_init(&x);
    x.n = int32_t(v.size());
    dsp_alloc(&x);
    std::copy(v.begin(), v.end(), x.data);
    dspi_fft(&x, 0);
    std::vector<double> m(v.size());
    for (size_t i = 0; i < v.size(); ++i)
        m[i] = std::hypot(x.data[2 * i], x.data[2 * i + 1]) * double(v.size());
    dsp_destroy(&x);
    return m;
}

struct response {
    std::map<double, double> gain_db;  // at input frequency (cycles per input sample)
    double spurious_db = -300;         // largest other component over the sweep
};

// A unit tone on output bin k of M = 4096 (input frequency k / (M step)),
// 4096 outputs after the first 4096, Blackman-Harris window: the tone's
// amplitude from its bin, the largest bin outside its main lobe (+-4 bins).
response measure(const contender &c, const std::vector<double> &freqs) {
    constexpr int M = 4096;
    response res;
    std::vector<double> win(M);
    double wsum = 0;
    for (int i = 0; i < M; ++i) {
        const double t = 2 * M_PI * i / M;
        win[size_t(i)] =
            0.35875 - 0.48829 * std::cos(t) + 0.14128 * std::cos(2 * t) - 0.01168 * std::cos(3 * t);
        wsum += win[size_t(i)];
    }
    for (double f : freqs) {
        const int k = int(std::lround(f * M * c.step));
        const double fin = k / (double(M) * c.step);
        std::vector<float> x(size_t(3 * M / c.step) + 4096);
        for (size_t i = 0; i < x.size(); ++i) x[i] = float(std::sin(2 * M_PI * fin * double(i)));
        auto r = c.make();
        feed(*r, x);
        if (r->out.size() < size_t(2 * M)) continue;
        std::vector<double> seg(M);
        for (int i = 0; i < M; ++i) seg[size_t(i)] = win[size_t(i)] * r->out[size_t(M + i)];
        const auto mag = spectrum(seg);
        res.gain_db[f] = 20 * std::log10(2 * mag[size_t(k)] / wsum);
        for (int b = 0; b <= M / 2; ++b)
            if (std::abs(b - k) > 4)
                res.spurious_db =
                    std::max(res.spurious_db, 20 * std::log10(2 * mag[size_t(b)] / wsum + 1e-30));
    }
    return res;
}

class collecting_reporter : public benchmark::ConsoleReporter {
 public:
    std::map<std::string, double> ns;  // median time per 1e6 samples
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const auto &r : runs)
            if (!r.error_occurred && r.run_type == Run::RT_Aggregate &&
                r.aggregate_name == "median")
                ns[r.run_name.function_name] =
                    r.GetAdjustedCPUTime() * (r.time_unit == benchmark::kMillisecond   ? 1e6
                                              : r.time_unit == benchmark::kMicrosecond ? 1e3
                                                                                       : 1.0);
        ConsoleReporter::ReportRuns(runs);
    }
};

std::string label(const contender &c) {
    char s[64];
    std::snprintf(s, sizeof s, "%s/%.1f", c.name.c_str(), double(c.step));
    return s;
}

}  // namespace

int main(int argc, char **argv) {
    const auto all = contenders();
    for (const auto &c : all) {
        const maker make = c.make;
        benchmark::RegisterBenchmark(("rsmp/" + label(c)).c_str(),
                                     [make](benchmark::State &s) { bench(s, make); })
            ->Unit(benchmark::kMillisecond)
            ->Repetitions(5)
            ->ReportAggregatesOnly(true);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    collecting_reporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);

    auto rate = [&](const contender &c) {
        auto it = rep.ns.find("rsmp/" + label(c));
        return it == rep.ns.end() ? NAN : kTotal / it->second * 1e3;
    };
    std::printf("\nThroughput on %d samples in blocks of %d: Msamples/s of input (median of 5)\n",
                kTotal, kBlock);
    std::printf("%-12s %6s %10s %14s %14s\n", "contender", "step", "Msamples/s", "vs src-medium",
                "vs soxr-mq");
    for (const auto &c : all) {
        double src = NAN, sox = NAN;
        for (const auto &p : all)
            if (p.step == c.step) {
                if (p.name == "src-medium") src = rate(p);
                if (p.name == "soxr-mq") sox = rate(p);
            }
        std::printf("%-12s %6.1f %10.1f %13.2fx %13.2fx\n", c.name.c_str(), double(c.step), rate(c),
                    rate(c) / src, rate(c) / sox);
    }

    // The response: every contender, and the other stored kernels at step 0.9.
    auto rows = all;
    for (int km : {0, 1, 2, 3})
        rows.push_back({"rsmp2-k" + std::to_string(km), 0.9f,
                        [km] { return std::make_unique<dsp_kernel>(km, 0.9f); }});
    const std::vector<double> freqs = {0.01, 0.05, 0.073, 0.1, 0.2, 0.25, 0.3, 0.4};
    std::printf(
        "\nSwept unit tone: gain in dB at the input frequency (cycles per input sample); "
        "largest spurious component over the sweep, dB below the tone\n");
    std::printf("%-12s %6s", "contender", "step");
    for (double f : freqs) std::printf(" %7.3f", f);
    std::printf(" %9s\n", "spurious");
    for (const auto &c : rows) {
        const auto r = measure(c, freqs);
        std::printf("%-12s %6.1f", c.name.c_str(), double(c.step));
        for (double f : freqs) {
            const auto it = r.gain_db.find(f);
            std::printf(" %7.2f", it == r.gain_db.end() ? NAN : it->second);
        }
        std::printf(" %9.1f\n", r.spurious_db);
    }
    benchmark::Shutdown();
    return 0;
}
