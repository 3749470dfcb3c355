// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "world.h"

namespace fxsoak {

namespace {

constexpr double faultIsThere = 0.4;  // of each kind, in a world
constexpr double mostOftenAtALine = 0.04;
constexpr double mostOftenAtAll = 0.004;  // power and link

template <typename Value, std::size_t count>
Value oneOf(Random& random, const Value (&values)[count])
{
    return values[static_cast<std::size_t>(below(random, int(count)))];
}

constexpr int slowestBaud = 1200;  // where the PLC answers ENQ

// Below the five seconds that the host waits for an ACK. Where none comes, below three time-outs:
// what it waits for a reply, for the ACK and for a quiet line.
int mostDelayMs(const fxsim::Settings& plc)
{
    if (plc.enquiry != fxsim::EnquiryMode::Ignored)
        return 4000;
    const bool isQuick = plc.timing.baud == 0 || plc.timing.baud > 19200;
    return isQuick ? 100 : 500;
}

int valueOf(fxsim::FaultKind kind, const fxsim::Settings& plc, Random& random)
{
    switch (kind) {
    case fxsim::FaultKind::PowerCycle:
    case fxsim::FaultKind::LinkDrop:
        return below(random, 5000);
    case fxsim::FaultKind::Delay:
        return 1 + below(random, mostDelayMs(plc));
    case fxsim::FaultKind::Slices:
        return below(random, 60);
    default:
        return fxsim::factsOf(kind).value;
    }
}

fxsim::FaultPlan someFaults(const fxsim::Settings& plc, Random& random)
{
    fxsim::FaultPlan plan;
    for (int number = 0; number < fxsim::faultKinds; ++number) {
        const auto kind = static_cast<fxsim::FaultKind>(number);
        const double most = kind < fxsim::FaultKind::Silence ? mostOftenAtAll : mostOftenAtALine;
        if (chance(random, faultIsThere))
            plan.append({kind, valueOf(kind, plc, random), most * below(random, 1000) / 1000, {}});
    }
    return plan;
}

}  // namespace

bool chance(Random& random, double probability)
{
    return std::uniform_real_distribution<>(0, 1)(random) < probability;
}

int below(Random& random, int limit)
{
    return std::uniform_int_distribution<>(0, limit - 1)(random);
}

World worldOf(unsigned int seed)
{
    Random random(seed);
    World world;
    world.plc.seed = seed;
    world.plc.timing.baud = oneOf(random, {slowestBaud, 4800, 9600, 19200, 115200, 0});
    world.plc.timing.scanMs = oneOf(random, {0, 1, 10, 50});
    world.plc.enquiry = oneOf(random, {fxsim::EnquiryMode::Optional, fxsim::EnquiryMode::Needed,
                                       fxsim::EnquiryMode::Optional, fxsim::EnquiryMode::Ignored});
    if (world.plc.enquiry == fxsim::EnquiryMode::Ignored && world.plc.timing.baud == slowestBaud)
        world.plc.timing.baud = 4800;
    world.plc.onError = oneOf(random, {fxsim::OnError::Nak, fxsim::OnError::Silence});
    world.plc.faults = someFaults(world.plc, random);
    world.session.failLimit = 1 + below(random, 4);
    world.session.wordsPerFrame = oneOf(random, {8, 16, 32, 32});
    if (chance(random, 0.3))
        world.timeout = fxtools::TimeoutLimits::fixed(250 + below(random, 1000));
    world.isSerial = chance(random, 0.6);
    world.restMs = oneOf(random, {0, 0, 100, 1000, 10000});
    world.troubles = {0.002 * below(random, 2), 0.0005 * below(random, 2),
                      0.001 * below(random, 2)};
    return world;
}

QString World::text() const
{
    static const char* const enquiries[] = {"ENQ optional", "ENQ needed", "ENQ ignored"};
    return QStringLiteral("%1 baud, scan %2 ms, %3, time-out %4 to %5 ms, %6 tries, %7 words a "
                          "frame, %8, rest %9 ms; ")
               .arg(plc.timing.baud)
               .arg(plc.timing.scanMs)
               .arg(QLatin1String(enquiries[int(plc.enquiry)]))
               .arg(timeout.floorMs)
               .arg(timeout.ceilingMs)
               .arg(session.failLimit)
               .arg(session.wordsPerFrame)
               .arg(QLatin1String(isSerial ? "serial" : "TCP"))
               .arg(restMs) +
           QStringLiteral("cuts %1, interrupts %2, stops %3; faults ")
               .arg(troubles.cut)
               .arg(troubles.interrupt)
               .arg(troubles.stopOrRun) +
           fxsim::faultPlanText(plc.faults);
}

}  // namespace fxsoak
