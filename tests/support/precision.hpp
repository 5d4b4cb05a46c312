// The record type and the C exports of one precision, for the tests and the
// fuzz harnesses.
#pragma once

#include <type_traits>

#include "dsp.h"
#include "frame/traits.hpp"

namespace dsp_test {

template <class T>
using sig = dsp::signal_t<T>;

template <class T, class F, class D>
constexpr auto pick(F f, D d) {
    if constexpr (std::is_same_v<T, float>)
        return f;
    else
        return d;
}

// The C export of the precision TypeParam: DSP(i_real) is dspfi_real in the
// single family and dspi_real in the double family.
#define DSP(x) (::dsp_test::pick<TypeParam>(dspf##x, dsp##x))
// The raw-array kernels likewise: VFP(_FindMax) is vfps_FindMax or
// vfpd_FindMax, VFPB(Mul1) vfpsbMul1 or vfpdbMul1.
#define VFP(x) (::dsp_test::pick<TypeParam>(vfps##x, vfpd##x))
#define VFPB(x) (::dsp_test::pick<TypeParam>(vfpsb##x, vfpdb##x))

}  // namespace dsp_test
