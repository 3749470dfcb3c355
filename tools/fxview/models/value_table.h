// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The values as a table, sorted and filtered. It holds an order of tags and makes texts only of
// the rows that are looked at, so that a hundred thousand tags scroll like ten. The clock is given.

#pragma once

#include "tools/fxview/models/value_book.h"

#include <QAbstractTableModel>

#include <array>

namespace fxview {

class ValueTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        Name,
        Value,
        Trend,  // painted from the tag's history
        Age,
        State,
        Address,
        Description,
        columns
    };
    enum Role
    {
        TagRole = Qt::UserRole,  // its index
        QualityRole,             // Quality as a number
        LampRole,                // of a bit that has a value: bool
        AlarmRole,               // "low", "high" or none
    };

    // The book outlives the table.
    explicit ValueTable(const ValueBook& book, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    void sort(int column, Qt::SortOrder order) override;

    // Those tags of whose name, address, unit and description each word is a part.
    void setFilter(const QString& words);

    int tagAt(int row) const { return m_rows[row]; }
    int rowOf(int tag) const { return m_rows.indexOf(tag); }  // -1: filtered out
    const ValueBook& book() const { return m_book; }
    qint64 nowMs() const { return m_nowMs; }

    // Values, ages and qualities as they are at this time.
    void showMoment(qint64 nowMs);

    // With a heading; as they are shown, numbers without units.
    QString csv(const QVector<int>& rows) const;

private:
    QString text(int tag, int column) const;
    QString stateText(int tag) const;
    QString toolTip(int tag) const;
    bool isMoving() const { return m_sortColumn >= Value && m_sortColumn <= State; }
    const QVector<int>& places(int column);
    void order();
    void reorder();

    const ValueBook& m_book;
    QVector<QString> m_searched;                 // of each tag
    std::array<QVector<int>, columns> m_places;  // of each tag, once they were asked for
    QVector<QString> m_words;
    QVector<int> m_rows;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    qint64 m_nowMs = 0;
    qint64 m_orderedMs = 0;
};

// "good", "stale" or "bad".
QString qualityText(Quality quality);

}  // namespace fxview
