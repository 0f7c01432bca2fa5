#!/bin/sh
# starts.sh SERVER [WINE]: what stops the start of a server with a reason, and what its first start makes. WINE runs a
# Windows program, which is not told of the group's rights.
set -eu
server=$1
wine=${2:-}
export WINE_CONSOLE=1
folder=$(mktemp -d)
# A session of Wine without a display is nothing for the windows of the next test.
trap 'rm -rf "$folder"; [ -z "$wine" ] || "$wine" --end' EXIT
bad=0
data=$folder/data

# start STATUS TEXT: the server, whose input ends at once, has to end so and to say this.
start() {
    status=0
    ${wine:+"$wine"} "$server" --data "$data" --login DEALER02:BROKER </dev/null >"$folder/told" 2>&1 || status=$?
    [ "$status" = "$1" ] && grep -qF "$2" "$folder/told" && return
    echo "expected $1: $2; was $status:"
    cat "$folder/told"
    bad=1
}
fresh() { # a folder without the market
    rm -rf "$data"
    mkdir "$data"
    echo "{}" >"$data/server.json"
}

fresh
start 0 "listening on 127.0.0.1:"
grep -qF "journal.secrets: the secret of DEALER01, DEALER02" "$folder/told" || bad=1
stat -c %a "$data/journal.secrets" | grep -q "00$" || { echo "others can read the secrets"; bad=1; }
cp "$data/journal.secrets" "$folder/secrets"
start 0 "listening on 127.0.0.1:"
cmp "$folder/secrets" "$data/journal.secrets" || bad=1
modes="604 640"
[ -z "$wine" ] || modes=604
for mode in $modes; do
    chmod "$mode" "$data/journal.secrets"
    start 2 "journal.secrets: others may read it"
done

# refuse FILE TEXT PLACE
refuse() {
    fresh
    printf "$2" >"$data/$1"
    chmod 600 "$data/$1"
    start 2 "$3"
}
refuse nontrading.csv 'date,occasion\n2027-13-01,none\n' "nontrading.csv:2: "
refuse clients.csv 'rubbish\n' "clients.csv:1: "
refuse terminal.json '{\n"loginId"= 1}' "terminal.json:2: "
refuse server.json '[]' "server.json"
refuse journal.secrets '{"A": {}}' 'journal.secrets:1: "A" needs a secret'
exit $bad
