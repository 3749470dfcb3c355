// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The exchange that hosts copy from examples/minimal_host, on a line of simulated time. Three
// registers are polled in frames of equal length and three others written, so that a late reply
// fits the next frame. What is accepted must be true: a value that was read is that of its own
// register, and a write that was confirmed is in the PLC.

#include "examples/minimal_host/plc_exchange.h"
#include "tests/tools/support/virtual_line.h"

#include <QMutex>

#include <gtest/gtest.h>

#include <vector>

using fxsim::EnquiryMode;
using tool_tests::VirtualLine;

namespace {

constexpr int station = 1;
constexpr int polled[] = {2, 100, 300};  // data registers
constexpr int written[] = {400, 500, 600};
constexpr int readsBetweenWrites = 2;
constexpr int lastFaultyExchange = 12;  // every kind of exchange has come more than once by then
constexpr int exchanges = 60;           // the last of them long after the last fault

int wireAddress(int dataRegister)
{
    return 0x1000 + 2 * dataRegister;
}

int cached(int dataRegister)
{
    unsigned char bytes[2] = {};
    intf_getData(station, "D", dataRegister, 1, bytes);
    return bytes[0] | bytes[1] << 8;
}

class SimulatedLink : public PlcLink
{
public:
    explicit SimulatedLink(VirtualLine& line) : m_line(line) {}
    void send(const QByteArray& bytes) override { m_line.send(bytes); }
    QByteArray receive(int timeoutMs) override { return m_line.receive(timeoutMs); }

private:
    VirtualLine& m_line;
};

// A host on a line with the given faults. It writes a new value now and then, never two at once.
class Host
{
public:
    Host(const QByteArray& faults, EnquiryMode enquiry)
        : m_line(tool_tests::badLine(9600, faults.constData(), enquiry)), m_link(m_line),
          m_plc(m_link)
    {
        tool_tests::fillWithOwnAddresses(m_line.memory());
        int status = 0;
        intf_initProperty(m_memory.data(), 0, nullptr, &status, "1#0#0#3#32", &m_mutex);
        QList<KEY_ADDRESS> keys;
        for (const int number : polled) {
            KEY_ADDRESS key;
            key.stationNo = station;
            key.registerType = "D";
            key.startIndex = number;
            key.length = 1;
            keys << key;
        }
        intf_addrMerge(keys);
    }

    // The result of one exchange; fails the test if what was accepted is not true.
    int run()
    {
        const int result = m_plc.run();
        if (result == fxReplyAccepted)
            expectTrue();
        const bool hasEnded = result == fxReplyAccepted || result == fxExchangeFailed;
        if (hasEnded && m_plc.frame.isRead == 0)
            m_readsUntilWrite = readsBetweenWrites;
        else if (hasEnded && --m_readsUntilWrite == 0)
            write();
        return result;
    }

private:
    void write()
    {
        const int value = ++m_writes * 1009;  // no register holds it yet
        unsigned char bytes[2] = {static_cast<unsigned char>(value),
                                  static_cast<unsigned char>(value >> 8)};
        intf_setData(station, "D", written[m_writes % 3], 1, bytes, 0);
    }

    void expectTrue()
    {
        const int number = m_plc.frame.variable.addressIndex;
        const int held = static_cast<int>(m_line.memory().value(wireAddress(number), 2));
        EXPECT_EQ(cached(number), held) << "D" << number;
    }

    VirtualLine m_line;
    SimulatedLink m_link;
    PlcExchange m_plc;
    std::vector<unsigned char> m_memory = std::vector<unsigned char>(fxHostMemoryBytes, 0);
    QMutex m_mutex;
    int m_writes = 0;
    int m_readsUntilWrite = readsBetweenWrites;
};

// Runs a host until well after the last fault; then everything must be accepted again.
void expectSafe(const QByteArray& faults, EnquiryMode enquiry = EnquiryMode::Optional)
{
    SCOPED_TRACE(faults.constData());
    Host host(faults, enquiry);
    int rejected = 0;
    for (int i = 0; i < exchanges; ++i)
        rejected += host.run() != fxReplyAccepted;
    EXPECT_GT(rejected, 0) << "the fault did not show";
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(host.run(), fxReplyAccepted);
}

QByteArray at(int exchange)
{
    return "@" + QByteArray::number(exchange);
}

}  // namespace

// A frame at 9600 baud takes some 20 ms more than the delay says.
TEST(PlcExchange, TakesNoReplyThatComesAroundOrAfterTheTimeout)
{
    for (int exchange = 1; exchange <= lastFaultyExchange; ++exchange) {
        for (const int delayMs : {500, 520, 700, 999, 1001, 1480, 1500, 1520, 2500, 6000})
            expectSafe("delay:" + QByteArray::number(delayMs) + at(exchange));
    }
}

TEST(PlcExchange, TakesNoneOfSeveralLateReplies)
{
    for (int exchange = 1; exchange <= lastFaultyExchange; ++exchange) {
        for (const int delayMs : {500, 520, 999, 1520, 2500})
            expectSafe("delay:" + QByteArray::number(delayMs) + at(exchange) + "-" +
                       QByteArray::number(exchange + 4));
    }
}

TEST(PlcExchange, RecoversFromLostReplies)
{
    for (int exchange = 1; exchange <= lastFaultyExchange; ++exchange) {
        for (const char* fault : {"silence", "nak", "truncated:3", "wrong-sum", "echo"})
            expectSafe(fault + at(exchange) + "-" + QByteArray::number(exchange + 3));
    }
}

TEST(PlcExchange, GreetsAPlcThatWantsAnEnqFirst)
{
    Host host("none", EnquiryMode::Needed);
    for (int i = 0; i < exchanges; ++i)
        EXPECT_EQ(host.run(), fxReplyAccepted);
    for (int exchange = 1; exchange <= lastFaultyExchange; ++exchange) {
        for (const char* fault : {"delay:520", "silence", "power-cycle:700"})
            expectSafe(fault + at(exchange), EnquiryMode::Needed);
    }
}

// Without the ACK only the quiet line tells that nothing can come any more.
TEST(PlcExchange, WaitsForQuietWhereEnqIsNotAnswered)
{
    constexpr int longestDelayMs = PlcExchange::replyTimeoutMs + PlcExchange::quietMs - 50;
    for (int exchange = 1; exchange <= lastFaultyExchange; ++exchange) {
        for (const int delayMs : {500, 520, 999, longestDelayMs})
            expectSafe("delay:" + QByteArray::number(delayMs) + at(exchange), EnquiryMode::Ignored);
    }
}

TEST(PlcExchange, TakesNothingFalseOnABadLine)
{
    Host host("delay:520=0.05,delay:3000=0.01,silence=0.05,nak=0.05,truncated=0.05,wrong-sum=0.05,"
              "junk-before=0.05,junk-after=0.05,slices=0.05,duplicate=0.05,echo=0.05",
              EnquiryMode::Optional);
    int accepted = 0;
    for (int i = 0; i < 20000; ++i)
        accepted += host.run() == fxReplyAccepted;
    EXPECT_GT(accepted, 8000);
}
