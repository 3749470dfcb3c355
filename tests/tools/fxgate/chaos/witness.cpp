// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "witness.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

namespace chaos {

using fxgate::Message;
using fxgate::Quality;

namespace {

constexpr qint64 settledMs = 20000;     // after a trouble, before the views are judged
constexpr qint64 comesBackMs = 100000;  // the longest pause, and the longest attempt
constexpr qint64 becomesBadMs = 3000;   // after the last word of a worker
constexpr qint64 graceMs = 2000;        // for a tick and the way to the broker
constexpr size_t mostBirths = 20;       // in ten seconds
constexpr int mostFindings = 10;

const char* const formNames[] = {"plain", "sparkplug"};

int numberAfter(const QString& text, const char* prefix, int limit)
{
    bool isNumber = false;
    const int number = text.mid(static_cast<int>(qstrlen(prefix))).toInt(&isNumber);
    return text.startsWith(prefix) && isNumber && number >= 0 && number < limit ? number : -1;
}

Quality qualityOf(const QString& text)
{
    return text == "good" ? Quality::Good : text == "stale" ? Quality::Stale : Quality::Bad;
}

}  // namespace

QString linkName(int link)
{
    return "press" + QString::number(link);
}

QString tagName(int tag)
{
    return "tag" + QString::number(tag);
}

fxgate::ValueKind kindOf(int tag)
{
    return tag == 1   ? fxgate::ValueKind::Real
           : tag == 2 ? fxgate::ValueKind::Text
                      : fxgate::ValueKind::Integer;
}

QJsonValue valueOf(const TagCode& code)
{
    const qint64 number = code.number * 100 + code.link * 10 + code.tag;
    if (kindOf(code.tag) == fxgate::ValueKind::Text)
        return "c" + QString::number(number);
    const double half = kindOf(code.tag) == fxgate::ValueKind::Real ? 0.5 : 0;
    return static_cast<double>(number) + half;
}

TagCode codeOf(const QJsonValue& value)
{
    if (!value.isDouble() && !value.isString())
        return {};
    const qint64 number = value.isString() ? value.toString().mid(1).toLongLong()
                                           : static_cast<qint64>(value.toDouble());
    return {number / 100, static_cast<int>(number / 10 % 10), static_cast<int>(number % 10)};
}

Witness::Witness(Timeline& timeline, const SimulatedBroker& broker, int links)
    : m_timeline(timeline), m_broker(broker), m_links(links)
{}

void Witness::find(const QString& finding)
{
    if (m_findings.size() < mostFindings)
        m_findings.append(QStringLiteral("%1 s: ").arg(
                              static_cast<double>(m_timeline.steadyMs()) / 1000, 0, 'f', 3) +
                          finding);
}

void Witness::workerBegins(int link)
{
    m_links[link].isAlive = true;
    m_links[link].isUp = false;
    m_links[link].steadySinceMs = m_links[link].heardMs = m_timeline.steadyMs();
}

void Witness::workerHeard(int link)
{
    LinkTruth& truth = m_links[link];
    const qint64 now = m_timeline.steadyMs();
    if (now - truth.heardMs > becomesBadMs / 2)
        truth.steadySinceMs = now;
    truth.heardMs = now;
}

void Witness::workerToldState(int link, bool isUp)
{
    m_links[link].isUp = isUp;
    m_links[link].steadySinceMs = m_timeline.steadyMs();
}

void Witness::workerTold(int link, int tag, qint64 number, Quality quality, qint64 timeMs)
{
    Told& told = m_links[link].tags[static_cast<size_t>(tag)];
    const bool isGood = quality == Quality::Good;
    const bool isDue = !isGood || number > told.number;
    if (isGood != told.isGood)
        told.sinceMs = m_timeline.steadyMs();
    told.isGood = isGood;
    if (isGood && number != told.number) {
        told.number = number;
        told.numberMs = m_timeline.steadyMs();
    }
    Fate& fate = m_fates[{link, tag, told.number, static_cast<int>(quality), timeMs}];
    fate.toldMs = m_timeline.steadyMs();
    fate.isDue = {isDue || fate.isDue[0], isDue || fate.isDue[1]};
    m_counts.changes += isDue;
}

void Witness::workerGone(int link)
{
    m_links[link].isAlive = false;
    m_links[link].steadySinceMs = m_timeline.steadyMs();
}

// Its values are not known any more.
void Witness::linkConfigured(int link, bool isServed)
{
    m_links[link].isServed = isServed;
    for (Told& told : m_links[link].tags)
        told.number = -1;
    disturbed();
}

void Witness::setHostOnline(bool isOnline)
{
    m_isHostOnline = isOnline;
    disturbed();
}

void Witness::read(const Message& message, int session)
{
    const QByteArray all =
        QByteArray::number(m_timeline.steadyMs()) + message.topic.toUtf8() + message.payload;
    for (const char byte : all)
        m_digest = (m_digest ^ static_cast<quint8>(byte)) * 1099511628211ULL;
    if (session < 0)
        return;  // of somebody else
    const QStringList levels = message.topic.split('/');
    if (levels[0] == "fx")
        readPlain(levels, message, session);
    else
        readSparkplug(levels, message, session);
}

void Witness::readReply(const Message& message)
{
    const QJsonObject reply = QJsonDocument::fromJson(message.payload).object();
    const qint64 number = reply["id"].toString().toLongLong();
    if (reply["id"].toString().isEmpty())
        return;
    ++m_counts.replies;
    if (++m_replies[number] > 1 && !m_isRetained[number])
        find(QStringLiteral("write %1 is answered twice").arg(number));
    const QString outcome = reply["outcome"].toString();
    if ((outcome == "done") > (m_written[number] > 0) ||
        (outcome == "refused" && m_written[number] > 0 && !m_isRetained[number] &&
         !reply["reason"].toString().startsWith("PLC")))
        find(QStringLiteral("write %1 is said to be %2, and was carried out %3 times")
                 .arg(number)
                 .arg(outcome)
                 .arg(m_written[number]));
}

void Witness::readPlain(const QStringList& levels, const Message& message, int session)
{
    FormView& view = m_views[Plain];
    const QJsonObject object = QJsonDocument::fromJson(message.payload).object();
    if (levels.size() == 3) {
        const bool isOnline = object["state"] == "online";
        view.droppedTold = static_cast<qint64>(object["dropped"].toDouble());
        if (isOnline && view.session != session) {
            view.sinceMs = m_timeline.steadyMs();
            view.lastRow = 0;
        }
        view.session = isOnline ? session : 0;
        return;
    }
    if (levels.last() == "reply")
        return readReply(message);
    const int link = numberAfter(levels[2], "press", m_links.size());
    const int tag = numberAfter(levels[3], "tag", tagsOfLink);
    if (link < 0 || levels[3] == "state")
        return;
    if (tag < 0)
        return find("unknown topic " + message.topic);
    const Quality quality = qualityOf(object["q"].toString());
    const qint64 timeMs =
        QDateTime::fromString(object["t"].toString(), Qt::ISODateWithMs).toMSecsSinceEpoch();
    if (levels.size() == 5) {
        if (!object["historical"].toBool() || message.isRetained)
            find("history without its mark: " + message.topic);
        const qint64 row = static_cast<qint64>(object["n"].toDouble());
        if (row <= view.lastRow)
            find(QStringLiteral("history out of order: row %1").arg(row));
        view.lastRow = row;
        return arrived(Plain, link, tag, object["v"], quality, timeMs,
                       object["repeat"].toBool() ? Marked : Historical);
    }
    if (message.payload.isEmpty() || object["why"] == "the link is starting")
        return static_cast<void>(view.shown[{link, tag}].quality = Quality::Bad);
    const bool isFirst = view.announced.insert({session, link, tag}).second;
    arrived(Plain, link, tag, object["v"], quality, timeMs, isFirst ? Announced : Live);
}

void Witness::readSparkplug(const QStringList& levels, const Message& message, int session)
{
    FormView& view = m_views[Sparkplug];
    fxgate::wire::Payload payload;
    if (levels.size() < 4 || levels[1] == "STATE")
        return;
    if (!payload.ParseFromArray(message.payload.constData(), message.payload.size()))
        return find("a payload that cannot be read: " + message.topic);
    const QString& type = levels[2];
    if (type == "NDEATH") {
        view.session = 0;
        view.born.clear();
        return;
    }
    const int sequence = static_cast<int>(payload.seq());
    if (type == "NBIRTH") {
        if (sequence != 0)
            find("a birth with another number than 0");
        m_birthsMs.push_back(m_timeline.steadyMs());
        while (m_birthsMs.front() < m_timeline.steadyMs() - 10000)
            m_birthsMs.pop_front();
        if (m_birthsMs.size() > mostBirths)
            find("births without end");
        view.sinceMs = m_timeline.steadyMs();
        view.session = session;
        view.aliases.clear();
        view.born.clear();
        ++m_counts.births;
    } else if (sequence != (view.sequence + 1) % 256 || view.session != session) {
        find(
            QStringLiteral("%1 has number %2 after %3").arg(type).arg(sequence).arg(view.sequence));
    }
    view.sequence = sequence;
    const int link = levels.size() > 4 ? numberAfter(levels[4], "press", m_links.size()) : -1;
    if (type == "DDEATH")
        view.born.remove(link);
    if (type == "DBIRTH")
        view.born.insert(link);
    else if (type == "DDATA" && !view.born.contains(link))
        find("data of a link that is not born");
    for (const auto& metric : payload.metrics()) {
        if (metric.name() == "Dropped")
            view.droppedTold = static_cast<qint64>(metric.long_value());
        if (link >= 0)
            readMetric(type, link, metric);
    }
}

void Witness::readMetric(const QString& type, int link, const WireMetric& metric)
{
    QMap<quint64, QPair<int, int>>& aliases = m_views[Sparkplug].aliases;
    if (type == "DBIRTH") {
        const QPair<int, int> named = {
            link, numberAfter(QString::fromStdString(metric.name()), "tag", tagsOfLink)};
        if (aliases.value(metric.alias(), named) != named)
            find("an alias of two tags");
        aliases[metric.alias()] = named;
    }
    const auto name = aliases.value(metric.alias(), {-1, -1});
    if (name.first != link || name.second < 0)
        return find("an alias of another link");
    QJsonValue value;
    if (metric.has_long_value())
        value = static_cast<double>(metric.long_value());
    else if (metric.has_double_value())
        value = metric.double_value();
    else if (metric.has_string_value())
        value = QString::fromStdString(metric.string_value());
    Quality quality = Quality::Good;
    bool isRepeated = false;
    for (int property = 0; property < metric.properties().keys_size(); ++property) {
        const auto& held = metric.properties().values(property);
        if (metric.properties().keys(property) == "Quality")
            quality = held.int_value() == 500 ? Quality::Stale : Quality::Bad;
        isRepeated |= metric.properties().keys(property) == "Repeat" && held.boolean_value();
    }
    const Arrival how = type == "DBIRTH"          ? Announced
                        : !metric.is_historical() ? Live
                        : isRepeated              ? Marked
                                                  : Historical;
    arrived(Sparkplug, link, name.second, value, quality, static_cast<qint64>(metric.timestamp()),
            how);
}

void Witness::arrived(FormIndex form, int link, int tag, const QJsonValue& value, Quality quality,
                      qint64 timeMs, Arrival how)
{
    const QString text =
        QStringLiteral("%1 %2.%3 %4 quality %5 at %6")
            .arg(formNames[form], linkName(link), tagName(tag), value.toVariant().toString())
            .arg(int(quality))
            .arg(timeMs);
    const TagCode code = codeOf(value);
    if (code.number >= 0 && (code.link != link || code.tag != tag))
        return find("a value under another's name: " + text);
    const Key key(link, tag, code.number, static_cast<int>(quality), timeMs);
    if (quality == Quality::Good && m_fates.count(key) == 0)
        return find("a value that no worker told: " + text);
    Fate& fate = m_fates[key];
    quint8& arrivals = fate.arrivals[form];
    if ((how == Live || how == Historical) && (arrivals & (Live | Historical | Marked)) != 0)
        find("twice without a mark: " + text);
    arrivals |= how;
    m_counts.live += how == Live;
    m_counts.historical += how == Historical || how == Marked;
    m_counts.marked += how == Marked;
    if (how == Historical || how == Marked)
        return;
    Shown& shown = m_views[form].shown[{link, tag}];
    if (code.number >= 0 && code.number < shown.number)
        find(QStringLiteral("an old value looks new: %1 after change %2")
                 .arg(text)
                 .arg(shown.number));
    shown = {std::max(code.number, shown.number), quality};
}

void Witness::look()
{
    const qint64 now = m_timeline.steadyMs();
    if (!m_broker.isReachable() || now - m_timeline.blockedUntilMs() < 1000)
        m_disturbedMs = now;
    for (const FormIndex form : {Plain, Sparkplug})
        lookAt(form);
}

void Witness::lookAt(FormIndex form)
{
    const FormView& view = m_views[form];
    const qint64 now = m_timeline.steadyMs();
    if (form == Sparkplug && !m_isHostOnline)
        return;
    const int session =
        m_broker.liveSession(form == Plain ? "fxgate-cabinet1-plain" : "fxgate-plant-cabinet1");
    if (session == 0 || view.session != session) {
        if (now - m_disturbedMs > comesBackMs)
            find(QStringLiteral("%1 does not come back").arg(formNames[form]));
        return;
    }
    if (now - m_disturbedMs < settledMs || now - view.sinceMs < graceMs)
        return;
    for (int link = 0; link < m_links.size(); ++link) {
        for (int tag = 0; tag < tagsOfLink; ++tag)
            lookAtTag(form, link, tag);
        const QString topics = "fx/cabinet1/" + linkName(link) + '/';
        const auto kept = m_broker.retained().lowerBound(topics);
        if (!m_links[link].isServed && kept != m_broker.retained().end() &&
            kept.key().startsWith(topics) && !kept.key().endsWith("/set"))
            find("of a link that is not served the broker has " + kept.key());
    }
}

void Witness::lookAtTag(FormIndex form, int link, int tag)
{
    const qint64 now = m_timeline.steadyMs();
    const LinkTruth& truth = m_links[link];
    const Told& told = truth.tags[static_cast<size_t>(tag)];
    const Shown shown = m_views[form].shown.value({link, tag});
    const bool looksGood =
        shown.quality == Quality::Good && (form == Plain || m_views[form].born.contains(link));
    ++m_counts.looks;
    qint64 badSinceMs = now;
    if (!truth.isAlive)
        badSinceMs = truth.steadySinceMs;
    else if (!told.isGood)
        badSinceMs = std::max(told.sinceMs, truth.steadySinceMs);
    badSinceMs = std::min(badSinceMs, truth.heardMs + becomesBadMs);
    if (looksGood && now - badSinceMs > graceMs)
        find(QStringLiteral("%1 %2.%3 looks good, and is not since %4 ms")
                 .arg(formNames[form], linkName(link), tagName(tag))
                 .arg(now - badSinceMs));
    const bool mustBeGood = truth.isAlive && truth.isUp && told.isGood &&
                            now - truth.heardMs < becomesBadMs / 2 &&
                            now - std::max(told.sinceMs, truth.steadySinceMs) > 3 * graceMs;
    if (mustBeGood &&
        (!looksGood || (now - told.numberMs > graceMs && shown.number != told.number)))
        find(QStringLiteral("%1 %2.%3 shows change %4 with quality %5 and not %6")
                 .arg(formNames[form], linkName(link), tagName(tag))
                 .arg(shown.number)
                 .arg(looksGood ? 0 : int(shown.quality))
                 .arg(told.number));
}

void Witness::gatewayGone(qint64 keptSinceMs, const std::array<qint64, forms>& dropped)
{
    for (size_t form = 0; form < forms; ++form)
        m_dropped[form] += dropped[form];
    for (auto& [key, fate] : m_fates) {
        for (size_t form = 0; form < forms; ++form) {
            if (fate.toldMs >= keptSinceMs && fate.isDue[form] && fate.arrivals[form] == 0) {
                fate.isDue[form] = false;
                ++m_counts.excused;
            }
        }
    }
    for (LinkTruth& link : m_links) {
        link.isAlive = false;
        for (Told& told : link.tags)
            told.number = -1;
    }
    disturbed();
}

void Witness::finish()
{
    for (size_t form = 0; form < forms; ++form) {
        if (m_views[form].session != 0)
            find(QStringLiteral("%1 has ended and did not say so").arg(formNames[form]));
        qint64 missing = 0;
        QString first;
        for (const auto& [key, fate] : m_fates) {
            m_counts.arrived += fate.isDue[form] && fate.arrivals[form] != 0;
            if (!fate.isDue[form] || fate.arrivals[form] != 0)
                continue;
            if (++missing == 1)
                first = QStringLiteral("%1.%2 change %3 quality %4, told at %5 s")
                            .arg(linkName(std::get<0>(key)), tagName(std::get<1>(key)))
                            .arg(std::get<2>(key))
                            .arg(std::get<3>(key))
                            .arg(static_cast<double>(fate.toldMs) / 1000);
        }
        m_counts.missing += missing;
        m_counts.dropped += m_dropped[form];
        if (missing > m_dropped[form])
            find(QStringLiteral("%1: %2 changes are lost, and %3 counted as dropped; the first: %4")
                     .arg(formNames[form])
                     .arg(missing)
                     .arg(m_dropped[form])
                     .arg(first));
    }
    for (const auto& [number, mayBeDone] : m_mayBeDone) {
        ++m_counts.writes;
        if (m_written[number] > (mayBeDone ? 1 : 0))
            find(QStringLiteral("write %1 was carried out %2 times, allowed %3")
                     .arg(number)
                     .arg(m_written[number])
                     .arg(mayBeDone));
    }
}

}  // namespace chaos
