#!/usr/bin/env bash
# Compares the dynamic symbols the library defines with the functions that
# the public header declares: both lists must be equal.
set -euo pipefail
lib=$1 header=$2
declared=$(grep -oE '^DSP_API [^(]*\b([A-Za-z_][A-Za-z0-9_]*)\(' "$header" |
           sed -E 's/.*\b([A-Za-z_][A-Za-z0-9_]*)\($/\1/' | sort -u)
exported=$(nm -D --defined-only "$lib" | awk '$2 ~ /^[TtWwDdBbRrVv]$/ {print $3}' |
           sed 's/@.*//' | grep -v -E '^(_init|_fini|_edata|_end|__bss_start)$' | sort -u)
status=0
missing=$(comm -23 <(echo "$declared") <(echo "$exported"))
extra=$(comm -13 <(echo "$declared") <(echo "$exported"))
if [ -n "$missing" ]; then echo "declared but not exported:"; echo "$missing"; status=1; fi
if [ -n "$extra" ]; then echo "exported but not declared:"; echo "$extra"; status=1; fi
echo "$(echo "$declared" | wc -l) declared functions, $(echo "$exported" | wc -l) exported symbols"
exit $status
