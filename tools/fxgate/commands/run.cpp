// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxgate run: the gateway with what surrounds it: signals, the control socket, systemd, metrics.

#include "tools/fxgate/bus/form_bus.h"
#include "tools/fxgate/commands/commands.h"
#include "tools/fxgate/gateway.h"
#include "tools/fxgate/status/control_socket.h"
#include "tools/fxgate/status/notify.h"
#include "tools/fxgate/status/status.h"

#include <QCoreApplication>
#include <QSaveFile>
#include <QSocketNotifier>

#include <csignal>

#include <sys/resource.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace fxgate {

namespace {

constexpr int metricsMs = 15000;  // as often as they are collected, usually

// Else they would look like new ones.
void removeMetrics(const QString& file)
{
    if (!file.isEmpty())
        QFile::remove(file);
}

// A link takes five. The usual limit of 1024 is for programs that use select().
void allowManyFiles()
{
    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
}

// The signals that run() handles, as a file that becomes readable.
int openSignals()
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    sigset_t handled;
    sigemptyset(&handled);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&handled, number);
    sigprocmask(SIG_BLOCK, &handled, nullptr);
    return signalfd(-1, &handled, SFD_CLOEXEC | SFD_NONBLOCK);
}

class Service : public QObject
{
public:
    Service(const QString& configuration, const QString& socket)
        : m_gateway(configuration, m_buses.maker(), m_environment, complain),
          m_control(socket.isEmpty() ? usualSocket() : socket,
                    [this](const QByteArray& request) { return reply(request); }),
          m_signals(openSignals(), QSocketNotifier::Read)
    {
        connect(&m_signals, &QSocketNotifier::activated, this, &Service::takeSignal);
        connect(&m_metrics, &QTimer::timeout, this, &Service::writeMetrics);
        connect(&m_watchdog, &QTimer::timeout, this, notifyAlive);
    }

    void start()
    {
        m_gateway.start();
        m_metrics.start(metricsMs);
        writeMetrics();
        if (watchdogMs() > 0)
            m_watchdog.start(watchdogMs());
        notifyReady();
        complain(QStringLiteral("started: gateway %1, %2 links")
                     .arg(m_gateway.configuration().gateway.name)
                     .arg(m_gateway.configuration().links.size()));
    }

private:
    void takeSignal()
    {
        signalfd_siginfo info = {};
        if (::read(static_cast<int>(m_signals.socket()), &info, sizeof info) != sizeof info)
            return;
        if (info.ssi_signo == SIGHUP)
            reload();
        else
            stop();
    }

    Gateway::Reload reload()
    {
        notifyReloading();
        const QString oldMetrics = m_gateway.configuration().gateway.metrics;
        Gateway::Reload reload = m_gateway.reload();
        if (m_gateway.configuration().gateway.metrics != oldMetrics)
            removeMetrics(oldMetrics);
        writeMetrics();
        notifyReady();
        return reload;
    }

    void stop()
    {
        notifyStopping();
        m_signals.setEnabled(false);
        m_metrics.stop();
        m_gateway.stop();
        removeMetrics(m_gateway.configuration().gateway.metrics);
        complain(QStringLiteral("stopped"));
        QCoreApplication::quit();
    }

    QJsonObject reply(const QByteArray& request)
    {
        if (request == "status")
            return m_gateway.status();
        if (request == "reload") {
            const Gateway::Reload done = reload();
            return {{"done", done.isDone}, {"text", done.text}};
        }
        return {{"text", "unknown request"}};
    }

    void writeMetrics()
    {
        const QString path = m_gateway.configuration().gateway.metrics;
        if (path.isEmpty())
            return;
        QSaveFile file(path);
        const QByteArray text = metricsText(m_gateway.status());
        QString problem;
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() ||
            !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                 QFileDevice::ReadGroup | QFileDevice::ReadOther) ||
            !file.commit())
            problem = path + ": " + file.errorString();
        if (problem != m_metricsProblem && !problem.isEmpty())
            complain("metrics: " + problem);
        m_metricsProblem = problem;
    }

    const Environment m_environment = realEnvironment();
    BusFactory m_buses{m_environment};
    Gateway m_gateway;
    ControlSocket m_control;
    QSocketNotifier m_signals;
    QTimer m_metrics, m_watchdog;
    QString m_metricsProblem;  // that was told last
};

}  // namespace

fxtools::ExitCode run(const QString& configuration, const QString& socket)
{
    allowManyFiles();
    Service service(configuration, socket);
    service.start();
    QCoreApplication::exec();
    return fxtools::ExitCode::Good;
}

}  // namespace fxgate
