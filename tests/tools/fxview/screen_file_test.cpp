// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Screen files: what is read out of them, and every mistake of a file at once, with its place.

#include "tests/tools/fxview/view_support.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/fxview/screens/plain_screen.h"
#include "tools/fxview/screens/screen_file.h"
#include "tools/tags/tag_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace fxview;
using namespace view_tests;

namespace {

struct ScreenFileTest : testing::Test
{
    ScreenFile read(const QByteArray& toml, const QVector<fxtools::Tag>& tags = someTags())
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(toml);
        file.close();
        return readScreenFile(path, tags);
    }

    static std::string linesOf(const ScreenFile& file)
    {
        std::string lines;
        for (const fxtools::Mistake& mistake : file.mistakes)
            lines += mistake.in("f").toStdString() + '\n';
        return lines;
    }

    std::string mistakesIn(const QByteArray& toml) { return linesOf(read(toml)); }

    // One element on an otherwise empty page, at its first place.
    std::string mistakesOf(const char* kind, const char* keys)
    {
        return mistakesIn(QByteArray("[[page]]\n[[page.") + kind + "]]\nrow = 1\ncolumn = 1\n" +
                          keys);
    }

    QTemporaryDir folder;
    QString path = folder.filePath("screen.toml");
};

}  // namespace

TEST_F(ScreenFileTest, ReadsEveryElementWithItsKeys)
{
    const ScreenFile file = read(R"([[page]]
title = "Press"
columns = 20
rows = 10

[[page.dial]]
tag = "oven.temp"
row = 2
column = 1
width = 3
height = 2
min = -10
max = 250.5
decimals = 1

[[page.lamp]]
tag = "door"
row = 1
column = 20
on-text = "shut"
off-text = "OPEN"
off-colour = "red"

[[page.push-button]]
tag = "motor.run"
row = 1
column = 1
label = "Jog"
action = "set"

[[page.trend]]
tag = "oven.temp"
row = 5
column = 1
span = "10min"

[[page.text]]
text = "Oven"
row = 1
column = 3

[[page]]
)");
    ASSERT_EQ(linesOf(file), "");
    const QVector<GridPage>& pages = file.screen->pages;
    ASSERT_EQ(pages.size(), 2);
    EXPECT_EQ(pages[0].title, "Press");
    EXPECT_EQ(pages[1].title, "Page 2");
    EXPECT_EQ(pages[1].columns, 12);
    ASSERT_EQ(pages[0].elements.size(), 5);
    const Element& button = pages[0].elements[0];  // by row, then by column
    EXPECT_EQ(button.kind, ElementKind::PushButton);
    EXPECT_EQ(button.label, "Jog");
    EXPECT_EQ(button.action, ButtonAction::Set);
    const Element& text = pages[0].elements[1];
    EXPECT_EQ(text.text, "Oven");
    EXPECT_EQ(text.tag, -1);
    const Element& lamp = pages[0].elements[2];
    EXPECT_EQ(lamp.tag, 2);
    EXPECT_EQ(lamp.label, "door") << "the name of the tag";
    EXPECT_EQ(lamp.onText + lamp.offText + lamp.onColour + lamp.offColour, "shutOPENgreenred");
    const Element& dial = pages[0].elements[3];
    EXPECT_EQ(dial.width, 3);
    EXPECT_EQ(dial.height, 2);
    EXPECT_EQ(*dial.min, -10);
    EXPECT_EQ(*dial.max, 250.5);
    EXPECT_EQ(*dial.decimals, 1);
    EXPECT_EQ(pages[0].elements[4].spanMs, 600000);
}

TEST_F(ScreenFileTest, TakesScalesFromTheLimitsOfTheTag)
{
    const ScreenFile file = read("[[page]]\n[[page.bar]]\ntag = \"oven.temp\"\nrow = 1\n"
                                 "column = 1\nmax = 150\n");
    ASSERT_EQ(linesOf(file), "");
    EXPECT_EQ(*file.screen->pages[0].elements[0].min, 0);
    EXPECT_EQ(*file.screen->pages[0].elements[0].max, 150);
    EXPECT_EQ(mistakesOf("bar", "tag = \"pump2\"\n"),
              "f, line 2, column 1: min is missing below [[page.bar]]; for example min = 0 and "
              "max = 100: the tag has no limits\n");
    EXPECT_EQ(mistakesOf("bar", "tag = \"pump2\"\nmin = 1\n"),
              "f, line 2, column 1: max is missing below [[page.bar]]; for example max = 100\n");
    EXPECT_EQ(mistakesOf("bar", "tag = \"pump2\"\nmax = 1\n"),
              "f, line 2, column 1: min is missing below [[page.bar]]; for example min = 0\n");
    EXPECT_EQ(mistakesOf("dial", "tag = \"oven.temp\"\nmin = 200\n"),
              "f, line 2, column 1: max must be more than min, not 200 and 200\n");
    EXPECT_EQ(mistakesOf("trend", "tag = \"pump2\"\nmin = 0\n"),
              "f, line 2, column 1: min and max belong together; expected both or none\n");
}

TEST_F(ScreenFileTest, TellsAllMistakesAndKeepsTheOtherElements)
{
    const ScreenFile file = read(R"([[page]]
columns = 0
rows = 4
[[page.lmp]]
tag = "door"
[[page.lamp]]
tag = "dor"
row = 1
column = 1
[[page.lamp]]
tag = "door"
row = 5
column = 1.5
on-colour = "pink"
[[page.switch]]
tag = "door"
row = 1
column = 2
width = 12
[[page.numeric-entry]]
tag = "motor.run"
row = 2
column = 1
decimals = "two"
[[page.numeric-display]]
tag = "oven.temp"
row = 3
column = 1
width = 2
[[page.numeric-display]]
tag = "pump2"
row = 3
column = 2
[[page.trend]]
tag = "recipe.name"
row = 4
column = 1
span = "5 years"
[[page.text]]
row = 4
column = 2
)");
    EXPECT_EQ(linesOf(file),
              R"(f, line 2, column 11: columns must be a whole number from 1 to 50, not 0
f, line 4, column 8: unknown key 'lmp'; did you mean 'lamp'?
f, line 7, column 7: unknown tag 'dor'; did you mean 'door'?
f, line 12, column 7: row must be a whole number from 1 to 4, not 5
f, line 13, column 10: column must be a whole number from 1 to 12, not 1.5
f, line 14, column 13: on-colour must be "green" or "red" or "yellow" or "blue" or "white" or "grey", not 'pink'
f, line 16, column 7: switch needs a tag that can be written; 'door' (X0) is read-only
f, line 19, column 9: width must be a whole number from 1 to 11, not 12
f, line 21, column 7: numeric-entry needs a number; 'motor.run' (M0) is a bit
f, line 24, column 12: decimals must be a whole number from 0 to 9, not 'two'
f, line 30, column 1: row 3, column 2 is taken by the element of line 25; expected an empty place
f, line 35, column 7: trend needs a number or a bit; 'recipe.name' (D200:4) is a text
f, line 38, column 8: span must be a time from "10s" to "1d", in quotes, not '5 years'
f, line 39, column 1: text is missing below [[page.text]]; for example text = "Press 1"
)");
    ASSERT_TRUE(file.screen);
    ASSERT_EQ(file.screen->pages[0].elements.size(), 1);
    EXPECT_EQ(file.screen->pages[0].elements[0].tag, 0);
}

TEST_F(ScreenFileTest, TellsWhatIsMissing)
{
    EXPECT_EQ(mistakesIn("[[page]]\n[[page.lamp]]\n"),
              "f, line 2, column 1: row is missing below [[page.lamp]]; for example row = 1\n"
              "f, line 2, column 1: column is missing below [[page.lamp]]; for example column = 1\n"
              "f, line 2, column 1: tag is missing below [[page.lamp]]; for example tag = "
              "\"motor.run\"\n");
    EXPECT_EQ(mistakesIn(""), "f: a screen needs 1 to 100 pages: [[page]] and its elements below, "
                              "such as [[page.lamp]]\n");
    EXPECT_EQ(mistakesIn("page = 5\n").substr(0, 62),
              "f, line 1, column 8: page must be [[page]] and its keys below,");
}

TEST_F(ScreenFileTest, HasNoScreenForWhatIsNoToml)
{
    const ScreenFile file = read("[[page]]\ntitle = Press\n");
    EXPECT_FALSE(file.screen);
    ASSERT_EQ(file.mistakes.size(), 1);
    EXPECT_EQ(file.mistakes[0].line, 2);
    const ScreenFile none = readScreenFile("/nowhere/screen.toml", someTags());
    EXPECT_FALSE(none.screen);
    ASSERT_EQ(none.mistakes.size(), 1);
    EXPECT_EQ(none.mistakes[0].in("f").toStdString(), "f: No such file or directory");
}

TEST_F(ScreenFileTest, TellsOfWhatDoesNotBelongTogether)
{
    EXPECT_EQ(mistakesOf("text", "tag = \"door\"\ntext = \"Door\"\n"),
              "f, line 6, column 8: a text shows either text or tag, not both\n");
    EXPECT_EQ(mistakesIn("[[page]]\n[[page.text]]\ntext = \"a\"\nrow = 8\ncolumn = 1\n"
                         "height = 2\n"),
              "f, line 6, column 10: height must be a whole number from 1 to 1, not 2\n");
    EXPECT_EQ(mistakesIn("colour = 1\n[[page]]\n").substr(0, 42),
              "f, line 1, column 1: unknown key 'colour';");
    EXPECT_NE(mistakesIn(QByteArray("[[page]]\n").repeated(101)), "");
    EXPECT_EQ(mistakesIn(QByteArray("[[page]]\n[[page.text]]\ntext = \"a\"\nrow = 1\n"
                                    "column = 1\n")
                             .repeated(100)),
              "")
        << "each page has places of its own";
}

TEST_F(ScreenFileTest, SaysWhatIsWrongWithALineThatIsNoToml)
{
    const auto wordsOf = [this](const char* line) {
        const std::string all = mistakesIn(QByteArray("[[page]]\n") + line + "\ncolumns = 3\n");
        return all.substr(0, all.find('\n'));
    };
    EXPECT_EQ(wordsOf("title = Press"),
              "f, line 2, column 9: cannot read 'title = Press': a text stands in quotes, such as "
              "\"Press 1\"");
    for (const auto& [line, words] :
         {std::pair("rows = 1,5", "a number has a point before its decimals, such as 1.5"),
          {"rows = 12abc", "a number is written like 12 or 1.5, a text in quotes"},
          {"rows = 01", "a number is written like 12 or 1.5, a text in quotes"},
          {"title = \"a\\q\"", "in a text, a backslash is written as \\\\"},
          {"title = \"Press", "a text ends with the quote that it begins with, on the same line"},
          {"title = 'Press", "a text ends with the quote that it begins with, on the same line"},
          {"rows = 1\nrows = 2", "each name stands once"},
          {"rows = [1 2", "a list stands in brackets, with commas: [1, 2]"},
          {"[[page.lamp]", "a heading stands in brackets, such as [name] or [[name]]"},
          {"rows 1", "a name and its value have = between them: name = value"},
          {"rows =", "after = stands a value: name = value"},
          {"rows = 1 title = \"a\"", "each name = value and each heading has its own line"}}) {
        const std::string said = wordsOf(line);
        EXPECT_EQ(said.substr(said.rfind("': ") + 3), words) << said;
    }
}

TEST_F(ScreenFileTest, MakesAPlainScreenThatReadsAsItsFile)
{
    const Screen plain = plainScreen(someTags());
    ASSERT_EQ(plain.pages.size(), 1);
    QVector<ElementKind> kinds;
    for (const Element& element : plain.pages[0].elements)
        kinds += element.kind;
    EXPECT_EQ(kinds,
              (QVector<ElementKind>{ElementKind::NumericEntry, ElementKind::Switch,
                                    ElementKind::Lamp, ElementKind::Text,
                                    ElementKind::NumericDisplay, ElementKind::NumericEntry}));
    const ScreenFile file = read(plainScreenText(someTags()).toUtf8());
    EXPECT_EQ(linesOf(file), "");
    ASSERT_EQ(file.screen->pages[0].elements.size(), 6);
    for (int index = 0; index < 6; ++index) {
        const Element& written = plain.pages[0].elements[index];
        const Element& read = file.screen->pages[0].elements[index];
        EXPECT_EQ(read.tag, written.tag);
        EXPECT_EQ(read.kind, written.kind);
        EXPECT_EQ(read.label, written.label);
    }
}

TEST_F(ScreenFileTest, MakesPlainScreensOfManyTagsOnSeveralPages)
{
    QByteArray rows;
    for (int number = 0; number < 500; ++number)
        rows += "value" + QByteArray::number(number) + ",D" + QByteArray::number(number) +
                ",,,,,,,,,,,,,\n";
    const Screen plain = plainScreen(tagsOf(rows));
    ASSERT_EQ(plain.pages.size(), 20);
    EXPECT_EQ(plain.pages[19].elements.size(), 24);
}

TEST(ScreenFiles, OfTheProgramAndTheExamplesAreRight)
{
    const QString source = QStringLiteral(FX_SOURCE "/");
    for (const auto& [tags, screen] :
         {QPair<QString, QString>("tools/fxview/sample.csv", "tools/fxview/sample_screen.toml"),
          {"examples/tags/boiler.csv", "examples/screens/boiler.toml"}}) {
        const ScreenFile file = readScreenFile(
            source + screen, fxtools::readTags(source + tags, tool_tests::catalogue()));
        EXPECT_TRUE(file.screen && !file.screen->pages[0].elements.isEmpty());
        for (const fxtools::Mistake& mistake : file.mistakes)
            ADD_FAILURE() << mistake.in(screen).toStdString();
    }
}
