// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/connection.h"

#include "tools/link/interrupt.h"
#include "tools/quoted.h"

namespace fxtools {

static_assert(mostWordsPerFrame == fxMaxWriteWords);

namespace {

TagSource tagSourceOf(const CommonOptions& common)
{
    return {QString::fromStdString(common.tags), common.link.configured};
}

}  // namespace

AddressServices::AddressServices(const QString& libraryPath, const TagSource& tagSource,
                                 std::optional<int> ownStation)
    : library(libraryPath), catalogue(library, ownStation), source(tagSource)
{}

const QVector<Tag>& AddressServices::tags() const
{
    if (!m_tags)
        m_tags = readTags(source.file, catalogue);
    return *m_tags;
}

AddressServices::AddressServices(const CommonOptions& common)
    : AddressServices(QString::fromStdString(common.library), tagSourceOf(common))
{}

ConnectionSettings connectionSettings(const CommonOptions& common,
                                      const LinkSettings& linkUnlessSaid)
{
    ConnectionSettings settings;
    settings.library = QString::fromStdString(common.library);
    settings.tags = tagSourceOf(common);
    settings.link = common.link.settings(linkUnlessSaid);
    settings.station = plcSettings(settings.link).station;
    const std::optional<int> words = plcSettings(settings.link).words;
    settings.session.failLimit = common.retries + 1;
    if (common.wordsPerFrame > 0 || words)
        settings.session.wordsPerFrame = common.wordsPerFrame > 0 ? common.wordsPerFrame : *words;
    settings.loop.isInterrupted = interrupted;
    settings.loop.tolerant = common.tolerant;
    if (common.timeoutMs > 0)
        settings.loop.timeout = TimeoutLimits::fixed(common.timeoutMs);
    if (common.reconnectS >= 0)
        settings.reconnectS = common.reconnectS;
    settings.timestamps = common.output.timestamps;
    return settings;
}

Connection::Connection(const ConnectionSettings& settings)
    : m_services(settings.library, settings.tags, settings.station),
      m_link(makeLink(settings.link)), m_keeper(*m_link.link, settings.reconnectS),
      m_session(library(), settings.session), m_loop(m_session, *m_link.link, settings.loop)
{
    m_keeper.isInterrupted = settings.loop.isInterrupted;
    m_keeper.onState = settings.onLinkState;
    if (!m_keeper.onState) {
        m_keeper.onState = [name = link().name(),
                            timestamps = settings.timestamps](const QString& text) {
            complain((timestamps ? timestamp() + "  " : QString()) + name + ": " + text);
        };
    }
    m_loop.onLinkLost = [this] { return reconnect(); };
    m_loop.onBabble = [](const QByteArray& heard) {
        complain("something on this line sends by itself: " +
                 quoted(QString::fromLatin1(heard).simplified()));
    };
    m_keeper.openFirst();
}

Connection::Connection(const CommonOptions& common) : Connection(connectionSettings(common))
{
    if (m_link.control && !common.output.quiet)
        m_loop.onFirstFrame = [] {
            complain("this is a simulated PLC; name a real one with --link");
        };
}

bool Connection::reconnect()
{
    if (!m_keeper.reopen(m_loop.statistics().total().accepted))
        return false;
    ++m_loop.statistics().reconnects;
    return true;
}

ExitCode exitCodeOf(ReplyVerdict verdict)
{
    switch (verdict) {
    case ReplyVerdict::Good:
        return ExitCode::Good;
    case ReplyVerdict::Silence:
    case ReplyVerdict::Late:
        return ExitCode::Silence;
    case ReplyVerdict::LinkLost:
        return ExitCode::LinkNotOpened;
    case ReplyVerdict::Interrupted:
        return ExitCode::Interrupted;
    case ReplyVerdict::Refused:
        return ExitCode::Refused;
    case ReplyVerdict::Incomplete:
    case ReplyVerdict::TooLong:
    case ReplyVerdict::HighBits:
    case ReplyVerdict::Echo:
    case ReplyVerdict::NotAFrame:
    case ReplyVerdict::Surrounded:
    case ReplyVerdict::Babble:
    case ReplyVerdict::WrongSum:
        return ExitCode::Damaged;
    }
    return ExitCode::SomeFailed;
}

ExitCode exitCodeOf(const Statistics& statistics)
{
    const KindCounts total = statistics.total();
    if (total.failed == 0)
        return ExitCode::Good;
    if (statistics.plcHasAnswered())
        return ExitCode::SomeFailed;
    auto worst = ReplyVerdict::Silence;
    for (const ReplyVerdict verdict : allVerdicts()) {
        if (statistics.of(verdict) > statistics.of(worst))
            worst = verdict;
    }
    return exitCodeOf(worst);
}

}  // namespace fxtools
