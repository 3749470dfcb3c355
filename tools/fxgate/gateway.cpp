// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/gateway.h"

#include "tools/failure.h"
#include "tools/fxgate/status/status.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <utility>

namespace fxgate {

namespace {

constexpr int tickMs = 250;
constexpr int betweenStartsMs = 10;
constexpr int endMs = 1000;  // for the workers, to end what is in flight

const char* nameOf(FormKind kind)
{
    return kind == FormKind::Plain ? "plain" : "sparkplug";
}

QString fxhostOf(const Configuration& configuration)
{
    const QString& named = configuration.gateway.fxhost;
    return named.isEmpty() ? QCoreApplication::applicationDirPath() + "/fxhost" : named;
}

bool hasForm(const Configuration& configuration, FormKind kind)
{
    return kind == FormKind::Plain ? configuration.plain.has_value()
                                   : configuration.sparkplug.has_value();
}

}  // namespace

Gateway::Gateway(const QString& path, const MakeBus& makeBus, const Environment& environment,
                 const Log& log)
    : m_path(path), m_makeBus(makeBus), m_environment(environment), m_log(log),
      m_configuration(readConfiguration(path)),
      m_writes(m_plant, m_audit, [this](const QString& link, const QByteArray& line) {
          m_links.at(link)->send(line);
      })
{
    connect(&m_tick, &QTimer::timeout, this, &Gateway::tick);
}

Gateway::~Gateway() = default;

void Gateway::start()
{
    m_startedMs = m_environment.now().utcMs;
    m_refreshedMs = m_environment.now().steadyMs;
    m_audit.open(m_configuration.gateway.audit);
    m_writes.configure(m_configuration.writes, m_configuration.links);
    for (const QString& name : m_configuration.links.keys())
        addLink(name);
    startBuses();
    startLinks(m_configuration.links.keys());
}

// All at once would be slow together, and later read, and wait for each other, at one time.
void Gateway::startLinks(const QStringList& names)
{
    qint64 afterMs = 0;
    for (const QString& name : names)
        m_links.at(name)->start(std::exchange(afterMs, afterMs + betweenStartsMs));
    m_startingUntilMs = m_environment.now().steadyMs + afterMs;
    m_tick.start(betweenStartsMs);
}

void Gateway::addLink(const QString& name)
{
    auto link = std::make_unique<LinkSupervisor>(name, m_configuration.links[name],
                                                 fxhostOf(m_configuration), m_plant, m_environment);
    link->onChanges = [this](const QVector<Change>& changes) {
        for (const auto& [kind, bus] : m_buses)
            bus->publish(changes);
    };
    link->onLinkChanged = [this, name] { linkChanged(name); };
    link->onWritten = [this, name](const WrittenLine& line) {
        m_writes.written(name, line, m_environment.now());
    };
    link->onWorkerLost = [this, name](const QString& reason) {
        m_writes.workerLost(name, reason, m_environment.now());
    };
    link->onLog = [this, name](const QString& text) { m_log(name + ": " + text); };
    m_links[name] = std::move(link);
}

void Gateway::linkChanged(const QString& link)
{
    for (const auto& [kind, bus] : m_buses)
        bus->linkChanged(link);
}

void Gateway::addBus(FormKind kind)
{
    std::shared_ptr<Bus> bus = m_makeBus(kind, m_configuration, m_plant);
    bus->onState = m_log;
    const std::weak_ptr<Bus> asker = bus;  // gone after a reload, perhaps
    bus->onWrite = [this, asker](const WriteRequest& request) {
        const auto answer = [asker, request](const WriteResult& result) {
            if (const std::shared_ptr<Bus> still = asker.lock())
                still->answer(request, result);
        };
        m_writes.request(request, answer, m_environment.now());
    };
    m_buses[kind] = bus;
    bus->start();
}

QStringList Gateway::startBuses()
{
    QStringList started;
    for (const FormKind kind : {FormKind::Plain, FormKind::Sparkplug}) {
        if (hasForm(m_configuration, kind) && m_buses.count(kind) == 0) {
            addBus(kind);
            started += nameOf(kind);
        }
    }
    return started;
}

void Gateway::tick()
{
    const Moment now = m_environment.now();
    if (m_tick.interval() != tickMs && now.steadyMs >= m_startingUntilMs)
        m_tick.setInterval(tickMs);
    for (const auto& [name, link] : m_links)
        link->tick();
    for (const auto& [kind, bus] : m_buses)
        bus->tick();
    m_writes.tick(now);
    refreshLinks(now.steadyMs);
    if (auditProblem() != m_auditProblem) {
        m_auditProblem = auditProblem();
        if (!m_auditProblem.isEmpty())
            m_log("the audit file cannot be written, so writes are refused: " + m_auditProblem);
        else if (m_audit.problem().isEmpty())
            m_log(QStringLiteral("the audit file can be written again"));
    }
}

// One after the other, so that the values of all do not come at one moment.
void Gateway::refreshLinks(qint64 steadyMs)
{
    const qint64 refreshMs = m_configuration.gateway.refreshMs;
    const qint64 betweenMs = refreshMs / static_cast<qint64>(m_links.size());
    m_refreshedMs = std::max(m_refreshedMs, steadyMs - refreshMs);  // after a standstill
    for (; steadyMs - m_refreshedMs >= betweenMs; m_refreshedMs += betweenMs) {
        auto next = m_links.upper_bound(m_refreshedLink);
        if (next == m_links.end())
            next = m_links.begin();
        next->second->tellAllAgain();
        m_refreshedLink = next->first;
    }
}

// Nobody who does not write needs the file, unless it was asked for.
QString Gateway::auditProblem() const
{
    const bool isNeeded = m_configuration.writes.isAllowed ||
                          m_configuration.gateway.audit != GatewaySettings().audit;
    return isNeeded ? m_audit.problem() : QString();
}

// All at once, so that a hundred take no longer than one.
void Gateway::endLinks(const QVector<LinkSupervisor*>& links) const
{
    const QDeadlineTimer deadline(endMs);
    for (LinkSupervisor* const link : links)
        link->stop();
    for (LinkSupervisor* const link : links)
        link->endBy(deadline);
}

void Gateway::stop()
{
    m_tick.stop();
    m_writes.stop(m_environment.now());
    QVector<LinkSupervisor*> all;
    for (const auto& [name, link] : m_links)
        all.append(link.get());
    endLinks(all);
    for (const auto& [kind, bus] : m_buses)
        bus->stop();
    m_audit.sync();
}

bool Gateway::isBusKept(FormKind kind, const Configuration& next) const
{
    const Configuration& now = m_configuration;
    const bool isSameForm =
        kind == FormKind::Plain ? now.plain == next.plain : now.sparkplug == next.sparkplug;
    return isSameForm && now.gateway.name == next.gateway.name && now.broker == next.broker &&
           now.store == next.store;
}

// Those that `next` changes.
QStringList Gateway::endBuses(const Configuration& next)
{
    QStringList ended;
    for (const FormKind kind : {FormKind::Plain, FormKind::Sparkplug}) {
        if (m_buses.count(kind) == 0 || isBusKept(kind, next))
            continue;
        m_buses[kind]->stop();
        m_buses.erase(kind);
        ended += nameOf(kind);
    }
    return ended;
}

// What was done.
QStringList Gateway::changeLinks(const Configuration& old)
{
    QStringList done;
    QVector<LinkSupervisor*> ending;
    const bool isOtherHost = fxhostOf(old) != fxhostOf(m_configuration);
    for (const auto& [name, link] : m_links) {
        if (isOtherHost || !(m_configuration.links.value(name) == link->link()))
            ending.append(link.get());
    }
    endLinks(ending);
    QStringList changed;
    for (LinkSupervisor* const link : ending) {
        const QString name = link->name();
        m_links.erase(name);
        m_plant.remove(name);
        if (m_configuration.links.contains(name)) {
            changed += name;
            continue;
        }
        linkChanged(name);
        done += name + " stopped";
    }
    QStringList added;
    for (const QString& name : m_configuration.links.keys()) {
        if (m_links.count(name) != 0)
            continue;
        addLink(name);
        linkChanged(name);
        added += name;
        done += name + (changed.contains(name) ? " restarted" : " started");
    }
    startLinks(added);
    return done;
}

Gateway::Reload Gateway::reload()
{
    Configuration next;
    try {
        next = readConfiguration(m_path);
    } catch (const fxtools::Failure& failure) {
        const QString text = "reload: nothing was changed:\n" + failure.text();
        m_log(text);
        return {false, text};
    }
    const QStringList ended = endBuses(next);
    const Configuration old = m_configuration;
    m_configuration = next;
    if (old.gateway.audit != next.gateway.audit)
        m_audit.open(next.gateway.audit);
    m_writes.configure(next.writes, next.links);
    QStringList done = changeLinks(old);
    const QStringList started = startBuses();
    for (const QString& form : started)
        done += form + (ended.contains(form) ? " restarted" : " started");
    for (const QString& form : ended) {
        if (!started.contains(form))
            done += form + " stopped";
    }
    const QString text =
        "reload: " + (done.isEmpty() ? QStringLiteral("applied; no link or form was restarted")
                                     : done.join(", "));
    m_log(text);
    return {true, text};
}

QJsonObject Gateway::status() const
{
    StatusSource source{m_configuration.gateway.name,
                        m_startedMs,
                        m_environment.now().utcMs,
                        {},
                        {},
                        m_writes.counts(),
                        auditProblem()};
    for (const auto& [name, link] : m_links)
        source.links.append({name, m_plant.value(name), link->report()});
    for (const auto& [kind, bus] : m_buses)
        source.forms.append({QLatin1String(nameOf(kind)), bus->status()});
    return statusObject(source);
}

}  // namespace fxgate
