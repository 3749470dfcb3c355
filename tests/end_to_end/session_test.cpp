// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Whole sessions with the loaded library: a host in a few lines, with a tiny PLC at the other end
// of the link. Values travel from the PLC's memory into the host's buffers and back.

#include "tests/end_to_end/tiny_plc.h"
#include "tests/support/loaded_library.h"
#include "tests/support/record_text.h"

#include <QMutex>

#include <gtest/gtest.h>

#define DRIVER(name) ENTRY_POINT(driver.handle, intf_##name)

namespace {
using Texts = std::vector<std::string>;

class Session : public ::testing::Test
{
protected:
    static constexpr int nothingToSend = -1;

    Session()
    {
        calls.clear();
        DRIVER(setAddrValueChangeCallBack)
        ([](int linkNo, int stationNo, QString& text, int value) {
            calls.push_back(std::to_string(linkNo) + ',' + std::to_string(stationNo) + ',' +
                            plain(text) + ',' + std::to_string(value));
            return 0;
        });
        int status = -1;
        EXPECT_EQ(1, DRIVER(initProperty)(hostMemory.data(), 0, recipeWords.data(), &status,
                                          "1#0#0#3#32", &hostMutex));
        EXPECT_EQ(0, status);
    }
    int monitor(QList<KEY_ADDRESS> keys) { return DRIVER(addrMerge)(keys); }

    // One exchange with the PLC, or with one that answers `reply`.
    int exchange(const char* reply = nullptr)
    {
        FRAME_PRO frame;
        if (DRIVER(getSendFrame)(&frame) == 0)
            return nothingToSend;
        sent = QByteArray(reinterpret_cast<const char*>(frame.frame), frame.frameLength);
        QByteArray answer = reply == nullptr ? plc.answer(sent) : QByteArray(reply);
        EXPECT_TRUE(reply != nullptr || answer.size() == frame.replyLength);
        return DRIVER(dealRcvFrame)(answer, errorText);
    }
    Bytes values(const char* registerType, int start, int count, int byteCount)
    {
        std::vector<unsigned char> out(static_cast<std::size_t>(byteCount));
        EXPECT_EQ(1, DRIVER(getData)(1, QLatin1String(registerType), start, count, out.data()));
        return firstBytes(out.data(), byteCount);
    }
    void write(const char* registerType, int start, const Bytes& data, int count)
    {
        std::vector<unsigned char> bytes(data.begin(), data.end());
        EXPECT_EQ(1,
                  DRIVER(setData)(1, QLatin1String(registerType), start, count, bytes.data(), 0));
    }

    LoadedLibrary driver;
    TinyPlc plc;
    std::vector<unsigned char> hostMemory = std::vector<unsigned char>(fxHostMemoryBytes);
    std::vector<unsigned short> recipeWords = std::vector<unsigned short>(256);
    QMutex hostMutex;
    QByteArray sent;
    QString errorText;
    static Texts calls;  // of the callback: "link,station,text,value"
};

Texts Session::calls;

TEST_F(Session, EveryRegisterTypeArrivesFromItsOwnMemory)
{
    const struct
    {
        const char* registerType;
        int start;
        int count;
        int address;
        Bytes memory;
        Bytes values;
    } rows[] = {
        {"X", 0, 8, 0x0080, {0x81}, {1, 0, 0, 0, 0, 0, 0, 1}},
        {"Y", 1, 2, 0x00A0, {0x02}, {1, 0}},
        {"M", 2, 1, 0x0100, {0x04}, {1}},
        {"SM", 8004, 1, 0x01E0, {0x10}, {1}},
        {"S", 3, 1, 0x0000, {0x08}, {1}},
        {"T", 5, 1, 0x00C0, {0x20}, {1}},
        {"C", 6, 1, 0x01C0, {0x40}, {1}},
        {"D", 100, 2, 0x10C8, {0x34, 0x12, 0x78, 0x56}, {0x34, 0x12, 0x78, 0x56}},
        {"SD", 8000, 1, 0x0E00, {1, 2}, {1, 2}},
        {"TV", 1, 1, 0x0802, {3, 4}, {3, 4}},
        {"CV", 1, 1, 0x0A02, {5, 6}, {5, 6}},
        {"32CV", 201, 2, 0x0C04, {7, 8, 9, 10}, {7, 8, 9, 10}},
    };
    QList<KEY_ADDRESS> keys;
    for (const auto& row : rows) {
        plc.put(row.address, row.memory);
        keys << watch(row.registerType, row.start, row.count);
    }
    ASSERT_EQ(12, monitor(keys));
    for (const auto& row : rows) {
        EXPECT_EQ(1, exchange());
        EXPECT_EQ(row.values, values(row.registerType, row.start, row.count,
                                     static_cast<int>(row.values.size())))
            << row.registerType;
    }
    EXPECT_EQ(
        (Texts{"1,1,D,100", "1,1,D,101", "1,1,SD,8000", "1,1,TV,1", "1,1,CV,1", "1,1,32CV,201"}),
        calls);
}

TEST_F(Session, BitsWordsAndCountersReachThePlc)
{
    plc.put(0x0101, {0xFF});
    monitor({watch("D", 100, 1)});
    write("M", 9, {1, 1, 0}, 3);
    write("Y", 8, {1}, 1);
    write("D", 100, {0x34, 0x12, 0x78, 0x56}, 2);
    write("32CV", 201, {1, 2, 3, 4}, 2);
    write("SD", 8001, {7, 8}, 1);
    EXPECT_EQ((Bytes{0x34, 0x12}), values("D", 100, 1, 2));
    for (int done = 0; done < 10; ++done)  // seven writes, and a poll after each three
        EXPECT_EQ(1, exchange());
    EXPECT_EQ((Bytes{0xF7}), plc.at(0x0101, 1));  // M9, M10 on, M11 off
    EXPECT_EQ((Bytes{0x01}), plc.at(0x00A1, 1));  // Y10
    EXPECT_EQ((Bytes{0x34, 0x12, 0x78, 0x56}), plc.at(0x10C8, 4));
    EXPECT_EQ((Bytes{1, 2, 3, 4}), plc.at(0x0C04, 4));
    EXPECT_EQ((Bytes{7, 8}), plc.at(0x0F02, 2));
    EXPECT_EQ((Bytes{0x34, 0x12}), values("D", 100, 1, 2));
}

TEST_F(Session, OneOffReadArrivesOnceAndReportsItsEnd)
{
    plc.put(0x1190, {1, 2, 3, 4});
    KEY_ADDRESS key = watch("D", 200, 40);
    EXPECT_EQ(1, DRIVER(addConditionRead)(key, 5));
    EXPECT_EQ(1, exchange());
    EXPECT_EQ(Texts(), calls);
    EXPECT_EQ(1, exchange());
    EXPECT_EQ((Texts{"-1,-1,-1,0"}), calls);
    EXPECT_EQ((Bytes{1, 2, 3, 4}), values("D", 200, 2, 4));
    EXPECT_EQ(nothingToSend, exchange());
}

TEST_F(Session, RecipeGoesDownAndComesUpAsThePlcChangedIt)
{
    QVector<_RCP_VAR_PRO> list{recipeEntry("D", 100, 2, 0), recipeEntry("TV", 4, 1, 2)};
    EXPECT_EQ(2, DRIVER(setRcpAddress)(list));
    recipeWords[0] = 0x0201;
    recipeWords[1] = 0x0403;
    recipeWords[2] = 0x0605;
    hostMemory[fxDownloadRequestByte] = hostMemory[fxUploadRequestByte] = 1;
    for (int entry = 0; entry < 2; ++entry) {
        EXPECT_EQ(1, hostMemory[fxDownloadRequestByte]);
        EXPECT_EQ(1, exchange());
    }
    EXPECT_EQ(0, hostMemory[fxDownloadRequestByte]);
    EXPECT_EQ((Bytes{1, 2, 3, 4}), plc.at(0x10C8, 4));
    EXPECT_EQ((Bytes{5, 6}), plc.at(0x0808, 2));
    EXPECT_EQ(Texts(), calls);

    plc.put(0x10C8, {9, 8});
    EXPECT_EQ(1, exchange());
    EXPECT_EQ(1, exchange());
    EXPECT_EQ(0, hostMemory[fxUploadRequestByte]);
    EXPECT_EQ(0x0809, recipeWords[0]);
    EXPECT_EQ(0x0403, recipeWords[1]);
    EXPECT_EQ((Texts{"0,-1,RWI,0", "0,-1,RWI,1", "0,-1,RWI,2"}), calls);
    EXPECT_EQ(nothingToSend, exchange());
}

TEST_F(Session, BadRepliesAreRepeatedAndARefusedWriteIsUndone)
{
    monitor({watch("D", 100, 1)});
    plc.put(0x10C8, {5, 0});
    EXPECT_EQ(8, exchange("\x02"
                          "0500\x03"
                          "00"));
    const QByteArray first = sent;
    EXPECT_EQ("1#D100(1)(8)", plain(errorText));
    EXPECT_EQ(8, exchange(""));
    EXPECT_EQ(1, exchange());
    EXPECT_EQ(first, sent);
    EXPECT_EQ((Bytes{5, 0}), values("D", 100, 1, 2));

    write("D", 100, {9, 9}, 1);
    EXPECT_EQ(8, exchange("\x15"));
    EXPECT_EQ((Bytes{9, 9}), values("D", 100, 1, 2));
    EXPECT_EQ(8, exchange("\x15"));
    EXPECT_EQ(2, exchange("\x15"));
    EXPECT_EQ((Bytes{5, 0}), values("D", 100, 1, 2));
    EXPECT_EQ((Bytes{5, 0}), plc.at(0x10C8, 2));
}

TEST(BeforeASession, ServicesAnswer)
{
    const LoadedLibrary driver;
    FRAME_PRO frame;
    EXPECT_EQ(0, DRIVER(getSendFrame)(&frame));
    QString text;
    DRIVER(getDriverParameter)(text);
    EXPECT_TRUE(text.startsWith(QLatin1String("0,9600,7,EVEN,1,")));
    int number = -1;
    const QString input = QLatin1String("X");
    EXPECT_EQ(0, DRIVER(checkAddr)(input, QLatin1String("17"), &number, -1, 1, 0));
    EXPECT_EQ(15, number);
    QList<QString> names;
    EXPECT_EQ(1, DRIVER(getRegListByType)(1, names));
    QList<QString> fields;
    EXPECT_EQ(1, DRIVER(getRegDiscription)(names.last(), fields));
    EXPECT_EQ(5, fields.size());
    QVector<QString> texts;
    QVector<int> numbers;
    EXPECT_EQ(2, DRIVER(multiCopy)(input, 255, 2, -1, texts, numbers));
    EXPECT_EQ(QLatin1String("377"), texts.at(1));
    EXPECT_EQ(255, numbers.at(1));
}
}  // namespace
