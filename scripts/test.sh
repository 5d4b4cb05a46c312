#!/usr/bin/env bash
# Builds and runs the whole test suite twice: a Release build with warnings
# as errors, then a build under AddressSanitizer and
# UndefinedBehaviorSanitizer that stops at the first finding; then runs each
# libFuzzer harness for DSP_FUZZ_SECONDS (default 30) seconds.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
jobs=$(nproc)

echo "== Release build (-Wall -Wextra -Werror)"
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DDSP_WERROR=ON -DDSP_BUILD_BENCH=ON >/dev/null
cmake --build build/release -j"$jobs"
ctest --test-dir build/release --output-on-failure -j"$jobs"

echo "== AddressSanitizer + UndefinedBehaviorSanitizer build"
export ASAN_OPTIONS=halt_on_error=1:abort_on_error=1:detect_leaks=1:strict_string_checks=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
cmake -S . -B build/sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DDSP_WERROR=ON -DDSP_SANITIZE=ON >/dev/null
cmake --build build/sanitize -j"$jobs"
ctest --test-dir build/sanitize --output-on-failure -j"$jobs"

echo "== libFuzzer harnesses (clang, ${DSP_FUZZ_SECONDS:-30} s each)"
scripts/fuzz.sh "${DSP_FUZZ_SECONDS:-30}"
