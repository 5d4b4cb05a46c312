// The windowed spectrum and its raw-array entry points.
#include <cmath>
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

}  // namespace

template <class T>
class WindowedSpectrum : public ::testing::Test {};
TYPED_TEST_SUITE(WindowedSpectrum, Precisions);

TYPED_TEST(WindowedSpectrum, AgainstNumpy) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    const double tol = std::is_same_v<T, float> ? 1e-5 : 1e-13;
    for (int cplx : {0, 1}) {
        for (int n : {1000, 1024}) {
            const std::vector<T> v = tone<T>(n, cplx, 100.25, 2.0);
            // Hann (unit mean), rotated: the record centre goes to index 0 and
            // the padding into the middle; the level is that of n points.
            const std::vector<double> ref = python(std::string(R"(
import scipy.signal.windows as w
c = )") + (cplx ? "1" : "0") + R"(
s = x[0::2] + 1j * x[1::2] if c else x
n = len(s)
y = np.roll(s * 2 * w.hann(n, sym=False), -(n // 2))
m = 1 << (n - 1).bit_length()
y = np.concatenate([y[:(n + 1) // 2], np.zeros(m - n), y[(n + 1) // 2:]])
X = (np.fft.fft(y) if c else np.fft.rfft(y)) / n
print(' '.join(repr(float(t)) for t in np.column_stack([X.real, X.imag]).ravel()))
)",
                                                   std::vector<double>(v.begin(), v.end()));
            Rec<T> in(v, cplx, T(1) / T(48000)), out, mag, pow;
            EXPECT_OK(DSP(h_fft)(&in, &out, nullptr, DSP_WINDOW_HANN, 0, 0), *out,
                      std::vector<T>(ref.begin(), ref.end()), tol);
            EXPECT_NEAR(double(out->delta), 48000.0 / 1024, 1e-9 * 48000);
            // The input is untouched; magnitudes and powers of the same values.
            expect_values<T>(*in, v);
            ASSERT_EQ(DSP(h_fft)(&in, &mag, nullptr, DSP_WINDOW_HANN, DSP_SPECTRUM_MAGNITUDE, 0),
                      0);
            ASSERT_EQ(DSP(h_fft)(&in, &pow, nullptr, DSP_WINDOW_HANN, DSP_SPECTRUM_POWER, 1024), 0);
            ASSERT_EQ(mag->cplx, 0);
            ASSERT_EQ(mag->n, out->n);
            for (int k = 0; k < out->n; k += 37) {
                const double m = std::hypot(double(out->data[2 * k]), double(out->data[2 * k + 1]));
                EXPECT_NEAR(double(mag->data[k]), m, tol);
                EXPECT_NEAR(double(pow->data[k]), m * m, tol);
            }
        }
    }
}

TYPED_TEST(WindowedSpectrum, ToneLevelScratchAndFailures) {
    using T = TypeParam;
    // A tone of amplitude 2 on bin 100 of 1024 points, unit-mean flat-top,
    // padded to 4096: peak magnitude a0 at bin 400 (just below 1 on purpose).
    Rec<T> in(tone<T>(1024, 0, 100, 2.0)), out, scratch;
    auto flat = [&](sig<T> *o, sig<T> *s) {
        return DSP(h_fft)(&in, o, s, DSP_WINDOW_FLATTOP, DSP_SPECTRUM_MAGNITUDE, 4096);
    };
    ASSERT_EQ(flat(&out, &scratch), 0);
    ASSERT_EQ(out->n, 2049);
    EXPECT_NEAR(double(out->data[400]), 0.999640286, 2e-5);  // the unit-mean a0
    // Repeated with the scratch kept, into the scratch itself, and in place.
    const std::vector<T> first = out.values();
    EXPECT_OK(flat(&out, &scratch), *out, first);
    EXPECT_OK(flat(&scratch, &scratch), *scratch, first);
    EXPECT_OK(flat(&in, nullptr), *in, first);
    // Failures: empty, padding below n or not a power of two, bad form,
    // flags or kind.
    Rec<T> x({1, 2, 3}), empty, r({5}), one({3});
    EXPECT_EQ(DSP(h_fft)(&empty, &r, nullptr, DSP_WINDOW_HANN, 0, 0), -1);
    for (int pad : {2, 6}) EXPECT_EQ(DSP(h_fft)(&x, &r, nullptr, DSP_WINDOW_HANN, 0, pad), -1);
    for (int form : {0x300, 8})
        EXPECT_EQ(DSP(h_fft)(&x, &r, nullptr, DSP_WINDOW_HANN, form, 0), -1);
    EXPECT_EQ(DSP(h_fft)(&x, &r, nullptr, 25, 0, 0), -1);
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
        // The scalars of n input points: the first 8 complex points of the
        // half spectrum for a real input, all 16 for a complex one.
        std::vector<T> out(v.size() + 1, T(-9));
        ASSERT_EQ(wrapper(v.data(), out.data(), 16, cplx, DSP_WINDOW_BLACKMAN, 0, 0), 0);
        for (size_t i = 0; i < v.size(); ++i) EXPECT_EQ(out[i], ref->data[i]) << i;
        EXPECT_EQ(out.back(), T(-9));
        // Magnitudes of a real input: 9 values, the rest of out untouched.
        std::fill(out.begin(), out.end(), T(-9));
        const int mag = DSP_SPECTRUM_MAGNITUDE;
        ASSERT_EQ(wrapper(v.data(), out.data(), 16, cplx, DSP_WINDOW_BLACKMAN, mag, 0), 0);
        for (size_t i = 0; i < out.size(); ++i) {
            const double m = i >= (cplx ? 16u : 9u) ? -9.0
                                                    : std::hypot(double(ref->data[2 * i]),
                                                                 double(ref->data[2 * i + 1]));
            EXPECT_NEAR(double(out[i]), m, 1e-6) << i;
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
