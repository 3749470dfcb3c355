// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A PLC in a few lines: 64 KiB of memory behind the four commands of the programming port. It knows
// byte addresses, and bit addresses of eight to the byte, and nothing of registers.

#ifndef TESTS_END_TO_END_TINY_PLC_H
#define TESTS_END_TO_END_TINY_PLC_H

#include <QByteArray>

#include <vector>

class TinyPlc
{
public:
    TinyPlc() : memory(0x10000) {}

    // The reply to a frame: data, ACK, or NAK for whatever it does not understand.
    QByteArray answer(const QByteArray& frame);
    // Sets the bytes from an address on.
    void put(int address, const std::vector<int>& bytes);
    std::vector<int> at(int address, int byteCount) const;

    std::vector<unsigned char> memory;

private:
    QByteArray read(int address, int byteCount) const;
    void write(int address, const QByteArray& hexData);
    void force(int bitAddress, bool on);
};

#endif
