#!/bin/sh
# bench/dealer/play.sh DIST OUT [LINES]: plays what a dealer waits for in the real terminal, and prints the times:
# a book of 104,856 rows (of 300,000 registrations on the server), a basket of so many lines, and a book of a million.
set -eu
dist=$1 out=$2 lines=${3:-10000}
here=$(cd "$(dirname "$0")" && pwd)
rm -rf "$out"
mkdir -p "$out"
out=$(cd "$out" && pwd)
awk -v lines="$lines" 'BEGIN {
    for (i = 0; i < lines; ++i)
        printf "CL%d,nse_cm,EQ,ALPHATEX,1008,ALPHATEX-EQ,CNC,%d,,monthly,,05/Mar/2099,12,MKT,B,,,,value,\r\n",
            100 + i % 50, 150000 + 100 * i
}' > "$out/basket.csv"
# Each separator becomes two backslashes in the script.
file=$(printf 'Z:%s/basket.csv' "$out" | sed 's#/#\\\\\\\\#g')
for script in book basket million; do
    sed "s#@FILE@#$file#; s/@LINES@/$lines/g" "$here/$script.script" > "$out/$script.script"
    PLAY_TIMEOUT=1200 "$here/../../tests/scripts/play.sh" "$dist" "$out/$script.script" "$out"
    echo "$script:"
    sed -n 's/^time /  /p' "$out/$script.log"
done
