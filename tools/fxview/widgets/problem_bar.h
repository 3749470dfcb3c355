// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One bar for what is wrong and what to do about it; hidden while nothing is. The gravest comes
// first, the others are counted.

#pragma once

#include <QFrame>
#include <QLabel>
#include <QMap>
#include <QPushButton>

namespace fxview {

// The gravest first.
enum class Problem
{
    Start,    // of all
    Release,  // of a push button, not confirmed
    LinkLost,
    Recipe,   // in the PLC by half
    TagFile,  // has mistakes
    AlarmFile,
    StillOn,  // though its push button was released
    Screen,   // mistakes in its file
    Export,
    Command,
};

class ProblemBar : public QFrame
{
    Q_OBJECT

public:
    explicit ProblemBar(QWidget* parent = nullptr);

    void set(Problem problem, const QString& text);
    void clear(Problem problem);

signals:
    void closed(Problem problem);  // by hand

private:
    void refresh();

    QMap<Problem, QString> m_texts;
    QLabel* m_sign;
    QLabel* m_text;
    QPushButton* m_close;  // of what does not pass by itself
};

}  // namespace fxview
