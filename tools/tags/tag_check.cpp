// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/tag_check.h"

#include "tools/exchange/blocks.h"
#include "tools/tags/tag_columns.h"

#include <algorithm>

namespace fxtools {

namespace {

constexpr int mostNeighbours = 64;  // a word, its bits, and more that share it

class Checker
{
public:
    explicit Checker(const RegisterCatalogue& catalogue) : m_catalogue(catalogue) {}

    void checkAlone(const Tag& tag);
    void checkLimits(const Tag& tag, bool isWritten);
    void checkSpan(const Tag& tag, const char* column, const std::optional<double>& limit);
    void checkOverlaps(QVector<Tag> tags);
    QVector<TagRemark> remarks();

private:
    void warn(const Tag& tag, const char* column, const QString& text)
    {
        m_remarks.append(
            {TagRemark::Kind::Warning, tag.line, QLatin1String(column), tag.name + ' ' + text});
    }

    const RegisterCatalogue& m_catalogue;
    QVector<TagRemark> m_remarks;
};

void Checker::checkAlone(const Tag& tag)
{
    const bool isWritten = !tag.isReadOnly() && tag.asked.range.type.writable;
    const std::optional<Alias> alias = m_catalogue.aliasIn(tag.asked.range);
    if (alias && isWritten)
        warn(tag, "address", "is not written without --force: " + alias->text());
    if (!isWritten && (tag.min || tag.max))
        warn(tag, tag.min ? "min" : "max", QStringLiteral("is read-only, so it needs no limits"));
    if (tag.isNumber())
        checkLimits(tag, isWritten);
    if (isWritten && tag.isNumber() && !tag.isExact())
        warn(tag, "scale",
             QStringLiteral("cannot be written back exactly: values that are shown "
                            "may change when they are written"));
}

void Checker::checkLimits(const Tag& tag, bool isWritten)
{
    if (isWritten && tag.hasWritable()) {
        checkSpan(tag, "min", tag.min);
        checkSpan(tag, "max", tag.max);
    } else if (isWritten) {
        warn(tag, tag.min ? "min" : "max",
             QStringLiteral("has no value between its limits, so nothing can be written"));
    }
    checkSpan(tag, "alarm_low", tag.alarmLow);
    checkSpan(tag, "alarm_high", tag.alarmHigh);
}

void Checker::checkSpan(const Tag& tag, const char* column, const std::optional<double>& limit)
{
    const ValueSpan span = tag.span();
    if (limit && (*limit < span.lowest || *limit > span.highest))
        warn(tag, column,
             QStringLiteral("has a limit of %1, but its values go from %2 to %3")
                 .arg(numberText(*limit), numberText(span.lowest), numberText(span.highest)));
}

// Bits and the word that they are in are often both tags, as are relays and their group.
bool isPartOfTheOther(const Tag& one, const Tag& other)
{
    if (one.asked.bit && other.asked.bit)
        return one.asked.bit != other.asked.bit;
    const bool isWordWithBit = one.asked.bit.has_value() != other.asked.bit.has_value() &&
                               one.asked.range.count == other.asked.range.count;
    return isWordWithBit || one.asked.isGroup != other.asked.isGroup;
}

auto placeOf(const Tag& tag)
{
    const RegisterRange& range = tag.asked.range;
    return std::make_tuple(tag.link, range.station, range.type.name, range.first);
}

// Sorted, a tag can share registers only with those that begin before it ends.
void Checker::checkOverlaps(QVector<Tag> tags)
{
    std::stable_sort(tags.begin(), tags.end(), [](const Tag& one, const Tag& other) {
        return placeOf(one) < placeOf(other);
    });
    for (int index = 0; index < tags.size(); ++index) {
        const Tag& tag = tags[index];
        auto last = placeOf(tag);
        std::get<3>(last) += tag.asked.range.count - 1;
        const int end = std::min(index + mostNeighbours, tags.size());
        for (int next = index + 1; next < end && placeOf(tags[next]) <= last; ++next) {
            if (!isPartOfTheOther(tag, tags[next]))
                warn(tags[next], "address",
                     "shares registers with " + tag.name + ", line " + QString::number(tag.line));
        }
    }
}

QVector<TagRemark> Checker::remarks()
{
    std::stable_sort(m_remarks.begin(), m_remarks.end(),
                     [](const auto& one, const auto& other) { return one.line < other.line; });
    return m_remarks;
}

}  // namespace

QVector<TagRemark> checkTags(const QVector<Tag>& tags, const RegisterCatalogue& catalogue)
{
    Checker checker(catalogue);
    for (const Tag& tag : tags)
        checker.checkAlone(tag);
    checker.checkOverlaps(tags);
    return checker.remarks();
}

QVector<TagRemark> checkReplies(const QVector<Tag>& tags, int wordsPerFrame)
{
    QVector<TagRemark> remarks;
    for (const Tag& tag : tags) {
        try {
            if (tag.asked.range.together > 1)
                requireOneReply(tag.asked.range, wordsPerFrame);
        } catch (const Failure& failure) {
            remarks.append({TagRemark::Kind::Error, tag.line, QStringLiteral("address"),
                            tag.name + ": " + failure.text()});
        }
    }
    return remarks;
}

}  // namespace fxtools
