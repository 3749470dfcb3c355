#!/bin/sh
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# Runs Doxygen, and takes out what makes no sense: unfolding by script from the HTML, which has no
# scripts; from the manual pages empty headings, names in front of titles that follow the name, and
# quotation marks that begin a line, which would be requests.
#
#   make.sh DOXYGEN FOLDER    its settings are in FOLDER.doxyfile

set -e
rm -rf "$2"
"$1" "$2.doxyfile"
sed -i 's|<div class="levels">.*</div><table|<table|; s| onclick="[^"]*"||' "$2/html/modules.html"
sed -i -e 's/^\(intf_[A-Za-z]*\) \\- \1: /\1 \\- /' -e '/^\.SH "Detailed Description"/d' \
    -e "s/^'/\\\\\&'/" "$2"/man/man3/intf_*.3
