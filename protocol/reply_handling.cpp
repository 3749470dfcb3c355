// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Decides whether an exchange has succeeded, is to be repeated or has failed, and has its effects
// carried out. The frame in flight stays where it is until its effects are done.

#include "cache/write_values.h"
#include "driver/intf.h"
#include "driver/mitsubishi_fx1s.h"
#include "protocol/end_of_exchange.h"
#include "protocol/error_report.h"
#include "protocol/frame_codec.h"
#include "protocol/reply_decoding.h"

namespace {

// Tells the cache how a host write ended; a recipe download is not one.
void endHostWriteInCache(bool isConfirmed)
{
    if (driver.operationKind != static_cast<int>(OperationKind::HostWrite))
        return;
    const VARIABLE& request = driver.frames.at(0).variable;
    write_FailOrSuc(request.stationNo, request.registerType, request.addressIndex, request.count,
                    isConfirmed ? 1 : 0);
}

FxReplyResult endAccepted()
{
    driver.lastExchangeFailed = 0;
    if (!driver.frames.isEmpty())
        driver.frames.removeFirst();
    dealListWhenFinish();
    driver.failCount = 0;
    return fxReplyAccepted;
}

FxReplyResult reject()
{
    ++driver.failCount;
    if (driver.failCount < driver.failLimit)
        return fxSendAgain;
    const ReadRange range(driver.frames.at(0));
    driver.lastExchangeFailed = 1;
    endHostWriteInCache(false);
    markStale(range);
    driver.frames.clear();
    driver.failCount = 0;
    dealListWhenFinish();
    return fxExchangeFailed;
}

// Takes the reply by value: the host may reuse its buffer in a callback.
FxReplyResult handleReply(QByteArray reply)
{
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(reply.constData());
    switch (judgeReply(bytes, static_cast<int>(reply.size()), driver.frames.at(0))) {
    case ReplyJudgement::Rejected:
        return reject();
    case ReplyJudgement::Acknowledged:
        endHostWriteInCache(true);
        return endAccepted();
    case ReplyJudgement::Data:
        driver.lastExchangeFailed = 0;
        storeReply(ReadRange(driver.frames.at(0)), reply);
        return endAccepted();
    }
    return fxNoFrameInFlight;
}

}  // namespace

int intf_dealRcvFrame(QByteArray& reply, QString& errorText)
{
    errorText = QLatin1String("");
    if (driver.frames.isEmpty())
        return fxNoFrameInFlight;
    errorText = getErrorInfo(reply);
    return handleReply(reply);
}
