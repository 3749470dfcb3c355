// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/bus/flat_json.h"

#include <QJsonObject>

#include <gtest/gtest.h>

using namespace fxgate;

TEST(FlatJson, IsAValueOrAnObjectOfValues)
{
    EXPECT_EQ(flatJson("12.5"), QJsonValue(12.5));
    EXPECT_EQ(flatJson(" true "), QJsonValue(true));
    EXPECT_EQ(flatJson(R"("a [\"{\" \\")"), QJsonValue("a [\"{\" \\"));
    EXPECT_EQ(flatJson(R"({"v":"{[","id":"\\"})"),
              QJsonValue(QJsonObject{{"v", "{["}, {"id", "\\"}}));
}

// Such lists, named twice, are never freed once they were parsed.
TEST(FlatJson, IsNotNested)
{
    for (const char* const text : {R"({"v":[1],"v":[2]})", R"({"v":{},"v":{}})", "[1]", "1,2", "",
                                   R"({"v":1},{"v":2})", "{", R"("open)", "nonsense"})
        EXPECT_FALSE(flatJson(text)) << text;
    EXPECT_TRUE(flatJson('"' + QByteArray(mostJsonBytes - 2, 'x') + '"'));
    EXPECT_FALSE(flatJson('"' + QByteArray(mostJsonBytes - 1, 'x') + '"'));
}
