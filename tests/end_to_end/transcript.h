// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A terminal session as a test: a transcript holds the lines that were typed and all that the
// programs printed; playing it again must give the same text. Three prompts are known:
//   fxhost> ARGUMENTS [<<< LINE] [| grep -o PATTERN]
//                     a run against the simulated PLC, with the line on its standard input; all of
//                     its output or each part that matches; "[CODE]" follows unless it is 0
//   fxsim> COMMAND                          a command to that PLC
//   cat> FILE                               a file in the folder that the programs work in

#pragma once

#include "tests/tools/support/programs.h"

namespace fx_end_to_end {

using tool_tests::Road;

class TerminalSession
{
public:
    TerminalSession(Road road, const QStringList& simulatorOptions);

    // The transcript of what the typed lines of the given one lead to.
    std::string play(const std::string& transcript);

private:
    std::string answerTo(const QString& typed);
    std::string runHost(const QString& arguments) const;

    QTemporaryDir m_folder;
    tool_tests::RunningSimulator m_plc;
};

}  // namespace fx_end_to_end
