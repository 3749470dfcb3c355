// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Which writes are refused and why, how each is answered, and that each stands in the audit file.

#include "tools/fxgate/writes/writes.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

#include <sys/syscall.h>
#include <unistd.h>

using namespace fxgate;

namespace {

int syncs = 0;

}  // namespace

// Instead of the system's: nothing else shows whether a file was synchronised.
extern "C" int fdatasync(int fildes)
{
    ++syncs;
    return static_cast<int>(::syscall(SYS_fdatasync, fildes));
}

namespace {

constexpr qint64 noonMs = 1795348800000;  // 2026-11-22T12:00:00Z

ServedTag tagOf(const char* name, ValueKind kind, bool isWritable)
{
    ServedTag tag;
    tag.name = name;
    tag.kind = kind;
    tag.isWritable = isWritable;
    return tag;
}

class WritesTest : public testing::Test
{
protected:
    WritesTest()
    {
        LinkView view;
        view.isUp = true;
        view.tags = {tagOf("flow", ValueKind::Real, true), tagOf("run", ValueKind::Bit, true),
                     tagOf("parts", ValueKind::Integer, true), tagOf("name", ValueKind::Text, true),
                     tagOf("level", ValueKind::Real, false)};
        view.tags[0].min = 10;
        view.tags[0].max = 80;
        plant["press1"] = view;
        plant["press2"] = view;
        settings.isAllowed = true;
        links["press1"].isWritable = true;
        links["press2"].isWritable = true;
        writes.configure(settings, links);
        audit.open(folder.filePath("audit.jsonl"));
    }

    Moment now() const { return {noonMs + afterMs, afterMs}; }

    static WriteRequest to(const char* tag, const QJsonValue& value, const char* link = "press1")
    {
        WriteRequest request;
        request.link = link;
        request.tag = tag;
        request.value = value;
        return request;
    }

    void ask(const WriteRequest& request)
    {
        writes.request(
            request,
            [this, tag = request.tag](const WriteResult& result) {
                const char* const outcomes[] = {"done", "refused", "failed", "unknown"};
                answers += QString("%1 %2 %3\n")
                               .arg(tag, outcomes[static_cast<int>(result.outcome)], result.reason);
                EXPECT_EQ(result.timeMs, now().utcMs);
            },
            now());
    }

    void answer(const char* link, const char* id, WriteResult::Outcome outcome)
    {
        writes.written(link, {id, {outcome, {}, {}, {}, 0}}, now());
    }

    // What was answered since the last look.
    std::string answered()
    {
        const QString last = answers;
        answers.clear();
        return last.toStdString();
    }

    std::string refusal(const WriteRequest& request)
    {
        ask(request);
        EXPECT_TRUE(sent.isEmpty());
        return answered();
    }

    std::string audited()
    {
        QFile file(folder.filePath("audit.jsonl"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().toStdString();
    }

    int auditLines() { return QByteArray::fromStdString(audited()).count('\n'); }

    const QTemporaryDir folder;
    Plant plant;
    AuditFile audit;
    WriteSettings settings;
    QMap<QString, ServedLink> links;
    QStringList sent;
    QString answers;
    qint64 afterMs = 1000;  // noon, and since the machine started
    int syncsBeforeSent = 0;
    Writes writes{plant, audit, [this](const QString& link, const QByteArray& line) {
                      sent += link + ' ' + line.trimmed();
                      syncsBeforeSent = syncs;
                  }};
};

}  // namespace

TEST_F(WritesTest, AreOnTheDiskBeforeTheyAreSent)
{
    const int before = syncs;
    ask(to("flow", 20));
    EXPECT_EQ(syncsBeforeSent, before + 1);
}

TEST_F(WritesTest, AreSentAndAnsweredWithWhatThePlcMadeOfThem)
{
    WriteRequest request = to("flow", 72.5);
    request.id = "a1";
    request.who = "panel";
    request.sentMs = noonMs;
    ask(request);
    EXPECT_EQ(sent, QStringList(R"(press1 {"write":{"id":"1","tag":"flow","value":72.5}})"));
    EXPECT_EQ(answered(), "");
    afterMs += 500;
    writes.written("press1", {"1", {WriteResult::Outcome::Done, 70, 72.5, {}, 0}}, now());
    EXPECT_EQ(answered(), "flow done \n");
    EXPECT_EQ(audited(),
              R"({"event":"sent","id":"a1","link":"press1","sent":"2026-11-22T12:00:00.000Z",)"
              R"("t":"2026-11-22T12:00:01.000Z","tag":"flow","value":72.5,"who":"panel"})"
              "\n"
              R"({"event":"done","id":"a1","link":"press1","new":72.5,"old":70,)"
              R"("sent":"2026-11-22T12:00:00.000Z","t":"2026-11-22T12:00:01.500Z","tag":"flow",)"
              R"("value":72.5,"who":"panel"})"
              "\n");
}

TEST_F(WritesTest, AreRefusedByRule)
{
    struct Row
    {
        const char* tag;
        QJsonValue value;
        const char* says;
    };
    const Row rows[] = {
        {"flaw", 1, "there is no such tag"},
        {"level", 1, "the tag is read-only: its access is not rw"},
        {"flow", 9.9, "below the minimum of 10"},
        {"flow", 80.1, "above the maximum of 80"},
        {"flow", "50", "the value must be a number"},
        {"flow", true, "the value must be a number"},
        {"flow", QJsonValue(), "the value must be a number"},
        {"parts", 1.5, "the value must be a whole number"},
        {"run", 1, "the value of a bit must be true or false"},
        {"name", 1, "the value must be a text"},
    };
    for (const auto& [tag, value, says] : rows)
        EXPECT_EQ(refusal(to(tag, value)), QString("%1 refused %2\n").arg(tag, says).toStdString());
    EXPECT_EQ(auditLines(), static_cast<int>(std::size(rows)));
    EXPECT_EQ(refusal(to("flow", 50, "press3")), "flow refused there is no such tag\n");
}

TEST_F(WritesTest, MayHaveTheValuesOfTheLimits)
{
    ask(to("flow", 10));
    answer("press1", "1", WriteResult::Outcome::Done);
    ask(to("flow", 80));
    answer("press1", "2", WriteResult::Outcome::Done);
    EXPECT_EQ(answered(), "flow done \nflow done \n");
}

TEST_F(WritesTest, NeedBothTheGatewaysAndTheLinksPermission)
{
    links["press1"].isWritable = false;
    writes.configure(settings, links);
    EXPECT_EQ(refusal(to("flow", 50)),
              "flow refused writes to this link are not allowed: it lacks writes = true\n");
    links["press1"].isWritable = true;
    settings.isAllowed = false;
    writes.configure(settings, links);
    EXPECT_EQ(refusal(to("flow", 50)),
              "flow refused writes are not allowed: [writes] lacks allowed = true\n");
}

TEST_F(WritesTest, ThatWereRetainedOrAreTooOldAreRefused)
{
    WriteRequest request = to("flow", 50);
    request.isRetained = true;
    EXPECT_EQ(refusal(request),
              "flow refused the request is retained; send it without the retain flag\n");
    request.isRetained = false;
    request.sentMs = now().utcMs - settings.oldestMs - 1;
    EXPECT_EQ(refusal(request), "flow refused sent 10.001 s ago; the limit is 10 s\n");
    request.sentMs = now().utcMs + settings.oldestMs + 1;
    EXPECT_EQ(refusal(request), "flow refused sent 10.001 s in the future; check the clocks\n");
    request.sentMs = now().utcMs - settings.oldestMs;
    ask(request);
    EXPECT_EQ(sent.size(), 1);
}

TEST_F(WritesTest, ToALinkThatIsDownAreRefused)
{
    plant["press1"].isUp = false;
    plant["press1"].reason = "no reply";
    EXPECT_EQ(refusal(to("flow", 50)), "flow refused the link is down: no reply\n");
}

TEST_F(WritesTest, AreRefusedOverTheRateOfTheirLink)
{
    settings.perMinute = 2;
    writes.configure(settings, links);
    ask(to("flow", 50));
    answer("press1", "1", WriteResult::Outcome::Done);
    ask(to("flow", 51));
    ask(to("flow", 52));
    EXPECT_EQ(answered(), "flow done \nflow refused more than 2 writes a minute\n");
    ask(to("flow", 50, "press2"));
    EXPECT_EQ(sent.size(), 3);  // another link has its own
    answer("press1", "2", WriteResult::Outcome::Done);
    answered();
    afterMs += 60000;
    ask(to("flow", 53));
    EXPECT_EQ(answered(), "");
    EXPECT_EQ(sent.size(), 4);
}

TEST_F(WritesTest, OfALinkAreSentOneAtATime)
{
    ask(to("flow", 50));
    ask(to("run", true));
    ask(to("flow", 51, "press2"));
    EXPECT_EQ(sent, QStringList({R"(press1 {"write":{"id":"1","tag":"flow","value":50}})",
                                 R"(press2 {"write":{"id":"2","tag":"flow","value":51}})"}));
    answer("press1", "1", WriteResult::Outcome::Failed);
    EXPECT_EQ(answered(), "flow failed \n");
    EXPECT_EQ(sent.last(), R"(press1 {"write":{"id":"3","tag":"run","value":true}})");
}

TEST_F(WritesTest, WaitInAQueueThatIsShort)
{
    for (size_t index = 0; index < Writes::mostWaiting; ++index)
        ask(to("flow", 50));
    EXPECT_EQ(answered(), "");
    ask(to("flow", 50));
    EXPECT_EQ(answered(), "flow refused too many writes are waiting\n");
}

TEST_F(WritesTest, ThatWaitedTooLongAreRefusedWhenTheirTurnComes)
{
    ask(to("flow", 50));
    ask(to("run", true));
    afterMs += settings.oldestMs + 1;
    answer("press1", "1", WriteResult::Outcome::Done);
    EXPECT_EQ(answered(), "flow done \nrun refused waited longer than 10 s\n");
    EXPECT_EQ(sent.size(), 1);
}

TEST_F(WritesTest, ThatComeAgainGetTheOutcomeOfTheFirst)
{
    WriteRequest request = to("flow", 50);
    request.id = "17";
    request.sentMs = noonMs;
    ask(request);
    ask(request);
    EXPECT_EQ(answered(), "");
    answer("press1", "1", WriteResult::Outcome::Done);
    EXPECT_EQ(answered(), "flow done \nflow done \n");
    ask(request);
    EXPECT_EQ(answered(), "flow done \n");
    EXPECT_EQ(sent.size(), 1);
    EXPECT_EQ(writes.counts().at(WriteResult::Outcome::Done), 1);
    writes.tick(now());
    ask(request);
    EXPECT_EQ(sent.size(), 1);
    answered();
}

TEST_F(WritesTest, OfTheSameIdAreOthersIfAnythingElseDiffers)
{
    WriteRequest request = to("flow", 50);
    ask(request);
    ask(request);  // without an id
    request.id = "17";
    ask(request);
    ask(request);  // without a time
    request.sentMs = noonMs;
    ask(request);
    for (const char* link : {"press1", "press2"}) {
        WriteRequest other = to("flow", 51, link);
        other.id = "17";
        ask(other);
        other.sentMs = noonMs;
        ask(other);
        other.sentMs = noonMs + 1;
        ask(other);
        other.tag = "parts";
        ask(other);
    }
    for (int number = 1; number <= 13; ++number)
        for (const char* link : {"press1", "press2"})
            answer(link, qPrintable(QString::number(number)), WriteResult::Outcome::Done);
    EXPECT_EQ(sent.size(), 13);
    answered();
}

TEST_F(WritesTest, AreForgottenWhenTheyAreTooOldToComeAgain)
{
    WriteRequest request = to("flow", 50);
    request.id = "17";
    request.sentMs = noonMs;
    ask(request);
    answer("press1", "1", WriteResult::Outcome::Done);
    afterMs += settings.oldestMs + 1;
    writes.tick(now());
    answered();
    ask(request);
    EXPECT_EQ(answered().rfind("flow refused", 0), 0u) << "for its age, not answered as before";
    EXPECT_EQ(sent.size(), 1);
}

TEST_F(WritesTest, ThatWereRefusedMayBeAskedForAgain)
{
    WriteRequest request = to("flow", 50);
    request.id = "17";
    request.sentMs = noonMs;
    ask(to("run", true));
    ask(request);
    writes.workerLost("press1", "the worker ended", now());
    EXPECT_EQ(answered(), "run unknown the worker ended\nflow refused the worker ended\n");
    ask(request);
    EXPECT_EQ(sent.size(), 2);
}

TEST_F(WritesTest, WithoutAnAnswerInTimeAreUnknown)
{
    ask(to("flow", 50));
    afterMs += Writes::answerTimeoutMs;
    writes.tick(now());
    EXPECT_EQ(answered(), "");
    ++afterMs;
    writes.tick(now());
    EXPECT_EQ(answered(), "flow unknown no answer within 30 s\n");
    ask(to("run", true));
    answer("press1", "1", WriteResult::Outcome::Done);  // too late, and not of this one
    EXPECT_EQ(answered(), "");
}

TEST_F(WritesTest, AreUnknownWhenTheirWorkerIsLost)
{
    ask(to("flow", 50));
    ask(to("run", true));
    writes.workerLost("press1", "the worker ended", now());
    EXPECT_EQ(answered(), "flow unknown the worker ended\nrun refused the worker ended\n");
}

TEST_F(WritesTest, AreStillAnsweredWhileTheGatewayStops)
{
    ask(to("flow", 50));
    ask(to("run", true));
    writes.stop(now());
    EXPECT_EQ(answered(), "run refused the gateway is stopping\n");
    ask(to("flow", 51));
    EXPECT_EQ(answered(), "flow refused the gateway is stopping\n");
    answer("press1", "1", WriteResult::Outcome::Done);
    EXPECT_EQ(answered(), "flow done \n");
}

TEST_F(WritesTest, AreNotSentWhereTheyCannotBeAudited)
{
    audit.open("/dev/full");
    EXPECT_EQ(refusal(to("flow", 50)),
              "flow refused the audit file cannot be written: No space left on device\n");
    audit.open("/nowhere/audit.jsonl");
    EXPECT_EQ(refusal(to("flow", 50)),
              "flow refused the audit file cannot be written: No such file or directory\n");
}

TEST_F(WritesTest, AreCountedWhereTooManyAreRefused)
{
    const int more = 5;
    for (int index = 0; index < Writes::mostRefusalsPerMinute + more; ++index)
        ask(to("flaw", 1));
    EXPECT_EQ(auditLines(), Writes::mostRefusalsPerMinute);
    EXPECT_EQ(QString::fromStdString(answered()).count('\n'), Writes::mostRefusalsPerMinute + more);
    afterMs += 60000;
    writes.tick(now());
    EXPECT_TRUE(QString::fromStdString(audited()).endsWith(
        "{\"event\":\"refused\",\"reason\":\"too many to list each\","
        "\"t\":\"2026-11-22T12:01:01.000Z\",\"times\":5}\n"));
}

TEST(AuditFile, GoesOnWhereItEndedAndIsBegunAnewWhenMoved)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("audit.jsonl");
    for (int run = 0; run < 2; ++run) {
        AuditFile audit;
        audit.open(path);
        audit.append({{"run", run}});
    }
    AuditFile audit;
    audit.open(path);
    const auto content = [](const QString& name) {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        return file.readAll();
    };
    EXPECT_EQ(content(path), "{\"run\":0}\n{\"run\":1}\n");
    QFile::rename(path, path + ".1");
    audit.append({{"run", 2}});
    EXPECT_EQ(content(path), "{\"run\":2}\n");
    EXPECT_EQ(content(path + ".1"), "{\"run\":0}\n{\"run\":1}\n");
    EXPECT_EQ(audit.problem(), "");
}
