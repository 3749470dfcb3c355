// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the gateway shows of itself: the table, the metrics, and who may ask for them.

#include "tests/tools/fxgate/gate_support.h"
#include "tests/tools/support/child_process.h"
#include "tests/tools/support/failure_of.h"
#include "tools/fxgate/status/control_socket.h"
#include "tools/fxgate/status/notify.h"
#include "tools/fxgate/status/status.h"

#include <QFile>
#include <QJsonArray>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace fxgate;
using namespace gate_tests;

namespace {

constexpr qint64 statusNoonMs = 1795348800000;  // 2026-11-22T12:00:00Z

QJsonObject sampleStatus()
{
    StatusSource source;
    source.gateway = "cabinet1";
    source.startedMs = statusNoonMs - 3 * 3600000 - 5 * 60000;
    source.nowMs = statusNoonMs;
    StatusSource::Link up;
    up.name = "press1";
    up.view.isUp = true;
    up.view.sinceMs = statusNoonMs - 61000;
    up.view.tags = {ServedTag(), ServedTag()};
    up.view.samples["flow"].quality = Quality::Good;
    up.report.line.cycleMs = 48.25;
    up.report.line.exchanges = 1000;
    up.report.line.good = 997;
    up.report.line.late = QStringList("flow");
    up.report.line.errors = {{"silence", 2}, {"wrong-sum", 1}};
    StatusSource::Link down;
    down.name = "press2";
    down.view.reason = "the port does not exist";
    down.view.sinceMs = statusNoonMs;
    down.report.restarts = 2;
    down.report.lastError = "the port does not exist";
    source.links = {up, down};
    StatusSource::Form plain;
    plain.name = "plain";
    plain.status.isConnected = true;
    plain.status.sinceMs = statusNoonMs - 2 * 86400000;
    plain.status.waiting = 3;
    plain.status.dropped = 4;
    plain.status.sent = 5000000000;
    plain.status.received = 6;
    plain.status.lastError = "the broker went away";
    source.forms = {plain};
    source.writes = {{WriteResult::Outcome::Done, 7}};
    source.auditProblem = "disk full";
    return statusObject(source);
}

// Why this is no line of the text format; empty if it is one.
std::string metricMistake(const QString& line, QMap<QString, QString>& types, QSet<QString>& seen)
{
    static const QRegularExpression help("^# HELP ([a-z_]+) [^\\\\]+\\.$");
    static const QRegularExpression type("^# TYPE ([a-z_]+) (gauge|counter)$");
    static const QRegularExpression sample(
        R"re(^([a-z_]+)(\{[a-z]+="(?:[^"\\]|\\["\\n])*"(?:,[a-z]+="(?:[^"\\]|\\["\\n])*")*\}) )re"
        R"re((-?[0-9]+(?:\.[0-9]+)?(?:e[+-][0-9]+)?)$)re");
    if (line.startsWith("# HELP "))
        return help.match(line).hasMatch() ? "" : "HELP";
    if (const QRegularExpressionMatch match = type.match(line); match.hasMatch()) {
        if (types.contains(match.captured(1)))
            return "a second TYPE";
        types.insert(match.captured(1), match.captured(2));
        return "";
    }
    const QRegularExpressionMatch match = sample.match(line);
    if (!match.hasMatch())
        return "neither HELP, TYPE nor a sample";
    const QString name = match.captured(1);
    if (!types.contains(name))
        return "before its TYPE";
    if ((types[name] == "counter") != name.endsWith("_total"))
        return "only counters end in _total";
    if (seen.contains(name + match.captured(2)))
        return "twice";
    seen.insert(name + match.captured(2));
    return "";
}

}  // namespace

TEST(Status, IsATableForPeople)
{
    EXPECT_EQ(
        statusLines(sampleStatus()).join('\n').toStdString(),
        "Gateway cabinet1, running for 3 h 5 min; writes: 7 done, 0 refused, 0 failed, 0 unknown\n"
        "The audit file cannot be written: disk full\n"
        "  LINK    STATE  FOR          CYCLE    GOOD  TAGS  LATE  LAST ERROR\n"
        "  press1  up     1 min 1 s  48.3 ms  99.7 %   1/2     1\n"
        "  press2  down   0 s         0.0 ms       -   0/0     0  the port does not exist\n"
        "  FORM   STATE      FOR      QUEUE  DROPPED        SENT  RECEIVED  LAST ERROR\n"
        "  plain  connected  2 d 0 h      3        4  5000000000         6  the broker went away");
}

TEST(Status, IsJsonForPrograms)
{
    const QJsonObject status = sampleStatus();
    EXPECT_EQ(status["gateway"], QJsonValue("cabinet1"));
    EXPECT_EQ(status["since"], QJsonValue("2026-11-22T08:55:00.000Z"));
    const QJsonObject link = status["links"].toArray()[0].toObject();
    EXPECT_EQ(link["since"], QJsonValue("2026-11-22T11:58:59.000Z"));
    EXPECT_EQ(link["goodExchanges"], QJsonValue(997));
    EXPECT_EQ(link["errors"].toObject()["silence"], QJsonValue(2));
    EXPECT_EQ(link["late"].toArray(), QJsonArray({"flow"}));
    EXPECT_EQ(status["forms"].toArray()[0].toObject()["sent"], QJsonValue(5e9));
    EXPECT_EQ(status["writes"].toObject(),
              (QJsonObject{{"done", 7}, {"failed", 0}, {"refused", 0}, {"unknown", 0}}));
}

TEST(Metrics, AreInPrometheusTextFormat)
{
    const QString text = QString::fromUtf8(metricsText(sampleStatus()));
    ASSERT_TRUE(text.endsWith('\n'));
    QMap<QString, QString> types;
    QSet<QString> seen;
    for (const QString& line : text.chopped(1).split('\n'))
        EXPECT_EQ(metricMistake(line, types, seen), "") << line.toStdString();
    for (const char* const sample : {
             R"(fxgate_link_up{gateway="cabinet1",link="press1"} 1)",
             R"(fxgate_link_up{gateway="cabinet1",link="press2"} 0)",
             R"(fxgate_link_cycle_seconds{gateway="cabinet1",link="press1"} 0.04825)",
             R"(fxgate_link_late_tags{gateway="cabinet1",link="press1"} 1)",
             R"(fxgate_link_errors_total{gateway="cabinet1",link="press1",error="silence"} 2)",
             R"(fxgate_bus_sent_messages_total{gateway="cabinet1",form="plain"} 5000000000)",
             R"(fxgate_bus_dropped_changes_total{gateway="cabinet1",form="plain"} 4)",
             R"(fxgate_writes_total{gateway="cabinet1",outcome="done"} 7)",
         })
        EXPECT_TRUE(text.contains(QString(sample) + '\n')) << sample;
}

TEST(Metrics, EscapeWhatALabelCannotHold)
{
    QJsonObject status = sampleStatus();
    status["gateway"] = "a\"b\\c\nd";
    EXPECT_TRUE(metricsText(status).contains(R"({gateway="a\"b\\c\nd",)"));
}

// Where Debian's package is installed; it is large, so no other test needs it.
TEST(Metrics, AreAcceptedByPromtool)
{
    ChildProcess promtool;
    promtool.start("promtool", {"check", "metrics"});
    if (!promtool.waitForStarted())
        GTEST_SKIP() << "promtool is not installed";
    promtool.write(metricsText(sampleStatus()));
    promtool.closeWriteChannel();
    promtool.waitForFinished(-1);
    EXPECT_EQ(promtool.exitCode(), 0) << promtool.readAllStandardError().toStdString();
}

namespace {

class ControlSocketTest : public testing::Test
{
protected:
    // ask() would wait for this very thread.
    QByteArray replyTo(const QByteArray& request)
    {
        QLocalSocket client;
        client.connectToServer(path);
        client.write(request);
        waitUntil([&client] { return client.state() == QLocalSocket::UnconnectedState; });
        return client.readAll();
    }

    const Folder folder;
    const QString path = folder.path("run/control");
    QByteArrayList requests;
    ControlSocket socket{path, [this](const QByteArray& request) {
                             requests += request;
                             return QJsonObject{{"asked", QString::fromUtf8(request)}};
                         }};
};

}  // namespace

TEST_F(ControlSocketTest, RepliesInJson)
{
    EXPECT_EQ(replyTo("status\n"), "{\"asked\":\"status\"}\n");
}

TEST_F(ControlSocketTest, IsForItsUserOnly)
{
    struct stat found = {};
    ASSERT_EQ(::stat(path.toLocal8Bit().constData(), &found), 0);
    EXPECT_EQ(found.st_mode & 0077, 0U);
}

TEST_F(ControlSocketTest, EndsAConnectionThatFloods)
{
    EXPECT_EQ(replyTo(QByteArray(1000, 'x')), "");
    EXPECT_EQ(requests, QByteArrayList());
    EXPECT_EQ(replyTo("status\n"), "{\"asked\":\"status\"}\n");
}

TEST_F(ControlSocketTest, IsNotTakenFromAnotherGateway)
{
    const QString says = path + ": another gateway listens here; give this one another --socket";
    EXPECT_EQ(tool_tests::failureOf(
                  fxtools::ExitCode::File,
                  [this] { ControlSocket(path, [](const QByteArray&) { return QJsonObject(); }); }),
              says.toStdString());
}

TEST(ControlSocket, ReplacesWhatAKilledGatewayLeft)
{
    const Folder folder;
    const QString path = folder.path("control");
    ChildProcess gone;
    gone.start("python3", {"-c",
                           "import socket,sys\n"
                           "socket.socket(socket.AF_UNIX).bind(sys.argv[1])",
                           path});
    gone.waitForFinished(-1);
    ASSERT_TRUE(QFile::exists(path));
    EXPECT_EQ(tool_tests::failureOf(fxtools::ExitCode::File, [&] { ask(path, "status"); }),
              "no gateway answers at " + path.toStdString() +
                  "; is it running, with this --socket?");
    const ControlSocket socket(path, [](const QByteArray&) { return QJsonObject(); });
}

TEST(Notify, TellsSystemd)
{
    const Folder folder;
    const QByteArray path = folder.path("notify").toLocal8Bit();
    const int receiver = ::socket(AF_UNIX, SOCK_DGRAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
    ASSERT_EQ(::bind(receiver, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    const auto received = [receiver] {
        char text[200] = {};
        return ::recv(receiver, text, sizeof text - 1, MSG_DONTWAIT) > 0 ? QByteArray(text) : "";
    };
    notifyReady();
    EXPECT_EQ(received(), "");  // nobody is there to be told
    qputenv("NOTIFY_SOCKET", path);
    notifyReady();
    EXPECT_EQ(received(), "READY=1");
    notifyReloading();
    EXPECT_TRUE(
        QRegularExpression("^RELOADING=1\nMONOTONIC_USEC=[0-9]+$").match(received()).hasMatch());
    notifyAlive();
    EXPECT_EQ(received(), "WATCHDOG=1");
    notifyStopping();
    EXPECT_EQ(received(), "STOPPING=1");
    EXPECT_EQ(watchdogMs(), 0);
    qputenv("WATCHDOG_USEC", "30000000");
    EXPECT_EQ(watchdogMs(), 10000);
    qunsetenv("WATCHDOG_USEC");
    qunsetenv("NOTIFY_SOCKET");
    ::close(receiver);
}
