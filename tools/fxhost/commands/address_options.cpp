// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/address_options.h"

#include "tools/quoted.h"
#include "tools/service/limits.h"

#include <QRegularExpression>
#include <QSet>

#include <fnmatch.h>

namespace fxtools {

namespace {

const char* const letterGroup = "Address by options";
const QString defaultType = QStringLiteral("D");

}  // namespace

void addAddressLetters(CLI::App& command, AddressOptions& options)
{
    command.add_option("-t,--type", options.type, "Register type: X, M, TV, ... (default: D)")
        ->type_name("TYPE")
        ->group(letterGroup);
    command
        .add_option("-r,--first", options.first,
                    "Number of the first register as in its address: 100 for D100")
        ->type_name("NUMBER")
        ->group(letterGroup);
    command.add_option("-c,--registers", options.registers, "Number of registers (default: 1)")
        ->type_name("N")
        ->check(within({1, fxMaxElements}))
        ->group(letterGroup);
}

void addAddressOptions(CLI::App& command, AddressOptions& options)
{
    command.add_option("address", options.addresses,
                       "Addresses, such as D100:32, D0-D9 or X17, or names of tags");
    addAddressLetters(command, options);
}

AddressParts addressOfLetters(const AddressOptions& options)
{
    const QString type = QString::fromStdString(options.type).toUpper();
    if (options.first.empty() && options.registers > 0)
        throw Failure(ExitCode::Usage,
                      "-c needs -r, the number of the first register: -r 100 -c 8, or D100:8");
    if (options.first.empty())
        throw Failure(ExitCode::Usage,
                      QStringLiteral("-t needs -r, the number of the first register: -t %1 -r 100")
                          .arg(type));
    AddressParts parts;
    parts.type = type.isEmpty() ? defaultType : type;
    parts.number = QString::fromStdString(options.first);
    parts.written = parts.type + parts.number;
    if (options.registers > 0)
        parts.count = options.registers;
    return parts;
}

Tag untagged(const AskedAddress& asked, ValueStyle style)
{
    Tag tag;
    tag.asked = asked;
    tag.style = style;
    RegisterRange& range = tag.asked.range;
    widen(tag.asked, style);
    range.together = registersPerValue(tag.asked, style);
    if (range.count % range.together != 0)
        throw Failure(ExitCode::Usage,
                      range.text() +
                          ": each value takes two words, so the number of words must be even");
    return tag;
}

bool isTagName(const QString& text, const AddressServices& services)
{
    return !services.source.file.isEmpty() && !isAddress(text, services.catalogue);
}

QVector<Tag> tagsNamed(const QString& name, const AddressServices& services)
{
    const QByteArray pattern = name.toUtf8();
    QVector<Tag> found;
    QStringList known;
    for (const Tag& tag : services.tags()) {
        const bool isHere =
            services.source.plc.isEmpty() || tag.link.isEmpty() || tag.link == services.source.plc;
        if (tag.name == name && !isHere)
            throw Failure(ExitCode::Usage,
                          name + " is a tag of another PLC; use --plc " + tag.link);
        if (!isHere)
            continue;
        known += tag.name;
        if (fnmatch(pattern.constData(), tag.name.toUtf8().constData(), 0) == 0)
            found.append(tag);
    }
    if (found.isEmpty() && name.contains(QRegularExpression(QStringLiteral("[*?[]"))))
        throw Failure(ExitCode::Usage, "no tag matches " + quoted(name));
    if (found.isEmpty())
        throw Failure(ExitCode::Usage, "unknown tag " + quoted(name) + didYouMean(name, known));
    return found;
}

QVector<Tag> askedOf(const AddressOptions& options, const AddressServices& services,
                     ValueStyle style)
{
    QVector<Tag> asked;
    for (const std::string& list : options.addresses) {
        for (const QString& text : QString::fromStdString(list).split(',')) {
            if (isTagName(text, services))
                asked += tagsNamed(text, services);
            else
                asked += untagged(askedAddress(takeApart(text), services.catalogue), style);
        }
    }
    if (options.byLetters())
        asked += untagged(askedAddress(addressOfLetters(options), services.catalogue), style);
    if (asked.isEmpty())
        throw Failure(ExitCode::Usage,
                      "address missing; for example D100:32, or -t D -r 100 -c 32");
    return asked;
}

QString askedName(const Tag& asked)
{
    return asked.name.isEmpty() ? asked.asked.text() : asked.name;
}

QVector<RegisterRange> rangesOf(const QVector<Tag>& asked)
{
    QVector<RegisterRange> ranges;
    for (const Tag& tag : asked)
        ranges.append(tag.asked.range);
    return ranges;
}

QVector<RegisterRange> rangesOf(const AddressOptions& options, const AddressServices& services)
{
    return rangesOf(askedOf(options, services));
}

QVector<RegisterRange> registersOnce(const AddressOptions& options, const AddressServices& services)
{
    QSet<QString> known;
    QVector<RegisterRange> once;
    for (RegisterRange range : rangesOf(options, services)) {
        range.together = 1;
        int begin = 0;
        const auto takeUpTo = [&](int end) {
            if (end > begin)
                once.append(range.part(begin, end - begin));
            begin = end + 1;
        };
        for (int index = 0; index < range.count; ++index) {
            if (known.contains(range.identity(index)))
                takeUpTo(index);
            known.insert(range.identity(index));
        }
        takeUpTo(range.count);
    }
    return once;
}

AskedAddress addressIn(const QString& text, const AddressServices& services)
{
    if (!isTagName(text, services))
        return askedAddress(takeApart(text), services.catalogue);
    const QVector<Tag> tags = tagsNamed(text, services);
    if (tags.size() > 1)
        throw Failure(ExitCode::Usage, QStringLiteral("%1 means %2 tags; give one of them")
                                           .arg(quoted(text))
                                           .arg(tags.size()));
    return tags.first().asked;
}

TagWrite parseWrite(const QString& text, const AddressServices& services, ValueStyle style)
{
    const QString name = text.section('=', 0, 0).trimmed();
    if (name == text.trimmed() || !isTagName(name, services)) {
        const Assignment assignment = parseAssignment(text, services.catalogue, style);
        return {assignment, untagged(assignment.asked, style)};
    }
    const QVector<Tag> tags = tagsNamed(name, services);
    if (tags.first().name != name)
        throw Failure(ExitCode::Usage, quoted(name) + " is a pattern; write one tag at a time");
    const Tag& tag = tags.first();
    if (!tag.link.isEmpty() && services.source.plc.isEmpty())
        throw Failure(ExitCode::Usage, name + " is a tag of the PLC " + tag.link + "; use --plc " +
                                           tag.link + " to write it");
    return {assignmentOf(tag, text.section('=', 1), services.catalogue), tag};
}

}  // namespace fxtools
