// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "chaos.h"

#include "tools/fxgate/bus/sparkplug_payload.h"

#include <QCoreApplication>
#include <QFile>

#include <cmath>

namespace chaos {

using namespace fxgate;

namespace {

constexpr qint64 tickMs = 250;
constexpr qint64 longestCalmMs = 30 * 60000;
constexpr qint64 journalBytes = 16 << 20;  // beside what the store's limit bounds
constexpr qint64 mostUnconfirmed = 21000;
constexpr qint64 unconfirmedMs = 25000;  // that a change may be under way at most
const QString hostTopic = QStringLiteral("spBv1.0/STATE/scada");

}  // namespace

Chaos::Chaos(unsigned int seed, const Note& note)
    : m_random(seed), m_note(note), m_disk(m_timeline), m_broker(m_timeline, m_random),
      m_links(static_cast<size_t>(1 + below(m_random, 3))),
      m_witness(m_timeline, m_broker, static_cast<int>(m_links.size())), m_hasHost(happens(0.3))
{
    int number = 0;
    const bool isBusy = happens(0.2);
    for (SimulatedLink& link : m_links) {
        link.number = number++;
        link.periodMs = isBusy ? some(50, 300) : some(300, 3000);
        link.deafness = 0.1 * below(m_random, 3);
    }
    m_environment.now = [this] { return m_timeline.now(); };
    m_environment.chance = [this] { return std::uniform_real_distribution<>(0, 1)(m_random); };
    m_environment.makeWorker = [this](const QString&, const QStringList& arguments) {
        const int link = arguments.last().mid(5).toInt();
        return std::make_unique<SimulatedWorker>(m_timeline, m_random, m_witness,
                                                 m_links[static_cast<size_t>(link)]);
    };
    m_environment.makeConnection = [this](const BrokerSettings& settings, const QString& clientId,
                                          const Message& will) {
        return m_broker.connectTo(settings, clientId, will);
    };
    m_broker.onMessage = [this](const Message& message, int session) {
        m_witness.read(message, session);
    };
    chooseSettings();
    writeConfiguration();
    tellHost(true);
    startGateway();
}

Chaos::~Chaos()
{
    m_gateway.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // they know the timeline
}

qint64 Chaos::some(qint64 leastMs, qint64 mostMs)
{
    const double spread = std::log(static_cast<double>(mostMs) / static_cast<double>(leastMs));
    const double part = std::uniform_real_distribution<>(0, 1)(m_random);
    return static_cast<qint64>(static_cast<double>(leastMs) * std::exp(part * spread));
}

void Chaos::note(const QString& text)
{
    ++m_counts.troubles[text.section(':', 0, 0)];
    if (m_note)
        m_note(m_timeline.steadyMs(), text);
}

void Chaos::chooseSettings()
{
    m_limitBytes = happens(0.5) ? 1 << 20 : 100 << 20;
    m_settings =
        "[gateway]\nname = \"cabinet1\"\naudit = \"audit.jsonl\"\nstore = \"/store.db\"\n"
        "store-limit = \"" +
        QByteArray::number(m_limitBytes >> 20) +
        "M\"\nhistory-per-second = " + QByteArray::number(some(50, 1000)) + "\nstore-age = \"" +
        QByteArray::number(some(60, 600000)) + "s\"\nrefresh = \"" +
        QByteArray::number(some(600, 7200)) +
        "s\"\n[broker]\nurl = \"mqtt://localhost\"\nprotocol = \"" +
        (happens(0.3) ? "3.1.1" : "5") +
        "\"\n[writes]\nallowed = true\nper-minute = 600\n[plain]\n[sparkplug]\ngroup = \"plant\"\n";
    if (m_hasHost)
        m_settings += "primary-host = \"scada\"\n";
}

void Chaos::writeConfiguration()
{
    std::map<QString, QByteArray> files = {{"fxgate.toml", m_settings}};
    for (const SimulatedLink& link : m_links) {
        const QByteArray name = linkName(link.number).toUtf8();
        files[name + ".csv"] = QByteArray::number(link.edition);
        if (link.isServed)
            files["fxgate.toml"] += "[link." + name + "]\nlink = \"sim:\"\ntags = \"" + name +
                                    ".csv\"\nwrites = true\n";
    }
    for (const auto& [name, content] : files) {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            m_findings.append("cannot write " + file.fileName());
    }
}

// Takes a link out of the configuration, puts it in, or changes its tag file.
void Chaos::changeLink(SimulatedLink& link, bool isServed)
{
    const QString name = linkName(link.number);
    const char* const change = !link.isServed ? " started" : isServed ? " restarted" : " stopped";
    note("reload: " + name + change);
    link.isServed = isServed;
    ++link.edition;
    writeConfiguration();
    const QString done = m_gateway->reload().text;
    m_witness.linkConfigured(link.number, isServed);
    if (done != "reload: " + name + change)
        m_findings.append("reload of " + name + change + ", it says: " + done);
}

void Chaos::startGateway()
{
    m_buses = std::make_unique<BusFactory>(m_environment);
    const auto makeBus = [this](FormKind kind, const Configuration& all, const Plant& plant) {
        std::unique_ptr<Bus> bus = m_buses->maker()(kind, all, plant);
        m_forms[kind == FormKind::Plain ? chaos::Plain : chaos::Sparkplug] = bus.get();
        return bus;
    };
    m_gateway = std::make_unique<Gateway>(m_folder.filePath("fxgate.toml"), makeBus, m_environment,
                                          [this](const QString& line) {
                                              if (m_note)
                                                  m_note(m_timeline.steadyMs(), "  log: " + line);
                                          });
    m_gateway->start();
}

std::array<qint64, forms> Chaos::dropped() const
{
    return {m_forms[chaos::Plain]->status().dropped, m_forms[chaos::Sparkplug]->status().dropped};
}

void Chaos::stopGateway()
{
    m_gateway->stop();
    m_witness.gatewayGone(m_timeline.steadyMs(), dropped());
    m_gateway.reset();
    m_buses.reset();
}

void Chaos::killGateway(bool withPower)
{
    MemoryDisk::Files files = m_disk.copy();
    const qint64 lastGoodMs = m_disk.isBad() ? m_diskGoodSinceMs : m_timeline.steadyMs();
    m_witness.gatewayGone(lastGoodMs - unconfirmedMs, dropped());
    m_gateway.reset();
    m_buses.reset();
    if (withPower)
        MemoryDisk::losePower(files, m_random);
    m_disk.restore(files);
}

void Chaos::runFor(qint64 timeMs)
{
    const qint64 endMs = m_timeline.steadyMs() + timeMs;
    while (m_timeline.steadyMs() < endMs && findings().isEmpty()) {
        m_timeline.runUntil(m_timeline.steadyMs() + tickMs);
        m_gateway->tick();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_witness.look();
        if (!m_disk.isBad())
            m_diskGoodSinceMs = m_timeline.steadyMs();
        if (m_timeline.steadyMs() / 1000 % 10 == 0)
            measure();
    }
}

void Chaos::measure()
{
    m_counts.mostDiskBytes = std::max(m_counts.mostDiskBytes, m_disk.bytes());
    if (m_disk.bytes() > m_limitBytes + journalBytes)
        m_findings.append(QStringLiteral("the store has %1 bytes").arg(m_disk.bytes()));
    for (const Bus* const form : m_forms) {
        const BusStatus status = form->status();
        m_counts.mostUnconfirmed = std::max(m_counts.mostUnconfirmed, status.unconfirmed);
        m_counts.mostWaiting = std::max(m_counts.mostWaiting, status.waiting);
        if (status.unconfirmed > mostUnconfirmed)
            m_findings.append(QStringLiteral("%1 changes are unconfirmed").arg(status.unconfirmed));
    }
}

bool Chaos::isIdle() const
{
    return std::all_of(m_forms.begin(), m_forms.end(), [](const Bus* form) {
        return form->status().isConnected && form->status().waiting == 0;
    });
}

void Chaos::run(qint64 stormMs)
{
    const qint64 endMs = m_timeline.steadyMs() + stormMs;
    while (m_timeline.steadyMs() < endMs && findings().isEmpty()) {
        runFor(some(1000, happens(0.1) ? 600000 : 60000));
        if (happens(0.3))
            command();
        trouble();
    }
    calmDown();
    for (qint64 waited = 0;
         waited < longestCalmMs && findings().isEmpty() && (waited < 200000 || !isIdle());
         waited += 10000)
        runFor(10000);
    if (findings().isEmpty() && !isIdle())
        m_findings.append("what waits does not end");
    for (size_t form = 0; form < forms && findings().isEmpty(); ++form)
        if (m_witness.droppedTold(form) != dropped()[form])
            m_findings.append(QStringLiteral("%1 changes are counted as dropped, and %2 told")
                                  .arg(dropped()[form])
                                  .arg(m_witness.droppedTold(form)));
    m_counts.simulatedMs = m_timeline.steadyMs();
    if (!findings().isEmpty())
        return;  // no need to look on
    stopGateway();
    m_timeline.runUntil(m_timeline.steadyMs() + 10000);
    m_witness.finish();
}

void Chaos::calmDown()
{
    note("calm");
    m_disk.troubles = {};
    m_broker.start();
    m_broker.pause(false);
    m_broker.silence(0);
    m_broker.refuseSubscriptions(false);
    tellHost(true);
    for (SimulatedLink& link : m_links) {
        link.lostUntilMs = link.absentUntilMs = 0;
        link.badUntilMs = {};
        if (!link.isServed)
            changeLink(link, true);
    }
}

void Chaos::trouble()
{
    switch (below(m_random, 13)) {
    case 0:
    case 1:
    case 2:
    case 3:
        return troubleOfBroker(below(m_random, 6));
    case 4:
    case 5:
    case 6:
    case 7:
        return troubleOfWorker(below(m_random, 7));
    case 8:
    case 9:
        return troubleOfDisk(below(m_random, 5));
    case 10:
        return troubleOfClock();
    case 11: {
        SimulatedLink& link = m_links[static_cast<size_t>(below(m_random, int(m_links.size())))];
        return changeLink(link, !link.isServed || m_links.size() == 1 || link.number == 0 ||
                                    happens(0.5));
    }
    default:
        break;
    }
    const int kind = below(m_random, 3);
    note(kind == 0 ? "gateway restarted" : kind == 1 ? "gateway killed" : "power lost");
    if (kind == 0)
        stopGateway();
    else
        killGateway(kind == 2);
    m_timeline.runUntil(m_timeline.steadyMs() + some(100, 20000));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    startGateway();
}

void Chaos::troubleOfBroker(int kind)
{
    m_witness.disturbed();
    const qint64 timeMs = some(500, happens(0.1) ? 1800000 : 300000);
    switch (kind) {
    case 0:
    case 1:
        note("broker killed");
        m_broker.kill(happens(0.5));
        m_timeline.after(timeMs, this, [this] {
            m_broker.start();
            tellHost(true);
            m_witness.disturbed();
        });
        break;
    case 2:
        note("broker stands still");
        m_broker.pause(true);
        m_timeline.after(std::min<qint64>(timeMs, 40000), this, [this] {
            m_broker.pause(false);
            m_witness.disturbed();
        });
        break;
    case 3:
        note("network silent");
        m_broker.silence(std::min<qint64>(timeMs, 60000));
        break;
    case 4:
        note("connections reset");
        m_broker.resetConnections();
        break;
    default:
        note("rights taken away");
        m_broker.refuseSubscriptions(true);
        m_broker.resetConnections();
        m_timeline.after(timeMs / 5, this, [this] {
            m_broker.refuseSubscriptions(false);
            m_witness.disturbed();
        });
        break;
    }
}

void Chaos::troubleOfWorker(int kind)
{
    SimulatedLink& link = m_links[static_cast<size_t>(below(m_random, int(m_links.size())))];
    const qint64 untilMs = m_timeline.steadyMs() + some(500, 120000);
    switch (kind) {
    case 0:
    case 1:
        note("line lost");
        link.lostUntilMs = untilMs;
        break;
    case 2:
        note("register refused");
        link.badUntilMs[static_cast<size_t>(below(m_random, tagsOfLink))] = untilMs;
        break;
    case 3:
        note("worker hangs");
        if (link.worker)
            link.worker->hang(some(500, 40000));
        break;
    case 4:
        note("worker dies");
        if (happens(0.5))
            link.absentUntilMs = untilMs;
        if (link.worker)
            link.worker->die();
        break;
    case 5:
        note("worker floods");
        if (link.worker)
            link.worker->flood();
        break;
    default:
        note("worker talks nonsense");
        if (link.worker)
            link.worker->talkNonsense();
        break;
    }
}

void Chaos::troubleOfDisk(int kind)
{
    MemoryDisk::Troubles troubles;
    troubles.isFull = kind <= 1;
    troubles.isReadOnly = kind == 2;
    troubles.isSyncRefused = kind == 3;
    troubles.slowMs = kind == 4 ? static_cast<int>(some(50, 3000)) : 0;
    const char* const names[] = {"full", "full", "read-only", "not synchronised", "slow"};
    note(QStringLiteral("disk ") + names[kind]);
    m_disk.troubles = troubles;
    m_timeline.after(some(1000, kind == 4 ? 60000 : 600000), this,
                     [this] { m_disk.troubles = {}; });
}

void Chaos::troubleOfClock()
{
    const qint64 byMs = (happens(0.5) ? 1 : -1) * some(100, happens(0.1) ? 864000000 : 7200000);
    note("clock set: by " + QString::number(byMs) + " ms");
    m_timeline.setClock(byMs);
}

void Chaos::tellHost(bool isOnline)
{
    if (!m_hasHost)
        return;
    m_witness.setHostOnline(isOnline);
    m_broker.publish({hostTopic,
                      QByteArray(R"({"online":)") + (isOnline ? "true" : "false") +
                          R"(,"timestamp":)" + QByteArray::number(m_timeline.steadyMs()) + "}",
                      1, true});
}

// What others ask of the gateway, in good faith or not.
void Chaos::command()
{
    const QString link = linkName(below(m_random, int(m_links.size())));
    const qint64 number = ++m_writes;
    const QJsonValue value = valueOf({number, link.mid(5).toInt(), setpoint});
    const QByteArray write = "{\"v\":" + QByteArray::number(value.toDouble(), 'f', 0) +
                             ",\"id\":\"" + QByteArray::number(number) + "\"}";
    Metric metric;
    metric.name = tagName(setpoint);
    metric.datatype = Datatype::Int64;
    metric.value = value;
    const int kind = below(m_random, 6);
    const QString topic = "fx/cabinet1/" + link + '/';
    m_witness.asked(number, kind < 3 || kind == 4, kind == 4);
    switch (kind) {
    case 0:
    case 1:
        note("write asked for");
        return m_broker.publish({topic + "tag3/set", write, 1, false});
    case 2:
        note("command of Sparkplug");
        return m_broker.publish(
            {"spBv1.0/plant/DCMD/cabinet1/" + link, encoded({{}, {}, {metric}}), 0, false});
    case 3:
        note("write asked for: not allowed");
        return m_broker.publish({topic + "tag0/set", write, 1, false});
    case 4:
        note("write retained");
        return m_broker.publish({topic + "tag3/set", write, 1, true});
    default:
        break;
    }
    if (m_hasHost && happens(0.5)) {
        note("host goes");
        tellHost(false);
        m_timeline.after(some(1000, 60000), this, [this] { tellHost(true); });
        return;
    }
    note("rebirth asked for");
    metric.name = "Node Control/Rebirth";
    metric.datatype = Datatype::Boolean;
    metric.value = true;
    for (int times = happens(0.3) ? 50 : 1; times > 0; --times)
        m_broker.publish({"spBv1.0/plant/NCMD/cabinet1", encoded({{}, {}, {metric}}), 0, false});
}

}  // namespace chaos
