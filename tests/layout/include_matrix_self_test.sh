#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Asks include_matrix.sh about small trees that each hold one include, allowed or not, so that
# every cell of the matrix is known to be guarded.
#
#   include_matrix_self_test.sh CHECK    CHECK is the path of include_matrix.sh

set -euo pipefail

check=${1:?usage: include_matrix_self_test.sh CHECK}
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failures=0

expect() { # RESULT FOLDER INCLUDE
    rm -rf "${tree:?}"/*
    mkdir -p "$tree"/{driver,address,cache,plan,protocol,host,simulator}/inner
    for folder in driver address cache plan protocol host simulator; do
        echo '#include <vector>' >"$tree/$folder/beside.h"
    done
    echo "$3" >"$tree/$2/inner/asks.cpp"
    local result=0
    "$check" "$tree" >"$tree/output" || result=$?
    [ "$result" -eq "$1" ] && return
    echo "$2/ with $3: exit $result instead of $1"
    cat "$tree/output"
    failures=$((failures + 1))
}

expect_allowed() { for path in "${@:2}"; do expect 0 "$1" "#include \"$path\""; done; }
expect_refused() { for path in "${@:2}"; do expect 1 "$1" "#include \"$path\""; done; }

expect_allowed driver driver/records.h
expect_refused driver address/register_types.h cache/data_areas.h plan/pieces.h \
    protocol/frame_codec.h host/link.h simulator/link.h
expect_allowed address driver/records.h address/register_types.h
expect_refused address cache/data_areas.h plan/pieces.h protocol/frame_codec.h host/link.h
expect_allowed cache driver/records.h address/register_types.h cache/data_areas.h
expect_refused cache address/multi_copy.h plan/pieces.h protocol/frame_codec.h host/link.h
expect_allowed plan driver/records.h address/register_types.h cache/data_areas.h plan/pieces.h
expect_refused plan address/multi_copy.h cache/recipe.h cache/notification.h \
    protocol/frame_codec.h simulator/link.h
expect_allowed protocol driver/records.h address/register_types.h cache/recipe.h \
    protocol/frame_codec.h
expect_refused protocol address/multi_copy.h plan/pieces.h host/link.h
expect_allowed host driver/intf.h host/link.h simulator/link.h
expect_refused host driver/records.h driver/mitsubishi_fx1s.h address/register_types.h \
    cache/data_areas.h plan/pieces.h protocol/frame_codec.h
expect_allowed simulator simulator/link.h
expect_refused simulator driver/intf.h driver/records.h address/register_types.h \
    protocol/frame_format.h host/link.h

# However it is written.
expect 1 plan '#include <protocol/frame_codec.h>'
expect 1 plan '  #  include  "protocol/frame_codec.h"  // sly'
expect 1 plan '#include "../../protocol/frame_codec.h"'
expect 1 plan '#include "plan/../protocol/frame_codec.h"'
expect 1 plan '#include <../protocol/frame_codec.h>'
expect 1 plan '#include "nowhere.h"'
expect 0 plan '#include <vector>'
expect 0 plan '#include <QtCore/QList>'
expect 0 plan '// #include "protocol/frame_codec.h"'
expect 0 plan 'int protocol = 1;'
expect 2 plan '#include MACRO'

rm -rf "${tree:?}"/cache
if "$check" "$tree" >"$tree/output"; then
    echo "a tree without cache/ passed"
    failures=$((failures + 1))
fi

[ "$failures" -eq 0 ] || exit 1
