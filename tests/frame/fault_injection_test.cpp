// Every operation with its 1st, 2nd, ... allocation failing in turn (record
// storage and the library's own tables and caches), once with the system
// allocator and once with allocator hooks (only the hooks under an emulator):
// the call returns -1, or 0 with the undisturbed result; nothing leaks once
// the records are destroyed and the caches released; and the same call
// afterwards gives the undisturbed result bit for bit. Also: every export of
// the header is in the table.
#include <cctype>
#include <fstream>
#include <set>
#include <sstream>

#include "support/calls.hpp"
#include "support/seam.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

void release_caches() {
    dspf_free_internal();
    dsp_free_internal();
}

// Status, records, arrays and scalar results of a call, bit for bit.
template <class T>
std::string outcome(int status, const scene<T> &sc) {
    std::ostringstream o;
    auto bytes = [&](const void *p, size_t n) { o.write(static_cast<const char *>(p), n); };
    auto record = [&](const auto &r) {
        bytes(&r.delta, sizeof r.delta);
        bytes(&r.alloc, 3 * sizeof r.alloc);  // alloc, n, cplx
        bytes(r.data, size_t(sc.readable(r)) * sizeof *r.data);
    };
    bytes(&status, sizeof status);
    for (const auto &r : sc.rec) record(r);
    record(sc.single);
    const size_t scalars = sc.a.an > 0 ? size_t(sc.a.an) * (sc.a.acplx ? 2 : 1) : 0;
    bytes(sc.a.arr, scalars * sizeof(T));
    bytes(sc.a.out, scalars * sizeof(T));
    bytes(sc.a.aux, scalars * sizeof(T));
    bytes(sc.a.ints, scalars * sizeof(int));
    bytes(&sc.a.v, sizeof sc.a.v);
    bytes(&sc.a.iv, sizeof sc.a.iv);
    return o.str();
}

int status_of(const std::string &outcome) {
    int status;
    std::memcpy(&status, outcome.data(), sizeof status);
    return status;
}

}  // namespace

DSP_TYPED_SUITE(FaultInjection);

TYPED_TEST(FaultInjection, EveryAllocationFailsInTurn) {
    using T = TypeParam;
    long failures = 0, absorbed = 0, kept = 0;
    // Under an emulator only with the hooks, which see every allocation too.
    for (bool hooked : {false, true}) {
        if (!hooked && emulated()) continue;
        if (hooked) seam::install_offset_hooks<T>();
        for (const call<T> &c : calls<T>()) {
            auto run = [&](long fail_at, long *allocations = nullptr) {
                scene<T> sc;
                seam::arm(fail_at);
                const int status = c.run(sc.a);
                const long made = seam::disarm();
                if (allocations) *allocations = made;
                return outcome<T>(status, sc);
            };
            release_caches();
            long total = 0;
            const std::string want = run(0, &total);
            ASSERT_EQ(status_of(want), 0) << c.names;
            for (long k = 1; k <= total; ++k, ++failures) {
                SCOPED_TRACE(::testing::Message() << c.names << ", allocation " << k << " of "
                                                  << total << (hooked ? ", hooks" : ""));
                release_caches();
                const std::string failed = run(k);
                EXPECT_TRUE(seam::injected());
                absorbed += status_of(failed) == 0;
                EXPECT_TRUE(status_of(failed) == -1 || failed == want);
                std::string again = run(0);
                if (again != want && c.cached) {
                    // A cache keeps a key without its table: the window
                    // of a failed generation, or the FIR spectrum of the
                    // other kind (see the README); released, it is gone.
                    ++kept;
                    release_caches();
                    again = run(0);
                }
                EXPECT_TRUE(again == want);
                release_caches();
                EXPECT_EQ(seam::outstanding(), 0);
                seam::forget();
            }
        }
        if (hooked) seam::remove_hooks<T>();
    }
    std::printf(
        "%zu calls, %ld failures injected: %ld absorbed with the right result, %ld "
        "cache keys kept%s\n",
        calls<T>().size(), failures, absorbed, kept, emulated() ? " (hooks only)" : "");
}

// A filter's history or state record whose growth failed is left empty, so
// that the next block starts from zeros as with a fresh record, whether the
// caller's (FIR history, decimation phase) or the half-band filter's
// internal one.
TYPED_TEST(FaultInjection, FailedStateStartsAgainFromZeros) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3, 4, 5, 6}), h({T(0.5), T(0.25), T(0.125)}), y, want, fresh;
    auto failing = [](auto call) {
        seam::arm(1);
        const int status = call();
        seam::disarm();
        return status;
    };
    for (int op = 0; op < 3; ++op) {
        Rec<T> state, fresh_state, x1({1, 2, 3, 4, 5, 6}), x2({1, 2, 3, 4, 5, 6});
        auto run = [&](sig<T> *in, sig<T> *out, sig<T> *st) {
            return op == 0   ? DSP(d_fir)(in, out, &h, st)
                   : op == 1 ? DSP(d_deci)(in, out, 2, st)
                             : DSP(i_hwfilt)(in, nullptr);
        };
        release_caches();
        EXPECT_EQ(failing([&] { return run(&x, &y, &state); }), -1) << op;
        EXPECT_EQ(state->n, 0);
        EXPECT_EQ(run(&x1, &y, &state), 0);
        release_caches();
        EXPECT_EQ(run(&x2, &want, &fresh_state), 0);
        EXPECT_EQ(op == 2 ? x1.values() : y.values(), op == 2 ? x2.values() : want.values()) << op;
        EXPECT_EQ(state.values(), fresh_state.values());
    }
    release_caches();
    EXPECT_EQ(seam::outstanding(), 0);
    seam::forget();
}

// Every export declared in the header is in the table or takes no record
// and allocates nothing; every name of the table is declared.
TEST(FaultInjection, EveryExportIsInTheTable) {
    std::ifstream in(DSP_TEST_DATA_DIR "/../include/dsp.h");
    std::stringstream text;
    text << in.rdbuf();
    const std::string header = text.str();
    std::set<std::string> declared, covered;
    // A declaration starts a line with DSP_API; its name precedes the "(".
    for (size_t at = header.find("\nDSP_API "); at != std::string::npos;
         at = header.find("\nDSP_API ", at + 1)) {
        size_t end = header.find('(', at), begin = end;
        while (begin > at && (std::isalnum(header[begin - 1]) || header[begin - 1] == '_')) --begin;
        declared.insert(header.substr(begin, end - begin));
    }
    ASSERT_GT(declared.size(), 200u);
    auto add = [&](auto precision, const char *pattern, bool must_exist) {
        const std::string name = export_name<decltype(precision)>(pattern);
        if (must_exist) {
            EXPECT_TRUE(declared.count(name)) << name << " is not declared";
        }
        if (declared.count(name)) covered.insert(name);
    };
    for (const auto &c : calls<float>()) add(0.0f, c.names, true);
    for (const auto &c : calls<double>()) add(0.0, c.names, true);
    for (const char *p : allocation_free) add(0.0f, p, true), add(0.0, p, true);
    for (const std::string &name : declared)
        EXPECT_TRUE(covered.count(name)) << name << " has no row in tests/support/calls.hpp";
}
