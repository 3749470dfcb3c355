// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What Qt never frees, for the check of leaks in a sanitized build. It says nothing of it, so that
// tests of messages pass.

extern "C" {
const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)
const char* __lsan_default_options();       // NOLINT(bugprone-reserved-identifier)

const char* __lsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libqoffscreen\nleak:libQt5Core\nleak:libQt5Gui\nleak:libQt5Widgets\n";
}

const char* __lsan_default_options()  // NOLINT(bugprone-reserved-identifier)
{
    return "print_suppressions=0";
}
}
