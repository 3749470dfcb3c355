// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What Qt does not free, for the check of leaks in a sanitized build: what is to be called when a
// host's name is found, if the program ends before that.

extern "C" {
const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char* __lsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier)
{
    return "leak:lookupHost\n";
}
}
