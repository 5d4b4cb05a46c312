#!/usr/bin/env bash
# Builds the libFuzzer harnesses (clang, AddressSanitizer and
# UndefinedBehaviorSanitizer, in build/sanitize, the build scripts/test.sh
# runs the suite in) and runs each for a number of seconds, starting from the
# seed corpus in fuzz/corpus/<group> and keeping what it adds in
# build/fuzz/corpus/<group>. Stops at the first finding: the harness output
# is in build/fuzz/<group>.log and the input in build/fuzz/crash-*.
#   scripts/fuzz.sh                 10 s per harness (what CI runs)
#   scripts/fuzz.sh 3600            an hour per harness
#   scripts/fuzz.sh 600 stats       one harness
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-10}
groups=("${@:2}")
[ ${#groups[@]} -eq 0 ] && groups=(transform spectrum stats filter trace record)

CC=clang CXX=clang++ cmake -S . -B build/sanitize -DDSP_WERROR=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DDSP_SANITIZE=ON -DDSP_BUILD_FUZZ=ON -DBUILD_SHARED_LIBS=OFF >/dev/null
mkdir -p build/fuzz
targets=()
for g in "${groups[@]}"; do targets+=("fuzz_$g"); done
cmake --build build/sanitize -j"$(nproc)" --target "${targets[@]}" >build/fuzz/build.log 2>&1 ||
  { tail -n 40 build/fuzz/build.log; exit 1; }

for g in "${groups[@]}"; do
  mkdir -p "build/fuzz/corpus/$g"
  log="build/fuzz/$g.log"
  seeds=()
  [ -d "fuzz/corpus/$g" ] && seeds=("fuzz/corpus/$g")
  if ! "build/sanitize/fuzz/fuzz_$g" -max_total_time="$seconds" -print_final_stats=1 \
       -artifact_prefix=build/fuzz/ "build/fuzz/corpus/$g" "${seeds[@]}" >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "fuzz_$g found a fault (input saved as build/fuzz/crash-*)" >&2
    exit 1
  fi
  echo "fuzz_$g: $(grep -o 'cov: [0-9]* ft: [0-9]*' "$log" | tail -n 1)," \
       "$(grep -o 'exec/s: [0-9]*' "$log" | tail -n 1), $(grep -m1 -o 'Done [0-9]* runs' "$log")"
done
