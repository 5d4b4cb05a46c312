# Shared part of the Linux cross toolchains (Debian's cross compilers and
# qemu-user). The including file sets DSP_CROSS_TRIPLE, DSP_CROSS_PROCESSOR
# and DSP_CROSS_QEMU.
#
# A processor variant is two cache settings on the cmake command line:
#   DSP_TARGET_FLAGS  compiler flags for the processor (e.g. -mcpu=cortex-a8)
#   DSP_QEMU_CPU      the core qemu emulates (e.g. cortex-a8); empty: qemu's default
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${DSP_CROSS_PROCESSOR})
set(CMAKE_C_COMPILER ${DSP_CROSS_TRIPLE}-gcc)
set(CMAKE_CXX_COMPILER ${DSP_CROSS_TRIPLE}-g++)

set(CMAKE_FIND_ROOT_PATH /usr/${DSP_CROSS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_C_FLAGS_INIT "${DSP_TARGET_FLAGS}")
set(CMAKE_CXX_FLAGS_INIT "${DSP_TARGET_FLAGS}")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DSP_TARGET_FLAGS DSP_QEMU_CPU)

# Test programs run under qemu-user with the target's runtime libraries; a
# program they start (such as /usr/bin/python3) runs natively on the host.
set(CMAKE_CROSSCOMPILING_EMULATOR ${DSP_CROSS_QEMU} -L /usr/${DSP_CROSS_TRIPLE})
if(DSP_QEMU_CPU)
  list(APPEND CMAKE_CROSSCOMPILING_EMULATOR -cpu ${DSP_QEMU_CPU})
endif()
