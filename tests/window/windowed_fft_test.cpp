// The windowed spectrum and its raw-array entry points.
#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>
#include <string>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

template <class T>
std::vector<T> tone(int n, int cplx, double f, double amp) {
    std::vector<T> v;
    for (int i = 0; i < n; ++i) {
        const double x = amp * std::cos(2 * M_PI * f * i / n + 0.3) + 0.1 * ((i * 7919) % 13 - 6);
        v.push_back(T(x));
        if (cplx) v.push_back(T(amp * std::sin(2 * M_PI * f * i / n + 0.3)));
    }
    return v;
}

// Python lines that take the next record from x: n real values, or n
// complex points as 2n interleaved scalars when c.
const char *const kNextRecord =
    "    s = x[at:at + 2 * n:2] + 1j * x[at + 1:at + 2 * n:2] if c else x[at:at + n]\n"
    "    at += n * (1 + c)\n";

}  // namespace

DSP_TYPED_SUITE(WindowedSpectrum);

TYPED_TEST(WindowedSpectrum, ToneLevelScratchInPlaceAndFailures) {
    using T = TypeParam;
    // A tone of amplitude 2 on bin 100 of 1024 points, unit-mean flat-top,
    // padded to 4096: peak magnitude a0 at bin 400 (just below 1 on purpose).
    const auto v = tone<T>(1024, 0, 100, 2.0);
    const int mag = DSP_SPECTRUM_MAGNITUDE;
    Rec<T> in(v), out;
    ASSERT_EQ(DSP(h_fft)(&in, &out, nullptr, DSP_WINDOW_FLATTOP, mag, 4096), 0);
    ASSERT_EQ(out->n, 2049);
    EXPECT_NEAR(double(out->data[400]), 0.999640286, 2e-5);  // the unit-mean a0
    // Both transforms the same, twice with a kept scratch record, into the
    // scratch itself, and in place. Failures of both: empty, a length below
    // n, a bad form; of the FFT: an unknown kind, padding not a power of two,
    // flag 8; of the DFT: a negative length.
    const std::vector<T> first = out.values();
    Rec<T> x({1, 2, 3}), empty, r({5}), one({3});
    for (auto op : {DSP(h_fft), DSP(h_dft)}) {
        Rec<T> o, scratch, self(v);
        auto flat = [&](sig<T> *i, sig<T> *res, sig<T> *s) {
            return op(i, res, s, DSP_WINDOW_FLATTOP, mag, 4096);
        };
        for (int k = 0; k < 2; ++k) EXPECT_OK(flat(&in, &o, &scratch), *o, first);
        EXPECT_OK(flat(&in, &scratch, &scratch), *scratch, first);
        EXPECT_OK(flat(&self, &self, nullptr), *self, first);
        EXPECT_EQ(op(&empty, &r, nullptr, DSP_WINDOW_HANN, 0, 0), -1);
        EXPECT_EQ(op(&x, &r, nullptr, DSP_WINDOW_HANN, 0, 2), -1);
        EXPECT_EQ(op(&x, &r, nullptr, DSP_WINDOW_HANN, 0x300, 0), -1);
    }
    EXPECT_EQ(DSP(h_fft)(&x, &r, nullptr, 25, 0, 0), -1);
    EXPECT_EQ(DSP(h_fft)(&x, &r, nullptr, DSP_WINDOW_HANN, 0, 6), -1);
    EXPECT_EQ(DSP(h_fft)(&x, &r, nullptr, DSP_WINDOW_HANN, 8, 0), -1);
    EXPECT_EQ(DSP(h_dft)(&x, &r, nullptr, DSP_WINDOW_HANN, 0, -1), -1);
    expect_values<T>(*r, {5});
    expect_values<T>(*x, {1, 2, 3});
    // One point, no window: the sample itself.
    EXPECT_OK(DSP(h_fft)(&one, &r, nullptr, DSP_WINDOW_UNIFORM, 0, 0), *r, {3});
}

TYPED_TEST(WindowedSpectrum, RawArrayEntryPoints) {
    using T = TypeParam;
    const auto wrapper = pick<T>(cf_dspfh_fft, cf_dsph_fft);
    for (int cplx : {0, 1}) {
        const std::vector<T> v = tone<T>(16, cplx, 3, 1.0);
        Rec<T> in(v, cplx), ref;
        ASSERT_EQ(DSP(h_fft)(&in, &ref, nullptr, DSP_WINDOW_BLACKMAN, 0, 0), 0);
        // The scalars of n input points (the first 8 complex points of the
        // half spectrum for a real input, all 16 for a complex one), or the
        // magnitudes (9 of a real input); the rest of out untouched.
        const int mag = DSP_SPECTRUM_MAGNITUDE;
        for (int form : {0, mag}) {
            std::vector<T> out(v.size() + 1, T(-9));
            ASSERT_EQ(wrapper(v.data(), out.data(), 16, cplx, DSP_WINDOW_BLACKMAN, form, 0), 0);
            const size_t used = form ? (cplx ? 16 : 9) : v.size();
            for (size_t i = 0; i < out.size(); ++i) {
                const double want =
                    i >= used ? -9.0
                    : form    ? std::hypot(double(ref->data[2 * i]), double(ref->data[2 * i + 1]))
                              : double(ref->data[i]);
                EXPECT_NEAR(double(out[i]), want, form ? 1e-6 : 0) << form << " " << i;
            }
        }
        if constexpr (std::is_same_v<T, float>) {
            // The fast variant writes straight into out where the result fits.
            std::vector<float> fast(v.size(), -9.0f), slow(v.size(), -9.0f);
            const int form = cplx ? 0 : mag;
            for (auto f : {cf_dspfh_fft_fast_but_dirty, cf_dspfh_fft})
                ASSERT_EQ(f(v.data(), (f == cf_dspfh_fft ? slow : fast).data(), 16, cplx,
                            DSP_WINDOW_BLACKMAN, form, 0),
                          0);
            EXPECT_EQ(fast, slow);
            // A result that does not fit (the complex half spectrum of a real
            // input, or padding) fails before anything is written.
            std::fill(fast.begin(), fast.end(), -9.0f);
            EXPECT_EQ(cf_dspfh_fft_fast_but_dirty(v.data(), fast.data(), 16, cplx,
                                                  DSP_WINDOW_BLACKMAN, 0, cplx ? 32 : 0),
                      -1);
            EXPECT_EQ(fast, std::vector<float>(v.size(), -9.0f));
        }
    }
    // A failing transform returns -1 and writes nothing.
    std::vector<T> in(3, T(1)), out(3, T(-9));
    EXPECT_EQ(wrapper(in.data(), out.data(), 3, 0, DSP_WINDOW_HANN, 0, 2), -1);
    EXPECT_EQ(out, std::vector<T>(3, T(-9)));
}

// Both transforms against numpy: the library's periodic Hann (unit mean,
// centred on n/2, odd n too), rotated so that the record centre goes to
// index 0 and the padding into the middle; the level is that of n points.
// dspfh_fft pads to the next power of two, dspfh_dft to any length.
TYPED_TEST(WindowedSpectrum, BothTransformsAgainstNumpy) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    const double tol = std::is_same_v<T, float> ? 2e-5 : 1e-12;
    // n, cplx, length (0: none given), fft
    const std::vector<std::array<int, 4>> cases = {{243, 0, 0, 0},     {243, 1, 400, 0},
                                                   {1000, 0, 1500, 0}, {1000, 1, 0, 0},
                                                   {1000, 0, 0, 1},    {1024, 1, 0, 1}};
    std::vector<double> all;
    std::ostringstream list;
    for (auto [n, cplx, length, fft] : cases) {
        const std::vector<T> v = tone<T>(n, cplx, 20.25, 2.0);
        all.insert(all.end(), v.begin(), v.end());
        list << "(" << n << "," << cplx << "," << (length ? length : fft ? 1024 : n) << "),";
    }
    const std::vector<double> ref =
        python("at = 0\nfor n, c, m in [" + list.str() + "]:\n" + kNextRecord +
                   "    k = 2 * np.pi * (np.arange(n) - n // 2) / n\n"
                   "    y = np.roll(s * (1 + np.cos(k)), -(n // 2))\n"
                   "    y = np.concatenate([y[:(n + 1) // 2], np.zeros(m - n), y[(n + 1) // 2:]])\n"
                   "    X = (np.fft.fft(y) if c else np.fft.rfft(y)) / n\n"
                   "    print(*np.column_stack([X.real, X.imag]).ravel())",
               all);
    size_t at = 0, used = 0;
    for (auto [n, cplx, length, fft] : cases) {
        SCOPED_TRACE(n + cplx + length + fft);
        const int m = length ? length : fft ? 1024 : n;
        const size_t count = size_t(cplx ? 2 * m : m + 2 - m % 2);
        const std::vector<T> v = take<T>(all, used, size_t(n * (1 + cplx)));
        Rec<T> in(v, cplx, T(0.5)), out, mag, pow;
        const auto op = fft ? DSP(h_fft) : DSP(h_dft);
        ASSERT_LE(at + count, ref.size());
        EXPECT_OK(op(&in, &out, nullptr, DSP_WINDOW_HANN, 0, length), *out, take<T>(ref, at, count),
                  tol);
        EXPECT_NEAR(double(out->delta), 2.0 / m, 1e-6 / m);
        expect_values<T>(*in, v);  // the input is untouched
        // Magnitudes and powers of the same values.
        ASSERT_EQ(op(&in, &mag, nullptr, DSP_WINDOW_HANN, DSP_SPECTRUM_MAGNITUDE, length), 0);
        ASSERT_EQ(op(&in, &pow, nullptr, DSP_WINDOW_HANN, DSP_SPECTRUM_POWER, m), 0);
        ASSERT_TRUE(mag->cplx == 0 && mag->n == out->n && pow->n == out->n);
        for (int k = 0; k < out->n; k += 37) {
            const double a = std::hypot(double(out->data[2 * k]), double(out->data[2 * k + 1]));
            EXPECT_NEAR(double(mag->data[k]), a, tol);
            EXPECT_NEAR(double(pow->data[k]), a * a, tol);
        }
    }
    EXPECT_EQ(at, ref.size());
}

// dspfh_avg equals scipy.signal.welch given the library's window: real and
// complex records, both scalings, with and without the segment means
// removed, even and odd segments, and the periodogram of one segment.
TYPED_TEST(WindowedSpectrum, AveragedAgainstScipyWelch) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    struct Case {
        int n, cplx, segment, overlap, flags;
        dsp_window kind;
        const char *coef;
    };
    const int density = DSP_SPECTRUM_DENSITY, power = DSP_SPECTRUM_POWER;
    const int detrend = DSP_SPECTRUM_DETREND;
    const std::vector<Case> cases = {
        {5000, 0, 256, -1, density | detrend, DSP_WINDOW_HANN, "0.5, 0.5"},  // scipy's defaults
        {4000, 0, 300, 0, power, DSP_WINDOW_BLACKMAN, "0.42, 0.5, 0.08"},
        {1001, 0, 101, 100, density | 1, DSP_WINDOW_HANN, "0.5, 0.5"},
        {3000, 1, 128, 32, density | detrend, DSP_WINDOW_HAMMING, "0.54, 0.46"},
        {77, 0, 0, 0, power, DSP_WINDOW_UNIFORM, "1"}};
    std::vector<double> all;
    std::ostringstream list;
    for (const Case &c : cases) {
        const auto v = uniform<T>(size_t(c.n * (1 + c.cplx)), unsigned(c.n), -1, 1.5);
        all.insert(all.end(), v.begin(), v.end());
        const int seg = c.segment ? c.segment : c.n;
        list << "(" << c.n << "," << c.cplx << "," << seg << ","
             << (c.overlap < 0 ? seg / 2 : c.overlap) << "," << c.flags << ",[" << c.coef << "]),";
    }
    const std::vector<double> ref = python(
        "import scipy.signal as ss\nat = 0\nfor n, c, N, ov, f, a in [" + list.str() + "]:\n" +
            kNextRecord +
            "    k = 2 * np.pi * (np.arange(N) - N // 2) / N\n"
            "    w = sum(aj * np.cos(j * k) for j, aj in enumerate(a))\n"
            "    p = ss.welch(s, 48000, w, N, ov, detrend='constant' if f & 0x400 else False,\n"
            "        return_onesided=not c, scaling='density' if f & 0x100 else 'spectrum')[1]\n"
            "    print(*p)",
        all);
    size_t at = 0, used = 0;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.n);
        const int seg = c.segment ? c.segment : c.n, bins = c.cplx ? seg : seg / 2 + 1;
        Rec<T> in(take<T>(all, used, size_t(c.n * (1 + c.cplx))), c.cplx, T(1) / T(48000)), out,
            scratch;
        ASSERT_LE(at + size_t(bins), ref.size());
        const std::vector<T> want = take<T>(ref, at, size_t(bins));
        const double peak = *std::max_element(want.begin(), want.end());
        const double tol = (std::is_same_v<T, float> ? 2e-5 : 1e-11) * peak;
        auto avg = [&](sig<T> *o, sig<T> *s) {
            return DSP(h_avg)(&in, o, s, c.kind, c.flags, c.segment, c.overlap);
        };
        EXPECT_OK(avg(&out, nullptr), *out, want, tol);
        EXPECT_NEAR(double(out->delta), 48000.0 / seg, 1e-3);
        // With a kept scratch record, and in place.
        EXPECT_OK(avg(&out, &scratch), *out, want, tol);
        EXPECT_OK(avg(&in, &in), *in, want, tol);
    }
    EXPECT_EQ(at, ref.size());

    // A tone of amplitude 2 in the middle of bin 16 reads A^2 / 2 in the
    // power form; the constant offset goes with the segment means.
    std::vector<T> v(4096);
    for (size_t i = 0; i < v.size(); ++i) v[i] = T(3 + 2 * std::cos(2 * M_PI * 16 * i / 128.0));
    Rec<T> tone2(v), psd({7});
    ASSERT_EQ(DSP(h_avg)(&tone2, &psd, nullptr, DSP_WINDOW_HANN, power | detrend, 128, -1), 0);
    EXPECT_NEAR(double(psd->data[16]), 2.0, 1e-5);
    EXPECT_NEAR(double(psd->data[0]), 0.0, 1e-5);
    // Failures leave the result as it was: segment longer than the record,
    // overlap not below the segment, a form that is no power, flag 8, an
    // unknown kind, an empty record.
    Rec<T> empty, r({5});
    const std::vector<std::array<int, 4>> bad = {{2, power, 5000, 0},    {2, power, 128, 128},
                                                 {2, 0, 128, 0},         {2, 0x100, 128, 0},
                                                 {2, power | 8, 128, 0}, {99, power, 128, 0}};
    for (auto [kind, flags, seg, ov] : bad)
        EXPECT_EQ(DSP(h_avg)(&tone2, &r, nullptr, kind, flags, seg, ov), -1);
    EXPECT_EQ(DSP(h_avg)(&empty, &r, nullptr, DSP_WINDOW_HANN, power, 0, 0), -1);
    expect_values<T>(*r, {5});
}
