// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The thread that talks to the PLC, with a simulated one inside.

#include "tools/fxview/plc/plc_thread.h"
#include "tools/link/link_settings.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace fxview;
using fxtools::AddressServices;

namespace {

int argumentCount = 0;
const QCoreApplication application(argumentCount, nullptr);

const char* const tagRows = "name,address,scale,access,min,max,period_ms\n"
                            "count,D100,,,,,\n"
                            "setpoint,D101,0.1,rw,10,90,\n"
                            "sensor,D102,,ro,,,\n"
                            "slow,D103,,,,,60000\n"
                            "lamp,M50,,rw,,,\n";

class PlcThreadTest : public testing::Test
{
protected:
    PlcThreadTest() { EXPECT_TRUE(m_folder.isValid()); }

    void start(const QString& link = QStringLiteral("sim:"))
    {
        QFile file(m_folder.filePath("tags.csv"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(tagRows);
        file.close();
        fxtools::ConnectionSettings settings;
        settings.library = QStringLiteral(FX_DRIVER_FILE);
        settings.link = fxtools::parseLink(link);
        auto services = std::make_unique<AddressServices>(settings.library,
                                                          fxtools::TagSource{file.fileName(), {}});
        const QVector<fxtools::Tag> tags = services->tags();
        m_plc = std::make_unique<PlcThread>(settings, link, std::move(services), tags);
        QObject::connect(m_plc.get(), &PlcSource::readings,
                         [this](const QVector<Reading>& some) { m_readings += some; });
        QObject::connect(m_plc.get(), &PlcSource::linkChanged,
                         [this](bool isUp, const QString& reason) {
                             m_links += (isUp ? "up" : "down: " + reason);
                         });
        QObject::connect(m_plc.get(), &PlcSource::written,
                         [this](const WriteResult& result) { m_results.append(result); });
        QObject::connect(
            m_plc.get(), &PlcSource::exchanges,
            [this](const QVector<fxtools::Exchange>& some) { m_exchanges += some.size(); });
        QObject::connect(m_plc.get(), &PlcSource::lineReport,
                         [this](const LineReport& report) { m_report = report; });
        QObject::connect(
            m_plc.get(), &PlcSource::benchRefused,
            [this](const QString&, const QString& reason) { m_refusals.append(reason); });
        m_plc->start();
    }

    bool waitUntil(const std::function<bool()>& isSo) const
    {
        QElapsedTimer waited;
        for (waited.start(); !isSo() && waited.elapsed() < 60000;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        return isSo();
    }

    std::optional<Reading> last(int tag) const
    {
        for (int index = m_readings.size() - 1; index >= 0; --index) {
            if (m_readings[index].tag == tag)
                return m_readings[index];
        }
        return std::nullopt;
    }

    WriteResult written(int tag, const QString& text)
    {
        m_results.clear();
        m_plc->write(7, tag, text);
        EXPECT_TRUE(waitUntil([this] { return !m_results.isEmpty(); }));
        EXPECT_EQ(m_results.value(0).id, 7);
        return m_results.value(0);
    }

    QTemporaryDir m_folder;
    std::unique_ptr<PlcThread> m_plc;
    QVector<Reading> m_readings;
    QStringList m_links;
    QVector<WriteResult> m_results;
    int m_exchanges = 0;
    std::optional<LineReport> m_report;
    QStringList m_refusals;
};

}  // namespace

TEST_F(PlcThreadTest, ReadsEachTagAndSaysWhyOneCannotBeRead)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(0) && last(1) && m_report; }));
    EXPECT_EQ(last(0)->quality, Quality::Good);
    EXPECT_TRUE(last(0)->value.isDouble());
    EXPECT_EQ(m_links, QStringList("up"));
    EXPECT_GT(m_exchanges, 0);
    EXPECT_FALSE(m_report->blocks.isEmpty());
    EXPECT_GT(m_report->statistics.total().accepted, 0);
    m_plc->benchCommand("faults nak=1");
    EXPECT_TRUE(waitUntil([this] { return last(0)->quality == Quality::Bad; }));
    EXPECT_EQ(last(0)->reason, "refused by the PLC (NAK)");
    EXPECT_TRUE(last(0)->value.isNull());
}

TEST_F(PlcThreadTest, TellsEachReadingAlsoWhatDidNotChange)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(2).has_value(); }));
    const auto readings = [this](int tag) {
        return std::count_if(m_readings.begin(), m_readings.end(),
                             [tag](const Reading& reading) { return reading.tag == tag; });
    };
    EXPECT_TRUE(waitUntil([&] { return readings(2) > 20; }));
    EXPECT_EQ(readings(3), 1) << "once a minute";
}

TEST_F(PlcThreadTest, WritesAndTellsWhatWasReadBack)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(1).has_value(); }));
    const WriteResult done = written(1, "71.5");
    EXPECT_EQ(done.outcome, WriteResult::Outcome::Done) << qPrintable(done.reason);
    EXPECT_EQ(done.after, 71.5);
    EXPECT_TRUE(waitUntil([this] { return last(1)->value == 71.5; }));
    EXPECT_EQ(last(1)->raw, 715);
}

TEST_F(PlcThreadTest, ShowsBitsAsNumbers)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(4).has_value(); }));
    const WriteResult done = written(4, "1");
    EXPECT_EQ(done.outcome, WriteResult::Outcome::Done) << qPrintable(done.reason);
    EXPECT_EQ(done.before, 0);
    EXPECT_EQ(done.after, 1);
    EXPECT_TRUE(waitUntil([this] { return last(4)->value == 1; }));
}

TEST_F(PlcThreadTest, SendsNothingThatATagForbids)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(1).has_value(); }));
    for (const auto& [tag, text] : {QPair<int, QString>(1, "90.1"), {2, "5"}, {0, "five"}}) {
        const WriteResult refused = written(tag, text);
        EXPECT_EQ(refused.outcome, WriteResult::Outcome::Refused);
        EXPECT_FALSE(refused.reason.isEmpty());
    }
    ASSERT_TRUE(m_report.has_value() || waitUntil([this] { return m_report.has_value(); }));
    EXPECT_EQ(m_report->statistics.of(fxtools::ExchangeKind::Write).sent, 0);
}

TEST_F(PlcThreadTest, MakesAllValuesBadWhenThePlcFallsSilentAndRefusesWrites)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(0) && last(3); }));
    m_plc->benchCommand("faults silence=1");
    EXPECT_TRUE(waitUntil([this] { return m_links.last().startsWith("down"); }));
    EXPECT_TRUE(waitUntil([this] { return last(3)->quality == Quality::Bad; }));
    EXPECT_EQ(last(0)->quality, Quality::Bad);
    EXPECT_TRUE(last(0)->value.isNull());
    EXPECT_EQ(written(1, "50").outcome, WriteResult::Outcome::Refused);
    m_plc->benchCommand("faults none");
    EXPECT_TRUE(waitUntil([this] { return last(0)->quality == Quality::Good; }));
    EXPECT_EQ(m_links.last(), "up");
}

TEST_F(PlcThreadTest, KeepsEveryReadingForAWindowThatIsBusy)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(0).has_value(); }));
    m_readings.clear();
    QThread::msleep(500);  // the window does something else
    EXPECT_TRUE(waitUntil([this] { return !m_readings.isEmpty(); }));
    for (int index = 1; index < m_readings.size(); ++index)
        EXPECT_LE(m_readings[index - 1].timeMs, m_readings[index].timeMs);
    EXPECT_GT(m_readings.size(), 1) << "all of them at once";
}

TEST_F(PlcThreadTest, RefusesCommandsThatNoSimulatedPlcKnows)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return last(0).has_value(); }));
    m_plc->benchCommand("dance");
    EXPECT_TRUE(waitUntil([this] { return !m_refusals.isEmpty(); }));
    EXPECT_TRUE(m_refusals[0].contains("dance")) << qPrintable(m_refusals[0]);
}

TEST_F(PlcThreadTest, WaitsForALinkThatIsNotThereAndEnds)
{
    start("serial:/dev/there-is-no-such-port?baud=9600");
    EXPECT_TRUE(waitUntil([this] { return !m_links.isEmpty(); }));
    EXPECT_TRUE(m_links[0].contains("there-is-no-such-port")) << qPrintable(m_links[0]);
    EXPECT_EQ(written(1, "50").outcome, WriteResult::Outcome::Refused);
}
