#!/bin/sh
# grid.sh DIST OUT: 300 rows of a branch with 20 faults, mended in the grid by keyboard, placed, the results saved.
set -eu
dist=$1 out=$2
scripts=$(cd "$(dirname "$0")" && pwd)
rm -rf "$out"
mkdir -p "$out/files" "$out/played"
out=$(cd "$out" && pwd)

awk -v rejected="$out/files/mended.script" '
function line(client, amount, token, date) {
    return client ",nse_cm,EQ,ALPHATEX," token ",ALPHATEX-EQ,CNC," amount ",,monthly,," date ",12,MKT,B,,,,value,"
}
BEGIN {
    for (i = 1; i <= 300; ++i) {
        client = "CL" (100 + i % 20)
        # No two stand alike: each has a start of its own.
        date = (1 + i % 28) "/Mar/" (2080 + int(i / 28))
        amount = 100000 + i
        # Of the twenty, five each have a bad amount, a bad date, a bad token, and what another row has.
        bad = i % 15 == 0 ? (i / 15) % 4 + 1 : 0
        good = line(client, amount, 1008, date)
        if (bad == 1) printf "%s\r\n", line(client, "none", 1008, date)
        else if (bad == 2) printf "%s\r\n", line(client, amount, 1008, "5/Foo/2099")
        else if (bad == 3) printf "%s\r\n", line(client, amount, 9, date)
        else if (bad == 4) printf "%s\r\n%s\r\n", good, good
        else printf "%s\r\n", good
        if (bad && bad < 4) printf "focus 1104\nkey F2\ntype \"%s\"\nkey Enter\n", good >rejected
    }
}' >"$out/files/branch.csv"

files=$(printf 'Z:%s/files/' "$out" | sed 's#/#\\\\\\\\#g')
sed -e "/^@MENDED@/{r $out/files/mended.script" -e 'd;}' -e "s#@FILES@/#$files#" "$scripts/grid.script" >"$out/played/grid.script"
cp -r "$dist" "$out/dist"
printf '[Basket_Limits]\r\nAmount=1,002.95\r\nTotal=4,00,000 hard\r\n' >"$out/dist/Vesk Plugins/Planfold.ini"
PLAY_OPTIONS="--user Z:$out/user" "$scripts/play.sh" "$out/dist" "$out/played/grid.script" "$out"
rm -rf "$out/dist"
[ "$(grep -c 'Registered SIP' "$out/files/table.csv")" = 300 ] || {
    echo "the results were not saved"
    exit 1
}
