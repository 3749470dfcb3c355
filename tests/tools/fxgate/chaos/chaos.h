// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One seed: a whole gateway with its links, its store and both forms, on simulated time, among
// troubles of lines, workers, broker, network, disk, power and clock. Then the troubles end, and
// all that waits must arrive.

#pragma once

#include "memory_disk.h"
#include "simulated_worker.h"
#include "tools/fxgate/bus/form_bus.h"

#include <QTemporaryDir>

namespace chaos {

using Note = std::function<void(qint64 steadyMs, const QString& text)>;

struct WorldCounts
{
    std::map<QString, qint64> troubles;
    qint64 simulatedMs = 0;
    qint64 mostDiskBytes = 0, mostWaiting = 0, mostUnconfirmed = 0;
};

class Chaos
{
public:
    Chaos(unsigned int seed, const Note& note);
    ~Chaos();

    void run(qint64 stormMs);

    const Witness& witness() const { return m_witness; }
    const WorldCounts& counts() const { return m_counts; }
    QStringList findings() const { return m_findings + m_witness.findings(); }

private:
    void chooseSettings();
    void writeConfiguration();
    void startGateway();
    void stopGateway();
    void killGateway(bool withPower);
    std::array<qint64, forms> dropped() const;

    void runFor(qint64 timeMs);
    void measure();
    bool isIdle() const;
    void trouble();
    void troubleOfBroker(int kind);
    void troubleOfWorker(int kind);
    void troubleOfDisk(int kind);
    void troubleOfClock();
    void changeLink(SimulatedLink& link, bool isServed);
    void command();
    void tellHost(bool isOnline);
    void calmDown();
    void note(const QString& text);
    qint64 some(qint64 leastMs, qint64 mostMs);
    bool happens(double probability) { return chance(m_random, probability); }

    Random m_random;
    Note m_note;
    Timeline m_timeline;
    MemoryDisk m_disk;
    SimulatedBroker m_broker;
    std::vector<SimulatedLink> m_links;
    Witness m_witness;
    QTemporaryDir m_folder;
    fxgate::Environment m_environment;
    std::unique_ptr<fxgate::BusFactory> m_buses;
    std::unique_ptr<fxgate::Gateway> m_gateway;
    std::array<fxgate::Bus*, forms> m_forms = {};
    bool m_hasHost;
    QByteArray m_settings;  // of the configuration, all but the links
    qint64 m_limitBytes = 0;
    qint64 m_diskGoodSinceMs = 0;
    qint64 m_writes = 0;
    WorldCounts m_counts;
    QStringList m_findings;
};

}  // namespace chaos
