#!/usr/bin/env bash
# Builds and runs the whole test suite:
#   release   Release build with warnings as errors
#   sanitize  clang build under AddressSanitizer and UndefinedBehaviorSanitizer
#             that stops at the first finding; it also holds the fuzz harnesses
#   fuzz      each libFuzzer harness for DSP_FUZZ_SECONDS (default 10) seconds
#   arm32     cross build for 32-bit ARM hard-float, suite under qemu-arm
#   armv6     the same for an ARMv6 core with VFPv2 (arm1176jzf-s), whose
#             short-vector mode vfpsbMul2 uses
#   arm64     cross build for 64-bit ARM, suite under qemu-aarch64
#   mingw     Windows build (dsp.dll, import library, export check), suite
#             under Wine
#   armv6-quick  the ARMv6 build with the suite cut to the floating-point
#             control, trace kernels and record layouts (tests/vfp,
#             tests/frame/layout_test.cpp): what that core changes
#   mingw-quick  the Windows build (DLL, import library, export checks) with
#             the suite cut to tests/frame and tests/vfp under Wine: records,
#             allocation, failure paths, floating-point control
# Without arguments (what CI runs, within its time): release, sanitize, fuzz,
# arm32, arm64, armv6-quick and mingw-quick. "all" runs the full suite in
# every build; build names run only those (scripts/test.sh arm32).
# Build directories under build/ are kept and reused.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
jobs=$(nproc)
builds=("$@")
[ ${#builds[@]} -eq 0 ] && builds=(release sanitize fuzz arm32 arm64 armv6-quick mingw-quick)
[ "${builds[*]}" = all ] && builds=(release sanitize fuzz arm32 armv6 arm64 mingw)

# Configures, builds and tests build/NAME with the given cmake arguments;
# CTest arguments after --.
run() {
    local name=$1 ctest_args=()
    shift
    local cmake_args=()
    while [ $# -gt 0 ] && [ "$1" != -- ]; do cmake_args+=("$1"); shift; done
    [ $# -gt 0 ] && shift && ctest_args=("$@")
    cmake -S . -B "build/$name" -DDSP_WERROR=ON "${cmake_args[@]}" >/dev/null
    cmake --build "build/$name" -j"$jobs"
    ctest --test-dir "build/$name" --output-on-failure -j"$jobs" "${ctest_args[@]}"
}

# A cross build of the library and the suite; the toolchain file names the
# emulator the tests run under. A processor variant is one more line below,
# e.g. -DDSP_TARGET_FLAGS="-mcpu=cortex-a8" -DDSP_QEMU_CPU=cortex-a8;
# CTest arguments follow a --.
cross() {
    local name=$1 toolchain=$2
    shift 2
    local args=("$@")
    [[ " ${args[*]} " == *" -- "* ]] || args+=(--)
    run "$name" -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE=Release "${args[@]}" --timeout 1200
}

for build in "${builds[@]}"; do
    echo "== $build"
    start=$SECONDS
    subset=(-DDSP_TEST_SUBSET=)
    [ "$build" = armv6-quick ] && subset=(-DDSP_TEST_SUBSET="vfp;frame/layout_test.cpp")
    [ "$build" = mingw-quick ] && subset=(-DDSP_TEST_SUBSET="frame;vfp")
    case $build in
    release) run release -DCMAKE_BUILD_TYPE=Release -DDSP_BUILD_BENCH=ON ;;
    # One clang build under the sanitizers serves the suite and the fuzz
    # harnesses (scripts/fuzz.sh configures build/sanitize the same way).
    sanitize)
        export ASAN_OPTIONS=halt_on_error=1:abort_on_error=1:detect_leaks=1:strict_string_checks=1
        export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
        CC=clang CXX=clang++ run sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDSP_SANITIZE=ON \
            -DDSP_BUILD_FUZZ=ON -DBUILD_SHARED_LIBS=OFF ;;
    fuzz) scripts/fuzz.sh "${DSP_FUZZ_SECONDS:-10}" ;;
    arm32) cross arm32 cmake/arm-linux-gnueabihf.cmake ;;
    # The VFP short-vector path (ARMv6, VFPv2); qemu's arm1176 cannot run
    # Debian's ARMv7 Thumb-2 runtime, Cortex-A8 runs both and has the mode.
    armv6 | armv6-quick)
        cross "$build" cmake/arm-linux-gnueabihf.cmake -DDSP_QEMU_CPU=cortex-a8 \
            -DDSP_TARGET_FLAGS="-marm -mcpu=arm1176jzf-s -mfpu=vfp -mfloat-abi=hard" "${subset[@]}" ;;
    arm64) cross arm64 cmake/aarch64-linux-gnu.cmake ;;
    mingw | mingw-quick) cross "$build" cmake/x86_64-w64-mingw32.cmake "${subset[@]}" ;;
    *) echo "unknown build: $build" >&2; exit 2 ;;
    esac
    echo "== $build: $((SECONDS - start)) s"
done
