#!/bin/sh
# example-host.sh HOST DIST CHECK: the example of a host asks the plug-in of DIST what it is, and the program for hosts'
# makers finds in the example what it has and what it leaves out.
set -eu
host=$(realpath "$1") dist=$(realpath "$2") check=$(realpath "$3")
wine=$(cd "$(dirname "$0")/../.." && pwd)/cmake/wine.sh
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cp "$host" "$dist"/*.dll "$dist/Vesk Plugins/Planfold.zup" "$stage"
export WINE_CONSOLE=1

told=$("$wine" "Z:$stage/$(basename "$host")" "Z:$(printf %s "$stage" | tr / '\\')\\Planfold.zup" | tr -d '\r')
expected='menu: Order Entry
menu: SIP Basket Entry
menu: SIP Registration Book
menu: SIP Set Restricted Date
right: QV: Planfold
right: QV: Planfold: Custom
right: QV: Planfold: SIP Set Restricted Date'
[ "$(printf '%s\n' "$told" | sed 1d)" = "$expected" ] || { printf 'told:\n%s\n' "$told" >&2; exit 1; }

status=0
report=$("$wine" "$check" "$host" | tr -d '\r') || status=$?
case $report in
*"pu_fill_scrip_combos is missing (orders)"*"a host, 4 of 37 exports are as they must be") ;;
*) printf '%s\n' "$report" >&2; exit 1 ;;
esac
for whole in VeskTrader.exe "Vesk Plugins/Planfold.zup"; do
    "$wine" "$check" "$dist/$whole"
done
