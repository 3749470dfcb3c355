// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/command_line.h"

#include <algorithm>

namespace fxtools {

namespace {

constexpr int slowReplyMs = 1000;  // slower ones need a longer time-out from the start

}  // namespace

QString commandLine(const Finding& finding)
{
    LinkSettings link = finding.link;
    const LineCheck& check = finding.check;
    if (check.blocksFail())
        plcSettings(link).words = std::max(check.words(), leastWordsPerFrame);
    QString line = "fxhost --link '" + linkText(link) + '\'';
    const qint64 slowestMs = check.responses.largestUs() / 1000;
    if (slowestMs > slowReplyMs)
        line += QStringLiteral(" --timeout %1").arg((2 * slowestMs + 99) / 100 * 100);
    if (finding.needsTolerance || check.worst() == ReplyVerdict::Surrounded)
        line += QStringLiteral(" --tolerant");
    return line + " read D0:8";
}

}  // namespace fxtools
