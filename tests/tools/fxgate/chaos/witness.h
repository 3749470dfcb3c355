// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Knows what each worker has said, reads all that the broker gets, and finds what must not be: a
// change that is lost and not counted as dropped, one that comes twice without a mark, a value
// under another's name, an old value that looks new, a value that looks good and is not.
//
// Each value is a code: a number that grows with each change of its tag, the link and the tag.

#pragma once

#include "simulated_broker.h"
#include "tools/fxgate/plant.h"

#include <array>
#include <sparkplug.pb.h>

#include <set>

namespace chaos {

constexpr int tagsOfLink = 4;
constexpr int setpoint = 3;  // the tag that is written

struct TagCode
{
    qint64 number = -1;  // of the change; -1: no value
    int link = 0;
    int tag = 0;
};

QString linkName(int link);
QString tagName(int tag);
fxgate::ValueKind kindOf(int tag);
QJsonValue valueOf(const TagCode& code);
TagCode codeOf(const QJsonValue& value);

enum FormIndex
{
    Plain,
    Sparkplug,
};
constexpr int forms = 2;

class Witness
{
public:
    Witness(Timeline& timeline, const SimulatedBroker& broker, int links);

    // What the gateway hears of the workers, when it does.
    void workerBegins(int link);
    void workerHeard(int link);
    void workerToldState(int link, bool isUp);
    void workerTold(int link, int tag, qint64 number, fxgate::Quality quality, qint64 timeMs);
    void workerGone(int link);
    void written(qint64 number) { ++m_written[number]; }

    // What the broker gets.
    void read(const fxgate::Message& message, int session);

    // What was asked of the gateway.
    void asked(qint64 number, bool mayBeDone, bool isRetained)
    {
        m_mayBeDone[number] = mayBeDone;
        m_isRetained[number] = isRetained;
    }

    void look();  // several times a second
    qint64 droppedTold(size_t form) const { return m_views[form].droppedTold; }
    void disturbed() { m_disturbedMs = m_timeline.steadyMs(); }
    void setHostOnline(bool isOnline);
    void linkConfigured(int link, bool isServed);  // anew

    // The gateway is gone. What it had told nobody and could not store yet may be lost.
    void gatewayGone(qint64 keptSinceMs, const std::array<qint64, forms>& dropped);
    void finish();

    struct Counts
    {
        qint64 changes = 0, arrived = 0, live = 0, historical = 0, marked = 0, births = 0;
        qint64 missing = 0, dropped = 0, excused = 0, looks = 0, writes = 0, replies = 0;
    };
    const Counts& counts() const { return m_counts; }
    const QStringList& findings() const { return m_findings; }
    quint64 digest() const { return m_digest; }

private:
    enum Arrival : quint8
    {
        Announced = 1,
        Live = 2,
        Historical = 4,
        Marked = 8,
    };
    using WireMetric = fxgate::wire::Payload::Metric;
    using Key = std::tuple<int, int, qint64, int, qint64>;  // link, tag, number, quality, time
    struct Fate
    {
        qint64 toldMs = 0;
        std::array<bool, forms> isDue = {};
        std::array<quint8, forms> arrivals = {};
    };
    struct Told
    {
        qint64 number = -1;  // newest
        bool isGood = false;
        qint64 sinceMs = 0;  // of this quality
        qint64 numberMs = 0;
    };
    struct Shown
    {
        qint64 number = -1;
        fxgate::Quality quality = fxgate::Quality::Bad;
    };
    struct LinkTruth
    {
        bool isAlive = false, isUp = false, isServed = true;
        qint64 heardMs = 0;
        qint64 steadySinceMs = 0;  // no gap, no change of state since
        std::array<Told, tagsOfLink> tags;
    };
    struct FormView
    {
        int session = 0;  // that is online
        qint64 sinceMs = 0;
        qint64 lastRow = 0;
        int sequence = 0, bdSeq = -1;
        QMap<quint64, QPair<int, int>> aliases;
        QSet<int> born;
        QMap<QPair<int, int>, Shown> shown;
        std::set<std::tuple<int, int, int>> announced;  // session, link, tag
        qint64 droppedTold = 0;
    };

    void readPlain(const QStringList& levels, const fxgate::Message& message, int session);
    void readReply(const fxgate::Message& message);
    void readMetric(const QString& type, int link, const WireMetric& metric);
    void readSparkplug(const QStringList& levels, const fxgate::Message& message, int session);
    void arrived(FormIndex form, int link, int tag, const QJsonValue& value,
                 fxgate::Quality quality, qint64 timeMs, Arrival how);
    void lookAt(FormIndex form);
    void lookAtTag(FormIndex form, int link, int tag);
    void find(const QString& finding);

    Timeline& m_timeline;
    const SimulatedBroker& m_broker;
    QVector<LinkTruth> m_links;
    std::array<FormView, forms> m_views;
    std::map<Key, Fate> m_fates;
    std::array<qint64, forms> m_dropped = {};
    std::map<qint64, int> m_written, m_replies;
    std::map<qint64, bool> m_mayBeDone, m_isRetained;
    std::deque<qint64> m_birthsMs;  // of the last seconds
    qint64 m_disturbedMs = 0;
    bool m_isHostOnline = true;
    Counts m_counts;
    QStringList m_findings;
    quint64 m_digest = 14695981039346656037ULL;
};

}  // namespace chaos
