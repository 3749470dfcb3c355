// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The address series of a copied screen object.

#include "address/multi_copy.h"
#include "tests/support/driver_fixture.h"

namespace {
using Numbers = std::vector<int>;

constexpr int largest = 2147483647;
constexpr int smallest = -2147483647 - 1;

Texts plain(const QVector<QString>& list)
{
    Texts texts;
    for (const QString& text : list)
        texts.push_back(text.toLatin1().constData());
    return texts;
}

Numbers plain(const QVector<int>& list)
{
    return Numbers(list.begin(), list.end());
}

struct CopyRow
{
    const char* name;
    const char* registerType;
    int startIndex;
    int copies;
    int step;
    int result;
    Texts texts;
    Numbers values;
};

class MultiCopy : public ::testing::TestWithParam<CopyRow>
{};

TEST_P(MultiCopy, GivesSeries)
{
    const CopyRow& row = GetParam();
    QVector<QString> texts;
    QVector<int> values;
    EXPECT_EQ(row.result, intf_multiCopy(QString::fromLatin1(row.registerType), row.startIndex,
                                         row.copies, row.step, texts, values));
    EXPECT_EQ(row.texts, plain(texts));
    EXPECT_EQ(row.values, plain(values));
}

const CopyRow examples[] = {
    {"ClampsAtTheEnd",
     "D",
     7996,
     5,
     -1,
     2,
     {"7996", "7997", "7998", "7999", "7999"},
     {7996, 7997, 7998, 7999, 7999}},
    {"DoubleStepOfWords", "D", 100, 3, -2, 1, {"100", "102", "104"}, {100, 102, 104}},
    {"DoubleStepOfCountersIsOne", "32CV", 200, 3, -2, 1, {"200", "201", "202"}, {200, 201, 202}},
    {"OctalTexts", "X", 6, 4, 1, 1, {"6", "7", "10", "11"}, {6, 7, 8, 9}},
    {"OctalClamps", "Y", 254, 3, 1, 2, {"376", "377", "377"}, {254, 255, 255}},
    {"StepZeroIsOne", "D", 1, 2, 0, 1, {"1", "2"}, {1, 2}},
    {"StepMinusFiveIsOne", "D", 1, 2, -5, 1, {"1", "2"}, {1, 2}},
    {"StepMinusThreeIsOne", "D", 1, 2, -3, 1, {"1", "2"}, {1, 2}},
    {"SmallestStepIsOne", "D", 1, 2, smallest, 1, {"1", "2"}, {1, 2}},
    {"StepOne", "D", 1, 2, 1, 1, {"1", "2"}, {1, 2}},
    {"StepTen", "M", 5, 3, 10, 1, {"5", "15", "25"}, {5, 15, 25}},
    {"OctalStepTen", "Y", 0, 3, 10, 1, {"0", "12", "24"}, {0, 10, 20}},
    {"ZeroCopies", "D", 1, 0, -1, 1, {}, {}},
    {"NegativeCopies", "X", 1, -4, -1, 1, {}, {}},
    {"ZeroCopiesPastTheEnd", "D", 9999, 0, -1, 1, {}, {}},
    {"ZeroCopiesOfAnUnknownType", "Z", 1, 0, -1, 0, {}, {}},
    {"UnknownType", "Z", 1, 3, -1, 0, {}, {}},
    {"LowerCaseType", "d", 1, 3, -1, 0, {}, {}},
    {"EmptyType", "", 1, 3, -1, 0, {}, {}},
    {"StartBelowTheTypeIsNotRefused", "SM", 10, 2, -1, 1, {"10", "11"}, {10, 11}},
    {"CounterBelowItsFirst", "32CV", 0, 1, -1, 1, {"0"}, {0}},
    {"NegativeStartIsWrittenUnsigned", "D", -1, 3, -1, 1, {"4294967295", "0", "1"}, {-1, 0, 1}},
    {"NegativeOctalStartIsWrittenUnsigned", "X", -1, 2, -1, 1, {"37777777777", "0"}, {-1, 0}},
    {"SmallestStart", "M", smallest, 1, -1, 1, {"2147483648"}, {smallest}},
};

// From the last number one step on: the number itself, then the text of the end.
const CopyRow lastNumbers[] = {
    {"X", "X", 255, 2, -1, 2, {"377", "377"}, {255, 255}},
    {"Y", "Y", 255, 2, -1, 2, {"377", "377"}, {255, 255}},
    {"M", "M", 3071, 2, -1, 2, {"3071", "3071"}, {3071, 3071}},
    {"S", "S", 999, 2, -1, 2, {"999", "999"}, {999, 999}},
    {"SM", "SM", 8255, 2, -1, 2, {"8255", "8255"}, {8255, 8255}},
    {"T", "T", 255, 2, -1, 2, {"255", "255"}, {255, 255}},
    {"C", "C", 255, 2, -1, 2, {"255", "255"}, {255, 255}},
    {"D", "D", 7999, 2, -1, 2, {"7999", "7999"}, {7999, 7999}},
    {"SD", "SD", 8255, 2, -1, 2, {"8255", "8255"}, {8255, 8255}},
    {"TV", "TV", 255, 2, -1, 2, {"255", "255"}, {255, 255}},
    {"CV", "CV", 199, 2, -1, 2, {"199", "199"}, {199, 199}},
    {"CounterEndsAt255", "32CV", 255, 2, -1, 2, {"255", "255"}, {255, 255}},
};

const CopyRow doubleSteps[] = {
    {"X", "X", 0, 2, -2, 1, {"0", "1"}, {0, 1}},
    {"Y", "Y", 0, 2, -2, 1, {"0", "1"}, {0, 1}},
    {"M", "M", 0, 2, -2, 1, {"0", "1"}, {0, 1}},
    {"S", "S", 0, 2, -2, 1, {"0", "1"}, {0, 1}},
    {"SM", "SM", 8000, 2, -2, 1, {"8000", "8001"}, {8000, 8001}},
    {"T", "T", 0, 2, -2, 1, {"0", "1"}, {0, 1}},
    {"C", "C", 0, 2, -2, 1, {"0", "1"}, {0, 1}},
    {"D", "D", 0, 2, -2, 1, {"0", "2"}, {0, 2}},
    {"SD", "SD", 8000, 2, -2, 1, {"8000", "8002"}, {8000, 8002}},
    {"TV", "TV", 0, 2, -2, 1, {"0", "2"}, {0, 2}},
    {"CV", "CV", 0, 2, -2, 1, {"0", "2"}, {0, 2}},
    {"Counter", "32CV", 200, 2, -2, 1, {"200", "201"}, {200, 201}},
};

const CopyRow hostile[] = {
    {"LargestStart", "D", largest, 2, -1, 2, {"7999", "7999"}, {7999, 7999}},
    {"LargestStep", "D", 0, 4, largest, 2, {"0", "7999", "7999", "7999"}, {0, 7999, 7999, 7999}},
    {"LargestStepOctal", "Y", 1, 3, largest, 2, {"1", "377", "377"}, {1, 255, 255}},
    {"LargestStepFromTheSmallestStart",
     "D",
     smallest,
     3,
     largest,
     2,
     {"2147483648", "4294967295", "7999"},
     {smallest, -1, 7999}},
};

INSTANTIATE_TEST_SUITE_P(Examples, MultiCopy, ::testing::ValuesIn(examples), nameOf<CopyRow>);
INSTANTIATE_TEST_SUITE_P(LastNumbers, MultiCopy, ::testing::ValuesIn(lastNumbers), nameOf<CopyRow>);
INSTANTIATE_TEST_SUITE_P(DoubleSteps, MultiCopy, ::testing::ValuesIn(doubleSteps), nameOf<CopyRow>);
INSTANTIATE_TEST_SUITE_P(Hostile, MultiCopy, ::testing::ValuesIn(hostile), nameOf<CopyRow>);

TEST(MultiCopyVectors, AreAppendedToAndNeverCleared)
{
    QVector<QString> texts;
    QVector<int> values;
    texts << QString::fromLatin1("before");
    values << -9 << -8;
    EXPECT_EQ(1, intf_multiCopy(QString::fromLatin1("X"), 8, 1, -1, texts, values));
    EXPECT_EQ(1, intf_multiCopy(QString::fromLatin1("D"), 8, 1, -1, texts, values));
    EXPECT_EQ((Texts{"before", "10", "8"}), plain(texts));
    EXPECT_EQ((Numbers{-9, -8, 8, 8}), plain(values));
}

// The millionth number is 7999, the next one would not fit.
TEST(MultiCopyVectors, TakeAMillionCopiesAndAnswerForThoseThatAreNotAppended)
{
    QVector<QString> texts;
    QVector<int> values;
    const int start = 7999 - 999999;
    EXPECT_EQ(1, intf_multiCopy(QString::fromLatin1("D"), start, 1000000, 1, texts, values));
    EXPECT_EQ(2, intf_multiCopy(QString::fromLatin1("D"), start, 1000001, 1, texts, values));
    EXPECT_EQ(2, intf_multiCopy(QString::fromLatin1("D"), 0, largest, largest, texts, values));
    EXPECT_EQ(3000000, texts.size());
    ASSERT_EQ(3000000, values.size());
    EXPECT_EQ(7999, values.at(999999));
    EXPECT_EQ(7999, values.at(2999999));
}

TEST(DecimalSeries, ClampsToTheGivenNumberAndText)
{
    QVector<QString> texts;
    QVector<int> values;
    EXPECT_EQ(2, multiCp_dec(8, 4, 2, texts, values, 11, QString::fromLatin1("end")));
    EXPECT_EQ((Texts{"8", "10", "end", "end"}), plain(texts));
    EXPECT_EQ((Numbers{8, 10, 11, 11}), plain(values));
}
}  // namespace
