#!/usr/bin/env bash
# Compares the functions a built library exports with the functions that
# the public header declares: both lists must be equal.
#   check_exports.sh LIBRARY HEADER [NM [OBJDUMP]]
# LIBRARY is a shared object (its dynamic symbols), a Windows DLL (its export
# table) or a MinGW import library (its __imp_ symbols); NM and OBJDUMP are
# the tools for the library's platform (default: the host's).
set -euo pipefail
lib=$1 header=$2 nm=${3:-nm} objdump=${4:-objdump}
declared=$(grep -oE '^DSP_API [^(]*\b([A-Za-z_][A-Za-z0-9_]*)\(' "$header" |
           sed -E 's/.*\b([A-Za-z_][A-Za-z0-9_]*)\($/\1/' | sort -u)
case $lib in
*.dll)
    exported=$("$objdump" -p "$lib" | sed -n '/Name Pointer\] Table/,/^$/p' |
               awk '/^\t\[ *[0-9]+\] / {print $NF}' | sort -u) ;;
*.dll.a)
    exported=$("$nm" "$lib" | awk '$2 == "I" && $3 ~ /^__imp_/ {print substr($3, 7)}' | sort -u) ;;
*)
    exported=$("$nm" -D --defined-only "$lib" | awk '$2 ~ /^[TtWwDdBbRrVv]$/ {print $3}' |
               sed 's/@.*//' | grep -v -E '^(_init|_fini|_edata|_end|__bss_start)$' | sort -u) ;;
esac
status=0
missing=$(comm -23 <(echo "$declared") <(echo "$exported"))
extra=$(comm -13 <(echo "$declared") <(echo "$exported"))
if [ -n "$missing" ]; then echo "declared but not exported:"; echo "$missing"; status=1; fi
if [ -n "$extra" ]; then echo "exported but not declared:"; echo "$extra"; status=1; fi
echo "$(echo "$declared" | wc -l) declared functions, $(echo "$exported" | wc -l) exported symbols"
exit $status
