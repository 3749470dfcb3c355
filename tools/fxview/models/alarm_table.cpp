// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/alarm_table.h"

#include "tools/fxview/models/value_book.h"

#include <QDateTime>

#include <algorithm>

namespace fxview {

namespace {

QString timeText(qint64 timeMs)
{
    return QDateTime::fromMSecsSinceEpoch(timeMs).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

}  // namespace

int AlarmTable::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

int AlarmTable::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant AlarmTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case State:
        return tr("State");
    case Tag:
        return tr("Tag");
    case Value:
        return tr("Value");
    case Raised:
        return tr("Raised");
    default:
        return tr("Cleared");
    }
}

QString AlarmTable::text(const Alarm& alarm, int column) const
{
    const fxtools::Tag& tag = m_book.tag(alarm.tag);
    switch (column) {
    case State:
        if (!alarm.isActive())
            return tr("cleared, not acknowledged");
        return alarm.acknowledgedMs ? tr("active, acknowledged") : tr("ACTIVE");
    case Tag:
        return tag.name;
    case Value: {
        const double limit = *(alarm.kind == QLatin1String("low") ? tag.alarmLow : tag.alarmHigh);
        return tr("%1: %2, limit %3")
            .arg(kindText(alarm.kind), valueWithUnit(tag, alarm.value), valueText(tag, limit));
    }
    case Raised:
        return alarm.times == 1
                   ? timeText(alarm.raisedMs)
                   : tr("%1 (%2 times)").arg(timeText(alarm.raisedMs)).arg(alarm.times);
    default:
        return alarm.clearedMs ? timeText(*alarm.clearedMs) : QString();
    }
}

QVariant AlarmTable::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    return text(alarmAt(index.row()), index.column());
}

int AlarmTable::rowOf(const Alarm& alarm) const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (alarmAt(row).tag == alarm.tag && alarmAt(row).kind == alarm.kind)
            return row;
    }
    return -1;
}

void AlarmTable::refresh()
{
    beginResetModel();
    m_shown = m_book.open();
    std::reverse(m_shown.begin(), m_shown.end());
    endResetModel();
}

}  // namespace fxview
