// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/serving/serve_protocol.h"

#include "tools/fxhost/serving/served_tags.h"
#include "tools/fxhost/views/json_text.h"
#include "tools/quoted.h"
#include "tools/tags/tag_file.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace fxtools {

namespace {

constexpr int protocolVersion = 1;

[[noreturn]] void reject(const QString& text)
{
    throw Failure(ExitCode::Usage, text);
}

QString textMember(const QJsonObject& object, const QString& name)
{
    const QJsonValue value = object.value(name);
    if (!value.isString())
        reject("write: no text " + quoted(name));
    return value.toString();
}

JsonMember member(const char* name, const QJsonValue& value)
{
    return {QLatin1String(name), jsonText(value)};
}

void addText(QVector<JsonMember>& members, const char* name, const QString& text)
{
    if (!text.isEmpty())
        members.append(member(name, text));
}

void addNumber(QVector<JsonMember>& members, const char* name, std::optional<double> number)
{
    if (number)
        members.append(member(name, *number));
}

const char* kindOf(const Tag& tag)
{
    if (tag.isOneBit())
        return "bit";
    if (!tag.isNumber())
        return "text";
    return tag.isScaled() || tag.style.format == ValueFormat::Float ? "real" : "integer";
}

bool isServedForWriting(const Tag& tag)
{
    return tag.access == TagAccess::ReadWrite && tag.asked.range.type.writable;
}

QByteArray tagObject(const Tag& tag)
{
    QVector<JsonMember> members = {member("name", tag.name), member("address", tag.asked.text()),
                                   member("kind", QLatin1String(kindOf(tag)))};
    addText(members, "unit", tag.unit);
    addText(members, "description", tag.description);
    members.append(member("writable", isServedForWriting(tag)));
    addNumber(members, "min", tag.min);
    addNumber(members, "max", tag.max);
    addNumber(members, "deadband", tag.deadband);
    if (tag.periodMs)
        members.append(member("periodMs", *tag.periodMs));
    return jsonObject(members);
}

double milliseconds(double ms)
{
    return std::round(10 * ms) / 10;
}

}  // namespace

ServeOrder parseOrder(const QByteArray& line)
{
    QJsonParseError error = {};
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError)
        reject("not JSON: " + error.errorString());
    const QJsonObject order = document.object();
    if (order.size() != 1 || !order.begin().value().isObject())
        reject(
            QStringLiteral("not an order: {\"write\":{...}}, {\"refresh\":{}} or {\"stop\":{}}"));
    const QString name = order.begin().key();
    if (name == QLatin1String("refresh"))
        return {ServeOrder::Kind::Refresh, {}, {}, {}};
    if (name == QLatin1String("stop"))
        return {ServeOrder::Kind::Stop, {}, {}, {}};
    if (name != QLatin1String("write"))
        reject("unknown order " + quoted(name) + ": expected write, refresh or stop");
    const QJsonObject write = order.begin().value().toObject();
    return {ServeOrder::Kind::Write, textMember(write, QStringLiteral("id")),
            textMember(write, QStringLiteral("tag")), write.value(QLatin1String("value"))};
}

QString writtenText(const Tag& tag, const QJsonValue& value)
{
    const bool isZeroOrOne = value.isDouble() && (value.toDouble() == 0 || value.toDouble() == 1);
    if (tag.isOneBit() && (value.isBool() || isZeroOrOne))
        return value.toBool(value.toDouble() == 1) ? QStringLiteral("1") : QStringLiteral("0");
    if (tag.isOneBit())
        reject(tag.name + " takes true or false");
    if (!tag.isNumber() && value.isString())
        return value.toString();
    const bool isText = tag.style.format == ValueFormat::Text;
    if (!value.isDouble() || isText)
        reject(tag.name + (tag.isNumber() ? " takes a number" : " takes a text"));
    return numberText(value.toDouble());
}

QByteArray helloEvent(const QString& version, LinkSettings link, const QVector<Tag>& tags)
{
    QList<QByteArray> objects;
    for (const Tag& tag : tags)
        objects += tagObject(tag);
    return jsonObject({member("event", QStringLiteral("hello")),
                       member("protocol", protocolVersion),
                       member("version", version),
                       member("link", linkText(link)),
                       member("station", plcSettings(link).station),
                       {QStringLiteral("tags"), jsonArray(objects)}});
}

QByteArray stateEvent(const QString& link, const QString& reason)
{
    QVector<JsonMember> members = {member("event", QStringLiteral("state")), member("link", link)};
    addText(members, "reason", reason);
    return jsonObject(members);
}

QByteArray mistakeEvent(int line, const QString& text)
{
    return jsonObject(
        {member("event", QStringLiteral("mistake")), member("line", line), member("text", text)});
}

QByteArray aliveEvent(const Statistics& statistics, const Liveliness& report)
{
    QList<QByteArray> late;
    for (const QString& name : report.late)
        late += jsonText(name);
    QVector<JsonMember> errors;
    for (const ReplyVerdict verdict : allVerdicts()) {
        if (verdict != ReplyVerdict::Good && statistics.of(verdict) > 0)
            errors.append({verdictName(verdict), jsonText(statistics.of(verdict))});
    }
    const KindCounts total = statistics.total();
    QVector<JsonMember> members = {member("event", QStringLiteral("alive")),
                                   member("cycleMs", milliseconds(report.cycleMs)),
                                   member("exchanges", total.sent),
                                   member("good", total.accepted),
                                   {QStringLiteral("late"), jsonArray(late)}};
    addText(members, "load", report.load);
    members.append({QStringLiteral("errors"), jsonObject(errors)});
    return jsonObject(members);
}

WriteAnswer refusal(const QString& reason)
{
    return {"refused", reason, QJsonValue::Null, QJsonValue::Null};
}

// The acknowledge may be lost on the way: then the value that is read back counts.
WriteAnswer answerOf(const Tag& tag, const CheckedWrite& write)
{
    const auto held = [&tag](const QVector<quint32>& registers) {
        return registers.isEmpty() ? QJsonValue() : servedValue(tag, registers);
    };
    WriteAnswer answer = refusal({});
    answer.before = held(write.before);
    answer.after = held(write.after);
    if (!write.outcome) {
        answer.reason = "not sent: could not be read before: " + verdictText(*write.problem);
        return answer;
    }
    const WriteOutcome& outcome = *write.outcome;
    if (outcome.acknowledged.isEmpty() && outcome.uncertain.isEmpty()) {
        answer.reason = verdictText(*outcome.problem);
        return answer;
    }
    if (write.isThere()) {
        answer.outcome = "done";
        if (!outcome.isGood())
            answer.reason = "read back, but not acknowledged: " + verdictText(*outcome.problem);
        return answer;
    }
    const bool isKnown = !write.after.isEmpty();
    answer.outcome = isKnown ? "failed" : "unknown";
    answer.reason = outcome.problem ? verdictText(*outcome.problem)
                    : isKnown ? QStringLiteral("acknowledged, but read back with another value")
                              : "could not be read back: " + verdictText(*write.problem);
    return answer;
}

QByteArray writtenEvent(const ServeOrder& order, const WriteAnswer& answer)
{
    return jsonObject({member("event", QStringLiteral("written")), member("id", order.id),
                       member("tag", order.tag), member("outcome", QLatin1String(answer.outcome)),
                       member("old", answer.before), member("new", answer.after),
                       member("reason", answer.reason)});
}

}  // namespace fxtools
