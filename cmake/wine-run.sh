#!/usr/bin/env bash
# Runs a program of the Windows build under Wine (Debian's wine64) in the
# Wine prefix PREFIX, which is created on first use.
#   wine-run.sh PREFIX PROGRAM [ARGUMENTS...]
#   wine-run.sh PREFIX --stop        ends the prefix's Wine session
# The first program starts the session: a wineserver that outlives single
# programs (saving its start-up on every test) and Wine's background
# services. Both are started with their input and output detached, since
# CTest waits until nothing holds a test's output open; the session lasts
# until --stop (a CTest cleanup step).
set -euo pipefail
export WINEPREFIX=$(realpath -m "$1") WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
shift
wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
server=$(command -v wineserver || echo /usr/lib/wine/wineserver)
if [ "${1:-}" = --stop ]; then
    [ -d "$WINEPREFIX" ] && "$server" -k 2>/dev/null || true
    exit 0
fi
{
    flock 9
    # 0: a new server was started (2: one is running already)
    if "$server" -p </dev/null >/dev/null 2>&1 9>&-; then
        "$wine" wineboot </dev/null >/dev/null 2>&1 9>&- || true
    fi
} 9>"$WINEPREFIX.lock"
exec "$wine" "$@"
