#!/bin/sh
# Runs a Windows program: in a 64-bit prefix inside the build folder, on a display of its own when there is
# none. WINE_DESKTOP=NAME,WxH puts it into a Wine desktop (the exit code is then lost); WINE_DPI=144 sets the
# screen's resolution; WINE_CONSOLE=1 is for a program without windows, which needs no display. Its session has none
# either: "wine.sh --end" ends it, before windows of another are made in it. WINE_LANE=N (see lane.sh) is the number of
# a prefix and of the displays for it: what has other numbers runs beside it.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
kind=display
[ -n "${DISPLAY:-}" ] || kind=headless
export WINEPREFIX="${WINEPREFIX:-$root/build/wineprefix-$kind${WINE_LANE:+-lane$WINE_LANE}${WINE_DPI:+-$WINE_DPI}}" WINEDEBUG="${WINEDEBUG:--all}" WINEARCH=win64
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
mkdir -p "$(dirname "$WINEPREFIX")"

if [ "${1:-}" = --end ]; then
    wineserver -k || true # there may be none
    exec wineserver -w
fi

make_prefix() {
    # What an interrupted start left is never completed.
    rm -rf "$WINEPREFIX"
    wineboot -i
    # A virtual display has no window manager: waiting for one costs two seconds a window. Wine then draws
    # the frames itself.
    [ "$kind" = display ] || wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
    [ -z "${WINE_DPI:-}" ] || wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$WINE_DPI" /f
    # A crash ends the program at once: no debugger looks at it first, for minutes and behind a box.
    wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' /v Debugger /d '' /f
    # Debian's Wine does not look where its own fonts are installed; Marlett draws the caption buttons.
    cp /usr/share/wine/fonts/*.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
    wineserver -w
    touch "$WINEPREFIX/ready-2"
}
# One process makes the prefix; the others wait for it. The number is that of the settings above.
(
    flock 9
    [ -f "$WINEPREFIX/ready-2" ] || make_prefix >/dev/null 2>&1
) 9>"$WINEPREFIX.lock"

set -- wine ${WINE_DESKTOP:+explorer "/desktop=$WINE_DESKTOP"} "$@"
[ -n "${DISPLAY:-}${WINE_CONSOLE:-}" ] || set -- xvfb-run -a -n $((100 + 100 * ${WINE_LANE:-0})) -s "-screen 0 1280x800x24" "$@"
exec "$@"
