#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
"""Checks every #include of the library and the tools against the floors of the house: who may look
at whom. Prints each offending line; exits with 1 when there is one, with 2 when a folder is missing
or empty or an #include cannot be read.

    include_matrix.py ROOT    ROOT is the directory that holds the folders"""

import fnmatch
import pathlib
import re
import sys

# The rooms of the simulator that others may embed.
SIMULATED_PLC = ["tools/fxsim/plc/*", "tools/fxsim/line/*", "tools/fxsim/faults/*",
                 "tools/fxsim/control/control.h"]

# What every tool but the simulator may include.
COMMON = ["tools/command_help.h", "tools/failure.h", "tools/quoted.h", "tools/standard_streams.h",
          "tools/table.h", "tools/toml_reader.h", "tools/words.h"]

# What the sources of each folder may include of the project.
ALLOWED = {
    "driver": ["driver/*"],
    "address": ["driver/*", "address/*"],
    "cache": ["driver/*", "address/register_types.h", "cache/*"],
    "plan": ["driver/*", "address/register_types.h", "cache/data_areas.h", "plan/*"],
    "protocol": ["driver/*", "address/register_types.h", "cache/*", "protocol/*"],
    "tools/link": [*COMMON, "tools/link/*"],
    "tools/simulated": [*COMMON, "tools/link/*", "tools/simulated/*", *SIMULATED_PLC],
    "tools/library": [*COMMON, "driver/intf.h", "tools/library/*"],
    "tools/exchange": [*COMMON, "driver/intf.h", "tools/link/*", "tools/library/*",
                       "tools/exchange/*"],
    "tools/tags": [*COMMON, "driver/intf.h", "tools/library/*", "tools/exchange/*",
                   "tools/tags/*"],
    "tools/service": [*COMMON, "driver/intf.h", "tools/link/*", "tools/simulated/*",
                      "tools/library/*", "tools/exchange/*", "tools/tags/*", "tools/service/*"],
    "tools/fxhost": [*COMMON, "driver/intf.h", "tools/link/*", "tools/simulated/*",
                     "tools/library/*", "tools/exchange/*", "tools/tags/*", "tools/service/*",
                     "tools/fxhost/*", *SIMULATED_PLC],
    "tools/fxgate": [*COMMON, "tools/link/*", "tools/library/*", "tools/tags/*", "tools/fxgate/*"],
    "tools/fxview": [*COMMON, "driver/intf.h", "tools/link/*", "tools/library/*",
                     "tools/exchange/*", "tools/tags/*", "tools/service/*", "tools/fxview/*"],
    "tools/fxsim": ["tools/fxsim/*", "tools/standard_streams.h"],
}

DIRECTIVE = re.compile(r"\s*#\s*include")
INCLUDE = re.compile(r"""\s*#\s*include\s*(["<])([^">]+)[">]""")


def folder_of(path):
    """The guarded folder that a path lies in, if any."""
    return next((folder for folder in ALLOWED if path.startswith(folder + "/")), None)


def is_offence(root, source, quote, path):
    """Whether an include is of the project and not allowed. It is of the project by a path with one
    of its folders, by a path that climbs, or in quotes, which is then a path from the source."""
    if ".." not in path and folder_of(path) is None:
        if quote == "<":
            return False
        beside = f"{source.rpartition('/')[0]}/{path}"
        path = beside if (root / beside).is_file() else path
    patterns = ALLOWED[folder_of(source)]
    return ".." in path or not any(fnmatch.fnmatchcase(path, pattern) for pattern in patterns)


def offences(root):
    """The lines that are refused; ValueError where there is nothing to read."""
    for folder in ALLOWED:
        sources = sorted(path for path in (root / folder).rglob("*") if path.suffix in (".h", ".cpp"))
        if not sources:
            raise ValueError(f"{root / folder}: no sources there")
        for path in sources:
            source = path.relative_to(root).as_posix()
            for number, line in enumerate(path.read_text(encoding="utf-8").split("\n"), 1):
                if not DIRECTIVE.match(line):
                    continue
                include = INCLUDE.match(line)
                if not include:
                    raise ValueError(f"{source}:{number}: cannot read: {line}")
                if is_offence(root, source, *include.groups()):
                    yield f"{source}:{number}: {line}; {folder}/ may include {ALLOWED[folder]}"


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: include_matrix.py ROOT")
    try:
        found = list(offences(pathlib.Path(sys.argv[1])))
    except ValueError as reason:
        print(reason)
        sys.exit(2)
    print("\n".join(found), end="\n" if found else "")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
