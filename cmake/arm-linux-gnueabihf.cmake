# 32-bit ARM Linux, hard-float VFP (Debian armhf: ARMv7-A, VFPv3-D16, Thumb-2).
#   cmake -S . -B build/arm32 -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake
set(DSP_CROSS_TRIPLE arm-linux-gnueabihf)
set(DSP_CROSS_PROCESSOR arm)
set(DSP_CROSS_QEMU qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/cross-linux.cmake)
