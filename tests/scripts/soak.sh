#!/bin/sh
# soak.sh DIST OUT [WEEKS [SEED]]: plays so many weeks (52) of a dealer's work in one session of the terminal, and
# judges what it holds of the system afterwards. With a seed each week's pieces come in a random order.
# The session's script, log and figures are left in OUT; the last line says "soak passed" or what is wrong.
set -eu
dist=$1 out=$2 weeks=${3:-52} seed=${4:-}
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$out"
# Its own, which no test ends meanwhile.
export WINEPREFIX="${WINEPREFIX:-$(cd "$here/../.." && pwd)/build/wineprefix-soak}"
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cp -r "$dist/." "$stage"
# Each of its orders stands five times in it.
for copy in 1 2 3 4 5; do
    cat "$dist/data/baskets/good.csv"
done >"$stage/data/baskets/big.csv"
awk -v weeks="$weeks" -v seed="$seed" -f "$here/soak/weeks.awk" "$here/soak/week.pieces" >"$out/soak.script"
PLAY_TIMEOUT=${PLAY_TIMEOUT:-$((120 + weeks * 120))} "$here/play.sh" "$stage" "$out/soak.script" "$out"
tr -d '\r' <"$out/soak.log" | awk -f "$here/soak/judge.awk" | tee "$out/figures.txt"
tail -n 1 "$out/figures.txt" | grep -q '^soak passed'
