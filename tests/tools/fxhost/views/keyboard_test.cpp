// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The bytes of a terminal as keys.

#include "tools/fxhost/views/keyboard.h"

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

// "a", "b" for characters, a name in brackets for the others.
std::string keysIn(const QByteArray& bytes)
{
    static const char* const names[] = {"",       "<enter>", "<escape>",  "<backspace>",
                                        "<up>",   "<down>",  "<page up>", "<page down>",
                                        "<home>", "<end>"};
    std::string text;
    for (const Key& key : keysOf(bytes))
        text += key.kind == Key::Kind::Character ? std::string(1, key.character.toLatin1())
                                                 : names[static_cast<int>(key.kind)];
    return text;
}

}  // namespace

TEST(Keys, CharactersAreThemselves)
{
    EXPECT_EQ(keysIn("D100=5"), "D100=5");
    EXPECT_EQ(keysIn("\r\n\x7f\b"), "<enter><enter><backspace><backspace>");
}

TEST(Keys, OfBothKindsOfTerminalAreKnown)
{
    EXPECT_EQ(keysIn("\x1b[A\x1b[B\x1bOA\x1bOB"), "<up><down><up><down>");
    EXPECT_EQ(keysIn("\x1b[5~\x1b[6~\x1b[H\x1b[4~"), "<page up><page down><home><end>");
    EXPECT_EQ(keysIn("\x1b"), "<escape>");
}

// An arrow that came in two parts was taken for Escape and two characters.
TEST(Keys, MayComeInParts)
{
    for (const char* part : {"\x1b", "a\x1b[", "\x1bO", "\x1b[1;5"})
        EXPECT_TRUE(endsWithinKey(part)) << part;
    for (const char* whole : {"", "a", "\x1b[A", "\x1b[A[", "\x1bOA", "\x1b[5~", "\x1bx"})
        EXPECT_FALSE(endsWithinKey(whole)) << whole;
}

TEST(Keys, UnknownOnesArePassedOver)
{
    EXPECT_EQ(keysIn("a\x1b[15~b\x1b[1;5Dc\x01\xC3\xA4"
                     "d"),
              "abcd");
    EXPECT_EQ(keysIn("\x1b[1;"), "") << "and so is what was cut off";
}
