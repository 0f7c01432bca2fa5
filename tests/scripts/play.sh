#!/bin/sh
# play.sh DIST SCRIPT OUT: plays a script on a fresh copy of the terminal in its own Wine desktop, where
# windows have title bars. The log and the screenshots are left in OUT.
# PLAY_OPTIONS are further words for the terminal; PLAY_FOLDER is the name of the folder that it is copied to.
# The desktop loses the exit status, so the verdict is read from the log's last line.
set -eu
dist=$1 script=$2 out=$3
root=$(cd "$(dirname "$0")/../.." && pwd)
mkdir -p "$out"
out=$(cd "$out" && pwd)
top=$(mktemp -d)
trap 'rm -rf "$top"' EXIT
stage=$top/${PLAY_FOLDER:-terminal}
export LC_ALL=C.UTF-8 # by which names of files are read
mkdir "$stage"
cp -r "$dist/." "$stage"
rm -rf "$stage/data/user" "$stage"/data/journal*
log=$out/$(basename "$script" .script).log
rm -f "$log"

WINE_DESKTOP=vesk$$,1280x800 timeout "${PLAY_TIMEOUT:-180}" "$root/cmake/wine.sh" "Z:$stage/VeskTrader.exe" \
    --script "Z:$(realpath "$script")" --log "Z:$log" --out "Z:$out" ${PLAY_OPTIONS:-} || true

verdict=$(tail -n 1 "$log" 2>/dev/null | tr -d '\r')
live=$(tr -d '\r' <"$log" 2>/dev/null | grep -c ' still live: 0$' || true)
[ "$verdict" = "script passed" ] && [ "$live" = 2 ] && exit 0
cat "$log" 2>/dev/null || true
case $verdict in
"script passed") echo "strings or server controls were left behind" ;;
"script failed"*) ;;
*) echo "the terminal ended without a verdict" ;;
esac
exit 1
