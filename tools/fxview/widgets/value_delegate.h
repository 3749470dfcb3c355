// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How a row of the values looks: lamps, sparklines, a shape for each quality; stale ones dimmed.

#pragma once

#include "tools/fxview/models/value_table.h"

#include <QStyledItemDelegate>

namespace fxview {

class ValueDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit ValueDelegate(const ValueTable& table, QObject* parent = nullptr)
        : QStyledItemDelegate(parent), m_table(table)
    {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    void paintSparkline(QPainter& painter, const QRect& area, int tag, const QColor& colour) const;

    const ValueTable& m_table;
};

}  // namespace fxview
