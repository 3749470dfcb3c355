// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/workers/worker_line.h"

#include "tools/failure.h"
#include "tools/quoted.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>

#include <cmath>

namespace fxgate {

namespace {

constexpr int protocol = 1;
constexpr int mostTags = 20000;
constexpr double largestWhole = 9007199254740992;  // 2^53: up to here a double holds every integer

QString refusal(const char* name, const char* wanted)
{
    return QStringLiteral("%1 is not %2").arg(QLatin1String(name), QLatin1String(wanted));
}

// A member that may be left out.
QString textIn(const QJsonObject& object, const char* name)
{
    const QJsonValue value = object[QLatin1String(name)];
    if (!value.isUndefined() && !value.isString())
        refuseLine(refusal(name, "a text"));
    return value.toString();
}

double numberIn(const QJsonObject& object, const char* name, double unlessSaid)
{
    const QJsonValue value = object[QLatin1String(name)];
    if (!value.isUndefined() && !value.isDouble())
        refuseLine(refusal(name, "a number"));
    return value.toDouble(unlessSaid);
}

qint64 whole(const QJsonValue& value, const char* name)
{
    const double number = value.toDouble(-1);
    if (!(number >= 0 && number <= largestWhole) || number != std::floor(number))
        refuseLine(refusal(name, "a whole number"));
    return static_cast<qint64>(number);
}

QJsonObject objectIn(const QJsonObject& object, const char* name)
{
    const QJsonValue value = object[QLatin1String(name)];
    if (!value.isUndefined() && !value.isObject())
        refuseLine(refusal(name, "an object"));
    return value.toObject();
}

QJsonArray listIn(const QJsonObject& object, const char* name)
{
    const QJsonValue value = object[QLatin1String(name)];
    if (!value.isUndefined() && !value.isArray())
        refuseLine(refusal(name, "a list"));
    return value.toArray();
}

bool isScalar(const QJsonValue& value)
{
    return value.isBool() || value.isDouble() || value.isString();
}

template <typename Choice>
Choice choiceIn(const QJsonObject& object, const char* name, const QMap<QString, Choice>& choices)
{
    const auto found = choices.find(textIn(object, name));
    if (found == choices.end())
        refuseLine(refusal(name, qPrintable(QStringList(choices.keys()).join(" or "))));
    return *found;
}

ServedTag tagIn(const QJsonObject& object)
{
    static const QRegularExpression unfit(QStringLiteral("[\\x{0}-\\x{20}/+#]"));
    ServedTag tag;
    tag.name = textIn(object, "name");
    if (tag.name.isEmpty() || tag.name.contains(unfit))
        refuseLine(fxtools::quoted(tag.name) + " cannot be the name of a tag");
    tag.address = textIn(object, "address");
    tag.kind = choiceIn<ValueKind>(object, "kind",
                                   {{"bit", ValueKind::Bit},
                                    {"integer", ValueKind::Integer},
                                    {"real", ValueKind::Real},
                                    {"text", ValueKind::Text}});
    tag.unit = textIn(object, "unit");
    tag.description = textIn(object, "description");
    tag.isWritable = object["writable"].toBool();
    tag.deadband = std::max(0.0, numberIn(object, "deadband", 0));
    if (object.contains("min"))
        tag.min = numberIn(object, "min", 0);
    if (object.contains("max"))
        tag.max = numberIn(object, "max", 0);
    return tag;
}

HelloLine helloIn(const QJsonObject& object)
{
    if (object["protocol"] != protocol)
        refuseLine(QStringLiteral("it does not speak protocol %1; fxhost and fxgate must have the "
                                  "same version")
                       .arg(protocol));
    HelloLine hello{textIn(object, "version"), {}};
    QSet<QString> names;
    const QJsonArray tags = listIn(object, "tags");
    if (tags.size() > mostTags)
        refuseLine(QStringLiteral("more than %1 tags").arg(mostTags));
    for (const QJsonValue& tag : tags) {
        hello.tags.append(tagIn(tag.toObject()));
        if (names.contains(hello.tags.last().name))
            refuseLine("two tags have the name " + fxtools::quoted(hello.tags.last().name));
        names.insert(hello.tags.last().name);
    }
    return hello;
}

StateLine stateIn(const QJsonObject& object)
{
    const QString state =
        choiceIn<QString>(object, "link", {{"opening", "opening"}, {"up", "up"}, {"down", "down"}});
    const QString reason = textIn(object, "reason");
    return {state == "up", reason.isEmpty() && state != "up" ? "link " + state : reason};
}

QMap<QString, QString> reasonsIn(const QJsonObject& object, const char* name)
{
    QMap<QString, QString> reasons;
    const QJsonObject tags = objectIn(object, name);
    for (auto tag = tags.begin(); tag != tags.end(); ++tag)
        reasons.insert(tag.key(), tag.value().toString());
    return reasons;
}

ValuesLine valuesIn(const QJsonObject& object)
{
    ValuesLine values;
    values.timeMs = whole(object["time"], "time");
    const QJsonObject good = objectIn(object, "good");
    for (auto tag = good.begin(); tag != good.end(); ++tag) {
        if (!isScalar(tag.value()))
            refuseLine("the value of " + fxtools::quoted(tag.key()) +
                       " is not a bit, number or text");
        values.good.insert(tag.key(), tag.value());
    }
    values.stale = reasonsIn(object, "stale");
    values.bad = reasonsIn(object, "bad");
    return values;
}

AliveLine aliveIn(const QJsonObject& object)
{
    AliveLine alive;
    alive.cycleMs = numberIn(object, "cycleMs", 0);
    alive.exchanges = whole(object["exchanges"], "exchanges");
    alive.good = whole(object["good"], "good");
    for (const auto tag : listIn(object, "late"))
        alive.late.append(tag.toString());
    alive.load = textIn(object, "load");
    const QJsonObject errors = objectIn(object, "errors");
    for (auto error = errors.begin(); error != errors.end(); ++error)
        alive.errors.insert(error.key(), whole(error.value(), "errors"));
    return alive;
}

WrittenLine writtenIn(const QJsonObject& object)
{
    using Outcome = WriteResult::Outcome;
    WrittenLine written;
    written.id = textIn(object, "id");
    written.result.outcome = choiceIn<Outcome>(object, "outcome",
                                               {{"done", Outcome::Done},
                                                {"refused", Outcome::Refused},
                                                {"failed", Outcome::Failed},
                                                {"unknown", Outcome::Unknown}});
    if (isScalar(object["old"]))
        written.result.oldValue = object["old"];
    if (isScalar(object["new"]))
        written.result.newValue = object["new"];
    written.result.reason = textIn(object, "reason");
    return written;
}

QByteArray line(const char* name, const QJsonObject& members)
{
    return QJsonDocument(QJsonObject{{QLatin1String(name), members}})
               .toJson(QJsonDocument::Compact) +
           '\n';
}

}  // namespace

void refuseLine(const QString& reason)
{
    throw fxtools::Failure(fxtools::ExitCode::Damaged, reason);
}

WorkerLine parseWorkerLine(const QByteArray& line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        refuseLine(fxtools::quoted(QString::fromUtf8(line)) + " is not a JSON object");
    const QJsonObject object = document.object();
    const QString event = textIn(object, "event");
    if (event == QLatin1String("values"))
        return valuesIn(object);
    if (event == QLatin1String("alive"))
        return aliveIn(object);
    if (event == QLatin1String("state"))
        return stateIn(object);
    if (event == QLatin1String("written"))
        return writtenIn(object);
    if (event == QLatin1String("hello"))
        return helloIn(object);
    if (event == QLatin1String("mistake"))
        return MistakeLine{textIn(object, "text")};
    refuseLine("unknown event " + fxtools::quoted(event));
}

QByteArray writeLine(const QString& id, const QString& tag, const QJsonValue& value)
{
    return line("write", {{"id", id}, {"tag", tag}, {"value", value}});
}

QByteArray refreshLine()
{
    return line("refresh", {});
}

QByteArray stopLine()
{
    return line("stop", {});
}

}  // namespace fxgate
