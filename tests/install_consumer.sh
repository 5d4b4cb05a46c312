#!/usr/bin/env bash
# Installs the built library into a scratch prefix, then builds and runs the
# consumer example against it twice: through find_package(dsp) and through
# pkg-config.
set -euo pipefail
build=$1 consumer=$2 cmake=$3 cc=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
"$cmake" --install "$build" --prefix "$prefix" >/dev/null
"$cmake" -S "$consumer" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$prefix" \
         -DCMAKE_C_COMPILER="$cc" >/dev/null
"$cmake" --build "$work/cmake-build" >/dev/null
"$work/cmake-build/consumer"
libdir=$(dirname "$(find "$prefix" -name 'dsp.pc' | head -1)")/..
export PKG_CONFIG_PATH=$libdir/pkgconfig
"$cc" -std=c99 -pedantic-errors -Wall -Wextra -Werror "$consumer/main.c" -o "$work/pc-consumer" \
      $(pkg-config --cflags --libs dsp) -Wl,-rpath,"$(cd "$libdir" && pwd)"
"$work/pc-consumer"
