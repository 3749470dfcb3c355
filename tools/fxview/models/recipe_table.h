// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The registers of a recipe: what the file says, what the PLC holds, how they differ, and what the
// last download has done. Every state is a word; an old value of the PLC has its age above it.

#pragma once

#include "tools/fxview/plc/plc_source.h"

#include <QAbstractTableModel>

namespace fxview {

class RecipeTable : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        Address,
        TagName,
        InFile,
        InPlc,
        Difference,
        State,
        columns,
    };

    explicit RecipeTable(const QVector<fxtools::Tag>& tags, QObject* parent = nullptr);

    // The values of the PLC are as old as this.
    void show(const QVector<RecipeValue>& values, qint64 readMs);
    void showMoment(qint64 nowMs);

    const QVector<RecipeValue>& values() const { return m_values; }
    int different() const;
    int unread() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString text(const RecipeValue& value, int column) const;

    QHash<QString, QString> m_names;  // of tags, by the identities of their registers
    QVector<RecipeValue> m_values;
    qint64 m_readMs = 0;
    qint64 m_ageMs = 0;
};

// What a download has left in the PLC, in sentences; of one that is not whole, which values.
QString downloadText(const QString& recipe, const RecipeResult& result);

// What an upload has brought into its file.
QString uploadText(const QString& file, const RecipeResult& result);

// Whether all of it is in the PLC, and was seen there.
bool isWhole(const RecipeResult& result);

// Neighbours as one range.
QVector<fxtools::RegisterRange> joined(const QVector<fxtools::RegisterRange>& registers);

// "D0 … D31, D40"
QString rangesText(const QVector<fxtools::RegisterRange>& registers);

}  // namespace fxview
