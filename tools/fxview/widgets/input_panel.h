// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The inputs of a simulated PLC, to switch, and a register to set. What an input is now comes from
// the PLC like any other value, so a command that did nothing shows nothing.

#pragma once

#include "tools/fxview/models/value_book.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace fxview {

class InputPanel : public QWidget
{
    Q_OBJECT

public:
    explicit InputPanel(const ValueBook& book, QWidget* parent = nullptr);

    void showMoment(qint64 nowMs);

signals:
    void commanded(const QString& command);  // "switch X0 on", "poke D100 5"

private:
    struct Input
    {
        int tag;
        QLabel* sign;
        QLabel* state;
    };

    QWidget* inputs();
    void addInput(QGridLayout& grid, int tag);
    QLayout* setter();

    const ValueBook& m_book;
    QVector<Input> m_inputs;
    QLineEdit* m_address;
    QLineEdit* m_value;
    QPushButton* m_set;
};

}  // namespace fxview
