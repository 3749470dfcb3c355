// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/recipe_table.h"

#include "tools/library/values.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace fxview {

namespace {

using Value = RecipeValue;
constexpr qint64 oldMs = 10000;  // then the values of the PLC are dimmed
constexpr int mostRanges = 8;    // in one sentence

qint64 numberOf(const Value& value, quint32 held)
{
    return fxtools::valueText(held, value.one.type, fxtools::ValueFormat::Signed).toLongLong();
}

QVector<fxtools::RegisterRange> those(const QVector<Value>& values, Value::State state)
{
    QVector<fxtools::RegisterRange> registers;
    for (const Value& value : values) {
        if (value.state == state)
            registers.append(value.one);
    }
    return registers;
}

QVector<fxtools::RegisterRange> differing(const QVector<Value>& values)
{
    QVector<fxtools::RegisterRange> registers;
    for (const Value& value : values) {
        if (value.inPlc && *value.inPlc != value.inFile)
            registers.append(value.one);
    }
    return registers;
}

QString differenceText(const Value& value)
{
    if (!value.inPlc)
        return value.whyNotRead.isEmpty() ? RecipeTable::tr("? not read yet")
                                          : RecipeTable::tr("? not read: %1").arg(value.whyNotRead);
    const qint64 more = numberOf(value, *value.inPlc) - numberOf(value, value.inFile);
    if (more == 0)
        return RecipeTable::tr("= same");
    return more > 0 ? RecipeTable::tr("≠ the PLC has %1 more").arg(more)
                    : RecipeTable::tr("≠ the PLC has %1 less").arg(-more);
}

QString stateText(const Value& value)
{
    switch (value.state) {
    case Value::State::Untouched:
        return value.objection.isEmpty()
                   ? QString()
                   : RecipeTable::tr("may not be written: %1").arg(value.objection);
    case Value::State::NotWritten:
        return RecipeTable::tr("NOT written");
    case Value::State::Unknown:
        return RecipeTable::tr("UNKNOWN whether written");
    case Value::State::Written:
        break;
    }
    if (!value.inPlc)
        return RecipeTable::tr("written, not read back");
    return *value.inPlc == value.inFile ? RecipeTable::tr("written and read back")
                                        : RecipeTable::tr("written, but read back DIFFERENT");
}

QString countedText(const QString& what, const QVector<fxtools::RegisterRange>& registers)
{
    return RecipeTable::tr("%1: %2 (%3)")
        .arg(what)
        .arg(registers.size())
        .arg(rangesText(registers));
}

// Of a download that has written all.
QString wholeText(const QString& recipe, const RecipeResult& result)
{
    const int all = result.values.size();
    if (!result.notCompared.isEmpty()) {
        return RecipeTable::tr("All %1 values of %2 were written, but not all could be read back: "
                               "%3. Compare again.")
            .arg(all)
            .arg(recipe, result.notCompared);
    }
    const QVector<fxtools::RegisterRange> other = differing(result.values);
    if (other.isEmpty())
        return RecipeTable::tr("Done: all %1 values of %2 are in the PLC, read back")
            .arg(all)
            .arg(recipe);
    return RecipeTable::tr("All %1 values of %2 were written, but the PLC holds others in %3. Does "
                           "its program write there?")
        .arg(all)
        .arg(recipe, rangesText(other));
}

}  // namespace

QVector<fxtools::RegisterRange> joined(const QVector<fxtools::RegisterRange>& registers)
{
    QVector<fxtools::RegisterRange> ranges;
    for (const fxtools::RegisterRange& next : registers) {
        if (!ranges.isEmpty() && ranges.last().isContinuedBy(next))
            ranges.last().count += next.count;
        else
            ranges.append(next);
    }
    return ranges;
}

QString rangesText(const QVector<fxtools::RegisterRange>& registers)
{
    const QVector<fxtools::RegisterRange> ranges = joined(registers);
    QStringList texts;
    for (const fxtools::RegisterRange& range : ranges.mid(0, mostRanges))
        texts += range.count == 1 ? range.nameOf(0)
                                  : range.nameOf(0) + " … " + range.nameOf(range.count - 1);
    if (ranges.size() > mostRanges)
        texts += RecipeTable::tr("and more, see the table");
    return texts.join(QStringLiteral(", "));
}

bool isWhole(const RecipeResult& result)
{
    return result.problem.isEmpty() && result.notCompared.isEmpty() &&
           differing(result.values).isEmpty();
}

QString downloadText(const QString& recipe, const RecipeResult& result)
{
    if (result.problem.isEmpty())
        return wholeText(recipe, result);
    const auto written = those(result.values, Value::State::Written);
    const auto unknown = those(result.values, Value::State::Unknown);
    const auto others = those(result.values, Value::State::NotWritten);
    if (written.isEmpty() && unknown.isEmpty())
        return RecipeTable::tr("Nothing of %1 was written: %2").arg(recipe, result.problem);
    QStringList parts;
    if (!written.isEmpty())
        parts += countedText(RecipeTable::tr("written"), written);
    if (!unknown.isEmpty())
        parts += countedText(RecipeTable::tr("UNKNOWN whether written"), unknown);
    if (!others.isEmpty())
        parts += countedText(RecipeTable::tr("NOT written"), others);
    return RecipeTable::tr("Only a part of %1 is in the PLC (%2). %3. Download it again, or write "
                           "the old values back.")
        .arg(recipe, result.problem, parts.join(QStringLiteral("; ")));
}

QString uploadText(const QString& file, const RecipeResult& result)
{
    const int all = result.values.size();
    const QVector<fxtools::RegisterRange> other = differing(result.values);
    if (!result.notCompared.isEmpty()) {
        return RecipeTable::tr("%1 values of the PLC are in %2, but not all could be compared "
                               "afterwards: %3")
            .arg(all)
            .arg(file, result.notCompared);
    }
    if (other.isEmpty())
        return RecipeTable::tr("Done: %1 values of the PLC are in %2, compared").arg(all).arg(file);
    return RecipeTable::tr(
               "%1 values of the PLC are in %2, but the PLC now holds others in %3. Does "
               "its program write there?")
        .arg(all)
        .arg(file, rangesText(other));
}

RecipeTable::RecipeTable(const QVector<fxtools::Tag>& tags, QObject* parent)
    : QAbstractTableModel(parent)
{
    for (const fxtools::Tag& tag : tags) {
        for (int index = 0; index < tag.asked.range.count; ++index)
            m_names.insert(tag.asked.range.identity(index), tag.name);
    }
}

void RecipeTable::show(const QVector<RecipeValue>& values, qint64 readMs)
{
    beginResetModel();
    m_values = values;
    m_readMs = readMs;
    m_ageMs = 0;
    endResetModel();
}

void RecipeTable::showMoment(qint64 nowMs)
{
    const bool wasOld = m_ageMs >= oldMs;
    m_ageMs = nowMs - m_readMs;
    emit headerDataChanged(Qt::Horizontal, InPlc, InPlc);
    if (!m_values.isEmpty() && wasOld != (m_ageMs >= oldMs))
        emit dataChanged(index(0, InPlc), index(rowCount() - 1, Difference));
}

int RecipeTable::different() const
{
    return differing(m_values).size();
}

int RecipeTable::unread() const
{
    return static_cast<int>(std::count_if(m_values.begin(), m_values.end(),
                                          [](const Value& value) { return !value.inPlc; }));
}

int RecipeTable::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_values.size();
}

int RecipeTable::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant RecipeTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Address:
        return tr("Address");
    case TagName:
        return tr("Tag");
    case InFile:
        return tr("File");
    case InPlc:
        return m_values.isEmpty() || unread() == m_values.size()
                   ? tr("PLC")
                   : tr("PLC, %1 s ago").arg(m_ageMs / 1000);
    case Difference:
        return tr("Difference");
    default:
        return tr("State");
    }
}

QString RecipeTable::text(const RecipeValue& value, int column) const
{
    switch (column) {
    case Address:
        return value.one.nameOf(0);
    case TagName:
        return m_names.value(value.one.identity(0));
    case InFile:
        return QString::number(numberOf(value, value.inFile));
    case InPlc:
        return value.inPlc ? QString::number(numberOf(value, *value.inPlc)) : QStringLiteral("–");
    case Difference:
        return differenceText(value);
    default:
        return stateText(value);
    }
}

QVariant RecipeTable::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const int column = index.column();
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return text(m_values[index.row()], column);
    if (role == Qt::TextAlignmentRole && (column == InFile || column == InPlc))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ForegroundRole && m_ageMs >= oldMs && (column == InPlc || column == Difference))
        return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
    return {};
}

}  // namespace fxview
