// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Bytes over real links: a TCP connection to this machine, and a pseudo-terminal.

#include "tests/tools/support/child_process.h"
#include "tools/link/interrupt.h"
#include "tools/link/link_keeper.h"
#include "tools/link/links.h"
#include "tools/link/ports.h"

#include <QCoreApplication>
#include <QTcpServer>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <thread>

#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace fxtools;

namespace {

// Qt's sockets and ports want one.
int argumentCount = 0;
const QCoreApplication application(argumentCount, nullptr);

constexpr int patienceMs = 30000;  // of a loaded machine; what is awaited comes at once

// Waits for all of them: they may come in pieces.
QByteArray received(Link& link, int byteCount)
{
    QByteArray bytes;
    while (bytes.size() < byteCount && link.isOpen())
        bytes += link.receive(patienceMs);
    return bytes;
}

std::string reasonNotToOpen(Link& link)
{
    try {
        link.open();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::LinkNotOpened);
        EXPECT_FALSE(link.isOpen());
        return failure.what();
    }
    return "opened";
}

class TcpLinks : public testing::Test
{
protected:
    void open()
    {
        link.open();
        ASSERT_TRUE(server.waitForNewConnection(patienceMs));
        peer = server.nextPendingConnection();
    }

    QTcpServer server;
    bool isListening = server.listen(QHostAddress::LocalHost);
    TcpLink link{TcpSettings{{}, "127.0.0.1", server.serverPort()}};
    QTcpSocket* peer = nullptr;
};

class Terminals : public testing::Test
{
protected:
    Terminals()
    {
        char path[64] = {};
        EXPECT_EQ(openpty(&master, &slave, path, nullptr, nullptr), 0);
        settings.path = path;
        settings.isPseudoTerminal = true;
    }
    ~Terminals() override
    {
        close(slave);
        close(master);
    }

    int master = -1;
    int slave = -1;
    SerialSettings settings;
};

}  // namespace

TEST_F(TcpLinks, CarryBytesBothWays)
{
    open();
    EXPECT_EQ(link.name(), QString("tcp:127.0.0.1:%1").arg(server.serverPort()));
    EXPECT_TRUE(link.send("request"));
    ASSERT_TRUE(peer->waitForReadyRead(patienceMs));
    EXPECT_EQ(peer->readAll(), "request");
    EXPECT_EQ(link.receive(0), "") << "nothing is there yet";
    peer->write("reply");
    peer->waitForBytesWritten(patienceMs);
    EXPECT_EQ(received(link, 5), "reply");
}

TEST_F(TcpLinks, NoticeThatThePeerHungUpAndOpenAgain)
{
    open();
    peer->disconnectFromHost();
    EXPECT_EQ(link.receive(patienceMs), "");
    EXPECT_FALSE(link.isOpen());
    EXPECT_FALSE(link.send("request"));
    open();
    EXPECT_TRUE(link.send("request"));
}

// More than the kernel takes at once, to a peer that reads it only by and by.
TEST_F(TcpLinks, WaitUntilThePeerHasRoom)
{
    open();
    const int most = 32 << 20;
    std::atomic<int> read = 0;
    const int peerSocket = static_cast<int>(peer->socketDescriptor());
    std::thread reader([&] {
        QByteArray bytes(1 << 20, 0);
        pollfd waited = {peerSocket, POLLIN, 0};
        while (read<most&& ::poll(&waited, 1, patienceMs)> 0) {
            const ssize_t some = ::recv(peerSocket, bytes.data(), 1 << 20, 0);
            if (some <= 0 && errno != EAGAIN)
                break;
            read += static_cast<int>(std::max<ssize_t>(some, 0));
        }
    });
    EXPECT_TRUE(link.send(QByteArray(most, 'x')));
    reader.join();
    EXPECT_EQ(read, most);
}

TEST_F(TcpLinks, NameWhyTheyDoNotOpen)
{
    server.close();
    const std::string port = link.name().section(':', 2).toStdString();
    EXPECT_EQ(reasonNotToOpen(link),
              "cannot connect to 127.0.0.1 port " + port + ": Connection refused");
}

TEST_F(Terminals, CarryBytesBothWays)
{
    SerialLink link(settings);
    link.open();
    EXPECT_EQ(link.name(), "pty:" + settings.path);
    EXPECT_TRUE(link.send("request"));
    char bytes[16] = {};
    ASSERT_EQ(read(master, bytes, sizeof bytes), 7);
    EXPECT_STREQ(bytes, "request");
    EXPECT_EQ(link.receive(0), "");
    ASSERT_EQ(write(master, "reply", 5), 5);
    EXPECT_EQ(received(link, 5), "reply");
}

TEST_F(Terminals, NoticeThatTheOtherEndIsGone)
{
    SerialLink link(settings);
    link.open();
    close(master);
    master = -1;
    EXPECT_FALSE(link.send("request"));
    EXPECT_FALSE(link.isOpen());
    EXPECT_EQ(link.receive(patienceMs), "");
}

TEST_F(Terminals, NameWhyTheyDoNotOpen)
{
    settings.path = "/dev/null";
    SerialLink nothing(settings);
    EXPECT_EQ(reasonNotToOpen(nothing), "cannot open /dev/null: not a serial port");
    settings.path = "/dev/no-such-port";
    settings.isPseudoTerminal = false;
    SerialLink missing(settings);
    EXPECT_EQ(reasonNotToOpen(missing).find("cannot open /dev/no-such-port: No such file or "
                                            "directory; available ports: "),
              0U);
}

TEST_F(Terminals, NameWhoElseUsesThem)
{
    EXPECT_EQ(holderOf(settings.path), "") << "this process does not count";
    ChildProcess other;
    other.setStandardInputFile(settings.path);
    other.start("sleep", {"60"});
    ASSERT_TRUE(other.waitForStarted(patienceMs));
    EXPECT_EQ(holderOf(settings.path).toStdString(),
              "sleep (process " + std::to_string(other.processId()) + ")");
    other.kill();
    other.waitForFinished(patienceMs);
    EXPECT_EQ(holderOf(settings.path), "");
}

// How soon a lost link is open again, on a clock that only the keeper's own pauses move.

namespace {

class PulledCable : public Link
{
public:
    QString name() const override { return "cable"; }
    void open() override
    {
        ++attempts;
        if (nowMs < pluggedInMs)
            throw Failure(ExitCode::LinkNotOpened, "pulled");
    }
    bool isOpen() const override { return nowMs >= pluggedInMs; }
    bool send(const QByteArray&) override { return isOpen(); }
    QByteArray receive(int) override { return {}; }

    qint64 nowMs = 0;
    qint64 pluggedInMs = 0;
    int attempts = 0;
};

}  // namespace

TEST(LinkKeepers, NoticeWithinAboutASecondThatALinkIsBack)
{
    for (const qint64 awayMs : {1, 1000, 60000, 3600000}) {
        PulledCable cable;
        cable.pluggedInMs = awayMs;
        LinkKeeper keeper(cable, std::nullopt);
        keeper.waitWithoutEnd();
        keeper.onState = [](const QString&) {};
        keeper.sleeps = [&cable](qint64 timeMs) {
            cable.nowMs += timeMs;
            return true;
        };
        EXPECT_TRUE(keeper.reopen(0));
        EXPECT_LE(cable.nowMs - awayMs, 1050);
        EXPECT_LE(cable.attempts, awayMs / 350 + 4) << "it must not hammer on the port";
    }
}

TEST(LinkKeepers, BeginWithShortPausesAgainOnceThePlcHasAnswered)
{
    PulledCable cable;
    LinkKeeper keeper(cable, std::nullopt);
    keeper.waitWithoutEnd();
    keeper.onState = [](const QString&) {};
    QVector<qint64> pausesMs;
    keeper.sleeps = [&](qint64 timeMs) {
        pausesMs += timeMs;
        cable.nowMs += timeMs;
        return true;
    };
    const auto firstPauseMs = [&](qint64 awayMs, qint64 answers) {
        pausesMs.clear();
        cable.pluggedInMs = cable.nowMs + awayMs;
        keeper.reopen(answers);
        return pausesMs.first();
    };
    EXPECT_LT(firstPauseMs(60000, 7), 150);
    EXPECT_GE(firstPauseMs(1, 7), 350);
    EXPECT_LT(firstPauseMs(1, 8), 150);
}

TEST(LinkKeepers, GiveUpAtAnInterrupt)
{
    PulledCable cable;
    cable.pluggedInMs = 1000000;
    LinkKeeper keeper(cable, 30);
    keeper.onState = [](const QString&) {};
    keeper.sleeps = [](qint64) { return false; };
    EXPECT_FALSE(keeper.reopen(0));
    EXPECT_EQ(cable.attempts, 0);
}

TEST(LinkKeepers, RetryTheFirstOpeningOnlyIfTheyAreToldHowLong)
{
    struct Row
    {
        std::optional<int> patienceS;
        qint64 pluggedInMs;
        bool isInterrupted;
        const char* end;
        const char* states;
    };
    const Row rows[] = {
        {{}, 0, false, "opened", ""},
        {{}, 500, false, "pulled", ""},
        {0, 500, false, "pulled", ""},
        {3600, 500, false, "opened", "pulled; retrying, the link is open"},
        {3600, 500, true, "cable: interrupted before the link opened", "pulled; retrying"},
    };
    for (const Row& row : rows) {
        PulledCable cable;
        cable.pluggedInMs = row.pluggedInMs;
        LinkKeeper keeper(cable, row.patienceS);
        QStringList states;
        keeper.onState = [&states](const QString& text) { states += text; };
        keeper.sleeps = [&](qint64 timeMs) {
            cable.nowMs += timeMs;
            return !row.isInterrupted;
        };
        std::string end = "opened";
        try {
            keeper.openFirst();
        } catch (const Failure& failure) {
            end = failure.what();
        }
        EXPECT_EQ(end, row.end);
        EXPECT_EQ(states.join(", ").toStdString(), row.states);
    }
}

TEST(LinkKeepers, DoNotWaitForALostLinkIfTheyAreNotToWait)
{
    PulledCable cable;
    cable.pluggedInMs = 1;
    LinkKeeper keeper(cable, 0);
    QStringList states;
    keeper.onState = [&states](const QString& text) { states += text; };
    EXPECT_FALSE(keeper.reopen(0));
    EXPECT_EQ(states.join(", "), "the link was lost");
    EXPECT_EQ(cable.attempts, 0);
}

TEST(LinkKeepers, SayHowLongTheyHaveWaited)
{
    PulledCable cable;
    cable.pluggedInMs = 1;  // and time stands still
    LinkKeeper keeper(cable, 1);
    QStringList states;
    keeper.onState = [&states](const QString& text) { states += text; };
    EXPECT_FALSE(keeper.reopen(0));
    EXPECT_EQ(states.join(", "), "the link was lost, the link did not come back within 1 s");
    EXPECT_GT(cable.attempts, 0);
}

// What a signal does is tried in a process of its own, since the answer holds until it ends.

namespace {

int statusOf(const std::function<bool()>& isRight)
{
    const pid_t child = fork();
    if (child == 0) {
        catchSignals();
        _exit(isRight() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

bool raises(int signalNumber)
{
    static_cast<void>(raise(signalNumber));
    return interrupted() && interruptSignal() == signalNumber;
}

}  // namespace

TEST(Interrupts, AreNoticedWhereverTheyComeFrom)
{
    EXPECT_EQ(statusOf([] { return !interrupted(); }), 0);
    for (const int signalNumber : {SIGINT, SIGTERM, SIGALRM})
        EXPECT_EQ(statusOf([signalNumber] { return raises(signalNumber); }), 0) << signalNumber;
    EXPECT_EQ(statusOf([] { return !takeContinued() && raise(SIGCONT) == 0 && takeContinued(); }),
              0);
}

TEST(Interrupts, ComeAfterAGivenTime)
{
    EXPECT_EQ(statusOf([] {
                  interruptAfter(1);
                  return !sleepUnlessInterrupted(patienceMs, interrupted);
              }),
              0);
    for (const qint64 timeMs : {60000, 60059, 59999}) {
        EXPECT_EQ(statusOf([timeMs] {
                      interruptAfter(timeMs);
                      itimerval left = {};
                      return getitimer(ITIMER_REAL, &left) == 0 && left.it_value.tv_sec > 29 &&
                             left.it_value.tv_sec <= 60;
                  }),
                  0)
            << timeMs;
    }
}

TEST(Interrupts, LeaveAReadThatWaitsAlone)
{
    EXPECT_EQ(statusOf([] {
                  int ends[2] = {};
                  if (pipe(ends) != 0)
                      return false;
                  sigset_t all;
                  sigfillset(&all);
                  std::thread writer([&] {
                      pthread_sigmask(SIG_BLOCK, &all, nullptr);
                      while (!interrupted())
                          usleep(1000);
                      usleep(10000);  // the read goes on
                      static_cast<void>(!write(ends[1], "x", 1));
                  });
                  interruptAfter(20);
                  char byte = 0;
                  const bool isRead = read(ends[0], &byte, 1) == 1;
                  writer.join();
                  return isRead && interrupted();
              }),
              0);
}

// The second of one key is not meant: a terminal may send both at once.
TEST(Interrupts, EndTheProgramWhenTheyComeAgain)
{
    const int status = statusOf([] {
        static_cast<void>(raise(SIGINT));
        static_cast<void>(raise(SIGALRM));
        usleep(600000);
        static_cast<void>(raise(SIGALRM));
        static_cast<void>(raise(SIGINT));
        return true;
    });
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGINT);
}
