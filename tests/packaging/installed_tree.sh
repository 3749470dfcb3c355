#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Installs into an empty folder, moves that folder, and uses it there as a host programmer would:
# builds the installed examples and the code of the installed host guide against it, by CMake and by
# pkg-config, and runs them.

source "$(dirname "$0")/support.sh"

quietly "$FX_CMAKE" --install "$FX_BUILD" --prefix "$work/first place"
mkdir "$work/elsewhere"
mv "$work/first place" "$work/elsewhere/moved"
prefix=$work/elsewhere/moved
documents=$prefix/share/doc/mitsubishi_fx1s
examples=$documents/examples

for place in "first place" "$FX_SOURCE" "$FX_BUILD"; do
    found=$(grep -rlI -- "$place" "$prefix" || true)
    [ -z "$found" ] || fail "'$place' stands in the installed $found"
done
objects=("$prefix/$FX_LIBDIR/libmitsubishi_fx1s.so.0")
! has_tools || objects+=("$prefix/bin/fxhost" "$prefix/bin/fxsim")
! has_view || objects+=("$prefix/bin/fxview")
for file in "${objects[@]}"; do
    readelf -d "$file" >"$work/dynamic"
    ! grep -E 'R(UN)?PATH' "$work/dynamic" || fail "$file looks for libraries at a fixed place"
done

# The documents that are installed lead to one another and to nothing that stayed behind.
grep -oE '\]\([^)#]+' -r "$documents" --include='*.md' | sed 's/](//' >"$work/links"
[ -s "$work/links" ] || fail "no document is installed that has a link"
while IFS=: read -r document target; do
    [ -e "$(dirname "$document")/$target" ] || fail "$document: there is no $target"
done <"$work/links"

if has_tools; then
    expect_text "fxhost" "32CV" "$prefix/bin/fxhost" types
    start_simulator "$prefix/bin/fxsim"
fi

quietly "$FX_CMAKE" -S "$examples" -B "$work/by_cmake" -G "$FX_GENERATOR" \
    -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$FX_CXX"
grep -q "mitsubishi_fx1s_DIR:PATH=$prefix/" "$work/by_cmake/CMakeCache.txt" ||
    fail "another mitsubishi_fx1s was found than the installed one"
quietly "$FX_CMAKE" --build "$work/by_cmake"
run_examples "$work/by_cmake"

# blocks LANGUAGE: the code of the guide in that language.
blocks() {
    sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/{/^\`\`\`/d;p}" "$documents/docs/host-guide.md"
}

mkdir "$work/panel"
blocks cmake >"$work/panel/CMakeLists.txt"
cp "$examples/minimal_host/plc_exchange.h" "$work/panel"
{ blocks cpp; cat "$FX_SOURCE/tests/packaging/rest_of_panel.cpp"; } >"$work/panel/panel.cpp"
quietly "$FX_CMAKE" -S "$work/panel" -B "$work/panel/build" -G "$FX_GENERATOR" \
    -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$FX_CXX" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror"
quietly "$FX_CMAKE" --build "$work/panel/build"
expect_text "the code of the host guide" "all as the guide says" "$work/panel/build/panel" \
    "$prefix/$FX_LIBDIR/libmitsubishi_fx1s.so.0"

mkdir "$work/by_pkg_config"
export PKG_CONFIG_PATH=$prefix/$FX_LIBDIR/pkgconfig${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}
[ "$(pkg-config --modversion mitsubishi_fx1s)" = "$FX_VERSION" ] || fail "wrong version in the .pc file"
for example in minimal_host editor_services recipes; do
    # shellcheck disable=SC2046  # flags are words
    quietly "$FX_CXX" -fPIC "$examples/$example/$example.cpp" -o "$work/by_pkg_config/$example" \
        $(pkg-config --cflags --libs mitsubishi_fx1s)
done
export LD_LIBRARY_PATH=$prefix/$FX_LIBDIR${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
run_examples "$work/by_pkg_config"

! has_tools || stop_simulator
