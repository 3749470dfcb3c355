// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// JSON whose members keep their order.

#include "tools/fxhost/views/json_text.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace fxtools;

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
