// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The screen of values, line for line, on terminals of several sizes; what keys do to it, and the
// bytes of a terminal as keys.

#include "tools/fxhost/views/live_view.h"

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

constexpr ScreenSize usual = {80, 24};
constexpr ScreenSize wide = {120, 40};
constexpr ScreenSize small = {40, 15};

Reading number(const QString& name, double value)
{
    return {name, QString::number(value), value, {}};
}

QVector<Reading> words(int count)
{
    QVector<Reading> readings;
    for (int index = 0; index < count; ++index)
        readings.append(number("D" + QString::number(index), 100 + index));
    return readings;
}

class LiveScreen : public testing::Test
{
protected:
    // Without colours: the tests do not run on a terminal.
    QStringList shown(ScreenSize size = usual, qint64 nowMs = 0)
    {
        QStringList lines = view.lines(console, size, nowMs);
        for (QString& line : lines) {
            while (line.endsWith(' '))
                line.chop(1);
        }
        return lines;
    }

    LiveView::Wish press(const char* keys)
    {
        auto last = LiveView::Wish::Nothing;
        for (const Key& key : keysOf(keys))
            last = view.press(key);
        return last;
    }

    Console console;
    LiveView view{{"sim:", true, true}};
};

}  // namespace

TEST_F(LiveScreen, HasStateCellsAndKeys)
{
    view.update({number("D0", 7), number("D8000", 200), {"X0:8", "○○●●○○○○", {}, {}}}, 0);
    view.setState("cycle 1: 34 ms", true, 0);
    EXPECT_EQ(shown(),
              QStringList({"  sim:  cycle 1: 34 ms", "  D0         7            now",
                           "  D8000    200            now", "  X0:8   ○○●●○○○○         now",
                           "  q quit  p pause  s sort  w write"}));
}

TEST_F(LiveScreen, ShowsTheTrendOfNumbersThatChange)
{
    for (const double value : {0, 5, 10, 20, 40, 35})
        view.update({number("D0", value), number("D1", 1)}, 0);
    EXPECT_EQ(shown()[1], "  D0     35  ▁▂▃▅█▇    now");
    EXPECT_EQ(shown()[2], "  D1      1            now");
}

TEST_F(LiveScreen, KeepsAValueThatCouldNotBeReadWithItsAge)
{
    view.update({number("D0", 5), number("D1", 6)}, 1000);
    view.update({number("D0", 5), {"D1", {}, {}, "refused"}}, 62000);
    view.setState("cycle 2: 3 ms", true, 0);
    const QStringList lines = shown(usual, 66000);
    EXPECT_EQ(lines[0], "  sim:  cycle 2: 3 ms; 1 of 2 not read");
    EXPECT_EQ(lines[1], "  D0      5            4 s");
    EXPECT_EQ(lines[2], "  D1      6  refused   !1 min");
}

TEST_F(LiveScreen, ShowsWhatWasNeverRead)
{
    view.update({{"D0", {}, {}, "no reply"}}, 0);
    EXPECT_EQ(shown()[1], "  D0      -  no reply  !never");
}

TEST_F(LiveScreen, TellsHowLongTheLinkHasBeenLost)
{
    view.update(words(1), 0);
    view.markAllStale("link lost");
    view.setState("the link was lost", false, 1000);
    view.setState("the link was lost", false, 4000);
    EXPECT_EQ(shown(usual, 13000)[0], "  sim:  the link was lost, for 12 s");
    EXPECT_EQ(shown(usual, 13000)[1], "  D0    100  link lost  !13 s");
    view.update(words(1), 14000);
    view.setState("cycle 2: 1 ms", true, 14000);
    EXPECT_EQ(shown(usual, 14000)[0], "  sim:  cycle 2: 1 ms");
}

TEST_F(LiveScreen, PutsCellsSideBySideWhereTheyWouldNotFit)
{
    view.update(words(50), 0);
    const QStringList lines = shown(usual);
    EXPECT_EQ(lines.size(), 23) << "and the cursor below them";
    EXPECT_EQ(lines[1], "  D0     100            now      D21    121            now");
    EXPECT_EQ(lines[22], "  1-42 of 50 ↑↓  q quit  p pause  s sort  w write");
    EXPECT_EQ(shown(wide).size(), 27) << "all of them";
    EXPECT_EQ(shown(wide)[25], "  D24    124            now      D49    149            now");
}

TEST_F(LiveScreen, ScrollsWithinWhatIsThere)
{
    view.update(words(30), 0);
    EXPECT_EQ(shown(small).size(), 14);
    EXPECT_EQ(shown(small)[13], "  1-12 of 30 ↑↓  q quit  p pause  s sort  w write");
    press("\x1b[B");
    EXPECT_EQ(shown(small)[1].left(5), "  D1 ");
    press("\x1b[6~");
    EXPECT_EQ(shown(small)[1].left(5), "  D13");
    press("\x1b[F");
    EXPECT_EQ(shown(small)[12].left(5), "  D29");
    press("\x1b[6~\x1b[6~\x1b[A");
    EXPECT_EQ(shown(small)[12].left(5), "  D28");
    press("\x1b[H\x1b[A");
    EXPECT_EQ(shown(small)[1].left(4), "  D0");
}

TEST_F(LiveScreen, FitsWhateverSizeThereIs)
{
    view.update(words(50), 0);
    for (const ScreenSize size : {usual, wide, small, ScreenSize{20, 4}, ScreenSize{1, 1}})
        EXPECT_LE(shown(size).size(), std::max(size.rows - 1, 3)) << size.rows;
}

TEST_F(LiveScreen, SortsAsAskedByAddressOrByChange)
{
    const QVector<Reading> first = {number("D10", 1), number("Y0", 1), number("D9", 1)};
    view.update(first, 1);
    view.update({first[0], number("Y0", 2), first[2]}, 2);
    const auto names = [this] {
        QStringList cells = shown().mid(1, 3);
        for (QString& cell : cells)
            cell = cell.trimmed().section(' ', 0, 0);
        return cells.join(' ');
    };
    EXPECT_EQ(names(), "D10 Y0 D9");
    press("s");
    EXPECT_EQ(names(), "D9 D10 Y0");
    EXPECT_EQ(shown().last(), "  sorted by address");
    press("s");
    EXPECT_EQ(names(), "Y0 D10 D9");
    press("s");
    EXPECT_EQ(names(), "D10 Y0 D9");
}

TEST_F(LiveScreen, AsksBeforeItWrites)
{
    view.update(words(1), 0);
    EXPECT_EQ(press("wd0=x\x7f"
                    "7"),
              LiveView::Wish::Nothing);
    EXPECT_EQ(shown().last(), "  write, such as D0=5: d0=7_");
    EXPECT_EQ(press("\r"), LiveView::Wish::Nothing);
    EXPECT_EQ(shown().last(), "  write d0=7 (now 100)? y/n");
    EXPECT_EQ(press("y"), LiveView::Wish::Write);
    EXPECT_EQ(view.takeAssignment(), "d0=7");
    EXPECT_EQ(shown().last(), "  q quit  p pause  s sort  w write");
}

TEST_F(LiveScreen, WritesNothingWithoutAYes)
{
    view.update(words(1), 0);
    EXPECT_EQ(press("wD0=7\rn"), LiveView::Wish::Nothing);
    EXPECT_EQ(shown().last(), "  not written");
    EXPECT_EQ(press("wD0=7\r\r"), LiveView::Wish::Nothing) << "Enter is not yes";
    EXPECT_EQ(press("wD0=7\x1b"), LiveView::Wish::Nothing);
    EXPECT_EQ(press("q"), LiveView::Wish::Quit) << "q is a command again";
    EXPECT_EQ(view.takeAssignment(), "");
}

TEST_F(LiveScreen, AsksNothingAboutAMistake)
{
    view = LiveView({"sim:", true, true, [](const QString& text) { return text + " is wrong"; }});
    EXPECT_EQ(press("wfoo\ry"), LiveView::Wish::Nothing);
    EXPECT_EQ(shown().last(), "  q quit  p pause  s sort  w write") << "y is no answer";
    press("wfoo\r");
    EXPECT_EQ(shown().last(), "  foo is wrong");
}

TEST_F(LiveScreen, WritesOnlyWhereALinkWasNamed)
{
    view = LiveView({"sim:", true, false});
    press("w");
    EXPECT_EQ(shown().last(), "  to write, name the PLC: watch again with --link");
    EXPECT_EQ(press("D0=7\ry"), LiveView::Wish::Nothing);
}

TEST_F(LiveScreen, PausesAndGoesOn)
{
    view.update(words(1), 0);
    view.setState("cycle 1: 1 ms", true, 0);
    press("p");
    EXPECT_TRUE(view.isPaused());
    EXPECT_EQ(shown()[0], "  sim:  paused; cycle 1: 1 ms");
    press(" ");
    EXPECT_FALSE(view.isPaused());
}

TEST(Trend, IsBlankWhileNothingChanges)
{
    EXPECT_EQ(trendText({}, 8), "");
    EXPECT_EQ(trendText({5, 5, 5}, 8), "");
    EXPECT_EQ(trendText({0, 1}, 8), "▁█");
    EXPECT_EQ(trendText({9, -7, 0, 7}, 3), "▁▅█") << "only the last three";
}

TEST(Age, HasOneUnit)
{
    EXPECT_EQ(ageText(-1), "never");
    EXPECT_EQ(ageText(999), "now");
    EXPECT_EQ(ageText(1000), "1 s");
    EXPECT_EQ(ageText(59999), "59 s");
    EXPECT_EQ(ageText(60000), "1 min");
    EXPECT_EQ(ageText(3600000), "1 h");
    EXPECT_EQ(ageText(3 * 86400000LL), "3 d");
}

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
