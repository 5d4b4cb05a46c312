// The streaming resampler.
#include "filter/stream.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "elementwise/convert.hpp"
#include "elementwise/rearrange.hpp"
#include "filter/decimate.hpp"
#include "filter/fir.hpp"
#include "filter/resample.hpp"
#include "frame/prepare.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"
#include "generate/fir.hpp"
#include "generate/kernel.hpp"

namespace dsp {

namespace {

// History length of a filter given by its first half: its full length
// (2 n - 1 when odd, else 2 n) less one, not below 0.
template <class T>
int history_length(const signal_t<T> &half, int32_t odd) {
    return int(std::clamp<int64_t>(2 * int64_t(half.n) - 1 - (odd ? 1 : 0), 0, INT32_MAX));
}

// A history or phase record converted to the input's kind and padded with
// zeros to `points`.
template <class T>
int shape(signal_t<T> &r, int cplx, int points) {
    if ((r.cplx != 0) != (cplx != 0) && (cplx ? rtoc<T>(r) : real<T>(r)) != 0) return -1;
    return zpad<T>(r, points);
}

template <class T>
void free_stages(rsmp_state_t<T> &s) {
    for (int32_t i = 0; s.stage_history && s.stage_phase && i < s.stages; ++i) {
        destroy<T>(s.stage_history[i]);
        destroy<T>(s.stage_phase[i]);
    }
    std::free(s.stage_history);
    std::free(s.stage_phase);
    s.stage_history = s.stage_phase = nullptr;
    s.stages = 0;
}

// Drops the first min(skip, y.n) points of y and counts them off skip.
template <class T>
int drop(signal_t<T> &y, int32_t &skip) {
    const int32_t s = std::min(skip, y.n);
    if (s <= 0) return 0;
    if (shift<T>(y, s) != 0) return -1;
    skip -= s;
    return 0;
}

template <class T>
int chain(const signal_t<T> &x, signal_t<T> &y, signal_t<T> &scratch, const rsmp_coef_t<T> &c,
          rsmp_state_t<T> &st) {
    if (same_storage<T>(&scratch, &y)) return -1;
    const int64_t cap = std::max<int32_t>(y.n, 0);
    if (rsmp_state_alloc<T>(&c, &st, x.cplx) != 0) return -1;
    const signal_t<T> *cur = &x;
    for (int32_t i = 0; i < st.stages; ++i) {
        if (sfir<T>(*cur, scratch, c.halfband, c.halfband_odd, 0, &st.stage_history[i]) != 0 ||
            deci<T>(scratch, y, 2, &st.stage_phase[i]) != 0)
            return -1;
        cur = &y;
    }
    if (st.stages >= 1 && drop<T>(y, st.skip_in) != 0) return -1;
    if (c.fine || !approx_equal<T>(c.ratio, T(1))) {
        // Enough resampled points for cap outputs after the output skip and
        // the decimation phase.
        const double phase = std::floor(double(st.phase.data[0]) + 0.5);
        const int64_t f = phase > 0 ? int64_t(std::min(phase, double(INT32_MAX))) : 0;
        const int64_t wanted = f + 2 * (cap + std::max<int32_t>(st.skip_out, 0)) - 1;
        if (sfir<T>(*cur, scratch, c.prefilter, c.prefilter_odd, 0, &st.prefilter_history) != 0)
            return -1;
        y.n = int32_t(std::clamp<int64_t>(wanted, 0, INT32_MAX));
        if (rsmp<T>(scratch, y, c.kernel_mode, c.kernel, c.ratio * T(0.5), &st.kernel_history) !=
                0 ||
            sfir<T>(y, scratch, c.halfband, c.halfband_odd, 0, &st.halfband_history) != 0 ||
            deci<T>(scratch, y, 2, &st.phase) != 0 || drop<T>(y, st.skip_out) != 0)
            return -1;
    } else if (st.stages < 1 && copy<T>(y, x) != 0) {
        return -1;
    }
    if (y.n > cap) y.n = int32_t(cap);
    return 0;
}

}  // namespace

template <class T>
int rsmp_coef_init(rsmp_coef_t<T> *coef) {
    if (!coef) return 0;
    init<T>(coef->halfband);
    init<T>(coef->prefilter);
    init<T>(coef->kernel);
    coef->halfband_odd = coef->prefilter_odd = coef->kernel_mode = 0;
    coef->ratio = T(0);
    coef->stages = coef->fine = coef->skip_in = coef->skip_out = 0;
    return 0;
}

template <class T>
int rsmp_coef_alloc(rsmp_coef_t<T> *coef, int mode) {
    if (!coef || mode != 0) return -1;
    if (fir_stored<T>(coef->halfband, 101) != 0) return -1;
    coef->halfband_odd = 1;
    if (fir_stored<T>(coef->prefilter, 100) != 0) return -1;
    coef->prefilter_odd = 1;
    signal_t<T> &k = coef->kernel;
    k.n = 13314;  // width 13, 1024 phases per tap
    k.delta = T(1);
    k.cplx = 0;
    if (rsmp_kernel<T>(k, 4) != 0) return -1;
    coef->kernel_mode = 1;
    return 0;
}

template <class T>
int rsmp_coef_setup(rsmp_coef_t<T> *coef, T ratio, int fine, int reserved) {
    if (!coef || reserved != 0) return -1;
    // The chain runs at the fixed ratio 1 whatever is asked: below 2, so no
    // halving stages and no input skip.
    (void)ratio;
    const T used = T(1);
    coef->ratio = used;
    coef->stages = 0;
    coef->fine = fine;
    coef->skip_in = 0;
    coef->skip_out =
        fine == 0 && approx_equal<T>(used, T(1)) ? 0 : ceil_index<T>(T(35) / used) + 19;
    return 0;
}

template <class T>
int rsmp_coef_destroy(rsmp_coef_t<T> *coef) {
    if (!coef) return 0;
    const int status =
        destroy<T>(coef->halfband) | destroy<T>(coef->prefilter) | destroy<T>(coef->kernel);
    return rsmp_coef_init<T>(coef) | status;
}

template <class T>
int rsmp_state_init(rsmp_state_t<T> *state) {
    if (!state) return 0;
    state->stages = 0;
    state->stage_history = state->stage_phase = nullptr;
    state->skip_in = state->skip_out = 0;
    for (signal_t<T> *r : {&state->prefilter_history, &state->kernel_history,
                           &state->halfband_history, &state->phase})
        init<T>(*r);
    return 0;
}

template <class T>
int rsmp_state_alloc(const rsmp_coef_t<T> *coef, rsmp_state_t<T> *state, int cplx) {
    if (!coef || !state) return -1;
    rsmp_state_t<T> &s = *state;
    const int32_t k = std::max<int32_t>(coef->stages, 0);
    if (s.stages != k) {
        free_stages<T>(s);
        if (k > 0) {
            const size_t bytes = size_t(k) * sizeof(signal_t<T>);
            if (bytes / sizeof(signal_t<T>) != size_t(k)) return -1;
            s.stage_history = static_cast<signal_t<T> *>(std::malloc(bytes));
            s.stage_phase = static_cast<signal_t<T> *>(std::malloc(bytes));
            if (!s.stage_history || !s.stage_phase) {
                free_stages<T>(s);
                return -1;
            }
            for (int32_t i = 0; i < k; ++i) {
                init<T>(s.stage_history[i]);
                init<T>(s.stage_phase[i]);
            }
            s.stages = k;
        }
    }
    const int hb = history_length<T>(coef->halfband, coef->halfband_odd);
    for (int32_t i = 0; i < s.stages; ++i)
        if (shape<T>(s.stage_history[i], cplx, hb) != 0 || shape<T>(s.stage_phase[i], cplx, 1) != 0)
            return -1;
    const int64_t W = rsmp_width<T>(coef->kernel);
    const int kh = coef->kernel.n < 1 ? 0 : int(std::max<int64_t>(W + 2, 0));
    const int ph = history_length<T>(coef->prefilter, coef->prefilter_odd);
    return shape<T>(s.prefilter_history, cplx, ph) != 0 ||
                   shape<T>(s.kernel_history, cplx, kh) != 0 ||
                   shape<T>(s.halfband_history, cplx, hb) != 0 || shape<T>(s.phase, cplx, 1) != 0
               ? -1
               : 0;
}

template <class T>
int rsmp_state_reset(const rsmp_coef_t<T> *coef, rsmp_state_t<T> *state) {
    if (!coef || !state) return 0;
    rsmp_state_t<T> &s = *state;
    for (int32_t i = 0; s.stage_history && s.stage_phase && i < s.stages; ++i)
        if (zero<T>(s.stage_history[i]) != 0 || zero<T>(s.stage_phase[i]) != 0) return -1;
    for (signal_t<T> *r : {&s.prefilter_history, &s.kernel_history, &s.halfband_history, &s.phase})
        if (zero<T>(*r) != 0) return -1;
    s.skip_in = coef->skip_in;
    s.skip_out = coef->skip_out;
    return 0;
}

template <class T>
int rsmp_state_destroy(rsmp_state_t<T> *state) {
    if (!state) return 0;
    free_stages<T>(*state);
    int status = 0;
    for (signal_t<T> *r : {&state->prefilter_history, &state->kernel_history,
                           &state->halfband_history, &state->phase})
        status |= destroy<T>(*r);
    state->skip_in = state->skip_out = 0;
    return status;
}

template <class T>
int rsmp_stream(const signal_t<T> &x, signal_t<T> &y, signal_t<T> *scratch,
                const rsmp_coef_t<T> *coef, rsmp_state_t<T> *state) {
    if (!coef) return -1;
    // Without a state the block runs alone through a temporary one; without
    // a scratch record through a temporary record. Both go even on failure.
    rsmp_state_t<T> own_state;
    signal_t<T> own_scratch;
    rsmp_state_init<T>(&own_state);
    init<T>(own_scratch);
    int status =
        chain<T>(x, y, scratch ? *scratch : own_scratch, *coef, state ? *state : own_state);
    if ((rsmp_state_destroy<T>(&own_state) | destroy<T>(own_scratch)) != 0) status = -1;
    return status;
}

#define DSP_INSTANTIATE(T)                                                            \
    template int rsmp_coef_init<T>(rsmp_coef_t<T> *);                                 \
    template int rsmp_coef_alloc<T>(rsmp_coef_t<T> *, int);                           \
    template int rsmp_coef_setup<T>(rsmp_coef_t<T> *, T, int, int);                   \
    template int rsmp_coef_destroy<T>(rsmp_coef_t<T> *);                              \
    template int rsmp_state_init<T>(rsmp_state_t<T> *);                               \
    template int rsmp_state_alloc<T>(const rsmp_coef_t<T> *, rsmp_state_t<T> *, int); \
    template int rsmp_state_reset<T>(const rsmp_coef_t<T> *, rsmp_state_t<T> *);      \
    template int rsmp_state_destroy<T>(rsmp_state_t<T> *);                            \
    template int rsmp_stream<T>(const signal_t<T> &, signal_t<T> &, signal_t<T> *,    \
                                const rsmp_coef_t<T> *, rsmp_state_t<T> *);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
