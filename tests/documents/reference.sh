#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Each entry point of the public headers has a manual page that bears its name, says what it does,
# and shows its declaration with words for every parameter. Doxygen's own warnings, which end the
# build, see to the HTML.
#
#   reference.sh FOLDER HEADER...    FOLDER is where Doxygen put html/ and man/

set -euo pipefail

pages=${1:?usage: reference.sh FOLDER HEADER...}/man/man3
shift
pages_seen=0

fail() {
    echo "$*" >&2
    exit 1
}

while read -r name; do
    page=$pages/$name.3
    [ -s "$page" ] || fail "there is no page $page"
    grep -qE "^$name \\\\- [A-Z]" "$page" || fail "$page does not say what $name does"
    grep -qF ".SS \"" "$page" || fail "$page shows no declaration"
    parameters=$(grep -oE "^\\.SS \"[a-z]+ $name \(.*" "$page" | tr ',)' '\n\n' | grep -oE '[A-Za-z]+ *$')
    for parameter in $parameters; do
        grep -qE "^\\\\fI$parameter\\\\fP .*[a-z0-9]" "$page" || fail "$page leaves out $parameter"
    done
    pages_seen=$((pages_seen + 1))
done < <(grep -hE '^FX_ENTRY_POINT ' "$@" | grep -oE '\bintf_[A-Za-z]+')
[ "$pages_seen" -eq 18 ] || fail "$pages_seen pages instead of 18"
