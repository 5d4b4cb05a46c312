// Polyphase resampling.
//
// The walk runs over the samples s[-W ..] (s[j] for j < 0 from the history):
// idx is the first sample of the current window, pos the read position
// relative to it. Before each output the whole samples of pos are consumed
// (pos -= 1, idx += 1 while pos > 0); an output is made while its window
// s[idx .. idx + W - 1] lies within the block (idx <= n - W), and pos then
// advances by the step. At the end the window start and the rest of pos go
// into the history, so that the next block continues the same walk.
//
// Taps are read either straight from the kernel (tap t of phase i at
// 1 + i + t P: W loads P apart) or, when the block makes enough outputs to
// pay for it, from the kernel laid out by phase: row i holds the W taps of
// phase i side by side (rows 0 .. P), which turns an output into short
// contiguous runs the compiler vectorises. Both give the same bits, since the
// taps are summed in the same order either way.
#include "filter/resample.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "frame/prepare.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"
#include "generate/kernel.hpp"

namespace dsp {

namespace {

// Kernel points of the stored kernels as the resampler builds them: 1024
// phases per tap (256 for kernel 2).
constexpr int32_t stored_points[5] = {8194, 13314, 2050, 10242, 13314};

template <class T>
struct rsmp_cache {
    // The stored kernels laid out by phase, built on first use.
    static inline signal_t<T> stored[5]{};
    static inline bool stored_ready[5]{};
    // The caller's kernel last laid out (its points as given) and its rows.
    static inline signal_t<T> key{}, rows{};
    static inline bool keyed = false;
    // The samples under the windows that reach into the history.
    static inline signal_t<T> head{};
};

// Where tap t of phase i is: row i starts at base + i * row_step and its taps
// are tap_step apart.
template <class T>
struct layout {
    const T *base;
    int64_t W, P;
    bool rows;  // laid out by phase: row_step W, tap_step 1; else 1 and P
};

// Coefficient t of one output: tap t of `row`, or (Interp) the value r of the
// way to the same tap of the next phase, `next` scalars on.
template <class T, bool Rows, bool Interp>
struct taps {
    const T *row;
    int64_t tap_step, next;
    T r;
    T operator()(int64_t t) const {
        const T *p = row + (Rows ? t : t * tap_step);
        if constexpr (Interp)
            return p[0] + r * (p[next] - p[0]);
        else
            return p[0];
    }
};

// out = sum_t s[t] c(t) over the W taps of S-scalar points: four partial sums
// over the taps in groups of four, added as (a0 + a1) + (a2 + a3), then the
// taps past the last group.
template <int S, class T, class C>
inline void dot(const T *s, int64_t W, const C &c, T *out) {
    T a[S][4] = {};
    int64_t t = 0;
    for (; t + 4 <= W; t += 4) {
        const T c0 = c(t), c1 = c(t + 1), c2 = c(t + 2), c3 = c(t + 3);
        for (int p = 0; p < S; ++p) {
            a[p][0] += s[S * t + p] * c0;
            a[p][1] += s[S * (t + 1) + p] * c1;
            a[p][2] += s[S * (t + 2) + p] * c2;
            a[p][3] += s[S * (t + 3) + p] * c3;
        }
    }
    for (int p = 0; p < S; ++p) {
        T v = (a[p][0] + a[p][1]) + (a[p][2] + a[p][3]);
        for (int64_t u = t; u < W; ++u) v += s[S * u + p] * c(u);
        out[p] = v;
    }
}

// The same sum for real samples and taps laid out by phase, on four-lane
// vectors: lane j is the partial sum a[j] above, so the bits are the same.
template <class T>
struct lanes {
    typedef T type __attribute__((vector_size(4 * sizeof(T))));
};

template <bool Interp, class T>
inline T dot_rows(const T *s, const T *row, int64_t W, int64_t next, T r) {
    using V = typename lanes<T>::type;
    V acc = {}, c, x, d;
    int64_t t = 0;
    for (; t + 4 <= W; t += 4) {
        std::memcpy(&c, row + t, sizeof c);
        std::memcpy(&x, s + t, sizeof x);
        if constexpr (Interp) {
            std::memcpy(&d, row + next + t, sizeof d);
            c = c + r * (d - c);
        }
        acc += x * c;
    }
    T v = (acc[0] + acc[1]) + (acc[2] + acc[3]);
    for (; t < W; ++t) v += s[t] * (Interp ? row[t] + r * (row[next + t] - row[t]) : row[t]);
    return v;
}

template <class T>
struct walker {
    T pos;
    int64_t idx, last;  // idx <= last keeps the window within the block

    // Consumes the whole samples of pos. False when that would take the
    // window past the block: idx stops at last and pos keeps the rest. A
    // remainder that would round to -1 is left unconsumed (pos then stays a
    // rounding above 0), so that a carried position is always above -1.
    bool consume() {
        if (!(pos > T(0))) return true;
        if (pos <= T(1) && idx < last) {  // the usual single sample
            const T rest = pos - T(1);
            if (rest > T(-1)) pos = rest, ++idx;
            return true;
        }
        const int64_t avail = last - idx;
        if (double(pos) > double(avail)) {
            pos -= T(avail);
            idx = last;
            return false;
        }
        int64_t k = int64_t(pos);  // rounded up below: the ceiling without a library call
        if (T(k) < pos) ++k;
        T rest = pos - T(k);
        if (rest <= T(-1)) rest = pos - T(--k);
        pos = rest;
        idx += k;
        return true;
    }
};

// Outputs into out until `cap` or the end of the block. head holds s[-W ..]
// for the windows that start in the history, src the block.
// Wc: the width known when compiling (the stored kernels' 8, 10 and 13), or
// 0.
template <int S, bool Rows, bool Interp, int Wc = 0, class T>
int64_t outputs(walker<T> &w, const layout<T> &k, const T *head, const T *src, T step, int64_t cap,
                T *out) {
    const int64_t W = Wc ? Wc : k.W, P = k.P, row_step = Rows ? W : 1, tap_step = Rows ? 1 : P;
    const int64_t next = row_step;
    int64_t made = 0;
    while (made < cap && w.consume()) {
        T f = -w.pos * T(P);
        if (!(f > T(0))) f = T(0);  // a position a rounding above 0
        const int64_t i = f < T(P) ? int64_t(f) : P;
        const T *row = k.base + i * row_step;
        const T *win = w.idx < 0 ? head + S * (w.idx + W) : src + S * w.idx;
        // Phase P (reached only by rounding, with r = 0) has no next phase.
        if constexpr (S == 1 && Rows)
            out[made] = Interp && i < P ? dot_rows<true>(win, row, W, next, f - T(i))
                                        : dot_rows<false>(win, row, W, next, T(0));
        else if (Interp && i < P)
            dot<S>(win, W, taps<T, Rows, true>{row, tap_step, next, f - T(i)}, out + S * made);
        else
            dot<S>(win, W, taps<T, Rows, false>{row, tap_step, next, T(0)}, out + S * made);
        ++made;
        w.pos += step;
    }
    return made;
}

template <int S, class T>
int64_t outputs(walker<T> &w, const layout<T> &k, bool interp, const T *head, const T *src, T step,
                int64_t cap, T *out) {
    if (S == 1 && k.rows) {
        auto by_width = [&]<int Wc>() {
            return interp ? outputs<S, true, true, Wc>(w, k, head, src, step, cap, out)
                          : outputs<S, true, false, Wc>(w, k, head, src, step, cap, out);
        };
        switch (k.W) {
            case 8:
                return by_width.template operator()<8>();
            case 10:
                return by_width.template operator()<10>();
            case 13:
                return by_width.template operator()<13>();
        }
    }
    if (k.rows)
        return interp ? outputs<S, true, true>(w, k, head, src, step, cap, out)
                      : outputs<S, true, false>(w, k, head, src, step, cap, out);
    return interp ? outputs<S, false, true>(w, k, head, src, step, cap, out)
                  : outputs<S, false, false>(w, k, head, src, step, cap, out);
}

// The most outputs a block of n points can make: the position advances by at
// least the step less its rounding per output and the window by at most
// n + 1 samples in all. Unbounded for a step lost in the rounding.
template <class T>
int64_t most_outputs(int64_t n, T step) {
    const double eps = std::numeric_limits<T>::epsilon();
    const double least = double(step) - 2 * eps * (1 + double(step));
    if (!(least > 0)) return INT32_MAX;
    return int64_t(std::min((double(n) + 2) / least + 3, double(INT32_MAX)));
}

// The kernel's taps laid out by phase into rows: rows[i W + t] = tap t of
// phase i for phases 0 .. P.
template <class T>
int lay_out(const T *taps, int64_t W, int64_t P, signal_t<T> &rows) {
    if ((P + 1) * W > INT32_MAX) return -1;
    rows.cplx = 0;
    rows.n = int32_t((P + 1) * W);
    if (alloc<T>(rows) != 0) return -1;
    for (int64_t t = 0; t < W; ++t)
        for (int64_t i = 0; i <= P; ++i) rows.data[i * W + t] = taps[i + t * P];
    return 0;
}

// The rows of a caller's kernel, laid out again only when its points differ
// from the last one's; null when the storage cannot be had.
template <class T>
const T *caller_rows(const signal_t<T> &kernel, int64_t W, int64_t P) {
    using C = rsmp_cache<T>;
    if (C::keyed && C::key.n == kernel.n &&
        std::memcmp(C::key.data, kernel.data, size_t(kernel.n) * sizeof(T)) == 0)
        return C::rows.data;
    C::keyed = false;
    if (lay_out<T>(kernel.data + 1, W, P, C::rows) != 0 || copy<T>(C::key, kernel) != 0)
        return nullptr;
    C::keyed = true;
    return C::rows.data;
}

template <class T>
int run(const signal_t<T> &x, signal_t<T> &y, int mode, const layout<T> &k, T step,
        signal_t<T> *history) {
    if (x.n < 0 || (mode != 0 && mode != 1)) return -1;
    if (same_storage<T>(history, &x) || same_storage<T>(history, &y)) return -1;
    const int64_t W = k.W, n = x.n;
    const int s = x.cplx ? 2 : 1;
    const T *src = x.data;  // before sizing: y may wrap the same array
    // No storage for more outputs than the block can make.
    if (&y != &x) y.n = int32_t(std::min<int64_t>(y.n, most_outputs(n, step)));
    signal_t<T> *r = &y, *hist = history;
    if (prepare_result<T>(x, &r, nullptr, &hist, int(W + 2), PREP_INPLACE | PREP_KEEP_N) != 0)
        return -1;
    r->delta = step * x.delta;
    walker<T> w{T(0), -W, n - W};
    if (hist) {
        w.pos = hist->data[s * W];
        if (!(w.pos > T(-1))) return -1;
    }
    // s[-W .. min(n, W - 1) - 1]: the history (or zeros), then the block's
    // first points.
    signal_t<T> &head = rsmp_cache<T>::head;
    const int64_t lead = std::min<int64_t>(n, W - 1);
    head.cplx = x.cplx ? 1 : 0;
    head.n = int32_t(W + lead);
    if (alloc<T>(head) != 0) return -1;
    if (hist)
        std::memcpy(head.data, hist->data, size_t(s * W) * sizeof(T));
    else
        std::fill(head.data, head.data + s * W, T(0));
    if (lead > 0) std::memcpy(head.data + s * W, src, size_t(s * lead) * sizeof(T));

    const int64_t cap = r->n > 0 ? r->n : 0;
    const int64_t made = s == 2 ? outputs<2>(w, k, mode == 1, head.data, src, step, cap, r->data)
                                : outputs<1>(w, k, mode == 1, head.data, src, step, cap, r->data);
    r->n = int32_t(made);
    w.consume();
    if (hist) {
        T *h = hist->data;
        const T *win = w.idx < 0 ? head.data + s * (w.idx + W) : src + s * w.idx;
        std::memcpy(h, win, size_t(s * W) * sizeof(T));
        std::fill(h + s * W, h + s * (W + 2), T(0));
        h[s * W] = w.pos;
        h[s * (W + 1)] = T(w.idx + W);
        hist->n = int32_t(W + 2);
    }
    return finish_result<T>(*r);
}

}  // namespace

template <class T>
int64_t rsmp_width(const signal_t<T> &kernel) {
    if (kernel.n < 1) return 0;
    const double w = std::floor(double(kernel.data[0]) + 0.5);
    return w != w ? 0 : int64_t(std::clamp(w, -2.0, 1073741824.0));
}

template <class T>
int rsmp(const signal_t<T> &x, signal_t<T> &y, int mode, const signal_t<T> &kernel, T step,
         signal_t<T> *history) {
    if (!(step >= T(0))) return -1;
    if (kernel.n <= 1) return copy<T>(y, x);
    const int64_t W = rsmp_width<T>(kernel);
    if (W < 1 || kernel.cplx || (kernel.n - 2) % W != 0) return -1;
    if (same_storage<T>(&kernel, &y) || same_storage<T>(history, &kernel)) return -1;
    layout<T> k{kernel.data + 1, W, (kernel.n - 2) / W, false};
    // Laying the kernel out costs about as much as reading each of its
    // points once: worth it when the outputs read more than that.
    const int64_t wanted = std::min<int64_t>(y.n, most_outputs<T>(x.n, step));
    if (wanted * W >= kernel.n && x.n >= 0 && (mode == 0 || mode == 1))
        if (const T *rows = caller_rows<T>(kernel, W, k.P)) k = {rows, W, k.P, true};
    return run<T>(x, y, mode, k, step, history);
}

template <class T>
int rsmp2(const signal_t<T> &x, signal_t<T> &y, int mode, int kernel_mode, T step,
          signal_t<T> *history) {
    using C = rsmp_cache<T>;
    if (kernel_mode < 0 || kernel_mode > 4) return -1;
    if (!(step >= T(0))) return -1;
    const int64_t W = int64_t(rsmp_stored<T>(kernel_mode).values[0]);
    const int64_t P = (stored_points[kernel_mode] - 2) / W;
    signal_t<T> &rows = C::stored[kernel_mode];
    if (!C::stored_ready[kernel_mode]) {
        signal_t<T> kernel;
        init<T>(kernel);
        kernel.n = stored_points[kernel_mode];
        const bool built = rsmp_kernel<T>(kernel, kernel_mode) == 0 &&
                           lay_out<T>(kernel.data + 1, W, P, rows) == 0;
        destroy<T>(kernel);
        if (!built) return -1;
        C::stored_ready[kernel_mode] = true;
    }
    return run<T>(x, y, mode, layout<T>{rows.data, W, P, true}, step, history);
}

template <class T>
int release_rsmp_cache() {
    using C = rsmp_cache<T>;
    for (int m = 0; m < 5; ++m) {
        C::stored_ready[m] = false;
        destroy<T>(C::stored[m]);
    }
    C::keyed = false;
    destroy<T>(C::key);
    destroy<T>(C::rows);
    return destroy<T>(C::head);
}

#define DSP_INSTANTIATE(T)                                                                 \
    template int64_t rsmp_width<T>(const signal_t<T> &);                                   \
    template int rsmp<T>(const signal_t<T> &, signal_t<T> &, int, const signal_t<T> &, T,  \
                         signal_t<T> *);                                                   \
    template int rsmp2<T>(const signal_t<T> &, signal_t<T> &, int, int, T, signal_t<T> *); \
    template int release_rsmp_cache<T>();
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
