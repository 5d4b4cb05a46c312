// The streaming resampler: coarse half-band and decimation-by-two stages,
// then a fine stage of pre-filter, kernel resampling at twice the rate,
// half-band filter and decimation by two, block by block with its history
// in a caller's state record.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

template <class T>
struct rsmp_records;
template <>
struct rsmp_records<float> {
    using coef = dspfh_rsmp_coef;
    using state = dspfh_rsmp_state;
};
template <>
struct rsmp_records<double> {
    using coef = dsph_rsmp_coef;
    using state = dsph_rsmp_state;
};
template <class T>
using rsmp_coef_t = typename rsmp_records<T>::coef;
template <class T>
using rsmp_state_t = typename rsmp_records<T>::state;

// The operations of the exports of the same names (dspfh_rsmp_coef_init ...
// dspfh_rsmp); null records as documented there.
template <class T>
int rsmp_coef_init(rsmp_coef_t<T> *coef);
template <class T>
int rsmp_coef_alloc(rsmp_coef_t<T> *coef, int mode);
template <class T>
int rsmp_coef_setup(rsmp_coef_t<T> *coef, T ratio, int fine, int reserved);
template <class T>
int rsmp_coef_destroy(rsmp_coef_t<T> *coef);
template <class T>
int rsmp_state_init(rsmp_state_t<T> *state);
template <class T>
int rsmp_state_alloc(const rsmp_coef_t<T> *coef, rsmp_state_t<T> *state, int cplx);
template <class T>
int rsmp_state_reset(const rsmp_coef_t<T> *coef, rsmp_state_t<T> *state);
template <class T>
int rsmp_state_destroy(rsmp_state_t<T> *state);
template <class T>
int rsmp_stream(const signal_t<T> &x, signal_t<T> &y, signal_t<T> *scratch,
                const rsmp_coef_t<T> *coef, rsmp_state_t<T> *state);

}  // namespace dsp
