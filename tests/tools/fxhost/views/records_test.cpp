// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The same records as a table for people, as CSV and as JSON, whose members keep their order.

#include "tools/fxhost/views/records.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

const QVector<Table::Column> columns = {
    {"value", Align::Right}, {"type", Align::Left, true}, {"address"}, {"good"}, {"error"}};

std::string printed(const OutputOptions& options, Records::Shown shown = Records::Shown::AtTheEnd)
{
    testing::internal::CaptureStdout();
    Records records(options, columns, shown);
    records.add({7, "D", "D0", true, QJsonValue::Undefined});
    records.add({12, "D", "D1"});
    records.finish();
    return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST(Records, ForPeopleSayYesAndLeaveOutEmptyColumns)
{
    EXPECT_EQ(printed({}), "  value  address  good\n"
                           "      7  D0       yes\n"
                           "     12  D1\n");
}

TEST(Records, AsCsvHaveEveryColumn)
{
    EXPECT_EQ(printed({OutputMode::Csv, false, false, {}}), "value,address,good,error\n"
                                                            "7,D0,true,\n"
                                                            "12,D1\n");
}

TEST(Records, AsJsonKeepTheirOrderAndNameThePlcLast)
{
    const QVector<JsonMember> plc = {{"link", jsonText("sim:")}, {"station", jsonText(2)}};
    const std::string first =
        R"({"value":7,"type":"D","address":"D0","good":true,"link":"sim:","station":2})";
    const std::string second =
        R"({"value":12,"type":"D","address":"D1","link":"sim:","station":2})";
    const OutputOptions options{OutputMode::Json, false, false, plc};
    EXPECT_EQ(printed(options), "[\n  " + first + ",\n  " + second + "\n]\n");
    EXPECT_EQ(printed(options, Records::Shown::AtOnce), first + '\n' + second + '\n');
}

TEST(Wrapped, BreaksAtBlanksAndKeepsALongerWordWhole)
{
    EXPECT_EQ(wrapped("one two three", 7), QStringList({"one two", "three"}));
    EXPECT_EQ(wrapped("one two three", 6), QStringList({"one", "two", "three"}));
    EXPECT_EQ(wrapped("a serial:/dev/ttyUSB0 b", 8),
              QStringList({"a", "serial:/dev/ttyUSB0", "b"}));
    EXPECT_EQ(wrapped("  a  table of words", 8, 4),
              QStringList({"  a ", "    table", "    of", "    words"}));
    EXPECT_EQ(wrapped("", 8), QStringList(""));
    EXPECT_EQ(wrapped("\x1b[1mone\x1b[0m two", 7).size(), 1) << "colours take no room";
}

TEST(JsonText, HasEveryKindOfValue)
{
    EXPECT_EQ(jsonText("a \"b\"\n"), R"("a \"b\"\n")");
    EXPECT_EQ(jsonText(1.5), "1.5");
    EXPECT_EQ(jsonText(true), "true");
    EXPECT_EQ(jsonText(QJsonValue::Undefined), "null");
}

TEST(JsonText, NamesHaveNoBlanks)
{
    EXPECT_EQ(jsonName("address"), "address");
    EXPECT_EQ(jsonName("one-off read"), "oneOffRead");
}

TEST(JsonText, TreesKeepTheOrderOfTheirFields)
{
    const JsonFields fields = {{"z", 1},      {"b.y", "2"},    {"b.a.k", 3},       {"c.0.from", 4},
                               {"c.0.to", 5}, {"c.1.from", 6}, {"name.of a", true}};
    EXPECT_EQ(jsonTree(fields), R"({"z":1,"b":{"y":"2","a":{"k":3}},)"
                                R"("c":[{"from":4,"to":5},{"from":6}],"name":{"of a":true}})");
    EXPECT_EQ(jsonTree({}), "{}");
}

TEST(JsonText, OverSeveralLinesIsTheSame)
{
    const QByteArray json = R"({"a":"x:{,\"","b":{},"c":[1,[]]})";
    EXPECT_EQ(jsonLines(json), "{\n    \"a\": \"x:{,\\\"\",\n    \"b\": {},\n    \"c\": [\n"
                               "        1,\n        []\n    ]\n}");
    EXPECT_EQ(QJsonDocument::fromJson(jsonLines(json)), QJsonDocument::fromJson(json));
}
