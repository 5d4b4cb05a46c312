#include "support/seam.hpp"

#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "support/precision.hpp"

extern "C" {
void *__real_malloc(size_t);
void *__real_calloc(size_t, size_t);
void *__real_realloc(void *, size_t);
void __real_free(void *);
}

// The seam's state is per thread. MinGW keeps thread-local variables in
// blocks it allocates on first use, through the very malloc wrapped here:
// there the state is shared by the threads (the suite runs on one).
#if defined(_WIN32)
#define DSP_SEAM_LOCAL
#else
#define DSP_SEAM_LOCAL thread_local
#endif

namespace dsp_test::seam {

namespace {

DSP_SEAM_LOCAL bool armed = false;
DSP_SEAM_LOCAL long count = 0, fail_number = 0;
DSP_SEAM_LOCAL size_t size_limit = SIZE_MAX;
DSP_SEAM_LOCAL bool failed = false;
DSP_SEAM_LOCAL bool tracking = false;
// Every block starts with this byte in every position, so that storage a
// call leaves unwritten compares equal between runs.
constexpr int fill = 0xa5;

// The blocks taken while armed and not freed since (a few dozen at most).
constexpr long capacity = 4096;
void *blocks[capacity];
long remembered = 0;

void remember(void *p) {
    if (remembered == capacity) std::abort();
    if (p) blocks[remembered++] = p;
}

// Forgets p; true when it was remembered.
bool release(void *p) {
    for (long i = remembered - 1; p && i >= 0; --i)
        if (blocks[i] == p) {
            blocks[i] = blocks[--remembered];
            return true;
        }
    return false;
}

// Counts an allocation of n bytes while armed; true when it is to fail.
bool fails(size_t n) {
    if (!armed) return false;
    const bool fail = ++count == fail_number || n > size_limit;
    failed = failed || fail;
    return fail;
}

// The usable size of a block of the system allocator.
size_t usable(void *p) {
#if defined(_WIN32)
    return _msize(p);
#else
    return malloc_usable_size(p);
#endif
}

}  // namespace

void arm(long fail_at, size_t limit, bool track) {
    // The C++ runtime sets up a thread's exception state at its first throw
    // and keeps it (under MinGW in a block from malloc): set up before any
    // allocation is counted.
    static const bool runtime_ready = [] {
        try {
            throw std::bad_alloc();
        } catch (const std::bad_alloc &) {
        }
        return true;
    }();
    (void)runtime_ready;
    count = 0, fail_number = fail_at, size_limit = limit, failed = false, armed = true;
    tracking = track;
}

long disarm() {
    armed = tracking = false;
    return count;
}

bool injected() { return failed; }
long outstanding() { return remembered; }

void forget() { remembered = 0; }

namespace {

constexpr size_t offset = 16;

// The bytes of x's storage and the offset; a size beyond the address space
// (a 32-bit one) gives SIZE_MAX, which no allocation satisfies.
template <class T>
size_t bytes(const sig<T> *x) {
    const uint64_t b = uint64_t(x->cplx ? 2 * int64_t(x->n) : x->n) * sizeof(T) + offset;
    return b > SIZE_MAX ? SIZE_MAX : size_t(b);
}
template <class T>
T *inside(void *b) {
    return b ? reinterpret_cast<T *>(static_cast<char *>(b) + offset) : nullptr;
}
void *block_of(void *d) { return d ? static_cast<char *>(d) - offset : nullptr; }

template <class T>
void on_alloc(sig<T> *x) {
    if (x->alloc > 0) std::free(block_of(x->data));
    x->data = inside<T>(std::malloc(bytes<T>(x)));
}
// As realloc: a failure keeps the old block.
template <class T>
void on_realloc(sig<T> *x, int, int) {
    x->data = inside<T>(std::realloc(block_of(x->data), bytes<T>(x)));
}
template <class T>
void on_free(sig<T> *x) {
    std::free(block_of(x->data));
}

}  // namespace

template <class T>
void install_offset_hooks() {
    pick<T>(dspf_lib_alloc, dsp_lib_alloc)(on_alloc<T>, nullptr);
    pick<T>(dspf_lib_realloc, dsp_lib_realloc)(on_realloc<T>, nullptr);
    pick<T>(dspf_lib_free, dsp_lib_free)(on_free<T>, nullptr);
}

template <class T>
void remove_hooks() {
    pick<T>(dspf_lib_alloc, dsp_lib_alloc)(nullptr, nullptr);
    pick<T>(dspf_lib_realloc, dsp_lib_realloc)(nullptr, nullptr);
    pick<T>(dspf_lib_free, dsp_lib_free)(nullptr, nullptr);
}

template void install_offset_hooks<float>();
template void install_offset_hooks<double>();
template void remove_hooks<float>();
template void remove_hooks<double>();

}  // namespace dsp_test::seam

using namespace dsp_test::seam;

extern "C" {

void *__wrap_malloc(size_t n) {
    if (fails(n)) return nullptr;
    void *p = __real_malloc(n);
    if (p) std::memset(p, fill, usable(p));
    if (tracking) remember(p);
    return p;
}

void *__wrap_calloc(size_t k, size_t n) {
    if (fails(k * n)) return nullptr;
    void *p = __real_calloc(k, n);
    if (tracking) remember(p);
    return p;
}

// The block always moves (its new part filled); it stays remembered if it
// was. A failure keeps the old block.
void *__wrap_realloc(void *p, size_t n) {
    if (fails(n)) return nullptr;
    void *q = __real_malloc(n);
    if (!q) return nullptr;
    std::memset(q, fill, usable(q));
    if (p) {
        const size_t old = usable(p);
        std::memcpy(q, p, old < n ? old : n);
        __real_free(p);
    }
    if (release(p) || tracking) remember(q);
    return q;
}

void __wrap_free(void *p) {
    release(p);
    __real_free(p);
}

}  // extern "C"
