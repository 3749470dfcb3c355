// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/registers.h"

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
    return type;
}

}  // namespace

QString widthText(RegisterWidth width)
{
    switch (width) {
    case RegisterWidth::Bit:
        return QStringLiteral("bit");
    case RegisterWidth::Word:
        return QStringLiteral("16 bits");
    case RegisterWidth::DoubleWord:
        return QStringLiteral("32 bits");
    }
    return {};
}

int RegisterType::valueBytes() const
{
    switch (width) {
    case RegisterWidth::Bit:
        return 1;
    case RegisterWidth::Word:
        return 2;
    case RegisterWidth::DoubleWord:
        return 4;
    }
    return 0;
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

QString RegisterRange::nameOf(int index) const
{
    const QString prefix = station == 1 ? QString() : QString::number(station) + '#';
    return prefix + type.name + type.numberText(first + index);
}

QString RegisterRange::text() const
{
    return count == 1 ? nameOf(0) : nameOf(0) + ':' + QString::number(count);
}

RegisterCatalogue::RegisterCatalogue(const DriverLibrary& library) : m_library(library)
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

QVector<RegisterRange> cutToFrames(const QVector<RegisterRange>& ranges, int wordsPerFrame)
{
    QVector<RegisterRange> parts;
    for (const RegisterRange& range : ranges)
        parts += range.cut(range.type.mostInFrame(wordsPerFrame));
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
