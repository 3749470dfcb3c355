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
folders="driver address cache plan protocol
    tools/link tools/simulated tools/library tools/exchange tools/fxhost tools/fxsim"

expect() { # RESULT FOLDER INCLUDE
    rm -rf "${tree:?}"/*
    for folder in $folders; do
        mkdir -p "$tree/$folder/inner"
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
    protocol/frame_codec.h tools/link/link.h tools/fxsim/options.h
expect_allowed address driver/records.h address/register_types.h
expect_refused address cache/data_areas.h plan/pieces.h protocol/frame_codec.h tools/link/link.h
expect_allowed cache driver/records.h address/register_types.h cache/data_areas.h
expect_refused cache address/multi_copy.h plan/pieces.h protocol/frame_codec.h tools/link/link.h
expect_allowed plan driver/records.h address/register_types.h cache/data_areas.h plan/pieces.h
expect_refused plan address/multi_copy.h cache/recipe.h cache/notification.h \
    protocol/frame_codec.h tools/fxsim/options.h
expect_allowed protocol driver/records.h address/register_types.h cache/recipe.h \
    protocol/frame_codec.h
expect_refused protocol address/multi_copy.h plan/pieces.h tools/link/link.h
library_inside="driver/records.h driver/mitsubishi_fx1s.h address/register_types.h cache/data_areas.h
    plan/pieces.h protocol/frame_codec.h"
# shellcheck disable=SC2086  # paths are words
{
    expect_allowed tools/link tools/link/link.h
    expect_refused tools/link driver/intf.h tools/library/values.h tools/exchange/poller.h \
        tools/simulated/sim_link.h tools/fxhost/link_address.h tools/fxsim/line/session.h
    expect_allowed tools/simulated tools/link/link.h tools/fxsim/plc/program.h \
        tools/fxsim/line/session.h tools/fxsim/faults/faults.h tools/fxsim/control/control.h
    expect_refused tools/simulated driver/intf.h tools/library/values.h tools/exchange/poller.h \
        tools/fxhost/link_address.h tools/fxsim/links/link.h tools/fxsim/options.h
    expect_allowed tools/library driver/intf.h tools/library/values.h
    expect_refused tools/library tools/link/link.h tools/exchange/poller.h \
        tools/simulated/sim_link.h tools/fxsim/line/session.h $library_inside
    expect_allowed tools/exchange driver/intf.h tools/link/link.h tools/library/values.h \
        tools/exchange/poller.h
    expect_refused tools/exchange tools/simulated/sim_link.h tools/fxhost/link_address.h \
        tools/fxsim/line/session.h $library_inside
    expect_allowed tools/fxhost driver/intf.h tools/link/link.h tools/simulated/sim_link.h \
        tools/library/values.h tools/exchange/poller.h tools/fxsim/line/session.h
    expect_refused tools/fxhost tools/fxsim/links/link.h tools/fxsim/options.h $library_inside
    expect_allowed tools/fxsim tools/fxsim/options.h
    expect_refused tools/fxsim driver/intf.h tools/link/link.h tools/library/values.h \
        tools/exchange/poller.h tools/simulated/sim_link.h tools/fxhost/link_address.h $library_inside
}

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
