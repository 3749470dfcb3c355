// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of alarms: the open ones, to be acknowledged, and what happened before. While one is
// active and not acknowledged, a bell sounds.

#pragma once

#include "tools/fxview/models/alarm_table.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>

namespace fxview {

class AlarmPage : public QWidget
{
    Q_OBJECT

public:
    std::function<void()> bell;  // empty: silence

    explicit AlarmPage(AlarmBook& book, QWidget* parent = nullptr);

    void showMoment(qint64 nowMs);

signals:
    void openChanged(int unacknowledged);

private:
    QLayout* buttons();
    void acknowledgeChosen();
    void refresh();
    void ring();

    AlarmBook& m_book;
    AlarmTable* m_table;
    QTableView* m_view;
    QPlainTextEdit* m_history;
    qint64 m_nowMs = 0;
    qint64 m_rungMs = 0;
    int m_shownChanges = 0;
};

}  // namespace fxview
