# A page as it can stand alone: what it links to and is not among the kept pages becomes plain text. Run from the root of
# the source, with the page's path from there as its argument.
#   awk -v kept="docs/guide.md docs/exceptions.md examples" -f installed_page.awk docs/guide.md

# The path from the root that a link of this page leads to.
function target(link,    parts, n, i, out, depth) {
    sub(/#.*/, "", link)
    if (link == "")
        return FILENAME
    n = split(folder link, parts, "/")
    for (i = 1; i <= n; ++i)
        if (parts[i] == "..")
            --depth
        else if (parts[i] != "" && parts[i] != ".")
            out[++depth] = parts[i]
    link = ""
    for (i = 1; i <= depth; ++i)
        link = link (i == 1 ? "" : "/") out[i]
    return link
}

# A page, or something in a kept directory.
function is_kept(path,    i) {
    for (i = 1; i <= pages; ++i)
        if (path == page[i] || index(path, page[i] "/") == 1)
            return 1
    return 0
}

FNR == 1 {
    pages = split(kept, page, " ")
    folder = FILENAME
    sub(/[^\/]*$/, "", folder)
}

/^```/ { in_program = !in_program }

in_program || /^    / {
    print
    next
}

{
    out = ""
    rest = $0
    while (match(rest, /!?\[[^]]*\]\([^) ]*\)/)) {
        whole = substr(rest, RSTART, RLENGTH)
        text = whole
        sub(/^!?\[/, "", text)
        sub(/\]\([^)]*\)$/, "", text)
        link = whole
        sub(/^.*\]\(/, "", link)
        sub(/\)$/, "", link)
        out = out substr(rest, 1, RSTART - 1) (link ~ /^[a-z]+:/ || is_kept(target(link)) ? whole : text)
        rest = substr(rest, RSTART + RLENGTH)
    }
    print out rest
}
