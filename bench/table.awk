# awk -f table.awk RESULTS BARS
# RESULTS: a line a run, "LABEL key=value ...". The n-th run of a label belongs to the n-th run of every other.
# Prints a row for each bar that was measured; exits with 1 if one is missed.

function median(values, count,    i, j, swap) {
    for (i = 2; i <= count; ++i)
        for (j = i; j > 1 && values[j] < values[j - 1]; --j) {
            swap = values[j]
            values[j] = values[j - 1]
            values[j - 1] = swap
        }
    return count % 2 ? values[(count + 1) / 2] : (values[count / 2] + values[count / 2 + 1]) / 2
}

function medianOf(name,    i, values) {
    for (i = 1; i <= runs[name]; ++i)
        values[i] = value[name, i]
    return median(values, runs[name])
}

function medianRatio(name, base, count,    i, values) {
    for (i = 1; i <= count; ++i)
        values[i] = value[name, i] / value[base, i]
    return median(values, count)
}

function compare(name, base, how, count,    parts) {
    if (how == "ratio")
        return medianRatio(name, base, count)
    split(how, parts, "/")
    return (medianOf(name) - medianOf(base)) / parts[2]
}

function verdict(figure, sign, bar,    kept) {
    if (sign == "-")
        return ""
    kept = sign == ">=" ? figure >= bar : sign == "<=" ? figure <= bar : figure < bar
    missed += !kept
    return kept ? "pass" : "MISSED"
}

FILENAME == ARGV[1] {
    for (i = 2; i <= NF; ++i) {
        split($i, pair, "=")
        value[$1 "." pair[1], ++runs[$1 "." pair[1]]] = pair[2] + 0
    }
    next
}

FNR == 1 {
    printf "%-17s %-27s %-26s %-7s %9s  %-8s %s\n", "name", "measured", "baseline", "rounds", "figure", "bar", ""
}

/^[a-z]/ && runs[$2] && runs[$3] {
    count = runs[$2] < runs[$3] ? runs[$2] : runs[$3]
    figure = compare($2, $3, $4, count)
    printf "%-17s %-15s %11.2f %-15s %10.2f %-7d %9.3f  %-8s %s\n", $1, $2, medianOf($2), $3, medianOf($3), count, \
        figure, $5 " " $6, verdict(figure, $5, $6)
}

END { exit missed > 0 }
