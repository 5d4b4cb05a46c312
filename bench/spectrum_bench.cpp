// The spectrum path: the math functions that turn a spectrum into levels,
// against a memcpy of the same bytes, and the whole path users run (window,
// real FFT, squared magnitude, decibels, peak search) against the same
// pipeline written with FFTW and plain loops.
//
// Math functions: records of 1e6 real points (complex for mag). Every
// iteration restores the input (untimed), times a memcpy of the record's
// bytes between two other buffers, then the operation, both in thread CPU
// time; "runtime loop" is the same operation as a plain loop calling the
// runtime function per sample, as the library did before its vector
// kernels. Pipeline: FFTW's r2c plan is made with FFTW_MEASURE before any
// timing; its loops are what a user would write (window product, |X|^2 /
// n^2, 10 log10, arg max with a parabola).
//
// The machine may be shared: every benchmark is repeated (5 times by
// default) in random interleaved order, the tables use the fastest
// repetition and "cv" is the largest coefficient of variation of a row.
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "dsp.h"

namespace {

constexpr int kPoints = 1000000;

double thread_seconds() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

template <class T>
struct api;
template <>
struct api<float> {
    using signal = dspf_signal;
    static void init(signal *x) { dspf_init(x); }
    static void alloc(signal *x) { dspf_alloc(x); }
    static void destroy(signal *x) { dspf_destroy(x); }
};
template <>
struct api<double> {
    using signal = dsp_signal;
    static void init(signal *x) { dsp_init(x); }
    static void alloc(signal *x) { dsp_alloc(x); }
    static void destroy(signal *x) { dsp_destroy(x); }
};

// ---------------------------------------------------------------------------
// Math functions against memcpy.

struct math_case {
    std::string name;  // "dspfi_db" ...
    bool single, cplx;
    double lo, hi;  // sample values: 10^u, u uniform in [lo, hi] (exp: u itself)
    bool exponent;  // samples are u, not 10^u
    std::function<void(void *)> op, loop;  // the export, the runtime loop
};
std::vector<math_case> math_cases;

// Adds the fastest repetition to the statistics of a benchmark.
benchmark::internal::Benchmark *with_min(benchmark::internal::Benchmark *b) {
    return b->ComputeStatistics(
        "min", [](const std::vector<double> &v) { return *std::min_element(v.begin(), v.end()); });
}
std::map<std::string, double> memcpy_ns;  // per benchmark run name

template <class T>
void math_run(benchmark::State &state, const math_case &c, bool runtime_loop) {
    typename api<T>::signal x;
    api<T>::init(&x);
    x.n = kPoints;
    x.cplx = c.cplx;
    api<T>::alloc(&x);
    const size_t count = size_t(c.cplx ? 2 : 1) * kPoints, bytes = count * sizeof(T);
    std::vector<T> pristine(count);
    std::mt19937 g(1);
    std::uniform_real_distribution<double> u(c.lo, c.hi);
    for (auto &v : pristine) v = T(c.exponent ? u(g) : std::pow(10.0, u(g)));
    std::vector<char> src(bytes, 1), dst(bytes);
    double op_s = 0, copy_s = 0;
    for (auto _ : state) {
        std::memcpy(x.data, pristine.data(), bytes);
        x.cplx = c.cplx;
        const double t0 = thread_seconds();
        std::memcpy(dst.data(), src.data(), bytes);
        benchmark::ClobberMemory();
        const double t1 = thread_seconds();
        (runtime_loop ? c.loop : c.op)(&x);
        benchmark::ClobberMemory();
        const double t2 = thread_seconds();
        state.SetIterationTime(t2 - t1);
        copy_s += t1 - t0;
        op_s += t2 - t1;
    }
    benchmark::DoNotOptimize(dst.data());
    state.counters["memcpy_ms"] = copy_s / double(state.iterations()) * 1e3;
    state.counters["ratio_to_memcpy"] = op_s / copy_s;
    api<T>::destroy(&x);
}

template <class T, class F>
std::function<void(void *)> loop_over(F f) {
    return [f](void *p) {
        auto *x = static_cast<typename api<T>::signal *>(p);
        T *d = x->data;
        for (int i = 0; i < x->n; ++i) d[i] = f(d[i]);
    };
}

void add_math_cases() {
    const float Ff = 1.17549435e-38f;
    const double Fd = 2.2250738585072014e-308;
    const float dbFf = 10 * float(std::log10(double(Ff)));
    const double dbFd = 10 * std::log10(Fd);
    // The single family's real decibel walk takes two scalars per positive
    // sample (its decibels go into the next one): n/2 logarithms.
    math_cases = {
        {"dspfi_db", true, false, -12, 3, false,
         [](void *x) { dspfi_db(static_cast<dspf_signal *>(x), 10.0f); },
         [dbFf, Ff](void *p) {
             auto *x = static_cast<dspf_signal *>(p);
             float *d = x->data;
             for (int64_t q = 0, step = 0; step < x->n && q < x->n; ++step) {
                 const float v = d[q];
                 d[q++] = dbFf;
                 if (v >= Ff) {
                     if (q < x->n) d[q] = 10.0f * float(std::log10(double(v)));
                     ++q;
                 }
             }
         }},
        {"dspi_db", false, false, -12, 3, false,
         [](void *x) { dspi_db(static_cast<dsp_signal *>(x), 10.0); },
         loop_over<double>([dbFd, Fd](double v) { return v < Fd ? dbFd : 10.0 * std::log10(v); })},
        {"dspfi_log10", true, false, -12, 3, false,
         [](void *x) { dspfi_log10(static_cast<dspf_signal *>(x)); },
         loop_over<float>([Ff](float v) {
             return v < Ff ? float(std::log10(double(Ff))) : float(std::log10(double(v)));
         })},
        {"dspi_log10", false, false, -12, 3, false,
         [](void *x) { dspi_log10(static_cast<dsp_signal *>(x)); },
         loop_over<double>([Fd](double v) { return v < Fd ? std::log10(Fd) : std::log10(v); })},
        {"dspfi_log", true, false, -12, 3, false,
         [](void *x) { dspfi_log(static_cast<dspf_signal *>(x)); }, loop_over<float>([Ff](float v) {
             return v < Ff ? float(std::log(double(Ff))) : float(std::log(double(v)));
         })},
        {"dspfi_exp", true, false, -30, 30, true,
         [](void *x) { dspfi_exp(static_cast<dspf_signal *>(x)); }, loop_over<float>([](float v) {
             return v > 34.538776f ? 999999986991104.0f : float(std::exp(double(v)));
         })},
        {"dspi_exp", false, false, -200, 200, true,
         [](void *x) { dspi_exp(static_cast<dsp_signal *>(x)); },
         loop_over<double>([](double v) { return v > 230.25850929940458 ? 1e100 : std::exp(v); })},
        {"dspfi_exp10", true, false, -12, 12, true,
         [](void *x) { dspfi_exp10(static_cast<dspf_signal *>(x)); }, loop_over<float>([](float v) {
             return v > 15.0f ? 999999986991104.0f : float(std::exp(double(v * 2.3025851f)));
         })},
        {"dspfi_mag", true, true, -6, 6, false,
         [](void *x) { dspfi_mag(static_cast<dspf_signal *>(x)); },
         [](void *p) {
             auto *x = static_cast<dspf_signal *>(p);
             x->cplx = 0;
             float *d = x->data;
             for (int i = 0; i < x->n; ++i)
                 d[i] = float(std::hypot(double(d[2 * i]), double(d[2 * i + 1])));
         }},
        {"dspi_mag", false, true, -6, 6, false,
         [](void *x) { dspi_mag(static_cast<dsp_signal *>(x)); },
         [](void *p) {
             auto *x = static_cast<dsp_signal *>(p);
             x->cplx = 0;
             double *d = x->data;
             for (int i = 0; i < x->n; ++i) d[i] = std::hypot(d[2 * i], d[2 * i + 1]);
         }},
    };
    for (const auto &c : math_cases)
        for (int loop = 0; loop < 2; ++loop) {
            auto fn = [&c, loop](benchmark::State &s) {
                c.single ? math_run<float>(s, c, loop) : math_run<double>(s, c, loop);
            };
            with_min(benchmark::RegisterBenchmark(
                         ("math/" + c.name + (loop ? "/runtime loop" : "/dsp")).c_str(), fn))
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
        }
}

// ---------------------------------------------------------------------------
// The spectrum pipeline.

template <class T>
struct fftw;
template <>
struct fftw<float> {
    using plan = fftwf_plan;
    using cpx = fftwf_complex;
    static cpx *alloc(size_t n) { return fftwf_alloc_complex(n); }
    static void free(cpx *p) { fftwf_free(p); }
    static plan r2c(int n, float *in, cpx *out) {
        return fftwf_plan_dft_r2c_1d(n, in, out, FFTW_MEASURE);
    }
    static void execute(plan p) { fftwf_execute(p); }
    static void destroy(plan p) { fftwf_destroy_plan(p); }
};
template <>
struct fftw<double> {
    using plan = fftw_plan;
    using cpx = fftw_complex;
    static cpx *alloc(size_t n) { return fftw_alloc_complex(n); }
    static void free(cpx *p) { fftw_free(p); }
    static plan r2c(int n, double *in, cpx *out) {
        return fftw_plan_dft_r2c_1d(n, in, out, FFTW_MEASURE);
    }
    static void execute(plan p) { fftw_execute(p); }
    static void destroy(plan p) { fftw_destroy_plan(p); }
};

int (*const window_f)(dspf_signal *, dsp_window, int) = dspfi_window;
int (*const window_d)(dsp_signal *, dsp_window, int) = dspi_window;

template <class T>
std::vector<T> tone(int n) {
    std::mt19937 g(2);
    std::normal_distribution<double> noise(0, 1e-3);
    std::vector<T> v(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) v[size_t(i)] = T(std::cos(0.1234 * i) + noise(g));
    return v;
}

// Window (Hann, not rotated), real FFT, squared magnitude, decibels, peak
// with a parabola: the library's exports on a record.
template <class T>
void pipeline_dsp(benchmark::State &state) {
    const int n = int(state.range(0));
    const auto v = tone<T>(n);
    typename api<T>::signal x, peak;
    api<T>::init(&x);
    api<T>::init(&peak);
    x.n = n / 2 + 1;
    x.cplx = 1;
    api<T>::alloc(&x);  // room for the half spectrum
    for (auto _ : state) {
        std::memcpy(x.data, v.data(), v.size() * sizeof(T));
        x.n = n;
        x.cplx = 0;
        x.delta = T(1);
        if constexpr (std::is_same_v<T, float>) {
            window_f(&x, DSP_WINDOW_HANN, 32);
            dspfi_rfft(&x);
            dspfi_magsq(&x);
            dspfi_db(&x, 10.0f);
            dspfs_peak(&x, &peak, 0x100, 0);
        } else {
            window_d(&x, DSP_WINDOW_HANN, 32);
            dspi_rfft(&x);
            dspi_magsq(&x);
            dspi_db(&x, 10.0);
            dsps_peak(&x, &peak, 0x100, 0);
        }
        benchmark::DoNotOptimize(peak.data);
    }
    api<T>::destroy(&x);
    api<T>::destroy(&peak);
}

template <class T>
void pipeline_fftw(benchmark::State &state) {
    const int n = int(state.range(0));
    const auto v = tone<T>(n);
    std::vector<T> w(static_cast<size_t>(n)), level(size_t(n / 2 + 1));
    for (int i = 0; i < n; ++i) w[size_t(i)] = T(0.5 - 0.5 * std::cos(6.283185307179586 * i / n));
    T *in = reinterpret_cast<T *>(fftw<T>::alloc(size_t(n) / 2 + 1));
    auto *out = fftw<T>::alloc(size_t(n) / 2 + 1);
    auto plan = fftw<T>::r2c(n, in, out);  // FFTW_MEASURE, before timing
    const T scale = T(1) / (T(n) * T(n));
    T peak[2];
    for (auto _ : state) {
        for (int i = 0; i < n; ++i) in[i] = v[size_t(i)] * w[size_t(i)];
        fftw<T>::execute(plan);
        const int h = n / 2 + 1;
        for (int k = 0; k < h; ++k) {
            const T re = reinterpret_cast<T *>(out)[2 * k],
                    im = reinterpret_cast<T *>(out)[2 * k + 1];
            level[size_t(k)] = T(10) * std::log10((re * re + im * im) * scale);
        }
        int best = 0;
        for (int k = 1; k < h; ++k)
            if (level[size_t(k)] > level[size_t(best)]) best = k;
        peak[0] = level[size_t(best)], peak[1] = T(best);
        if (best > 0 && best < h - 1) {
            const T a = level[size_t(best - 1)], b = level[size_t(best)],
                    c = level[size_t(best + 1)];
            const T d = (c - a) / 2, e = (a + c - 2 * b) / 2;
            peak[0] = b + d * d / (-4 * e);
            peak[1] = T(best) + d / (-2 * e);
        }
        benchmark::DoNotOptimize(peak);
    }
    fftw<T>::destroy(plan);
    fftw<T>::free(reinterpret_cast<typename fftw<T>::cpx *>(in));
    fftw<T>::free(out);
}

void add_pipeline() {
    for (int n : {1 << 12, 1 << 16}) {
        with_min(benchmark::RegisterBenchmark("pipeline float/dsp", pipeline_dsp<float>))->Arg(n);
        with_min(benchmark::RegisterBenchmark("pipeline float/fftw", pipeline_fftw<float>))->Arg(n);
        with_min(benchmark::RegisterBenchmark("pipeline double/dsp", pipeline_dsp<double>))->Arg(n);
        with_min(benchmark::RegisterBenchmark("pipeline double/fftw", pipeline_fftw<double>))
            ->Arg(n);
    }
}

// ---------------------------------------------------------------------------
// Tables.

class collecting_reporter : public benchmark::ConsoleReporter {
 public:
    std::map<std::string, double> ns, cv, ratio, copy_ms;
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const auto &r : runs) {
            if (r.error_occurred || r.run_type != Run::RT_Aggregate) continue;
            std::string name = r.run_name.str();
            const std::string manual = "/manual_time";
            if (name.size() > manual.size() &&
                name.compare(name.size() - manual.size(), manual.size(), manual) == 0)
                name.resize(name.size() - manual.size());
            const double unit = r.time_unit == benchmark::kNanosecond    ? 1.0
                                : r.time_unit == benchmark::kMicrosecond ? 1e3
                                : r.time_unit == benchmark::kMillisecond ? 1e6
                                                                         : 1e9;
            if (r.aggregate_name == "min") {
                // The math functions report their own (manual) time, the
                // pipelines the CPU time of their iterations.
                const bool manual = r.counters.count("ratio_to_memcpy") != 0;
                ns[name] = (manual ? r.GetAdjustedRealTime() : r.GetAdjustedCPUTime()) * unit;
                if (manual) {
                    ratio[name] = r.counters.at("ratio_to_memcpy");
                    copy_ms[name] = r.counters.at("memcpy_ms");
                }
            } else if (r.aggregate_name == "cv") {
                cv[name] = r.cpu_accumulated_time;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

void print_tables(const collecting_reporter &rep) {
    std::printf(
        "\nmath functions on %d points (ms per call, fastest repetition; ratio: time / "
        "memcpy of the same bytes)\n",
        kPoints);
    std::printf("%-12s %9s %9s %8s %13s %8s %6s\n", "function", "dsp", "memcpy", "ratio",
                "runtime loop", "ratio", "cv");
    for (const auto &c : math_cases) {
        const std::string a = "math/" + c.name + "/dsp", b = "math/" + c.name + "/runtime loop";
        if (!rep.ns.count(a)) continue;
        std::printf("%-12s %9.3f %9.3f %8.2f %13.3f %8.2f %5.1f%%\n", c.name.c_str(),
                    rep.ns.at(a) / 1e6, rep.copy_ms.at(a), rep.ratio.at(a),
                    rep.ns.count(b) ? rep.ns.at(b) / 1e6 : NAN,
                    rep.ratio.count(b) ? rep.ratio.at(b) : NAN,
                    100 * std::max(rep.cv.count(a) ? rep.cv.at(a) : 0.0,
                                   rep.cv.count(b) ? rep.cv.at(b) : 0.0));
    }
    std::printf(
        "\nspectrum pipeline: window, real FFT, |X|^2, dB, peak (us per record; ratio: dsp "
        "/ fftw + loops)\n");
    std::printf("%-8s %8s %10s %10s %8s %6s\n", "family", "n", "dsp", "fftw", "ratio", "cv");
    for (const char *fam : {"float", "double"})
        for (int n : {1 << 12, 1 << 16}) {
            const std::string a = std::string("pipeline ") + fam + "/dsp/" + std::to_string(n);
            const std::string b = std::string("pipeline ") + fam + "/fftw/" + std::to_string(n);
            if (!rep.ns.count(a) || !rep.ns.count(b)) continue;
            std::printf("%-8s %8d %10.2f %10.2f %8.2f %5.1f%%\n", fam, n, rep.ns.at(a) / 1e3,
                        rep.ns.at(b) / 1e3, rep.ns.at(a) / rep.ns.at(b),
                        100 * std::max(rep.cv.count(a) ? rep.cv.at(a) : 0.0,
                                       rep.cv.count(b) ? rep.cv.at(b) : 0.0));
        }
}

}  // namespace

int main(int argc, char **argv) {
    std::vector<char *> args(argv, argv + argc);
    std::string reps = "--benchmark_repetitions=5",
                order = "--benchmark_enable_random_interleaving=true",
                time = "--benchmark_min_time=0.1", aggr = "--benchmark_report_aggregates_only=true";
    for (std::string *s : {&reps, &order, &time, &aggr}) {
        const std::string flag = s->substr(0, s->find('='));
        bool given = false;
        for (int i = 1; i < argc; ++i)
            given |= std::strncmp(argv[i], flag.c_str(), flag.size()) == 0;
        if (!given) args.push_back(s->data());
    }
    int count = int(args.size());
    benchmark::Initialize(&count, args.data());
    if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 1;
    add_math_cases();
    add_pipeline();
    collecting_reporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    print_tables(rep);
    benchmark::Shutdown();
    fftw_cleanup();
    fftwf_cleanup();
    return 0;
}
