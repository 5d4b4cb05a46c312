// C exports of the record frame and the utilities.
#include "dsp.h"
#include "frame/free_internal.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"

using namespace dsp;

namespace {
constexpr int library_version = 205;
}

extern "C" {

int dspf_init(dspf_signal *x) { return init<float>(*x); }
int dsp_init(dsp_signal *x) { return init<double>(*x); }
int dspf_destroy(dspf_signal *x) { return destroy<float>(*x); }
int dsp_destroy(dsp_signal *x) { return destroy<double>(*x); }
int dspf_alloc(dspf_signal *x) { return alloc<float>(*x); }
int dsp_alloc(dsp_signal *x) { return alloc<double>(*x); }
int dspf_realloc(dspf_signal *x, int n, int c) { return dsp::realloc<float>(*x, n, c); }
int dsp_realloc(dsp_signal *x, int n, int c) { return dsp::realloc<double>(*x, n, c); }
int dspf_append(dspf_signal *a, const dspf_signal *b) { return append<float>(*a, *b); }
int dsp_append(dsp_signal *a, const dsp_signal *b) { return append<double>(*a, *b); }
int dspf_copy(dspf_signal *d, const dspf_signal *s) { return copy<float>(*d, *s); }
int dsp_copy(dsp_signal *d, const dsp_signal *s) { return copy<double>(*d, *s); }
int dspf_copy_at_most(dspf_signal *d, const dspf_signal *s, int k) { return copy_at_most<float>(*d, *s, k); }
int dsp_copy_at_most(dsp_signal *d, const dsp_signal *s, int k) { return copy_at_most<double>(*d, *s, k); }
int dspf_cmp(const dspf_signal *a, const dspf_signal *b, float tol, int *r) { return cmp<float>(*a, *b, tol, r); }
int dsp_cmp(const dsp_signal *a, const dsp_signal *b, double tol, int *r) { return cmp<double>(*a, *b, tol, r); }

int dspf_lib_init(void) { return 0; }
int dsp_lib_init(void) { return 0; }
int dspf_lib_alloc(dspf_alloc_hook h, dspf_alloc_hook *p) { return swap_hook(hooks<float>::alloc, h, p); }
int dsp_lib_alloc(dsp_alloc_hook h, dsp_alloc_hook *p) { return swap_hook(hooks<double>::alloc, h, p); }
int dspf_lib_realloc(dspf_realloc_hook h, dspf_realloc_hook *p) { return swap_hook(hooks<float>::realloc, h, p); }
int dsp_lib_realloc(dsp_realloc_hook h, dsp_realloc_hook *p) { return swap_hook(hooks<double>::realloc, h, p); }
int dspf_lib_free(dspf_free_hook h, dspf_free_hook *p) { return swap_hook(hooks<float>::free, h, p); }
int dsp_lib_free(dsp_free_hook h, dsp_free_hook *p) { return swap_hook(hooks<double>::free, h, p); }
int dspf_free_internal(void) { return free_internal<float>(); }
int dsp_free_internal(void) { return free_internal<double>(); }
int dspf_version(void) { return library_version; }
int dsp_version(void) { return library_version; }

int dspfu_subvec(const dspf_signal *s, dspf_signal *d, int start, int count) { return util::subvec<float>(*s, *d, start, count); }
int dspu_subvec(const dsp_signal *s, dsp_signal *d, int start, int count) { return util::subvec<double>(*s, *d, start, count); }
int dspfu_tof(const dspf_signal *s, dspf_signal *d) { return util::tof<float>(*s, *d); }
int dspu_tof(const dsp_signal *s, dspf_signal *d) { return util::tof<double>(*s, *d); }
int dspfu_mag(const dspf_signal *s, dspf_signal *d) { return util::mag<float>(*s, *d); }
int dspu_mag(const dsp_signal *s, dsp_signal *d) { return util::mag<double>(*s, *d); }
int dspfu_magsq(const dspf_signal *s, dspf_signal *d) { return util::magsq<float>(*s, *d); }
int dspu_magsq(const dsp_signal *s, dsp_signal *d) { return util::magsq<double>(*s, *d); }
int dspfu_sqrt(const dspf_signal *s, dspf_signal *d) { return util::sqrt<float>(*s, *d); }
int dspu_sqrt(const dsp_signal *s, dsp_signal *d) { return util::sqrt<double>(*s, *d); }

}  // extern "C"
