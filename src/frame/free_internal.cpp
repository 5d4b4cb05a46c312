// Release of every internal cache and scratch record of one precision.
#include "frame/free_internal.hpp"

#include "frame/prepare.hpp"

namespace dsp {

// Release steps of the modules that keep internal state. Each destroys its
// module's records, frees its tables, clears its "built" flags and is
// harmless when nothing was built.
template <class T> int release_fir_scratch();
template <class T> int release_sfir_scratch();
template <class T> int release_bitrev_tables();
template <class T> int release_dct_cache();
template <class T> int release_dft_scratch();
template <class T> int release_twiddle_tables();
template <class T> int release_window_cache();
template <class T> int release_rsmp_cache();

// Step 1 also releases the resampler's kernel layouts and working storage.
template <class T>
int release_filtering() {
    return release_fir_scratch<T>() == 0 ? release_rsmp_cache<T>() : -1;
}

template <class T>
int free_internal() {
    using step = int (*)();
    // The fixed release order. A module plugs its step in here, in its slot;
    // an empty slot is a module that keeps no state yet.
    const step steps[8] = {
        release_filtering<T>,       // 1 FIR filtering: transform cache, work records, kernel layouts
        release_sfir_scratch<T>,    // 2 symmetric FIR filtering: expanded filter
        release_bitrev_tables<T>,   // 3 bit-reversal index tables
        release_dct_cache<T>,       // 4 DCT: work record and rotation table
        release_dft_scratch<T>,     // 5 DFT: chirp and kernel records
        release_result_scratch<T>,  // 6 result preparation: output scratch and state
        release_twiddle_tables<T>,  // 7 FFT twiddle tables
        release_window_cache<T>,    // 8 window cache
    };
    for (step s : steps)
        if (s && s() != 0) return -1;
    return 0;
}

template int free_internal<float>();
template int free_internal<double>();

}  // namespace dsp
