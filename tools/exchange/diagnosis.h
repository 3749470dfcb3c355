// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is told of a line that was measured: what is the matter, and what to do.

#pragma once

#include "tools/exchange/line_check.h"
#include "tools/link/link_settings.h"

namespace fxtools {

// What was found with one line setting.
struct Finding
{
    LinkSettings link;
    QString setting;              // its name: "9600 baud 7E1"
    bool wasAskedToRead = true;   // false: it got ENQ alone
    bool needsTolerance = false;  // more than the user said
    LineCheck check;
};

// The one that explains most: a good reply before any other, and any reply before silence.
const Finding& mostTelling(const QVector<Finding>& findings);

QString enquiryText(const Finding& finding);
QString requestText(const Finding& finding);

// "type 22, version 2.10, running"; empty if the PLC did not say.
QString plcText(const LineCheck& check);

// "97 of 100 exchanges good; replies: median 25 ms, 95 % in 31 ms, longest 210 ms".
QString measurementText(const LineCheck& check);

// All that there is to say, in sentences. "All is well" stands for a line without any fault.
QString meaning(const Finding& finding);

// What the exchanges tell of a line that is in use.
LineCheck checkOf(const Statistics& statistics, bool isDown);

}  // namespace fxtools
