#!/bin/sh
# pictures.sh SCRIPTS TOUR150: takes the documents' pictures from what the scripts have left: SCRIPTS is the folder
# "scripts" of a build, after its tests; TOUR150 that of "WINE_DPI=144 play.sh dist tour.script TOUR150".
# docs/browser.png is made by hand.
set -eu
docs=$(cd "$(dirname "$0")/../../docs" && pwd)
while read -r picture from shot; do
    case $from in
    tour150) cp "$2/$shot.png" "$docs/$picture.png" ;;
    *) cp "$1/$from/$shot.png" "$docs/$picture.png" ;;
    esac
done <<'PICTURES'
basket tour 15-basket-loaded
basket-150 basket basket-150
book tour 07-book
book-150 tour150 07-book
book-floating tour 11-floating
cautionary-question tour 05-caution
changes changes changes-01-old-and-new
client-search tour 02-client-search
connection-lost two-terminals b-lost
day-orders dayreport dayreport-01
history tour 14-history
import import import-asks
in-doubt doubt doubt-absent
modify tour 08-modify
order-entry tour 03-filled
order-entry-150 tour150 03-filled
planned-dates tour 04-planned-dates
reject-reason tour 12-reason
restricted-dates tour 19-restricted-dates
run-stopped mass mass-05-stopped
runs-of-a-period morning morning-07-failed
upcoming-runs morning morning-02-plans
PICTURES
