# Writes a manual page for each function that a header documents, and one, named like the header, for what its first
# comment says of them all. It knows the few marks that these comments use.
#   awk -v directory=DIRECTORY -v version=VERSION -v header=vantel.h -f man_pages.awk interface/vantel.h

# Marks of a comment as those of a page. Every reference becomes bold, and a function's has its section.
function marked(text,    out, word) {
    gsub(/\\/, "\\e", text)
    gsub(/\*\*/, "`", text) # bold as code is bold
    while (match(text, /`[^`]*`|#?vantel_[a-z_]+(\(\))?/)) {
        word = substr(text, RSTART, RLENGTH)
        out = out substr(text, 1, RSTART - 1)
        text = substr(text, RSTART + RLENGTH)
        if (word ~ /^`/)
            word = "\\fB" substr(word, 2, length(word) - 2) "\\fR"
        else if (word ~ /\(\)$/)
            word = "\\fB" substr(word, 1, length(word) - 2) "\\fR(3)"
        else
            word = "\\fB" substr(word, word ~ /^#/ ? 2 : 1) "\\fR"
        out = out word
    }
    return out text
}

# A paragraph, or an item of a list, for each part of a text.
function paragraphs(text,    parts, i, n) {
    n = split(text, parts, "\n")
    for (i = 1; i <= n; ++i)
        if (parts[i] ~ /^- /)
            print ".IP \\(bu 2\n\\&" marked(substr(parts[i], 3)) > page
        else if (parts[i] != "")
            print ".PP\n\\&" marked(parts[i]) > page
}

# Takes a comment apart: brief, body, result, and parameters in their order.
function read_comment(lines, count,    i, line, section) {
    brief = body = result = ""
    parameters = 0
    section = "brief"
    for (i = 1; i <= count; ++i) {
        line = lines[i]
        indented = line ~ /^ /
        sub(/^ +/, "", line)
        if (line ~ /^@(file|name|\{|\})/)
            continue
        if (line ~ /^@brief/)
            sub(/^@brief */, "", line)
        else if (line ~ /^@return/) {
            section = "result"
            sub(/^@return */, "", line)
        } else if (line ~ /^@param/) {
            section = "parameter"
            sub(/^@param */, "", line)
            name[++parameters] = line
            sub(/ .*/, "", name[parameters])
            sub(/^[^ ]+ */, "", line)
            meaning[parameters] = line
            continue
        } else if (section == "brief" && line == "")
            section = "body"
        if (section == "brief")
            brief = brief (brief == "" ? "" : " ") line
        else if (section == "result")
            result = result (result == "" ? "" : " ") line
        else if (section == "parameter")
            meaning[parameters] = meaning[parameters] " " line
        else if (line == "" || line ~ /^- /)
            body = body "\n" line
        else
            body = body (body ~ /\n$/ || body == "" ? "" : " ") line
    }
}

function open_page(title, about) {
    page = directory "/" title ".3"
    gsub(/[`#]|\.$/, "", about)
    print ".TH " title " 3 \"\" \"libvantel " version "\" \"Qudits\"" > page
    print ".SH NAME\n" title " \\- " about > page
    print ".SH SYNOPSIS\n.nf\n#include <" header ">" > page
    titles[++pages] = title
}

function close_page() {
    print ".SH SEE ALSO\n\\fBvantel\\fR(3), \\fBvantel_guarded\\fR(3)" > page
    close(page)
}

function write_function(declaration,    title, i) {
    title = declaration
    gsub(/\n/, " ", title)
    sub(/\(.*/, "", title)
    sub(/.*[ *]/, "", title)
    if (brief ~ /^vantel_[a-z_]+\(\)(\.|;.*)$/)
        sub(/\(\)/, "(3) with every failure a status", brief)
    open_page(title, brief)
    print ".PP\n" declaration "\n.fi\n.PP\nCompile and link with \\fI`pkg-config --cflags --libs " \
        package "`\\fR." > page
    print ".SH DESCRIPTION" > page
    paragraphs(brief)
    paragraphs(body)
    if (parameters > 0)
        print ".SH PARAMETERS" > page
    for (i = 1; i <= parameters; ++i)
        print ".TP\n\\fI" name[i] "\\fR\n\\&" marked(meaning[i]) > page
    print ".SH RETURN VALUE" > page
    paragraphs(result == "" ? group_result : result)
    close_page()
}

BEGIN {
    library = header
    sub(/\.h$/, "", library)
    package = library
    sub(/_/, "-", package)
}

/^\/\*\*/ { in_comment = 1; count = 0 }

in_comment {
    text = $0
    is_last = text ~ /\*\/ *$/
    sub(/^\/\*\* ?/, "", text)
    sub(/ *\*\/ *$/, "", text)
    sub(/^ \* ?/, "", text)
    if (text !~ /^ *$/ || count > 0)
        lines[++count] = text
    if (is_last) {
        in_comment = 0
        read_comment(lines, count)
        if (lines[1] ~ /^@file/) {
            overview_brief = brief
            overview_body = body
        } else if (lines[1] ~ /^@name/)
            group_result = result
        else if (lines[1] ~ /^@\}/)
            group_result = ""
    }
    next
}

/^ +vantel_[a-z_]+ = -?[0-9]+,? +\/\*\*</ {
    about = $0
    sub(/.*\*\*< /, "", about)
    sub(/ *\*\/$/, "", about)
    sub(/,.*/, "", $3)
    status[++statuses] = ".TP\n\\fB" $1 "\\fR, " $3 "\n\\&" marked(about)
}

/^VANTEL_API/ { declaration = "" ; in_declaration = 1 }

in_declaration {
    line = $0
    sub(/^VANTEL_API /, "", line)
    sub(/^ +/, "        ", line)
    declaration = declaration (declaration == "" ? "" : "\n") line
    if (line ~ /;$/) {
        in_declaration = 0
        write_function(declaration)
    }
}

END {
    open_page(library, overview_brief)
    print ".fi\n.SH DESCRIPTION" > page
    paragraphs(overview_body)
    print ".SH STATUS CODES" > page
    for (i = 1; i <= statuses; ++i)
        print status[i] > page
    print ".SH FUNCTIONS" > page
    for (i = 1; i < pages; ++i)
        print (i == 1 ? ".PP" : ".br") "\n\\fB" titles[i] "\\fR(3)" > page
    close_page()
}
