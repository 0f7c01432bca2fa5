#!/bin/sh
# Fails when a room of the house knows one that it must not: a line each of what includes and what it must not include.
cd "$(dirname "$0")/.." || exit 2
status=0
while read -r from to; do
    found=$(grep -rnE --include=*.cpp --include=*.h "^#include [\"<]($to)" $(echo "$from" | tr , ' ')) || continue
    echo "$from must not include $to:"
    echo "$found"
    status=1
done <<'END'
sdk base/|framework/|plugin/|host/|tools/|windows\.h|commctrl\.h
base sdk/|framework/|plugin/|host/|tools/
framework plugin/|host/|tools/
plugin host/|tools/
plugin/base plugin/(changes|messaging|controls|orderentry|orderbook|history|basket|dayreport|doubts|morning|restricted|shell)/
plugin/import plugin/(changes|record|orderbook|history|dayreport|doubts|morning|restricted|shell)/
plugin/record plugin/(changes|controls|orderentry|orderbook|history|basket|dayreport|doubts|morning|restricted|shell)/
plugin/changes plugin/(basket|dayreport|doubts|history|import|morning|restricted|shell)/
plugin/dayreport plugin/(changes|orderbook|history|doubts|morning|restricted|shell)/
plugin/morning plugin/(changes|dayreport|doubts|restricted|shell)/
plugin/orderentry,plugin/orderbook,plugin/basket,plugin/history plugin/(changes|doubts|morning|restricted|shell)/
plugin/messaging plugin/(changes|record|controls|orderentry|orderbook|history|basket|dayreport|doubts|morning|restricted|shell)/
host plugin/|tools/
host/files host/(market|server|terminal|veskserver|korvexcontrols)/
host/market host/(server|terminal|veskserver|korvexcontrols)/
host/server,host/veskserver,tools host/terminal/
END
# Only the folders "window" know windows.
found=$(grep -rnlE --include=*.cpp --include=*.h '^#include (<windows\.h>|"framework/)' plugin host/terminal | grep -v /window/)
[ -z "$found" ] || { echo "these know windows:"; echo "$found"; status=1; }
exit $status
