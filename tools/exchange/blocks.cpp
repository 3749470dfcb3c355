// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/blocks.h"

#include <algorithm>

namespace fxtools {

namespace {

bool sameKind(const RegisterRange& one, const RegisterRange& other)
{
    return one.station == other.station && one.type.name == other.type.name;
}

}  // namespace

RegisterRange blockRange(const RegisterCatalogue& catalogue, const VARIABLE& request)
{
    RegisterRange range;
    range.type = *catalogue.find(request.registerType);
    range.station = request.stationNo;
    range.first = request.addressIndex;
    range.count = range.type.isBit() ? bitsPerByte * request.count : request.count;
    return range;
}

int writtenRegisters(const RegisterType& type, const VARIABLE& request)
{
    return type.isBit() ? 1 : std::max(request.count / type.driverCount(1), 1);
}

RegisterRange requestRange(const RegisterCatalogue& catalogue, const FRAME_PRO& frame)
{
    RegisterRange range = blockRange(catalogue, frame.variable);
    if (frame.isRead == 0)
        range.count = writtenRegisters(range.type, frame.variable);
    return range;
}

bool isInside(const RegisterRange& inner, const RegisterRange& outer)
{
    return sameKind(inner, outer) && inner.first >= outer.first &&
           inner.first + inner.count <= outer.first + outer.count;
}

bool overlap(const RegisterRange& one, const RegisterRange& other)
{
    return sameKind(one, other) && one.first < other.first + other.count &&
           other.first < one.first + one.count;
}

QString fromToText(const RegisterRange& range)
{
    if (range.count == 1)
        return range.nameOf(0);
    return range.nameOf(0) + " … " + range.nameOf(range.count - 1);
}

void requireOneReply(const RegisterRange& value, int wordsPerFrame)
{
    const int size = value.type.isBit() ? bitsPerByte : 1;  // what can be read alone
    const int read = ((value.first + value.count - 1) / size - value.first / size + 1) * size;
    const int most =
        value.type.mostInFrame(std::min(wordsPerFrame, SessionSettings().wordsPerFrame));
    if (read > most) {
        throw Failure(ExitCode::Usage,
                      QStringLiteral("%1 is one value, and one reply brings at most %2 of its "
                                     "registers; read it in parts")
                          .arg(value.text())
                          .arg(most));
    }
}

QVector<FRAME_PRO> planOf(DriverSession& session, const QVector<RegisterRange>& ranges)
{
    session.fitFrames(ranges);
    const int blocks = session.setPlan(ranges);
    QVector<FRAME_PRO> frames;
    for (int block = 0; block < blocks; ++block) {
        FRAME_PRO frame;
        if (session.library().getSendFrame(&frame) != fxFrameToSend)
            break;
        frames.append(frame);
        session.giveUpFrame();
    }
    session.setPlan({});
    return frames;
}

}  // namespace fxtools
