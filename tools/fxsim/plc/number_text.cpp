// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/plc/number_text.h"

#include <QStringList>

#include <algorithm>

namespace fxsim {

namespace {

AddressRange parseRange(const QString& text)
{
    const QStringList ends = text.split('-');
    const AddressRange range{parseByteAddress(ends.first()), parseByteAddress(ends.last())};
    if (ends.size() > 2 || range.last < range.first)
        throw invalid("address range", text, QStringLiteral("FIRST-LAST, as in 0x0000-0x7FFF"));
    return range;
}

MirrorWindow parseMirror(const QString& text)
{
    const QStringList fields = text.split(':');
    if (fields.size() != 3)
        throw invalid("mirror", text,
                      QStringLiteral("FROM:TO:BYTES, as in 0x0F00:0x0E00:256, or none"));
    const int from = parseByteAddress(fields[0]);
    const int to = parseByteAddress(fields[1]);
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

}  // namespace

int parseNumber(const QString& text, int lowest, int highest, const char* what)
{
    const bool hex = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    const bool signAfterPrefix = hex && text.size() > 2 && !text[2].isLetterOrNumber();
    bool isNumber = false;
    const int number = hex ? text.mid(2).toInt(&isNumber, 16) : text.toInt(&isNumber, 10);
    if (!isNumber || signAfterPrefix || number < lowest || number > highest)
        throw invalid(what, text,
                      lowest == highest ? QString::number(lowest)
                                        : QStringLiteral("%1 to %2").arg(lowest).arg(highest));
    return number;
}

int parseByteAddress(const QString& text)
{
    try {
        return parseNumber(text, 0, addressableBytes - 1);
    } catch (const Error&) {
        throw invalid("byte address", text, QStringLiteral("0x0000 to 0xFFFF"));
    }
}

MemoryPlace parsePlace(const QString& text)
{
    const int dot = text.indexOf('.');
    if (dot < 0)
        return {parseByteAddress(text), std::nullopt};
    return {parseByteAddress(text.left(dot)),
            parseNumber(text.mid(dot + 1), 0, bitsPerByte - 1, "bit number")};
}

QVector<AddressRange> parseRanges(const QString& text)
{
    return parseList<AddressRange>(text, parseRange);
}

QVector<MirrorWindow> parseMirrors(const QString& text)
{
    if (text == QLatin1String("none"))
        return {};
    return parseList<MirrorWindow>(text, parseMirror);
}

}  // namespace fxsim
