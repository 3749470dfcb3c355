// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/plc/devices.h"

#include "tools/fxsim/plc/error.h"

#include <QRegularExpression>
#include <QStringList>

namespace fxsim {

namespace {

// clang-format off
constexpr DeviceType types[] = {
    // name base first  last bits address
    {"X",     8,    0,  255,   1, 0x0080},
    {"Y",     8,    0,  255,   1, 0x00A0},
    {"M",    10,    0, 1535,   1, 0x0100},  // those up to M2047 would be C and M8000
    {"M",    10, 2048, 3071,   1, 0x0200},
    {"M",    10, 8000, 8255,   1, 0x01E0},
    {"S",    10,    0,  999,   1, 0x0000},
    {"T",    10,    0,  255,   1, 0x00C0},
    {"C",    10,    0,  255,   1, 0x01C0},
    {"D",    10,    0, 7999,  16, 0x1000},
    {"D",    10, 8000, 8255,  16, 0x0E00},
    {"TV",   10,    0,  255,  16, 0x0800},
    {"CV",   10,    0,  199,  16, 0x0A00},
    {"32CV", 10,  200,  255,  32, 0x0C00},
    {"SM",   10, 8000, 8255,   1, 0x01E0},
    {"SD",   10, 8000, 8255,  16, 0x0E00},
};
// clang-format on

QString rangesOf(const QString& name)
{
    QStringList ranges;
    for (const DeviceType& type : types) {
        if (name == QLatin1String(type.name))
            ranges.append(Device{&type, type.first}.name() + " to " +
                          Device{&type, type.last}.name());
    }
    return ranges.join(" or ");
}

}  // namespace

QString Device::name() const
{
    return QLatin1String(type->name) + QString::number(number, type->base);
}

int Device::address() const
{
    const int index = number - type->first;
    return type->address + (type->bits == 1 ? index / bitsPerByte : index * type->byteCount());
}

int Device::bit() const
{
    return type->bits == 1 ? (number - type->first) % bitsPerByte : 0;
}

std::optional<Device> parseDevice(const QString& text)
{
    static const QRegularExpression form("^(32CV|[A-Z]+)([0-9]+)$",
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QString name = match.captured(1).toUpper();
    const QString ranges = rangesOf(name);
    if (ranges.isEmpty())
        throw invalid("device", text, "X, Y, M, S, T, C, D, TV, CV or 32CV");
    for (const DeviceType& type : types) {
        bool isNumber = false;
        const int number = match.captured(2).toInt(&isNumber, type.base);
        if (name == QLatin1String(type.name) && isNumber && number >= type.first &&
            number <= type.last)
            return Device{&type, number};
    }
    const bool octal = name == "X" || name == "Y";
    throw invalid("device", text, ranges + (octal ? ", in octal" : QString()));
}

Device device(const char* name)
{
    return parseDevice(QLatin1String(name)).value();
}

qint64 valueOf(const PlcMemory& memory, const Device& device)
{
    const int byteCount = device.type->byteCount();
    if (byteCount == 0)
        return memory.bit(device.address(), device.bit()) ? 1 : 0;
    const quint32 value = memory.value(device.address(), byteCount);
    return byteCount == 2 ? static_cast<qint16>(value) : static_cast<qint32>(value);
}

}  // namespace fxsim
