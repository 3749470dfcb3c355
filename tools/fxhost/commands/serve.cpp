// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost serve: keeps the tags of one PLC fresh for a program that supervises it. Values, their
// quality and the state of the link go out as JSON lines; writes come in as such.
//
// Everything runs in one thread: lines are taken and sent whenever the exchange loop asks whether
// it was interrupted, at least every tenth of a second, also while a lost link is awaited. A write
// waits until nothing is in flight.

#include "tools/exchange/blocks.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/periods.h"
#include "tools/fxhost/serving/line_channel.h"
#include "tools/fxhost/serving/serve_protocol.h"
#include "tools/fxhost/serving/served_tags.h"
#include "tools/quoted.h"

#include <QElapsedTimer>
#include <QQueue>

#include <csignal>
#include <limits>

#include <unistd.h>

namespace fxtools {

namespace {

constexpr int forEverS = std::numeric_limits<int>::max();
constexpr int badUntilDown = 3;  // attempts in a row that the PLC did not answer
constexpr int mostWaitingWrites = 64;
constexpr qint64 longestWaitMs = 10000;  // of a write
constexpr qint64 aliveEveryMs = 1000;
constexpr qint64 tellEveryMs = 100;
constexpr qint64 graceMs = 500;  // for what is under way when it is to end

struct ServeOptions
{
    std::vector<std::string> names;  // none: all
    std::string plc;                 // as the tag file calls it
};

QVector<Tag> tagsToServe(const ServeOptions& options, const AddressServices& services)
{
    if (services.source.file.isEmpty())
        throw Failure(ExitCode::Usage, "serve needs a tag file: use --tags FILE");
    QVector<Tag> tags;
    const std::vector<std::string> all = {"*"};
    for (const std::string& name : options.names.empty() ? all : options.names) {
        for (const Tag& tag : tagsNamed(QString::fromStdString(name), services)) {
            const bool isKnown = std::any_of(tags.begin(), tags.end(), [&tag](const Tag& other) {
                return other.name == tag.name;
            });
            if (!isKnown)
                tags.append(tag);
        }
    }
    for (const Tag& tag : tags) {
        if (services.source.plc.isEmpty() && !tag.link.isEmpty())
            throw Failure(ExitCode::Usage, tag.name + " is a tag of the PLC " + tag.link +
                                               ": which one this is says --plc or --tags-of");
    }
    return tags;
}

ConnectionSettings settingsOf(const CommonOptions& common, const ServeOptions& options)
{
    ConnectionSettings settings = connectionSettings(common);
    if (!options.plc.empty())
        settings.tags.plc = QString::fromStdString(options.plc);
    settings.reconnectS = settings.reconnectS.value_or(forEverS);
    return settings;
}

struct WaitingWrite
{
    ServeOrder order;
    Assignment assignment;
    qint64 sinceMs;
};

class Server
{
public:
    Server(const CommonOptions& common, const ServeOptions& options);

    ExitCode run();

private:
    bool tick();
    void wait(qint64 timeMs);
    void takeLines();
    void take(const ServeOrder& order);
    void refuseWrites();
    void refuseAll(const QString& reason);
    void write(const WaitingWrite& waiting);
    void noteExchange(const Exchange& exchange);
    void noteLinkState(const QString& text);
    void setState(const QString& link, const QString& reason);
    void tell();
    QByteArray alive() const;
    bool mustEnd() const;
    Moment now() const;
    void answer(const ServeOrder& order, const WriteAnswer& answer);

    ConnectionSettings m_settings;
    AddressServices m_services;
    QVector<Tag> m_asked;
    QElapsedTimer m_clock;
    LineChannel m_channel = LineChannel(STDIN_FILENO, STDOUT_FILENO);
    ServedTags m_tags;
    Connection* m_connection = nullptr;  // while it is open
    Polling* m_polling = nullptr;
    QString m_link = QStringLiteral("opening");
    QString m_reason;
    bool m_stateIsTold = false;
    int m_badInARow = 0;
    QQueue<WaitingWrite> m_writes;
    bool m_isWriting = false;
    std::optional<qint64> m_endsAtMs;  // asked to end
    qint64 m_aliveMs = -aliveEveryMs;
    qint64 m_toldMs = 0;
    qint64 m_cycleBeganUs = 0;
    qint64 m_cycleUs = 0;
};

Server::Server(const CommonOptions& common, const ServeOptions& options)
    : m_settings(settingsOf(common, options)),
      m_services(m_settings.library, m_settings.tags, m_settings.station),
      m_asked(tagsToServe(options, m_services)),
      m_tags(m_asked, m_settings.session.wordsPerFrame, {})
{
    m_clock.start();
    std::signal(SIGPIPE, SIG_IGN);  // a supervisor that is gone is noticed by the write
    m_settings.loop.isInterrupted = [this] { return tick(); };
    m_settings.onLinkState = [this](const QString& text) { noteLinkState(text); };
}

ExitCode Server::run()
{
    m_channel.send(helloEvent(QStringLiteral(FX_VERSION), m_settings.link, m_asked));
    RoundEnd end = RoundEnd::Interrupted;
    try {
        Connection connection(m_settings);
        m_connection = &connection;
        ExchangeLoop& loop = connection.loop();
        loop.onExchange = [this](const Exchange& exchange) { noteExchange(exchange); };
        loop.onLinkLost = [this, reconnect = loop.onLinkLost] {
            return !m_isWriting && reconnect();
        };
        PollOptions options;
        options.areAlwaysPeriods = true;
        Polling polling(connection, m_settings, options, m_asked, [](const QString&) {});
        m_polling = &polling;
        const auto noteCycle = [this] {
            m_cycleUs = now().us - std::exchange(m_cycleBeganUs, now().us);
        };
        end = polling.run(0, noteCycle, [this](qint64 timeMs) { wait(timeMs); });
        refuseAll(QStringLiteral("not sent: fxhost serve is ending"));
        tell();
        m_polling = nullptr;
        m_connection = nullptr;
    } catch (const Failure& failure) {
        if (failure.code() != ExitCode::Interrupted)
            throw;
    }
    m_channel.finish(graceMs);
    if (end == RoundEnd::LinkLost)
        return ExitCode::LinkNotOpened;
    return interruptSignal() == SIGINT ? ExitCode::Interrupted : ExitCode::Good;
}

// Called wherever something is awaited. Returns whether to stop.
bool Server::tick()
{
    takeLines();
    refuseWrites();
    if (m_clock.elapsed() - m_toldMs >= tellEveryMs)
        tell();
    return mustEnd();
}

// Between two exchanges nothing is in flight: the time for a write.
void Server::wait(qint64 timeMs)
{
    QElapsedTimer waited;
    waited.start();
    const Poller& poller = m_polling->poller();
    m_tags.noteProblems(
        [&poller](const RegisterRange& range, int index) { return poller.problemOf(range, index); },
        now());
    m_tags.setPeriods(m_polling->load());
    tell();
    while (!tick()) {
        if (!m_writes.isEmpty())
            write(m_writes.dequeue());
        const qint64 leftMs = timeMs - waited.elapsed();
        if (leftMs <= 0)
            break;
        m_channel.wait(std::min(leftMs, tellEveryMs));
    }
}

void Server::takeLines()
{
    while (const std::optional<LineChannel::Line> line = m_channel.next()) {
        try {
            if (line->isTooLong)
                throw Failure(ExitCode::Usage,
                              QStringLiteral("longer than %1 bytes").arg(LineChannel::longestLine));
            take(parseOrder(line->text));
        } catch (const Failure& failure) {
            m_channel.send(mistakeEvent(line->number, failure.text()));
        }
    }
    if (m_channel.hasEnded() && !m_endsAtMs)
        m_endsAtMs = m_clock.elapsed() + graceMs;
}

void Server::take(const ServeOrder& order)
{
    if (order.kind == ServeOrder::Kind::Refresh) {
        m_tags.tellAgain();
        m_stateIsTold = false;
        return;
    }
    if (order.kind == ServeOrder::Kind::Stop) {
        m_endsAtMs = m_endsAtMs.value_or(m_clock.elapsed() + graceMs);
        return;
    }
    try {
        const Tag* const tag = m_tags.find(order.tag);
        if (!tag)
            throw Failure(ExitCode::Usage, "unknown tag " + quoted(order.tag));
        if (tag->access != TagAccess::ReadWrite)
            throw Failure(ExitCode::Usage, tag->name + " has no access=rw in the tag file");
        const Assignment assignment =
            assignmentOf(*tag, writtenText(*tag, order.value), m_services.catalogue);
        requireOwnMemory(assignment.asked.range, m_services.catalogue);
        if (m_writes.size() >= mostWaitingWrites)
            throw Failure(ExitCode::Usage, "not sent: too many writes are waiting");
        m_writes.enqueue({order, assignment, m_clock.elapsed()});
    } catch (const Failure& failure) {
        answer(order, refusal(failure.text()));
    }
}

// What cannot be sent soon would be sent too late.
void Server::refuseWrites()
{
    if (m_isWriting || m_writes.isEmpty())
        return;
    if (m_link == QLatin1String("down") || !m_connection)
        refuseAll("not sent: " + (m_reason.isEmpty() ? "the link is not open yet" : m_reason));
    while (!m_writes.isEmpty() && m_clock.elapsed() - m_writes.head().sinceMs > longestWaitMs)
        answer(m_writes.dequeue().order,
               refusal(QStringLiteral("not sent within %1 s").arg(longestWaitMs / 1000)));
}

void Server::refuseAll(const QString& reason)
{
    while (!m_writes.isEmpty())
        answer(m_writes.dequeue().order, refusal(reason));
}

void Server::write(const WaitingWrite& waiting)
{
    const RegisterRange& range = waiting.assignment.asked.range;
    m_isWriting = true;
    const CheckedWrite write = writeAndReadBack(m_connection->loop(), waiting.assignment);
    m_isWriting = false;
    if (!write.after.isEmpty())
        m_tags.noteRead(
            range, [&write](const RegisterRange&) { return write.after; }, now());
    answer(waiting.order, answerOf(*m_tags.find(waiting.order.tag), write));
    m_polling->poller().planEverything();
}

// While a write is under way the cache holds what is not in the PLC yet.
void Server::noteExchange(const Exchange& exchange)
{
    if (exchange.verdict == ReplyVerdict::Interrupted)
        return;
    const bool isAnswered =
        exchange.answer == DriverAnswer::Accepted || exchange.verdict == ReplyVerdict::Refused;
    m_badInARow = isAnswered ? 0 : m_badInARow + 1;
    if (isAnswered)
        setState(QStringLiteral("up"), {});
    else if (m_badInARow >= badUntilDown || exchange.verdict == ReplyVerdict::LinkLost)
        setState(QStringLiteral("down"), verdictText(exchange.verdict));
    if (m_isWriting || exchange.frame.isRead == 0)
        return;
    const RegisterRange block = requestRange(m_connection->catalogue(), exchange.frame);
    if (exchange.hasFailed())
        m_tags.noteFailure(block);
    else if (exchange.answer == DriverAnswer::Accepted)
        m_tags.noteRead(
            block,
            [this](const RegisterRange& range) { return m_connection->session().values(range); },
            now());
}

void Server::noteLinkState(const QString& text)
{
    if (!m_connection)
        setState(QStringLiteral("opening"), text.section(QStringLiteral("; retrying"), 0, 0));
    else if (!m_connection->link().isOpen())
        setState(QStringLiteral("down"), text);
}

void Server::setState(const QString& link, const QString& reason)
{
    if (link == m_link && (reason == m_reason || link == QLatin1String("down")))
        return;
    if (link == QLatin1String("down"))
        m_tags.noteDown(reason, now());
    m_link = link;
    m_reason = reason;
    m_stateIsTold = false;
}

// Only as much as is taken at once.
void Server::tell()
{
    m_toldMs = m_clock.elapsed();
    if (!m_channel.isTaken())
        return;
    if (!std::exchange(m_stateIsTold, true))
        m_channel.send(stateEvent(m_link, m_reason));
    while (m_channel.isTaken()) {
        const QByteArray event = m_tags.nextEvent(now());
        if (event.isEmpty())
            break;
        m_channel.send(event);
    }
    if (m_toldMs - m_aliveMs >= aliveEveryMs && m_channel.isTaken()) {
        m_channel.send(alive());
        m_aliveMs = m_toldMs;
    }
}

QByteArray Server::alive() const
{
    Liveliness report;
    report.cycleMs = static_cast<double>(m_cycleUs) / 1000.0;
    if (m_polling) {
        report.late = m_polling->late();
        report.load = m_polling->loadText();
    }
    return aliveEvent(m_connection ? m_connection->loop().statistics() : Statistics(), report);
}

// A write that has begun is ended when it was asked to stop, but not for a supervisor that is gone.
bool Server::mustEnd() const
{
    if (interrupted() || !m_endsAtMs)
        return interrupted();
    if (m_isWriting && !m_channel.hasEnded())
        return false;
    return (m_writes.isEmpty() && !m_isWriting) || m_clock.elapsed() >= *m_endsAtMs;
}

Moment Server::now() const
{
    return {m_clock.nsecsElapsed() / 1000, QDateTime::currentMSecsSinceEpoch()};
}

void Server::answer(const ServeOrder& order, const WriteAnswer& answer)
{
    m_channel.send(writtenEvent(order, answer));
}

}  // namespace

void addServeCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("serve", "Serve tags to a program, as JSON lines");
    const auto options = std::make_shared<ServeOptions>();
    command->add_option("tag", options->names, "Names or patterns of tags (default: all)");
    command
        ->add_option("--tags-of", options->plc,
                     "Only tags whose link column is empty or NAME (default: --plc)")
        ->type_name("NAME");
    addExamples(*command, {"fxhost serve --tags tags.csv 'boiler.*' <<<'{\"stop\":{}}'"});
    onRun(*command, action, [&common, options] {
        demandNamedLink(common);
        return Server(common, *options).run();
    });
}

}  // namespace fxtools
