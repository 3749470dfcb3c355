// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/line/characters.h"

namespace fxsim {

int hexDigitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

int hexNumber(std::string_view digits)
{
    int number = 0;
    for (const char digit : digits) {
        const int value = hexDigitValue(digit);
        if (value < 0)
            return -1;
        number = number << 4 | value;
    }
    return number;
}

QByteArray hexOfBytes(const QByteArray& bytes)
{
    constexpr char hexDigits[] = "0123456789ABCDEF";
    QByteArray digits(2 * bytes.size(), Qt::Uninitialized);
    char* next = digits.data();
    for (const char byte : bytes) {
        *next++ = hexDigits[static_cast<quint8>(byte) >> 4];
        *next++ = hexDigits[static_cast<quint8>(byte) & 0xF];
    }
    return digits;
}

QByteArray bytesOfHex(std::string_view digits)
{
    return QByteArray::fromHex(
        QByteArray::fromRawData(digits.data(), static_cast<int>(digits.size())));
}

quint8 sumOf(std::string_view fromCommandToEtx)
{
    quint8 sum = 0;
    for (const char character : fromCommandToEtx)
        sum = static_cast<quint8>(sum + static_cast<quint8>(character));
    return sum;
}

QByteArray framed(const QByteArray& content)
{
    QByteArray frame = stx + content + etx;
    const quint8 sum =
        sumOf(std::string_view(frame.constData(), static_cast<size_t>(frame.size())).substr(1));
    return frame += hexOfBytes(QByteArray(1, static_cast<char>(sum)));
}

}  // namespace fxsim
