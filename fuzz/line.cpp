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

QByteArray digits(Choices& choices, int count)
{
    QByteArray text;
    for (; count > 0; --count)
        text += "0123456789ABCDEF"[choices.below(16)];
    return text;
}

// A request as a host sends it: of any address, of a few bytes.
QByteArray request(Choices& choices)
{
    const char command = choices.oneOf({'0', '1', '7', '8', '4', 'B'});
    if (command > '1')
        return command + digits(choices, choices.oneOf({4, 0}));
    const int byteCount = choices.below(5);
    return command + digits(choices, 4) + '0' + QByteArray::number(byteCount) +
           digits(choices, command == '1' ? 2 * byteCount : 0);
}

QByteArray anything(Choices& choices)
{
    QByteArray bytes;
    for (int left = choices.below(24); left > 0; --left)
        bytes += static_cast<char>(choices.below(256));
    return bytes;
}

// One piece of what a host sends.
QByteArray piece(Choices& choices)
{
    switch (choices.below(4)) {
    case 0:
        return anything(choices);
    case 1:
        return framed(anything(choices));
    case 2:
        return QByteArray(1, '\x05');  // ENQ
    default:
        return framed(request(choices));
    }
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
