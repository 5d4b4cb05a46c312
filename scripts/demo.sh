#!/usr/bin/env bash
# Builds the library and runs its demonstration program. Arguments are passed
# to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build/release -j"$(nproc)" --target dsp_demo
exec build/release/examples/dsp_demo "$@"
