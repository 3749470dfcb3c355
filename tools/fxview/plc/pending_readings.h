// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The readings that the window has not taken yet. While it stands still they become more and more;
// then those between are left out: of each tag, of each sixteen in a row, stay the first in each
// alarm, the lowest, the highest, the newest and the first that is not good; and all that raise or
// clear an alarm, unless there are too many of them. So no alarm and no peak is lost, however long
// it takes.

#pragma once

#include "tools/fxview/plc/plc_source.h"

#include <algorithm>

namespace fxview {

class PendingReadings
{
public:
    explicit PendingReadings(const QVector<fxtools::Tag>& tags)
        : m_tags(tags), m_most(std::max(mostOfFewTags, mostPerTag * tags.size()))
    {}

    void add(const Reading& reading);
    QVector<Reading> take() { return std::exchange(m_readings, {}); }

    int most() const { return m_most; }  // that wait at once

private:
    static constexpr int mostPerTag = 16;
    static constexpr int mostOfFewTags = 50000;

    void thinOut(bool keepsEachAlarm);

    QVector<fxtools::Tag> m_tags;
    int m_most;
    QVector<Reading> m_readings;  // in the order in which they came
};

}  // namespace fxview
