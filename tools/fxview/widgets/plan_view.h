// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The polling plan as a picture of the memory: a bar for each block, full where a tag is, hollow
// where it reads over a gap; and what reading it costs.

#pragma once

#include "tools/fxview/plc/plc_source.h"

#include <QTableWidget>

namespace fxview {

class PlanView : public QTableWidget
{
    Q_OBJECT

public:
    explicit PlanView(QWidget* parent = nullptr);

    void show(const QVector<BlockOfPlan>& blocks);

private:
    void setCell(int row, int column, const QString& text);
};

// Which registers of the block a tag needs.
QVector<bool> neededIn(const fxtools::PlannedBlock& block);

}  // namespace fxview
