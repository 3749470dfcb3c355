// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/checked_write.h"

namespace fxtools {

namespace {

// The registers, as the PLC holds them now; empty if it does not tell.
QVector<quint32> readNow(ExchangeLoop& loop, const RegisterRange& range,
                         std::optional<ReplyVerdict>& problem)
{
    const ReplyVerdict verdict = readBack(loop, range);
    if (verdict == ReplyVerdict::Good)
        return loop.session().values(range);
    problem = verdict;
    return {};
}

}  // namespace

bool mayGoOn(ReplyVerdict problem)
{
    return problem != ReplyVerdict::LinkLost && problem != ReplyVerdict::Interrupted;
}

CheckedWrite writeAndReadBack(ExchangeLoop& loop, const Assignment& assignment, Check check)
{
    const RegisterRange& range = assignment.asked.range;
    CheckedWrite write;
    if (check == Check::BeforeAndAfter || assignment.asked.bit)
        write.before = readNow(loop, range, write.problem);
    write.wanted = assignment.valuesOver(write.before);
    if (write.problem && (write.problem != ReplyVerdict::Refused || assignment.asked.bit))
        return write;
    write.problem.reset();
    write.outcome = writeRegisters(loop, range, write.wanted);
    const bool isOver = !write.outcome->isGood() && !mayGoOn(*write.outcome->problem);
    if (isOver)
        loop.forgetEverything();  // or it would be sent when the link is back
    else if (check == Check::BeforeAndAfter)
        write.after = readNow(loop, range, write.problem);
    return write;
}

}  // namespace fxtools
