// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The front of the PLC as lines of text: state, inputs, outputs, relays and data registers, in as
// many columns and rows as the terminal has.

#pragma once

#include "tools/fxsim/line/simulator.h"

#include <QStringList>

namespace fxsim {

struct PanelState
{
    int columns = 80;
    int rows = 24;
    int selected = 0;   // the input that the keys work on
    int firstWord = 0;  // the first data register in the list
    bool isUtf8 = true;
    bool isOff = false;
    QString links;
    QString message;
    QString prompt;      // a command that is being typed, with its ":"
    QStringList answer;  // of a command: stands where the data registers do
};

struct Panel
{
    QStringList lines;  // at most `rows`, none longer than `columns`
    int selectedLine = -1;
    int selectedColumn = -1;
};

Panel makePanel(const PanelState& state, Simulator& plc);

constexpr int inputCount = 256;
constexpr int bitsPerGroup = 8;

}  // namespace fxsim
