// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost serve: keeps the tags of one PLC fresh for a program that supervises it. Values, their
// quality and the state of the link go out as JSON lines; writes come in as such.
//
// Everything runs in one thread: lines are taken and sent wherever something is awaited.

#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/serving/line_channel.h"
#include "tools/fxhost/serving/serve_protocol.h"
#include "tools/quoted.h"
#include "tools/tags/tag_check.h"

#include <csignal>

#include <unistd.h>

namespace fxtools {

namespace {

constexpr qint64 aliveEveryMs = 1000;
constexpr qint64 tellEveryMs = 100;
constexpr qint64 graceMs = 500;  // for what is under way when it is to end

struct ServeOptions
{
    std::vector<std::string> names;  // none: all
    std::string plc;                 // as the tag file calls it
};

QVector<Tag> tagsToServe(const ServeOptions& options, const AddressServices& services,
                         int wordsPerFrame)
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
    requireNoErrors(services.source.file, checkReplies(tags, wordsPerFrame));
    return tags;
}

ConnectionSettings settingsOf(const CommonOptions& common, const ServeOptions& options)
{
    ConnectionSettings settings = connectionSettings(common);
    if (!options.plc.empty())
        settings.tags.plc = QString::fromStdString(options.plc);
    return settings;
}

class Server
{
public:
    Server(const CommonOptions& common, const ServeOptions& options);

    ExitCode run();

private:
    bool tick();
    void takeLines();
    void take(const ServeOrder& order);
    void write(const ServeOrder& order);
    void tell();
    QByteArray alive();
    bool mustEnd() const;

    ConnectionSettings m_settings;
    AddressServices m_services;
    QVector<Tag> m_asked;
    TagService m_service;
    QElapsedTimer m_clock;
    LineChannel m_channel = LineChannel(STDIN_FILENO, STDOUT_FILENO);
    bool m_stateIsTold = false;
    std::optional<qint64> m_endsAtMs;  // asked to end
    qint64 m_aliveMs = -aliveEveryMs;
    qint64 m_toldMs = 0;
};

Server::Server(const CommonOptions& common, const ServeOptions& options)
    : m_settings(settingsOf(common, options)),
      m_services(m_settings.library, m_settings.tags, m_settings.station),
      m_asked(tagsToServe(options, m_services, m_settings.session.wordsPerFrame)),
      m_service(m_settings, m_asked)
{
    m_clock.start();
    // A supervisor that is gone is noticed when something is written.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    m_service.onTick = [this] { return tick(); };
    m_service.onPause = [this] { tell(); };
    m_service.onRead = [this](const QVector<int>&) { tell(); };  // before the cycle ends
    m_service.wait = [this](qint64 timeMs) { m_channel.wait(timeMs); };
    m_service.onLinkChanged = [this] { m_stateIsTold = false; };
    m_service.onWritten = [this](const QString& id, int tag, const WriteAnswer& answer) {
        m_channel.send(writtenEvent(id, m_asked[tag].name, answer));
    };
}

ExitCode Server::run()
{
    m_channel.send(helloEvent(QStringLiteral(FX_VERSION), m_settings.link, m_asked));
    RoundEnd end = RoundEnd::Interrupted;
    try {
        end = m_service.run();
    } catch (const Failure& failure) {
        if (failure.code() != ExitCode::Interrupted)
            throw;
    }
    m_channel.finish(graceMs);
    if (!m_channel.problem().isEmpty())
        throw Failure(ExitCode::File, "could not write all output: " + m_channel.problem());
    if (end == RoundEnd::LinkLost)
        return ExitCode::LinkNotOpened;
    return interruptSignal() == SIGINT ? ExitCode::Interrupted : ExitCode::Good;
}

bool Server::tick()
{
    takeLines();
    if (m_clock.elapsed() - m_toldMs >= tellEveryMs)
        tell();
    return mustEnd();
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
    switch (order.kind) {
    case ServeOrder::Kind::Refresh:
        m_service.tags().tellAgain();
        m_stateIsTold = false;
        break;
    case ServeOrder::Kind::Stop:
        m_endsAtMs = m_endsAtMs.value_or(m_clock.elapsed() + graceMs);
        break;
    case ServeOrder::Kind::Write:
        write(order);
        break;
    }
}

void Server::write(const ServeOrder& order)
{
    try {
        const int index = m_service.tags().find(order.tag);
        if (index < 0)
            throw Failure(ExitCode::Usage, "unknown tag " + quoted(order.tag));
        const Tag& tag = m_asked[index];
        if (tag.access != TagAccess::ReadWrite)
            throw Failure(ExitCode::Usage, tag.name + " has no access=rw in the tag file");
        const Assignment assignment =
            assignmentOf(tag, writtenText(tag, order.value), m_services.catalogue);
        requireOwnMemory(assignment.asked.range, m_services.catalogue);
        m_service.write(order.id, index, assignment);
    } catch (const Failure& failure) {
        m_channel.send(writtenEvent(order.id, order.tag, refusal(failure.text())));
    }
}

// Only as much as is taken at once.
void Server::tell()
{
    m_toldMs = m_clock.elapsed();
    if (!m_channel.isTaken())
        return;
    if (!std::exchange(m_stateIsTold, true))
        m_channel.send(stateEvent(m_service.link(), m_service.reason()));
    while (m_channel.isTaken()) {
        const QByteArray event = nextValuesEvent(m_service.tags(), m_service.now());
        if (event.isEmpty())
            break;
        m_channel.send(event);
    }
    if (m_toldMs - m_aliveMs >= aliveEveryMs && m_channel.isTaken()) {
        m_channel.send(alive());
        m_aliveMs = m_toldMs;
    }
}

QByteArray Server::alive()
{
    Liveliness report;
    report.cycleMs = static_cast<double>(m_service.cycleUs()) / 1000.0;
    if (m_service.polling()) {
        report.late = m_service.polling()->late();
        report.load = m_service.polling()->loadText();
    }
    Connection* const connection = m_service.connection();
    return aliveEvent(connection ? connection->loop().statistics() : Statistics(), report);
}

// A write that has begun is ended when it was asked to stop, but not for a supervisor that is gone.
bool Server::mustEnd() const
{
    if (interrupted() || !m_endsAtMs)
        return interrupted();
    const bool isBusy = m_service.isBusy();
    if (isBusy && !m_channel.hasEnded())
        return false;
    return (!m_service.areJobsWaiting() && !isBusy) || m_clock.elapsed() >= *m_endsAtMs;
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
