// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See memory_image.h. A record is ":", byte count, address (2), type, data, checksum; all its bytes
// add up to zero.

#include "tools/fxsim/plc/memory_image.h"

#include "tools/fxsim/plc/error.h"
#include "tools/fxsim/plc/plc_memory.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>
#include <numeric>

namespace fxsim {

namespace {

constexpr int recordBytes = 16;
constexpr int recordAround = 1 + 2 + 1 + 1;  // byte count, address, type, checksum
constexpr int dataAt = 4;
constexpr qint64 largestFile =
    1 << 20;  // five times the longest image, and 10,000 steps of a script

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

quint8 sumOfBytes(const QByteArray& bytes)
{
    return static_cast<quint8>(std::accumulate(bytes.begin(), bytes.end(), 0));
}

int wordAt(const QByteArray& bytes, int at)
{
    return static_cast<quint8>(bytes[at]) << 8 | static_cast<quint8>(bytes[at + 1]);
}

[[noreturn]] void refuseImage(const QString& text)
{
    throw Error(ExitCode::File, text);
}

qint64 extendedAddress(const QByteArray& data)
{
    if (data.size() != 2)
        refuseImage("an extended address must have 2 bytes");
    return wordAt(data, 0);
}

void takeRecord(HexReader& reader, const QByteArray& record)
{
    const QByteArray data = record.mid(dataAt, static_cast<quint8>(record[0]));
    switch (static_cast<RecordType>(record[3])) {
    case RecordType::Data: {
        const qint64 address = reader.base + wordAt(record, 1);
        if (address > addressableBytes - data.size())
            refuseImage("data beyond 64 KiB");
        reader.image.replace(static_cast<int>(address), data.size(), data);
        return;
    }
    case RecordType::End:
        reader.ended = true;
        return;
    case RecordType::SegmentBase:
        reader.base = extendedAddress(data) << 4;
        return;
    case RecordType::LinearBase:
        reader.base = extendedAddress(data) << 16;
        return;
    case RecordType::SegmentStart:
    case RecordType::LinearStart:
        return;  // where a program would begin: nothing to a memory
    }
    refuseImage(QString("unknown record type %1").arg(static_cast<quint8>(record[3])));
}

void takeLine(HexReader& reader, const QByteArray& line)
{
    static const QRegularExpression form("^:([0-9A-Fa-f]{2})*$");
    if (!form.match(line).hasMatch())
        refuseImage("expected \":\" followed by pairs of hex digits");
    const QByteArray record = QByteArray::fromHex(line.mid(1));
    if (record.size() < recordAround ||
        record.size() != recordAround + static_cast<quint8>(record[0]))
        refuseImage("the length of the record does not match its byte count");
    if (sumOfBytes(record) != 0)
        refuseImage("wrong checksum");
    takeRecord(reader, record);
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

void applyHex(const QByteArray& text, QByteArray& image)
{
    HexReader reader;
    reader.image = image;
    int number = 0;
    for (const QByteArray& line : text.split('\n')) {
        ++number;
        const QByteArray record = line.trimmed();
        if (record.isEmpty() || reader.ended)
            continue;
        try {
            takeLine(reader, record);
        } catch (const Error& error) {
            throw error.at(QString("line %1").arg(number));
        }
    }
    if (!reader.ended)
        refuseImage("the end record (:00000001FF) is missing");
    image = reader.image;
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

QByteArray wholeFile(const QString& path)
{
    QFile file(path);
    if (QFileInfo(path).exists() && !QFileInfo(path).isFile())
        refuseImage("not a regular file");
    if (!file.open(QIODevice::ReadOnly))
        refuseImage(file.errorString());
    if (file.size() > largestFile)
        refuseImage(QString("%1 MB is too large: at most 1 MB makes sense").arg(file.size() >> 20));
    return file.readAll();
}

void loadImage(const QString& path, QByteArray& image)
{
    try {
        applyHex(wholeFile(path), image);
    } catch (const Error& error) {
        throw error.at(path);
    }
}

void checkSaving(const QString& path)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.absolutePath());
    if (file.isDir())
        refuseImage(path + ": this is a folder, not a file");
    if (file.exists() && !file.isFile())
        refuseImage(path + ": not a regular file");
    if (file.exists() && !file.isWritable())
        refuseImage(path + ": no permission to write this file");
    if (!folder.isDir())
        refuseImage(path + ": the folder " + folder.filePath() + " does not exist");
    if (!folder.isWritable())
        refuseImage(path + ": no permission to write in this folder");
}

// Renamed over an older file when all of it is on the disk. commit() by itself does not notice that
// the last bytes found no room, and a disk that took a part says only when asked again why.
void saveImage(const QString& path, const QByteArray& image)
{
    checkSaving(path);
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        const QByteArray text = hexText(image);
        const int written = static_cast<int>(std::max<qint64>(0, file.write(text)));
        const QByteArray rest = text.mid(written);
        if ((rest.isEmpty() || file.write(rest) == rest.size()) && file.commit())
            return;
    }
    throw Error(ExitCode::File, file.errorString()).at(path);
}

}  // namespace fxsim
