// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The smallest and largest integers, and those around each limit, in every argument of every entry
// point, alone and in pairs. Nothing may crash, overflow or answer outside the documented results,
// and the state stays sound.

#include "tests/model/driver_properties.h"
#include "tests/support/driver_fixture.h"

#include <climits>

namespace {

const int extremes[] = {INT_MIN, INT_MIN + 1, -65537, -8,  -1,   0,     1,           7,      8,
                        253,     254,         512,    513, 8000, 65535, INT_MAX - 1, INT_MAX};
const int counts[] = {INT_MIN, -1, 0, 1, 2, 3, 253, 254, 512, 513};
const int hugeCounts[] = {65536, 65537, INT_MAX};
const int hugeStarts[] = {INT_MIN, 0, INT_MAX - 3};
const int stations[] = {INT_MIN, 0, 1, INT_MAX};
const char* const types[] = {"X", "Y",  "M",  "S",  "SM",   "T", "C",
                             "D", "SD", "TV", "CV", "32CV", "Z"};
const char* const oneOfEachWidth[] = {"M", "D", "32CV", "Z"};

class ExtremeNumbers : public DriverTest
{
protected:
    ExtremeNumbers() : buffer(4 * fxMaxElements, 1) { setUpDriver("1#0#0#1#32"); }

    void readAndWrite(int station, const QString& type, int start, int count)
    {
        ASSERT_EQ(1, intf_setData(station, type, start, count, buffer.data(), count));
        ASSERT_EQ(1, intf_getData(station, type, start, count, buffer.data()));
    }

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

    std::vector<unsigned char> buffer;
};

}  // namespace

TEST_F(ExtremeNumbers, InReadsAndWrites)
{
    for (const char* type : types) {
        for (const int station : stations) {
            setUpDriver("1#0#0#1#32");
            for (const int start : extremes) {
                for (const int count : counts)
                    ASSERT_NO_FATAL_FAILURE(
                        readAndWrite(station, QString::fromLatin1(type), start, count));
                ASSERT_EQ("", brokenState());
            }
            ASSERT_NO_FATAL_FAILURE(exchangeTwice());
        }
    }
    EXPECT_EQ("", brokenCache());
}

TEST_F(ExtremeNumbers, InCountsThatNoLinkCarries)
{
    for (const char* type : oneOfEachWidth) {
        for (const int start : hugeStarts) {
            for (const int count : hugeCounts) {
                setUpDriver("1#0#0#1#32");
                ASSERT_NO_FATAL_FAILURE(readAndWrite(1, QString::fromLatin1(type), start, count));
                ASSERT_EQ("", brokenState());
                ASSERT_LE(driver.dataAreas.size(), fxMaxElements);
                ASSERT_NO_FATAL_FAILURE(exchangeTwice());
            }
        }
    }
}

TEST_F(ExtremeNumbers, InKeys)
{
    for (const char* type : oneOfEachWidth) {
        for (const int start : hugeStarts) {
            for (const int length : hugeCounts) {
                setUpDriver(length == INT_MAX ? "1#0#0#1#2147483647" : "1#0#0#1#32");
                KEY_ADDRESS key = watch(type, start, length, INT_MAX);
                QList<KEY_ADDRESS> keys{key};
                const int planned = intf_addrMerge(keys);
                ASSERT_EQ(planned, driver.readList.size());
                ASSERT_LE(planned, fxMaxElements);
                ASSERT_EQ(1, intf_addConditionRead(key, INT_MIN));
                ASSERT_NO_FATAL_FAILURE(exchangeTwice());
            }
        }
    }
}

TEST_F(ExtremeNumbers, InKeysInPairs)
{
    for (const char* type : types) {
        for (const int start : extremes) {
            for (const int length : counts) {
                setUpDriver("1#0#0#1#253");
                KEY_ADDRESS key = watch(type, start, length, -1);
                key.bitIndex = start;
                QList<KEY_ADDRESS> keys{key, watch(type, length, 3, INT_MIN)};
                const int planned = intf_addrMerge(keys);
                ASSERT_EQ(planned, driver.readList.size());
                ASSERT_EQ(1, intf_addConditionRead(key, length));
                ASSERT_NO_FATAL_FAILURE(exchangeTwice());
                ASSERT_EQ("", brokenCache());
            }
        }
    }
}

TEST_F(ExtremeNumbers, InPropertyStrings)
{
    for (const int failLimit : extremes) {
        for (const int wordLimit : extremes) {
            const QByteArray text = "-2147483648#0#2147483647#" + QByteArray::number(failLimit) +
                                    '#' + QByteArray::number(wordLimit) + "#-1";
            setUpDriver(text.constData());
            write("D", 0, Bytes(512, 3), 256);
            write("M", 0, {1, 0, 1}, 3);
            KEY_ADDRESS key = watch("32CV", 200, 9);
            QList<KEY_ADDRESS> keys{key};
            ASSERT_GE(intf_addrMerge(keys), 1);
            ASSERT_NE("", nextFrame());
            const int result = reply("<NAK>");
            ASSERT_EQ(failLimit > 1 ? 8 : 2, result);
            ASSERT_EQ("", brokenState());
        }
    }
}

TEST_F(ExtremeNumbers, InRecipeEntries)
{
    for (const char* type : oneOfEachWidth) {
        for (const int start : extremes) {
            for (const int wordCount : extremes) {
                setUpDriver("1#0#0#1#32");
                QVector<_RCP_VAR_PRO> list{recipeEntry(type, start, wordCount, 0),
                                           recipeEntry(type, start, 1, INT_MIN)};
                intf_setRcpAddress(list);
                requestDownload();
                ASSERT_NO_FATAL_FAILURE(exchangeTwice());
                requestUpload();
                ASSERT_NO_FATAL_FAILURE(exchangeTwice());
            }
        }
    }
}

TEST_F(ExtremeNumbers, InAddressChecks)
{
    for (const char* type : types) {
        const QString name = QString::fromLatin1(type);
        for (const int a : extremes) {
            for (const int b : extremes) {
                int index = 0;
                const QString text = QString::number(a & INT_MAX);
                const int checked = intf_checkAddr(name, text, &index, a, b, b);
                ASSERT_TRUE(checked >= 0 && checked <= 6);
                const int valid = intf_checkAddrValidity(name, text, &index, b, a);
                ASSERT_TRUE(valid >= 0 && valid <= 4);
            }
        }
    }
}

TEST_F(ExtremeNumbers, InSeries)
{
    for (const char* type : types) {
        for (const int start : extremes) {
            for (const int step : extremes) {
                QVector<QString> texts;
                QVector<int> values;
                const int result =
                    intf_multiCopy(QString::fromLatin1(type), start, 5, step, texts, values);
                ASSERT_TRUE(result >= 0 && result <= 2);
                ASSERT_EQ(result == 0 ? 0 : 5, texts.size());
                ASSERT_EQ(texts.size(), values.size());
            }
        }
    }
}

TEST_F(ExtremeNumbers, InLengthsOfSeries)
{
    for (const int copies : extremes) {
        QVector<QString> texts;
        QVector<int> values;
        intf_multiCopy(QLatin1String("D"), 0, copies, 1, texts, values);
        EXPECT_EQ(copies < 1 ? 0 : std::min(copies, fxMaxCopies), texts.size());
    }
}

TEST_F(ExtremeNumbers, InKindsOfLists)
{
    for (const int kind : extremes) {
        QList<QString> names;
        EXPECT_EQ(kind == 0 || kind == 1 ? 1 : 0, intf_getRegListByType(kind, names));
    }
}
