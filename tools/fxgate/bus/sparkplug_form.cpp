// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/bus/sparkplug_form.h"

#include "tools/fxgate/bus/flat_json.h"

#include <QJsonObject>

#include <algorithm>

namespace fxgate {

namespace {

constexpr int numbers = 256;               // of seq and bdSeq
constexpr int mostMetricsInMessage = 500;  // some 20 KiB
constexpr int mostCommandBytes = 64 * 1024;
constexpr double latestMs = 1e15;  // about the year 33658

Datatype datatypeOf(ValueKind kind)
{
    switch (kind) {
    case ValueKind::Bit:
        return Datatype::Boolean;
    case ValueKind::Integer:
        return Datatype::Int64;  // holds a 32-bit register with and without sign
    case ValueKind::Real:
        return Datatype::Double;
    case ValueKind::Text:
        break;
    }
    return Datatype::String;
}

bool isSameTag(const ServedTag& one, const ServedTag& other)
{
    return one.kind == other.kind && one.unit == other.unit && one.isWritable == other.isWritable;
}

// What births and data have in common.
Metric metricOf(const ServedTag& tag, quint64 alias, const Sample& sample, qint64 nowMs)
{
    Metric metric;
    metric.alias = alias;
    metric.datatype = datatypeOf(tag.kind);
    metric.timeMs = sample.timeMs == 0 ? nowMs : sample.timeMs;  // 0: never read
    metric.value = sample.value;
    metric.quality = sample.quality;
    return metric;
}

}  // namespace

SparkplugForm::SparkplugForm(const SparkplugSettings& settings, const Plant& plant)
    : m_settings(settings), m_plant(plant)
{}

QString SparkplugForm::clientId() const
{
    return "fxgate-" + m_settings.group + '-' + m_settings.node;
}

QByteArray SparkplugForm::memory() const
{
    return QByteArray::number(m_connects);
}

void SparkplugForm::recall(const QByteArray& memory)
{
    bool isNumber = false;
    const int connects = memory.toInt(&isNumber);
    if (isNumber && connects >= 0 && connects < numbers)
        m_connects = connects;
}

QString SparkplugForm::topic(const QString& type, const QString& device) const
{
    const QString node = "spBv1.0/" + m_settings.group + '/' + type + '/' + m_settings.node;
    return device.isEmpty() ? node : node + '/' + device;
}

// A birth and the death of the same connection have the same number.
Metric SparkplugForm::birthAndDeath() const
{
    Metric metric;
    metric.name = QStringLiteral("bdSeq");
    metric.datatype = Datatype::Int64;
    metric.tellsDatatype = true;
    metric.value = m_connects;
    return metric;
}

Message SparkplugForm::will(qint64 /*nowMs*/)
{
    m_connects = (m_connects + 1) % numbers;
    return {topic(QStringLiteral("NDEATH")), encoded({{}, {}, {birthAndDeath()}}), 1, false};
}

void SparkplugForm::notConnected()
{
    m_connects = (m_connects + numbers - 1) % numbers;
}

QStringList SparkplugForm::subscriptions() const
{
    QStringList topics = {topic(QStringLiteral("NCMD"))};
    for (auto link = m_plant.begin(); link != m_plant.end(); ++link)
        if (std::any_of(link->tags.begin(), link->tags.end(),
                        [](const ServedTag& tag) { return tag.isWritable; }))
            topics.append(topic(QStringLiteral("DCMD"), link.key()));
    if (!m_settings.primaryHost.isEmpty())
        topics.append("spBv1.0/STATE/" + m_settings.primaryHost);
    return topics;
}

Messages SparkplugForm::connected(qint64 nowMs)
{
    m_isConnected = true;
    const bool waits = !m_settings.primaryHost.isEmpty() && !m_isHostOnline;
    return waits ? Messages() : births(nowMs);
}

void SparkplugForm::disconnected()
{
    m_isConnected = m_isBorn = m_isHostOnline = m_wasReborn = m_isRebirthDue = false;
    m_devices.clear();
}

// Before the first birth of a connection no death is owed.
Messages SparkplugForm::leaving(qint64 /*nowMs*/)
{
    if (!m_isBorn)
        return {};
    m_isBorn = false;
    m_devices.clear();
    return {{topic(QStringLiteral("NDEATH")), encoded({{}, {}, {birthAndDeath()}}), 1, false}};
}

Message SparkplugForm::numbered(const QString& topic, const QVector<Metric>& metrics, qint64 nowMs)
{
    const int sequence = m_sequence;
    m_sequence = (m_sequence + 1) % numbers;
    return {topic, encoded({nowMs, sequence, metrics}), 0, false};
}

Message SparkplugForm::nodeBirth(qint64 nowMs)
{
    Metric rebirth;
    rebirth.name = QStringLiteral("Node Control/Rebirth");
    rebirth.datatype = Datatype::Boolean;
    rebirth.value = false;
    Metric dropped;
    dropped.name = QStringLiteral("Dropped");
    dropped.datatype = Datatype::Int64;
    dropped.value = m_dropped;
    QVector<Metric> metrics = {birthAndDeath(), rebirth, dropped};
    for (Metric& metric : metrics) {
        metric.tellsDatatype = true;
        metric.timeMs = nowMs;
    }
    m_sequence = 0;
    return numbered(topic(QStringLiteral("NBIRTH")), metrics, nowMs);
}

quint64 SparkplugForm::aliasOf(const QString& link, const QString& tag)
{
    const QPair<QString, QString> key(link, tag);
    if (!m_aliases.contains(key))
        m_aliases.insert(key, static_cast<quint64>(m_aliases.size()) + 1);
    return m_aliases.value(key);
}

Message SparkplugForm::deviceBirth(const QString& link, qint64 nowMs)
{
    const LinkView view = m_plant.value(link);
    Device device;
    QVector<Metric> metrics;
    for (const ServedTag& tag : view.tags) {
        const Sample sample = view.samples.value(tag.name);
        const quint64 alias = aliasOf(link, tag.name);
        device.insert(tag.name, {tag, alias, sample});
        Metric metric = metricOf(tag, alias, sample, nowMs);
        metric.name = tag.name;
        metric.tellsDatatype = true;
        metric.unit = tag.unit;
        metrics.append(metric);
    }
    m_devices.insert(link, device);
    return numbered(topic(QStringLiteral("DBIRTH"), link), metrics, nowMs);
}

Message SparkplugForm::deviceDeath(const QString& link, qint64 nowMs)
{
    m_devices.remove(link);
    return numbered(topic(QStringLiteral("DDEATH"), link), {}, nowMs);
}

Messages SparkplugForm::births(qint64 nowMs)
{
    m_isBorn = true;
    m_isRebirthDue = false;
    m_devices.clear();
    Messages messages = {nodeBirth(nowMs)};
    for (auto link = m_plant.begin(); link != m_plant.end(); ++link)
        if (link->isUp && !link->tags.isEmpty())
            messages.append(deviceBirth(link.key(), nowMs));
    return messages;
}

// Whether the tags of a born device are those of its birth.
bool SparkplugForm::isUnchanged(const QString& link) const
{
    const Device device = m_devices.value(link);
    const QVector<ServedTag> tags = m_plant.value(link).tags;
    return device.size() == tags.size() &&
           std::all_of(tags.begin(), tags.end(), [&device](const ServedTag& tag) {
               const auto born = device.find(tag.name);
               return born != device.end() && isSameTag(born->tag, tag);
           });
}

Messages SparkplugForm::linkChanged(const QString& link, qint64 nowMs)
{
    if (!m_isBorn || m_isRebirthDue)
        return {};
    const LinkView view = m_plant.value(link);
    const bool isAlive = view.isUp && !view.tags.isEmpty();
    Messages messages;
    if (m_devices.contains(link) && !(isAlive && isUnchanged(link)))
        messages.append(deviceDeath(link, nowMs));
    if (isAlive && !m_devices.contains(link))
        messages.append(deviceBirth(link, nowMs));
    return messages;
}

Messages SparkplugForm::dropped(qint64 changes, qint64 nowMs)
{
    m_dropped = changes;
    if (!m_isBorn || m_isRebirthDue)
        return {};
    Metric metric;
    metric.name = QStringLiteral("Dropped");
    metric.datatype = Datatype::Int64;
    metric.tellsDatatype = m_settings.hasDatatypesAlways;
    metric.timeMs = nowMs;
    metric.value = changes;
    return {numbered(topic(QStringLiteral("NDATA")), {metric}, nowMs)};
}

Form::Sending SparkplugForm::sending(const QString& link, const QString& tag) const
{
    if (m_devices.contains(link) && !m_isRebirthDue)
        return m_devices[link].contains(tag) ? Sending::Now : Sending::Never;
    const auto view = m_plant.find(link);
    if (view == m_plant.end())
        return Sending::Never;
    const bool isServed =
        view->tags.isEmpty() ||  // not told yet
        std::any_of(view->tags.begin(), view->tags.end(),
                    [&tag](const ServedTag& served) { return served.name == tag; });
    return isServed ? Sending::Later : Sending::Never;
}

Messages SparkplugForm::data(const QString& link, QVector<Metric> metrics, qint64 nowMs)
{
    for (Metric& metric : metrics)
        metric.tellsDatatype = m_settings.hasDatatypesAlways;
    Messages messages;
    for (int first = 0; first < metrics.size(); first += mostMetricsInMessage)
        messages.append(numbered(topic(QStringLiteral("DDATA"), link),
                                 metrics.mid(first, mostMetricsInMessage), nowMs));
    return messages;
}

Messages SparkplugForm::values(const QVector<Change>& changes, qint64 nowMs)
{
    QMap<QString, QVector<Metric>> metrics;  // by link
    for (const Change& change : changes) {
        const auto device = m_devices.find(change.link);
        if (device == m_devices.end() || !device->contains(change.tag))
            continue;
        BornTag& born = (*device)[change.tag];
        if (isSame(born.told, change.sample))
            continue;  // the birth had it
        born.told = change.sample;
        metrics[change.link].append(metricOf(born.tag, born.alias, change.sample, nowMs));
    }
    Messages messages;
    for (auto link = metrics.begin(); link != metrics.end(); ++link) {
        std::stable_sort(link->begin(), link->end(), [](const Metric& one, const Metric& other) {
            return one.timeMs < other.timeMs;
        });
        messages += data(link.key(), *link, nowMs);
    }
    return messages;
}

Messages SparkplugForm::history(const QVector<StoredChange>& changes, qint64 nowMs)
{
    QMap<QString, QVector<Metric>> metrics;  // by link
    for (const StoredChange& stored : changes) {
        const BornTag born = m_devices.value(stored.change.link).value(stored.change.tag);
        Metric metric = metricOf(born.tag, born.alias, stored.change.sample, nowMs);
        metric.isHistorical = true;
        metric.isRepeated = stored.mayBeRepeated;
        metrics[stored.change.link].append(metric);
    }
    Messages messages;
    for (auto link = metrics.begin(); link != metrics.end(); ++link)
        messages += data(link.key(), *link, nowMs);
    return messages;
}

Received SparkplugForm::received(const Message& message, qint64 nowMs)
{
    if (!m_isConnected || message.payload.size() > mostCommandBytes)
        return {};
    if (!m_settings.primaryHost.isEmpty() &&
        message.topic == "spBv1.0/STATE/" + m_settings.primaryHost)
        return hostState(message.payload, nowMs);
    const std::optional<SparkplugPayload> payload = decoded(message.payload);
    if (!m_isBorn || !payload)
        return {};
    if (message.topic == topic(QStringLiteral("NCMD")))
        return message.isRetained ? Received() : nodeCommand(*payload, nowMs);
    for (auto device = m_devices.begin(); device != m_devices.end(); ++device)
        if (message.topic == topic(QStringLiteral("DCMD"), device.key()))
            return {{}, deviceCommand(device.key(), *payload, message), false};
    return {};
}

// A state with an earlier time than the last one is a late will: it says nothing of now.
Received SparkplugForm::hostState(const QByteArray& payload, qint64 nowMs)
{
    const QJsonObject state = flatJson(payload).value_or(QJsonValue()).toObject();
    const QJsonValue online = state[QStringLiteral("online")];
    const double timeMs = state[QStringLiteral("timestamp")].toDouble(-1);
    if (!online.isBool() || !(timeMs >= 0 && timeMs < latestMs))
        return {};
    if (m_hostTimeMs && static_cast<qint64>(timeMs) < *m_hostTimeMs)
        return {};
    m_hostTimeMs = static_cast<qint64>(timeMs);
    m_isHostOnline = online.toBool();
    if (m_isHostOnline && !m_isBorn)
        return {births(nowMs), {}, false};
    return {{}, {}, !m_isHostOnline && m_isBorn};
}

Received SparkplugForm::nodeCommand(const SparkplugPayload& payload, qint64 nowMs)
{
    for (const Metric& metric : payload.metrics) {
        if (metric.name == "Node Control/Rebirth" && metric.value == true) {
            m_isRebirthDue = true;
            return {m_wasReborn ? Messages() : rebirth(nowMs), {}, false};
        }
    }
    return {};
}

Messages SparkplugForm::rebirth(qint64 nowMs)
{
    m_wasReborn = m_isRebirthDue;
    return m_isBorn && m_isRebirthDue ? births(nowMs) : Messages();
}

Messages SparkplugForm::everySecond(qint64 nowMs)
{
    return rebirth(nowMs);
}

QVector<WriteRequest> SparkplugForm::deviceCommand(const QString& link,
                                                   const SparkplugPayload& payload,
                                                   const Message& message) const
{
    const Device device = m_devices.value(link);
    if (payload.metrics.size() > device.size())
        return {};  // it would take long to look them all up
    QVector<WriteRequest> requests;
    for (const Metric& metric : payload.metrics) {
        const auto born =
            std::find_if(device.begin(), device.end(), [&metric](const BornTag& candidate) {
                return metric.name.isEmpty() ? metric.alias == candidate.alias
                                             : metric.name == candidate.tag.name;
            });
        if (born == device.end() || !isOfKind(born->tag.kind, metric.value))
            continue;
        WriteRequest request;
        request.link = link;
        request.tag = born->tag.name;
        request.value = metric.value;
        request.sentMs = payload.timeMs;
        request.isRetained = message.isRetained;
        request.who = message.user;
        requests.append(request);
    }
    return requests;
}

// The new value in the next DDATA is the only answer that there is.
Messages SparkplugForm::reply(const WriteRequest& /*request*/, const WriteResult& /*result*/)
{
    return {};
}

}  // namespace fxgate
