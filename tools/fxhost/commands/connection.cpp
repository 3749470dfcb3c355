// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/connection.h"

#include "tools/link/interrupt.h"
#include "tools/quoted.h"

namespace fxtools {

namespace {

TagSource tagSourceOf(const CommonOptions& common)
{
    return {QString::fromStdString(common.tags), common.link.configured};
}

}  // namespace

AddressServices addressServices(const CommonOptions& common)
{
    return {QString::fromStdString(common.library), tagSourceOf(common)};
}

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
    settings.onLinkState = [timestamps = common.output.timestamps](const QString& link,
                                                                   const QString& text) {
        complain((timestamps ? timestamp() + "  " : QString()) + link + ": " + text);
    };
    settings.onBabble = [](const QByteArray& heard) {
        complain("something on this line sends by itself: " +
                 quoted(QString::fromLatin1(heard).simplified()));
    };
    return settings;
}

CommandConnection::CommandConnection(const CommonOptions& common)
    : Connection(connectionSettings(common))
{
    if (control() && !common.output.quiet)
        loop().onFirstFrame = [] {
            complain("this is a simulated PLC; name a real one with --link");
        };
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
