# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Doxygen reads the public headers through this: each section ("// ---- Title ----") becomes a
# chapter of the reference, each entry point a page of it, together with the names that stand right
# above it. The first sentence of its comment is the title.

/= default;/ { next }
/\/\/\// { gsub(/intf_[A-Za-z]+/, "&()") }  # which makes links of them

/^\/\/ ---- / {
    gsub(/^\/\/ ---- | -+$/, "")
    if (chapter)
        print "/// @}"
    chapter = 1
    id = tolower($0)
    gsub(/[^a-z]/, "", id)
    printf "/// @defgroup %s %s\n/// @{\n", id, $0
    next
}

!chapter { print; next }

{ page = page $0 "\n" }
/^\/\/\// { comment = comment substr($0, 4); next }
/^FX_ENTRY_POINT/ {
    match($0, /intf_[A-Za-z]+/)
    name = substr($0, RSTART, RLENGTH)
    split(substr(comment, 2), title, /[.:;]( |$)/)
}
{ comment = "" }
name && /;$/ {
    printf "\n/// @defgroup %s %s: %s\n/// @{\n%s/// @}\n", name, name, title[1], page
    page = name = ""
}

END {
    printf "%s", page
    if (chapter)
        print "/// @}"
}
