// One table of calls of every operation on records, shared by the
// fault-injection test, the hostile-input driver and the fuzz harnesses.
//
// A row names the exports it calls ('*' stands for the precision prefix:
// "*i_fft" is dspfi_fft and dspi_fft, "vfp*_FindMax" vfps_FindMax and
// vfpd_FindMax) and makes one call on the records and arrays of a scene. Its
// arguments are written as c.i(v) and c.s(v): the representative value v in
// the fault-injection test, an arbitrary one (v itself, a neighbour, an
// extreme, random bits) when the scene is hostile; c.at(v) and c.pt(v) are
// indices of a scalar and of a complex point within the caller arrays.
// Adding an export is adding its row (one line).
#pragma once

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "support/precision.hpp"

namespace dsp_test {

// Where the choices of a hostile scene come from (random numbers, or the
// bytes of a fuzz input).
struct chooser {
    virtual ~chooser() = default;
    virtual uint32_t next() = 0;
};

// A seeded generator of choices (xorshift64*).
struct random_chooser : chooser {
    uint64_t state;
    explicit random_chooser(uint64_t seed) : state(seed * 2 + 1) {}
    uint32_t next() override {
        state ^= state >> 12, state ^= state << 25, state ^= state >> 27;
        return uint32_t((state * 0x2545f4914f6cdd1dull) >> 32);
    }
};

// A scalar of any kind: ordinary values, zeros, infinities, NaN, denormals,
// the extremes, the large substitute L, or any bit pattern of a float.
template <class T>
T any_scalar(uint32_t w) {
    using L = std::numeric_limits<T>;
    constexpr T large = dsp::precision<T>::large;
    const T special[] = {
        0,        -T(0),    L::quiet_NaN(), L::infinity(), -L::infinity(), L::denorm_min(),
        L::min(), L::max(), L::lowest(),    large,         -large,         T(1e-30)};
    const uint32_t v = w >> 2, bits = v | w << 30;
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return w % 4 == 0 ? special[v % 12] : w % 4 == 1 ? T(f) : T(int32_t(v % 20001) - 10000) / 1000;
}

// The arguments of one call.
template <class T>
struct args {
    sig<T> *x, *y, *z, *p, *w, *r, *h;  // records (they may alias when hostile)
    dspf_signal *f;                     // single-precision result
    T *arr, *out, *aux;                 // caller arrays of an points (2an scalars if acplx)
    int *ints;                          // as many ints as arr has scalars
    int an, acplx;
    T v;          // scalar result
    int iv;       // integer result
    chooser *ch;  // null: the representative values

    int i(int v) const {
        if (!ch) return v;
        const uint32_t u = ch->next(), w = u >> 3;
        const int extreme[] = {INT_MIN, INT_MAX, -1, 0, 1, 2, 1 << 20};
        const int choice[] = {int(w % 70) - 5, int(ch->next()), extreme[w % 7], v ^ int(w & 0xfff),
                              v + int(w % 7) - 3};
        return u % 8 < 5 ? choice[u % 8] : v;
    }
    T s(T v) const {
        if (!ch) return v;
        const uint32_t u = ch->next();
        return u % 2 ? v : any_scalar<T>(u >> 1);
    }
    // Scalars in each caller array.
    int64_t scalars() const { return an > 0 ? int64_t(an) * (acplx ? 2 : 1) : 0; }
    // An index within the arrays: of a scalar (at) or of a complex point (pt).
    int at(int v) const { return ch ? int(ch->next() % (scalars() + 1)) : v; }
    int pt(int v) const { return ch ? int(ch->next() % (scalars() / 2 + 1)) : v; }
    // Whether a rows x cols complex matrix fits the arrays (or is refused
    // before anything is read: a size not above 0).
    bool fits(int64_t rows, int64_t cols) const {
        return rows <= 0 || cols <= 0 || rows * cols <= scalars() / 2;
    }
    // Fills a record (its n and cplx set) with a tone (kind 0, 2: complex)
    // or a low-pass filter (1).
    int gen(sig<T> *r, int kind) const {
        if (kind == 1) return pick<T>(dspfc_fir, dspc_fir)(r, 3, s(T(0.2)), 0);
        r->cplx = kind == 2;
        return pick<T>(dspfc_cexp, dspc_cexp)(r, s(T(0.05)), 0);
    }
    // x in blocks of i(5) points through a filter (0), the decimation (1) or
    // the half-band filter (2), carrying h from block to block, into r.
    int stream(int op) const {
        if (h == x || r == x || h == r || h == p || r == p) return 0;  // no block may move
        const int64_t n = x->n > 0 ? x->n : 0, step = std::max(1, i(5));
        int status = 0;
        for (int64_t at = 0; at < n; at += step) {
            sig<T> block = *x;
            block.data = x->data + (x->cplx ? 2 : 1) * at, block.alloc = 0;
            block.n = int32_t(std::min(step, n - at));
            status |= op == 0   ? pick<T>(dspfd_fir, dspd_fir)(&block, r, p, h)
                      : op == 1 ? pick<T>(dspfd_deci, dspd_deci)(&block, r, 3, h)
                                : pick<T>(dspfd_hwfilt, dspd_hwfilt)(&block, r, nullptr, h);
        }
        return status;
    }
    // The number of outputs wanted, put in r's n unless r is also one of
    // the inputs (whose n counts its stored points).
    void want(sig<T> *r, int n, std::initializer_list<const sig<T> *> inputs) const {
        if (std::find(inputs.begin(), inputs.end(), r) == inputs.end()) r->n = i(n);
    }
    // The streaming resampler set up (coef mode i(0), fine stage i(1)), then
    // x in blocks of i(7) points through a state into r with z as scratch,
    // or (blocks false) x alone in place with no state or scratch; both
    // records destroyed whatever failed.
    int resampler(bool blocks) const {
        using TypeParam = T;
        std::conditional_t<std::is_same_v<T, float>, dspfh_rsmp_coef, dsph_rsmp_coef> coef;
        std::conditional_t<std::is_same_v<T, float>, dspfh_rsmp_state, dsph_rsmp_state> state;
        DSP(h_rsmp_coef_init)(&coef), DSP(h_rsmp_state_init)(&state);
        int status = DSP(h_rsmp_coef_alloc)(&coef, i(0));
        if (!status) status = DSP(h_rsmp_coef_setup)(&coef, s(1), i(1), i(0));
        if (!status && !blocks) status = DSP(h_rsmp)(x, x, nullptr, &coef, nullptr);
        if (!status && blocks) {
            status = DSP(h_rsmp_state_alloc)(&coef, &state, x->cplx) ||
                     DSP(h_rsmp_state_reset)(&coef, &state);
            if (r == x || z == x)
                return DSP(h_rsmp_state_destroy)(&state) | DSP(h_rsmp_coef_destroy)(&coef);
            const int64_t n = x->n > 0 ? x->n : 0, step = std::max(1, i(7));
            for (int64_t at = 0; at < n && !status; at += step) {
                sig<T> block = *x;
                block.data = x->data + (x->cplx ? 2 : 1) * at, block.alloc = 0;
                block.n = int32_t(std::min(step, n - at));
                r->n = block.n;
                status = DSP(h_rsmp)(&block, r, z, &coef, &state);
            }
        }
        DSP(h_rsmp_state_destroy)(&state), DSP(h_rsmp_coef_destroy)(&coef);
        return status ? -1 : 0;
    }
    // A long filter (through the FFT) over a long block in place, with a
    // complex history.
    int fir_long() const {
        r->n = i(300), p->n = i(60);
        return gen(r, 0) || gen(p, 1) ? -1 : pick<T>(dspfd_fir, dspd_fir)(r, r, p, z);
    }
    // One filter over a complex block, a real block, the complex block again.
    // The transform cache keeps one key for the spectra of both kinds, so the
    // real block finds no spectrum of its kind (-1, ignored) and the last
    // block reuses the first one's spectrum, even after a failed first block.
    int fir_blocks() const {
        r->n = h->n = i(200), p->n = i(50);
        if (gen(r, 2) || gen(h, 0) || gen(p, 1)) return -1;
        const auto fir = pick<T>(dspfd_fir, dspd_fir);
        const int status = fir(r, w, p, z);
        if (status && (w == r || w == h || w == p)) return -1;  // w was an input
        fir(h, w, p, nullptr);
        return status | fir(r, w, p, nullptr) ? -1 : 0;
    }
    // The product of complex matrices from arr (left) and arr or out
    // (right) into `to`, when its sizes fit the arrays.
    int matrix(int rows, int inner, int cols, T *to) const {
        if (!fits(rows, inner) || !fits(inner, cols) || !fits(rows, cols)) return 0;
        if constexpr (std::is_same_v<T, double>)
            return MatrixMult(arr, to == out ? arr : out, to, rows, inner, cols) < 0 ? -1 : 0;
        return 0;
    }
    // The inverse of the n x n complex matrix in arr, in place.
    int inverse(int n) const {
        if constexpr (std::is_same_v<T, double>)
            if (fits(n, n)) return ::invert(arr, n) ? 0 : -1;
        return 0;
    }
    // Circular interpolation of the m points of arr at frequencies 0 .. m-1
    // (in aux, the query frequencies behind them) into `to`.
    int interpolate(int m, int q, T *to) const {
        if (m + q > scalars()) return 0;
        for (int j = 0; j < m; ++j) aux[j] = T(j);
        for (int j = 0; j < q; ++j) aux[m + j] = s(std::fmod(T(j) * T(1.37), T(m > 1 ? m - 1 : 1)));
        if constexpr (std::is_same_v<T, double>)
            return CircularInterpolation(aux, arr, m, aux + m, to, q);
        return 0;
    }
    // Sets the point count of r and grows it keeping its points.
    int regrow(sig<T> *r, int m) const {
        const int n = r->n, k = r->cplx;
        r->n = m;
        return pick<T>(dspf_realloc, dsp_realloc)(r, n, k);
    }
};

// The records and arrays of one call. Representative: x real 16 points, y
// complex 16, z complex 9 (a half spectrum), p real 12, w real 8 in a
// caller's array, r and h empty, f empty; arr and out 16 real points. Hostile:
// random shapes (negative, empty, odd, powers of two, up to 4999 points),
// kinds, spacings and samples, owned storage or a caller's array of exactly
// the needed size, and records that stand for one another.
template <class T>
class scene {
 public:
    static constexpr int records = 7;
    sig<T> rec[records];
    dspf_signal single;
    args<T> a;

    explicit scene(chooser *ch = nullptr) {
        a = args<T>{};
        a.ch = ch;
        sig<T> **slot[records] = {&a.x, &a.y, &a.z, &a.p, &a.w, &a.r, &a.h};
        if (!ch) {
            const int n[records] = {16, 16, 9, 12, 8, 0, 0}, cplx[records] = {0, 1, 1, 0, 0, 0, 0};
            const T delta[records] = {T(0.5), T(0.25), T(2), 1, 1, 1, 1};
            for (int k = 0; k < records; ++k) {
                make(rec[k], n[k], cplx[k], delta[k], k == 4 ? 0 : 1, 0, 0);
                *slot[k] = &rec[k];
            }
            make(single, 0, 0, 1.0f, 1, 0, 0);
            array(16, 0);
        } else {
            for (int k = 0; k < records; ++k) hostile(rec[k]);
            for (int k = 0; k < records; ++k)
                *slot[k] = ch->next() % 5 ? &rec[k] : &rec[ch->next() % records];
            hostile(single);
            array(shape(ch->next()), ch->next() & 1);
        }
        a.f = &single;
        if constexpr (std::is_same_v<T, float>)
            if (ch && ch->next() % 5 == 0) a.f = a.x;
    }
    ~scene() {
        for (sig<T> &r : rec) pick<T>(dspf_destroy, dsp_destroy)(&r);
        dspf_destroy(&single);
        for (void *b : caller) delete[] static_cast<char *>(b);
    }
    scene(const scene &) = delete;
    scene &operator=(const scene &) = delete;

    // Scalars of a record that can be read: its storage, owned or the caller's.
    template <class R>
    int64_t readable(const R &r) const {
        if (!r.data || r.n <= 0) return 0;
        const int64_t need = r.cplx ? 2 * int64_t(r.n) : r.n;
        int64_t held = r.alloc;
        for (size_t k = 0; k < caller.size(); ++k)
            if (r.alloc <= 0 && caller[k] == static_cast<const void *>(r.data)) held = held_by[k];
        return std::max<int64_t>(0, std::min(need, held));
    }

 private:
    std::vector<void *> caller;
    std::vector<int64_t> held_by;

    static int shape(uint32_t u) {
        const uint32_t v = u >> 4;
        const int choice[] = {-int(v % 4) - 1, int(v % 4), 1 << v % 11, 1 << v % 13, int(v % 5000)};
        return u % 10 < 5 ? choice[u % 10] : int(v % 300);
    }

    template <class U>
    U *caller_array(int64_t count) {
        if (count <= 0) return nullptr;
        U *b = new U[size_t(count)];
        caller.push_back(b);
        held_by.push_back(count);
        return b;
    }

    // A record of n points, owned (with `extra` spare points) or in a
    // caller's array, with samples from `seed` (0: the representative ones).
    template <class R, class U = std::remove_pointer_t<decltype(R::data)>>
    void make(R &r, int n, int cplx, U delta, int owned, int extra, uint32_t seed) {
        pick<U>(dspf_init, dsp_init)(&r);
        const int64_t count = (cplx ? 2 : 1) * (int64_t(n > 0 ? n : 0) + extra);
        r.cplx = cplx;
        if (owned) {
            r.n = int32_t(count / (cplx ? 2 : 1));
            pick<U>(dspf_alloc, dsp_alloc)(&r);
        } else {
            r.data = caller_array<U>(count);
        }
        random_chooser samples(seed);
        const uint32_t oddity = seed >> 28;
        for (int64_t i = 0; i < count; ++i) {
            const uint32_t u = samples.next();
            r.data[i] = !seed             ? U(int(i * 37 % 11) - 5) / 3
                        : u % 64 < oddity ? any_scalar<U>(u >> 6)
                                          : U(int32_t(u >> 6) % 8001 - 4000) / U(1000);
        }
        r.n = n;
        r.delta = delta;
        if (!owned) r.alloc = -int32_t(seed % 3);
    }

    template <class R, class U = std::remove_pointer_t<decltype(R::data)>>
    void hostile(R &r) {
        const uint32_t u = a.ch->next();
        const U delta = u % 3 ? U(0.5) : any_scalar<U>(a.ch->next());
        make<R>(r, shape(a.ch->next()), int(u >> 2 & 1), delta, u >> 3 & 3 ? 1 : 0, int(u >> 5 & 3),
                a.ch->next() | 1);
    }

    void array(int n, int cplx) {
        const int64_t count = (cplx ? 2 : 1) * int64_t(n > 0 ? n : 0);
        a.an = n, a.acplx = cplx;
        a.arr = caller_array<T>(count);
        a.out = caller_array<T>(count);
        a.aux = caller_array<T>(count);
        a.ints = caller_array<int>(count);
        for (int64_t i = 0; i < count; ++i)
            a.arr[i] = T(int(i * 37 % 11) - 5) / 3, a.out[i] = a.aux[i] = T(0), a.ints[i] = 0;
        if (a.ch)
            for (int64_t i = 0; i < count; ++i) a.arr[i] = any_scalar<T>(a.ch->next());
    }
};

// One row: the exports it calls, the call, and whether it goes through the
// window cache (which keeps the key of a generation that failed) or meets the
// FIR transform cache's one key for both kinds of spectrum after a failure.
template <class T>
struct call {
    const char *names;
    int (*run)(args<T> &);
    bool cached;
};

template <class T>
std::vector<call<T>> calls() {
    using TypeParam = T;
    using A = args<T>;
    // clang-format off
#define CALL(name, ...) {"*" #name, [](A &c) { return DSP(name)(__VA_ARGS__); }, false}
#define CACHED(name, ...) {"*" #name, [](A &c) { return DSP(name)(__VA_ARGS__); }, true}
#define RAW(name, ...) call<T>{name, [](A &c) { return __VA_ARGS__; }, false}
#define VOID(...) (__VA_ARGS__, 0)
#define KEEP(...) ((c.iv = __VA_ARGS__) < 0 ? -1 : 0)
    std::vector<call<T>> t = {
        // Records and utilities.
        {"*_alloc", [](A &c) { c.x->n = c.i(40); return DSP(_alloc)(c.x); }, false},
        {"*_realloc", [](A &c) { return c.regrow(c.x, c.i(40)); }, false},
        {"*_realloc", [](A &c) { return c.regrow(c.w, c.i(20)); }, false},
        CALL(_append, c.x, c.y), CALL(_append, c.z, c.z), CALL(_copy, c.r, c.y),
        CALL(_copy_at_most, c.r, c.y, c.i(5)), CALL(_cmp, c.x, c.y, c.s(T(0.1)), &c.iv),
        CALL(u_subvec, c.x, c.r, c.i(2), c.i(9)), CALL(u_tof, c.y, c.f), CALL(u_mag, c.y, c.r),
        CALL(u_magsq, c.y, c.y), CALL(u_sqrt, c.w, c.r),
        // Element-wise operations: widening, in place and on a caller's array.
        CALL(i_real, c.y), CALL(i_imag, c.y), CALL(i_rtoc, c.w), CALL(i_rtop, c.x),
        CALL(i_ptor, c.y), CALL(i_mag, c.y), CALL(i_magsq, c.y), CALL(i_phase, c.y),
        CALL(i_conj, c.y), CALL(i_timesi, c.x), CALL(i_neg, c.y), CALL(i_offset, c.x, c.s(1.5)),
        CALL(i_scale, c.y, c.s(2)), CALL(i_cscale, c.x, c.s(1), c.s(2)), CALL(i_recip, c.x),
        CALL(i_sqrt, c.y), CALL(i_square, c.x), CALL(i_exp, c.y), CALL(i_exp10, c.x),
        CALL(i_log, c.y), CALL(i_log10, c.x), CALL(i_db, c.y, c.s(20)), CALL(i_sinh, c.x),
        CALL(i_cosh, c.x), CALL(i_asin, c.x), CALL(i_acos, c.x), CALL(i_besy0, c.x),
        CALL(i_besy1, c.x), CALL(i_addcos, c.x, c.i(1), c.s(T(0.1)), c.s(1), c.s(0)),
        {"*i_limit", [](A &c) {
            if constexpr (std::is_same_v<T, float>)
                return dspfi_limit(c.x, 0, c.s(-1), c.s(1), &c.iv);
            else return dspi_limit(c.x, c.s(-1), c.s(1), &c.iv); }, false},
        CALL(i_rev, c.x), CALL(i_shift, c.x, c.i(3)), CALL(i_swap_halves, c.y),
        CALL(i_swap_halves2, c.x), CALL(i_zero, c.x), CALL(i_zpad, c.x, c.i(40)),
        CALL(i_zpad2, c.y, c.i(40), c.i(0x100)), CALL(i_unzpad, c.y, c.i(5), c.i(0x300)),
        CALL(i_zinter, c.w), CALL(i_sort, c.y), CALL(i_integ, c.x), CALL(i_differ, c.y),
        CALL(i_pdiffer, c.x), CALL(i_edge, c.x, c.i(3), c.s(0)), CALL(i_unwrap, c.x),
        CALL(i_unwrap_wnd, c.x, c.i(3)), CALL(i_recon, c.z), CALL(i_orecon, c.z, c.i(1)),
        // Transforms: tables, chirp-z and DCT caches, widening.
        CALL(i_fft, c.x, c.i(0)), CALL(i_bitrev, c.x), CALL(i_bitrev_scale, c.y),
        {"cf_*i_fft", [](A &c) {
            return pick<T>(cf_dspfi_fft, cf_dspi_fft)(c.arr, c.an, c.acplx, c.i(0)); }, false},
        CALL(i_rfft, c.x), CALL(i_irfft, c.z), CALL(i_dft, c.p, c.i(0)), CALL(i_rdft, c.p),
        CALL(i_irdft, c.z, c.i(1)), CALL(i_dct, c.p, c.i(0)), CALL(i_dct, c.x, c.i(1)),
        CALL(i_hilbert, c.p), CALL(i_analytic, c.x),
        // Windows and the windowed spectrum.
        CACHED(i_window, c.x, c.i(DSP_WINDOW_KAISER70), c.i(0)),
        CACHED(i_window2, c.y, c.i(DSP_WINDOW_HANN), c.i(9), c.s(T(7.5))),
        CALL(i_window_cos, c.x, c.p), CALL(i_window_gauss, c.x, c.s(T(0.2)), c.i(0)),
        CALL(i_window_kaiser, c.y, c.s(8), c.i(1)),
        CALL(i_window_sinc, c.x, c.s(3), c.s(2), c.i(4)),
        CALL(i_window_tukey, c.x, c.s(T(0.3)), c.i(0)),
        CALL(i_window_fir, c.x, c.i(101), c.s(T(0.1))),
        CALL(_window_scale, &c.v, c.i(DSP_WINDOW_KAISER80), c.i(1), c.i(64)),
        CALL(_window2_scale, &c.v, c.i(DSP_WINDOW_HANN), c.i(8), c.i(64), c.s(20)),
        CALL(_window_enbw, &c.v, c.i(DSP_WINDOW_GAUSS70), c.i(64)),
        CALL(_window2_enbw, &c.v, c.i(DSP_WINDOW_FLATTOP), c.i(64), c.s(30)),
        CACHED(h_fft, c.x, c.r, c.h, c.i(DSP_WINDOW_GAUSS70), c.i(0x200), c.i(64)),
        {"cf_*h_fft", [](A &c) { return pick<T>(cf_dspfh_fft, cf_dsph_fft)(
            c.arr, c.out, c.an, c.acplx, c.i(DSP_WINDOW_KAISER90), c.i(1), c.i(0)); }, true},
        // Binary operations: in place, padded, widening the result.
        CALL(b_add, c.x, c.y, c.r), CALL(b_sub, c.x, c.p, c.x), CALL(b_mul, c.x, c.y, c.x),
        CALL(b_div, c.y, c.x, c.y), CALL(b_conj_mul, c.y, c.y, c.r),
        CALL(b_avg_add, c.x, c.y, c.r, c.s(T(0.5))), CALL(b_max, c.x, c.y, c.r),
        CALL(b_min, c.y, c.x, c.x), CALL(b_pmul, c.x, c.p, c.x), CALL(b_ritoc, c.x, c.x, c.x),
        CALL(bs_dot, c.x, c.y, c.r),
        // Statistics and peak search, into another record and in place.
        CALL(s_sum, c.y, c.r), CALL(s_mean, c.x, c.x), CALL(s_magsq_sum, c.y, c.r),
        CALL(s_rms, c.x, c.r), CALL(s_median, c.y, c.r), CALL(s_max, c.y, c.y),
        CALL(s_min, c.x, c.r), CALL(s_gmean, c.y, c.r), CALL(s_hmean, c.x, c.r),
        CALL(s_pop_var, c.y, c.r), CALL(s_samp_var, c.x, c.r), CALL(s_pop_stddev, c.x, c.x),
        CALL(s_samp_stddev, c.y, c.r), CALL(s_skew, c.x, c.r), CALL(s_excess, c.x, c.r),
        CALL(s_hist, c.x, c.x, c.s(-1), c.s(T(0.5)), c.i(6)),
        CALL(s_peak, c.y, c.y, c.i(0x100), c.i(0)),
        CACHED(h_dft, c.z, c.r, c.h, c.i(DSP_WINDOW_HANN), c.i(0x200), c.i(12)),
        CACHED(h_avg, c.x, c.r, c.h, c.i(DSP_WINDOW_HANN), c.i(0x200), c.i(8), c.i(4)),
        // Regression, polynomials (roots of at most 40 coefficients: the eigenvalue work grows as
        // n^3), interpolation (knots made increasing by the line generator).
        CALL(s_lin_regres, c.x, c.r), CALL(s_lin_regres2, c.x, c.x, c.x),
        CALL(s_psolve, c.x, c.x, c.r, c.i(3)), CALL(s_pcsolve, c.x, c.y, c.y, c.i(2)),
        CALL(s_peval, c.p, c.y, c.r), RAW("*i_proots", (c.p->n = std::min(c.p->n, 40), DSP(i_proots)(c.p))), CALL(i_pztoc, c.z),
        CALL(_interp, c.x, c.p, c.r, c.i(1)), CALL(_cspline, c.y, c.y, c.i(2)),
        RAW("*b_cspline_2d", (DSP(c_line)(c.p, c.s(1), 0) ? -1 : DSP(b_cspline_2d)(c.p, c.p, c.r, c.i(1)))),
        RAW("*b_inter", (DSP(c_line)(c.p, c.s(1), 0) ? -1 : DSP(b_inter)(c.p, c.p, c.x, c.r, c.i(2)))),
        // Generators, FIR design and resampling kernels: sizing, widening, aliased description.
        CALL(c_cos, c.w, c.s(T(0.1)), c.s(T(0.3))), CALL(c_line, c.w, c.s(T(0.5)), c.s(-1)),
        RAW("*c_cexp", (c.r->n = c.i(9), c.r->cplx = 1, DSP(c_cexp)(c.r, c.s(T(0.2)), 0))),
        CALL(c_fir, c.w, c.i(3), c.s(T(0.2)), c.s(0)), CALL(c_fir, c.y, c.i(9), c.s(0), c.s(0)),
        CALL(c_fir2, c.r, c.i(101)), CALL(c_rsmp_cos, c.w, c.p), CALL(c_rsmp_pcos, c.x, c.x),
        CALL(c_rsmp, c.w, c.i(3)),
        // Filtering: history, internal scratch and state, the transform cache, correlation.
        CALL(d_fir, c.x, c.r, c.p, c.h), RAW("*d_fir", c.stream(0)), RAW("*d_fir", c.fir_long()),
        {"*d_fir", [](A &c) { return c.fir_blocks(); }, true},
        CALL(d_sfir, c.x, c.x, c.w, c.i(1), c.i(0), c.h),
        CALL(d_sfir, c.y, c.r, c.z, c.i(0), c.i(1), c.h),
        CALL(d_deci, c.y, c.y, c.i(3), c.h), CALL(d_deci, c.x, c.r, c.i(2), nullptr),
        RAW("*d_deci", c.stream(1)), RAW("*d_hwfilt", c.stream(2)),
        CALL(d_hwfilt, c.x, c.r, nullptr, c.h), CALL(d_hwfilt, c.y, c.y, nullptr, nullptr),
        CALL(i_hwfilt, c.x, nullptr),
        CALL(h_corr, c.x, c.y, c.r, c.h, c.i(5), c.i(1)),
        CALL(b_corr, c.y, c.y, c.y, nullptr, c.i(16)), CALL(b_corr, c.x, c.x, c.x, c.x, c.i(3)),
        // Polyphase resampling (y.n on entry: the outputs wanted) and the streaming resampler.
        RAW("*d_rsmp", (c.p->n = c.i(34), DSP(c_rsmp)(c.p, c.i(2)) ? -1 : (c.want(c.r, 40, {c.x, c.p, c.h}), DSP(d_rsmp)(c.x, c.r, c.i(1), c.p, c.s(T(0.9)), c.h)))),
        RAW("*d_rsmp2", (c.want(c.r, 40, {c.y, c.h}), DSP(d_rsmp2)(c.y, c.r, c.i(0), c.i(4), c.s(T(1.1)), c.h))),
        CALL(d_rsmp2, c.x, c.x, c.i(1), c.i(2), c.s(T(0.5)), nullptr),
        RAW("*h_rsmp", c.resampler(true)), RAW("*h_rsmp", c.resampler(false)),
        RAW("*h_rsmp_coef_init", c.resampler(false)), RAW("*h_rsmp_coef_alloc", c.resampler(false)),
        RAW("*h_rsmp_coef_setup", c.resampler(false)), RAW("*h_rsmp_coef_destroy", c.resampler(false)),
        RAW("*h_rsmp_state_init", c.resampler(true)), RAW("*h_rsmp_state_alloc", c.resampler(true)),
        RAW("*h_rsmp_state_reset", c.resampler(true)), RAW("*h_rsmp_state_destroy", c.resampler(true)),
        // Trace kernels on caller arrays: VOID (no status), KEEP (an index or count, kept in iv;
        // a negative count is the status -1).
        RAW("vfp*bMul1", VOID(VFPB(Mul1)(c.s(2), c.arr, c.at(16)))),
        RAW("vfp*bMul2", VOID(VFPB(Mul2)(c.s(T(0.5)), c.arr, c.at(16)))),
        RAW("vfp*b_ScaleToInt", VOID(VFPB(_ScaleToInt)(c.arr, c.at(16), c.s(-2), c.s(2), c.ints, c.i(0), c.i(9)))),
        RAW("vfp*b_ScaleToInt2", VFPB(_ScaleToInt2)(c.arr, c.at(16), c.s(-2), c.s(2), c.ints, c.i(-5), c.i(5))),
        RAW("vfp*b_ScaleToFP", VOID(VFPB(_ScaleToFP)(c.arr, c.at(16), c.s(-2), c.s(2), c.out, c.s(0), c.s(1)))),
        RAW("vfp*_FindMax", KEEP(VFP(_FindMax)(c.arr, c.at(0), c.at(16)))),
        RAW("vfp*_FindMin", KEEP(VFP(_FindMin)(c.arr, c.at(1), c.at(15)))),
        RAW("vfp*_FindMax2", KEEP(VFP(_FindMax2)(c.arr, c.at(0), c.at(16), c.at(4), c.at(9)))),
        RAW("vfp*_FindMin2", KEEP(VFP(_FindMin2)(c.arr, c.at(2), c.at(16), c.at(2), c.at(5)))),
        RAW("vfp*_ExpandLinear", VOID(VFP(_ExpandLinear)(c.out, c.at(16), c.s(1), c.s(5)))),
        RAW("vfp*_ExpandLog", VOID(VFP(_ExpandLog)(c.out, c.at(16), c.s(1), c.s(1000)))),
        RAW("vfp*_Smooth", KEEP(VFP(_Smooth)(c.arr, c.out, c.at(16), c.at(2), c.at(14), c.i(5), c.i(0)))),
        RAW("vfp*_Smooth", KEEP(VFP(_Smooth)(c.arr, c.arr, c.at(16), c.at(0), c.at(16), c.i(3), c.i(1)))),
        RAW("vfp*_SmoothCpx", KEEP(VFP(_SmoothCpx)(c.arr, c.arr, c.pt(8), c.pt(1), c.pt(7), c.i(3)))),
        RAW("vfp*_UnwrapPhase", VOID(VFP(_UnwrapPhase)(c.arr, c.pt(0), c.pt(8), c.out))),
        RAW("vfp*_FormatBuffer", VOID(VFP(_FormatBuffer)(c.i(3), c.arr, c.out, c.pt(0), c.pt(8)))),
        RAW("vfp*_CircleFit", VOID(VFP(_CircleFit)(c.arr, c.aux, c.arr, c.out, c.out, c.pt(0), c.pt(8)))),
    };
    if constexpr (std::is_same_v<T, double>) {
        // Calibration (double arrays only), with sizes that fit the arrays.
        t.push_back(RAW("MatrixMult", c.matrix(c.i(2), c.i(2), c.i(4), c.out)));
        t.push_back(RAW("MatrixMult", c.matrix(c.i(3), c.i(2), c.i(1), c.arr)));
        t.push_back(RAW("invert", c.inverse(c.i(2))));
        t.push_back(RAW("Compute1PortTerms", Compute1PortTerms(c.arr, c.out, c.aux, c.arr, c.out, c.aux, c.pt(0), c.pt(8))));
        t.push_back(RAW("CircularInterpolation", c.interpolate(c.pt(5), c.pt(3), c.out)));
        t.push_back(RAW("CircularInterpolation", c.interpolate(c.pt(5), c.pt(3), c.arr)));
    }
    if constexpr (std::is_same_v<T, float>) {
        t.push_back({"*i_besi0", [](A &c) { return dspfi_besi0(c.x); }, false});
        t.push_back({"cf_dspfh_fft_fast_but_dirty", [](A &c) { return cf_dspfh_fft_fast_but_dirty(
            c.arr, c.out, c.an, c.acplx, c.i(DSP_WINDOW_HANN), c.i(0x100), c.i(0)); }, true});
    }
    // clang-format on
#undef CALL
#undef CACHED
#undef RAW
#undef VOID
#undef KEEP
    return t;
}

// Exports that take no record and allocate nothing (the floating-point
// control changes the thread's rounding and traps: no hostile calls).
inline const char *const allocation_free[] = {
    "*_init",     "*_destroy",       "*_lib_init", "*_lib_alloc",       "*_lib_realloc",
    "*_lib_free", "*_free_internal", "*_version",  "*_window_from_str", "*_window_to_str",
    "get_fpscr",  "set_fpscr",       "set_runfast"};

// The export names of a row's name pattern in one precision.
template <class T>
std::string export_name(const char *pattern) {
    std::string s(pattern);
    const size_t star = s.find('*');
    if (star == std::string::npos) return s;
    const bool single = std::is_same_v<T, float>;
    const std::string by =
        s.rfind("vfp*", 0) == 0 ? (single ? "s" : "d") : (single ? "dspf" : "dsp");
    return s.substr(0, star) + by + s.substr(star + 1);
    return s;
}

}  // namespace dsp_test
