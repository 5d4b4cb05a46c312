// The test program's operator new and delete take their blocks from malloc
// and free, so that the allocation seam sees (and can fail) C++ allocations
// as well: a failure arrives as std::bad_alloc.
#include <cstdlib>
#include <new>

void *operator new(std::size_t n) {
    if (void *p = std::malloc(n ? n : 1)) return p;
    throw std::bad_alloc();
}
void *operator new[](std::size_t n) { return ::operator new(n); }
void *operator new(std::size_t n, const std::nothrow_t &) noexcept {
    return std::malloc(n ? n : 1);
}
void *operator new[](std::size_t n, const std::nothrow_t &) noexcept {
    return std::malloc(n ? n : 1);
}
void operator delete(void *p) noexcept { std::free(p); }
void operator delete[](void *p) noexcept { std::free(p); }
void operator delete(void *p, std::size_t) noexcept { std::free(p); }
void operator delete[](void *p, std::size_t) noexcept { std::free(p); }
