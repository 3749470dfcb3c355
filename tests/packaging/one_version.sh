#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# The version of the CMake project is the one that the changelog has on top, that the files carry
# in themselves and that the tools tell. The library's file also names the Qt that it needs.

source "$(dirname "$0")/support.sh"

newest=$(sed -n 's/^## \([0-9.]*\).*/\1/p' "$FX_SOURCE/CHANGELOG.md" | head -n 1)
[ "$newest" = "$FX_VERSION" ] || fail "CHANGELOG.md has $newest on top, the project is $FX_VERSION"

library=$FX_BUILD/libmitsubishi_fx1s.so
[ "$(basename "$(readlink -f "$library")")" = "libmitsubishi_fx1s.so.$FX_VERSION" ] ||
    fail "$library leads to $(readlink -f "$library")"
expect_text "note of $library" "\"version\":\"$FX_VERSION\"" readelf --notes "$library"
core=$(readelf -d "$library" | grep -oE 'libQt[56]?Core\.so\.[456]')
expect_text "note of $library" "\"qt\":\"${core##*.}\"" readelf --notes "$library"

# The documents and examples ask for the version from which the interface is what they say.
grep -rhoE 'find_package\(mitsubishi_fx1s [0-9.]+' "$FX_SOURCE/docs" "$FX_SOURCE/examples" |
    sort -u >"$work/asked"
[ "$(cat "$work/asked")" = "find_package(mitsubishi_fx1s ${FX_VERSION%.*}" ] ||
    fail "another version is asked for: $(cat "$work/asked")"

has_tools || exit 0
tools=(fxhost fxsim)
! has_view || tools+=(fxview)
for tool in "${tools[@]}"; do
    program=$FX_BUILD/bin/$tool
    expect_text "note of $program" "\"version\":\"$FX_VERSION\"" readelf --notes "$program"
    expect_text "$tool" "$tool $FX_VERSION" "$program" --version
    grep -q "^\.TH .*\"mitsubishi_fx1s $FX_VERSION\"" "$FX_BUILD/man/$tool.1" ||
        fail "the manual of $tool is of another version"
done
