# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# For the tests of this folder, which source it: a place to work in, complaints, and an example
# run against a simulated PLC. Settings come from ctest as FX_... variables.
# shellcheck shell=bash

set -euo pipefail

work=$(mktemp -d)
simulator=""
clean_up() {
    [ -z "$simulator" ] || kill "$simulator" 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT

# A driver of the machine must not be taken for the installed one. PATH, LD_LIBRARY_PATH and
# PKG_CONFIG_PATH stay: they may lead to the compiler and to Qt.
unset FX_DRIVER PKG_CONFIG_LIBDIR CMAKE_PREFIX_PATH

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

# expect_text WHAT TEXT COMMAND...: the command succeeds and its output holds the text.
expect_text() {
    local what=$1 text=$2 output
    shift 2
    output=$(timeout 60 "$@" 2>&1) || fail "$what: exit $?: $output"
    [[ $output == *"$text"* ]] || fail "$what: no '$text' in: $output"
}

# quietly COMMAND...: shows the output only of a command that fails.
quietly() {
    "$@" >"$work/output" 2>&1 || { cat "$work/output" >&2; fail "$*"; }
}

# start_simulator PROGRAM: a PLC at $work/plc that wants an ENQ first, ready when this returns.
start_simulator() {
    coproc FXSIM { exec "$1" --link "$work/plc" --baud 0 --enq needed --no-commands; }
    simulator=$FXSIM_PID
    local line
    IFS= read -t 20 -r line <&"${FXSIM[0]}" || fail "$1 did not start"
    [[ $line == "fxsim: ready on"* ]] || fail "$1 said: $line"
}

stop_simulator() {
    kill "$simulator"
    wait "$simulator" 2>/dev/null || true
    simulator=""
}

has_tools() {
    [ "$FX_TOOLS" -eq 1 ]
}

has_gateway() {
    [ "$FX_GATEWAY" -eq 1 ]
}

has_view() {
    [ "$FX_VIEW" -eq 1 ]
}

# run_examples FOLDER: each does what it says it does; minimal_host only where a PLC was started.
run_examples() {
    expect_text "editor_services" "X18: not a number" "$1/editor_services"
    expect_text "recipes" "recipe word 0 is now 181" "$1/recipes"
    ! has_tools || expect_text "minimal_host" "D100 = 1337" "$1/minimal_host" "$work/plc"
}
