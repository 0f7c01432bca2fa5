#!/bin/sh
# Runs a Windows program: in a 64-bit prefix inside the build folder, on a display of its own when there is
# none. WINE_DESKTOP=NAME,WxH puts it into a Wine desktop, where top-level windows have title bars.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX="${WINEPREFIX:-$root/build/wineprefix}" WINEDEBUG="${WINEDEBUG:--all}" WINEARCH=win64
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
mkdir -p "$(dirname "$WINEPREFIX")"
# One process makes the prefix; the others wait for it.
(
    flock 9
    [ -f "$WINEPREFIX/ready" ] || { wineboot -i >/dev/null 2>&1 && wineserver -w && touch "$WINEPREFIX/ready"; }
) 9>"$WINEPREFIX.lock"

set -- wine ${WINE_DESKTOP:+explorer "/desktop=$WINE_DESKTOP"} "$@"
[ -n "${DISPLAY:-}" ] || set -- xvfb-run -a -s "-screen 0 1280x800x24" "$@"
exec "$@"
