// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost serve, and the test as its supervisor: what it is told of values and of the link, and what
// becomes of its writes, while the PLC is there, gone or wrong.

#include "tests/tools/support/programs.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <functional>

#include <csignal>

#include <sys/stat.h>

using namespace tool_tests;

namespace {

constexpr int longestWaitMs = 30000;
constexpr int pipeBytes = 65536;
constexpr int eventBytes = 40000;  // of the longest

const char* const servedTags = "name,address,type,scale,unit,access,min,max,link\n"
                               "setpoint,D1,,0.1,°C,rw,10,80,\n"
                               "flow,D2,float,,,rw,,,\n"
                               "big,D4,long,,,rw,,,\n"
                               "pump,M100,,,,rw,,,\n"
                               "alarm,D6.3,,,,rw,,,\n"
                               "product,D10:4,text,,,rw,,,\n"
                               "mode,D20,,,,,,,\n"
                               "level,D21,,,,ro,,,\n"
                               "input,X0,,,,rw,,,\n";

QJsonObject objectOf(const char* json)
{
    return QJsonDocument::fromJson(json).object();
}

class Worker
{
public:
    using IsWanted = std::function<bool(const QJsonObject&)>;

    Worker(const QString& link, const QString& tags, const QStringList& more = {})
    {
        m_process.setProcessEnvironment(hostEnvironment());
        m_process.start(QStringLiteral(FXHOST_FILE),
                        QStringList{"serve", "--link", link, "--tags", tags} + more);
    }

    ~Worker()
    {
        m_process.kill();
        m_process.waitForFinished(longestWaitMs);
    }

    void send(const QByteArray& line) { m_process.write(line + '\n'); }
    void close() { m_process.closeWriteChannel(); }
    qint64 processId() const { return m_process.processId(); }

    // The next event that is wanted; an empty one if none comes.
    QJsonObject next(const IsWanted& isWanted)
    {
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < longestWaitMs) {
            while (m_process.canReadLine()) {
                const QJsonObject event = QJsonDocument::fromJson(m_process.readLine()).object();
                if (isWanted(event))
                    return event;
            }
            if (!m_process.waitForReadyRead(longestWaitMs) && !m_process.canReadLine())
                break;
        }
        return {};
    }

    QJsonObject event(const char* name)
    {
        return next([name](const QJsonObject& event) { return event["event"] == QString(name); });
    }

    std::string awaitState(const char* link)
    {
        return next([link](const QJsonObject& event) {
                   return event["event"] == QString("state") && event["link"] == QString(link);
               })["reason"]
            .toString("no such state")
            .toStdString();
    }

    QJsonValue awaitGood(const char* tag)
    {
        return next([tag](const QJsonObject& event) {
                   return event["good"].toObject().contains(QString(tag));
               })["good"]
            .toObject()[QString(tag)];
    }

    std::string awaitReason(const char* quality, const char* tag)
    {
        return next([quality, tag](const QJsonObject& event) {
                   return event[QString(quality)].toObject().contains(QString(tag));
               })[QString(quality)]
            .toObject()[QString(tag)]
            .toString()
            .toStdString();
    }

    QJsonObject answerTo(const QByteArray& tagAndValue)
    {
        const QString id = QString::number(++m_writes);
        send("{\"write\":{\"id\":\"" + id.toLatin1() + "\"," + tagAndValue + "}}");
        return next([&id](const QJsonObject& event) {
            return event["event"] == QString("written") && event["id"] == id;
        });
    }

    std::string outcomeOf(const QByteArray& tagAndValue)
    {
        return answerTo(tagAndValue)["outcome"].toString().toStdString();
    }

    int exitCode() { return m_process.waitForFinished(longestWaitMs) ? m_process.exitCode() : -1; }

private:
    ChildProcess m_process;
    int m_writes = 0;
};

class Serve : public testing::Test
{
protected:
    QTemporaryDir folder;
    const QString tags = newFile(folder, "tags.csv", servedTags);
};

}  // namespace

TEST_F(Serve, TellsItsTagsBeforeItAsksThePlc)
{
    Worker worker("pty:" + folder.filePath("nobody"), tags, {"set*", "mode"});
    const QJsonObject hello = worker.event("hello");
    EXPECT_EQ(hello["protocol"].toInt(), 1);
    EXPECT_EQ(hello["tags"].toArray()[0].toObject(),
              objectOf(R"({"name":"setpoint","address":"D1","kind":"real","unit":"°C",)"
                       R"("writable":true,"min":10,"max":80})"));
    EXPECT_EQ(hello["tags"].toArray()[1].toObject(),
              objectOf(R"({"name":"mode","address":"D20","kind":"integer","writable":false})"));
    EXPECT_EQ(hello["tags"].toArray().size(), 2);
    EXPECT_TRUE(holds(worker.awaitState("opening"), "No such file or directory"));
    EXPECT_EQ(worker.answerTo(R"("tag":"setpoint","value":20)")["outcome"], QString("refused"));
    worker.send(R"({"stop":{}})");
    EXPECT_EQ(worker.exitCode(), 0);
}

TEST_F(Serve, TellsWhatHasChanged)
{
    RunningSimulator plc(Road::Tcp, quickPlc);
    Worker worker(plc.link(), tags);
    EXPECT_EQ(worker.awaitState("up"), "no such state");  // it needs none
    EXPECT_EQ(worker.awaitGood("product"), QString());
    plc.command("poke D1 715");
    EXPECT_EQ(worker.awaitGood("setpoint"), 71.5);
    plc.command("poke M100 1");
    EXPECT_EQ(worker.awaitGood("pump"), true);
    plc.command("poke D6 8");
    EXPECT_EQ(worker.awaitGood("alarm"), true);
    plc.command("poke D4 -1 -1");
    EXPECT_EQ(worker.awaitGood("big"), -1);
    plc.command("poke D2 0 0x7F80");
    EXPECT_EQ(worker.awaitReason("bad", "flow"), "its registers do not hold a number");
    worker.send(R"({"refresh":{}})");
    EXPECT_EQ(worker.awaitState("up"), "no such state");
    EXPECT_EQ(worker.awaitGood("setpoint"), 71.5);
}

TEST_F(Serve, WritesAndReadsBack)
{
    RunningSimulator plc(Road::Tcp, quickPlc);
    Worker worker(plc.link(), tags);
    worker.awaitState("up");
    plc.command("poke D6 0x0101");
    for (const char* const write :
         {R"("tag":"setpoint","value":72.5)", R"("tag":"flow","value":2.5)",
          R"("tag":"big","value":-70000)", R"("tag":"pump","value":true)",
          R"("tag":"alarm","value":true)", R"("tag":"product","value":"a,b=1")"}) {
        const QJsonObject answer = worker.answerTo(write);
        EXPECT_EQ(answer["outcome"], QString("done")) << write;
        EXPECT_EQ(answer["new"], objectOf(('{' + QByteArray(write) + '}').constData())["value"]);
        EXPECT_EQ(answer["reason"], QString()) << write;
    }
    EXPECT_EQ(plc.command("peek D1 6"), "D1: 725 0 16416 -4464 -2 265\n");
    const QJsonObject again = worker.answerTo(R"("tag":"setpoint","value":12)");
    EXPECT_EQ(again["old"], 72.5);
    EXPECT_EQ(again["new"], 12);
}

// Nothing is sent.
TEST_F(Serve, RefusesWhatIsNotAllowed)
{
    RunningSimulator plc(Road::Tcp, quickPlc);
    Worker worker(plc.link(), tags);
    worker.awaitState("up");
    const struct
    {
        const char* write;
        const char* reason;
    } rows[] = {
        {R"("tag":"setpoint","value":80.1)", "above the maximum of 80"},
        {R"("tag":"setpoint","value":"20")", "takes a number"},
        {R"("tag":"setpoint","value":null)", "takes a number"},
        {R"("tag":"big","value":1.5)", "is not a whole number"},
        {R"("tag":"big","value":3e9)", "does not fit"},
        {R"("tag":"pump","value":2)", "takes true or false"},
        {R"("tag":"pump","value":"on")", "takes true or false"},
        {R"("tag":"product","value":"longer than 8")", "up to 8 characters"},
        {R"("tag":"product","value":7)", "takes a text"},
        {R"("tag":"mode","value":1)", "has no access=rw"},
        {R"("tag":"level","value":1)", "has no access=rw"},
        {R"("tag":"input","value":true)", "read-only"},
        {R"("tag":"nobody","value":1)", "unknown tag"},
    };
    for (const auto& [write, reason] : rows) {
        const QJsonObject answer = worker.answerTo(write);
        EXPECT_EQ(answer["outcome"], QString("refused")) << write;
        EXPECT_TRUE(holds(answer["reason"].toString().toStdString(), reason))
            << answer["reason"].toString().toStdString();
    }
    EXPECT_EQ(plc.command("peek D1 6"), "D1: 0 0 0 0 0 0\n");
}

TEST_F(Serve, SettlesWhatHappenedToAWrite)
{
    RunningSimulator plc(Road::Tcp, quickPlc + QStringList{"--mirror", "0x1008:0x1028:2"});
    Worker worker(plc.link(), newFile(folder, "one.csv",
                                      "name,address,access,period_ms\n"
                                      "tag,D1,rw,60000\nread,D20,rw,60000\n"));
    worker.awaitGood("read");
    // Read before, write three times, read after: the exchanges of one write.
    plc.command("faults nak@2");
    QJsonObject answer = worker.answerTo(R"("tag":"tag","value":5)");
    EXPECT_EQ(answer["outcome"], QString("done")) << "a NAK is tried again";
    plc.command("faults nak@2-4");
    answer = worker.answerTo(R"("tag":"tag","value":6)");
    EXPECT_EQ(answer["outcome"], QString("refused"));
    EXPECT_EQ(answer["new"], 5);
    plc.command("faults silence@2-4");
    answer = worker.answerTo(R"("tag":"tag","value":7)");
    EXPECT_EQ(answer["outcome"], QString("done"));
    EXPECT_EQ(answer["reason"], QString("read back, but not acknowledged: no reply"));
    plc.command("faults nak@1-");
    answer = worker.answerTo(R"("tag":"tag","value":8)");
    EXPECT_EQ(answer["outcome"], QString("refused"));
    plc.command("faults nak@3-5");
    answer = worker.answerTo(R"("tag":"tag","value":9)");
    EXPECT_EQ(answer["outcome"], QString("unknown"));
    EXPECT_EQ(answer["old"], 7);
    EXPECT_TRUE(answer["new"].isNull());
}

TEST_F(Serve, SaysWhichTagsThePlcRefuses)
{
    RunningSimulator plc(Road::Tcp, quickPlc + QStringList{"--holes", "D20"});
    Worker worker(plc.link(), tags);
    EXPECT_EQ(worker.awaitReason("bad", "mode"), "refused by the PLC (NAK)");
    worker.send(R"({"refresh":{}})");
    EXPECT_EQ(worker.awaitGood("level"), 0) << "its neighbour";
}

// The PLC is there again with other values; none of before counts in between.
TEST_F(Serve, TellsAtOnceThatTheLinkIsGoneAndWhenItIsBack)
{
    for (const Road road : {Road::Tcp, Road::PseudoTerminal}) {
        RunningSimulator plc(road, quickPlc);
        Worker worker(plc.link(), tags);
        EXPECT_EQ(worker.awaitGood("setpoint"), 0);
        plc.command("drop-link 500");
        EXPECT_EQ(worker.awaitState("down"), "the link was lost");
        EXPECT_EQ(worker.awaitReason("bad", "setpoint"), "the link was lost");
        const QJsonObject answer = worker.answerTo(R"("tag":"setpoint","value":20)");
        EXPECT_EQ(answer["reason"], QString("not sent: the link was lost"));
        plc.command("poke D1 300");
        worker.awaitState("up");
        EXPECT_EQ(worker.awaitGood("setpoint"), 30);
        EXPECT_EQ(worker.outcomeOf(R"("tag":"setpoint","value":20)"), "done");
    }
}

TEST_F(Serve, TellsThatThePlcIsOffAndWhenItIsOn)
{
    RunningSimulator plc(Road::Tcp, quickPlc);
    Worker worker(plc.link(), tags, {"--timeout", "50"});
    EXPECT_EQ(worker.awaitGood("setpoint"), 0);
    plc.command("faults silence=1");
    EXPECT_EQ(worker.awaitState("down"), "no reply");
    EXPECT_EQ(worker.awaitReason("bad", "setpoint"), "no reply");
    EXPECT_EQ(worker.outcomeOf(R"("tag":"setpoint","value":20)"), "refused");
    plc.command("faults none");
    worker.awaitState("up");
    EXPECT_EQ(worker.awaitGood("setpoint"), 0);
}

TEST_F(Serve, GoesOnAfterLinesThatAreNoOrders)
{
    RunningSimulator plc(Road::Tcp, quickPlc);
    Worker worker(plc.link(), tags);
    int line = 0;
    for (const QByteArray& wrong :
         {QByteArray("nonsense"), QByteArray("[]"), QByteArray("{}"), QByteArray("{\"write\":1}"),
          QByteArray("{\"read\":{}}"), QByteArray("{\"write\":{\"id\":1,\"tag\":\"big\"}}"),
          QByteArray("\0\xFF", 2), QByteArray(3000, '['), QByteArray(1 << 20, 'x')}) {
        worker.send(wrong);
        EXPECT_EQ(worker.event("mistake")["line"], ++line) << wrong.left(20).toStdString();
    }
    EXPECT_EQ(worker.outcomeOf(R"("tag":"big","value":1)"), "done");
}

// The writes before the end are done: a shell may send them to its standard input.
TEST_F(Serve, EndsWithItsSupervisor)
{
    RunningSimulator plc(Road::Tcp, quickPlc);
    {
        Worker worker(plc.link(), tags);
        worker.awaitState("up");
        worker.send(R"({"write":{"id":"last","tag":"big","value":3}})");
        worker.close();
        EXPECT_EQ(worker.event("written")["outcome"], QString("done"));
        EXPECT_EQ(worker.exitCode(), 0);
    }
    plc.command("faults silence=1");
    Worker worker(plc.link(), tags, {"--timeout", "300"});
    worker.awaitState("down");
    worker.close();
    EXPECT_EQ(worker.exitCode(), 0) << "in the middle of a time-out";
    Worker terminated(plc.link(), tags);
    terminated.event("hello");
    kill(static_cast<pid_t>(terminated.processId()), SIGTERM);
    EXPECT_EQ(terminated.exitCode(), 0);
}

// The pipe is full by then: no more than that and a line is kept.
TEST_F(Serve, TellsTheNewestToASupervisorThatDidNotRead)
{
    RunningSimulator plc(Road::Tcp, {"--baud", "0", "--program", "none"});
    QByteArray rows = "name,address,period_ms\n";
    for (int number = 0; number < 200; ++number)
        rows += "a.rather.long.name.of.a.tag." + QByteArray::number(number) + ",D" +
                QByteArray::number(number) + ",20\n";
    QProcess process;  // with nobody who empties the pipe
    process.setProcessEnvironment(hostEnvironment());
    const QString fifo = folder.filePath("pipe");
    ASSERT_EQ(mkfifo(qPrintable(fifo), 0600), 0);
    process.start("/bin/bash",
                  {"-c", "exec 3<>\"$1\"; shift; exec \"$@\" >&3", "sh", fifo, FXHOST_FILE, "serve",
                   "--link", plc.link(), "--tags", newFile(folder, "many.csv", rows)});
    ASSERT_TRUE(process.waitForStarted());
    for (int round = 1; round <= 60; ++round) {
        for (int number = 0; number < 200; number += 50)
            plc.command(QStringLiteral("poke D%1%2")
                            .arg(number)
                            .arg(QStringLiteral(" %1").arg(round).repeated(50)));
    }
    QFile pipe(fifo);
    ASSERT_TRUE(pipe.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QByteArray told;
    while (!told.contains("tag.199\":60"))
        told += pipe.read(4096);
    EXPECT_LT(told.size(), pipeBytes + 2 * eventBytes);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(longestWaitMs));
}

TEST_F(Serve, DoesNotReadTheTagsOfAnotherPlc)
{
    const QString file =
        newFile(folder, "two.csv", "name,address,link\na,D0,press1\nb,D1,press2\n");
    const Ended unsaid = fxhost({"serve", "--link", "sim:", "--tags", file});
    EXPECT_EQ(unsaid.code, 2);
    EXPECT_TRUE(holds(unsaid.err, "a is a tag of the PLC press1")) << unsaid.err;
    const Ended said = fxhost({"serve", "--link", "sim:", "--tags", file, "--tags-of", "press2"});
    EXPECT_EQ(said.code, 0);
    EXPECT_FALSE(holds(said.out, R"("name":"a")")) << said.out;
    EXPECT_TRUE(holds(said.out, R"("name":"b")")) << said.out;
    EXPECT_EQ(fxhost({"serve", "--link", "sim:"}).err,
              "fxhost: serve needs a tag file: use --tags FILE\n");
}

TEST_F(Serve, DoesNotBeginWithATextThatNoReplyBringsWhole)
{
    const QString file = newFile(folder, "text.csv", "name,address,type\nbatch,D100:20,text\n");
    const Ended ended = fxhost({"serve", "--link", "sim:?words=16", "--tags", file});
    EXPECT_EQ(ended.out, "");
    EXPECT_TRUE(holds(ended.err, "text.csv, line 2, column address: batch: D100:20 is one value"))
        << ended.err;
}
