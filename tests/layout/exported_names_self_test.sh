#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Asks exported_names.sh about small shared objects that export the right names, one too few and
# one too many, and about a header with one entry point too few.
#
#   exported_names_self_test.sh CHECK HEADER COMPILER

set -euo pipefail

check=${1:?usage: exported_names_self_test.sh CHECK HEADER COMPILER}
header=${2:?usage: exported_names_self_test.sh CHECK HEADER COMPILER}
compiler=${3:?usage: exported_names_self_test.sh CHECK HEADER COMPILER}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
names="driver intf_addConditionRead intf_addrMerge intf_checkAddr intf_checkAddrValidity
    intf_dealRcvFrame intf_getData intf_getDriverParameter intf_getDriverPropertyPage
    intf_getProtocolType intf_getRegDiscription intf_getRegListByType intf_getSendFrame
    intf_initProperty intf_multiCopy intf_setAddrValueChangeCallBack intf_setData
    intf_SetDriverPropertyPage intf_setRcpAddress"
failures=0

expect() { # RESULT STORY HEADER NAME...
    local wanted=$1 story=$2 header=$3 result=0
    shift 3
    printf 'extern "C" { ' >"$work/names.cpp"
    printf 'int %s = 1; ' "$@" >>"$work/names.cpp"
    echo '}' >>"$work/names.cpp"
    "$compiler" -shared -fPIC -nostdlib -o "$work/names.so" "$work/names.cpp"
    "$check" "$work/names.so" "$header" >"$work/output" || result=$?
    [ "$result" -eq "$wanted" ] && return
    echo "$story: exit $result instead of $wanted"
    cat "$work/output"
    failures=$((failures + 1))
}

# shellcheck disable=SC2086  # names are words
{
    expect 0 "the right names" "$header" $names
    expect 1 "one name too many" "$header" $names check_rcv_data
    expect 1 "an entry point that nobody declared" "$header" $names intf_resetAll
    for missing in driver intf_getData intf_SetDriverPropertyPage; do
        expect 1 "without $missing" "$header" ${names/$missing/}
    done
    expect 1 "a mangled name" "$header" ${names/intf_getData/_Z12intf_getDatav}
    grep -v 'intf_getProtocolType' "$header" >"$work/short.h"
    expect 1 "a header that declares 17" "$work/short.h" ${names/intf_getProtocolType/}
}

[ "$failures" -eq 0 ] || exit 1
