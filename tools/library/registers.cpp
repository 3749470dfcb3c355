// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/registers.h"

#include <array>

namespace fxtools {

namespace {

// Positions of the texts that describe a type.
enum DescriptionField
{
    FormatField,
    LowestField,
    HighestField,
    WidthField,
    WritableField,
    descriptionFields,
};

// Positions in a frame: command, then four digits; those of a bit begin with the low byte.
constexpr int commandPosition = 1;
constexpr int addressPosition = 2;
constexpr int addressDigits = 4;
constexpr char writeWordsCommand = '1';

int addressIn(const FRAME_PRO& frame)
{
    const QByteArray digits(reinterpret_cast<const char*>(frame.frame) + addressPosition,
                            addressDigits);
    const int address = digits.toInt(nullptr, 16);
    const bool isForce = frame.isRead == 0 && frame.frame[commandPosition] != writeWordsCommand;
    return isForce ? (address & 0xFF) << 8 | address >> 8 : address;
}

// The driver does not tell its addresses, but the frames that it would send carry them.
void learnAddresses(const DriverLibrary& library, RegisterType& type)
{
    const auto empty = [&library] {
        int status = 0;
        library.initProperty(nullptr, 0, nullptr, &status, "1#0#0#1#32", nullptr);
    };
    empty();
    FRAME_PRO frame;
    QList<KEY_ADDRESS> keys = {planKey({type, 1, type.lowest, 1, {}})};
    library.addrMerge(keys);
    if (library.getSendFrame(&frame) == fxFrameToSend)
        type.readBase = addressIn(frame);
    empty();
    std::array<unsigned char, 4> zeros = {};
    library.setData(1, type.name, type.lowest, type.driverCount(1), zeros.data(), 0);
    if (type.writable && library.getSendFrame(&frame) == fxFrameToSend)
        type.writeBase = addressIn(frame);
    empty();
}

RegisterType describe(const DriverLibrary& library, const QString& name)
{
    QList<QString> fields;
    library.getRegDiscription(name, fields);
    if (fields.size() < descriptionFields)
        throw Failure(ExitCode::File, "the driver does not describe its register type " + name);
    RegisterType type;
    type.name = name;
    type.width = static_cast<RegisterWidth>(fields[WidthField].toInt());
    type.numberBase = fields[FormatField].startsWith('o') ? 8 : 10;
    type.lowest = fields[LowestField].toInt(nullptr, type.numberBase);
    type.highest = fields[HighestField].toInt(nullptr, type.numberBase);
    type.writable = fields[WritableField] == QLatin1String("1");
    learnAddresses(library, type);
    return type;
}

int bytesOf(RegisterWidth width)
{
    return 1 << static_cast<int>(width);
}

// How far apart neighbours are in the addresses for writing.
int writeStep(const RegisterType& type)
{
    return type.isBit() ? 1 : type.valueBytes();
}

// The register of a type that a write to this address changes; nothing if there is none.
std::optional<int> numberAt(const RegisterType& type, int writeAddress)
{
    const int offset = writeAddress - type.writeBase;
    if (offset < 0 || offset / writeStep(type) >= type.registers())
        return std::nullopt;
    return type.lowest + offset / writeStep(type);
}

}  // namespace

QString widthText(RegisterWidth width)
{
    return width == RegisterWidth::Bit
               ? QStringLiteral("bit")
               : QStringLiteral("%1 bits").arg(bitsPerByte * bytesOf(width));
}

int RegisterType::valueBytes() const
{
    return bytesOf(width);
}

int RegisterType::driverCount(int count) const
{
    return width == RegisterWidth::DoubleWord ? 2 * count : count;
}

int RegisterType::mostInFrame(int wordsPerFrame) const
{
    // The driver reads as many bytes of bits as words.
    return isBit() ? bitsPerByte * wordsPerFrame : qMax(wordsPerFrame / driverCount(1), 1);
}

QString RegisterType::numberText(int number) const
{
    return QString::number(number, numberBase);
}

int RegisterType::readAddress(int number) const
{
    const int offset = number - lowest;
    return readBase + (isBit() ? offset / bitsPerByte : offset * valueBytes());
}

int RegisterType::writeAddress(int number) const
{
    return writeBase + writeStep(*this) * (number - lowest);
}

RegisterRange RegisterRange::part(int offset, int partCount) const
{
    RegisterRange range = *this;
    range.first += offset;
    range.count = partCount;
    return range;
}

QVector<RegisterRange> RegisterRange::cut(int mostRegisters) const
{
    QVector<RegisterRange> parts;
    for (int offset = 0; offset < count; offset += mostRegisters)
        parts.append(part(offset, qMin(mostRegisters, count - offset)));
    return parts;
}

int RegisterRange::mostInFrame(int wordsPerFrame) const
{
    const int most = type.mostInFrame(wordsPerFrame);
    return together > most ? most : most - most % together;
}

QString RegisterRange::nameOf(int index) const
{
    const QString prefix = station == 1 ? QString() : QString::number(station) + '#';
    return prefix + (askedType.isEmpty() ? type.name : askedType) + type.numberText(first + index);
}

QString RegisterRange::identity(int index) const
{
    return QString::number(station) + '#' + type.name + type.numberText(first + index);
}

bool RegisterRange::isContinuedBy(const RegisterRange& next) const
{
    return identity(count) == next.identity(0);
}

QString RegisterRange::text() const
{
    return count == 1 ? nameOf(0) : nameOf(0) + ':' + QString::number(count);
}

RegisterCatalogue::RegisterCatalogue(const DriverLibrary& library, std::optional<int> ownStation)
    : m_library(library), m_ownStation(ownStation)
{
    QList<QString> names;
    library.getRegListByType(fxBitTypes, names);
    library.getRegListByType(fxWordTypes, names);
    for (const QString& name : names)
        m_types.append(describe(library, name));
}

const RegisterType* RegisterCatalogue::find(const QString& name) const
{
    for (const RegisterType& type : m_types) {
        if (type.name == name)
            return &type;
    }
    return nullptr;
}

// The addresses of a type may run on into those where another type begins.
std::optional<Alias> RegisterCatalogue::aliasIn(const RegisterRange& range) const
{
    std::optional<Alias> first;
    for (const RegisterType& other : m_types) {
        const int between = other.writeBase - range.type.writeBase;
        if (!range.type.writable || !other.writable || other.isBit() != range.type.isBit() ||
            between <= 0)
            continue;
        const int from = qMax(range.first, range.type.lowest + between / writeStep(range.type));
        const std::optional<int> hit = numberAt(other, range.type.writeAddress(from));
        if (from >= range.first + range.count || !hit || (first && from > first->asked.first))
            continue;
        const int most = qMin(range.first + range.count - from, other.highest - *hit + 1);
        first = Alias{range.part(from - range.first, most), {other, range.station, *hit, most, {}}};
    }
    return first;
}

QString RegisterRange::readElsewhereText() const
{
    if (type.isBit() || type.readBase == type.writeBase)
        return {};
    return QStringLiteral("%1 is written at %2 on the wire, but read at %3")
        .arg(nameOf(0), wireText(type.writeAddress(first)), wireText(type.readAddress(first)));
}

QString wireText(int address)
{
    return "0x" + QString::number(address, 16).toUpper().rightJustified(4, '0');
}

QString Alias::text() const
{
    if (asked.type.readAddress(asked.first) == hit.type.readAddress(hit.first))
        return QStringLiteral("%1 and %2 are the same memory").arg(asked.text(), hit.text());
    return QStringLiteral("a write to %1 changes %2").arg(asked.text(), hit.text());
}

QVector<RegisterRange> cutToFrames(const QVector<RegisterRange>& ranges, int wordsPerFrame)
{
    QVector<RegisterRange> parts;
    for (const RegisterRange& range : ranges)
        parts += range.cut(range.mostInFrame(wordsPerFrame));
    return parts;
}

KEY_ADDRESS planKey(const RegisterRange& range)
{
    KEY_ADDRESS key;
    key.stationNo = range.station;
    key.registerType = range.type.name;
    // The planner takes whole bytes of bits and counts them from `length` alone, so a run that
    // starts within a byte has to ask from the byte's first bit on.
    const int offset = range.type.isBit() ? range.first % bitsPerByte : 0;
    key.startIndex = range.first - offset;
    key.length = range.count + offset;
    return key;
}

}  // namespace fxtools
