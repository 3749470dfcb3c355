// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The memory of the simulated PLC: 64 KiB at the byte addresses that frames carry. It does not know
// what a byte stands for. Some addresses may be missing, and what a host writes in one window can
// appear in a second one too (mirrors). The frame server reads and writes here for the host;
// programs, images and control commands do so for the bench.

#pragma once

#include <QByteArray>
#include <QVector>

namespace fxsim {

constexpr int addressableBytes = 0x10000;  // a frame carries four hex digits of address
constexpr int bitsPerByte = 8;

struct AddressRange
{
    int first = 0;
    int last = 0;  // included
};

// What the host writes at `from` appears at `to` too; a mirror does not feed another mirror.
struct MirrorWindow
{
    int from = 0;
    int to = 0;
    int byteCount = 0;
};

class PlcMemory
{
public:
    PlcMemory();

    void setPresent(const QVector<AddressRange>& ranges);
    void setMissing(const QVector<AddressRange>& ranges);
    void setMirrors(const QVector<MirrorWindow>& mirrors);

    bool has(int address, int byteCount) const;

    // For the host: the caller has asked has() before; writes are mirrored.
    QByteArray read(int address, int byteCount) const;
    void write(int address, const QByteArray& bytes);
    void forceBit(int bitAddress, bool on);

    // For the bench: programs, images and control commands reach every byte; nothing is mirrored.
    quint8 byte(int address) const;
    void setByte(int address, quint8 value);
    bool bit(int address, int bitNumber) const;
    void setBit(int address, int bitNumber, bool on);
    quint32 value(int address, int byteCount) const;  // lowest byte first, 1 to 4 bytes
    void setValue(int address, int byteCount, quint32 value);

    const QByteArray& image() const { return m_bytes; }
    void setImage(const QByteArray& image);

private:
    void mirrorByte(int address);

    QByteArray m_bytes;
    QVector<bool> m_present;
    QVector<MirrorWindow> m_mirrors;
};

// What runs inside the PLC and changes its memory over time. The simulator starts it at power-on
// and advances it with each scan; the time counts from that start.
class Program
{
public:
    virtual ~Program() = default;
    virtual void start(PlcMemory& memory) = 0;
    virtual void advance(PlcMemory& memory, qint64 elapsedMs) = 0;
};

}  // namespace fxsim
