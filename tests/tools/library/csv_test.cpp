// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Tables in the forms in which spreadsheets save them.

#include "tools/failure.h"
#include "tools/library/csv.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

std::string textOf(const CsvFile& csv)
{
    QStringList rows;
    for (const CsvRow& row : csv.rows)
        rows +=
            QString::number(row.line) + ": " + row.fields.join('|') + (row.isOpen ? " open" : "");
    return rows.join('\n').toStdString();
}

std::string read(const QByteArray& content)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("table.csv"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    return textOf(readCsv(file.fileName(), "table"));
}

}  // namespace

TEST(Csv, HasTheSeparatorOfItsFirstRow)
{
    EXPECT_EQ(read("# no; row\na,b;c\n1;2,5\n"), "2: a,b|c\n3: 1|2,5");
    EXPECT_EQ(read("\"a;b\",c\n1;2,3\n"), "1: a;b|c\n2: 1;2|3");
    EXPECT_EQ(read("a\tb,c\n"), "1: a|b,c");
}

TEST(Csv, HasQuotesWithinQuotes)
{
    EXPECT_EQ(read("\"say \"\"on\"\"\", \"\" ,\"\"\"\"\n"), "1: say \"on\"||\"");
    EXPECT_EQ(read("a,\"b,c\nd,e\n"), "1: a|b,c open\n2: d|e");
}

TEST(Csv, IsReadWhateverTheByteOrderMark)
{
    EXPECT_EQ(read("\xEF\xBB\xBF\xC2\xB0\x43,b\r\n\r\nc"), "1: \xC2\xB0\x43|b\n3: c");
    EXPECT_EQ(read(QByteArray("\xFF\xFE\xB0\0C\0\t\0b\0\n\0", 12)), "1: \xC2\xB0\x43|b");
    EXPECT_EQ(read("\xB0\x43\n"), "1: \xEF\xBF\xBD\x43");  // not UTF-8
}
