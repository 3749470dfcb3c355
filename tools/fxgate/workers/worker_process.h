// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A worker that is a process, `fxhost serve`. It ends with the gateway, however that ends, but not
// with the gateway's terminal: the gateway asks it to end.

#pragma once

#include "tools/fxgate/workers/worker.h"

#include <QProcess>

namespace fxgate {

class WorkerProcess : public Worker
{
public:
    WorkerProcess(const QString& program, const QStringList& arguments);
    ~WorkerProcess() override;  // kills it

    void start() override { m_process.start(); }
    qint64 pid() const override { return m_process.processId(); }
    void write(const QByteArray& bytes) override { m_process.write(bytes); }
    void endInput() override { m_process.closeWriteChannel(); }
    void kill() override { m_process.kill(); }
    bool waitUntilEnded(int timeoutMs) override { return m_process.waitForFinished(timeoutMs); }

private:
    class Process : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    QString howItEnded() const;

    Process m_process;
};

}  // namespace fxgate
