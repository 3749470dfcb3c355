// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tag files: what is read out of them, every mistake with its place, and files of nonsense.

#include "tests/support/times_shorter.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/tags/tag_columns.h"
#include "tools/tags/tag_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

using namespace fxtools;
using namespace tool_tests;

namespace {

const char* const everyColumn =
    "name,address,type,scale,offset,unit,deadband,period_ms,access,min,max,alarm_low,alarm_high,"
    "link,description\n"
    "boiler.temperature,D100,,0.1,,°C,0.5,500,ro,,,5,95,press1,\"Inlet, left\"\n"
    "boiler.setpoint,D101,unsigned,0.1,-10,°C,,,rw,10,80,,,press1,\n"
    "counter,D20:2,ulong,,,,,,,,,,,,\n"
    "flow,D22:2,float swap,,,l/min,,,,,,,,,\n"
    "product,D30:8,text,,,,,,,,,,,,\"Says \"\"name\"\"\"\n"
    "Gerät-7,M0,,,,,,,,,,,,,\n"
    "door,D5.10,,,,,,,ro,,,,,,\n"
    "lamps,K4M8,hex,,,,,,,,,,,,\n"
    "pieces,32CV200,,0.001,,t,,,,,,,,,\n";

// Mistakes in a file, the same ones in every run.
class Dice
{
public:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

    void changeOneThing(QByteArray& content)
    {
        const int at = below(content.size() + 1);
        const int kind = below(4);
        if (kind == 0)
            content.remove(at, below(20));
        else if (kind == 1)
            content.insert(at, content.mid(below(content.size() + 1), below(40)));
        else
            content.insert(at,
                           kind == 2 ? static_cast<char>(below(256)) : "\n,;\"#.:=9-"[below(10)]);
    }

    QByteArray bytes()
    {
        QByteArray all(below(400), '\0');
        for (char& byte : all)
            byte = static_cast<char>(below(256));
        return all;
    }

private:
    std::mt19937 m_random;
};

class TagFiles : public testing::Test
{
protected:
    TagFile read(const QByteArray& content)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        return readTagFile(path, catalogue());
    }

    std::string remarksOf(const QByteArray& content)
    {
        QStringList remarks;
        for (const TagRemark& remark : read(content).remarks)
            remarks += remark.place() + ": " + remark.text;
        return remarks.join('\n').toStdString();
    }

    QTemporaryDir folder;
    QString path = folder.filePath("tags.csv");
};

}  // namespace

TEST_F(TagFiles, AreWrittenAsTheyWereRead)
{
    const TagFile file = read(everyColumn);
    EXPECT_EQ(remarksOf(everyColumn), "");
    EXPECT_EQ(tagFileText(file.tags).toStdString(), everyColumn);
    const Tag& setpoint = file.tags[1];
    EXPECT_EQ(setpoint.style.format, ValueFormat::Unsigned);
    EXPECT_EQ(setpoint.offset, -10);
    EXPECT_EQ(setpoint.max, 80);
    EXPECT_EQ(file.tags[0].periodMs, 500);
    EXPECT_EQ(file.tags[0].access, TagAccess::ReadOnly);
    EXPECT_EQ(setpoint.access, TagAccess::ReadWrite);
    EXPECT_EQ(file.tags[2].access, TagAccess::NotSaid);
    EXPECT_EQ(file.tags[3].asked.range.together, 2);
}

TEST_F(TagFiles, OfBitsMayHaveWhatIsNoNumber)
{
    EXPECT_EQ(remarksOf("name,address,type,unit,period_ms,access,link,description\n"
                        "lamp,M0,bit,on,500,rw,press1,Lamp\n"),
              "");
}

TEST_F(TagFiles, OfBitsHaveNothingThatNeedsANumber)
{
    for (const char* const column :
         {"scale", "offset", "deadband", "min", "max", "alarm_low", "alarm_high"}) {
        const std::string remark =
            remarksOf(QByteArray("name,address,") + column + "\nlamp,M0,5\n");
        EXPECT_NE(remark.find("'5' has no meaning"), std::string::npos) << column << remark;
    }
}

TEST_F(TagFiles, NeedTwoColumnsInAnyOrder)
{
    const TagFile file = read("\xEF\xBB\xBF"
                              "Type;ADDRESS;name;scale\r\nlong;D20;a;0,5\r\n\"float\";D22;b;\r\n");
    ASSERT_EQ(file.tags.size(), 2);
    EXPECT_EQ(file.tags[0].asked.text(), "D20:2");
    EXPECT_EQ(file.tags[0].scale, 0.5);
    EXPECT_EQ(tagFileText(file.tags).toStdString(),
              "name,address,type,scale\na,D20:2,long,0.5\nb,D22:2,float,\n");
}

TEST_F(TagFiles, HaveAllTheirMistakesToldAtOnce)
{
    EXPECT_EQ(
        remarksOf("name,address,colour,scale\n"
                  "a,D0,red,x\n"
                  "a b,D99999,,0\n"
                  "a,D1\n"
                  ",,,\n"
                  "M5,D2\n"
                  "c,D3,,1,more\n"
                  "d,\"D4\n"
                  "\xB0,D5\n"),
        "line 1, column colour: unknown column 'colour' is ignored; known: name, address, "
        "type, scale, offset, unit, deadband, period_ms, access, min, max, alarm_low, "
        "alarm_high, link, description\n"
        "line 2, column scale: 'x' is not a number; use for example 0.1\n"
        "line 3, column name: 'a b' is not a name; use letters, digits, dots, - and _\n"
        "line 3, column address: 'D99999' is out of range: D0 to D7999 or D8000 to D8255\n"
        "line 3, column scale: '0' makes every value the same; use for example 0.1\n"
        "line 4, column name: a is already in line 2; list a tag of several PLCs once, without "
        "a link\n"
        "line 5, column name: '' is not a name; use letters, digits, dots, - and _\n"
        "line 5, column address: '' is not an address; use for example D100, X17, D100:32 or "
        "D0-D9\n"
        "line 6, column name: 'M5' is an address, so it cannot be a name\n"
        "line 7: 'more' is one field too many; put text that contains , in quotes\n"
        "line 8, column address: 'D4' has an opening quote, but no closing one in its line; "
        "write it in one line\n"
        "line 9, column name: '\xEF\xBF\xBD' is not UTF-8; save the file as UTF-8");
}

TEST_F(TagFiles, NameWhatIsWrongInEachColumn)
{
    struct Row
    {
        const char* columns;
        const char* fields;
        const char* says;
    };
    const Row rows[] = {
        {"type", "D0,int",
         "type: 'int' is not a type; use signed, unsigned, hex, bin, bcd, long, "
         "ulong, float or text, for two words with the high one first for example "
         "float swap"},
        {"type", "D0,signed swap",
         "type: 'signed swap' is not a type; use signed, unsigned, hex, "
         "bin, bcd, long, ulong, float or text, for two words with the "
         "high one first for example float swap"},
        {"type", "M0,hex", "address: 'M0' is a bit; leave its type empty"},
        {"type", "D0.1,long", "address: 'D0.1' is a bit; leave its type empty"},
        {"type", "32CV200,float",
         "address: '32CV200' is not a 16-bit register, which type float "
         "needs"},
        {"type", "D0:2,", "address: 'D0:2' names 2 registers, but a value of its type takes 1"},
        {"type", "d16-D17,",
         "address: 'd16-D17' names 2 registers, but a value of its type takes 1"},
        {"type", "D0:1,long",
         "address: 'D0:1' names 1 of the 2 registers that a value of its type takes"},
        {"type", "D7999,long",
         "address: 'D7999' has no register after it, but a value of its type takes 2"},
        {"type", "D8255,float",
         "address: 'D8255' has no register after it, but a value of its type takes 2"},
        {"type", "D0:33,text",
         "address: 'D0:33' is a text of more than 32 registers, the most "
         "in one frame"},
        {"scale", "D0,inf", "scale: 'inf' is not a number; use for example 0.1"},
        {"scale", "D0,1e306", "scale: makes the values too large"},
        {"max", "M0,1", "max: '1' has no meaning for a bit, a text, hex or bin; leave it empty"},
        {"scale", "M0,0.1",
         "scale: '0.1' has no meaning for a bit, a text, hex or bin; leave it "
         "empty"},
        {"deadband", "D0,-1", "deadband: '-1' is below 0"},
        {"period_ms", "D0,0", "period_ms: '0' is not a time in ms; use 1 to 86400000"},
        {"period_ms", "D0,1.5", "period_ms: '1.5' is not a time in ms; use 1 to 86400000"},
        {"access", "D0,wo", "access: 'wo' is not an access; use ro or rw"},
        {"min,max", "D0,5,4.5", "min: min 5 is above max 4.5"},
        {"alarm_low,alarm_high", "D0,2,1", "alarm_low: alarm_low 2 is above alarm_high 1"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(remarksOf(QByteArray("name,address,") + row.columns + "\nt," + row.fields + '\n'),
                  std::string("line 2, column ") + row.says);
    }
}

TEST_F(TagFiles, HaveOneMistakeForATextOverSeveralLines)
{
    const std::string mistake =
        " has an opening quote, but no closing one in its line; write it in one line";
    EXPECT_EQ(remarksOf("name,address,description\na,D0,\"left\nmiddle\nright\"\nb,x\n"),
              "line 2, column description: 'left'" + mistake +
                  "\nline 5, column address: 'x' is not an address; use for example D100, X17, "
                  "D100:32 or D0-D9");
    EXPECT_EQ(remarksOf("name,address,description\na,D0,\"left\nb,D1,\"right\nc,D2\n"),
              "line 2, column description: 'left'" + mistake +
                  "\nline 3, column description: 'right'" + mistake);
}

// A name is typed in a shell, and shown on a screen.
TEST_F(TagFiles, NameTagsWithHarmlessCharactersOnly)
{
    const QByteArray harmless = "%+-./0123456789:@ABCDEFGHIJKLMNOPQRSTUVWXYZ^_"
                                "abcdefghijklmnopqrstuvwxyz";
    for (int code = 0; code < 0x80; ++code) {
        const QChar character(code);
        const bool isHarmless = harmless.contains(static_cast<char>(code));
        const QString mistake = nameMistake(QString("a%1b").arg(character), catalogue());
        EXPECT_EQ(mistake.isEmpty(), isHarmless) << code;
        EXPECT_EQ(asName(QString("a%1b").arg(character)) == QString("a%1b").arg(character),
                  isHarmless)
            << code;
    }
    EXPECT_FALSE(nameMistake("-a", catalogue()).isEmpty());
    EXPECT_FALSE(nameMistake(QString("a\u202Eb"), catalogue()).isEmpty());
    EXPECT_EQ(nameMistake(QString(64, 'a'), catalogue()), "");
    EXPECT_EQ(nameMistake(QString(65, 'a'), catalogue()), "is longer than 64 characters");
}

TEST_F(TagFiles, HoldNothingThatControlsTheScreen)
{
    EXPECT_EQ(
        remarksOf("name,address,unit,description,\x1b[2J\na,D0,\x1b[1m,\xE2\x80\xAEtxt\n"
                  "b,D1,,tab\there,\x7f\n"),
        "line 1, column '?[2J': unknown column '?[2J' is ignored; known: name, address, type, "
        "scale, offset, unit, deadband, period_ms, access, min, max, alarm_low, alarm_high, "
        "link, description\n"
        "line 2, column unit: '?[1m' has a control character\n"
        "line 2, column description: '?txt' has a control character\n"
        "line 3, column description: 'tab?here' has a control character\n"
        "line 3, column '?[2j': '?' has a control character");
}

TEST_F(TagFiles, NeedARowOfTitles)
{
    EXPECT_EQ(remarksOf("boiler,D100\n"),
              "line 1, column boiler: unknown column 'boiler' is ignored; known: name, address, "
              "type, scale, offset, unit, deadband, period_ms, access, min, max, alarm_low, "
              "alarm_high, link, description\n"
              "line 1, column D100: unknown column 'D100' is ignored; known: name, address, type, "
              "scale, offset, unit, deadband, period_ms, access, min, max, alarm_low, alarm_high, "
              "link, description\n"
              "line 1: no column 'name'; the first row names the columns: name,address and others\n"
              "line 1: no column 'address'; the first row names the columns: name,address and "
              "others");
    EXPECT_EQ(remarksOf("name,address,name\n"), "line 1, column name: appears twice");
    EXPECT_THROW(read("# nothing\n"), Failure);
}

TEST_F(TagFiles, AreUsedOnlyWithoutAMistake)
{
    read("name,address\na,D0\nb,\nc,E1\n");
    try {
        readTags(path, catalogue());
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::File);
        EXPECT_TRUE(failure.text().startsWith(path + ", line 3, column address: '' is not"));
        EXPECT_TRUE(failure.text().contains('\n' + path + ", line 4, column address: 'E1' has"));
    }
    read(everyColumn);
    EXPECT_EQ(readTags(path, catalogue()).size(), 9);
}

// Each tag that is read has a name and a line, each remark a place within the file.
TEST_F(TagFiles, OfNonsenseAreReadToTheEnd)
{
    constexpr int files = 2000 / timesShorter;
    Dice dice;
    for (int number = 0; number < files; ++number) {
        QByteArray content = everyColumn;
        for (int change = dice.below(30); change >= 0; --change)
            dice.changeOneThing(content);
        if (number % 10 == 0)
            content = dice.bytes();
        SCOPED_TRACE(content.toStdString());
        const int lines = content.count('\n') + content.count('\r') + 1;
        try {
            const TagFile file = read(content);
            for (const Tag& tag : file.tags)
                EXPECT_TRUE(nameMistake(tag.name, catalogue()).isEmpty() && tag.line > 1);
            for (const TagRemark& remark : file.remarks)
                EXPECT_TRUE(remark.line >= 1 && remark.line <= lines);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.text(), path + ": no tags in this file");
        }
    }
}
