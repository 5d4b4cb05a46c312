// Every in-place operation on records of awkward shapes (negative, empty,
// odd and power-of-two lengths; real and complex; owned storage and a
// caller's array): no crash, and nothing read or written outside a record's
// storage (checked by the sanitizer build).
#include <functional>
#include <vector>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Robustness : public ::testing::Test {};
TYPED_TEST_SUITE(Robustness, Precisions);

TYPED_TEST(Robustness, AwkwardShapes) {
    using T = TypeParam;
    using S = sig<T>;
    // clang-format off
    const std::vector<std::function<int(S *)>> ops = {
        DSP(i_real), DSP(i_imag), DSP(i_rtoc), DSP(i_rtop), DSP(i_ptor), DSP(i_mag), DSP(i_magsq),
        DSP(i_phase), DSP(i_conj), DSP(i_timesi), DSP(i_neg), DSP(i_recip), DSP(i_sqrt),
        DSP(i_square), DSP(i_exp), DSP(i_exp10), DSP(i_log), DSP(i_log10), DSP(i_sinh),
        DSP(i_rev), DSP(i_swap_halves), DSP(i_swap_halves2), DSP(i_zero), DSP(i_zinter),
        DSP(i_sort), DSP(i_integ), DSP(i_differ), DSP(i_pdiffer), DSP(i_unwrap), DSP(i_recon),
        DSP(i_bitrev), DSP(i_rfft), DSP(i_irfft), DSP(i_rdft), DSP(i_hilbert), DSP(i_analytic),
        [](S *x) { return DSP(i_db)(x, T(10)); }, [](S *x) { return DSP(i_cscale)(x, 1, 2); },
        [](S *x) { return DSP(i_addcos)(x, 1, T(0.1), 1, 0); },
        [](S *x) { return DSP(i_shift)(x, 2); }, [](S *x) { return DSP(i_edge)(x, 3, 0); },
        [](S *x) { return DSP(i_zpad2)(x, 12, 0x100) | DSP(i_unzpad)(x, 2, 0x300); },
        [](S *x) { return DSP(i_orecon)(x, 1) | DSP(i_fft)(x, 0) | DSP(i_dft)(x, 1); },
        [](S *x) { return DSP(i_irdft)(x, 1) | DSP(i_dct)(x, 1); },
        [](S *x) { return DSP(i_window)(x, DSP_WINDOW_FLATTOP, 0); },
        [](S *x) { return DSP(i_window2)(x, DSP_WINDOW_HANN, 8, T(3.5)); },
        [](S *x) { return DSP(i_window_sinc)(x, 3, 2, 4) | DSP(i_window_fir)(x, 101, T(0.1)); },
        [](S *x) { return DSP(b_pmul)(x, x, x) | DSP(b_div)(x, x, x) | DSP(u_sqrt)(x, x); },
        [](S *x) { return DSP(u_subvec)(x, x, 1, 100) | DSP(_append)(x, x); },
        [](S *x) {
            Rec<T> h(std::vector<T>(5, T(0.5))), hist, ph;
            return DSP(d_fir)(x, x, &h, &hist) | DSP(d_sfir)(x, x, &h, 1, 1, &hist) |
                   DSP(d_deci)(x, x, 3, &ph) | DSP(i_hwfilt)(x, nullptr) |
                   DSP(h_corr)(x, x, x, x, 2, 1);
        },
        [](S *x) {
            Rec<T> r;
            return DSP(s_median)(x, &r) | DSP(s_skew)(x, &r) | DSP(s_gmean)(x, &r) |
                   DSP(s_hist)(x, &r, -1, T(0.5), 5) | DSP(s_peak)(x, &r, 0x300, 0) |
                   DSP(h_fft)(x, &r, nullptr, DSP_WINDOW_HANN, 0, 0);
        },
    };
    // clang-format on
    for (int n : {-3, 0, 1, 2, 3, 5, 8, 33})
        for (int cplx : {0, 1})
            for (const auto &op : ops) {
                std::vector<T> v(size_t(n > 0 ? 2 * n : 0));
                for (size_t i = 0; i < v.size(); ++i) v[i] = T(int(i * 37 % 11) - 5) / 3;
                Rec<T> owned(v, cplx != 0);
                owned->n = n;
                op(&owned);
                std::vector<T> caller(v);  // a caller's array, never owned
                S wrapped = wrap(caller.data(), n, cplx != 0);
                op(&wrapped);
                DSP(_destroy)(&wrapped);
            }
    EXPECT_EQ(DSP(_free_internal)(), 0);
}
