#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Looks with blhc into every command that compiles or links what users get: none lacks a flag with
# which Debian hardens its programs. Debug information is no such flag: the packages have none.
#
#   build_flags.sh BUILD TARGET...

set -euo pipefail
cd "${1:?usage: build_flags.sh BUILD TARGET...}"

if ! command -v blhc >/dev/null || [ ! -e build.ninja ]; then
    echo "needs blhc and a build with ninja"
    exit 77
fi
commands=$(mktemp)
trap 'rm -f "$commands"' EXIT
# The first line tells blhc that Debian's flags are wanted.
{ echo "dpkg-buildpackage: info: source package"; ninja -t commands "${@:2}"; } >"$commands"
blhc --all --ignore-flag -g "$commands"
