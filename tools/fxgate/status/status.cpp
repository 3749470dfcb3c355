// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/status/status.h"

#include "tools/table.h"

#include <QDateTime>
#include <QJsonArray>

#include <algorithm>

namespace fxgate {

namespace {

using fxtools::Align;
using fxtools::Table;

QString statusTime(qint64 utcMs)
{
    return QDateTime::fromMSecsSinceEpoch(utcMs, Qt::UTC).toString(Qt::ISODateWithMs);
}

QJsonObject linkObject(const StatusSource::Link& link)
{
    const LinkView& view = link.view;
    const AliveLine& line = link.report.line;
    const auto isGood = [](const Sample& sample) { return sample.quality == Quality::Good; };
    QJsonObject errors;
    for (auto error = line.errors.begin(); error != line.errors.end(); ++error)
        errors[error.key()] = error.value();
    return {{"name", link.name},
            {"up", view.isUp},
            {"reason", view.reason},
            {"since", statusTime(view.sinceMs)},
            {"cycleMs", line.cycleMs},
            {"exchanges", line.exchanges},
            {"goodExchanges", line.good},
            {"tags", view.tags.size()},
            {"goodTags",
             static_cast<qint64>(std::count_if(view.samples.begin(), view.samples.end(), isGood))},
            {"late", QJsonArray::fromStringList(line.late)},
            {"load", line.load},
            {"errors", errors},
            {"worker", link.report.workerPid},
            {"restarts", link.report.restarts},
            {"lastError", link.report.lastError}};
}

QJsonObject formObject(const StatusSource::Form& form)
{
    const BusStatus& status = form.status;
    return {{"name", form.name},
            {"connected", status.isConnected},
            {"since", statusTime(status.sinceMs)},
            {"waiting", status.waiting},
            {"dropped", status.dropped},
            {"sent", status.sent},
            {"received", status.received},
            {"lastError", status.lastError},
            {"storeProblem", status.storeProblem}};
}

// How long ago, in its two largest units: "3 d 4 h".
QString since(const QJsonObject& object, const QDateTime& now)
{
    const QDateTime then = QDateTime::fromString(object["since"].toString(), Qt::ISODateWithMs);
    qint64 left = std::max<qint64>(0, then.secsTo(now));
    QStringList parts;
    for (const auto& [unit, seconds] :
         {std::pair("d", 86400), {"h", 3600}, {"min", 60}, {"s", 1}}) {
        if (left >= seconds || !parts.isEmpty())
            parts += QString("%1 %2").arg(left / seconds).arg(unit);
        left %= seconds;
    }
    return parts.isEmpty() ? QStringLiteral("0 s") : parts.mid(0, 2).join(' ');
}

QString goodPerCent(const QJsonObject& link)
{
    const double exchanges = link["exchanges"].toDouble();
    return exchanges == 0
               ? QStringLiteral("-")
               : QString::number(100 * link["goodExchanges"].toDouble() / exchanges, 'f', 1) + " %";
}

// A metric of several samples.
class Metrics
{
public:
    void begin(const char* name, const char* type, const char* help)
    {
        m_name = name;
        m_text +=
            QByteArray("# HELP ") + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
    }

    void add(double value, const QVector<QPair<QByteArray, QString>>& labels)
    {
        QByteArrayList shown;
        for (const auto& [label, text] : labels) {
            QByteArray escaped = text.toUtf8();
            escaped.replace('\\', "\\\\").replace('"', "\\\"").replace('\n', "\\n");
            shown += label + "=\"" + escaped + '"';
        }
        m_text += m_name + '{' + shown.join(',') + "} " + QByteArray::number(value, 'g', 15) + '\n';
    }

    const QByteArray& text() const { return m_text; }

private:
    QByteArray m_name;
    QByteArray m_text;
};

struct MetricFamily
{
    const char* name;
    const char* type;
    const char* member;  // of the status
    double factor;
    const char* help;
};

constexpr MetricFamily linkMetrics[] = {
    {"fxgate_link_up", "gauge", "up", 1, "Whether the PLC answers."},
    {"fxgate_link_cycle_seconds", "gauge", "cycleMs", 0.001, "Time of one cycle."},
    {"fxgate_link_exchanges_total", "counter", "exchanges", 1, "Exchanges with the PLC."},
    {"fxgate_link_good_exchanges_total", "counter", "goodExchanges", 1,
     "Exchanges that were good."},
    {"fxgate_link_tags", "gauge", "tags", 1, "Tags that are served."},
    {"fxgate_link_good_tags", "gauge", "goodTags", 1, "Tags whose value is good."},
    {"fxgate_link_restarts_total", "counter", "restarts", 1, "Restarts of the worker."},
};

constexpr MetricFamily formMetrics[] = {
    {"fxgate_bus_connected", "gauge", "connected", 1, "Whether the broker is connected."},
    {"fxgate_bus_waiting_changes", "gauge", "waiting", 1, "Changes that wait to be sent."},
    {"fxgate_bus_dropped_changes_total", "counter", "dropped", 1, "Changes that were dropped."},
    {"fxgate_bus_sent_messages_total", "counter", "sent", 1, "Messages sent."},
    {"fxgate_bus_received_messages_total", "counter", "received", 1, "Messages received."},
};

double numberOf(const QJsonValue& value)
{
    return value.isBool() ? (value.toBool() ? 1 : 0) : value.toDouble();
}

template <size_t size>
void addMetrics(Metrics& metrics, const MetricFamily (&table)[size], const QByteArray& label,
                const QString& gateway, const QJsonArray& objects)
{
    for (const MetricFamily& metric : table) {
        metrics.begin(metric.name, metric.type, metric.help);
        for (const QJsonValue& object : objects)
            metrics.add(numberOf(object[QLatin1String(metric.member)]) * metric.factor,
                        {{"gateway", gateway}, {label, object["name"].toString()}});
    }
}

void addErrors(Metrics& metrics, const QString& gateway, const QJsonArray& links)
{
    metrics.begin("fxgate_link_late_tags", "gauge", "Tags that are read later than their period.");
    for (const QJsonValue& link : links)
        metrics.add(link["late"].toArray().size(),
                    {{"gateway", gateway}, {"link", link["name"].toString()}});
    metrics.begin("fxgate_link_errors_total", "counter", "Exchanges that were not good, by kind.");
    for (const QJsonValue& link : links) {
        const QJsonObject errors = link["errors"].toObject();
        for (auto error = errors.begin(); error != errors.end(); ++error)
            metrics.add(
                error.value().toDouble(),
                {{"gateway", gateway}, {"link", link["name"].toString()}, {"error", error.key()}});
    }
}

}  // namespace

QJsonObject statusObject(const StatusSource& source)
{
    QJsonArray links;
    for (const StatusSource::Link& link : source.links)
        links.append(linkObject(link));
    QJsonArray forms;
    for (const StatusSource::Form& form : source.forms)
        forms.append(formObject(form));
    QJsonObject writes;
    for (const WriteResult::Outcome outcome :
         {WriteResult::Outcome::Done, WriteResult::Outcome::Refused, WriteResult::Outcome::Failed,
          WriteResult::Outcome::Unknown}) {
        const auto found = source.writes.find(outcome);
        writes[outcomeName(outcome)] = found == source.writes.end() ? 0 : found->second;
    }
    return {{"gateway", source.gateway},
            {"since", statusTime(source.startedMs)},
            {"time", statusTime(source.nowMs)},
            {"links", links},
            {"forms", forms},
            {"writes", writes},
            {"auditProblem", source.auditProblem}};
}

QStringList statusLines(const QJsonObject& status)
{
    const QDateTime now = QDateTime::fromString(status["time"].toString(), Qt::ISODateWithMs);
    Table links({{"LINK"},
                 {"STATE"},
                 {"FOR"},
                 {"CYCLE", Align::Right},
                 {"GOOD", Align::Right},
                 {"TAGS", Align::Right},
                 {"LATE", Align::Right},
                 {"LAST ERROR"}});
    for (const auto value : status["links"].toArray()) {
        const QJsonObject link = value.toObject();
        links.add({link["name"].toString(), link["up"].toBool() ? "up" : "down", since(link, now),
                   QString::number(link["cycleMs"].toDouble(), 'f', 1) + " ms", goodPerCent(link),
                   QString("%1/%2").arg(link["goodTags"].toInt()).arg(link["tags"].toInt()),
                   QString::number(link["late"].toArray().size()), link["lastError"].toString()});
    }
    Table forms({{"FORM"},
                 {"STATE"},
                 {"FOR"},
                 {"QUEUE", Align::Right},
                 {"DROPPED", Align::Right},
                 {"SENT", Align::Right},
                 {"RECEIVED", Align::Right},
                 {"LAST ERROR"}});
    for (const auto value : status["forms"].toArray()) {
        const QJsonObject form = value.toObject();
        const QString problem = form["storeProblem"].toString();
        const auto number = [&form](const char* name) {
            return QString::number(form[QLatin1String(name)].toDouble(), 'f', 0);
        };
        forms.add({form["name"].toString(),
                   form["connected"].toBool() ? "connected" : "not connected", since(form, now),
                   number("waiting"), number("dropped"), number("sent"), number("received"),
                   problem.isEmpty() ? form["lastError"].toString() : problem});
    }
    const QJsonObject writes = status["writes"].toObject();
    QStringList lines{QString("Gateway %1, running for %2; writes: %3 done, %4 refused, %5 failed, "
                              "%6 unknown")
                          .arg(status["gateway"].toString(), since(status, now))
                          .arg(writes["done"].toInt())
                          .arg(writes["refused"].toInt())
                          .arg(writes["failed"].toInt())
                          .arg(writes["unknown"].toInt())};
    if (!status["auditProblem"].toString().isEmpty())
        lines += "The audit file cannot be written: " + status["auditProblem"].toString();
    return lines + links.lines() + forms.lines();
}

QByteArray metricsText(const QJsonObject& status)
{
    const QString gateway = status["gateway"].toString();
    const QJsonArray links = status["links"].toArray();
    Metrics metrics;
    addMetrics(metrics, linkMetrics, "link", gateway, links);
    addErrors(metrics, gateway, links);
    addMetrics(metrics, formMetrics, "form", gateway, status["forms"].toArray());
    metrics.begin("fxgate_writes_total", "counter", "Writes from the bus, by outcome.");
    const QJsonObject writes = status["writes"].toObject();
    for (auto write = writes.begin(); write != writes.end(); ++write)
        metrics.add(write.value().toDouble(), {{"gateway", gateway}, {"outcome", write.key()}});
    return metrics.text();
}

}  // namespace fxgate
