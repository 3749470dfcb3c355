#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Asks the checks of the documents about small projects with one fault each, so that each check is
# known to see what it is there for.
#
#   check_docs_self_test.sh SCRIPTS    SCRIPTS is the folder of check-docs and entry-points

set -euo pipefail

scripts=${1:?usage: check_docs_self_test.sh SCRIPTS}
command -v git >/dev/null || { echo "no git here"; exit 77; }
project=$(mktemp -d)
trap 'rm -rf "$project"' EXIT
mkdir "$project/scripts" "$project/docs" "$project/driver"
cp "$scripts/check-docs" "$scripts/entry-points" "$project/scripts"
git -C "$project" init -q
echo pty >"$project/docs/words.txt"
printf '# Guide\n\n## Two words\n' >"$project/docs/guide.md"
failures=0

# expect RESULT STORY COMMAND...: the README is on standard input.
expect() {
    local wanted=$1 story=$2 result=0
    shift 2
    cat >"$project/README.md"
    (cd "$project" && "$@") >"$project/output" 2>&1 || result=$?
    [ "$result" -eq "$wanted" ] && return
    echo "$story: exit $result instead of $wanted"
    cat "$project/output"
    failures=$((failures + 1))
}

expect 0 "links that lead somewhere" scripts/check-docs links <<'END'
[a](docs/guide.md) [b](docs/guide.md#two-words) [c](#title) [d](https://example.org/x)
# Title
END
expect 1 "a link to no file" scripts/check-docs links <<<'[a](docs/gone.md)'
expect 1 "a link to no heading" scripts/check-docs links <<<'[a](docs/guide.md#three-words)'
expect 1 "a link to no heading of its own" scripts/check-docs links <<<'[a](#gone)'

expect 0 "commands that end well" scripts/check-docs commands <<'END'
```sh
cd docs
[ -f guide.md ]
false    # (long) left out
sleep 60 &
kill %1
```
```text
false
```
END
expect 1 "a command that fails" scripts/check-docs commands <<<$'```sh\nfalse\ntrue\n```'
expect 1 "a failure behind which the shell goes on" scripts/check-docs commands \
    <<<$'```sh\nfalse && true\ntrue\n```'
expect 1 "a command that does not exist" scripts/check-docs commands <<<$'```sh\nno-such-command\n```'
expect 1 "no such check" scripts/check-docs grammar <<<''

if command -v hunspell >/dev/null; then
    expect 0 "words and listed words" scripts/check-docs spelling <<<'A host of its own on a pty, `intf_x`.'
    expect 1 "a misspelt word" scripts/check-docs spelling <<<'A hoost of its own.'
else
    echo "hunspell is not installed: spelling not asked"
fi

printf '%s\n' '// Conventions' '//  1. One call.' '' '// Gives it.' '//   0  none' \
    'FX_ENTRY_POINT int intf_give(int* out);' >"$project/driver/intf.h"
printf '%s\n' '// A record.' 'struct RECORD' '{' '    int tag = 0;  // a mark' '};' \
    >"$project/driver/records.h"
expect 0 "the page is made" scripts/entry-points <<<''
expect 0 "the page fits the header" scripts/entry-points --check <<<''
sed -i 's/Gives it/Gives more/' "$project/driver/intf.h"
expect 1 "the header has changed" scripts/entry-points --check <<<''

# expect_drawing RESULT STORY: the inside of the drawing is on standard input.
expect_drawing() {
    { echo '<svg xmlns="http://www.w3.org/2000/svg">'; cat; echo '</svg>'; } >"$project/docs/road.svg"
    expect "$1" "$2" scripts/check-docs drawings <<<'![a road](docs/road.svg)'
}
expect_drawing 0 "a drawing of what there is" <<<'<text>docs/: intf_give</text>'
expect_drawing 1 "a folder that is gone" <<<'<text>plan/</text>'
expect_drawing 1 "an entry point that is gone" <<<'<text>intf_take: 1</text>'
expect_drawing 1 "half a drawing" <<<'<text>'

[ "$failures" -eq 0 ] || exit 1
