# Judges the log of a soak: prints what each piece of a week added on average, and the counts at the weeks' ends.
# After some weeks of warming up, nothing that is counted may grow.
#
# Memory grows by what is kept on purpose: registrations, with the server and with the book; lines of the log; and a
# message buffer for each menu pick, until the plug-in ends; what a piece says itself (week.pieces). What a piece adds
# beyond the latter three may be no more, for each registration that it makes, than what orders of another session add,
# which no window of the plug-in places. Two things are the system's: under Wine a file dialog keeps a handle, and a
# static control 24 bytes.

function fault(text) { faults = faults "soak failed: " text "\n" }

function grown(piece) { return sum[piece, "heap"] - 32.1 * sum[piece, "picks"] - 0.16 * sum[piece, "lines"] - sum[piece, "kept"] }

BEGIN { split("handles gdi user windows menus icons strings controls", counted) }

/^(log|system): / { ++now["lines"] }
/instalments? executed/ { now["executed"] += $4 }
/: menu "Planfold"/ { ++now["picks"] }
/: box "You are not enabled/ { --now["picks"] }
/: file "/ { ++files }

/^resources / {
    week = $2
    piece = $3
    now["registered"] = $4 + 0
    now["kept"] = $5 + 0
    for (i = 6; i < NF; i += 2) now[$i] = $(i + 1)
    now["handles"] -= files
    now["beside"] = now["private"] - now["heap"] # the system's own, and what the heaps keep for later
    if (!(piece in known) && week > 0) {
        known[piece]
        name[++names] = piece
    }
    for (i in now) {
        atEnd[week, i] = now[i]
        change[week, piece, i] = now[i] - before[i]
        before[i] = now[i]
    }
}

END {
    weeks = week
    warm = weeks > 12 ? 6 : 1
    settled = weeks > 24 ? 12 : warm # by then the connection library keeps as many closed buffers as it ever does
    judged = weeks - settled
    for (w = settled + 1; w <= weeks; ++w)
        for (n = 1; n <= names; ++n)
            for (i in now) sum[name[n], i] += change[w, name[n], i]

    printf "Average of weeks %d to %d, memory in KiB\n\n", settled + 1, weeks
    printf "%-11s %9s %9s %6s %6s %6s %9s %9s %11s\n", \
        "piece", "registers", "executes", "lines", "picks", "kept", "private", "heap", "unexplained"
    other = grown("others") / sum["others", "registered"]
    for (n = 1; n <= names; ++n) {
        piece = name[n]
        made = sum[piece, "registered"]
        more = grown(piece) - made * other
        printf "%-11s %9.1f %9.1f %6.1f %6.1f %6.1f %9.1f %9.1f %11s\n", piece, made / judged, \
            sum[piece, "executed"] / judged, sum[piece, "lines"] / judged, sum[piece, "picks"] / judged, \
            sum[piece, "kept"] / judged, sum[piece, "private"] / judged, sum[piece, "heap"] / judged, \
            piece == "clock" ? "-" : sprintf("%.1f", more / judged)
        if (piece != "clock" && judged >= 20 && more > judged * 4 + made * other / 2)
            fault(sprintf("\"%s\" adds %.1f KiB a week that nothing explains", piece, more / judged))
    }
    printf "\nA registration from another session takes %.2f KiB.\n\n", other

    printf "%-10s %9s %9s %9s %9s\n", "", "week " warm, "middle", "week " weeks, "most"
    split("registered private heap beside blocks handles gdi user windows menus icons strings controls", shown)
    for (n = 1; n in shown; ++n) {
        i = shown[n]
        most = 0
        for (w = warm; w <= weeks; ++w)
            if (atEnd[w, i] > most) most = atEnd[w, i]
        printf "%-10s %9d %9d %9d %9d\n", i, atEnd[warm, i], atEnd[int((warm + weeks) / 2), i], atEnd[weeks, i], most
        top[i] = most
    }
    for (n = 1; n in counted; ++n)
        if (top[counted[n]] > atEnd[warm, counted[n]])
            fault(counted[n] " grow from " atEnd[warm, counted[n]] " to " top[counted[n]])
    if (!weeks) fault("there is nothing to judge")
    print ""
    printf "%s", faults ? faults : "soak passed: " weeks " weeks\n"
    exit faults != ""
}
