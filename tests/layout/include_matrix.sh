#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Checks every #include of the library and the tools against the floors of the house: who may look
# at whom. Prints each offending line; exits 1 when there is one, 2 when a
# folder is missing or empty, 0 when all is well.
#
#   include_matrix.sh ROOT    ROOT is the directory that holds the folders

set -euo pipefail
set -f # patterns are matched, never expanded to files

cd "${1:?usage: include_matrix.sh ROOT}"

# The rooms of the simulator that others may embed.
simulated_plc="tools/fxsim/plc/* tools/fxsim/line/* tools/fxsim/faults/* tools/fxsim/control/control.h"

# What the sources of each folder may include of the others, as patterns of paths.
declare -A allowed=(
    [driver]="driver/*"
    [address]="driver/* address/*"
    [cache]="driver/* address/register_types.h cache/*"
    [plan]="driver/* address/register_types.h cache/data_areas.h plan/*"
    [protocol]="driver/* address/register_types.h cache/* protocol/*"
    [tools/link]="tools/failure.h tools/link/*"
    [tools/simulated]="tools/failure.h tools/link/* tools/simulated/* $simulated_plc"
    [tools/library]="tools/failure.h driver/intf.h tools/library/*"
    [tools/exchange]="tools/failure.h driver/intf.h tools/link/* tools/library/* tools/exchange/*"
    [tools/fxhost]="tools/failure.h driver/intf.h tools/link/* tools/simulated/* tools/library/* tools/exchange/* tools/fxhost/* $simulated_plc"
    [tools/fxsim]="tools/fxsim/*"
)
include_line='^([^:]+):([0-9]+):[[:space:]]*#[[:space:]]*include[[:space:]]*(["<])([^">]+)[">]'

is_allowed() { # FOLDER PATH
    local pattern
    for pattern in ${allowed[$1]}; do
        # shellcheck disable=SC2053  # the pattern is meant as one
        [[ $2 == $pattern ]] && return 0
    done
    return 1
}

folder_of() { # PATH: the guarded folder that it lies in, if any
    local folder
    for folder in "${!allowed[@]}"; do
        [[ $1 != "$folder"/* ]] || echo "$folder"
    done
}

# Whether an include names something of the project: by a path with one of its folders, by a path
# that climbs, or by a plain name in quotes, which is then a path from the including file.
offence=0
check_include() { # FILE LINE QUOTE PATH
    local folder path=$4
    folder=$(folder_of "$1")
    if [[ $path != *..* && -z $(folder_of "$path") ]]; then
        [[ $3 == '"' ]] || return 0
        [[ ! -f ${1%/*}/$path ]] || path=${1%/*}/$path
    fi
    is_allowed "$folder" "$path" && [[ $path != *..* ]] && return 0
    echo "$1:$2: includes \"$4\"; $folder/ may include ${allowed[$folder]}"
    offence=1
}

for folder in "${!allowed[@]}"; do
    [[ -n $(find "$folder" \( -name '*.h' -o -name '*.cpp' \) -print -quit 2>/dev/null) ]] ||
        { echo "$PWD/$folder: no sources there" && exit 2; }
    while read -r line; do
        [[ $line =~ $include_line ]] || { echo "cannot read: $line" && exit 2; }
        check_include "${BASH_REMATCH[@]:1:4}"
    done < <(grep -rnE --include='*.h' --include='*.cpp' '^[[:space:]]*#[[:space:]]*include' "$folder")
done
exit "$offence"
