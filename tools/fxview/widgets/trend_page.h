// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of trends: which tags, which time, the curves, and what they are now and at the cursors.

#pragma once

#include "tools/fxview/widgets/trend_view.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

namespace fxview {

class TrendPage : public QWidget
{
    Q_OBJECT

public:
    explicit TrendPage(const ValueBook& book, QWidget* parent = nullptr);

    void add(int tag);
    void showMoment(qint64 nowMs);
    TrendView& view() { return *m_view; }

    // Writes a new file named after the moment; form is "csv", "svg" or "png". Returns its path;
    // throws Failure.
    QString exportTo(const QString& folder, const QString& form) const;

signals:
    void exportFailed(const QString& text);

private:
    QLayout* topRow();
    void addFirst();
    void addTyped();
    void removeChosen();
    void exportAs(const QString& form);
    void showSpan();
    void showLegend();
    QByteArray contentAs(const QString& form) const;

    const ValueBook& m_book;
    TrendView* m_view;
    QLineEdit* m_add;
    QComboBox* m_length;
    QCheckBox* m_follow;
    QTableWidget* m_legend;
    QLabel* m_said;
};

}  // namespace fxview
