// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/quoted.h"

#include <gtest/gtest.h>

using fxtools::quoted;

TEST(Quoted, IsShortAndHarmless)
{
    const QString sixty(60, 'x');
    EXPECT_EQ(quoted(QString()), "''");
    EXPECT_EQ(quoted("Überdruck"), "'Überdruck'");
    EXPECT_EQ(quoted(sixty), "'" + sixty + "'");
    EXPECT_EQ(quoted(sixty + "x"), "'" + sixty.left(59) + "…'");
    EXPECT_EQ(quoted("D0\x1b[2J\n0\u202E1\x7f"), "'D0?[2J?0?1?'");
}
