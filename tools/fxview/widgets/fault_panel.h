// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Faults of a simulated line, each with a slider for how often, so that one sees what a fault does.

#pragma once

#include <QSlider>
#include <QVector>
#include <QWidget>

namespace fxview {

class FaultPanel : public QWidget
{
    Q_OBJECT

public:
    explicit FaultPanel(QWidget* parent = nullptr);

signals:
    void commanded(const QString& command);  // "faults silence=5%"

private:
    struct Fault
    {
        QString command;
        QSlider* slider;
    };

    void addFault(const QString& text, const QString& command);
    void tell();

    QVector<Fault> m_faults;
};

}  // namespace fxview
