#!/bin/sh
# lane.sh COMMAND...: runs it with a Wine prefix, a display and a processor of its own; there are as many as
# processors. Wine's programs and its server wait for each other all the time: on one processor they hand over to each
# other five times as fast as across two. What Wine has started beside the program ends with it: it would hold the
# program's output open, and who waits for that waits as long as others use the prefix.
set -eu
if [ "${1:-}" = --in ]; then
    shift
    status=0
    "$@" || status=$?
    "$(dirname "$0")/wine.sh" --end >/dev/null 2>&1
    exit $status
fi
lanes=$(cd "$(dirname "$0")/.." && pwd)/build
taken=99 # by no program here
unset DISPLAY
processors=$(taskset -cp $$ | sed 's/.*: //; s/,/ /g')
while :; do
    for range in $processors; do
        for WINE_LANE in $(seq "${range%-*}" "${range#*-}"); do
            export WINE_LANE
            status=0
            flock -n -o -E $taken "$lanes/lane-$WINE_LANE.lock" taskset -c "$WINE_LANE" "$0" --in "$@" || status=$?
            [ $status = $taken ] || exit $status
        done
    done
    sleep 1
done
