#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Checks that a shared object exports the entry points that the public headers declare, and
# `driver`, and nothing else. Prints the names that are missing (<) and those too many (>).
#
#   exported_names.sh LIBRARY HEADER...      with NM for what is built for another processor

set -euo pipefail

library=${1:?usage: exported_names.sh LIBRARY HEADER...}
shift
entry_points=18

declared=$(grep -hE '^FX_ENTRY_POINT ' "$@" | grep -oE '\bintf_[A-Za-z]+' | LC_ALL=C sort)
exported=$("${NM:-nm}" -D --defined-only "$library" | awk '{ print $NF }' | LC_ALL=C sort)

if [ "$(wc -l <<<"$declared")" -ne "$entry_points" ]; then
    echo "found $(wc -l <<<"$declared") entry points instead of $entry_points"
    exit 1
fi
if ! diff <(LC_ALL=C sort <<<"$declared"$'\n'driver) <(echo "$exported"); then
    echo "$library does not export what these headers declare: $*"
    exit 1
fi
