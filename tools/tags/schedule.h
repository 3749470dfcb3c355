// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is read when, where registers have periods of their own. A value is due once a period and
// must be read before it is due again; of what is due, the shortest plan has the block with the
// earliest deadline read first, one exchange at a time.
//
// Where the line cannot keep all periods, they count as stretched. What it has to spare then goes
// to what would be read more often than it can be.
//
// Times are given; there is no clock in here.

#pragma once

#include "tools/tags/line_load.h"
#include "tools/tags/shortest_plan.h"

#include <algorithm>
#include <functional>

namespace fxtools {

struct PeriodicRange
{
    RegisterRange registers;
    qint64 periodUs = 0;  // 0: as fast as the line allows
};

class Schedule
{
public:
    // A register with several periods gets the shortest.
    Schedule(const QVector<PeriodicRange>& wanted, int wordsPerFrame, const LineCost& line);

    void begin(qint64 readUs);  // everything was read at that time
    void setLine(const LineCost& line);
    void setUnreadable(const QVector<RegisterRange>& unreadable);  // no block reads over them
    const LineLoad& load() const { return m_load; }

    // The registers to read at this moment, all in one block; nothing before nextUs(). They count
    // as read.
    QVector<RegisterRange> next(qint64 nowUs);
    qint64 nextUs() const;  // when something is to be read again

private:
    struct Value
    {
        RegisterRange registers;  // that belong together
        qint64 wantedUs;          // its period
        qint64 expectedUs = 0;
        qint64 dueUs = 0;          // from then on it has its part of the line,
        qint64 wantedAgainUs = 0;  // and from then on what others leave
        bool isReadable = true;

        qint64 nextUs() const { return std::min(dueUs, wantedAgainUs); }
        void noteRead(qint64 nowUs, qint64 mayLagUs);
    };
    using IsChosen = std::function<bool(const Value&)>;

    void addValues(const PeriodicRange& wanted);
    QVector<RegisterRange> rangesOf(const IsChosen& isChosen) const;
    QVector<PlannedBlock> planOf(const QVector<RegisterRange>& due) const;

    int m_wordsPerFrame;
    LineCost m_line;
    LineLoad m_load;
    QVector<Value> m_values;  // by type, station and number
    QVector<RegisterRange> m_unreadable;
};

}  // namespace fxtools
