#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Makes the Debian packages, looks into them, installs them into an empty root beside the machine's,
# runs what they bring, and removes them again. lintian must have nothing to say. A build without
# the tools makes two of the five packages; without the gateway or the window its package is not
# made. Packed again elsewhere,
# they are the same to the byte; scripts/package --reproducible also compiles again for that.

source "$(dirname "$0")/support.sh"

if ! command -v dpkg-deb >/dev/null || ! command -v dpkg-shlibdeps >/dev/null; then
    echo "no Debian tools here: no Debian packages"
    exit 77
fi

packages=$work/packages
export SOURCE_DATE_EPOCH=1700000000
quietly "$FX_CPACK" --config "$FX_BUILD/CPackConfig.cmake" -G DEB -B "$packages"
quietly env TZ=Asia/Tokyo LC_ALL=C "$FX_CPACK" --config "$FX_BUILD/CPackConfig.cmake" -G DEB -B "$work/again"
for package in "$packages"/*.deb; do
    cmp "$package" "$work/again/${package##*/}" || fail "another package each time"
done
architecture=$(dpkg --print-architecture)
runtime=$packages/libmitsubishi-fx1s0_${FX_VERSION}_$architecture.deb
dev=$packages/libmitsubishi-fx1s-dev_${FX_VERSION}_$architecture.deb
tools=$packages/fx-tools_${FX_VERSION}_$architecture.deb
made=("$runtime" "$dev")
! has_tools || made+=("$tools")
gateway=$packages/fx-gateway_${FX_VERSION}_$architecture.deb
! has_gateway || made+=("$gateway")
view=$packages/fx-view_${FX_VERSION}_$architecture.deb
! has_view || made+=("$view")
[ "$(find "$packages" -maxdepth 1 -name '*.deb' | sort)" = "$(printf '%s\n' "${made[@]}" | sort)" ] ||
    fail "other packages than expected: $(ls "$packages")"

# expect_files PACKAGE: it holds the files named on standard input, folders left out, no others.
expect_files() {
    dpkg-deb -c "$1" | awk '$1 !~ /^d/ { print $6 }' | LC_ALL=C sort >"$work/holds"
    LC_ALL=C sort >"$work/should_hold"
    diff "$work/should_hold" "$work/holds" || fail "the contents of $1"
    ! dpkg-deb -c "$1" | grep -v ' root/root ' || fail "$1 holds files that are not root's"
}

# expect_field PACKAGE FIELD PATTERN
expect_field() {
    local value
    value=$(dpkg-deb -f "$1" "$2")
    # shellcheck disable=SC2053  # the pattern is meant as one
    [[ $value == $3 ]] || fail "$1 has $2: $value"
}

expect_files "$runtime" <<END
./usr/$FX_LIBDIR/libmitsubishi_fx1s.so.0
./usr/$FX_LIBDIR/libmitsubishi_fx1s.so.$FX_VERSION
./usr/share/doc/libmitsubishi-fx1s0/changelog.gz
./usr/share/doc/libmitsubishi-fx1s0/copyright
END
entry_points="SetDriverPropertyPage addConditionRead addrMerge checkAddr checkAddrValidity dealRcvFrame
    getData getDriverParameter getDriverPropertyPage getProtocolType getRegDiscription getRegListByType
    getSendFrame initProperty multiCopy setAddrValueChangeCallBack setData setRcpAddress"

# The reference: a manual page and an HTML page for each entry point, chapters, records, indexes.
reference_files() {
    # shellcheck disable=SC2086  # names are words
    {
        printf './usr/share/man/man3/intf_%s.3.gz\n' $entry_points
        printf "./usr/share/doc/libmitsubishi-fx1s-dev/reference/%s\n" \
            $(printf 'group__intf__%s.html ' $entry_points) \
            group__{addressservices,exchange,planning,recipes,setup,values}.html \
            struct{FRAME__PRO,KEY__ADDRESS,VARIABLE,__DATA__,__RCP__VAR__PRO}.html \
            {annotated,classes,files,functions{,_vars},globals{,_enum,_eval,_func,_type,_vars}}.html \
            {address__services_8h,index,intf_8h,modules,records_8h}.html {doxygen,tabs}.css doxygen.svg \
            {bc_s,bdwn,closed,doc,folder{closed,open},nav_{f,g,h},open,splitbar}.png \
            {sync_{off,on},tab_{a,b,h,s}}.png
    }
}

{ [ "$FX_REFERENCE" -eq 0 ] || reference_files; cat; } <<END | expect_files "$dev"
./usr/$FX_LIBDIR/cmake/mitsubishi_fx1s/mitsubishi_fx1s-config-version.cmake
./usr/$FX_LIBDIR/cmake/mitsubishi_fx1s/mitsubishi_fx1s-config.cmake
./usr/$FX_LIBDIR/cmake/mitsubishi_fx1s/mitsubishi_fx1s-targets-$FX_BUILD_TYPE.cmake
./usr/$FX_LIBDIR/cmake/mitsubishi_fx1s/mitsubishi_fx1s-targets.cmake
./usr/$FX_LIBDIR/libmitsubishi_fx1s.so
./usr/$FX_LIBDIR/pkgconfig/mitsubishi_fx1s.pc
./usr/include/mitsubishi_fx1s/address_services.h
./usr/include/mitsubishi_fx1s/entry_point.h
./usr/include/mitsubishi_fx1s/intf.h
./usr/include/mitsubishi_fx1s/records.h
./usr/share/doc/libmitsubishi-fx1s-dev/CHANGELOG.md
./usr/share/doc/libmitsubishi-fx1s-dev/changelog.gz
./usr/share/doc/libmitsubishi-fx1s-dev/copyright
./usr/share/doc/libmitsubishi-fx1s-dev/docs/compatibility.md
./usr/share/doc/libmitsubishi-fx1s-dev/docs/frames.md
./usr/share/doc/libmitsubishi-fx1s-dev/docs/host-guide.md
./usr/share/doc/libmitsubishi-fx1s-dev/examples/CMakeLists.txt
./usr/share/doc/libmitsubishi-fx1s-dev/examples/editor_services/editor_services.cpp
./usr/share/doc/libmitsubishi-fx1s-dev/examples/minimal_host/minimal_host.cpp
./usr/share/doc/libmitsubishi-fx1s-dev/examples/minimal_host/plc_exchange.h
./usr/share/doc/libmitsubishi-fx1s-dev/examples/recipes/recipes.cpp
./usr/share/doc/libmitsubishi-fx1s-dev/examples/tags/boiler.csv
END
! has_tools || expect_files "$tools" <<END
./usr/bin/fxhost
./usr/bin/fxsim
./usr/lib/systemd/system/fxhost-log@.service
./usr/share/bash-completion/completions/fxhost
./usr/share/bash-completion/completions/fxsim
./usr/share/doc/fx-tools/changelog.gz
./usr/share/doc/fx-tools/copyright
./usr/share/doc/fx-tools/docs/at-the-machine.md
./usr/share/doc/fx-tools/docs/doctor.svg
./usr/share/doc/fx-tools/docs/json-schema.json
./usr/share/doc/fx-tools/docs/plan.svg
./usr/share/doc/fx-tools/docs/polling.md
./usr/share/doc/fx-tools/docs/serve.md
./usr/share/doc/fx-tools/docs/simulator.svg
./usr/share/doc/fx-tools/docs/tags.md
./usr/share/doc/fx-tools/docs/watch.svg
./usr/share/doc/fx-tools/examples/tags/boiler.csv
./usr/share/man/man1/fxhost.1.gz
./usr/share/man/man1/fxsim.1.gz
END
! has_gateway || expect_files "$gateway" <<END
./usr/bin/fxgate
./usr/lib/systemd/system/fxgate.service
./usr/share/bash-completion/completions/fxgate
./usr/share/doc/fx-gateway/changelog.gz
./usr/share/doc/fx-gateway/copyright
./usr/share/doc/fx-gateway/docs/gateway.md
./usr/share/doc/fx-gateway/docs/sparkplug.md
./usr/share/doc/fx-gateway/examples/gateway/fxgate.toml
./usr/share/doc/fx-gateway/examples/gateway/plant.toml
./usr/share/doc/fx-gateway/examples/gateway/press.csv
./usr/share/man/man1/fxgate.1.gz
./usr/share/man/man5/fxgate.toml.5.gz
END
! has_view || expect_files "$view" <<END
./usr/bin/fxview
./usr/share/applications/fxview.desktop
./usr/share/bash-completion/completions/fxview
./usr/share/doc/fx-view/changelog.gz
./usr/share/doc/fx-view/copyright
./usr/share/doc/fx-view/docs/pictures/alarms.png
./usr/share/doc/fx-view/docs/pictures/dark.png
./usr/share/doc/fx-view/docs/pictures/empty.png
./usr/share/doc/fx-view/docs/pictures/german.png
./usr/share/doc/fx-view/docs/pictures/line.png
./usr/share/doc/fx-view/docs/pictures/many.png
./usr/share/doc/fx-view/docs/pictures/narrow.png
./usr/share/doc/fx-view/docs/pictures/recipes.png
./usr/share/doc/fx-view/docs/pictures/screen.png
./usr/share/doc/fx-view/docs/pictures/stale.png
./usr/share/doc/fx-view/docs/pictures/trends.png
./usr/share/doc/fx-view/docs/pictures/values.png
./usr/share/doc/fx-view/docs/window.md
./usr/share/doc/fx-view/examples/screens/boiler.toml
./usr/share/icons/hicolor/scalable/apps/fxview.svg
./usr/share/man/man1/fxview.1.gz
./usr/share/metainfo/invalid.mitsubishi_fx1s.fxview.metainfo.xml
END
expect_field "$runtime" Depends "*libqt[56]core* (>= *"
expect_field "$dev" Depends "libmitsubishi-fx1s0 (= $FX_VERSION), $FX_QT_DEV_PACKAGE"
! has_tools ||
    expect_field "$tools" Depends "libmitsubishi-fx1s0 (= $FX_VERSION), *libqt5serialport5 (>= *"
for package in "${made[@]}"; do
    expect_field "$package" Maintainer "$FX_MAINTAINER"
done

if [ -e "$FX_BUILD/build.ninja" ]; then
    "$FX_SOURCE/packaging/bill-of-materials" "$FX_BUILD" "${made[@]}" >"$work/bill.json" ||
        fail "no bill of materials"
    python3 "$FX_SOURCE/tests/packaging/bill_of_materials.py" "$work/bill.json" "${made[@]}" ||
        fail "the bill of materials"
fi

if command -v lintian >/dev/null; then
    allowed=()
    # Only a tree that was configured for /usr has the folder of the architecture.
    [[ $FX_LIBDIR == */* ]] ||
        allowed=(--suppress-tags pkg-config-unavailable-for-cross-compilation)
    lintian --allow-root --fail-on error,warning "${allowed[@]}" "$packages"/*.deb \
        >"$work/lintian" 2>&1 ||
        { cat "$work/lintian" >&2; fail "lintian"; }
else
    echo "lintian is not installed: not asked"
fi

root=$work/root
mkdir -p "$root"/var/lib/dpkg/{info,updates,triggers}
touch "$root"/var/lib/dpkg/{status,available}
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(fakeroot)
# What the packages depend on is the machine's: the new root has nothing.
dpkg_there=("${as_root[@]}" dpkg --root="$root" --force-depends --log=/dev/null)
quietly "${dpkg_there[@]}" --install "${made[@]}"

if [ "$FX_BUILD_TYPE" = release ]; then  # else assertions tell their place
    found=$(grep -rlF -- "$FX_SOURCE" "$root/usr" || true)
    [ -z "$found" ] || fail "'$FX_SOURCE' stands in the installed $found"
fi

export PKG_CONFIG_PATH=$root/usr/$FX_LIBDIR/pkgconfig
# shellcheck disable=SC2046  # flags are words
for example in minimal_host recipes; do
    quietly "$FX_CXX" -fPIC "$root/usr/share/doc/libmitsubishi-fx1s-dev/examples/$example/$example.cpp" \
        -o "$work/$example" $(pkg-config --cflags --libs mitsubishi_fx1s)
done
installed=(env LD_LIBRARY_PATH="$root/usr/$FX_LIBDIR")
expect_text "recipes" "recipe word 0 is now 181" "${installed[@]}" "$work/recipes"
if has_tools; then
    expect_text "fxhost as installed" "32CV" "$root/usr/bin/fxhost" types
    start_simulator "$root/usr/bin/fxsim"
    expect_text "minimal_host" "D100 = 1337" "${installed[@]}" "$work/minimal_host" "$work/plc"
    stop_simulator
fi
! has_gateway || expect_text "fxgate as installed" "0 errors" \
    "$root/usr/bin/fxgate" check "$root/usr/share/doc/fx-gateway/examples/gateway/fxgate.toml"
if has_view; then
    expect_text "fxview as installed" "fxview $FX_VERSION" "$root/usr/bin/fxview" --version
    # Good values prove that the installed library was found.
    expect_text "the window as installed" "all tags are good" env HOME="$work" QT_QPA_PLATFORM=offscreen \
        "$root/usr/bin/fxview" --pictures "$work/pictures"
    desktop-file-validate "$root/usr/share/applications/fxview.desktop" || fail "the desktop file"
    quietly appstreamcli validate --no-net "$root"/usr/share/metainfo/*
fi

names=(libmitsubishi-fx1s-dev libmitsubishi-fx1s0)
! has_tools || names+=(fx-tools)
! has_gateway || names+=(fx-gateway)
! has_view || names+=(fx-view)
quietly "${dpkg_there[@]}" --purge "${names[@]}"
[ ! -e "$root/usr" ] || fail "left behind: $(find "$root/usr")"
