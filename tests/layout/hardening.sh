#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Checks on a built object what makes it hard to abuse: relocations that are all done at the start
# and then read-only, no stack or segment that is both writable and executable, stack protectors,
# a position that may be any, no symbol that nothing defines. With a compile_commands.json, also
# that every source of the library is compiled with checked buffer functions: the object shows them
# only where the compiler could not prove a copy harmless.
#
#   hardening.sh OBJECT [COMPILE_COMMANDS]

set -euo pipefail

object=${1:?usage: hardening.sh OBJECT [COMPILE_COMMANDS]}
commands=${2:-}
export LC_ALL=C
failures=0

# expect STORY COMMAND...: the command must succeed
expect() {
    "${@:2}" && return
    echo "$object: $1"
    failures=$((failures + 1))
}

holds() { grep -qE -- "$2" <<<"$1"; }
lacks() { ! holds "$@"; }

header=$(readelf -W -h "$object")
segments=$(readelf -W -l "$object")
dynamic=$(readelf -W -d "$object")
symbols=$(readelf -W --dyn-syms "$object")

expect "is bound to one place" holds "$header" 'Type: +DYN'
expect "has no segment that becomes read-only (-z relro)" holds "$segments" 'GNU_RELRO'
expect "leaves relocations for later (-z now)" holds "$dynamic" 'BIND_NOW|FLAGS_1.* NOW'
expect "says nothing about its stack (-z noexecstack)" holds "$segments" 'GNU_STACK'
expect "wants an executable stack" lacks "$segments" 'GNU_STACK.* RWE'
expect "has a segment to write to and to execute" lacks "$segments" 'LOAD.* RWE'
expect "changes its code when it is loaded" lacks "$dynamic" 'TEXTREL'
expect "has no stack protectors" holds "$symbols" 'UND __stack_chk_fail'
expect "leaves symbols undefined (-z defs)" lacks "$(ldd -r "$object" 2>&1)" 'undefined symbol'

if [ -n "$commands" ]; then
    compiled=$(grep '"command"' "$commands" | grep 'fx_driver_objects' || true)
    expect "nothing in $commands compiles it" holds "$compiled" fx_driver_objects
    unchecked=$(grep -vE -- '-O[123s].*-D_FORTIFY_SOURCE=[23]' <<<"$compiled" || true)
    expect "is compiled without checked buffer functions: $unchecked" test -z "$unchecked"
fi

[ "$failures" -eq 0 ] || exit 1
