// Allocation seam of the test programs. They are linked with
// --wrap=malloc,--wrap=calloc,--wrap=realloc,--wrap=free, so every block the
// library takes (record storage and its own tables and caches) passes through
// here. While armed on a thread, the allocation numbered `fail_at` (counting
// from 1) and every allocation above `limit` bytes fail, and each block taken
// is remembered until it is freed: a block still remembered after the records
// are destroyed and the caches released is a leak.
#pragma once

#include <cstddef>
#include <cstdint>

namespace dsp_test::seam {

// track false: the blocks are not remembered (for programs that allocate on
// other threads too).
void arm(long fail_at, size_t limit = SIZE_MAX, bool track = true);
// Disarms; returns the number of allocations made while armed.
long disarm();
// Whether the armed failure has happened.
bool injected();
// Blocks taken while armed and not freed since; forget() clears the list.
long outstanding();
void forget();

// Record allocator hooks of precision T that place every block 16 bytes into
// a larger one from malloc: a hook block that reaches free() or a malloc block
// that reaches the free hook is an invalid free.
template <class T>
void install_offset_hooks();
template <class T>
void remove_hooks();

}  // namespace dsp_test::seam
