#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# The version of the CMake project is the one that the changelog has on top, that the files carry
# in themselves and that the tools tell.

source "$(dirname "$0")/support.sh"

newest=$(sed -n 's/^## \([0-9.]*\).*/\1/p' "$FX_SOURCE/CHANGELOG.md" | head -n 1)
[ "$newest" = "$FX_VERSION" ] || fail "CHANGELOG.md has $newest on top, the project is $FX_VERSION"

library=$FX_BUILD/libmitsubishi_fx1s.so
[ "$(basename "$(readlink -f "$library")")" = "libmitsubishi_fx1s.so.$FX_VERSION" ] ||
    fail "$library leads to $(readlink -f "$library")"
for file in "$library" "$FX_BUILD/bin/fxhost" "$FX_BUILD/bin/fxsim"; do
    expect_text "note of $file" "\"version\":\"$FX_VERSION\"" readelf --notes "$file"
done

expect_text "fxhost" "fxhost $FX_VERSION" "$FX_BUILD/bin/fxhost" --version
expect_text "fxsim" "fxsim $FX_VERSION" "$FX_BUILD/bin/fxsim" --version
