#!/bin/sh
# two-terminals.sh DIST OUT: two terminals on one server of its own. One places, changes and cancels, the other's
# book and history show it; the server is killed and started again under both, and then the first terminal.
# When to kill is told by screenshots of the scripts.
set -eu
dist=$1 out=$2
scripts=$(cd "$(dirname "$0")" && pwd)
rm -rf "$out"
mkdir -p "$out"
out=$(cd "$out" && pwd)
played=$out/played
mkdir "$played"

fail() {
    echo "$*"
    cat "$out"/*.log "$out/server.txt" 2>/dev/null || true
    exit 1
}
# The pattern does not match its own command line.
kill_terminal() { pkill -9 -f "[-]-log Z:$out/$1.log" || true; }
kill_server() { pkill -9 -f "[-]-journal Z:$out/journal" || true; }
end() {
    kill_terminal two-a
    kill_terminal two-b
    kill_server
    "$scripts/../../cmake/wine.sh" --end
}
trap end EXIT
# await WHAT FILE: until it is there
await() {
    for _ in $(seq 600); do
        [ ! -s "$2" ] || return 0
        sleep 0.2
    done
    fail "$1 did not come"
}
start_server() {
    rm -f "$out/server.txt"
    WINE_CONSOLE=1 "$scripts/../../cmake/wine.sh" "$dist/veskserver.exe" --port "$1" \
        --data "Z:$(realpath "$dist/data")" --journal "Z:$out/journal" --allow-commands <"$out/input" >"$out/server.txt" 2>&1 &
    await "the server" "$out/server.txt"
}
# play SCRIPT
play() {
    sed "s/@SERVER@/localhost:$port/" "$scripts/$1.script" >"$played/$1.script"
    PLAY_OPTIONS="--server localhost:$port --secrets Z:$out/journal.secrets" "$scripts/play.sh" "$dist" "$played/$1.script" "$out"
}

# The end of its input would end the server.
mkfifo "$out/input"
exec 3<>"$out/input"
start_server 0
port=$(sed -n 's/^listening on 127.0.0.1:\([0-9]*\).*/\1/p' "$out/server.txt")
[ -n "$port" ] || fail "the server has no port"
play two-a >"$out/a.txt" &
play two-b >"$out/b.txt" &
second=$!
await "the first terminal's change" "$out/a-before-the-kill.png"
await "the second terminal's change" "$out/b-before-the-kill.png"
kill_server
await "the first terminal's loss" "$out/a-lost.png"
await "the second terminal's loss" "$out/b-lost.png"
start_server "$port"
await "the cancellation" "$out/a-cancelled.png"
kill_terminal two-a
play two-a-again || fail "the first terminal, started again, failed"
wait "$second" || fail "the second terminal failed"
