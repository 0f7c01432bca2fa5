#!/bin/sh
# basket.sh DIST OUT: what the basket does with odd files and half-filled forms, what it asks before it sends, and what
# the next session finds of the orders that were not sent.
set -eu
dist=$1 out=$2
scripts=$(cd "$(dirname "$0")" && pwd)
rm -rf "$out"
mkdir -p "$out/files" "$out/played"
out=$(cd "$out" && pwd)

line() {
    printf '%s,nse_cm,EQ,ALPHATEX,1008,ALPHATEX-EQ,%s,150000,,monthly,,%s,12,MKT,B,,,,value,\r\n' "$1" "$2" "$3"
}
{
    printf '\357\273\277'
    line CL100 CNC 05/Mar/2099
    line CL102 XYZ 05/Mar/2099
    printf 'cut\0here,\r\n'
    line CL103 CNC 06/Mar/2099
} >"$out/files/marked.csv"
iconv -f ASCII -t UTF-16LE "$dist/data/baskets/good.csv" >"$out/files/utf16.csv"

# Each separator becomes two backslashes in the script.
files=$(printf 'Z:%s/files/' "$out" | sed 's#/#\\\\\\\\#g')
# play SCRIPT, on the user's folder that the one before left
play() {
    sed "s#@FILES@/#$files#" "$scripts/$1.script" >"$out/played/$1.script"
    PLAY_OPTIONS="--user Z:$out/user" "$scripts/play.sh" "$dist" "$out/played/$1.script" "$out"
}
play basket
[ "$(tr '\0' 0 <"$out/files/rejected.csv")" = "$(printf 'cut0here,\r')" ] || {
    echo "the rejected lines were not saved as they were"
    exit 1
}
play basket-again
