// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tags from and to other programs, and what is remarked on tags that are legal. The golden files
// beside this test have the shape in which such programs save their lists.

#include "tests/tools/support/loaded_driver.h"
#include "tools/tags/foreign_tags.h"
#include "tools/tags/tag_check.h"
#include "tools/tags/tag_columns.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace fxtools;
using namespace tool_tests;

namespace {

QString golden(const char* name)
{
    return QStringLiteral(FX_GOLDEN_FILES) + '/' + name;
}

std::string contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().toStdString();
}

std::string textOf(const QVector<TagRemark>& remarks)
{
    QStringList lines;
    for (const TagRemark& remark : remarks)
        lines += remark.place() + ": " + remark.text;
    return lines.join('\n').toStdString();
}

std::string importOf(const QString& path)
{
    const TagFile file = importTags(path, std::nullopt, catalogue());
    return tagFileText(file.tags).toStdString() + textOf(file.remarks);
}

QVector<Tag> tagsOf(const QByteArray& content)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("tags.csv"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    return readTags(file.fileName(), catalogue());
}

std::string remarksOn(const char* rows)
{
    return textOf(checkTags(
        tagsOf(QByteArray("name,address,type,scale,min,max,alarm_low,alarm_high\n") + rows),
        catalogue()));
}

}  // namespace

TEST(ForeignTags, FromAScadaListAreScaledAndLimited)
{
    EXPECT_EQ(importOf(golden("scada.csv")),
              "name,address,type,scale,offset,unit,period_ms,access,min,max,description\n"
              "Boiler.Temperature,D100,,0.1,,°C,100,ro,,,\"Inlet, left\"\n"
              "Boiler.Setpoint,D101,unsigned,0.02442002442002442,-20,°C,500,,-20,80,\n"
              "Boiler.Backwards,D102,,-0.5,-10,,100,,-60,-10,\n"
              "Pump_1_runs,M10,,,,,100,,,,Blank in its name\n"
              "Pieces,CV200,,,,,1000,ro,,,\n"
              "Flow,D20:2,float,,,l/min,100,,,,\n"
              "Root,D103,,,,,100,,,,\n"
              "Door,D5.10,,,,,100,ro,,,\n"
              "Reversed,D107,,-0.1,100,,,,0,100,\n"
              "Falling,D108,,-0.1,100,,,,,100,\n"
              "Runs,M11,,,,,,,,,\n"
              "line 1, column Respect Data Type: is not imported\n"
              "line 1, column Scaled Data Type: is not imported\n"
              "line 5, column Tag Name: 'Pump 1 runs' became 'Pump_1_runs'\n"
              "line 8, column Scaling: 'Square Root' is not imported: the raw value is shown\n"
              "line 10: 'LBCD' is not a known Data Type\n"
              "line 11, column Address: 'D9999' is out of range: D0 to D7999 or D8000 to D8255\n"
              "line 12: '7' is both Raw Low and Raw High\n"
              "line 13, column Scan Rate: '0' is not imported: it is not a time in ms\n"
              "line 14, column Scan Rate: '1.5' is not imported: it is not a time in ms\n"
              "line 15, column Scaling: is not imported: it has no meaning for a bit or a text\n"
              "line 16, column Data Type: 'bit' is not the type of D106");
}

TEST(ForeignTags, FromCommentsHaveTheLabelOrTheCommentAsName)
{
    EXPECT_EQ(importOf(golden("comments.csv")),
              "name,address,description\n"
              "PumpRuns,M10,Pump 1 runs\n"
              "Boiler_temperature,D100,Boiler temperature\n"
              "Pump_1,X0,Pump 1\n"
              "Pump_1_X1,X1,Pump 1\n"
              "line 4, column Label: 'Boiler temperature' became 'Boiler_temperature'\n"
              "line 6, column Label: 'Pump 1' became 'Pump_1'\n"
              "line 7, column Label: 'Pump 1' became 'Pump_1_X1'\n"
              "line 8, column Device: 'Z1' has an unknown register type; use one of X Y M S SM T "
              "C D SD TV CV 32CV");
}

TEST(ForeignTags, ControlNoScreenWithTheirTitles)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("list.csv"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Device,Label,\x1b[2J\nD0,a,x\n");
    file.close();
    EXPECT_EQ(importOf(file.fileName()),
              "name,address\na,D0\nline 1, column '?[2J': is not imported");
}

TEST(ForeignTags, NameTheFirstColumnTooIfItIsNotImported)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("list.csv"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("No,Device,Label\n1,D0,a\n");
    file.close();
    EXPECT_EQ(importOf(file.fileName()), "name,address\na,D0\nline 1, column No: is not imported");
}

TEST(ForeignTags, NeedTheirTitles)
{
    EXPECT_THROW(importTags(golden("scada.csv"), ForeignForm::Comments, catalogue()), Failure);
    EXPECT_THROW(importTags("/dev/null", std::nullopt, catalogue()), Failure);
}

TEST(ForeignTags, ComeBackFromAnExportExactly)
{
    for (const auto& [form, name] : {std::pair(ForeignForm::Scada, "scada_export.csv"),
                                     std::pair(ForeignForm::Comments, "comments_export.csv")}) {
        const bool isScada = form == ForeignForm::Scada;
        const QVector<Tag> tags =
            importTags(golden(isScada ? "scada.csv" : "comments.csv"), form, catalogue()).tags;
        const ExportedTags exported = exportTags(tags, form, catalogue());
        EXPECT_EQ(textOf(exported.remarks), "");
        EXPECT_EQ(exported.text.toStdString(), contentOf(golden(name)));
        EXPECT_EQ(tagFileText(importTags(golden(name), std::nullopt, catalogue()).tags),
                  tagFileText(tags));
    }
}

TEST(ForeignTags, KeepASingleLimitInAnExport)
{
    const QVector<Tag> tags = tagsOf("name,address,min,max\nlow,D0,0,\nhigh,D1,,0\n");
    const QByteArray text = exportTags(tags, ForeignForm::Scada, catalogue()).text;
    EXPECT_EQ(text.count("Linear"), 2) << text.data();
}

TEST(Tags, MayBeATextThatFillsAFrame)
{
    EXPECT_EQ(tagsOf("name,address,type\ntext,D0:32,text\n").size(), 1);
    EXPECT_THROW(tagsOf("name,address,type\ntext,D0:33,text\n"), Failure);
}

TEST(ForeignTags, TellWhatAnExportLoses)
{
    const QVector<Tag> tags = tagsOf("name,address,type,deadband,alarm_low,link\n"
                                     "kept,D0,,,,\nbits,D1,hex,,,\nalarm,D2,,0.5,3,press1\n"
                                     "text,D30:8,text,,,\nwide,D206,float swap,,,\n");
    EXPECT_EQ(textOf(exportTags(tags, ForeignForm::Scada, catalogue()).remarks),
              "line 3: bits changes its type from hex to unsigned\n"
              "line 4: alarm loses its deadband, alarm_low, link\n"
              "line 6: wide: the list cannot say 'swap', so its two words are read in the wrong "
              "order");
    EXPECT_EQ(textOf(exportTags(tags, ForeignForm::Comments, catalogue()).remarks),
              "line 3: bits loses its type\n"
              "line 4: alarm loses its deadband, alarm_low, link\n"
              "line 5: text: the list names only D30 of D30:8\n"
              "line 5: text loses its type\n"
              "line 6: wide: the list names only D206 of D206:2\n"
              "line 6: wide loses its type");
}

namespace {

// A decimal number of up to six digits.
QByteArray someNumber(std::mt19937& random)
{
    const double digits = static_cast<double>(random() % 1999999) - 999999;
    return numberText(digits / std::pow(10, random() % 7)).toLatin1();
}

QByteArray someTag(std::mt19937& random)
{
    const char* const types[] = {"", "unsigned", "long", "ulong", "float", "bcd"};
    QByteArray scale = someNumber(random);
    if (scale == "0")
        scale = "1";
    const QByteArray one = someNumber(random);
    const QByteArray other = someNumber(random);
    const bool isUp = one.toDouble() < other.toDouble();
    const auto sometimes = [&random](const QByteArray& text) {
        return random() % 3 == 0 ? QByteArray() : text;
    };
    const QByteArrayList fields = {"t",
                                   "D0",
                                   types[random() % std::size(types)],
                                   sometimes(scale),
                                   sometimes(someNumber(random)),
                                   sometimes(isUp ? one : other),
                                   sometimes(isUp ? other : one)};
    return "name,address,type,scale,offset,min,max\n" + fields.join(',') + '\n';
}

}  // namespace

// Limits are at raw values that no list can say exactly. Six digits are found again all the same;
// what comes back otherwise is told.
TEST(ForeignTags, ComeBackFromAnExportOrAreNamed)
{
    std::mt19937 random;
    int named = 0;
    for (int number = 0; number < 300; ++number) {
        const QByteArray content = someTag(random);
        const QVector<Tag> tags = tagsOf(content);
        const ExportedTags exported = exportTags(tags, ForeignForm::Scada, catalogue());
        const QTemporaryDir folder;
        QFile file(folder.filePath("list.csv"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(exported.text);
        file.close();
        const TagFile back = importTags(file.fileName(), ForeignForm::Scada, catalogue());
        EXPECT_EQ(tagFileText(back.tags) == tagFileText(tags), exported.remarks.isEmpty())
            << content.toStdString() << textOf(exported.remarks) << textOf(back.remarks);
        named += exported.remarks.size();
    }
    EXPECT_EQ(named, 0);
    const QVector<Tag> tags = tagsOf("name,address,scale,offset,min,max\na,D0,0.333,,5,\n"
                                     "b,D1,3,123456.789,-5,7.7\n"
                                     "c,D2,0.123456789012345,123456.789,-5,7.7\nd,D3,,,5,5\n");
    EXPECT_EQ(textOf(exportTags(tags, ForeignForm::Scada, catalogue()).remarks),
              "line 4: c changes its scale from 0.123456789012345 to 0.123456789012\n"
              "line 4: c changes its offset from 123456.789 to 123456.78899965498\n"
              "line 5: d loses its min, max");
}

TEST(TagCheck, RemarksOnWhatIsHardlyMeant)
{
    const auto remarks = [](const char* rows) {
        return textOf(
            checkTags(tagsOf(QByteArray("name,address,type,scale,offset,access,max,link\n") + rows),
                      catalogue()));
    };
    EXPECT_EQ(remarks("a,D1\nb,D0,long\nc,D1,,,,,,press2\nd,D3\ne,D3\n"),
              "line 2, column address: a shares registers with b, line 3\n"
              "line 6, column address: e shares registers with d, line 5");
    EXPECT_EQ(remarks("a,D1\nb,D1.0\nc,D1.1\nd,K4M0\ne,M3\nf,D8000\n"), "");
    EXPECT_EQ(remarks("a,D0,long\nb,D1.0\n"),
              "line 3, column address: b shares registers with a, line 2");
    EXPECT_EQ(remarks("a,D1.0\nb,D1.0\nc,D8000\nd,SD8000,,,,ro\n"),
              "line 3, column address: b shares registers with a, line 2\n"
              "line 5, column address: d shares registers with c, line 4");
    EXPECT_EQ(remarks("a,D8200\nb,D8201,,,,ro\n"),
              "line 2, column address: a is not written without --force: a write to D8200 changes "
              "D72");
    EXPECT_EQ(remarks("a,D1,,,,ro,5\n"),
              "line 2, column max: a is read-only, so it needs no limits");
    EXPECT_EQ(remarks("a,D1,,1e-13\nb,D2,float,0.1\nc,D4,,0.1,,ro\nd,D5,,0.1\n"),
              "line 2, column scale: a cannot be written back exactly: values that are shown may "
              "change when they are written\n"
              "line 3, column scale: b cannot be written back exactly: values that are shown may "
              "change when they are written");
}

TEST(TagCheck, RemarksOnLimitsThatNoValueHas)
{
    EXPECT_EQ(
        remarksOn("a,D0,unsigned,,-5,-1,,\nb,D1,,,0.5,0.6,,\nc,D2,,7,8,13,,\nd,D3,,,,-40000,,\n"),
        "line 2, column min: a has no value between its limits, so nothing can be written\n"
        "line 3, column min: b has no value between its limits, so nothing can be written\n"
        "line 4, column min: c has no value between its limits, so nothing can be written\n"
        "line 5, column max: d has no value between its limits, so nothing can be written");
    EXPECT_EQ(
        remarksOn("a,D0,unsigned,,-5,70000,,\nb,D1,bcd,0.1,,,-0.1,1000\n"),
        "line 2, column min: a has a limit of -5, but its values go from 0 to 65535\n"
        "line 2, column max: a has a limit of 70000, but its values go from 0 to 65535\n"
        "line 3, column alarm_low: b has a limit of -0.1, but its values go from 0 to 999.9\n"
        "line 3, column alarm_high: b has a limit of 1000, but its values go from 0 to 999.9");
    EXPECT_EQ(
        remarksOn("a,D0,,,-32768,32767,-32768,32767\nb,D1,,0.1,0.3,0.3,,\nc,D2,,-0.1,0.7,0.7,,\n"
                  "d,D3,,3,-6,-6,,\n"),
        "");
    EXPECT_EQ(remarksOn("a,D0:2,float,,0.5,0.5,,\n"), "");
}
