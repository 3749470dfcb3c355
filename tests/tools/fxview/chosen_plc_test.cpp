// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which PLC is meant, and which tags it has: also of a tag file with mistakes.

#include "tools/failure.h"
#include "tools/fxview/plc/chosen_plc.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

using namespace fxview;
using fxtools::Failure;

namespace {

class ChosenPlcOfAWindow : public testing::Test
{
protected:
    ChosenPlcOfAWindow() { qunsetenv("FX_LINK"); }

    QString newFile(const char* name, const QByteArray& text) const
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    }

    ChosenTags tags(const QByteArray& text, const QString& plc = {}) const
    {
        return tagsOf(fxtools::AddressServices(QStringLiteral(FX_DRIVER_FILE),
                                               {newFile("tags.csv", text), plc}));
    }

    std::string failure(const std::function<void()>& act) const
    {
        try {
            act();
        } catch (const Failure& failure) {
            return failure.text().replace(m_folder.path() + '/', QString()).toStdString();
        }
        return "none";
    }

    fxtools::PlcWish wish(const QString& link, const QString& plc = {}) const
    {
        return {link, plc,
                newFile("config.toml", "default = \"press1\"\n"
                                       "[plc.press1]\nlink = \"serial:/dev/ttyS7\"\n"
                                       "tags = \"press.csv\"\nretries = 4\n"
                                       "[plc.bare]\nlink = \"serial:/dev/ttyS8\"\n")};
    }

    QTemporaryDir m_folder;
};

}  // namespace

TEST_F(ChosenPlcOfAWindow, IsTheNamedOneWithItsTagFile)
{
    const ChosenPlc plc = choosePlc(wish({}, "press1"), {});
    EXPECT_EQ(plc.name, "press1");
    EXPECT_TRUE(plc.settings.tags.file.endsWith("press.csv"));
    EXPECT_EQ(plc.settings.session.failLimit, 5);
    EXPECT_EQ(choosePlc(wish({}, "press1"), "other.csv").settings.tags.file, "other.csv");
    EXPECT_EQ(choosePlc(wish({}), {}).name, "press1") << "the default";
}

TEST_F(ChosenPlcOfAWindow, IsASimulatedOneWithTagsOfItsOwn)
{
    const ChosenPlc plc = choosePlc(wish("sim:"), {});
    EXPECT_EQ(plc.name, "sim:");
    EXPECT_EQ(plc.settings.tags.file, ":/sample.csv");
}

TEST_F(ChosenPlcOfAWindow, NeedsATagFile)
{
    const std::string text = "no tag file: start fxview with --tags FILE, or put tags = \"FILE\" "
                             "into the configuration file";
    EXPECT_EQ(failure([this] { choosePlc(wish({}, "bare"), {}); }), text);
    EXPECT_EQ(failure([this] { choosePlc(wish("serial:/dev/ttyS9"), {}); }), text);
}

TEST_F(ChosenPlcOfAWindow, HasTheTagsOfItsLink)
{
    const QByteArray rows = "name,address,link\na,D1,press1\nb,D2,press2\nc,D3,\n";
    EXPECT_EQ(tags(rows, "press1").tags.size(), 2);
    EXPECT_EQ(tags(rows).tags.size(), 3);
    EXPECT_EQ(failure([this] { tags("name,address,link\nb,D2,press2\n", "press1"); }),
              "tags.csv: no tag of press1");
}

TEST_F(ChosenPlcOfAWindow, LeavesOutRowsWithAMistakeAndNamesTheFirst)
{
    const ChosenTags chosen = tags("name,address,scale\ngood,D1,0.1\nbad,D2,x\nworse,Q3,1\n");
    ASSERT_EQ(chosen.tags.size(), 1);
    EXPECT_EQ(chosen.tags[0].name, "good");
    const QString start = m_folder.filePath("tags.csv") + ", line 3, column scale: 'x' ";
    EXPECT_TRUE(chosen.mistakes.startsWith(start)) << qPrintable(chosen.mistakes);
    EXPECT_TRUE(chosen.mistakes.endsWith(" (and 1 more in this file)"));
    EXPECT_EQ(tags("name,address\ngood,D1\n").mistakes, "");
    EXPECT_FALSE(tags("name,address\ngood,D1\nbad,Q1\n").mistakes.contains("more in this file"));
}

TEST_F(ChosenPlcOfAWindow, SaysWhatIsWrongWhereNoTagIsLeft)
{
    EXPECT_EQ(failure([this] {
                  tags("name,address\nbad,Q1\nworse,D\n");
              }).find("tags.csv, line 2, column address: "),
              0U);
    EXPECT_EQ(failure([this] { tags("name,adress\na,D1\n"); }).find("tags.csv, line 1"), 0U);
    EXPECT_EQ(failure([this] { tags(""); }), "tags.csv: no tags in this file");
    EXPECT_EQ(failure([this] { tags("name,address\n"); }), "tags.csv: no tags in this file");
    EXPECT_NE(failure([] {
                  tagsOf(fxtools::AddressServices(QStringLiteral(FX_DRIVER_FILE),
                                                  {"/no/such/tags.csv", {}}));
              }),
              "none");
}

// Whatever it holds, there are tags or a reason.
TEST_F(ChosenPlcOfAWindow, BelievesNoTagFile)
{
    const QByteArray whole = "name,address,type,scale,min,max,period_ms\n"
                             "a,D1,signed,0.1,0,10,100\nb,D2:2,float,,,,\nc,M1,,,,,\n";
    std::mt19937 dice(1);
    for (int round = 0; round < 200; ++round) {
        QByteArray text = whole;
        for (int change = 0; change < 4; ++change)
            text[static_cast<int>(dice() % static_cast<unsigned>(text.size()))] =
                static_cast<char>(dice() % 256);
        int found = 0;
        const std::string reason = failure([&] { found = tags(text).tags.size(); });
        EXPECT_TRUE(found > 0 || reason != "none") << text.toHex().toStdString();
    }
}
