#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the benchmarks need
# (none of them is a runtime dependency of the library). Does nothing when
# they are all present.
set -euo pipefail
packages=(cmake g++ make pkg-config libgtest-dev libbenchmark-dev
          python3-numpy python3-scipy python3-cffi python3-pytest python3-matplotlib
          python3-setuptools python3-venv libfftw3-dev libkissfft-dev libliquid-dev
          libsamplerate0-dev libsoxr-dev clang libclang-rt-14-dev
          # cross builds: ARM under qemu-user, Windows under Wine; GoogleTest
          # sources to build it with each cross compiler
          googletest g++-arm-linux-gnueabihf g++-aarch64-linux-gnu qemu-user
          g++-mingw-w64-x86-64 wine64)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -ne 0 ] && sudo=sudo
echo "installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
