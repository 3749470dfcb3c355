// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See number_text.h.

#include "tools/fxsim/plc/number_text.h"

#include <QStringList>

namespace fxsim {

namespace {

std::optional<AddressRange> parseRange(const QString& text)
{
    const QStringList ends = text.split('-');
    if (ends.size() > 2)
        return std::nullopt;
    const std::optional<int> first = parseByteAddress(ends.first());
    const std::optional<int> last = parseByteAddress(ends.last());
    if (!first || !last || *last < *first)
        return std::nullopt;
    return AddressRange{*first, *last};
}

std::optional<MirrorWindow> parseMirror(const QString& text)
{
    const QStringList fields = text.split(':');
    if (fields.size() != 3)
        return std::nullopt;
    const std::optional<int> from = parseByteAddress(fields[0]);
    const std::optional<int> to = parseByteAddress(fields[1]);
    const std::optional<int> byteCount = parseNumber(fields[2], 1, addressableBytes);
    if (!from || !to || !byteCount || *byteCount > addressableBytes - std::max(*from, *to))
        return std::nullopt;
    return MirrorWindow{*from, *to, *byteCount};
}

template <typename Item, typename Parse>
std::optional<QVector<Item>> parseList(const QString& text, Parse parse)
{
    QVector<Item> items;
    for (const QString& part : text.split(',')) {
        const std::optional<Item> item = parse(part.trimmed());
        if (!item)
            return std::nullopt;
        items.append(*item);
    }
    return items;
}

}  // namespace

std::optional<int> parseNumber(const QString& text, int lowest, int highest)
{
    const bool hex = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    if (hex && text.size() > 2 && !text[2].isLetterOrNumber())
        return std::nullopt;  // a sign behind the prefix, which the conversion would take
    bool ok = false;
    const int number = hex ? text.mid(2).toInt(&ok, 16) : text.toInt(&ok, 10);
    if (!ok || number < lowest || number > highest)
        return std::nullopt;
    return number;
}

std::optional<int> parseByteAddress(const QString& text)
{
    return parseNumber(text, 0, addressableBytes - 1);
}

std::optional<BitPlace> parseBitPlace(const QString& text)
{
    const QStringList fields = text.split('.');
    if (fields.size() != 2)
        return std::nullopt;
    const std::optional<int> address = parseByteAddress(fields[0]);
    const std::optional<int> bit = parseNumber(fields[1], 0, bitsPerByte - 1);
    if (!address || !bit)
        return std::nullopt;
    return BitPlace{*address, *bit};
}

std::optional<QVector<AddressRange>> parseRanges(const QString& text)
{
    return parseList<AddressRange>(text, parseRange);
}

std::optional<QVector<MirrorWindow>> parseMirrors(const QString& text)
{
    if (text == QLatin1String("none"))
        return QVector<MirrorWindow>();
    return parseList<MirrorWindow>(text, parseMirror);
}

}  // namespace fxsim
