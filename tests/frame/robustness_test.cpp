// Every operation of the call table with hostile arguments: random record
// shapes (negative, empty, odd and power-of-two lengths, real and complex,
// owned storage or a caller's array of exactly the needed size), NaN,
// infinite, denormal and huge samples and spacings, extreme scalars, records
// standing for one another, and now and then a failing or oversized
// allocation; first with the system allocator, then with allocator hooks.
// Seeded and bounded (24000 calls per precision, 6000 under an emulator):
// DSP_HOSTILE_SEED and DSP_HOSTILE_CALLS (per precision) change the run;
// DSP_HOSTILE_TRACE=1 names every call on stderr before it is made (the last
// name before a crash is the call that crashed). The statuses are 0 or -1,
// nothing is left allocated once the records are destroyed and the caches
// released, and the sanitizer build checks that nothing is read or written
// outside a record's storage.
#include <cstdlib>

#include "support/calls.hpp"
#include "support/seam.hpp"
#include "support/support.hpp"

using namespace dsp_test;

DSP_TYPED_SUITE(Robustness);

namespace {

unsigned long setting(const char *name, unsigned long otherwise) {
    const char *v = std::getenv(name);
    return v ? std::strtoul(v, nullptr, 0) : otherwise;
}

}  // namespace

TYPED_TEST(Robustness, HostileCalls) {
    using T = TypeParam;
    const auto table = calls<T>();
    const unsigned long calls_per_half =
        setting("DSP_HOSTILE_CALLS", emulated() ? 6000 : 24000) / 2;
    random_chooser ch(setting("DSP_HOSTILE_SEED", 14) * 2 + sizeof(T));
    const bool trace = setting("DSP_HOSTILE_TRACE", 0) != 0;
    long made = 0, failed = 0, injected = 0;
    for (bool hooked : {false, true}) {
        if (hooked) seam::install_offset_hooks<T>();
        for (unsigned long k = 0; k < calls_per_half; ++k, ++made) {
            const size_t row = ch.next() % table.size();
            const call<T> &c = table[row];
            if (trace) std::fprintf(stderr, "call %ld: row %zu, %s\n", made, row, c.names);
            scene<T> sc(&ch);
            const uint32_t u = ch.next();
            seam::arm(u % 8 ? 0 : 1 + (u >> 3) % 6, size_t(4) << 20);
            const int status = c.run(sc.a);
            seam::disarm();
            injected += seam::injected();
            failed += status != 0;
            ASSERT_TRUE(status == 0 || status == -1) << c.names << ", call " << made;
            if (u % 101 == 0) dspf_free_internal(), dsp_free_internal();
        }
        dspf_free_internal(), dsp_free_internal();
        if (hooked) seam::remove_hooks<T>();
    }
    EXPECT_EQ(seam::outstanding(), 0);
    seam::forget();
    std::printf("%ld hostile calls of %zu operations: %ld failed, %ld with a failed allocation\n",
                made, table.size(), failed, injected);
}
