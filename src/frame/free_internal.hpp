#pragma once

namespace dsp {

// Runs the eight release steps of one precision in their fixed order and
// stops with -1 at the first that fails.
template <class T> int free_internal();

}  // namespace dsp
