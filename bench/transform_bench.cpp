// Transform benchmarks beside FFTW and KissFFT, measured in the same run.
//
// Groups: the complex FFT and the real FFT against FFTW plans made with
// FFTW_MEASURE (in place; the plans, and with them FFTW's wisdom, are made
// before any timing starts), and the DFT of any length against FFTW_ESTIMATE
// plans, at the lengths instruments use and over a sweep from 2 to 5000 in
// steps of 37. After the timings a table per family gives each contender's
// time, the ratios of this library's time to FFTW's (and to KissFFT's), and
// the relative RMS error of the library and of FFTW against a long-double
// reference.
//
// "dsp" is the library as it runs on this processor; "dsp-avx2" and
// "dsp-base" limit it to the AVX2 kernels and to the vectors of the build's
// baseline instruction set (SSE2 on x86-64).
//
// The library's transforms are timed as an application calls them: in
// place, natural-order output, forward scaling included. FFTW and KissFFT
// compute the unscaled transform; KissFFT runs out of place. The same buffer
// is transformed over and over; denormals are flushed to zero so that every
// contender runs at full speed.
//
// The machine may be shared: by default every benchmark is repeated
// (--benchmark_repetitions, 5) in random interleaved order, and the tables
// use the fastest repetition; the column "cv" gives the largest coefficient
// of variation of the row's repetitions as a measure of the noise.
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <kiss_fft.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <functional>
#include <kissfft.hh>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

#include "dsp.h"
#include "transform/fft_kernel.hpp"

namespace {

constexpr int min_log2 = 6, max_log2 = 20;
const std::vector<int> dft_lengths = {100,  101,  201,  401,   801,  1000,
                                      1001, 1601, 4097, 10007, 65537};

std::vector<double> noise(size_t count, unsigned seed) {
    std::mt19937 g(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<double> v(count);
    for (auto &x : v) x = u(g);
    return v;
}

std::vector<int> powers_of_two() {
    std::vector<int> v;
    for (int b = min_log2; b <= max_log2; ++b) v.push_back(1 << b);
    return v;
}

std::vector<int> sweep_lengths() {
    std::vector<int> v;
    for (int n = 2; n <= 5000; n += 37) v.push_back(n);
    return v;
}

// ---------------------------------------------------------------------------
// Long-double reference and error measure.

using cld = std::complex<long double>;
constexpr long double two_pi = 6.283185307179586476925286766559005768L;

// Unscaled forward DFT (kernel e^(-2 pi i k m / n)) of a power of two,
// radix-2 in long double with every twiddle evaluated directly.
std::vector<cld> reference_fft(std::vector<cld> x, bool inverse = false) {
    const size_t n = x.size();
    for (size_t i = 1, j = 0; i < n; ++i) {
        size_t bit = n >> 1;
        for (; j & bit; bit >>= 1) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(x[i], x[j]);
    }
    std::vector<cld> w(n / 2);
    for (size_t k = 0; k < n / 2; ++k)
        w[k] = std::polar(1.0L, (inverse ? two_pi : -two_pi) * (long double)k / n);
    for (size_t len = 2; len <= n; len <<= 1)
        for (size_t i = 0; i < n; i += len)
            for (size_t k = 0; k < len / 2; ++k) {
                const cld u = x[i + k], v = x[i + k + len / 2] * w[k * (n / len)];
                x[i + k] = u + v, x[i + k + len / 2] = u - v;
            }
    return x;
}

// Unscaled forward DFT of any length: the radix-2 transform for powers of
// two, a direct sum for short lengths, otherwise the chirp-z identity over
// long-double FFTs (errors near 1e-18, far below those measured).
std::vector<cld> reference_dft(const std::vector<cld> &x) {
    const size_t n = x.size();
    if ((n & (n - 1)) == 0) return reference_fft(x);
    std::vector<cld> chirp(n);
    for (size_t k = 0; k < n; ++k)
        chirp[k] = std::polar(1.0L, -two_pi / 2 * (long double)((k * k) % (2 * n)) / n);
    if (n <= 512) {
        std::vector<cld> y(n);
        for (size_t k = 0; k < n; ++k)
            for (size_t m = 0; m < n; ++m)
                y[k] += x[m] * std::polar(1.0L, -two_pi * (long double)((k * m) % n) / n);
        return y;
    }
    size_t M = 1;
    while (M < 2 * n) M *= 2;
    std::vector<cld> a(M), b(M);
    for (size_t k = 0; k < n; ++k) a[k] = x[k] * chirp[k];
    for (size_t k = 0; k < n; ++k) b[k] = b[(M - k) % M] = std::conj(chirp[k]);
    a = reference_fft(a);
    b = reference_fft(b);
    for (size_t k = 0; k < M; ++k) a[k] *= b[k] / (long double)M;
    a = reference_fft(a, true);
    std::vector<cld> y(n);
    for (size_t k = 0; k < n; ++k) y[k] = a[k] * chirp[k];
    return y;
}

// Relative RMS error of interleaved scalars against reference points times
// `scale`.
template <class T>
double rel_rms(const T *got, const std::vector<cld> &ref, long double scale) {
    long double num = 0, den = 0;
    for (size_t i = 0; i < ref.size(); ++i) {
        const cld r = ref[i] * scale;
        num += std::norm(cld(got[2 * i], got[2 * i + 1]) - r);
        den += std::norm(r);
    }
    return double(std::sqrt(num / den));
}

// ---------------------------------------------------------------------------
// Contenders and results.

struct family_info {
    std::string name;
    std::vector<std::string> contenders;  // the library first, then "fftw", "kiss"
    std::vector<int> sizes;
    bool summary_only = false;  // print the worst ratios instead of every row
};
std::vector<family_info> families;
std::map<std::tuple<std::string, std::string, int>, double> accuracy;  // family, contender, n

template <class F>
void add(family_info f, F bench_of) {
    for (const auto &c : f.contenders) {
        auto fn = bench_of(c);
        if (!fn) continue;
        auto *b = benchmark::RegisterBenchmark((f.name + "/" + c).c_str(), fn);
        for (int n : f.sizes) b->Arg(n);
        b->ComputeStatistics("min", [](const std::vector<double> &v) {
            return *std::min_element(v.begin(), v.end());
        });
    }
    families.push_back(std::move(f));
}

// The library's API for one precision.
template <class T>
struct lib;
template <>
struct lib<float> {
    using signal = dspf_signal;
    static void init(signal *x) { dspf_init(x); }
    static void alloc(signal *x) { dspf_alloc(x); }
    static void destroy(signal *x) { dspf_destroy(x); }
    static int fft(signal *x) { return dspfi_fft(x, 0); }
    static int rfft(signal *x) { return dspfi_rfft(x); }
    static int dft(signal *x) { return dspfi_dft(x, 0); }
};
template <>
struct lib<double> {
    using signal = dsp_signal;
    static void init(signal *x) { dsp_init(x); }
    static void alloc(signal *x) { dsp_alloc(x); }
    static void destroy(signal *x) { dsp_destroy(x); }
    static int fft(signal *x) { return dspi_fft(x, 0); }
    static int rfft(signal *x) { return dspi_rfft(x); }
    static int dft(signal *x) { return dspi_dft(x, 0); }
};

// A complex record of n points of noise (real records use its storage).
template <class T>
struct lib_record {
    typename lib<T>::signal s;
    explicit lib_record(int n, unsigned seed = 1) {
        lib<T>::init(&s);
        s.n = n;
        s.cplx = 1;
        lib<T>::alloc(&s);
        const auto v = noise(2 * size_t(n), seed);
        for (size_t i = 0; i < v.size(); ++i) s.data[i] = T(v[i]);
    }
    ~lib_record() { lib<T>::destroy(&s); }
};

// FFTW's API for one precision.
template <class T>
struct fftw;
template <>
struct fftw<float> {
    using plan = fftwf_plan;
    using cpx = fftwf_complex;
    static cpx *alloc(size_t n) { return fftwf_alloc_complex(n); }
    static void free(cpx *p) { fftwf_free(p); }
    static plan c2c(int n, cpx *b, unsigned f) {
        return fftwf_plan_dft_1d(n, b, b, FFTW_FORWARD, f);
    }
    static plan r2c(int n, cpx *b, unsigned f) {
        return fftwf_plan_dft_r2c_1d(n, reinterpret_cast<float *>(b), b, f);
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
    static plan c2c(int n, cpx *b, unsigned f) {
        return fftw_plan_dft_1d(n, b, b, FFTW_FORWARD, f);
    }
    static plan r2c(int n, cpx *b, unsigned f) {
        return fftw_plan_dft_r2c_1d(n, reinterpret_cast<double *>(b), b, f);
    }
    static void execute(plan p) { fftw_execute(p); }
    static void destroy(plan p) { fftw_destroy_plan(p); }
};

enum class kind { c2c, r2c };

// An FFTW plan on an in-place buffer of n points of noise (n/2 + 1 complex
// points for r2c). The planner runs here, never inside a timed loop; with
// FFTW_MEASURE a repeated plan comes from the wisdom of the first.
template <class T>
struct fftw_run {
    typename fftw<T>::cpx *buf;
    typename fftw<T>::plan p;
    fftw_run(kind k, int n, unsigned flags, unsigned seed = 1) {
        buf = fftw<T>::alloc(size_t(n) + 1);
        p = k == kind::c2c ? fftw<T>::c2c(n, buf, flags) : fftw<T>::r2c(n, buf, flags);
        const auto v = noise(k == kind::c2c ? 2 * size_t(n) : size_t(n), seed);
        T *d = reinterpret_cast<T *>(buf);
        for (size_t i = 0; i < v.size(); ++i) d[i] = T(v[i]);
    }
    ~fftw_run() {
        fftw<T>::destroy(p);
        fftw<T>::free(buf);
    }
    T *data() { return reinterpret_cast<T *>(buf); }
};

// The library's transform, limited to the kernels of `level` (see
// dsp::fft_kernel::select_kernels).
template <class T, kind K, bool Any>
void lib_bench(benchmark::State &state, int level) {
    const int n = int(state.range(0));
    lib_record<T> r(n);
    dsp::fft_kernel::select_kernels(level);
    for (auto _ : state) {
        if constexpr (K == kind::c2c) {
            Any ? lib<T>::dft(&r.s) : lib<T>::fft(&r.s);
        } else {
            r.s.cplx = 0;
            r.s.n = n;
            lib<T>::rfft(&r.s);
        }
        benchmark::DoNotOptimize(r.s.data);
        r.s.delta = T(1);
    }
    dsp::fft_kernel::select_kernels(dsp::fft_kernel::max_level);
    state.SetItemsProcessed(state.iterations() * n);
}

template <class T, kind K>
void fftw_bench(benchmark::State &state, unsigned flags) {
    fftw_run<T> f(K, int(state.range(0)), flags);
    for (auto _ : state) {
        fftw<T>::execute(f.p);
        benchmark::DoNotOptimize(f.buf);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// KissFFT in single precision is the packaged C library; in double
// precision its C++ template header.
void kiss_float(benchmark::State &state) {
    const int n = int(state.range(0));
    kiss_fft_cfg cfg = kiss_fft_alloc(n, 0, nullptr, nullptr);
    std::vector<kiss_fft_cpx> in(static_cast<size_t>(n)), out(in.size());
    const auto v = noise(2 * size_t(n), 1);
    for (size_t i = 0; i < in.size(); ++i) in[i].r = float(v[2 * i]), in[i].i = float(v[2 * i + 1]);
    for (auto _ : state) {
        kiss_fft(cfg, in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
    }
    kiss_fft_free(cfg);
}

void kiss_double(benchmark::State &state) {
    const int n = int(state.range(0));
    kissfft<double> k(size_t(n), false);
    std::vector<std::complex<double>> in(static_cast<size_t>(n)), out(in.size());
    const auto v = noise(2 * size_t(n), 1);
    for (size_t i = 0; i < in.size(); ++i) in[i] = {v[2 * i], v[2 * i + 1]};
    for (auto _ : state) {
        k.transform(in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
    }
}

using bench_fn = std::function<void(benchmark::State &)>;

// The contenders of a family of transforms of kind K in precision T; Any:
// the DFT of any length (FFTW estimate plans), else the power-of-two FFTs
// (FFTW measured plans).
template <class T, kind K, bool Any>
bench_fn contender(const std::string &c) {
    if (c == "dsp")
        return [](benchmark::State &s) { lib_bench<T, K, Any>(s, dsp::fft_kernel::max_level); };
    if (c == "dsp-avx2") return [](benchmark::State &s) { lib_bench<T, K, Any>(s, 2); };
    if (c == "dsp-base") return [](benchmark::State &s) { lib_bench<T, K, Any>(s, 1); };
    if (c == "fftw")
        return [](benchmark::State &s) { fftw_bench<T, K>(s, Any ? FFTW_ESTIMATE : FFTW_MEASURE); };
    if (c == "kiss") return std::is_same_v<T, float> ? bench_fn(kiss_float) : bench_fn(kiss_double);
    return {};
}

// Accuracy of the library and of FFTW (with the plans that are timed) for
// one family, against the long-double reference of the inputs as rounded to
// the precision.
template <class T, kind K, bool Any>
void measure_accuracy(const family_info &f) {
    for (int n : f.sizes) {
        const auto v = noise(K == kind::c2c ? 2 * size_t(n) : size_t(n), unsigned(n) + 7);
        std::vector<cld> x(static_cast<size_t>(n));
        for (size_t i = 0; i < x.size(); ++i)
            x[i] = K == kind::c2c ? cld(T(v[2 * i]), T(v[2 * i + 1])) : cld(T(v[i]), 0);
        auto ref = reference_dft(x);
        if (K == kind::r2c) ref.resize(size_t(n / 2 + 1));
        lib_record<T> r(n);
        r.s.cplx = K == kind::c2c;
        for (size_t i = 0; i < v.size(); ++i) r.s.data[i] = T(v[i]);
        if (K == kind::r2c)
            lib<T>::rfft(&r.s);
        else
            Any ? lib<T>::dft(&r.s) : lib<T>::fft(&r.s);
        accuracy[{f.name, "dsp", n}] = rel_rms(r.s.data, ref, 1.0L / n);
        fftw_run<T> w(K, n, Any ? FFTW_ESTIMATE : FFTW_MEASURE);
        for (size_t i = 0; i < v.size(); ++i) w.data()[i] = T(v[i]);
        fftw<T>::execute(w.p);
        accuracy[{f.name, "fftw", n}] = rel_rms(w.data(), ref, 1.0L);
    }
}

template <class T, kind K, bool Any>
void add_family(const std::string &name, std::vector<std::string> contenders,
                std::vector<int> sizes, bool summary_only = false, bool with_accuracy = true) {
    family_info f{name, std::move(contenders), std::move(sizes), summary_only};
    if (with_accuracy) measure_accuracy<T, K, Any>(f);
    add(std::move(f), contender<T, K, Any>);
}

void register_all() {
    const std::vector<std::string> cfft = {"dsp", "dsp-avx2", "dsp-base", "fftw", "kiss"};
    add_family<float, kind::c2c, false>("cfft float", cfft, powers_of_two());
    add_family<double, kind::c2c, false>("cfft double", cfft, powers_of_two());
    add_family<float, kind::r2c, false>("rfft float", {"dsp", "dsp-avx2", "fftw"}, powers_of_two());
    add_family<double, kind::r2c, false>("rfft double", {"dsp", "dsp-avx2", "fftw"},
                                         powers_of_two());
    add_family<float, kind::c2c, true>("dft float", {"dsp", "fftw"}, dft_lengths);
    add_family<double, kind::c2c, true>("dft double", {"dsp", "fftw"}, dft_lengths);
    add_family<double, kind::c2c, true>("dft sweep double", {"dsp", "fftw"}, sweep_lengths(), true,
                                        false);
}

// ---------------------------------------------------------------------------
// Summary tables.

// Keeps the fastest repetition (CPU time per iteration) and the coefficient
// of variation of every run, keyed by its name ("family/contender/n").
class collecting_reporter : public benchmark::ConsoleReporter {
 public:
    std::map<std::string, double> ns, cv;
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const auto &r : runs) {
            if (r.error_occurred) continue;
            const std::string name = r.run_name.str();
            const double unit = r.time_unit == benchmark::kNanosecond    ? 1.0
                                : r.time_unit == benchmark::kMicrosecond ? 1e3
                                : r.time_unit == benchmark::kMillisecond ? 1e6
                                                                         : 1e9;
            if (r.run_type != Run::RT_Aggregate) continue;
            if (r.aggregate_name == "min") {
                ns[name] = r.GetAdjustedCPUTime() * unit;
            } else if (r.aggregate_name == "cv") {
                cv[name] = r.GetAdjustedCPUTime();  // a ratio, unscaled
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

void print_tables(const collecting_reporter &rep) {
    for (const auto &f : families) {
        const auto &names = f.contenders;
        auto time = [&](const std::string &c, int n) {
            auto it = rep.ns.find(f.name + "/" + c + "/" + std::to_string(n));
            return it == rep.ns.end() ? NAN : it->second;
        };
        auto noise_of = [&](int n) {
            double worst = 0;
            for (const auto &c : names) {
                auto it = rep.cv.find(f.name + "/" + c + "/" + std::to_string(n));
                if (it != rep.cv.end()) worst = std::max(worst, it->second);
            }
            return worst;
        };
        auto err = [&](const std::string &c, int n) {
            auto it = accuracy.find({f.name, c, n});
            return it == accuracy.end() ? NAN : it->second;
        };
        // Every library contender against FFTW, and the library against KissFFT.
        std::vector<std::pair<std::string, std::string>> ratios;
        for (const auto &c : names)
            if (c != "fftw" && c != "kiss") ratios.push_back({c, "fftw"});
        if (std::find(names.begin(), names.end(), "kiss") != names.end())
            ratios.push_back({names[0], "kiss"});
        if (f.summary_only) {
            std::vector<std::pair<double, int>> r;
            for (int n : f.sizes)
                if (!std::isnan(time("dsp", n))) r.push_back({time("dsp", n) / time("fftw", n), n});
            if (r.empty()) continue;
            std::sort(r.rbegin(), r.rend());
            std::printf("\n%s: %zu lengths; dsp / fftw ratio: worst %.2f (n = %d), median %.2f\n",
                        f.name.c_str(), r.size(), r[0].first, r[0].second, r[r.size() / 2].first);
            std::printf("  the ten worst:");
            for (size_t i = 0; i < std::min<size_t>(10, r.size()); ++i)
                std::printf(" %d: %.2f", r[i].second, r[i].first);
            std::printf("\n");
            continue;
        }
        std::printf("\n%s (ns per transform, fastest repetition; ratios: time / other time)\n",
                    f.name.c_str());
        std::printf("%9s", "n");
        for (const auto &c : names) std::printf(" %10s", c.c_str());
        for (const auto &[a, b] : ratios) std::printf(" %14s", (a + "/" + b).c_str());
        std::printf("  %9s %9s %6s\n", "err dsp", "err fftw", "cv");
        for (int n : f.sizes) {
            if (std::isnan(time(names[0], n))) continue;
            std::printf("%9d", n);
            for (const auto &c : names) std::printf(" %10.0f", time(c, n));
            for (const auto &[a, b] : ratios) std::printf(" %14.2f", time(a, n) / time(b, n));
            std::printf("  %9.2e %9.2e %5.1f%%\n", err("dsp", n), err("fftw", n),
                        100 * noise_of(n));
        }
    }
}

}  // namespace

int main(int argc, char **argv) {
    // Defaults for a shared machine; explicit flags override them.
    std::vector<char *> args(argv, argv + argc);
    std::string reps = "--benchmark_repetitions=5",
                order = "--benchmark_enable_random_interleaving=true",
                time = "--benchmark_min_time=0.05",
                aggr = "--benchmark_report_aggregates_only=true";
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
    register_all();  // measures the accuracy before denormals are flushed
#if defined(__SSE__)
    _mm_setcsr(_mm_getcsr() | 0x8040);  // flush denormals to zero (FTZ, DAZ)
#endif
    collecting_reporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    print_tables(rep);
    benchmark::Shutdown();
    fftw_cleanup();
    fftwf_cleanup();
    return 0;
}
