// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The smallest and largest integers, and those around each limit, in every argument of every entry
// point, alone and in pairs. Nothing may crash, overflow or answer outside the documented results,
// and the state stays sound. Counts without end have tests of their own.

#include "tests/model/driver_properties.h"
#include "tests/support/driver_fixture.h"

#include <climits>

namespace {

const int extremes[] = {INT_MIN, INT_MIN + 1, -65537, -8,  -1,   0,     1,           7,      8,
                        253,     254,         512,    513, 8000, 65535, INT_MAX - 1, INT_MAX};
const int counts[] = {INT_MIN, -1, 0, 1, 2, 3, 253, 254, 512, 513};
const char* const oneOfEachSort[] = {"X", "M", "SD", "32CV", "Z"};

class ExtremeNumbers : public DriverTest
{
protected:
    ExtremeNumbers() { setUpDriver("1#0#0#1#32"); }

    // Two exchanges, one rejected, one answered with zeros of the right frame.
    void exchangeTwice()
    {
        FRAME_PRO frame;
        if (intf_getSendFrame(&frame) == 0)
            return;
        ASSERT_EQ("", malformed(frame));
        ASSERT_EQ(2, reply("<NAK>"));
        if (intf_getSendFrame(&frame) == 0)
            return;
        ASSERT_EQ("", malformed(frame));
        const int result = frame.isRead ? reply("<STX>00<ETX>63") : reply("<ACK>");
        ASSERT_TRUE(result == 1 || result == 2);
        ASSERT_EQ("", brokenState());
    }
};

}  // namespace

TEST_F(ExtremeNumbers, InReadsAndWrites)
{
    std::vector<unsigned char> buffer(1026, 1);
    for (const char* type : oneOfEachSort) {
        const QString name = QString::fromLatin1(type);
        for (const int start : extremes) {
            setUpDriver("1#0#0#1#32");
            for (const int count : counts) {
                ASSERT_EQ(1, intf_setData(start, name, start, count, buffer.data(), count));
                ASSERT_EQ(1, intf_getData(start, name, start, count, buffer.data()));
                ASSERT_EQ("", brokenState());
            }
            ASSERT_NO_FATAL_FAILURE(exchangeTwice());
            ASSERT_EQ("", brokenCache());
        }
    }
}

TEST_F(ExtremeNumbers, InKeysInPairs)
{
    for (const char* type : oneOfEachSort) {
        for (const int start : extremes) {
            for (const int length : counts) {
                setUpDriver("1#0#0#1#253");
                KEY_ADDRESS key = watch(type, start, length, -1);
                key.bitIndex = start;
                const int planned = merge({key, watch(type, length, 3, INT_MIN)});
                ASSERT_EQ(planned, driver.readList.size());
                readOnce(key, length);
                ASSERT_NO_FATAL_FAILURE(exchangeTwice());
                ASSERT_EQ("", brokenCache());
            }
        }
    }
}

TEST_F(ExtremeNumbers, InPropertyStrings)
{
    for (const int limit : extremes) {
        const QByteArray text = "-2147483648#0#2147483647#" + QByteArray::number(limit) + '#' +
                                QByteArray::number(limit) + "#-1";
        setUpDriver(text.constData());
        write("D", 0, Bytes(512, 3), 256);
        write("M", 0, {1, 0, 1}, 3);
        ASSERT_GE(merge({watch("32CV", 200, 9)}), 1);
        ASSERT_NE("", nextFrame());
        ASSERT_EQ(limit > 1 ? 8 : 2, reply("<NAK>"));
        ASSERT_EQ("", brokenState());
    }
}

TEST_F(ExtremeNumbers, InRecipeEntries)
{
    for (const char* type : oneOfEachSort) {
        for (const int start : {INT_MIN, 0, INT_MAX}) {
            for (const int wordCount : extremes) {
                setUpDriver("1#0#0#1#32");
                setRecipe(
                    {recipeEntry(type, start, wordCount, 0), recipeEntry(type, start, 1, INT_MIN)});
                requestDownload();
                ASSERT_NO_FATAL_FAILURE(exchangeTwice());
                requestUpload();
                ASSERT_NO_FATAL_FAILURE(exchangeTwice());
            }
        }
    }
}

TEST_F(ExtremeNumbers, InAddressChecksAndSeries)
{
    for (const char* type : oneOfEachSort) {
        const QString name = QString::fromLatin1(type);
        for (const int a : extremes) {
            for (const int b : extremes) {
                int index = 0;
                const QString text = QString::number(a & INT_MAX);
                const int checked = intf_checkAddr(name, text, &index, a, b, b);
                ASSERT_TRUE(checked >= 0 && checked <= 6);
                const int valid = intf_checkAddrValidity(name, text, &index, b, a);
                ASSERT_TRUE(valid >= 0 && valid <= 4);
                QVector<QString> texts;
                QVector<int> values;
                const int result = intf_multiCopy(name, a, 5, b, texts, values);
                ASSERT_TRUE(result >= 0 && result <= 2);
                ASSERT_EQ(result == 0 ? 0 : 5, texts.size());
                ASSERT_EQ(texts.size(), values.size());
            }
        }
    }
}
