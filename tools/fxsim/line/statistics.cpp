// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/line/statistics.h"

namespace fxsim {

namespace {

constexpr int labelWidth = 30;

QByteArray row(const char* label, qint64 number)
{
    return "  " + QByteArray(label).leftJustified(labelWidth) + QByteArray::number(number) + '\n';
}

QByteArray rowUnlessZero(const char* label, qint64 number)
{
    return number == 0 ? QByteArray() : row(label, number);
}

}  // namespace

void Statistics::countRequest(const Request& request)
{
    ++verdicts[static_cast<size_t>(request.verdict)];
    if (request.verdict != Verdict::Good)
        return;
    reads += request.command == Command::Read;
    writes += request.command == Command::Write;
    forces += request.command == Command::ForceOn || request.command == Command::ForceOff;
}

QByteArray Statistics::text() const
{
    QByteArray text = row("clients", clients) + row("exchanges", exchanges) + row("reads", reads) +
                      row("writes", writes) + row("forces", forces) + row("enquiries", enquiries) +
                      row("characters in", charactersIn) + row("characters out", charactersOut);
    for (size_t verdict = 1; verdict < verdicts.size(); ++verdict)
        text += rowUnlessZero(QByteArray("refused: ") + verdictText(static_cast<Verdict>(verdict)),
                              verdicts[verdict]);
    text += rowUnlessZero("overlong frames", overlongFrames) +
            rowUnlessZero("frames before ENQ", ungreetedFrames) +
            rowUnlessZero("junk characters", junkCharacters) +
            rowUnlessZero("characters while off", ignoredCharacters) +
            rowUnlessZero("characters lost", charactersLost) +
            rowUnlessZero("power cycles", powerCycles);
    for (size_t fault = 0; fault < faults.size(); ++fault)
        text += rowUnlessZero(QByteArray("fault: ") + factsOf(static_cast<FaultKind>(fault)).name,
                              faults[fault]);
    return text;
}

}  // namespace fxsim
