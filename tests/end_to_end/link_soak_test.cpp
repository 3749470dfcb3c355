// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A hundred thousand exchanges over a real link, five in a hundred of them spoilt by every fault of
// a line in turn: no value that the host takes for good is wrong, no exchange is given up, and at
// the end the PLC holds what was written last.

#include "tests/tools/support/loaded_driver.h"
#include "tests/tools/support/programs.h"
#include "tools/exchange/exchange_loop.h"
#include "tools/simulated/make_link.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

using namespace fxtools;
using namespace tool_tests;

namespace {

struct SoakedLink
{
    Road road;
    int exchanges;
};

void PrintTo(const SoakedLink& soaked, std::ostream* out)
{
    PrintTo(soaked.road, out);
}

constexpr int exchangesToAWrite = 10;
constexpr int wordsPerFrame = 12;
constexpr int failLimit = 20;  // rejections in a row: never reached at this rate of faults
const char* const faults = "mixed:10=0.05";

// D0 to D479 name their own byte address; D2000 to D2011 are set points that the host writes.
constexpr int byteAddressOfD0 = 0x1000;
constexpr int byteAddressOfD2000 = 0x1FA0;
constexpr int registersNamed = 480;
constexpr int setPoints = 12;

// Nothing but the faults of this line keeps an answer back for milliseconds. A machine that is
// slow for a moment costs a repeat, since the time-out grows with what it sees.
LoopSettings loopSettings()
{
    LoopSettings settings;
    settings.timeout = {2, 1000, 2};
    return settings;
}

QVector<quint32> ownAddresses()
{
    QVector<quint32> addresses;
    for (quint32 number = 0; number < registersNamed; ++number)
        addresses.append(byteAddressOfD0 + 2 * number);
    return addresses;
}

QString hexBytes(const QVector<quint32>& words)
{
    QByteArray bytes;
    for (const quint32 word : words)
        bytes += QByteArray(1, char(word & 0xFF)) + char(word >> 8);
    return QString::fromLatin1(bytes.toHex(' '));
}

}  // namespace

class LinkSoak : public testing::TestWithParam<SoakedLink>
{
protected:
    LinkSoak()
    {
        plc.command(QString("poke %1 0x").arg(byteAddressOfD0) +
                    hexBytes(ownAddresses()).replace(" ", " 0x"));
        plc.command(QString("faults ") + faults);
        link->open();
        session.setPlan({named, written});
    }

    void exchange();
    void checkValues(const VARIABLE& request);
    void writeSetPoints();
    QByteArray setPointsInPlc();

    int noArguments = 0;
    const QCoreApplication application{noArguments, nullptr};  // that devices wait in
    RunningSimulator plc{GetParam().road, quickPlc};
    std::unique_ptr<Link> link = makeLink(parseLink(plc.link())).link;
    DriverSession session{driver(), {failLimit, wordsPerFrame}};
    ExchangeLoop loop{session, *link, loopSettings()};
    const RegisterRange named = range("D0:480");
    const RegisterRange written = range("D2000:12");
    const QVector<quint32> addresses = ownAddresses();
    QVector<quint32> values = QVector<quint32>(setPoints, 0);
    bool isWriting = false;
    int ended = 0;
};

void LinkSoak::exchange()
{
    const std::optional<Exchange> exchange = loop.step();
    ASSERT_TRUE(exchange);
    ASSERT_NE(exchange->verdict, ReplyVerdict::LinkLost);
    ASSERT_FALSE(exchange->hasFailed());
    if (!exchange->hasEnded())
        return;
    ++ended;
    if (exchange->kind == ExchangeKind::Write)
        isWriting = false;
    else
        checkValues(exchange->frame.variable);
}

void LinkSoak::checkValues(const VARIABLE& request)
{
    RegisterRange block = named;
    block.first = request.addressIndex;
    block.count = request.count;
    if (block.first == written.first)
        ASSERT_TRUE(isWriting || session.values(block) == values) << "after " << ended;
    else
        ASSERT_EQ(session.values(block), addresses.mid(block.first, block.count));
}

void LinkSoak::writeSetPoints()
{
    for (quint32& value : values)
        value = (value * 5 + 3) & 0xFFFF;
    session.write(written, values);
    isWriting = true;
}

// "1FA0: 03 00 ...", sixteen bytes a line.
QByteArray LinkSoak::setPointsInPlc()
{
    QByteArray bytes;
    const QString peek = QString("peek %1 %2").arg(byteAddressOfD2000).arg(2 * setPoints);
    for (const QByteArray& line : plc.command(peek).trimmed().split('\n'))
        bytes += line.mid(line.indexOf(':') + 1);
    return bytes.trimmed();
}

TEST_P(LinkSoak, EndsWithEveryValueRight)
{
    const int wanted = GetParam().exchanges / (qEnvironmentVariableIsSet("FX_WHOLE_SOAK") ? 1 : 10);
    while (ended < wanted || isWriting) {
        if (!isWriting && ended % exchangesToAWrite == 0)
            writeSetPoints();
        ASSERT_NO_FATAL_FAILURE(exchange());
    }
    EXPECT_EQ(setPointsInPlc().toLower().toStdString(), hexBytes(values).toStdString());
    const Statistics& counted = loop.statistics();
    EXPECT_GT(counted.total().repeated, ended / 50) << "the line was no bad one";
    std::cout << ended << " exchanges in " << loop.elapsedUs() / 1000 << " ms, "
              << counted.total().repeated << " repeats, " << counted.bytesThrownAway
              << " bytes thrown away\n"
              << plc.command("stats").toStdString();
}

INSTANTIATE_TEST_SUITE_P(Links, LinkSoak,
                         testing::Values(SoakedLink{Road::Tcp, 100000},
                                         SoakedLink{Road::PseudoTerminal, 20000}),
                         [](const auto& row) { return testing::PrintToString(row.param); });
