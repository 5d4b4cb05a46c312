#!/usr/bin/env bash
# Whether a 32-bit ARM library multiplies in the VFP short-vector mode
# (vfpsbMul2 / vfpdbMul2): present in a build for a core that has the mode,
# absent from every other build.
#   check_short_vector.sh LIBRARY OBJDUMP EXPECTED(0|1)
set -euo pipefail
lib=$1 objdump=$2 expected=$3
code=$("$objdump" -d "$lib")
# LEN set for vectors of 8 floats and of 4 doubles, and the vector products.
found=0
if grep -q 'orr.*@ 0x70000' <<<"$code" && grep -qP 'vmul\.f32\ts8, s8, s0' <<<"$code" &&
   grep -q 'orr.*@ 0x30000' <<<"$code" && grep -qP 'vmul\.f64\td4, d4, d0' <<<"$code"; then
    found=1
fi
echo "short-vector code: found $found, expected $expected"
[ "$found" = "$expected" ]
