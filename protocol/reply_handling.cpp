// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Decides whether an exchange has succeeded, is to be repeated or has failed, and has its effects
// carried out. The frame in flight stays where it is until its effects are done.

#include "address/register_types.h"
#include "cache/polled_values.h"
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
    if (driver.kind() != OperationKind::HostWrite)
        return;
    const VARIABLE& request = driver.frames.at(0).variable;
    write_FailOrSuc(request.stationNo, request.registerType, request.addressIndex, request.count,
                    isConfirmed ? 1 : 0);
}

// Twice the areas that the read covers are marked, four times those of a read of counters.
void markFailedRead(const FRAME_PRO& frame)
{
    const VARIABLE& request = frame.variable;
    const RegisterType* type = findRegisterType(request.registerType);
    const int charsPerArea = type != nullptr && isBit(*type) ? 1 : 2;
    markStale(request.stationNo, request.registerType, request.addressIndex,
              dataChars(frame) / charsPerArea);
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

FxReplyResult acceptData(const QByteArray& reply)
{
    const FRAME_PRO& frame = driver.frames.at(0);
    const VARIABLE& request = frame.variable;
    driver.lastExchangeFailed = 0;
    storePolledValues(request.stationNo, request.registerType, request.addressIndex,
                      decodeReply(frame, reply));
    return endAccepted();
}

FxReplyResult acceptWrite()
{
    endHostWriteInCache(true);
    return endAccepted();
}

FxReplyResult reject()
{
    ++driver.failCount;
    if (driver.failCount < driver.failLimit)
        return fxSendAgain;
    driver.lastExchangeFailed = 1;
    markFailedRead(driver.frames.at(0));
    endHostWriteInCache(false);
    driver.frames.clear();
    driver.failCount = 0;
    dealListWhenFinish();
    return fxExchangeFailed;
}

}  // namespace

int intf_dealRcvFrame(QByteArray& reply, QString& errorText)
{
    errorText = QLatin1String("");
    if (driver.frames.isEmpty())
        return fxNoFrameInFlight;
    errorText = getErrorInfo(reply);
    switch (judgeReply(reply, driver.frames.at(0))) {
    case ReplyJudgement::Data:
        return acceptData(reply);
    case ReplyJudgement::Acknowledged:
        return acceptWrite();
    case ReplyJudgement::Rejected:
        break;
    }
    return reject();
}
