// libFuzzer harness. The input picks the precision, a row of the call table
// (tests/support/calls.hpp) among those of this program's group, the scene of
// the call (record shapes, samples, arguments, records standing for one
// another) and whether one of its allocations fails; the call runs under
// AddressSanitizer and UndefinedBehaviorSanitizer. The library's caches live
// on from one input to the next, as in a long-running instrument, and are
// released now and then.
#include <cstring>
#include <string>
#include <vector>

#include "support/calls.hpp"
#include "support/seam.hpp"

namespace {

// Choices from the input, four bytes at a time; zeros once it is used up.
struct byte_chooser : dsp_test::chooser {
    const uint8_t *at, *end;
    byte_chooser(const uint8_t *data, size_t size) : at(data), end(data + size) {}
    uint32_t next() override {
        uint32_t v = 0;
        for (int k = 0; k < 4 && at < end; ++k) v |= uint32_t(*at++) << 8 * k;
        return v;
    }
};

// The rows of each program: name patterns beginning with one of these.
struct group {
    const char *name;
    std::vector<std::string> prefixes;
};
const group groups[] = {
    {"transform",
     {"*i_fft", "*i_bitrev", "cf_*i_fft", "*i_rfft", "*i_irfft", "*i_dft", "*i_rdft", "*i_irdft",
      "*i_dct", "*i_hilbert", "*i_analytic", "*i_recon", "*i_orecon"}},
    {"spectrum",
     {"*h_fft", "cf_*h_fft", "cf_dspfh_fft", "*i_window", "*_window", "*h_dft", "*h_avg"}},
    {"stats",
     {"*s_", "*i_proots", "*i_pztoc", "*_interp", "*_cspline", "*b_cspline_2d", "*b_inter"}},
    {"filter", {"*d_", "*i_hwfilt", "*h_corr", "*b_corr", "*c_", "*h_rsmp"}},
    {"trace", {"vfp", "MatrixMult", "invert", "Compute1PortTerms", "CircularInterpolation"}},
    {"record",
     {"*_alloc", "*_realloc", "*_append", "*_copy", "*_cmp", "*u_", "*i_zpad", "*i_unzpad",
      "*i_shift"}},
};

template <class T>
std::vector<dsp_test::call<T>> selected() {
    std::vector<dsp_test::call<T>> rows;
    for (const group &g : groups)
        if (std::strcmp(g.name, DSP_FUZZ_GROUP) == 0)
            for (const auto &c : dsp_test::calls<T>())
                for (const std::string &p : g.prefixes)
                    if (std::string(c.names).rfind(p, 0) == 0) {
                        rows.push_back(c);
                        break;
                    }
    return rows;
}

template <class T>
void run(byte_chooser &in) {
    static const auto rows = selected<T>();
    const auto &c = rows[in.next() % rows.size()];
    const uint32_t u = in.next();
    dsp_test::scene<T> sc(&in);
    dsp_test::seam::arm(u % 4 ? 0 : 1 + (u >> 2) % 8, size_t(16) << 20, false);
    c.run(sc.a);
    dsp_test::seam::disarm();
    if ((u >> 8) % 64 == 0) dspf_free_internal(), dsp_free_internal();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 1) return 0;
    byte_chooser in(data + 1, size - 1);
    if (data[0] & 1)
        run<double>(in);
    else
        run<float>(in);
    return 0;
}
