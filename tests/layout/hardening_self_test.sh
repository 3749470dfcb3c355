#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Asks hardening.sh about small shared objects: one that has everything, and one for each thing that
# may be missing.
#
#   hardening_self_test.sh CHECK COMPILER

set -euo pipefail

check=${1:?usage: hardening_self_test.sh CHECK COMPILER}
compiler=${2:?usage: hardening_self_test.sh CHECK COMPILER}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

cat >"$work/object.cpp" <<END
#include <cstring>
extern "C" int nowhere();
extern "C" int answer(const char* text)
{
    char copy[64];
    std::strcpy(copy, text);
#ifdef CALLS_NOWHERE
    return nowhere();
#else
    return copy[0];
#endif
}
END
good=(-O1 -fPIC -shared -fstack-protector-strong -z relro -z now -z noexecstack)

# expect RESULT TEXT OPTION...: compiles with the options and looks for the text in the answer
expect() {
    local wanted=$1 text=$2 result=0
    shift 2
    "$compiler" "${good[@]}" "$@" -o "$work/object.so" "$work/object.cpp" 2>"$work/compiler" ||
        { cat "$work/compiler"; exit 1; }
    "$check" "$work/object.so" "${commands[@]}" >"$work/output" || result=$?
    [ "$result" -eq "$wanted" ] && [[ $(<"$work/output") == *"$text"* ]] && return
    echo "$*: exit $result instead of $wanted, or no '$text' in:"
    cat "$work/output"
    failures=$((failures + 1))
}

commands=()
expect 0 ""
expect 1 "becomes read-only" -z norelro
expect 1 "relocations for later" -z lazy
expect 1 "executable stack" -z execstack
expect 1 "no stack protectors" -fno-stack-protector
expect 1 "leaves symbols undefined" -DCALLS_NOWHERE
expect 1 "to write to and to execute" -nostdlib -Wl,-N

commands=("$work/commands.json")
line='"command": "c++ -O3 -D_FORTIFY_SOURCE=2 -o fx_driver_objects.dir/a.o"'
echo "$line" >"${commands[0]}"
expect 0 ""
echo "${line/-D_FORTIFY_SOURCE=2/}" >>"${commands[0]}"
expect 1 "without checked buffer functions"
echo "${line/-O3/-O0}" >"${commands[0]}"
expect 1 "without checked buffer functions"
echo >"${commands[0]}"
expect 1 "compiles it"

[ "$failures" -eq 0 ] || exit 1
