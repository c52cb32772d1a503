# Reads a form and prints where each of its widgets lies in the window, in pixels of a screen with
# `dpi` dots per inch: name, x, y, width, height.

function value(line) {
    gsub(/<[^>]*>/, "", line)
    return int(line * dpi / 96)
}

/<widget / && !/\/>/ {
    split($0, quoted, "\"")
    depth++
    name[depth] = quoted[4]
    left[depth] = left[depth - 1]
    top[depth] = top[depth - 1]
}
/<\/widget>/                { depth-- }
/<property name="geometry">/ { in_geometry = 1 }
in_geometry && /<x>/         { left[depth] += value($0) }
in_geometry && /<y>/         { top[depth] += value($0) }
in_geometry && /<width>/     { width = value($0) }
in_geometry && /<height>/ {
    print name[depth], left[depth], top[depth], width, value($0)
    in_geometry = 0
}
