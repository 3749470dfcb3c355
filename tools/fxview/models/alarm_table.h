// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The open alarms as a table, the newest on top.

#pragma once

#include "tools/fxview/models/alarm_book.h"

#include <QAbstractTableModel>

namespace fxview {

class AlarmTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        State,
        Tag,
        Value,  // that raised it, and the limit
        Raised,
        Cleared,
        columns
    };

    // The book outlives the table.
    explicit AlarmTable(const AlarmBook& book, QObject* parent = nullptr)
        : QAbstractTableModel(parent), m_book(book)
    {}

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    const Alarm& alarmAt(int row) const { return m_shown[static_cast<size_t>(row)]; }
    int rowOf(const Alarm& alarm) const;  // -1: not open any more

    // Takes the book over as it is now.
    void refresh();

private:
    QString text(const Alarm& alarm, int column) const;

    const AlarmBook& m_book;
    std::vector<Alarm> m_shown;
};

}  // namespace fxview
