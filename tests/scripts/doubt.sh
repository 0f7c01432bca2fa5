#!/bin/sh
# doubt.sh DIST OUT: a session that ends before its orders are answered, and the next one, which finds out.
set -eu
dist=$1 out=$2
scripts=$(cd "$(dirname "$0")" && pwd)
rm -rf "$out"
mkdir -p "$out"
out=$(cd "$out" && pwd)
for script in doubt doubt-again; do
    PLAY_OPTIONS="--user Z:$out/user --journal Z:$out/journal" "$scripts/play.sh" "$dist" "$scripts/$script.script" "$out"
done
