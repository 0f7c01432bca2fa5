#!/bin/sh
# browser.sh PROGRAM: opens a Windows program on a virtual screen and serves that screen to a browser on this
# machine, until the program exits or Ctrl-C.
set -eu
here=$(dirname "$0")
"$here/install.sh" "$here/packages-browser.txt"

state=$(mktemp -d)
started=
# Each start below is a process group of its own: Ctrl-C reaches this script only, which ends them in order, the
# newest first and the screen last.
keep() { started="$1 $started"; }
finish() {
    trap - EXIT INT TERM
    for pid in $started; do
        kill -- "-$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
        # Windows programs leave the group of the command that started them.
        [ -z "${WINEPREFIX:-}" ] || { wineserver -k; wineserver -w; } || true
    done
    rm -rf "$state"
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# wait_for FILE: until it holds a line; fails when that takes longer than ten seconds.
wait_for() {
    for _ in $(seq 100); do
        [ ! -s "$state/$1" ] || return 0
        sleep 0.1
    done
    echo "$1 did not start:" >&2
    cat "$state/$1.log" >&2
    exit 1
}

setsid Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$state/screen" >"$state/screen.log" 2>&1 &
keep $!
wait_for screen
DISPLAY=:$(cat "$state/screen")
export DISPLAY

setsid x11vnc -localhost -noipv6 -autoport 5900 -flag "$state/vnc" -forever -shared -nopw -quiet \
    >"$state/vnc.log" 2>&1 &
keep $!
wait_for vnc

port=$(python3 -c '
import socket
for port in range(6080, 6180):
    with socket.socket() as probe:
        if probe.connect_ex(("127.0.0.1", port)):
            print(port)
            break')
setsid websockify --web /usr/share/novnc "127.0.0.1:${port:?no free port from 6080 to 6179}" \
    "127.0.0.1:$(sed -n 's/^PORT=//p' "$state/vnc")" >"$state/web.log" 2>&1 &
keep $!

echo "the terminal is at http://127.0.0.1:$port/vnc.html?autoconnect=true&resize=scale (Ctrl-C ends it)"
# A prefix of its own: whatever runs in it at the end is this session's and is ended with it.
WINEPREFIX=$(cd "$here/.." && pwd)/build/wineprefix-browser-$port
export WINEPREFIX
WINE_DESKTOP=terminal,1280x800 setsid "$here/wine.sh" "$1" &
keep $!
wait $!
