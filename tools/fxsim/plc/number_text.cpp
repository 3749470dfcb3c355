// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/plc/number_text.h"

#include <QStringList>
#include <QVector>

#include <algorithm>
#include <numeric>

namespace fxsim {

namespace {

// Decimal addresses are refused here: who writes 5 may mean D5 as well as the byte 0x0005.
AddressRange bytesOf(const QString& text)
{
    if (const std::optional<Device> device = parseDevice(text)) {
        const int bytes = std::max(1, device->type->byteCount());
        return {device->address(), device->address() + bytes - 1};
    }
    if (!text.startsWith("0x", Qt::CaseInsensitive))
        throw invalid("address", text, "hex, as in 0x1000, or a device, as in D0");
    const int address = parseByteAddress(text);
    return {address, address};
}

AddressRange parseRange(const QString& text)
{
    const QStringList ends = text.split('-');
    const AddressRange range{bytesOf(ends.first()).first, bytesOf(ends.last()).last};
    if (ends.size() > 2 || range.last < range.first)
        throw invalid("range", text, "FIRST-LAST, as in 0x0000-0x7FFF or D0-D99");
    return range;
}

MirrorWindow parseMirror(const QString& text)
{
    const QStringList fields = text.split(':');
    if (fields.size() != 3)
        throw invalid("mirror", text, "FROM:TO:BYTES, as in 0x0F00:0x0E00:256, or none");
    const int from = bytesOf(fields[0]).first;
    const int to = bytesOf(fields[1]).first;
    const int room = addressableBytes - std::max(from, to);
    return {from, to, parseNumber(fields[2], 1, room, "number of bytes")};
}

template <typename Item>
QVector<Item> parseList(const QString& text, Item (*parse)(const QString&))
{
    QVector<Item> items;
    for (const QString& part : text.split(','))
        items.append(parse(part.trimmed()));
    return items;
}

constexpr int mostEdits = 2;
constexpr int longestWord = 40;

// How many characters must be put in, taken out or changed.
int editsBetween(const QString& from, const QString& to)
{
    QVector<int> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar character : from) {
        int diagonal = row[0]++;
        for (int column = 1; column <= to.size(); ++column) {
            const int changed = diagonal + (character == to[column - 1] ? 0 : 1);
            diagonal = row[column];
            row[column] = std::min({changed, row[column] + 1, row[column - 1] + 1});
        }
    }
    return row.last();
}

}  // namespace

qint64 parseInteger(const QString& text, qint64 lowest, qint64 highest, const char* what)
{
    const bool hex = text.startsWith("0x", Qt::CaseInsensitive);
    const bool signAfterPrefix = hex && text.size() > 2 && !text[2].isLetterOrNumber();
    bool isNumber = false;
    const qint64 number = hex ? text.mid(2).toLongLong(&isNumber, 16) : text.toLongLong(&isNumber);
    if (!isNumber || signAfterPrefix || number < lowest || number > highest)
        throw invalid(what, text,
                      lowest == highest ? QString::number(lowest)
                                        : QString("%1 to %2").arg(lowest).arg(highest));
    return number;
}

int parseNumber(const QString& text, int lowest, int highest, const char* what)
{
    return static_cast<int>(parseInteger(text, lowest, highest, what));
}

int parseByteAddress(const QString& text)
{
    try {
        return parseNumber(text, 0, addressableBytes - 1);
    } catch (const Error&) {
        throw invalid("address", text, "a device, as in D100, or 0x0000 to 0xFFFF");
    }
}

MemoryPlace parsePlace(const QString& text)
{
    const int dot = text.indexOf('.');
    const std::optional<Device> device = parseDevice(dot < 0 ? text : text.left(dot));
    if (dot < 0 && device)
        return {device->address(),
                device->type->bits == 1 ? std::optional<int>(device->bit()) : std::nullopt, device};
    if (dot < 0)
        return {parseByteAddress(text), std::nullopt, std::nullopt};
    const int bits = device ? device->type->bits : bitsPerByte;
    if (bits == 1)
        throw invalid("address", text, device->name() + ", which is a bit");
    const int bit = parseNumber(text.mid(dot + 1), 0, bits - 1, "bit number");
    const int address = device ? device->address() : parseByteAddress(text.left(dot));
    return {address + bit / bitsPerByte, bit % bitsPerByte, std::nullopt};
}

ValueLimits limitsOf(int byteCount)
{
    const qint64 values = static_cast<qint64>(1) << byteCount * bitsPerByte;
    return byteCount == 0 ? ValueLimits() : ValueLimits{-values / 2, values - 1};
}

QVector<AddressRange> parseRanges(const QString& text)
{
    return parseList<AddressRange>(text, parseRange);
}

QVector<MirrorWindow> parseMirrors(const QString& text)
{
    if (text == "none")
        return {};
    return parseList<MirrorWindow>(text, parseMirror);
}

QString didYouMean(const QString& word, const QStringList& known)
{
    QString closest;
    int fewest = mostEdits + 1;
    for (const QString& candidate : known) {
        const int edits = editsBetween(word.left(longestWord), candidate);
        if (edits < fewest && edits < candidate.size() - 1)
            closest = candidate;
        fewest = std::min(fewest, edits);
    }
    return closest.isEmpty() ? QString() : QString(" (did you mean %1?)").arg(closest);
}

}  // namespace fxsim
