// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The page of the line: what the polling plan reads and costs, how long answers take, what goes
// wrong and how often, what that means, and the frames. A simulated PLC can be given faults and
// inputs here.

#pragma once

#include "tools/fxview/widgets/fault_panel.h"
#include "tools/fxview/widgets/histogram_view.h"
#include "tools/fxview/widgets/input_panel.h"
#include "tools/fxview/widgets/plan_view.h"

#include <QLabel>
#include <QPlainTextEdit>

namespace fxview {

class LinePage : public QWidget
{
    Q_OBJECT

public:
    LinePage(const ValueBook& book, bool isSimulated, QWidget* parent = nullptr);

    void take(const LineReport& report);
    void take(const QVector<fxtools::Exchange>& exchanges);

    void showMoment(qint64 nowMs);

signals:
    void commanded(const QString& command);  // for the simulated PLC

private:
    void showCauses(const fxtools::Statistics& statistics);

    QLabel* m_verdict;
    QLabel* m_load;
    PlanView* m_plan;
    HistogramView* m_responses;
    QLabel* m_times;
    QLabel* m_causes;
    InputPanel* m_inputs = nullptr;  // of a simulated PLC
    QPlainTextEdit* m_frames;
};

// "12.345  cyclic read  <STX>0100...  →  <STX>0000...  good, 21.3 ms".
QString exchangeText(const fxtools::Exchange& exchange);

QString loadText(const LineReport& report);  // "Line load 43 %"

}  // namespace fxview
