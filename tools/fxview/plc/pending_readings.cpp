// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/plc/pending_readings.h"

namespace fxview {

namespace {

constexpr int readingsPerSlice = 16;
constexpr int none = -1;

// Some readings of one tag in a row; those to keep by their places in all.
struct Slice
{
    int readings = 0;
    int lowest = none, highest = none, newest = none;
    int firstLow = none, firstHigh = none, firstNotGood = none;

    void include(const QVector<Reading>& all, int place, const QString& alarm)
    {
        ++readings;
        newest = place;
        const auto keepFirst = [place](int& kept) { kept = kept == none ? place : kept; };
        if (all[place].quality != Quality::Good) {
            keepFirst(firstNotGood);
            return;
        }
        const double value = all[place].value.toDouble();
        if (lowest == none || value < all[lowest].value.toDouble())
            lowest = place;
        if (highest == none || value > all[highest].value.toDouble())
            highest = place;
        if (!alarm.isEmpty())
            keepFirst(alarm == QLatin1String("low") ? firstLow : firstHigh);
    }

    void mark(QVector<bool>& isKept) const
    {
        for (const int place : {lowest, highest, newest, firstLow, firstHigh, firstNotGood}) {
            if (place != none)
                isKept[place] = true;
        }
    }
};

}  // namespace

void PendingReadings::add(const Reading& reading)
{
    if (m_readings.size() >= m_most)
        thinOut(true);
    if (m_readings.size() >= m_most)
        thinOut(false);
    m_readings.append(reading);
}

void PendingReadings::thinOut(bool keepsEachAlarm)
{
    QVector<Slice> slices(m_tags.size());
    QVector<std::optional<QString>> alarms(m_tags.size());
    QVector<bool> isKept(m_readings.size(), false);
    for (int place = 0; place < m_readings.size(); ++place) {
        const Reading& reading = m_readings[place];
        Slice& slice = slices[reading.tag];
        const QString alarm = m_tags[reading.tag].alarmOf(reading.value);
        slice.include(m_readings, place, alarm);
        if (keepsEachAlarm && reading.quality == Quality::Good)
            isKept[place] = std::exchange(alarms[reading.tag], alarm) != alarm;
        if (slice.readings == readingsPerSlice) {
            slice.mark(isKept);
            slice = {};
        }
    }
    for (const Slice& slice : qAsConst(slices))
        slice.mark(isKept);
    QVector<Reading> kept;
    for (int place = 0; place < m_readings.size(); ++place) {
        if (isKept[place])
            kept.append(m_readings[place]);
    }
    m_readings = kept;
}

}  // namespace fxview
