// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The catalogue that fills the editor's register choosers.

#include "tests/support/driver_fixture.h"

namespace {

Texts plainTexts(const QList<QString>& list)
{
    Texts texts;
    for (const QString& text : list)
        texts.push_back(text.toLatin1().constData());
    return texts;
}

TEST(RegisterList, OtherKindsLeaveTheListAlone)
{
    for (const int kind : {2, -1, 3, 2147483647, -2147483647 - 1}) {
        QList<QString> names;
        names << QString::fromLatin1("before");
        EXPECT_EQ(0, intf_getRegListByType(kind, names)) << kind;
        EXPECT_EQ((Texts{"before"}), plainTexts(names)) << kind;
    }
}

TEST(RegisterList, AppendsBitTypesAndWordTypesAndNeverClears)
{
    QList<QString> names;
    for (const int kind : {0, 0, 1})
        EXPECT_EQ(1, intf_getRegListByType(kind, names));
    EXPECT_EQ((Texts{"X", "Y", "M", "S", "SM", "T", "C", "X", "Y", "M", "S", "SM", "T", "C", "D",
                     "SD", "TV", "CV", "32CV"}),
              plainTexts(names));
}

struct DescriptionRow
{
    const char* name;
    const char* registerType;
    Texts fields;  // format, lowest, highest, width, write
    int result;
};

class RegisterDescription : public ::testing::TestWithParam<DescriptionRow>
{};

TEST_P(RegisterDescription, GivesFiveTextsOrNone)
{
    QList<QString> fields;
    EXPECT_EQ(GetParam().result,
              intf_getRegDiscription(QString::fromLatin1(GetParam().registerType), fields));
    EXPECT_EQ(GetParam().fields, plainTexts(fields));
}

// Only "32CV" answers 1: the result says no more than that.
const DescriptionRow descriptions[] = {
    {"X", "X", {"ooo", "0", "377", "0", "0"}, 0},
    {"Y", "Y", {"ooo", "0", "377", "0", "1"}, 0},
    {"M", "M", {"dddd", "0", "3071", "0", "1"}, 0},
    {"S", "S", {"ddd", "0", "999", "0", "1"}, 0},
    {"SM", "SM", {"dddd", "8000", "8255", "0", "1"}, 0},
    {"T", "T", {"ddd", "0", "255", "0", "1"}, 0},
    {"C", "C", {"ddd", "0", "255", "0", "1"}, 0},
    {"D", "D", {"dddd", "0", "7999", "1", "1"}, 0},
    {"SD", "SD", {"dddd", "8000", "8255", "1", "1"}, 0},
    {"TV", "TV", {"ddd", "0", "255", "1", "1"}, 0},
    {"CV", "CV", {"ddd", "0", "199", "1", "1"}, 0},
    {"CounterListsTo255InFiveDigits", "32CV", {"ddddd", "200", "255", "2", "1"}, 1},
    {"UnknownType", "Z", {}, 0},
    {"LowerCase", "d", {}, 0},
    {"LowerCaseCounter", "32cv", {}, 0},
    {"WithABlank", "D ", {}, 0},
    {"Empty", "", {}, 0},
};

INSTANTIATE_TEST_SUITE_P(Types, RegisterDescription, ::testing::ValuesIn(descriptions),
                         nameOf<DescriptionRow>);

TEST(RegisterDescriptionList, AppendsAndNeverClears)
{
    QList<QString> fields;
    intf_getRegDiscription(QString::fromLatin1("D"), fields);
    EXPECT_EQ(1, intf_getRegDiscription(QString::fromLatin1("32CV"), fields));
    EXPECT_EQ((Texts{"dddd", "0", "7999", "1", "1", "ddddd", "200", "255", "2", "1"}),
              plainTexts(fields));
}
}  // namespace
