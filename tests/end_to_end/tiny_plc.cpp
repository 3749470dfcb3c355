// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The PLC's side of the programming port.

#include "tests/end_to_end/tiny_plc.h"

namespace {
const QByteArray acknowledge("\x06", 1);
const QByteArray refuse("\x15", 1);

// The sum of all characters behind STX, as two hexadecimal digits.
QByteArray sumOf(const QByteArray& behindStx)
{
    unsigned int sum = 0;
    for (const char character : behindStx)
        sum += static_cast<unsigned char>(character);
    return QByteArray(1, static_cast<char>(sum)).toHex().toUpper();
}

bool isWellFramed(const QByteArray& frame)
{
    if (frame.size() < 9 || frame.at(0) != '\x02' || frame.at(frame.size() - 3) != '\x03')
        return false;
    return sumOf(frame.mid(1, frame.size() - 3)) == frame.right(2);
}

int number(const QByteArray& hex)
{
    return hex.toInt(nullptr, 16);
}
}  // namespace

QByteArray TinyPlc::answer(const QByteArray& frame)
{
    if (!isWellFramed(frame))
        return refuse;
    const char command = frame.at(1);
    switch (command) {
    case '0':
        return read(number(frame.mid(2, 4)), number(frame.mid(6, 2)));
    case '1':
        write(number(frame.mid(2, 4)), frame.mid(8, frame.size() - 11));
        return acknowledge;
    case '7':
    case '8':
        force(number(frame.mid(4, 2) + frame.mid(2, 2)), command == '7');
        return acknowledge;
    default:
        return refuse;
    }
}

void TinyPlc::put(int address, const std::vector<int>& bytes)
{
    for (const int byte : bytes)
        memory.at(static_cast<std::size_t>(address++)) = static_cast<unsigned char>(byte);
}

std::vector<int> TinyPlc::at(int address, int byteCount) const
{
    return std::vector<int>(memory.begin() + address, memory.begin() + address + byteCount);
}

QByteArray TinyPlc::read(int address, int byteCount) const
{
    QByteArray data;
    for (int i = 0; i < byteCount; ++i)
        data.append(static_cast<char>(memory.at(static_cast<std::size_t>(address + i))));
    const QByteArray behindStx = data.toHex().toUpper() + '\x03';
    return '\x02' + behindStx + sumOf(behindStx);
}

void TinyPlc::write(int address, const QByteArray& hexData)
{
    for (const char byte : QByteArray::fromHex(hexData))
        memory.at(static_cast<std::size_t>(address++)) = static_cast<unsigned char>(byte);
}

void TinyPlc::force(int bitAddress, bool on)
{
    unsigned char& byte = memory.at(static_cast<std::size_t>(bitAddress / 8));
    const unsigned int mask = 1U << (bitAddress % 8);
    byte = static_cast<unsigned char>(on ? byte | mask : byte & ~mask);
}
