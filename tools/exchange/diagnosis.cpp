// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/diagnosis.h"

#include "tools/quoted.h"

#include <QCoreApplication>

#include <algorithm>

namespace fxtools {

namespace {

struct Diagnosis
{
    Q_DECLARE_TR_FUNCTIONS(fxtools::Diagnosis)
};

bool plcIsThere(ReplyVerdict verdict)
{
    return verdict == ReplyVerdict::Good || verdict == ReplyVerdict::Refused;
}

QString silenceAdvice(const Finding& finding)
{
    if (finding.check.answersEnquiry)
        return Diagnosis::tr("The PLC answers ENQ but no request. Is another program using this "
                             "port? Is it an FX programming port?");
    return Diagnosis::tr("No reply at all. Is the PLC on? Is the cable in the programming port? "
                         "Are the send and receive lines swapped?");
}

QString babbleAdvice(const LineCheck& check)
{
    return Diagnosis::tr("Something on this line sends by itself: %1. Is it a scale or a code "
                         "reader? Is it the right port?")
        .arg(quoted(QString::fromLatin1(check.unasked).simplified()));
}

QString advice(ReplyVerdict verdict, const Finding& finding)
{
    switch (verdict) {
    case ReplyVerdict::Good:
        return {};
    case ReplyVerdict::Refused:
        return Diagnosis::tr("The PLC answers, but refuses the request (NAK). Line settings and "
                             "wiring are correct. Try to read another register.");
    case ReplyVerdict::Silence:
        return silenceAdvice(finding);
    case ReplyVerdict::LinkLost:
        return Diagnosis::tr("The link was lost. Was the adapter unplugged, or did the server "
                             "close the connection?");
    case ReplyVerdict::Interrupted:
        return Diagnosis::tr("Interrupted before there was a result.");
    case ReplyVerdict::Late:
        return Diagnosis::tr("The replies are right but late. Set a longer --timeout, or leave "
                             "it out: then it adapts.");
    case ReplyVerdict::HighBits:
        return Diagnosis::tr("Received characters have bit 7 set: the data bits or the parity "
                             "of the two ends differ. FX ports use 7E1.");
    case ReplyVerdict::Echo:
        return Diagnosis::tr("The request comes back. Either the adapter echoes, or its send and "
                             "receive lines are connected.");
    case ReplyVerdict::Surrounded:
        return Diagnosis::tr("The right reply comes with extra characters. Check the converter "
                             "on this line; --tolerant accepts such replies.");
    case ReplyVerdict::Babble:
        return babbleAdvice(finding.check);
    case ReplyVerdict::Incomplete:
    case ReplyVerdict::TooLong:
    case ReplyVerdict::NotAFrame:
    case ReplyVerdict::WrongSum:
        return Diagnosis::tr("Replies are damaged. Check the baud rate, the parity and the "
                             "cable, and look for electrical interference.");
    }
    return {};
}

// A percentage hides one error among thousands.
QString goodText(const LineCheck& check)
{
    constexpr int nearlyAllPercent = 99;
    const int all = check.measured();
    const int good = check.exchanges.value(ReplyVerdict::Good);
    return check.goodPercent() < nearlyAllPercent
               ? Diagnosis::tr("Only %1 % of %2").arg(check.goodPercent()).arg(all)
               : Diagnosis::tr("All but %1 of %2").arg(all - good).arg(all);
}

// Of a PLC that answers.
QStringList troubles(const Finding& finding)
{
    const LineCheck& check = finding.check;
    QStringList troubles;
    if (finding.needsTolerance)
        troubles += advice(ReplyVerdict::Surrounded, finding);
    if (check.worst() != ReplyVerdict::Good) {
        troubles +=
            Diagnosis::tr("%1 exchanges were good; the most frequent error is '%2'. %3")
                .arg(goodText(check), verdictText(check.worst()), advice(check.worst(), finding));
    }
    if (check.blocksFail()) {
        troubles += Diagnosis::tr("Blocks of %1 bytes fail (%2): use at most %3 words in a frame.")
                        .arg(check.blocks.last().byteCount)
                        .arg(verdictText(check.blocks.last().verdict))
                        .arg(check.words());
    }
    if (!check.unasked.isEmpty())
        troubles += babbleAdvice(check);
    return troubles;
}

QString responseText(qint64 timeUs)
{
    return timeUs < 1000 ? QStringLiteral("<1 ms") : QStringLiteral("%1 ms").arg(timeUs / 1000);
}

}  // namespace

const Finding& mostTelling(const QVector<Finding>& findings)
{
    const Finding* best = &findings.first();
    for (const Finding& finding : findings) {
        if (plcIsThere(finding.check.verdict))
            return finding;
        if (best->check.verdict == ReplyVerdict::Silence &&
            (finding.check.verdict != ReplyVerdict::Silence || finding.check.answersEnquiry))
            best = &finding;
    }
    return *best;
}

QString enquiryText(const Finding& finding)
{
    return finding.check.answersEnquiry ? QStringLiteral("answered") : QStringLiteral("no answer");
}

QString requestText(const Finding& finding)
{
    return finding.wasAskedToRead ? verdictText(finding.check.verdict) : QStringLiteral("not sent");
}

QString plcText(const LineCheck& check)
{
    if (!check.plc)
        return {};
    return QStringLiteral("type %1, version %2.%3, %4%5%6")
        .arg(check.plc->type)
        .arg(check.plc->version / 100)
        .arg(check.plc->version % 100, 2, 10, QLatin1Char('0'))
        .arg(check.plc->isRunning ? "running" : "stopped", check.plc->hasError ? ", error" : "",
             check.plc->hasLowBattery ? ", battery low" : "");
}

QString measurementText(const LineCheck& check)
{
    return QStringLiteral("%1 of %2 exchanges good; replies: median %3, 95 % in %4, "
                          "longest %5")
        .arg(check.exchanges.value(ReplyVerdict::Good))
        .arg(check.measured())
        .arg(responseText(check.responses.percentileUs(50)),
             responseText(check.responses.percentileUs(95)),
             responseText(check.responses.largestUs()));
}

QString meaning(const Finding& finding)
{
    const LineCheck& check = finding.check;
    if (check.verdict != ReplyVerdict::Good)
        return advice(check.verdict, finding);
    if (check.wentSilent)
        return Diagnosis::tr("The PLC answered (%1), then no more. Was it switched off, or is a "
                             "plug loose?")
            .arg(finding.setting);
    const QStringList wrong = troubles(finding);
    return Diagnosis::tr("The PLC answers (%1). %2")
        .arg(finding.setting, wrong.isEmpty() ? Diagnosis::tr("All is well.") : wrong.join(' '));
}

LineCheck checkOf(const Statistics& statistics, bool isDown)
{
    LineCheck check;
    for (auto row = statistics.verdicts.cbegin(); row != statistics.verdicts.cend(); ++row) {
        if (row.key() != ReplyVerdict::Interrupted)  // says nothing of the line
            check.exchanges.insert(row.key(), static_cast<int>(row.value()));
    }
    check.answersEnquiry = statistics.enquiriesAnswered > 0;
    check.responses = statistics.responses;
    const bool hasAnswered = statistics.plcHasAnswered();
    check.wentSilent = hasAnswered && isDown;
    check.verdict = hasAnswered            ? ReplyVerdict::Good
                    : check.measured() > 0 ? check.worst()
                                           : ReplyVerdict::Silence;
    return check;
}

}  // namespace fxtools
