// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/bus/plain_form.h"

#include "tools/fxgate/bus/flat_json.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace fxgate {

namespace {

constexpr int mostIdCharacters = 128;
const QString stateTopic = QStringLiteral("state");  // of a link, where a tag of this name would be

QString timeText(qint64 timeMs)
{
    return QDateTime::fromMSecsSinceEpoch(timeMs, Qt::UTC).toString(Qt::ISODateWithMs);
}

QByteArray compact(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QString qualityText(Quality quality)
{
    switch (quality) {
    case Quality::Good:
        return QStringLiteral("good");
    case Quality::Stale:
        return QStringLiteral("stale");
    case Quality::Bad:
        break;
    }
    return QStringLiteral("bad");
}

QString outcomeText(WriteResult::Outcome outcome)
{
    switch (outcome) {
    case WriteResult::Outcome::Done:
        return QStringLiteral("done");
    case WriteResult::Outcome::Refused:
        return QStringLiteral("refused");
    case WriteResult::Outcome::Failed:
        return QStringLiteral("failed");
    case WriteResult::Outcome::Unknown:
        break;
    }
    return QStringLiteral("unknown");
}

QJsonObject sampleObject(const Sample& sample)
{
    QJsonObject object = {{QStringLiteral("v"), sample.value},
                          {QStringLiteral("q"), qualityText(sample.quality)},
                          {QStringLiteral("t"), timeText(sample.timeMs)}};
    if (sample.quality != Quality::Good)
        object.insert(QStringLiteral("why"), sample.reason);
    return object;
}

// A time as a text or as a number of milliseconds.
std::optional<qint64> timeOf(const QJsonValue& value)
{
    const double number = value.toDouble(-1);
    if (number >= 0 && number < 1e15)
        return static_cast<qint64>(number);
    const QDateTime time = QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
    return time.isValid() ? std::optional<qint64>(time.toMSecsSinceEpoch()) : std::nullopt;
}

}  // namespace

PlainForm::PlainForm(const QString& prefix, const QString& gateway, const Plant& plant)
    : m_gateway(gateway), m_root(prefix + '/' + gateway + '/'), m_plant(plant)
{}

QByteArray PlainForm::memory() const
{
    QStringList lines;
    for (auto link = m_retained.begin(); link != m_retained.end(); ++link)
        for (const QString& tag : link.value())
            lines.append(link.key() + '/' + tag);
    lines.sort();
    return lines.join('\n').toUtf8();
}

void PlainForm::recall(const QByteArray& memory)
{
    for (const QString& line : QString::fromUtf8(memory).split('\n', Qt::SkipEmptyParts))
        m_retained[line.section('/', 0, 0)].insert(line.section('/', 1));
}

Message PlainForm::state(const QString& state, qint64 nowMs) const
{
    return {m_root + "state",
            compact({{QStringLiteral("state"), state},
                     {QStringLiteral("dropped"), m_dropped},
                     {QStringLiteral("t"), timeText(nowMs)}}),
            1, true};
}

Message PlainForm::will(qint64 nowMs)
{
    return state(QStringLiteral("offline"), nowMs);
}

Messages PlainForm::leaving(qint64 nowMs)
{
    return {state(QStringLiteral("offline"), nowMs)};
}

QStringList PlainForm::subscriptions() const
{
    return {m_root + "+/+/set"};
}

Message PlainForm::linkState(const QString& link, qint64 nowMs) const
{
    const LinkView view = m_plant.value(link);
    QJsonObject object = {
        {QStringLiteral("state"), view.isUp ? QStringLiteral("up") : QStringLiteral("down")},
        {QStringLiteral("t"), timeText(view.sinceMs == 0 ? nowMs : view.sinceMs)}};
    if (!view.isUp)
        object.insert(QStringLiteral("why"), view.reason);
    return {m_root + link + '/' + stateTopic, compact(object), 1, true};
}

void PlainForm::disconnected()
{
    m_told.clear();
    m_deleted.clear();
}

// What was deleted stays known until then: the broker may have gone before it read that.
bool PlainForm::confirmed()
{
    const bool hasChanged = !m_deleted.isEmpty();
    for (const QString& topic : qAsConst(m_deleted)) {
        const QString link = topic.section('/', 0, 0);
        m_retained[link].remove(topic.section('/', 1));
        if (m_retained[link].isEmpty())
            m_retained.remove(link);
    }
    m_deleted.clear();
    return hasChanged;
}

void PlainForm::retain(const QString& link, const QString& tag)
{
    m_retained[link].insert(tag);
    m_deleted.remove(link + '/' + tag);
}

// The broker still has values of former runs: those of tags that are gone are deleted, those of
// tags that nobody has told of yet must not look good.
Messages PlainForm::outdated(const QString& link, qint64 nowMs)
{
    const LinkView view = m_plant.value(link);
    QSet<QString> configured;
    if (m_plant.contains(link))
        configured.insert(stateTopic);
    for (const ServedTag& tag : view.tags)
        configured.insert(tag.name);
    const bool isStarting = m_plant.contains(link) && view.tags.isEmpty();
    const Sample starting = {{}, Quality::Bad, QStringLiteral("the link is starting"), nowMs};
    Messages messages;
    for (const QString& tag : m_retained.value(link) - configured) {
        const QString topic = link + '/' + tag;
        if (m_deleted.contains(topic))
            continue;
        if (!isStarting)
            m_deleted.insert(topic);
        const QByteArray payload = isStarting ? compact(sampleObject(starting)) : QByteArray();
        messages.append({m_root + topic, payload, 1, true});
        m_told.remove(m_root + topic);
    }
    return messages;
}

Messages PlainForm::connected(qint64 nowMs)
{
    Messages messages = {state(QStringLiteral("online"), nowMs)};
    const QStringList links = m_retained.keys() + m_plant.keys();
    for (const QString& link : QSet<QString>(links.begin(), links.end())) {
        messages += linkChanged(link, nowMs);
        const LinkView view = m_plant.value(link);
        QVector<Change> changes;
        for (const ServedTag& tag : view.tags)
            if (view.samples.contains(tag.name))
                changes.append({link, tag.name, view.samples.value(tag.name)});
        messages += values(changes, nowMs);
    }
    return messages;
}

Messages PlainForm::linkChanged(const QString& link, qint64 nowMs)
{
    const Messages messages = outdated(link, nowMs);
    const auto view = m_plant.find(link);
    if (view == m_plant.end())
        return messages;
    retain(link, stateTopic);
    for (const ServedTag& tag : view->tags)
        retain(link, tag.name);
    return Messages{linkState(link, nowMs)} + messages;
}

Messages PlainForm::dropped(qint64 changes, qint64 nowMs)
{
    m_dropped = changes;
    return {state(QStringLiteral("online"), nowMs)};
}

Form::Sending PlainForm::sending(const QString& link, const QString& tag) const
{
    return m_plant.contains(link) && tag != stateTopic ? Sending::Now : Sending::Never;
}

Messages PlainForm::values(const QVector<Change>& changes, qint64 /*nowMs*/)
{
    Messages messages;
    for (const Change& change : changes) {
        const QString topic = m_root + change.link + '/' + change.tag;
        const Sample told = m_told.value(topic);
        if (change.tag == stateTopic || (m_told.contains(topic) && isSame(told, change.sample) &&
                                         told.reason == change.sample.reason))
            continue;
        m_told.insert(topic, change.sample);
        messages.append({topic, compact(sampleObject(change.sample)), 1, true});
    }
    return messages;
}

Messages PlainForm::history(const QVector<StoredChange>& changes, qint64 /*nowMs*/)
{
    Messages messages;
    for (const StoredChange& stored : changes) {
        QJsonObject object = sampleObject(stored.change.sample);
        object.insert(QStringLiteral("historical"), true);
        object.insert(QStringLiteral("n"), stored.row);
        if (stored.mayBeRepeated)
            object.insert(QStringLiteral("repeat"), true);
        messages.append({m_root + stored.change.link + '/' + stored.change.tag + "/history",
                         compact(object), 1, false});
    }
    return messages;
}

PlainWrite plainWrite(const QByteArray& payload)
{
    if (payload.size() > mostJsonBytes)
        return {{}, {}, {}, QStringLiteral("longer than %1 bytes").arg(mostJsonBytes)};
    const std::optional<QJsonValue> json = flatJson(payload);
    if (!json)
        return {{}, {}, {}, QStringLiteral("not JSON; use for example {\"v\":12.5}")};
    const QJsonObject object = json->toObject();
    PlainWrite write;
    write.value = json->isObject() ? object[QStringLiteral("v")] : *json;
    write.id = object[QStringLiteral("id")].toVariant().toString();
    const QJsonValue time = object[QStringLiteral("t")];
    write.sentMs = timeOf(time);
    if (!write.value.isBool() && !write.value.isDouble() && !write.value.isString())
        write.mistake = QStringLiteral("has no value; use for example {\"v\":12.5}");
    else if (write.id.size() > mostIdCharacters)
        write.mistake = QStringLiteral("its id is longer than %1 characters").arg(mostIdCharacters);
    else if (!time.isUndefined() && !write.sentMs)
        write.mistake = QStringLiteral("its time is not like 2026-11-22T10:00:00.123Z");
    return write;
}

Received PlainForm::received(const Message& message, qint64 nowMs)
{
    const QStringList levels = message.topic.mid(m_root.size()).split('/');
    if (!message.topic.startsWith(m_root) || levels.size() != 3 || levels[2] != "set" ||
        message.payload.isEmpty())
        return {};
    const PlainWrite write = plainWrite(message.payload);
    WriteRequest request;
    request.link = levels[0];
    request.tag = levels[1];
    request.value = write.value;
    request.id = write.id.left(mostIdCharacters);
    request.sentMs = write.sentMs;
    request.isRetained = message.isRetained;
    request.who = message.user;
    request.replyTopic = message.responseTopic;
    request.correlation = message.correlation;
    if (write.mistake.isEmpty())
        return {{}, {request}, false};
    return {
        reply(request, {WriteResult::Outcome::Refused, {}, {}, write.mistake, nowMs}), {}, false};
}

// A sender may want its reply elsewhere, but not where others look for values.
Messages PlainForm::reply(const WriteRequest& request, const WriteResult& result)
{
    QJsonObject object = {{QStringLiteral("id"), request.id},
                          {QStringLiteral("outcome"), outcomeText(result.outcome)},
                          {QStringLiteral("old"), result.oldValue},
                          {QStringLiteral("new"), result.newValue},
                          {QStringLiteral("t"), timeText(result.timeMs)}};
    if (!result.reason.isEmpty())
        object.insert(QStringLiteral("reason"), result.reason);
    Message reply = {m_root + request.link + '/' + request.tag + "/set/reply", compact(object), 1,
                     false};
    Messages messages = {reply};
    const QString& topic = request.replyTopic;
    if (topic.isEmpty() || topic == reply.topic || topic.contains('+') || topic.contains('#') ||
        topic.startsWith('$') || topic.startsWith(m_root) || topic.startsWith("spBv1.0/"))
        messages[0].correlation = request.correlation;
    else
        messages.append({topic, reply.payload, 1, false, {}, request.correlation, {}});
    return messages;
}

}  // namespace fxgate
