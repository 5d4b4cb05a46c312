# 64-bit Windows with MinGW-w64 (Debian's g++-mingw-w64-x86-64): dsp.dll and
# its import library libdsp.dll.a.
#   cmake -S . -B build/mingw -DCMAKE_TOOLCHAIN_FILE=cmake/x86_64-w64-mingw32.cmake
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
# The POSIX thread model: GoogleTest needs std::mutex.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The compiler's runtime (libgcc, libstdc++, winpthread) is linked in, so
# that dsp.dll and the programs need no MinGW DLLs beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)

# Test programs run under Wine, in a Wine prefix of the build's own.
find_program(DSP_WINE NAMES wine64 wine PATHS /usr/lib/wine)
if(DSP_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR
      ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh ${CMAKE_BINARY_DIR}/wineprefix)
endif()
