// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How long the PLC took to answer, as bars over a logarithmic axis of time.

#pragma once

#include "tools/exchange/statistics.h"

#include <QWidget>

namespace fxview {

class HistogramView : public QWidget
{
    Q_OBJECT

public:
    explicit HistogramView(QWidget* parent = nullptr);

    void show(const fxtools::Histogram& histogram);

    // How many answers took so long, from 1 ms on in steps of a quarter of a doubling.
    static QVector<qint64> barsOf(const fxtools::Histogram& histogram);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVector<qint64> m_bars;
};

}  // namespace fxview
