// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/reply_verdict.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace fxtools {

namespace {

constexpr int trailerLength = 1 + 2;              // ETX, sum
constexpr int shortestFrame = 1 + trailerLength;  // STX, no data

struct VerdictRow
{
    ReplyVerdict verdict;
    const char* name;
    const char* text;
};

constexpr VerdictRow verdictRows[] = {
    {ReplyVerdict::Good, "good", QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "good")},
    {ReplyVerdict::Silence, "silence", QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "no reply")},
    {ReplyVerdict::Refused, "refused",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "refused by the PLC (NAK)")},
    {ReplyVerdict::Incomplete, "incomplete",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "incomplete reply")},
    {ReplyVerdict::TooLong, "too-long",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "reply too long")},
    {ReplyVerdict::HighBits, "high-bits",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "bit 7 set: check data bits and parity")},
    {ReplyVerdict::Echo, "echo", QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "echo of the request")},
    {ReplyVerdict::NotAFrame, "not-a-frame",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "not a frame")},
    {ReplyVerdict::Surrounded, "surrounded",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "right reply among extra characters")},
    {ReplyVerdict::Babble, "babble",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "something on this line sends by itself")},
    {ReplyVerdict::WrongSum, "wrong-sum",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "damaged: wrong checksum")},
    {ReplyVerdict::Late, "late", QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "late reply")},
    {ReplyVerdict::LinkLost, "link-lost",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "the link was lost")},
    {ReplyVerdict::Interrupted, "interrupted",
     QT_TRANSLATE_NOOP("fxtools::ReplyVerdict", "interrupted")},
};

const VerdictRow& rowOf(ReplyVerdict verdict)
{
    return *std::find_if(std::begin(verdictRows), std::end(verdictRows),
                         [verdict](const VerdictRow& row) { return row.verdict == verdict; });
}

bool hasHighBit(const QByteArray& bytes)
{
    return std::any_of(bytes.begin(), bytes.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
}

// The last two digits of a frame are the sum over everything after STX, including ETX.
bool sumMatches(const QByteArray& reply, int etxPosition)
{
    unsigned sum = 0;
    for (int position = 1; position <= etxPosition; ++position)
        sum += static_cast<unsigned char>(reply.at(position));
    constexpr char digits[] = "0123456789ABCDEF";
    return reply.at(etxPosition + 1) == digits[sum >> 4 & 0xF] &&
           reply.at(etxPosition + 2) == digits[sum & 0xF];
}

ReplyVerdict judgeDataFrame(const QByteArray& reply)
{
    const int etxPosition = reply.size() - trailerLength;
    if (reply.size() < shortestFrame || reply.front() != stx || reply.at(etxPosition) != etx)
        return ReplyVerdict::NotAFrame;
    return sumMatches(reply, etxPosition) ? ReplyVerdict::Good : ReplyVerdict::WrongSum;
}

}  // namespace

QByteArray requestBytes(const FRAME_PRO& frame)
{
    const int byteCount = std::clamp(frame.frameLength, 0, fxRecordBytes);
    return QByteArray(reinterpret_cast<const char*>(frame.frame), byteCount);
}

ReplyVerdict judgeReply(const FRAME_PRO& frame, const QByteArray& reply)
{
    if (reply.isEmpty())
        return ReplyVerdict::Silence;
    if (reply.front() == nak)
        return ReplyVerdict::Refused;
    if (reply.startsWith(requestBytes(frame)))
        return ReplyVerdict::Echo;
    if (reply.size() > frame.replyLength && !rightReplyIn(frame, reply).isEmpty())
        return ReplyVerdict::Surrounded;
    if (hasHighBit(reply))
        return ReplyVerdict::HighBits;
    if (reply.size() < frame.replyLength)
        return ReplyVerdict::Incomplete;
    if (reply.size() > frame.replyLength)
        return ReplyVerdict::TooLong;
    if (frame.isRead == 0)
        return reply.front() == ack ? ReplyVerdict::Good : ReplyVerdict::NotAFrame;
    return judgeDataFrame(reply);
}

QByteArray rightReplyIn(const FRAME_PRO& frame, const QByteArray& bytes)
{
    if (frame.isRead == 0)
        return bytes.contains(ack) && !bytes.contains(nak) ? QByteArray(1, ack) : QByteArray();
    QByteArray found;
    for (int at = bytes.indexOf(stx); at >= 0; at = bytes.indexOf(stx, at + 1)) {
        const QByteArray candidate = bytes.mid(at, frame.replyLength);
        if (candidate.size() < frame.replyLength ||
            judgeDataFrame(candidate) != ReplyVerdict::Good || candidate == found)
            continue;
        if (!found.isEmpty())
            return {};
        found = candidate;
    }
    return found;
}

const QVector<ReplyVerdict>& allVerdicts()
{
    static const QVector<ReplyVerdict> all = [] {
        QVector<ReplyVerdict> verdicts;
        for (const VerdictRow& row : verdictRows)
            verdicts.append(row.verdict);
        return verdicts;
    }();
    return all;
}

QString verdictText(ReplyVerdict verdict)
{
    return QCoreApplication::translate("fxtools::ReplyVerdict", rowOf(verdict).text);
}

QString verdictName(ReplyVerdict verdict)
{
    return QString::fromLatin1(rowOf(verdict).name);
}

}  // namespace fxtools
