// The window catalogue: names in any case mix and the value-to-text
// conversion that never succeeds; scale and bandwidth metrics (their
// agreement with the generated windows is checked with the normalisation
// modes in generate_test).
#include "window/catalogue.hpp"

#include <cctype>
#include <cmath>
#include <string>
#include <tuple>

#include "support/support.hpp"

using namespace dsp_test;

namespace {

struct row {
    const char *name;
    dsp_window value;
};

// The short names with the enumerator each stands for.
const row short_names[] = {
    {"Uniform", DSP_WINDOW_UNIFORM},     {"Rectangular", DSP_WINDOW_RECTANGULAR},
    {"None", DSP_WINDOW_NONE},           {"P000", DSP_WINDOW_P000},
    {"Bartlett", DSP_WINDOW_BARTLETT},   {"Triangular", DSP_WINDOW_TRIANGULAR},
    {"Hann", DSP_WINDOW_HANN},           {"P110", DSP_WINDOW_P110},
    {"Hamming", DSP_WINDOW_HAMMING},     {"P100", DSP_WINDOW_P100},
    {"Blackman", DSP_WINDOW_BLACKMAN},   {"Blackman_Harris3", DSP_WINDOW_BLACKMAN_HARRIS3},
    {"P200", DSP_WINDOW_P200},           {"Blackman_Harris4", DSP_WINDOW_BLACKMAN_HARRIS4},
    {"P310", DSP_WINDOW_P310},           {"Lowleak", DSP_WINDOW_LOWLEAK},
    {"Gausstop", DSP_WINDOW_GAUSSTOP},   {"P400", DSP_WINDOW_P400},
    {"Flat4", DSP_WINDOW_FLAT4},         {"P301", DSP_WINDOW_P301},
    {"Flattop", DSP_WINDOW_FLATTOP},     {"Flat5", DSP_WINDOW_FLAT5},
    {"P401", DSP_WINDOW_P401},           {"Flat6", DSP_WINDOW_FLAT6},
    {"P511", DSP_WINDOW_P511},           {"Flat7", DSP_WINDOW_FLAT7},
    {"P611", DSP_WINDOW_P611},           {"P501", DSP_WINDOW_P501},
    {"P601", DSP_WINDOW_P601},           {"Kaiser70", DSP_WINDOW_KAISER70},
    {"Kaiser80", DSP_WINDOW_KAISER80},   {"Kaiser90", DSP_WINDOW_KAISER90},
    {"Kaiser100", DSP_WINDOW_KAISER100}, {"Kaiser110", DSP_WINDOW_KAISER110},
    {"Kaiser120", DSP_WINDOW_KAISER120}, {"Gauss60", DSP_WINDOW_GAUSS60},
    {"Gauss70", DSP_WINDOW_GAUSS70},     {"Gauss80", DSP_WINDOW_GAUSS80},
    {"Riemann", DSP_WINDOW_RIEMANN},     {"Sinc_Lobe", DSP_WINDOW_SINC_LOBE},
};

std::string upper(std::string s) {
    for (char &c : s) c = char(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

}  // namespace

DSP_TYPED_SUITE(WindowCatalogue);

TYPED_TEST(WindowCatalogue, NamesInAnyCaseMixAndNoValueToText) {
    static_assert(sizeof short_names / sizeof short_names[0] == 40);
    for (const row &r : short_names) {
        const std::string name = r.name;
        std::string enumerator = "DSP_WINDOW_" + upper(name);
        std::string mixed = name;
        for (size_t i = 0; i < mixed.size(); i += 2)
            mixed[i] = char(std::tolower(static_cast<unsigned char>(mixed[i])));
        for (const std::string &s :
             {name, upper(name), mixed, enumerator, std::string("dsp_window_") + name}) {
            dsp_window v = -7;
            EXPECT_EQ(DSP(_window_from_str)(s.c_str(), &v), 0) << s;
            EXPECT_EQ(v, r.value) << s;
        }
        // A prefix, a trailing blank or an extra letter do not match.
        for (const std::string &s : {name.substr(0, name.size() - 1), name + " ", name + "x"}) {
            dsp_window v = -7;
            EXPECT_EQ(DSP(_window_from_str)(s.c_str(), &v), -1) << s;
            EXPECT_EQ(v, 0) << s;
        }
    }
    // Lower case, and the code of Lowleak; the empty text fails and sets 0,
    // no text leaves the value.
    dsp_window v = -7;
    EXPECT_EQ(DSP(_window_from_str)("lowleak", &v), 0);
    EXPECT_EQ(v, 6);
    EXPECT_EQ(DSP(_window_from_str)("", &v), -1);
    EXPECT_EQ(v, 0);
    v = -7;
    EXPECT_EQ(DSP(_window_from_str)(nullptr, &v), -1);
    EXPECT_EQ(v, -7);
    EXPECT_EQ(DSP(_window_from_str)("Hann", nullptr), -1);
    // Value to text always fails, writing an empty text where it can.
    char buf[32];
    for (dsp_window code : {0, 2, 23, 24, -1}) {
        std::fill(buf, buf + sizeof buf, 'x');
        EXPECT_EQ(DSP(_window_to_str)(code, buf, int(sizeof buf)), -1);
        EXPECT_TRUE(buf[0] == 0 && buf[1] == 'x');
    }
    buf[0] = 'x';
    EXPECT_EQ(DSP(_window_to_str)(DSP_WINDOW_HANN, buf, 0), -1);
    EXPECT_EQ(buf[0], 'x');
    EXPECT_EQ(DSP(_window_to_str)(DSP_WINDOW_HANN, nullptr, 32), -1);
}

TYPED_TEST(WindowCatalogue, MetricsWorkedValuesAndFailures) {
    using T = TypeParam;
    T s = -1;
    for (int kind : {0, 1, 2, 9, 14, 23, 24}) {
        for (int flags : {2, 6}) {
            ASSERT_EQ(DSP(_window_scale)(&s, kind, flags, 1024), 0);
            EXPECT_EQ(s, T(1));
        }
        ASSERT_EQ(DSP(_window_scale)(&s, kind, 0, 0), 0);
        EXPECT_EQ(s, T(1));
    }
    // Unit-mean Hann 2 and Hamming 1 / 0.54, unit-rms Hann sqrt(8 / 3), the
    // triangles of 5 (4 in the single family) and 6.
    const struct {
        int kind, flags, n;
        double want, tol;
    } worked[] = {{DSP_WINDOW_HANN, 0, 1024, 2, 0},
                  {DSP_WINDOW_HANN, 1, 1024, 1.63299322, 1e-7},
                  {DSP_WINDOW_HAMMING, 0, 1024, 1 / 0.54, 1e-6},
                  {DSP_WINDOW_BARTLETT, 0, 5, pick<T>(4.0, 50.0 / 26.0), 0},
                  {DSP_WINDOW_BARTLETT, 0, 6, 2, 0}};
    for (const auto &w : worked) {
        ASSERT_EQ(DSP(_window_scale)(&s, w.kind, w.flags, w.n), 0);
        EXPECT_NEAR(double(s), w.want, w.tol) << w.kind << " " << w.flags << " " << w.n;
    }
    ASSERT_EQ(DSP(_window_enbw)(&s, DSP_WINDOW_HANN, 1024), 0);
    // (2 / (0.816496611 / 0.5))^2 with the stored nine-digit unit-rms value
    EXPECT_NEAR(double(s), 1.5, 1e-6);
    // Failures leave the result alone.
    s = -1;
    EXPECT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_HANN, 3, 16), -1);
    EXPECT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_HANN, 8, 16), -1);
    EXPECT_EQ(DSP(_window_scale)(&s, 30, 0, 16), -1);
    EXPECT_EQ(DSP(_window_scale)(&s, DSP_WINDOW_KAISER70, 4 | 8, 16), -1);
    EXPECT_EQ(DSP(_window2_scale)(&s, DSP_WINDOW_BARTLETT, 8, 16, T(4)), -1);
    EXPECT_EQ(DSP(_window_enbw)(&s, 30, 16), -1);
    EXPECT_EQ(s, T(-1));
    EXPECT_EQ(DSP(_window_enbw)(nullptr, DSP_WINDOW_HANN, 16), -1);
    EXPECT_EQ(DSP(_window2_enbw)(nullptr, DSP_WINDOW_HANN, 16, T(8)), -1);
    // Explicit width: a Hann of 32 samples in a record of 64 has twice the
    // bandwidth in bins of the record.
    for (auto [kind, width, want] :
         {std::tuple{DSP_WINDOW_HANN, 32, 3.0}, {DSP_WINDOW_UNIFORM, 16, 4.0}}) {
        ASSERT_EQ(DSP(_window2_enbw)(&s, kind, 64, T(width)), 0);
        EXPECT_NEAR(double(s), want, 1e-5);
    }
    ASSERT_EQ(DSP(_window2_scale)(&s, DSP_WINDOW_FLATTOP, 8, 1000, T(1000)), 0);
    T plain;
    ASSERT_EQ(DSP(_window_scale)(&plain, DSP_WINDOW_FLATTOP, 0, 1000), 0);
    EXPECT_NEAR(double(s), double(plain), 1e-5);
    // The single family's odd triangle: 4 over the unit-rms peak.
    ASSERT_EQ(DSP(_window_enbw)(&s, DSP_WINDOW_BARTLETT, 5), 0);
    EXPECT_NEAR(double(s), std::pow(pick<T>(4.0, 50.0 / 26) / std::sqrt(3.0 * 25 / 27), 2), 1e-6);
}
