// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The gateway as a whole: a supervisor for each link, the bus in one form or two, the writes
// between them. Everything happens in one event loop.

#pragma once

#include "tools/fxgate/bus/bus.h"
#include "tools/fxgate/workers/link_supervisor.h"
#include "tools/fxgate/writes/writes.h"

#include <QTimer>

#include <map>
#include <memory>

namespace fxgate {

enum class FormKind
{
    Plain,
    Sparkplug,
};

class Gateway : public QObject
{
public:
    using MakeBus =
        std::function<std::unique_ptr<Bus>(FormKind, const Configuration&, const Plant&)>;
    using Log = std::function<void(const QString& line)>;

    // Throws Failure if the configuration has mistakes.
    Gateway(const QString& path, const MakeBus& makeBus, const Environment& environment,
            const Log& log);
    ~Gateway() override;

    void start();
    void tick();  // is done several times a second while Qt's event loop runs
    void stop();  // ends the workers, then leaves the bus

    // Takes a changed configuration over and touches only what it changes; one with mistakes
    // changes nothing. What was done, or the mistakes.
    struct Reload
    {
        bool isDone = false;
        QString text;
    };
    Reload reload();

    QJsonObject status() const;
    const Configuration& configuration() const { return m_configuration; }

private:
    using Links = std::map<QString, std::unique_ptr<LinkSupervisor>>;
    using Buses = std::map<FormKind, std::shared_ptr<Bus>>;

    void addLink(const QString& name);
    void startLinks(const QStringList& names);
    void endLinks(const QVector<LinkSupervisor*>& links) const;
    QStringList changeLinks(const Configuration& old);
    void addBus(FormKind kind);
    bool isBusKept(FormKind kind, const Configuration& next) const;
    QStringList endBuses(const Configuration& next);
    QStringList startBuses();
    void refreshLinks(qint64 steadyMs);
    void linkChanged(const QString& link);
    QString auditProblem() const;

    QString m_path;
    MakeBus m_makeBus;
    Environment m_environment;
    Log m_log;
    Configuration m_configuration;
    Plant m_plant;
    AuditFile m_audit;
    Writes m_writes;
    Buses m_buses;
    Links m_links;
    QTimer m_tick;
    qint64 m_startedMs = 0;        // UTC
    qint64 m_startingUntilMs = 0;  // steady
    qint64 m_refreshedMs = 0;      // steady
    QString m_refreshedLink;       // last
    QString m_auditProblem;        // that was told last
};

}  // namespace fxgate
