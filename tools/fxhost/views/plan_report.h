// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Two plans for the same registers side by side: the driver's own one and the shortest. Their
// blocks, what a cycle takes at usual speeds, and the memory that they read as a picture.

#pragma once

#include "tools/fxhost/views/json_text.h"
#include "tools/tags/shortest_plan.h"

#include <QStringList>

namespace fxtools {

struct ReportedPlan
{
    QString name;  // "given" or "shortest"
    QVector<PlannedBlock> blocks;
    QVector<QPair<int, double>> cycleMs;  // by baud rate

    int characters() const;
};

// What a cycle takes less without one of the addresses.
struct PlanSaving
{
    QString address;
    double ms = 0;
};

struct PlanReport
{
    LineCost line;
    ReportedPlan given;
    ReportedPlan shortest;
    QVector<PlanSaving> savings;  // with the shortest plan, the largest first

    bool areAlike() const;
};

// The registers of a block that nobody asked for, run by run.
QVector<RegisterRange> unaskedRuns(const PlannedBlock& block);

QString planReportJson(const PlanReport& report);

// What stands below the table of blocks.
QStringList planReportLines(const PlanReport& report);

// The memory that is read, row by row: what was asked for, what is read with it, and the gaps.
QStringList planPicture(const PlanReport& report);
QByteArray planPictureSvg(const PlanReport& report);

}  // namespace fxtools
