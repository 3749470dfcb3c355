// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost monitor: every frame of a polling host and its reply in readable form, with times.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/cycles.h"
#include "tools/fxhost/views/frame_text.h"
#include "tools/library/values.h"

#include <cmath>
#include <optional>

namespace fxtools {

namespace {

struct MonitorOptions
{
    AddressOptions addresses;
    PlanningOptions planning;
    int cycles = 1;
};

double milliseconds(qint64 timeUs)
{
    return std::round(static_cast<double>(timeUs) / 10.0) / 100.0;  // two decimals
}

// What was read or written, one number a register; nothing where the PLC did not say.
QVector<quint32> valuesOf(const Connection& connection, const Exchange& exchange)
{
    if (exchange.answer != DriverAnswer::Accepted)
        return {};
    return connection.session().values(requestRange(connection.catalogue(), exchange.frame));
}

QString valuesText(const QVector<quint32>& values, const RegisterType& type)
{
    if (type.isBit())
        return bitsText(values);
    QStringList texts;
    for (const quint32 value : values)
        texts += QString::number(value);
    return texts.join(' ');
}

// In lines of 80 columns, the first behind a sign; cut after a blank if there is one.
void showWrapped(const QString& sign, const QString& text)
{
    constexpr int mostColumns = 80 - 4;
    QString prefix = "  " + sign + ' ';
    for (QString rest = text; !rest.isEmpty(); prefix = "    ") {
        const int blank = rest.size() > mostColumns ? rest.lastIndexOf(' ', mostColumns) : -1;
        const int taken = blank > 0 ? blank : mostColumns;
        Console().line(prefix + rest.left(taken));
        rest = rest.mid(taken).trimmed();
    }
}

class Monitor
{
public:
    Monitor(const Connection& connection, const OutputOptions& output)
        : m_connection(connection), m_output(output)
    {
        if (output.mode != OutputMode::People) {
            m_records.emplace(output,
                              QVector<Table::Column>{{"ms"},
                                                     {"request"},
                                                     {"sent"},
                                                     {"received"},
                                                     {"verdict"},
                                                     {"answer"},
                                                     {"took"},
                                                     {"values"}},
                              Records::Shown::AtOnce);
        }
    }

    void show(const Exchange& exchange);

private:
    void showLines(const Exchange& exchange, const QString& values) const;

    const Connection& m_connection;
    OutputOptions m_output;
    std::optional<Records> m_records;
};

void Monitor::show(const Exchange& exchange)
{
    const RegisterType type = requestRange(m_connection.catalogue(), exchange.frame).type;
    const QString values = valuesText(valuesOf(m_connection, exchange), type);
    if (!m_records) {
        showLines(exchange, values);
        return;
    }
    m_records->add(
        {milliseconds(exchange.startedUs), requestText(m_connection.catalogue(), exchange.frame),
         visibleBytes(requestBytes(exchange.frame)),
         visibleBytes(exchange.reply + exchange.thrownAway), verdictText(exchange.verdict),
         answerText(exchange.answer), milliseconds(exchange.responseUs), values});
}

// At most 80 columns: what was sent, received and read stands below, in as many lines as it takes.
//
//   0.52 ms  read D0 … D2: good after 0.31 ms, accepted
//     → ␂0100006␃5A
//     ← ␂000001000400␃48
//     = 0 1 4
void Monitor::showLines(const Exchange& exchange, const QString& values) const
{
    const QString time = m_output.timestamps ? timestamp() + "  " : QString();
    const QByteArray received = exchange.reply + exchange.thrownAway;
    const QString outcome = exchange.verdict == ReplyVerdict::Interrupted
                                ? verdictText(exchange.verdict)
                                : QStringLiteral("%1 after %2 ms, %3")
                                      .arg(verdictText(exchange.verdict))
                                      .arg(milliseconds(exchange.responseUs), 0, 'f', 2)
                                      .arg(answerText(exchange.answer));
    Console().line(QStringLiteral("%1%2 ms  %3: %4")
                       .arg(time)
                       .arg(milliseconds(exchange.startedUs), 0, 'f', 2)
                       .arg(requestText(m_connection.catalogue(), exchange.frame), outcome));
    showWrapped(QStringLiteral("→"), visibleBytes(requestBytes(exchange.frame)));
    showWrapped(QStringLiteral("←"), visibleBytes(received));
    showWrapped(QStringLiteral("="), values);
}

ExitCode runMonitor(const CommonOptions& common, const MonitorOptions& options)
{
    CommandConnection connection(common);
    Monitor monitor(connection, common.output);
    connection.loop().onExchange = [&monitor](const Exchange& exchange) { monitor.show(exchange); };
    PlanCycle plan(connection.loop(),
                   plannerFor(connection.loop(), connectionSettings(common), options.planning));
    plan.plan(rangesOf(options.addresses, connection.services()));
    return pollCycles(connection, plan, options.cycles);
}

}  // namespace

void addMonitorCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("monitor", "Print every frame and its reply");
    const auto options = std::make_shared<MonitorOptions>();
    addAddressOptions(*command, options->addresses);
    addPlanningOptions(*command, options->planning);
    addCountOption(*command, options->cycles);
    addExamples(*command, {"fxhost monitor D100:2 X0", "fxhost monitor D0:32 -n 3 --timestamps"});
    onRun(*command, action, [&common, options] { return runMonitor(common, *options); });
}

}  // namespace fxtools
