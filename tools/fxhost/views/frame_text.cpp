// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/frame_text.h"

#include "tools/exchange/blocks.h"

namespace fxtools {

namespace {

constexpr char forceOnCommand = '7';
constexpr int commandPosition = 1;

QString visibleByte(char byte)
{
    switch (byte) {
    case stx:
        return QStringLiteral("␂");
    case etx:
        return QStringLiteral("␃");
    case enq:
        return QStringLiteral("␅");
    case ack:
        return QStringLiteral("␆");
    case nak:
        return QStringLiteral("␕");
    default:
        break;
    }
    if (byte >= ' ' && byte <= '~')
        return QString(QLatin1Char(byte));
    const auto code = static_cast<unsigned char>(byte);
    return "\\x" + QString::number(code, 16).toUpper().rightJustified(2, '0');
}

}  // namespace

QString visibleBytes(const QByteArray& bytes)
{
    QString text;
    for (const char byte : bytes)
        text += visibleByte(byte);
    return text;
}

QString requestText(const RegisterCatalogue& catalogue, const FRAME_PRO& frame)
{
    const RegisterRange range = requestRange(catalogue, frame);
    if (frame.isRead != 0)
        return "read " + fromToText(range);
    if (!range.type.isBit())
        return "write " + fromToText(range);
    const bool isOn = frame.frame[commandPosition] == forceOnCommand;
    return QStringLiteral("force %1 %2").arg(range.nameOf(0), isOn ? "on" : "off");
}

QString answerText(DriverAnswer answer)
{
    switch (answer) {
    case DriverAnswer::NoFrame:
        return QStringLiteral("not handed over");
    case DriverAnswer::Accepted:
        return QStringLiteral("accepted");
    case DriverAnswer::Failed:
        return QStringLiteral("given up");
    case DriverAnswer::Repeat:
        return QStringLiteral("sent again");
    }
    return {};
}

}  // namespace fxtools
