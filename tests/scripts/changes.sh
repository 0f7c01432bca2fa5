#!/bin/sh
# changes.sh DIST OUT: a session that exports registrations, 200 of whose amounts a spreadsheet changes, and the next one,
# which sends the changes.
set -eu
dist=$1 out=$2
scripts=$(cd "$(dirname "$0")" && pwd)
rm -rf "$out"
mkdir -p "$out/files" "$out/played"
out=$(cd "$out" && pwd)
# Each separator becomes two backslashes in the script.
files=$(printf 'Z:%s/files/' "$out" | sed 's#/#\\\\\\\\#g')
# play SCRIPT, with the user's folder and the server's journal that the one before left
play() {
    sed "s#@FILES@/#$files#" "$scripts/$1.script" >"$out/played/$1.script"
    PLAY_OPTIONS="--user Z:$out/user --journal Z:$out/journal" "$scripts/play.sh" "$dist" "$out/played/$1.script" "$out"
}
play changes
# As a spreadsheet leaves it: semicolons, other dates, grouped amounts; 200 with 1,700.00 more, and faults in some.
python3 - "$out/files/exported.csv" "$out/files/edited.csv" <<'END'
import csv, sys
with open(sys.argv[1], newline="", encoding="utf-8") as source:
    rows = list(csv.DictReader(source))
left, faults = 200, 3
for row in rows:
    year, month, day = row["Start Date"].split("-")
    row["Start Date"] = f"{day}/{month}/{year}"
    if not row["Amount"] or row["Action"] != "SIP":
        continue
    if left:
        left -= 1
        row["Amount"] = f"{float(row['Amount']) + 1700:,.2f}"
    elif faults:
        faults -= 1
        row["Amount"] = ["0", "1E+05", row["Amount"]][faults]
        row["Product"] = "MIS" if faults == 2 else row["Product"]
with open(sys.argv[2], "w", newline="", encoding="utf-8-sig") as target:
    writer = csv.DictWriter(target, rows[0].keys(), delimiter=";")
    writer.writeheader()
    writer.writerows(rows)
sys.exit(left or faults)
END
play changes-again
modified=$(cat "$out"/user/PlanfoldOrders/*.csv | grep -c '^[^,]*,modified,')
[ "$modified" = 200 ] || {
    echo "the order record has $modified modifications"
    exit 1
}
