// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxgate as people and systemd run it, with workers that obey their tag files and a broker that is
// not there.

#include "tests/tools/fxgate/gate_support.h"
#include "tests/tools/support/child_process.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace gate_tests;

namespace {

struct Ended
{
    int code = -1;
    std::string out;
    std::string err;
};

Ended endOf(QProcess& process)
{
    process.waitForFinished(60000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

Ended runFxgate(const QStringList& arguments)
{
    ChildProcess process;
    process.start(FXGATE_FILE, arguments);
    return endOf(process);
}

// Where a program reports to whoever started it.
class NotifySocket
{
public:
    explicit NotifySocket(const QString& path) : m_socket(::socket(AF_UNIX, SOCK_DGRAM, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, path.toLocal8Bit().constData(), sizeof address.sun_path);
        ::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        const timeval patience{60, 0};
        ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }
    ~NotifySocket() { ::close(m_socket); }
    NotifySocket(const NotifySocket&) = delete;
    NotifySocket& operator=(const NotifySocket&) = delete;

    QByteArray next() const
    {
        char text[200] = {};
        return ::recv(m_socket, text, sizeof text - 1, 0) > 0 ? QByteArray(text) : "nothing";
    }

private:
    int m_socket;
};

class FxgateTest : public testing::Test
{
protected:
    FxgateTest()
    {
        folder.write("press1.csv", "hello; up; values '\"flow\":1,\"run\":true'; alive; serve");
        folder.write("press2.csv", "hello; up; alive; hang");
        folder.write("secret", "hidden-password");
        toml = "[gateway]\nname = \"cabinet1\"\nstore = \"store.db\"\naudit = \"audit.jsonl\"\n"
               "metrics = \"fxgate.prom\"\nfxhost = \"" +
               fakeWorker.toUtf8() +
               "\"\n[broker]\nurl = \"mqtt://localhost:1\"\nuser = \"me\"\n"
               "password-file = \"secret\"\n[plain]\n[sparkplug]\ngroup = \"plant\"\n"
               "[link.press1]\nlink = \"sim:\"\ntags = \"press1.csv\"\n"
               "[link.press2]\nlink = \"sim:\"\ntags = \"press2.csv\"\n";
        folder.write("fxgate.toml", toml);
    }

    ~FxgateTest() override
    {
        if (gate.state() != QProcess::NotRunning)
            stop(SIGTERM);
    }

    void start()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("NOTIFY_SOCKET", folder.path("notify"));
        environment.insert("WATCHDOG_USEC", "3000000");
        gate.setProcessEnvironment(environment);
        gate.start(FXGATE_FILE, {"run", "--config", folder.path("fxgate.toml"), "--socket",
                                 folder.path("control")});
        ASSERT_EQ(told(), "READY=1");
    }

    // The next that is not from the watchdog.
    QByteArray told()
    {
        QByteArray text = notify.next();
        while (text == "WATCHDOG=1")
            text = notify.next();
        return text;
    }

    Ended ask(const QStringList& arguments)
    {
        return runFxgate(arguments + QStringList{"--socket", folder.path("control")});
    }

    QJsonObject link(int index)
    {
        const std::string text = ask({"status", "--json"}).out;
        return QJsonDocument::fromJson(QByteArray::fromStdString(text))
            .object()["links"]
            .toArray()[index]
            .toObject();
    }

    Ended stop(int signal)
    {
        ::kill(static_cast<pid_t>(gate.processId()), signal);
        return endOf(gate);
    }

    const Folder folder;
    const NotifySocket notify{folder.path("notify")};
    QByteArray toml;
    ChildProcess gate;
};

}  // namespace

TEST_F(FxgateTest, ServesUntilItIsEndedAndEndsAllItsWorkers)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        start();
        ASSERT_TRUE(waitUntil([this] { return link(1)["up"].toBool(); }));
        const auto deaf = static_cast<pid_t>(link(1)["worker"].toInt());
        ASSERT_EQ(::kill(deaf, 0), 0);
        EXPECT_TRUE(QFile::exists(folder.path("fxgate.prom")));
        const Ended ended = stop(signal);
        EXPECT_EQ(told(), "STOPPING=1");
        EXPECT_EQ(ended.code, 0);
        EXPECT_NE(::kill(deaf, 0), 0);
        EXPECT_FALSE(QFile::exists(folder.path("fxgate.prom")));
        EXPECT_NE(ended.err.find("fxgate: started: gateway cabinet1, 2 links\n"),
                  std::string::npos);
        EXPECT_EQ(ended.err.substr(ended.err.size() - 16), "fxgate: stopped\n");
        EXPECT_EQ(ended.err.find("QFile"), std::string::npos) << "there are no metrics to remove";
    }
}

// With the usual limit there would be files for 200 links only.
TEST_F(FxgateTest, OpensAsManyFilesAsItMay)
{
    rlimit usual = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit fewer = {usual.rlim_max / 2, usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &fewer), 0);
    start();
    setrlimit(RLIMIT_NOFILE, &usual);
    rlimit files = {};
    ASSERT_EQ(prlimit(static_cast<pid_t>(gate.processId()), RLIMIT_NOFILE, nullptr, &files), 0);
    EXPECT_EQ(files.rlim_cur, usual.rlim_max);
}

// Even its workers end when it is killed: nobody is left to serve.
TEST_F(FxgateTest, TakesItsWorkersAlongWhenItIsKilled)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return link(1)["up"].toBool(); }));
    const auto deaf = static_cast<pid_t>(link(1)["worker"].toInt());
    stop(SIGKILL);
    ASSERT_TRUE(waitUntil([deaf] {
        QFile status(QString("/proc/%1/stat").arg(deaf));
        return !status.open(QIODevice::ReadOnly) || status.readAll().contains(") Z ");
    }));
}

TEST_F(FxgateTest, ShowsItsStatus)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return link(0)["exchanges"].toInt() == 4; }));
    const std::string table = ask({"status"}).out;
    EXPECT_NE(table.find("Gateway cabinet1, running for "), std::string::npos) << table;
    EXPECT_TRUE(QRegularExpression("\n  press1  up     [^\n]+ 48.5 ms  75.0 %   2/2     0\n")
                    .match(QString::fromStdString(table))
                    .hasMatch())
        << table;
    EXPECT_NE(table.find("\n  plain      not connected  "), std::string::npos) << table;
    EXPECT_TRUE(folder.read("fxgate.prom").contains("fxgate_link_up{"));
}

TEST_F(FxgateTest, ShowsItsStatusAgainAndAgainWhenItIsWatched)
{
    start();
    ChildProcess watch;
    watch.start(FXGATE_FILE, {"status", "--watch", "--socket", folder.path("control")});
    QByteArray shown;
    ASSERT_TRUE(waitUntil([&] {
        shown += watch.readAllStandardOutput();
        return shown.count("Gateway cabinet1, running for ") == 2;
    }));
    stop(SIGTERM);
    EXPECT_EQ(endOf(watch).code, 7);  // nothing is left to be watched
}

TEST_F(FxgateTest, ReloadsWhenItIsAskedAndWhenItIsSignalled)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return link(0)["up"].toBool(); }));
    EXPECT_EQ(ask({"reload"}).out, "reload: applied; no link or form was restarted\n");
    EXPECT_TRUE(told().startsWith("RELOADING=1\nMONOTONIC_USEC="));
    EXPECT_EQ(told(), "READY=1");
    folder.write("fxgate.toml", toml + "oops = 1\n");
    const Ended refused = ask({"reload"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.err, "fxgate: reload: nothing was changed:\nfxgate: " +
                               folder.path("fxgate.toml").toStdString() +
                               ", line 20, column 1: unknown key 'oops'; known: link, tags, "
                               "writes, timeout, retries\n");
    EXPECT_TRUE(told().startsWith("RELOADING=1"));
    EXPECT_EQ(told(), "READY=1");
    folder.write("fxgate.toml", QByteArray(toml).replace("[link.press2]", "[link.press3]"));
    ::kill(static_cast<pid_t>(gate.processId()), SIGHUP);
    EXPECT_TRUE(told().startsWith("RELOADING=1"));
    EXPECT_EQ(told(), "READY=1");
    EXPECT_EQ(link(1)["name"].toString(), "press3");
    EXPECT_NE(stop(SIGTERM).err.find("fxgate: reload: press2 stopped, press3 started\n"),
              std::string::npos);
}

TEST_F(FxgateTest, FeedsTheWatchdog)
{
    start();
    EXPECT_EQ(notify.next(), "WATCHDOG=1");
}

TEST_F(FxgateTest, NeverShowsASecret)
{
    start();
    ASSERT_TRUE(waitUntil([this] { return link(0)["up"].toBool(); }));
    std::string shown = ask({"status"}).out + ask({"status", "--json"}).out + ask({"reload"}).out;
    shown += folder.read("fxgate.prom").toStdString();
    const Ended checked = runFxgate({"check", folder.path("fxgate.toml")});
    const Ended ended = stop(SIGTERM);
    shown += checked.out + checked.err + ended.out + ended.err;
    EXPECT_EQ(shown.find("hidden-password"), std::string::npos) << shown;
    EXPECT_NE(shown.find("press1"), std::string::npos);
}

TEST_F(FxgateTest, DoesNotBeginWithMistakes)
{
    folder.write("fxgate.toml", "[gateway]\nname = 5\n");
    const Ended ended = runFxgate({"run", "--config", folder.path("fxgate.toml")});
    EXPECT_EQ(ended.code, 7);
    EXPECT_EQ(ended.err.substr(0, ended.err.find('\n') + 1),
              "fxgate: " + folder.path("fxgate.toml").toStdString() +
                  ": url is missing below [broker]; for example url = "
                  "\"mqtts://broker.example:8883\"\n");
}

TEST_F(FxgateTest, ChecksAConfigurationAndItsTagFiles)
{
    folder.write("press1.csv", "name,address,scale,min,access\nflow,D10,x,,\nstate,D12,,,\n"
                               "level,D13,,1,ro\nLevel,D14,,,\n");
    folder.write("press2.csv", "name,address\nrun,M0\n");
    const Ended bad = runFxgate({"check", folder.path("fxgate.toml")});
    EXPECT_EQ(bad.code, 1);
    EXPECT_EQ(
        QString::fromStdString(bad.out).remove(folder.path("")).toStdString(),
        "/press1.csv, line 2, column scale: 'x' is not a number; use for example 0.1\n"
        "/press1.csv, line 3, column name: no tag of a gateway can be named state: the topic "
        "of the link's state has this name\n"
        "/press1.csv, line 4, column min: warning: level is read-only, so it needs no limits\n"
        "/press1.csv, line 5, column name: Level and level differ only in case; some readers "
        "cannot tell them apart\n"
        "/fxgate.toml: 2 links, 4 tags, 3 errors, 1 warning\n");
    folder.write("fxgate.toml", QByteArray(toml).replace("sim:", "sim:?words=16"));
    folder.write("press1.csv", "name,address,type,link\nbatch,D100:20,text,press1\n"
                               "note,D100:20,text,press3\n");
    const std::string tooLong = runFxgate({"check", folder.path("fxgate.toml")}).out;
    EXPECT_NE(tooLong.find("/press1.csv, line 2, column address: batch: D100:20 is one value, and "
                           "one reply brings at most 16 of its registers"),
              std::string::npos)
        << tooLong;
    EXPECT_NE(tooLong.find("3 tags, 1 error, "), std::string::npos) << tooLong;
    folder.write("fxgate.toml", toml);
    folder.write("press1.csv", "name,address\nflow,D10\n");
    const Ended good = runFxgate({"check", folder.path("fxgate.toml")});
    EXPECT_EQ(good.code, 0);
    EXPECT_EQ(QString::fromStdString(good.out).remove(folder.path("")).toStdString(),
              "/fxgate.toml: 2 links, 2 tags, 0 errors, 0 warnings\n");
}

TEST(FxgateCommandLine, IsCompletedByTheShell)
{
    struct Row
    {
        const char* words;
        const char* offers;
    };
    const Row rows[] = {
        {"''", "run check status reload"},
        {"s", "status"},
        {"--v", "--version"},
        {"status --", "--help --json --watch --socket"},
        {"run --c", "--config"},
        {"run --config /dev/nul", "/dev/null"},
        {"check /dev/nul", "/dev/null"},
        {"reload --js", ""},
    };
    for (const auto& [words, offers] : rows) {
        QProcess shell;
        shell.start("bash", {"-c", QString("source %1; COMP_WORDS=(%2 %3); "
                                           "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _fxgate; "
                                           "printf '%s' \"${COMPREPLY[*]}\"")
                                       .arg(FXGATE_COMPLETION, FXGATE_FILE, words)});
        ASSERT_TRUE(shell.waitForFinished(60000));
        EXPECT_EQ(shell.readAllStandardOutput().toStdString(), offers) << words;
    }
}

TEST(FxgateCommandLine, TellsMistakesAndWhereHelpIs)
{
    struct Row
    {
        QStringList arguments;
        int code;
        const char* says;
    };
    const char* const missing =
        "fxgate: no gateway answers at /nowhere; is it running, with this --socket?\n";
    const Row rows[] = {
        {{}, 2, "fxgate: command missing; see fxgate --help\n"},
        {{"stat"}, 2, "fxgate: unknown command 'stat'; did you mean 'status'?\n"},
        {{"run", "--konfig"}, 2, "fxgate: unknown option '--konfig'; did you mean '--config'?\n"},
        {{"check", "/nowhere"}, 7, "fxgate: /nowhere: No such file or directory\n"},
        {{"status", "--socket", "/nowhere"}, 7, missing},
        {{"reload", "--socket", "/nowhere"}, 7, missing},
    };
    for (const auto& [arguments, code, says] : rows) {
        const Ended ended = runFxgate(arguments);
        EXPECT_EQ(ended.code, code) << says;
        EXPECT_EQ(ended.err, says);
    }
    EXPECT_EQ(runFxgate({"--version"}).out.substr(0, 7), "fxgate ");
    ChildProcess full;
    full.setStandardOutputFile("/dev/full");
    full.start(FXGATE_FILE, {"--help"});
    EXPECT_EQ(endOf(full).code, 7);
    for (const char* const command : {"run", "check", "status", "reload"})
        EXPECT_NE(runFxgate({command, "--help"}).out.find("Examples:\n  fxgate "),
                  std::string::npos);
}
