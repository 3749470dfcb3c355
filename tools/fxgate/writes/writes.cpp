// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/writes/writes.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace fxgate {

namespace {

using Outcome = WriteResult::Outcome;

constexpr qint64 minuteMs = 60000;

QString secondsText(qint64 timeMs)
{
    return QString::number(static_cast<double>(timeMs) / 1000) + " s";
}

QString auditTime(qint64 utcMs)
{
    return QDateTime::fromMSecsSinceEpoch(utcMs, Qt::UTC).toString(Qt::ISODateWithMs);
}

}  // namespace

const char* outcomeName(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Done:
        return "done";
    case Outcome::Refused:
        return "refused";
    case Outcome::Failed:
        return "failed";
    case Outcome::Unknown:
        break;
    }
    return "unknown";
}

namespace {

QJsonObject auditLine(const char* event, const WriteRequest& request, Moment now)
{
    QJsonObject line{{"t", auditTime(now.utcMs)},
                     {"event", event},
                     {"link", request.link},
                     {"tag", request.tag},
                     {"value", request.value}};
    if (!request.who.isEmpty())
        line["who"] = request.who;
    if (!request.id.isEmpty())
        line["id"] = request.id;
    if (request.sentMs)
        line["sent"] = auditTime(*request.sentMs);
    return line;
}

QJsonObject auditLine(const WriteRequest& request, const WriteResult& result, Moment now)
{
    QJsonObject line = auditLine(outcomeName(result.outcome), request, now);
    if (!result.oldValue.isNull())
        line["old"] = result.oldValue;
    if (!result.newValue.isNull())
        line["new"] = result.newValue;
    if (!result.reason.isEmpty())
        line["reason"] = result.reason;
    return line;
}

const ServedTag* findTag(const LinkView& view, const QString& name)
{
    const auto found = std::find_if(view.tags.begin(), view.tags.end(),
                                    [&name](const ServedTag& tag) { return tag.name == name; });
    return found == view.tags.end() ? nullptr : &*found;
}

// Empty: nothing tells it from another one. Without the time when it was sent, a button that is
// pressed twice would look like a request that comes again, and what was not written look done.
QByteArray identityOf(const WriteRequest& request)
{
    if (request.id.isEmpty() || !request.sentMs || request.isRetained)
        return {};
    const auto sent = static_cast<double>(*request.sentMs);
    return QJsonDocument(QJsonArray{request.link, request.tag, request.id, request.value, sent})
        .toJson(QJsonDocument::Compact);
}

// The type and the limits of a value.
QString valueRefusal(const ServedTag& tag, const QJsonValue& value)
{
    if (tag.kind == ValueKind::Bit)
        return value.isBool() ? QString()
                              : QStringLiteral("the value of a bit must be true or false");
    if (tag.kind == ValueKind::Text)
        return value.isString() ? QString() : QStringLiteral("the value must be a text");
    const double number = value.toDouble();
    if (!value.isDouble())
        return QStringLiteral("the value must be a number");
    if (tag.kind == ValueKind::Integer && number != std::floor(number))
        return QStringLiteral("the value must be a whole number");
    if (tag.min && number < *tag.min)
        return QStringLiteral("below the minimum of %1").arg(*tag.min);
    if (tag.max && number > *tag.max)
        return QStringLiteral("above the maximum of %1").arg(*tag.max);
    return {};
}

}  // namespace

void Writes::configure(const WriteSettings& settings, const QMap<QString, ServedLink>& links)
{
    m_settings = settings;
    m_links = links;
}

QString Writes::ageRefusal(const WriteRequest& request, Moment now) const
{
    if (request.isRetained)
        return QStringLiteral("the request is retained; send it without the retain flag");
    if (!request.sentMs)
        return {};
    const qint64 ageMs = now.utcMs - *request.sentMs;
    if (ageMs > m_settings.oldestMs)
        return QStringLiteral("sent %1 ago; the limit is %2")
            .arg(secondsText(ageMs), secondsText(m_settings.oldestMs));
    if (-ageMs > m_settings.oldestMs)
        return QStringLiteral("sent %1 in the future; check the clocks").arg(secondsText(-ageMs));
    return {};
}

QString Writes::refusal(const WriteRequest& request, Moment now) const
{
    if (m_isStopping)
        return QStringLiteral("the gateway is stopping");
    const LinkView view = m_plant.value(request.link);
    const ServedTag* const tag = findTag(view, request.tag);
    if (!tag)
        return QStringLiteral("there is no such tag");
    if (!m_settings.isAllowed)
        return QStringLiteral("writes are not allowed: [writes] lacks allowed = true");
    if (!m_links.value(request.link).isWritable)
        return QStringLiteral("writes to this link are not allowed: it lacks writes = true");
    if (!tag->isWritable)
        return QStringLiteral("the tag is read-only: its access is not rw");
    QString age = ageRefusal(request, now);
    if (!age.isEmpty())
        return age;
    QString value = valueRefusal(*tag, request.value);
    if (!value.isEmpty())
        return value;
    if (!view.isUp)
        return "the link is down: " + view.reason;
    return {};
}

bool Writes::isOverRate(Queue& queue, Moment now) const
{
    while (!queue.sentMs.empty() && now.steadyMs - queue.sentMs.front() >= minuteMs)
        queue.sentMs.pop_front();
    return queue.sentMs.size() + queue.writes.size() >= static_cast<size_t>(m_settings.perMinute);
}

bool Writes::isKnown(const WriteRequest& request, const Answer& answer, Moment now)
{
    const auto known = m_known.find(identityOf(request));
    if (known == m_known.end())
        return false;
    if (++m_refusals <= mostRefusalsPerMinute)
        m_audit.append(auditLine("repeated", request, now));
    if (known->second.result)
        answer(*known->second.result);
    else if (known->second.alsoAsked.size() < mostWaiting)
        known->second.alsoAsked.push_back(answer);
    return true;
}

void Writes::request(const WriteRequest& request, const Answer& answer, Moment now)
{
    if (isKnown(request, answer, now))
        return;
    const Pending write{request, answer, now, {}, 0};
    const QString reason = refusal(request, now);
    if (!reason.isEmpty())
        return refuse(write, reason, now);
    Queue& queue = m_queues[request.link];
    if (isOverRate(queue, now))
        return refuse(
            write, QStringLiteral("more than %1 writes a minute").arg(m_settings.perMinute), now);
    if (queue.writes.size() >= mostWaiting)
        return refuse(write, QStringLiteral("too many writes are waiting"), now);
    queue.writes.push_back(write);
    if (!identityOf(request).isEmpty())
        m_known[identityOf(request)] = {};
    sendNext(request.link, now);
}

void Writes::sendNext(const QString& link, Moment now)
{
    Queue& queue = m_queues[link];
    while (!queue.isSent && !queue.writes.empty()) {
        Pending& write = queue.writes.front();
        QString reason = refusal(write.request, now);
        if (now.steadyMs - write.received.steadyMs > m_settings.oldestMs)
            reason = "waited longer than " + secondsText(m_settings.oldestMs);
        if (reason.isEmpty()) {
            m_audit.append(auditLine("sent", write.request, now));
            m_audit.sync();
            if (!m_audit.problem().isEmpty())
                reason = "the audit file cannot be written: " + m_audit.problem();
        }
        if (!reason.isEmpty()) {
            const Pending refused = write;
            queue.writes.pop_front();
            refuse(refused, reason, now);
            continue;
        }
        queue.isSent = true;
        queue.sentMs.push_back(now.steadyMs);
        write.sentMs = now.steadyMs;
        write.number = QString::number(++m_sent);
        m_send(link, writeLine(write.number, write.request.tag, write.request.value));
    }
}

void Writes::answer(const Pending& write, const WriteResult& result, Moment now)
{
    ++m_counts[result.outcome];
    write.answer(result);
    const auto known = m_known.find(identityOf(write.request));
    if (known == m_known.end())
        return;
    for (const Answer& also : known->second.alsoAsked)
        also(result);
    if (result.outcome == Outcome::Refused)
        m_known.erase(known);  // it may be asked for once more
    else
        known->second = {result, {}, now.steadyMs};
}

void Writes::finishFirst(Queue& queue, WriteResult result, Moment now)
{
    const Pending write = queue.writes.front();
    queue.writes.pop_front();
    queue.isSent = false;
    result.timeMs = now.utcMs;
    m_audit.append(auditLine(write.request, result, now));
    answer(write, result, now);
}

void Writes::written(const QString& link, const WrittenLine& line, Moment now)
{
    Queue& queue = m_queues[link];
    if (!queue.isSent || queue.writes.front().number != line.id)
        return;  // it was answered as unknown before
    finishFirst(queue, line.result, now);
    sendNext(link, now);
}

void Writes::workerLost(const QString& link, const QString& reason, Moment now)
{
    Queue& queue = m_queues[link];
    WriteResult unknown;
    unknown.reason = reason;
    if (queue.isSent)
        finishFirst(queue, unknown, now);
    while (!queue.writes.empty()) {
        const Pending write = queue.writes.front();
        queue.writes.pop_front();
        refuse(write, reason, now);
    }
}

void Writes::tick(Moment now)
{
    WriteResult unknown;
    unknown.reason = "no answer within " + secondsText(answerTimeoutMs);
    for (auto& [link, queue] : m_queues) {
        if (queue.isSent && now.steadyMs - queue.writes.front().sentMs > answerTimeoutMs) {
            finishFirst(queue, unknown, now);
            sendNext(link, now);
        }
    }
    for (auto known = m_known.begin(); known != m_known.end();) {
        const Known& each = known->second;
        const bool isOver = each.result && now.steadyMs - each.answeredMs > m_settings.oldestMs;
        known = isOver ? m_known.erase(known) : std::next(known);
    }
    if (now.steadyMs - m_minuteBeganMs >= minuteMs) {
        if (m_refusals > mostRefusalsPerMinute) {
            m_audit.append({{"t", auditTime(now.utcMs)},
                            {"event", "refused"},
                            {"times", m_refusals - mostRefusalsPerMinute},
                            {"reason", "too many to list each"}});
        }
        m_minuteBeganMs = now.steadyMs;
        m_refusals = 0;
    }
    m_audit.sync();
}

void Writes::stop(Moment now)
{
    m_isStopping = true;
    for (auto& [link, queue] : m_queues) {
        while (queue.writes.size() > (queue.isSent ? 1 : 0)) {
            const Pending write = queue.writes.back();
            queue.writes.pop_back();
            refuse(write, QStringLiteral("the gateway is stopping"), now);
        }
    }
}

void Writes::refuse(const Pending& write, const QString& reason, Moment now)
{
    WriteResult result;
    result.outcome = Outcome::Refused;
    result.reason = reason;
    result.timeMs = now.utcMs;
    if (++m_refusals <= mostRefusalsPerMinute)
        m_audit.append(auditLine(write.request, result, now));
    answer(write, result, now);
}

}  // namespace fxgate
