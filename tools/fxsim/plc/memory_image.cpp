// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See memory_image.h. A record is ":", byte count, address (2), type, data, sum; all its bytes add
// up to zero.

#include "tools/fxsim/plc/memory_image.h"

#include "tools/fxsim/plc/plc_memory.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace fxsim {

namespace {

constexpr int recordBytes = 16;
constexpr int recordAround = 1 + 2 + 1 + 1;  // byte count, address, type, sum
constexpr int dataAt = 4;

enum class RecordType
{
    Data = 0,
    End = 1,
    SegmentBase = 2,
    SegmentStart = 3,
    LinearBase = 4,
    LinearStart = 5
};

struct HexReader
{
    QByteArray image;
    qint64 base = 0;
    bool ended = false;
};

bool isHex(const QByteArray& digits)
{
    return std::all_of(digits.begin(), digits.end(), [](char digit) {
        return (digit >= '0' && digit <= '9') || (digit >= 'A' && digit <= 'F') ||
               (digit >= 'a' && digit <= 'f');
    });
}

quint8 sumOfBytes(const QByteArray& bytes)
{
    quint8 sum = 0;
    for (const char byte : bytes)
        sum = static_cast<quint8>(sum + static_cast<quint8>(byte));
    return sum;
}

int wordAt(const QByteArray& bytes, int at)
{
    return static_cast<quint8>(bytes[at]) << 8 | static_cast<quint8>(bytes[at + 1]);
}

QString placeData(HexReader& reader, int offset, const QByteArray& data)
{
    const qint64 address = reader.base + offset;
    if (address > addressableBytes - data.size())
        return QStringLiteral("the data lies beyond 64 KiB");
    reader.image.replace(static_cast<int>(address), data.size(), data);
    return QString();
}

QString takeRecord(HexReader& reader, const QByteArray& record)
{
    const QByteArray data = record.mid(dataAt, static_cast<quint8>(record[0]));
    const bool isBase = static_cast<RecordType>(record[3]) == RecordType::SegmentBase ||
                        static_cast<RecordType>(record[3]) == RecordType::LinearBase;
    if (isBase && data.size() != 2)
        return QStringLiteral("an extended address has two bytes");
    switch (static_cast<RecordType>(record[3])) {
    case RecordType::Data:
        return placeData(reader, wordAt(record, 1), data);
    case RecordType::End:
        reader.ended = true;
        return QString();
    case RecordType::SegmentBase:
        reader.base = static_cast<qint64>(wordAt(data, 0)) << 4;
        return QString();
    case RecordType::LinearBase:
        reader.base = static_cast<qint64>(wordAt(data, 0)) << 16;
        return QString();
    case RecordType::SegmentStart:
    case RecordType::LinearStart:
        return QString();  // where a program would begin: nothing to a memory
    }
    return QStringLiteral("unknown record type %1").arg(static_cast<quint8>(record[3]));
}

QString takeLine(HexReader& reader, const QByteArray& line)
{
    if (!line.startsWith(':') || !isHex(line.mid(1)) || line.size() % 2 == 0)
        return QStringLiteral("a record is \":\" and pairs of hex digits");
    const QByteArray record = QByteArray::fromHex(line.mid(1));
    if (record.size() < recordAround ||
        record.size() != recordAround + static_cast<quint8>(record[0]))
        return QStringLiteral("the record is not as long as it says");
    if (sumOfBytes(record) != 0)
        return QStringLiteral("wrong sum");
    return takeRecord(reader, record);
}

QByteArray recordText(int address, RecordType type, const QByteArray& data)
{
    QByteArray record;
    record.append(static_cast<char>(data.size()))
        .append(static_cast<char>(address >> 8))
        .append(static_cast<char>(address))
        .append(static_cast<char>(type))
        .append(data);
    record.append(static_cast<char>(-sumOfBytes(record)));
    return ':' + record.toHex().toUpper() + '\n';
}

}  // namespace

QString applyHex(const QByteArray& text, QByteArray& image)
{
    HexReader reader;
    reader.image = image;
    int number = 0;
    for (const QByteArray& line : text.split('\n')) {
        ++number;
        const QByteArray record = line.trimmed();
        if (record.isEmpty() || reader.ended)
            continue;
        const QString error = takeLine(reader, record);
        if (!error.isEmpty())
            return QStringLiteral("line %1: %2").arg(number).arg(error);
    }
    if (!reader.ended)
        return QStringLiteral("the end record (:00000001FF) is missing");
    image = reader.image;
    return QString();
}

QByteArray hexText(const QByteArray& image)
{
    const QByteArray zeros(recordBytes, '\0');
    QByteArray text;
    for (int address = 0; address < image.size(); address += recordBytes) {
        const QByteArray data = image.mid(address, recordBytes);
        if (data != zeros)
            text += recordText(address, RecordType::Data, data);
    }
    return text + recordText(0, RecordType::End, QByteArray());
}

QString loadImage(const QString& path, QByteArray& image)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1: %2").arg(path, file.errorString());
    const QString error = applyHex(file.readAll(), image);
    return error.isEmpty() ? QString() : QStringLiteral("%1: %2").arg(path, error);
}

QString obstacleToSaving(const QString& path)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.absolutePath());
    if (file.isDir())
        return QStringLiteral("%1: this is a folder, no file").arg(path);
    if (file.exists() && !file.isFile())
        return QStringLiteral("%1: this is no ordinary file").arg(path);
    if (file.exists() && !file.isWritable())
        return QStringLiteral("%1: this file may not be written").arg(path);
    if (!folder.isDir())
        return QStringLiteral("%1: there is no folder %2").arg(path, folder.filePath());
    if (!folder.isWritable())
        return QStringLiteral("%1: nothing can be saved in this folder").arg(path);
    return QString();
}

// Renamed over an older file when all of it is on the disk. commit() by itself does not notice that
// the last bytes found no room, and a disk that took a part says only when asked again why.
QString saveImage(const QString& path, const QByteArray& image)
{
    QString obstacle = obstacleToSaving(path);
    if (!obstacle.isEmpty())
        return obstacle;
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        const QByteArray text = hexText(image);
        const int written = static_cast<int>(std::max<qint64>(0, file.write(text)));
        const QByteArray rest = text.mid(written);
        if ((rest.isEmpty() || file.write(rest) == rest.size()) && file.commit())
            return QString();
    }
    return QStringLiteral("%1: %2").arg(path, file.errorString());
}

}  // namespace fxsim
