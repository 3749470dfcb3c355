// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What Qt's platform without a screen never frees, for the check of leaks in a sanitized build.

extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

extern "C" const char* __lsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libqoffscreen\n";
}
