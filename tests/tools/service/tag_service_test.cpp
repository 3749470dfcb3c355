// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The service that keeps tags fresh: each job is answered once, whatever becomes of the line.

#include "tests/tools/support/failure_of.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/link/link_settings.h"
#include "tools/service/tag_service.h"

#include <QTemporaryFile>
#include <QThread>

#include <gtest/gtest.h>

using namespace fxtools;

namespace {

QVector<Tag> tagsOf(const QByteArray& rows)
{
    QTemporaryFile file;
    EXPECT_TRUE(file.open());
    file.write("name,address,period_ms\n" + rows);
    file.close();
    return readTags(file.fileName(), tool_tests::catalogue());
}

class TagServiceTest : public testing::Test
{
protected:
    explicit TagServiceTest(const char* link = "sim:", const QByteArray& rows = hourly)
        : m_service(settings(link), tagsOf(rows))
    {
        m_service.onTick = [this] { return m_waited.elapsed() > longestMs || onTick(); };
        m_service.onPause = [] {};
        m_service.onLinkChanged = [this] { m_links += static_cast<int>(m_service.link()); };
        m_service.wait = [](qint64 timeMs) { QThread::msleep(static_cast<unsigned long>(timeMs)); };
        m_waited.start();
    }

    // Runs until `isOver`, which is asked at each tick.
    void runUntil(const std::function<bool()>& isOver)
    {
        bool wasOver = false;
        onTick = [&] { return wasOver = wasOver || isOver(); };
        m_service.run();
        EXPECT_TRUE(wasOver) << "it did not happen within a minute";
    }

    void command(const char* text) { m_service.connection()->control()->run(text); }

    TagService::Job job()
    {
        return {[this](Connection&) { m_answers += "run"; },
                [this](const QString& reason) { m_answers += reason; }};
    }

    static TagService::Job reading()
    {
        return {
            [](Connection& connection) { readBack(connection.loop(), tool_tests::range("D0")); },
            [](const QString&) {}};
    }

    bool isUp() const { return m_service.link() == LinkState::Up; }
    bool isDown() const { return m_service.link() == LinkState::Down; }
    Quality quality(int tag) { return m_service.tags().stateOf(tag, m_service.now()).quality; }

    static constexpr const char* hourly = "slow,D0,3600000\n";
    static constexpr qint64 longestMs = 60000;
    TagService m_service;
    std::function<bool()> onTick;
    QStringList m_answers;
    QVector<int> m_links;

private:
    static ConnectionSettings settings(const char* link)
    {
        ConnectionSettings settings;
        settings.library = QStringLiteral(FX_DRIVER_FILE);
        settings.link = parseLink(link);
        settings.reconnectS = 0;
        return settings;
    }

    QElapsedTimer m_waited;
};

struct NoPort : TagServiceTest
{
    NoPort() : TagServiceTest("serial:/dev/there-is-no-such-port?baud=9600") {}
};

struct FastAndSlow : TagServiceTest
{
    FastAndSlow() : TagServiceTest("sim:", "slow,D0,3600000\nfast,D100,10\n") {}
};

}  // namespace

TEST_F(NoPort, RefusesEachJobOnceWhereItCannotBegin)
{
    m_service.perform(job());
    onTick = [] { return false; };
    const std::string reason =
        tool_tests::failureOf(ExitCode::LinkNotOpened, [this] { m_service.run(); });
    EXPECT_EQ(m_answers, QStringList(QString::fromStdString(reason)));
    EXPECT_EQ(m_service.connection(), nullptr);
}

// It was asked for between the look at the jobs and the look at the line.
TEST_F(FastAndSlow, RunsNoJobWhileThePlcIsSilent)
{
    int pauses = 0;
    m_service.wait = [&](qint64) { pauses += isDown() ? 1 : 0; };
    runUntil([&] {
        if (isUp() && m_links.size() == 1)
            command("faults silence=1");
        if (isDown())
            m_service.perform(job());
        return pauses > 0;
    });
    EXPECT_TRUE(m_answers.contains("not sent: no reply"));
    EXPECT_FALSE(m_answers.contains("run"));
}

TEST_F(TagServiceTest, LooksForASilentPlcAlsoWhereNothingIsDueForAnHour)
{
    runUntil([this] {
        if (isUp() && m_links.size() == 1)
            command("faults silence=1");
        if (m_links.size() == 1)
            m_service.perform(reading());
        if (isDown())
            command("faults none");
        return m_links.size() >= 3 && quality(0) == Quality::Good;
    });
}

TEST_F(FastAndSlow, ReadsEverythingWhenThePlcIsBack)
{
    runUntil([this] {
        if (m_links.size() == 1 && quality(0) == Quality::Good)
            command("faults silence=1");
        if (isDown())
            command("faults none");
        return m_links.size() >= 3 && quality(0) == Quality::Good;
    });
}
