// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Any bytes as what comes over the line to the simulator, in pieces, with time between them.
// Asserted:
//  - without faults each reply is ACK, NAK or a frame of hex digits whose sum is right;
//  - nobody writes to a PLC without power;
//  - all replies have left in the end.

#include "fuzz/support/fuzz_target.h"
#include "tests/model/choices.h"
#include "tools/fxsim/line/session.h"

namespace {

using namespace fxsim;

constexpr char stx = '\x02', etx = '\x03', ack = '\x06', nak = '\x15';
constexpr qint64 longUs = 3600LL * 1000 * 1000;

QByteArray framed(const QByteArray& content)
{
    int sum = etx;
    for (const char character : content)
        sum += static_cast<unsigned char>(character);
    return stx + content + etx + QByteArray::number(0x100 + sum % 0x100, 16).right(2).toUpper();
}

// One piece of what a host sends: a frame, or anything.
QByteArray piece(Choices& choices)
{
    QByteArray bytes;
    const bool isFrame = choices.oneIn(2);
    for (int left = choices.below(24); left > 0; --left)
        bytes += isFrame && !choices.oneIn(16) ? "0123456789ABCDEF"[choices.below(16)]
                                               : static_cast<char>(choices.below(256));
    return isFrame ? framed(bytes) : bytes;
}

void judge(QByteArray replies)
{
    while (!replies.isEmpty()) {
        int bytes = 1;
        if (replies[0] == stx) {
            const int end = replies.indexOf(etx);
            require(end > 0 && replies.size() >= end + 3, "a reply is cut");
            bytes = end + 3;
            require(replies.left(bytes) == framed(replies.mid(1, end - 1)),
                    "a reply's sum is wrong");
        } else {
            require(replies[0] == ack || replies[0] == nak, "not a reply");
        }
        replies.remove(0, bytes);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t byteCount)
{
    ByteChoices choices(bytes, byteCount);
    Settings settings;
    settings.enquiry =
        choices.oneOf({EnquiryMode::Optional, EnquiryMode::Needed, EnquiryMode::Ignored});
    settings.onError = choices.oneOf({OnError::Nak, OnError::Silence});
    settings.maxBytes = choices.oneOf({64, 2, 128});
    const bool isFaulty = choices.oneIn(3);
    if (isFaulty)
        settings.faults = parseFaults(QStringLiteral("mixed=0.5,power-cycle:20=0.02"));
    qint64 nowUs = 0;
    Simulator plc(settings, nullptr, nowUs);
    Session session(plc, "fuzzed");
    QByteArray replies;
    bool isCut = false;
    while (!choices.exhausted()) {
        if (choices.oneIn(16)) {
            plc.powerCycle(choices.below(100), nowUs);
            isCut = true;
        }
        const QByteArray before = plc.memory().image();
        const bool isOff = plc.isOff(nowUs);
        session.receive(piece(choices), nowUs);
        require(!isOff || plc.memory().image() == before, "a PLC without power was written to");
        nowUs += choices.below(50000);
        plc.advance(nowUs);
        replies += session.takeDue(nowUs);
        session.takeLinkDrop();
    }
    replies += session.takeDue(nowUs + longUs);
    require(session.nextDueUs() == nothingDue, "a reply never leaves");
    if (!isFaulty && !isCut)
        judge(replies);
    if (showAnswer)
        showAnswer(replies.toHex(' ').toStdString());
    return 0;
}
