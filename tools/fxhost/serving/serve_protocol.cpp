// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/serving/serve_protocol.h"

#include "tools/fxhost/views/json_text.h"
#include "tools/quoted.h"
#include "tools/tags/tag_columns.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace fxtools {

namespace {

constexpr int protocolVersion = 1;
constexpr int mostBytesInEvent = 32768;

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

const char* textOf(LinkState link)
{
    switch (link) {
    case LinkState::Opening:
        return "opening";
    case LinkState::Up:
        return "up";
    case LinkState::Down:
        break;
    }
    return "down";
}

const char* textOf(WriteAnswer::Outcome outcome)
{
    switch (outcome) {
    case WriteAnswer::Outcome::Done:
        return "done";
    case WriteAnswer::Outcome::Refused:
        return "refused";
    case WriteAnswer::Outcome::Failed:
        return "failed";
    case WriteAnswer::Outcome::Unknown:
        break;
    }
    return "unknown";
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

QByteArray stateEvent(LinkState link, const QString& reason)
{
    QVector<JsonMember> members = {member("event", QStringLiteral("state")),
                                   member("link", QLatin1String(textOf(link)))};
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

// All of a line that is good was read at one time, which is that of the line.
QByteArray nextValuesEvent(ServedTags& tags, const Moment& now)
{
    QVector<JsonMember> good;
    QVector<JsonMember> stale;
    QVector<JsonMember> bad;
    std::optional<qint64> utc;
    int bytes = 0;
    for (const ServedTags::Change& change : tags.changes(now)) {
        const TagState& state = change.state;
        const Tag& tag = tags.tag(change.index);
        const bool isGood = state.quality == Quality::Good;
        if (bytes >= mostBytesInEvent || (isGood && utc && *utc != state.readUtc))
            continue;  // in the next line
        if (isGood)
            utc = state.readUtc;
        const QByteArray value =
            jsonText(isGood ? servedValue(tag, state.registers) : QJsonValue(state.reason));
        (isGood ? good : state.quality == Quality::Stale ? stale : bad).append({tag.name, value});
        bytes += tag.name.size() + value.size();
        tags.noteTold(change);
    }
    if (good.isEmpty() && stale.isEmpty() && bad.isEmpty())
        return {};
    QVector<JsonMember> members = {member("event", QStringLiteral("values")),
                                   {QStringLiteral("time"), jsonText(utc.value_or(now.utc))}};
    const auto add = [&members](const char* name, const QVector<JsonMember>& values) {
        if (!values.isEmpty())
            members.append({QLatin1String(name), jsonObject(values)});
    };
    add("good", good);
    add("stale", stale);
    add("bad", bad);
    return jsonObject(members);
}

QByteArray writtenEvent(const QString& id, const QString& tag, const WriteAnswer& answer)
{
    return jsonObject({member("event", QStringLiteral("written")), member("id", id),
                       member("tag", tag), member("outcome", QLatin1String(textOf(answer.outcome))),
                       member("old", answer.before), member("new", answer.after),
                       member("reason", answer.reason)});
}

}  // namespace fxtools
