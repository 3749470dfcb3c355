// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See plc_memory.h. Addresses of the bench wrap at 64 KiB, so that no program can leave the memory.

#include "tools/fxsim/plc/plc_memory.h"

namespace fxsim {

namespace {

constexpr int addressMask = addressableBytes - 1;

void mark(QVector<bool>& present, const QVector<AddressRange>& ranges, bool value)
{
    for (const AddressRange& range : ranges) {
        for (int address = range.first; address <= range.last; ++address)
            present[address & addressMask] = value;
    }
}

}  // namespace

PlcMemory::PlcMemory() : m_bytes(addressableBytes, '\0'), m_present(addressableBytes, true) {}

void PlcMemory::setPresent(const QVector<AddressRange>& ranges)
{
    m_present.fill(false);
    mark(m_present, ranges, true);
}

void PlcMemory::setMissing(const QVector<AddressRange>& ranges)
{
    mark(m_present, ranges, false);
}

void PlcMemory::setMirrors(const QVector<MirrorWindow>& mirrors)
{
    m_mirrors = mirrors;
}

bool PlcMemory::has(int address, int byteCount) const
{
    if (address < 0 || byteCount < 0 || byteCount > addressableBytes - address)
        return false;
    for (int offset = 0; offset < byteCount; ++offset) {
        if (!m_present[address + offset])
            return false;
    }
    return true;
}

QByteArray PlcMemory::read(int address, int byteCount) const
{
    return m_bytes.mid(address, byteCount);
}

void PlcMemory::write(int address, const QByteArray& bytes)
{
    m_bytes.replace(address, bytes.size(), bytes);
    for (int offset = 0; offset < bytes.size(); ++offset)
        mirrorByte(address + offset);
}

void PlcMemory::forceBit(int bitAddress, bool on)
{
    const int address = bitAddress / bitsPerByte;
    setBit(address, bitAddress % bitsPerByte, on);
    mirrorByte(address);
}

quint8 PlcMemory::byte(int address) const
{
    return static_cast<quint8>(m_bytes[address & addressMask]);
}

void PlcMemory::setByte(int address, quint8 value)
{
    m_bytes[address & addressMask] = static_cast<char>(value);
}

bool PlcMemory::bit(int address, int bitNumber) const
{
    return (byte(address) >> bitNumber & 1) != 0;
}

void PlcMemory::setBit(int address, int bitNumber, bool on)
{
    const int mask = 1 << bitNumber;
    setByte(address, static_cast<quint8>(on ? byte(address) | mask : byte(address) & ~mask));
}

quint32 PlcMemory::value(int address, int byteCount) const
{
    quint32 result = 0;
    for (int offset = byteCount - 1; offset >= 0; --offset)
        result = result << bitsPerByte | byte(address + offset);
    return result;
}

void PlcMemory::setValue(int address, int byteCount, quint32 value)
{
    for (int offset = 0; offset < byteCount; ++offset) {
        setByte(address + offset, static_cast<quint8>(value));
        value >>= bitsPerByte;
    }
}

void PlcMemory::setImage(const QByteArray& image)
{
    m_bytes = image.leftJustified(addressableBytes, '\0', true);
}

void PlcMemory::mirrorByte(int address)
{
    for (const MirrorWindow& mirror : m_mirrors) {
        const int offset = address - mirror.from;
        if (offset >= 0 && offset < mirror.byteCount)
            setByte(mirror.to + offset, byte(address));
    }
}

}  // namespace fxsim
