// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One exchange as the host saw it: the frame that was sent, what came back, and the result of the
// driver. The exchange loop produces them; statistics, monitor and recorder consume them.

#pragma once

#include "tools/exchange/reply_verdict.h"

#include <QString>
#include <QVector>

#include <functional>

namespace fxtools {

enum class ExchangeKind
{
    Write,
    ConditionalRead,
    CyclicRead,
    RecipeDownload,
    RecipeUpload,
};

const QVector<ExchangeKind>& allExchangeKinds();
QString kindText(ExchangeKind kind);

// What intf_dealRcvFrame returns.
enum class DriverAnswer
{
    NoFrame = fxNoFrameInFlight,
    Accepted = fxReplyAccepted,
    Failed = fxExchangeFailed,
    Repeat = fxSendAgain,
};

struct Exchange
{
    ExchangeKind kind = ExchangeKind::CyclicRead;
    FRAME_PRO frame;
    bool wasSent = false;   // not if the line was never quiet before it
    QByteArray reply;       // the bytes that came in time
    QByteArray thrownAway;  // what came after a bad or missing reply until the line was quiet
    QByteArray handed;      // what the driver was given
    ReplyVerdict verdict = ReplyVerdict::Silence;
    DriverAnswer answer = DriverAnswer::NoFrame;
    QString errorText;       // of the driver
    qint64 startedUs = 0;    // since the loop was made
    qint64 responseUs = 0;   // from the last byte sent to the last of the reply, late or not
    qint64 tookUs = 0;       // from the first byte sent until the line is clear for the next frame
    bool mayBeDone = false;  // this attempt, or one before it, may have reached the PLC unanswered

    bool hasEnded() const { return answer == DriverAnswer::Accepted || hasFailed(); }
    bool hasFailed() const { return answer == DriverAnswer::Failed; }
};

// How far something long has come.
using Progress = std::function<void(int done, int total)>;

}  // namespace fxtools
