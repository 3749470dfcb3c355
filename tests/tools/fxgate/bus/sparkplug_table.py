#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
"""Compares the tests that docs/sparkplug.md names with those that there are. Exits with 1 if a rule
stands there twice, or has neither an existing test nor a reason.

    sparkplug_table.py DOCUMENT TEST-PROGRAM..."""

import re
import subprocess
import sys

ROW = re.compile(r"^\| `([^`]+)` \| (.*) \|$")
FEWEST_RULES = 190  # a table that is no longer read must not look good


def tests_of(program):
    listed = subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True,
                            text=True).stdout
    suite = ""
    for line in listed.splitlines()[1:]:
        if line.startswith("  "):
            yield suite + line.split()[0].split("/")[0]
        else:
            suite = line.split()[0].split("/")[-1]


def mistakes(document, tests):
    rules = set()
    with open(document, encoding="utf-8") as lines:
        rows = [row for row in map(ROW.match, lines) if row]
    for rule, cell in (row.groups() for row in rows):
        if rule in rules:
            yield f"{rule}: stands there twice"
        rules.add(rule)
        names = re.findall(r"`([^`]+)`", cell)
        if not cell.startswith("none: "):
            yield from (f"{rule}: there is no test {name}" for name in names if name not in tests)
            if not names:
                yield f"{rule}: has neither a test nor a reason"
    if len(rules) < FEWEST_RULES:
        yield f"only {len(rules)} rules"


def main():
    document, *programs = sys.argv[1:]
    found = list(mistakes(document, {test for program in programs for test in tests_of(program)}))
    print("\n".join(found), end="\n" if found else "")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
