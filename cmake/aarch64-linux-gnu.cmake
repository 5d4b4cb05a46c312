# 64-bit ARM Linux (Debian arm64: ARMv8-A with NEON).
#   cmake -S . -B build/arm64 -DCMAKE_TOOLCHAIN_FILE=cmake/aarch64-linux-gnu.cmake
set(DSP_CROSS_TRIPLE aarch64-linux-gnu)
set(DSP_CROSS_PROCESSOR aarch64)
set(DSP_CROSS_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/cross-linux.cmake)
