// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A link with a worker process that serves, dies, floods, hangs or talks nonsense. The clock is the
// test's: nothing here depends on how long something takes.

#include "tests/tools/fxgate/gate_support.h"
#include "tools/fxgate/workers/link_supervisor.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace fxgate;
using namespace gate_tests;

namespace {

class LinkSupervisorTest : public testing::Test
{
protected:
    LinkSupervisorTest()
    {
        environment.now = [this] { return now; };
    }

    void start(const QByteArray& script, qint64 afterMs = 0)
    {
        ServedLink served;
        served.link = "sim:";
        served.tags = folder.write("tags", script);
        link = std::make_unique<LinkSupervisor>("press1", served, fakeWorker, plant, environment);
        link->onChanges = [this](const QVector<Change>& changes) {
            for (const Change& change : changes) {
                const char* const quality[] = {"good", "stale", "bad"};
                told += change.tag + ' ' + change.sample.value.toVariant().toString() + ' ' +
                        quality[static_cast<int>(change.sample.quality)] + ' ' +
                        change.sample.reason;
            }
        };
        link->onLinkChanged = [this] { ++linkChanges; };
        link->onWritten = [this](const WrittenLine& line) { written += line.id; };
        link->onWorkerLost = [this](const QString& reason) { lost += reason; };
        link->onLog = [this](const QString& line) { logged += line; };
        link->start(afterMs);
    }

    void pass(qint64 timeMs)
    {
        for (; timeMs > 0; timeMs -= 500) {
            now.steadyMs += std::min<qint64>(timeMs, 500);
            link->tick();
        }
    }

    const Folder folder;
    Plant plant;
    Moment now{1795348800000, 5000};
    Environment environment = realEnvironment();
    std::unique_ptr<LinkSupervisor> link;
    QStringList told, written, lost, logged;
    int linkChanges = 0;
};

}  // namespace

TEST_F(LinkSupervisorTest, StartsItsWorkerLater)
{
    start("hello; up; serve", 1000);
    pass(500);
    EXPECT_EQ(link->report().workerPid, 0);
    pass(500);
    EXPECT_NE(link->report().workerPid, 0);
    EXPECT_EQ(link->report().restarts, 0);
}

TEST_F(LinkSupervisorTest, TellsWhatItsWorkerTells)
{
    EXPECT_FALSE(plant.contains("press1"));
    start("hello; up; values '\"flow\":1.5,\"run\":true'; alive; serve");
    EXPECT_EQ(plant["press1"].reason, "the link is starting");
    ASSERT_TRUE(waitUntil([this] { return link->report().line.exchanges == 4; }));
    EXPECT_EQ(told, QStringList({"flow 1.5 good ", "run true good "}));
    EXPECT_EQ(plant["press1"].tags.size(), 2);
    EXPECT_TRUE(plant["press1"].isUp);
    EXPECT_EQ(linkChanges, 2);  // tags, up
    EXPECT_EQ(logged, QStringList("up"));
    link->send(writeLine("7", "flow", 2));
    ASSERT_TRUE(waitUntil([this] { return written == QStringList("7"); }));
    link->stop();
    ASSERT_TRUE(waitUntil([this] { return link->hasEnded(); }));
    EXPECT_EQ(told.mid(2), QStringList({"flow 1.5 bad the gateway stopped the link",
                                        "run true bad the gateway stopped the link"}));
    EXPECT_EQ(logged, QStringList("up"));
}

TEST_F(LinkSupervisorTest, StartsItsWorkerAgainAfterGrowingPauses)
{
    start("hello; up; values '\"flow\":1'; echo bad luck >&2; exit 3");
    const QString how = "the worker ended with exit code 3: 'bad luck'";
    ASSERT_TRUE(waitUntil([this] { return link->hasEnded(); }));
    EXPECT_EQ(told, QStringList({"flow 1 good ", "flow 1 bad " + how, "run  bad " + how}));
    EXPECT_EQ(lost, QStringList(how));
    EXPECT_FALSE(plant["press1"].isUp);
    EXPECT_EQ(plant["press1"].reason, how);
    EXPECT_EQ(link->report().lastError, how);
    EXPECT_EQ(link->report().restarts, 0);
    for (int restart = 1; restart < 4; ++restart) {
        pass(500 << (restart - 1));
        EXPECT_EQ(link->report().restarts, restart - 1) << "too early";
        pass(500 << (restart - 1));
        EXPECT_EQ(link->report().restarts, restart);
        ASSERT_TRUE(waitUntil([this] { return link->hasEnded(); }));
        EXPECT_EQ(lost.last(), how);
    }
}

TEST_F(LinkSupervisorTest, TellsTheWholeComplaintOfItsWorker)
{
    const QString complaint = "fxhost: " + QString(60, 'x') + ".csv, line 2: not a register";
    start("echo '" + complaint.toUtf8() + "' >&2; exit 2");
    ASSERT_TRUE(waitUntil([this] { return link->hasEnded(); }));
    EXPECT_EQ(link->report().lastError, "the worker ended with exit code 2: '" + complaint + '\'');
}

TEST_F(LinkSupervisorTest, KnowsNothingOfAWorkerFromTheOneBefore)
{
    start("hello; up; printf '{\"event'; exit 3");
    ASSERT_TRUE(waitUntil([this] { return link->hasEnded(); }));
    folder.write("tags", "hello; serve");  // and no state
    linkChanges = 0;
    pass(GrowingPause::firstMs);
    ASSERT_TRUE(waitUntil([this] { return linkChanges == 1; }));  // its tags
    pass(LinkSupervisor::silentMs + 1);
    EXPECT_EQ(plant["press1"].reason, "the worker does not answer");
    link->send(writeLine("7", "flow", 2));
    ASSERT_TRUE(waitUntil([this] { return written == QStringList("7"); }));
    EXPECT_FALSE(plant["press1"].isUp);
}

TEST_F(LinkSupervisorTest, TellsWhichProgramIsMissing)
{
    ServedLink served;
    Plant other;
    LinkSupervisor missing("press1", served, "/nowhere/fxhost", other, environment);
    missing.onChanges = [](const QVector<Change>&) {};
    missing.onLinkChanged = [] {};
    missing.onWorkerLost = [](const QString&) {};
    missing.onLog = [this](const QString& line) { logged += line; };
    missing.start();
    ASSERT_TRUE(waitUntil([&] { return missing.hasEnded(); }));
    EXPECT_TRUE(other["press1"].reason.startsWith("cannot start /nowhere/fxhost: "));
    EXPECT_TRUE(logged.join(' ').contains("; restarting it in "));
}

TEST_F(LinkSupervisorTest, EndsAWorkerThatCannotBeUnderstood)
{
    struct Row
    {
        const char* script;
        const char* says;
    };
    const Row rows[] = {
        {"echo hello; hang", "the worker sent a wrong line: 'hello' is not a JSON object"},
        {"up; hang", "the worker sent a wrong line: no hello"},
        {"hello; hello; hang", "the worker sent a wrong line: a second hello"},
        {"hello; values '\"level\":1'; hang",
         "the worker sent a wrong line: 'level' is not one of its tags"},
        {"hello; yes; hang", "the worker sent too much: more than 2000 lines in a second"},
        {"hello; yes >&2; hang", "the worker sent too much: more than 2000 lines in a second"},
        {"tr '\\0' x </dev/zero; hang", "the worker sent too much: more than 8 MiB in a second"},
        {"kill -ABRT $$", "the worker was ended by signal 6"},
    };
    for (const auto& [script, says] : rows) {
        lost.clear();
        start(script);
        ASSERT_TRUE(waitUntil([this] { return link->hasEnded(); })) << script;
        EXPECT_EQ(lost, QStringList(says)) << script;
    }
}

TEST_F(LinkSupervisorTest, LeavesTheTagsOfASilentWorkerStale)
{
    start("hello; up; values '\"flow\":1,\"run\":true'; alive; serve");
    ASSERT_TRUE(waitUntil([this] { return link->report().line.exchanges == 4; }));
    told.clear();
    pass(LinkSupervisor::silentMs);
    EXPECT_EQ(told, QStringList());
    pass(1);
    EXPECT_EQ(told, QStringList({"flow 1 stale the worker does not answer",
                                 "run true stale the worker does not answer"}));
    EXPECT_FALSE(plant["press1"].isUp);
    EXPECT_EQ(logged, QStringList({"up", "down: the worker does not answer"}));
    told.clear();
    link->send(writeLine("7", "flow", 2));  // it speaks again
    ASSERT_TRUE(waitUntil([this] { return !told.isEmpty(); }));
    EXPECT_EQ(told, QStringList({"flow 2 good ", "run true good "}));  // asked for anew
    EXPECT_TRUE(plant["press1"].isUp);
    EXPECT_EQ(logged.last(), "up");
}

TEST_F(LinkSupervisorTest, EndsAWorkerThatHangs)
{
    start("hello; up; hang");
    ASSERT_TRUE(waitUntil([this] { return plant["press1"].isUp; }));
    pass(LinkSupervisor::hangsMs);
    EXPECT_EQ(lost, QStringList());
    pass(1);
    ASSERT_TRUE(waitUntil([this] { return link->hasEnded(); }));
    EXPECT_EQ(lost, QStringList("the worker was silent for 10 s"));
}

TEST_F(LinkSupervisorTest, EndsAWorkerThatNeverBegins)
{
    start("hang");
    pass(LinkSupervisor::startingMs + 1);
    ASSERT_TRUE(waitUntil([this] { return link->hasEnded(); }));
    EXPECT_EQ(lost, QStringList("the worker was silent for 30 s"));
}

TEST_F(LinkSupervisorTest, DoesNotBlameItsWorkerForItsOwnStandstill)
{
    start("hello; up; serve");
    ASSERT_TRUE(waitUntil([this] { return plant["press1"].isUp; }));
    now.steadyMs += 20000;  // without a tick
    link->tick();
    EXPECT_TRUE(plant["press1"].isUp);
}

TEST_F(LinkSupervisorTest, JudgesWhatItHeardAfterAStandstillFromThenOn)
{
    start("hello; up; serve");
    ASSERT_TRUE(waitUntil([this] { return plant["press1"].isUp; }));
    now.steadyMs += 20000;  // without a tick
    link->send(writeLine("7", "flow", 2));
    ASSERT_TRUE(waitUntil([this] { return written == QStringList("7"); }));
    link->tick();
    pass(LinkSupervisor::silentMs + 1);
    EXPECT_FALSE(plant["press1"].isUp);
}

TEST_F(LinkSupervisorTest, KillsItsWorkerWhenItGoes)
{
    start("hello; hang");
    ASSERT_TRUE(waitUntil([this] { return linkChanges == 1; }));
    const qint64 pid = link->report().workerPid;
    ASSERT_EQ(::kill(static_cast<pid_t>(pid), 0), 0);
    link.reset();
    EXPECT_NE(::kill(static_cast<pid_t>(pid), 0), 0);
}
