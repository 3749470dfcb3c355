// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of all values: a filter, the table, and below it the bar for writing. By keyboard:
// Ctrl+F filters, Enter edits the row's value, Esc goes back, Ctrl+C copies rows as CSV.

#pragma once

#include "tools/fxview/models/value_table.h"
#include "tools/fxview/widgets/write_bar.h"

#include <QTableView>

namespace fxview {

class ValuesPage : public QWidget
{
    Q_OBJECT

public:
    explicit ValuesPage(const ValueBook& book, QWidget* parent = nullptr);

    void showMoment(qint64 nowMs);
    WriteBar& writeBar() { return *m_writeBar; }

signals:
    void trendAsked(int tag);

private:
    void setUpTable();
    void addActions();
    void letColumnsBeHidden();
    void filter(const QString& words);
    void copy() const;
    int currentTag() const;

    ValueTable* m_table;
    QLineEdit* m_filter;
    QLabel* m_shown;  // how many of all tags
    QTableView* m_view;
    WriteBar* m_writeBar;
};

}  // namespace fxview
