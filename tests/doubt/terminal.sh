#!/bin/bash
# terminal.sh DIST SERVER OUT [ROUNDS] [SEED]: doubt_test's question to the whole terminal, which is killed as it
# places a basket at a server (SERVER is veskserver), with or without a fault on the way. The next session is played by
# what record, kept basket and journal say: what the terminal tells has to agree. In the end each order stands once.
set -eu
dist=$(realpath "$1") server=$(realpath "$2") out=$3 rounds=${4:-3}
RANDOM=${5:-1}
scripts=$(cd "$(dirname "$0")/../scripts" && pwd)
rm -rf "$out"
mkdir -p "$out"
out=$(cd "$out" && pwd)
faults=(none none silent ignored "delay 40000" "delay 300" twice noserial "disconnect 1" "disconnect-before 1" "error 99")
marks=("press 1101" ",sending," ",registered,")

end() {
    pkill -9 -f "[-]-log Z:$out/" || true
    pkill -9 -f "[-]-journal $out/" || true
}
trap end EXIT
start_server() {
    rm -f input server.txt
    mkfifo input && exec 3<>input
    "$server" --port 0 --data "$dist/data" --journal "$PWD/journal" --allow-commands <input >server.txt 2>server.log &
    for _ in $(seq 100); do [ -s server.txt ] || sleep 0.05; done
    port=$(sed -n 's/^listening on 127.0.0.1:\([0-9]*\).*/\1/p' server.txt)
}
play() {
    PLAY_OPTIONS="--user Z:$PWD/user --server localhost:$port --secrets Z:$PWD/journal.secrets" "$scripts/play.sh" "$dist" "$PWD/$1.script" "$PWD" >"$1.txt"
}
amounts() { sort -u; }
# Of the record: the amount of each order whose last event is one of these.
last_events() {
    cat user/PlanfoldOrders/*.csv 2>/dev/null | tr -d '\r' |
        awk -F, -v want=" $* " '$2 != "event" && $13 != "" && $17 !~ /\032/ { last[$13] = $2 }
            END { for (amount in last) if (index(want, " " last[amount] " ")) print amount }' | amounts
}
registered() { grep '"registration":' journal | grep -o '"53063":"[0-9]*"' | cut -d'"' -f4 | sort; }
kept() { cut -d, -f8 user/PlanfoldBasket.csv 2>/dev/null | amounts; }
count() { wc -l | tr -d ' '; }
orders() { [ "$1" = 1 ] && echo "1 order" || echo "$1 orders"; }

first_session() { # of COUNT orders under FAULT
    cat >first.script <<EOF
expect log "connected"
fault add_sip_orders $2
menu "Planfold" "SIP Basket Entry"
window "Planfold Basket Order"
press 1102
file "Z:${PWD//\//\\\\}\\\\orders.csv"
expect rows 1100 $1
press 1101
box "Are you sure to place these Basket Orders?" Yes
box "Order Placed..!!" OK
timeout 60
expect status 1173 3 "never"
EOF
    play first &
    local killAt=${marks[RANDOM % 3]}
    for _ in $(seq 600); do [ ! -s first.log ] || ! grep -q "$killAt" first.log user/PlanfoldOrders/*.csv 2>/dev/null || break; sleep 0.02; done
    sleep "0.$(printf %03d $((RANDOM % 400)))"
    pkill -9 -f "[-]-log Z:$PWD/first.log" || true
    wait $! || true
}
# What the terminal has to tell, by the files: rows that were kept and not sent, orders in doubt, and of these what
# the server has. What it refused is refused again by hand.
second_session() {
    local doubt unsent found absent refused rows twice answer=OK
    last_events sending in_doubt registered refused not_sent >sent
    last_events sending in_doubt >doubt
    kept | comm -23 - sent >unsent
    registered | uniq >there
    comm -23 doubt there >absent
    unsent=$(count <unsent) doubt=$(count <doubt) absent=$(count <absent) found=$(comm -12 doubt there | count)
    [ "$unsent" = 0 ] || kept >basket
    cat absent >>basket
    amounts <basket >rows
    refused=$(last_events refused not_sent | comm -12 - rows | count) rows=$(count <rows)
    twice=$(awk '{ ++of[($1 - 500000) / 100 % 50] } END { for (client in of) if (of[client] > 1) all += of[client]
        if (all) print "Duplicates: " all "  " }' rows)
    {
        echo 'expect log "connected"'
        echo 'fault add_sip_orders none'
        echo 'menu "Planfold" "SIP Basket Entry"'
        echo 'window "Planfold Basket Order"'
        [ "$unsent" = 0 ] ||
            echo "box starting \"Orders of the basket that were not sent when the terminal ended: $unsent.\" Yes"
        echo 'timeout 60'
        if [ "$doubt" -gt 0 ]; then
            echo "box starting \"$(orders "$doubt") of orders.csv, sent at \" Yes"
            [ "$absent" = 0 ] || answer=Yes
            echo "box starting \"Compared with the book: $found found, $absent not there, 0 still in doubt.\" $answer"
        fi
        if [ $((unsent + absent)) -gt 0 ]; then
            echo 'context 1100 "Place Unsent"'
            echo 'box "Are you sure to place these Basket Orders?" Yes'
            echo 'box "Order Placed..!!" OK'
            echo "expect status 1173 3 \"${twice}Sent $rows: $((rows - refused)) registered, $refused refused, 0 in doubt\""
        fi
    } >second.script
    play second || { cat second.txt; return 1; }
}

bad=0
for round in $(seq "$rounds"); do
    mkdir "$out/$round" && cd "$out/$round"
    : >basket
    number=$((RANDOM % 2 ? 1 + RANDOM % 20 : 250 + RANDOM % 150)) fault=${faults[RANDOM % ${#faults[@]}]}
    for i in $(seq "$number"); do
        echo "CL$((100 + i % 50)),nse_cm,EQ,AMBERMEDIA,1196,AMBERMEDIA-EQ,CNC,$((500000 + i * 100)),,monthly,,05/Jan/2099,12,MKT,B,,,,value,"
    done >orders.csv
    start_server
    first_session "$number" "$fault"
    sleep 1
    if [ $((RANDOM % 3)) = 0 ]; then
        pkill -9 -f "[-]-journal $PWD/"
        start_server
        fault="$fault, server killed"
    fi
    second_session || bad=$((bad + 1))
    sleep 1
    cut -d, -f8 orders.csv | sort >wanted
    last_events refused not_sent | comm -23 wanted - >standing
    registered >got
    if ! cmp -s standing got; then
        bad=$((bad + 1))
        diff standing got | head -n 5
    fi
    echo "$round: $number orders, $fault: $(count <got) registered, $(last_events refused | count) refused, found out $(count <doubt) in doubt, $(count <absent) absent, $(count <unsent) unsent"
    pkill -9 -f "[-]-journal $PWD/"
done
echo "$rounds rounds, $bad wrong"
[ "$bad" = 0 ]
