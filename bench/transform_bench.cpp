// Transform benchmarks beside FFTW (in-place, FFTW_ESTIMATE plans) and
// KissFFT, measured in the same run. After the timings a table gives, per
// family and size, each contender's time, the ratio of this library's time
// to FFTW's and to KissFFT's, and the relative RMS error of this library and
// of FFTW against a long-double reference. "dsp" is the library as it runs
// on this processor; "dsp-base" is limited to the vectors of the build's
// baseline instruction set (SSE2 on x86-64), as on processors without AVX2.
//
// The library's transforms are timed as called by an application: in place,
// natural-order output, forward scaling included. FFTW and KissFFT compute
// the unscaled transform; KissFFT runs out of place (its fast mode). The
// same buffer is transformed over and over, so its values shrink (scaled)
// or grow (unscaled); denormals are flushed to zero where the processor
// allows it so that every contender runs at full speed.
//
// A new family registers its contenders with add_family() and, if it wants
// accuracy figures, stores them in accuracy[{family, contender, n}].
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <kiss_fft.h>

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

std::vector<double> noise(size_t count, unsigned seed) {
    std::mt19937 g(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::vector<double> v(count);
    for (auto &x : v) x = u(g);
    return v;
}

// ---------------------------------------------------------------------------
// Long-double reference and error measure.

using cld = std::complex<long double>;

// Unscaled forward DFT (kernel e^(-2 pi i k m / n)), radix-2 in long double
// with every twiddle evaluated directly.
std::vector<cld> reference_dft(std::vector<cld> x) {
    const size_t n = x.size();
    constexpr long double two_pi = 6.283185307179586476925286766559005768L;
    for (size_t i = 1, j = 0; i < n; ++i) {
        size_t bit = n >> 1;
        for (; j & bit; bit >>= 1) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(x[i], x[j]);
    }
    std::vector<cld> w(n / 2);
    for (size_t k = 0; k < n / 2; ++k) w[k] = std::polar(1.0L, -two_pi * (long double)k / n);
    for (size_t len = 2; len <= n; len <<= 1)
        for (size_t i = 0; i < n; i += len)
            for (size_t k = 0; k < len / 2; ++k) {
                const cld u = x[i + k], v = x[i + k + len / 2] * w[k * (n / len)];
                x[i + k] = u + v, x[i + k + len / 2] = u - v;
            }
    return x;
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
// Results collected for the summary table.

std::map<std::tuple<std::string, std::string, int>, double> accuracy;  // family, contender, n
std::map<std::string, std::vector<std::string>> contenders;            // family -> names
std::vector<std::string> families;

void add_family(const std::string &family, std::vector<std::string> names) {
    families.push_back(family);
    contenders[family] = std::move(names);
}

// ---------------------------------------------------------------------------
// Complex forward FFT, in place.

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
};
template <>
struct lib<double> {
    using signal = dsp_signal;
    static void init(signal *x) { dsp_init(x); }
    static void alloc(signal *x) { dsp_alloc(x); }
    static void destroy(signal *x) { dsp_destroy(x); }
    static int fft(signal *x) { return dspi_fft(x, 0); }
    static int rfft(signal *x) { return dspi_rfft(x); }
};

template <class T>
struct lib_record {
    typename lib<T>::signal s;
    explicit lib_record(int n) {
        lib<T>::init(&s);
        s.n = n;
        s.cplx = 1;
        lib<T>::alloc(&s);
        const auto v = noise(2 * size_t(n), 1);
        for (size_t i = 0; i < v.size(); ++i) s.data[i] = T(v[i]);
    }
    ~lib_record() { lib<T>::destroy(&s); }
};

// level: the widest kernels the library may use (2: all the processor has,
// 1: the vectors of the build's baseline instruction set, as on processors
// without AVX2).
template <class T, int level = 2>
void cfft_lib(benchmark::State &state) {
    const int n = int(state.range(0));
    lib_record<T> r(n);
    dsp::fft_kernel::select_kernels(level);
    for (auto _ : state) {
        lib<T>::fft(&r.s);
        benchmark::DoNotOptimize(r.s.data);
        r.s.delta = T(1);
    }
    dsp::fft_kernel::select_kernels(2);
    state.SetItemsProcessed(state.iterations() * n);
}

void cfft_fftw_float(benchmark::State &state) {
    const int n = int(state.range(0));
    auto *buf = fftwf_alloc_complex(size_t(n));
    fftwf_plan p = fftwf_plan_dft_1d(n, buf, buf, FFTW_FORWARD, FFTW_ESTIMATE);
    const auto v = noise(2 * size_t(n), 1);
    for (size_t i = 0; i < v.size(); ++i) reinterpret_cast<float *>(buf)[i] = float(v[i]);
    for (auto _ : state) {
        fftwf_execute(p);
        benchmark::DoNotOptimize(buf);
    }
    state.SetItemsProcessed(state.iterations() * n);
    fftwf_destroy_plan(p);
    fftwf_free(buf);
}

void cfft_fftw_double(benchmark::State &state) {
    const int n = int(state.range(0));
    auto *buf = fftw_alloc_complex(size_t(n));
    fftw_plan p = fftw_plan_dft_1d(n, buf, buf, FFTW_FORWARD, FFTW_ESTIMATE);
    const auto v = noise(2 * size_t(n), 1);
    for (size_t i = 0; i < v.size(); ++i) reinterpret_cast<double *>(buf)[i] = v[i];
    for (auto _ : state) {
        fftw_execute(p);
        benchmark::DoNotOptimize(buf);
    }
    state.SetItemsProcessed(state.iterations() * n);
    fftw_destroy_plan(p);
    fftw_free(buf);
}

// KissFFT in single precision is the packaged C library; in double
// precision its C++ template header.
void cfft_kiss_float(benchmark::State &state) {
    const int n = int(state.range(0));
    kiss_fft_cfg cfg = kiss_fft_alloc(n, 0, nullptr, nullptr);
    const size_t count = static_cast<size_t>(n);
    std::vector<kiss_fft_cpx> in(count), out(count);
    const auto v = noise(2 * size_t(n), 1);
    for (size_t i = 0; i < in.size(); ++i) in[i].r = float(v[2 * i]), in[i].i = float(v[2 * i + 1]);
    for (auto _ : state) {
        kiss_fft(cfg, in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * n);
    kiss_fft_free(cfg);
}

void cfft_kiss_double(benchmark::State &state) {
    const int n = int(state.range(0));
    kissfft<double> k(size_t(n), false);
    const size_t count = static_cast<size_t>(n);
    std::vector<std::complex<double>> in(count), out(count);
    const auto v = noise(2 * size_t(n), 1);
    for (size_t i = 0; i < in.size(); ++i) in[i] = {v[2 * i], v[2 * i + 1]};
    for (auto _ : state) {
        k.transform(in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// Accuracy of the library's and FFTW's complex forward FFT at every size.
void cfft_accuracy() {
    for (int b = min_log2; b <= max_log2; ++b) {
        const int n = 1 << b;
        const auto v = noise(2 * size_t(n), unsigned(b));
        std::vector<cld> x(static_cast<size_t>(n));
        for (size_t i = 0; i < x.size(); ++i) x[i] = cld(v[2 * i], v[2 * i + 1]);
        {  // single precision: the reference sees the rounded inputs
            std::vector<cld> xf(x.size());
            for (size_t i = 0; i < x.size(); ++i)
                xf[i] = cld(float(v[2 * i]), float(v[2 * i + 1]));
            const auto ref = reference_dft(xf);
            lib_record<float> r(n);
            for (size_t i = 0; i < v.size(); ++i) r.s.data[i] = float(v[i]);
            lib<float>::fft(&r.s);
            accuracy[{"cfft float", "dsp", n}] = rel_rms(r.s.data, ref, 1.0L / n);
            auto *buf = fftwf_alloc_complex(size_t(n));
            fftwf_plan p = fftwf_plan_dft_1d(n, buf, buf, FFTW_FORWARD, FFTW_ESTIMATE);
            for (size_t i = 0; i < v.size(); ++i) reinterpret_cast<float *>(buf)[i] = float(v[i]);
            fftwf_execute(p);
            accuracy[{"cfft float", "fftw", n}] =
                rel_rms(reinterpret_cast<float *>(buf), ref, 1.0L);
            fftwf_destroy_plan(p);
            fftwf_free(buf);
        }
        {
            const auto ref = reference_dft(x);
            lib_record<double> r(n);
            for (size_t i = 0; i < v.size(); ++i) r.s.data[i] = v[i];
            lib<double>::fft(&r.s);
            accuracy[{"cfft double", "dsp", n}] = rel_rms(r.s.data, ref, 1.0L / n);
            auto *buf = fftw_alloc_complex(size_t(n));
            fftw_plan p = fftw_plan_dft_1d(n, buf, buf, FFTW_FORWARD, FFTW_ESTIMATE);
            for (size_t i = 0; i < v.size(); ++i) reinterpret_cast<double *>(buf)[i] = v[i];
            fftw_execute(p);
            accuracy[{"cfft double", "fftw", n}] =
                rel_rms(reinterpret_cast<double *>(buf), ref, 1.0L);
            fftw_destroy_plan(p);
            fftw_free(buf);
        }
    }
}

void register_cfft() {
    add_family("cfft float", {"dsp", "dsp-base", "fftw", "kiss"});
    add_family("cfft double", {"dsp", "dsp-base", "fftw", "kiss"});
    const std::pair<const char *, void (*)(benchmark::State &)> runs[] = {
        {"cfft float/dsp", cfft_lib<float>},
        {"cfft float/dsp-base", cfft_lib<float, 1>},
        {"cfft float/fftw", cfft_fftw_float},
        {"cfft float/kiss", cfft_kiss_float},
        {"cfft double/dsp", cfft_lib<double>},
        {"cfft double/dsp-base", cfft_lib<double, 1>},
        {"cfft double/fftw", cfft_fftw_double},
        {"cfft double/kiss", cfft_kiss_double},
    };
    for (const auto &[name, fn] : runs)
        benchmark::RegisterBenchmark(name, fn)->RangeMultiplier(2)->Range(1 << min_log2,
                                                                          1 << max_log2);
    cfft_accuracy();
}

// ---------------------------------------------------------------------------
// Real forward FFT, in place: n real samples to the half spectrum of n/2 + 1
// points. The library's record is turned back into n real samples before
// every call (the spectrum's scalars serve as the next input); FFTW runs an
// in-place r2c plan on a padded buffer.

template <class T>
void rfft_lib(benchmark::State &state) {
    const int n = int(state.range(0));
    lib_record<T> r(n);  // complex storage: room for the n/2 + 1 points
    r.s.cplx = 0;
    for (auto _ : state) {
        lib<T>::rfft(&r.s);
        benchmark::DoNotOptimize(r.s.data);
        r.s.cplx = 0;
        r.s.n = n;
        r.s.delta = T(1);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void rfft_fftw_float(benchmark::State &state) {
    const int n = int(state.range(0));
    auto *buf = fftwf_alloc_complex(size_t(n / 2 + 1));
    auto *in = reinterpret_cast<float *>(buf);
    fftwf_plan p = fftwf_plan_dft_r2c_1d(n, in, buf, FFTW_ESTIMATE);
    const auto v = noise(size_t(n), 1);
    for (size_t i = 0; i < v.size(); ++i) in[i] = float(v[i]);
    for (auto _ : state) {
        fftwf_execute(p);
        benchmark::DoNotOptimize(buf);
    }
    state.SetItemsProcessed(state.iterations() * n);
    fftwf_destroy_plan(p);
    fftwf_free(buf);
}

void rfft_fftw_double(benchmark::State &state) {
    const int n = int(state.range(0));
    auto *buf = fftw_alloc_complex(size_t(n / 2 + 1));
    auto *in = reinterpret_cast<double *>(buf);
    fftw_plan p = fftw_plan_dft_r2c_1d(n, in, buf, FFTW_ESTIMATE);
    const auto v = noise(size_t(n), 1);
    for (size_t i = 0; i < v.size(); ++i) in[i] = v[i];
    for (auto _ : state) {
        fftw_execute(p);
        benchmark::DoNotOptimize(buf);
    }
    state.SetItemsProcessed(state.iterations() * n);
    fftw_destroy_plan(p);
    fftw_free(buf);
}

// Accuracy of the half spectrum, library and FFTW, against the long-double
// reference of the real samples (as rounded to the precision under test).
template <class T, class Plan, class Make, class Exec, class Destroy>
void rfft_accuracy_one(const std::string &family, int n, const std::vector<double> &v,
                       Make make, Exec exec, Destroy destroy) {
    std::vector<cld> x(v.size());
    for (size_t i = 0; i < v.size(); ++i) x[i] = cld(T(v[i]), 0);
    auto ref = reference_dft(x);
    ref.resize(size_t(n / 2 + 1));
    lib_record<T> r(n);
    r.s.cplx = 0;
    for (size_t i = 0; i < v.size(); ++i) r.s.data[i] = T(v[i]);
    lib<T>::rfft(&r.s);
    accuracy[{family, "dsp", n}] = rel_rms(r.s.data, ref, 1.0L / n);
    std::vector<T> buf(size_t(n + 2));
    for (size_t i = 0; i < v.size(); ++i) buf[i] = T(v[i]);
    Plan p = make(n, buf.data());
    exec(p);
    accuracy[{family, "fftw", n}] = rel_rms(buf.data(), ref, 1.0L);
    destroy(p);
}

void rfft_accuracy() {
    for (int b = min_log2; b <= max_log2; ++b) {
        const int n = 1 << b;
        const auto v = noise(size_t(n), unsigned(100 + b));
        rfft_accuracy_one<float, fftwf_plan>(
            "rfft float", n, v,
            [](int m, float *d) {
                return fftwf_plan_dft_r2c_1d(m, d, reinterpret_cast<fftwf_complex *>(d),
                                             FFTW_ESTIMATE);
            },
            fftwf_execute, fftwf_destroy_plan);
        rfft_accuracy_one<double, fftw_plan>(
            "rfft double", n, v,
            [](int m, double *d) {
                return fftw_plan_dft_r2c_1d(m, d, reinterpret_cast<fftw_complex *>(d),
                                            FFTW_ESTIMATE);
            },
            fftw_execute, fftw_destroy_plan);
    }
}

void register_rfft() {
    add_family("rfft float", {"dsp", "fftw"});
    add_family("rfft double", {"dsp", "fftw"});
    const std::pair<const char *, void (*)(benchmark::State &)> runs[] = {
        {"rfft float/dsp", rfft_lib<float>},
        {"rfft float/fftw", rfft_fftw_float},
        {"rfft double/dsp", rfft_lib<double>},
        {"rfft double/fftw", rfft_fftw_double},
    };
    for (const auto &[name, fn] : runs)
        benchmark::RegisterBenchmark(name, fn)->RangeMultiplier(2)->Range(1 << min_log2,
                                                                          1 << max_log2);
    rfft_accuracy();
}

// ---------------------------------------------------------------------------
// Summary table.

// Keeps the CPU time per iteration of every run (the median when the runs
// are repeated), keyed by its name ("family/contender/n"). CPU time rather
// than wall time keeps the comparison fair on a busy machine.
class collecting_reporter : public benchmark::ConsoleReporter {
   public:
    std::map<std::string, double> ns;
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const auto &r : runs) {
            if (r.error_occurred) continue;
            const bool median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
            const std::string name = r.run_name.str();
            if (!median && (r.run_type != Run::RT_Iteration || ns.count(name))) continue;
            const double unit = r.time_unit == benchmark::kNanosecond    ? 1.0
                                : r.time_unit == benchmark::kMicrosecond ? 1e3
                                : r.time_unit == benchmark::kMillisecond ? 1e6
                                                                         : 1e9;
            ns[name] = r.GetAdjustedCPUTime() * unit;
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

void print_table(const collecting_reporter &rep) {
    for (const auto &family : families) {
        const auto &names = contenders[family];
        std::printf("\n%s (times in ns; ratios: dsp time / other time; errors: relative RMS)\n",
                    family.c_str());
        std::printf("%9s", "n");
        for (const auto &c : names) std::printf(" %12s", c.c_str());
        // Every other contender against FFTW, and this library against KissFFT.
        std::vector<std::pair<std::string, std::string>> ratios;
        for (const auto &c : names)
            if (c != "fftw" && c != "kiss") ratios.push_back({c, "fftw"});
        for (const auto &c : names)
            if (c == "kiss") ratios.push_back({names[0], c});
        for (const auto &[a, b] : ratios) std::printf(" %14s", (a + "/" + b).c_str());
        std::printf("  %10s %10s\n", "err dsp", "err fftw");
        for (int b = min_log2; b <= max_log2; ++b) {
            const int n = 1 << b;
            auto time = [&](const std::string &c) {
                auto it = rep.ns.find(family + "/" + c + "/" + std::to_string(n));
                return it == rep.ns.end() ? NAN : it->second;
            };
            auto err = [&](const std::string &c) {
                auto it = accuracy.find({family, c, n});
                return it == accuracy.end() ? NAN : it->second;
            };
            if (std::isnan(time(names[0]))) continue;
            std::printf("%9d", n);
            for (const auto &c : names) std::printf(" %12.0f", time(c));
            for (const auto &[a, b2] : ratios) std::printf(" %14.2f", time(a) / time(b2));
            std::printf("  %10.2e %10.2e\n", err("dsp"), err("fftw"));
        }
    }
}

}  // namespace

int main(int argc, char **argv) {
    register_cfft();  // measures the accuracy before denormals are flushed
    register_rfft();
#if defined(__SSE__)
    _mm_setcsr(_mm_getcsr() | 0x8040);  // flush denormals to zero (FTZ, DAZ)
#endif
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    collecting_reporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    print_table(rep);
    benchmark::Shutdown();
    fftw_cleanup();
    fftwf_cleanup();
    return 0;
}
