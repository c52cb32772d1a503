# Checks a results file of five measurements on the bench: delays that its latencies allow, and
# means that belong to their values.

function fail(what) {
    print FILENAME ":" FNR ": " what ": " $0
    failed = 1
    exit 1
}
function expect(quantity, low, high) {
    name[++quantities] = quantity
    lowest[quantities] = low
    highest[quantities] = high
}
BEGIN {
    expect("Source2RF", 36, 54)
    expect("Source2HD", 0, 0) # no video analyzer in this session
    expect("Source2Snk", 100, 138)
}
{ quantity = int((FNR + 1) / 2) }
FNR % 2 == 1 {
    if ($1 " " $2 != name[quantity] " Delay:") fail("not the delays of " name[quantity])
    if (NF != 2 + 5) fail("not five delays")
    sum = 0
    same = 1
    for (i = 3; i <= NF; i++) {
        if ($i !~ /^[0-9.]+$/) fail("not a number of milliseconds")
        if ($i < lowest[quantity] || $i > highest[quantity]) fail("not what the bench does")
        if ($i != $3) same = 0
        sum += $i
    }
    if (same && lowest[quantity] < highest[quantity]) fail("five times the same")
}
FNR % 2 == 0 {
    if ($1 " " $2 != name[quantity] " Mean:" || NF != 3) fail("not the mean of " name[quantity])
    # Both are rounded to six digits.
    difference = $3 - sum / 5
    if (difference < 0) difference = -difference
    if (difference > 1e-5 * sum / 5) fail("not the mean of the values")
}
END { if (!failed && FNR != 6) fail("not six lines") }
