// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxsim as its users meet it: a process that is started, told to be ready, talked to over a real
// pseudo-terminal or TCP and ended. Every wait has an end (deadlineMs); none of them is a fixed
// sleep.

#pragma once

#include "tests/tools/support/child_process.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QTcpSocket>

#include <csignal>

constexpr int deadlineMs = 30000;  // of a loaded machine, under sanitizers

// Root may write and open everything, unless it is started without that right.
enum class Rights
{
    Own,
    OrdinaryUser
};

// A running fxsim. Ends with the test, whatever happens in between.
class FxsimProcess
{
public:
    // `descriptors`: how many it may have open, if not 0.
    explicit FxsimProcess(const QStringList& arguments, Rights rights = Rights::Own,
                          int descriptors = 0);
    ~FxsimProcess();

    // What stands after "fxsim: ready on ", or nothing if it ended before.
    QString waitReady() { return waitLine("fxsim: ready on "); }

    // The rest of the next line that starts so; lines before it are skipped.
    QString waitLine(const QString& start);

    qint64 processId() const { return m_process.processId(); }

    QByteArray command(const QByteArray& line);  // what came back, up to and with ok or error

    void closeInput() { m_process.closeWriteChannel(); }

    int waitEnd();  // the exit code; -1 if it did not end or crashed
    int signal(int number);
    int terminate() { return signal(SIGTERM); }

    QByteArray restOfOutput() { return m_process.readAllStandardOutput(); }
    QByteArray errors() { return m_process.readAllStandardError(); }

private:
    QByteArray readLine();

    ChildProcess m_process;
};

// Runs fxsim to its end with arguments that do not let it start; gives the exit code and what it
// said.
struct FailedStart
{
    int exitCode = -1;
    QByteArray errors;
    QByteArray output;
};
FailedStart runToEnd(const QStringList& arguments, Rights rights = Rights::Own);
QByteArray failureOf(const QStringList& arguments, Rights rights = Rights::Own);  // "3 fxsim: ..."

// The host's end of a link.
class HostEnd
{
public:
    virtual ~HostEnd() = default;
    virtual void send(const QByteArray& bytes) = 0;
    virtual QByteArray take(int byteCount) = 0;  // fewer if the deadline passes or the link goes
    virtual bool waitGone() = 0;                 // until the other side closed it

    QByteArray ask(const QByteArray& bytes, int byteCount)
    {
        send(bytes);
        return take(byteCount);
    }
};

class PtyEnd : public HostEnd
{
public:
    explicit PtyEnd(const QString& path);
    PtyEnd();  // the master of a new terminal, whose other end is a device for fxsim
    ~PtyEnd() override;
    PtyEnd(const PtyEnd&) = delete;
    PtyEnd& operator=(const PtyEnd&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    QString otherEnd() const;
    bool setSevenEvenOne();
    void send(const QByteArray& bytes) override;
    QByteArray take(int byteCount) override;
    bool waitGone() override;

private:
    int m_descriptor;
};

class TcpEnd : public HostEnd
{
public:
    explicit TcpEnd(const QString& name);  // tcp:ADDRESS:PORT, as in the line that says ready

    bool isOpen() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    quint16 ownPort() const { return m_socket.localPort(); }
    void hangUp() { m_socket.abort(); }
    void takeNothing() { m_socket.setReadBufferSize(1); }
    void send(const QByteArray& bytes) override;
    QByteArray take(int byteCount) override;
    bool waitGone() override;

private:
    QTcpSocket m_socket;
};
