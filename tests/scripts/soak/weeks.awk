# Writes the script of a soak from the pieces of a week.
#
#   awk -v weeks=52 [-v seed=7] -f weeks.awk week.pieces
#
# A line "piece NAME" begins a piece; "setup" is played once before all weeks, the others every week, in their order
# or, with a seed, in a random one. "every 4: LINE" is for every fourth week only. "add COUNTER N" keeps count of
# what the script does; {COUNTER}, {COUNTER-1} and sums like these stand for the number, {week} for the week's.
# After each piece it is measured what the program holds.

/^#/ || /^$/ { next }
/^piece / { names[++pieces] = $2; next }
{ lines[pieces] = lines[pieces] $0 "\n" }

END {
    count["week"] = count["days"] = count["registered"] = count["others"] = count["cancelled"] = 0
    count["kept"] = 0
    if (seed != "") srand(seed)
    for (i = 1; i <= pieces; ++i) order[i] = i
    print "timeout 120" # the machine may have other work
    play(1)
    while (++count["week"] <= weeks) {
        if (seed != "") shuffle()
        for (i = 2; i <= pieces; ++i) play(order[i])
    }
}

function shuffle(    i, k, other) {
    for (i = pieces; i > 2; --i) {
        k = 2 + int(rand() * (i - 1))
        other = order[i]
        order[i] = order[k]
        order[k] = other
    }
}

function play(piece,    list, n, i) {
    n = split(lines[piece], list, "\n")
    for (i = 1; i < n; ++i) line(list[i])
    printf "measure \"%d %s %d %d\"\n", count["week"], names[piece], count["registered"] + count["cancelled"], count["kept"]
}

function line(text,    words) {
    if (match(text, /^every [0-9]+: /)) {
        split(text, words, /[ :]/)
        if (count["week"] % words[2] == 0) line(substr(text, RLENGTH + 1))
    } else if (text ~ /^add /) {
        split(text, words, " ")
        count[words[2]] += words[3]
    } else {
        text = filled(text)
        # No start is taken that is more than two years away, by the clock of the machine, which stands still.
        if (text ~ /^date 1030 / && substr(text, 11) + 0 > 729) text = "date 1030 729"
        print text
    }
}

function filled(text,    head, term, sum) {
    while (match(text, /\{[-+a-z0-9]+\}/)) {
        head = substr(text, 1, RSTART - 1)
        term = substr(text, RSTART + 1, RLENGTH - 2)
        text = substr(text, RSTART + RLENGTH)
        sum = 0
        while (match(term, /[-+]?[a-z0-9]+$/)) {
            sum += value(substr(term, RSTART))
            term = substr(term, 1, RSTART - 1)
        }
        text = head sum text
    }
    return text
}

function value(term,    sign) {
    sign = term ~ /^-/ ? -1 : 1
    sub(/^[-+]/, "", term)
    return sign * (term in count ? count[term] : term)
}
