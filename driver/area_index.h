// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Finds the data area with a given key at the cost of a hash look-up, or less for the next one in
// the list's order, with the answer of a scan from the first area upward. Between calls it keeps
// a shared copy of the list: whoever changes the list behind its back detaches it from that
// copy, which is how such a change is noticed and the index built anew.

#ifndef DRIVER_AREA_INDEX_H
#define DRIVER_AREA_INDEX_H

#include "driver/records.h"

#include <QList>
#include <QVector>

class AreaIndex
{
public:
    // Position of the first area with that key; a missing one is appended, all zero.
    int findOrAppend(QList<_DATA_>& areas, int stationNo, const QString& registerType,
                     int startIndex)
    {
        if (m_keysAreUnique && areas.isSharedWith(m_witness)) {
            const int areaCount = static_cast<int>(areas.size());
            for (const int position : {m_lastOfRun + 1, m_lastFound + 1}) {
                if (position < areaCount &&
                    hasKey(areas.at(position), stationNo, registerType, startIndex))
                    return m_lastFound = m_lastOfRun = position;
            }
            if (m_lastFound < areaCount &&
                hasKey(areas.at(m_lastFound), stationNo, registerType, startIndex))
                return m_lastFound;
        }
        return m_lastFound = findByHash(areas, stationNo, registerType, startIndex);
    }

    // Lets `areas` be written to in place while it lives. Keys must stay as they are.
    class Edit
    {
    public:
        Edit(AreaIndex& index, QList<_DATA_>& areas);
        ~Edit();
        Edit(const Edit&) = delete;
        Edit& operator=(const Edit&) = delete;

    private:
        AreaIndex& m_index;
        QList<_DATA_>& m_areas;
        bool m_wasCurrent;
    };

private:
    static bool isSameText(const QString& a, const QString& b)
    {
        return a.isSharedWith(b) || a == b;  // areas of one type share their text
    }
    static bool hasKey(const _DATA_& area, int stationNo, const QString& registerType,
                       int startIndex)
    {
        return area.startIndex == startIndex && area.stationNo == stationNo &&
               isSameText(area.registerType, registerType);
    }

    int findByHash(QList<_DATA_>& areas, int stationNo, const QString& registerType,
                   int startIndex);
    int slotOf(const QList<_DATA_>& areas, int stationNo, const QString& registerType,
               int startIndex) const;
    int append(QList<_DATA_>& areas, int slot, const _DATA_& area);
    void rebuild(const QList<_DATA_>& areas);

    QVector<int> m_slots;  // area position + 1 by hash of its key; 0 = free; never over half full
    QList<_DATA_> m_witness;  // shares its data with the list that the index describes
    int m_lastFound = 0;
    int m_lastOfRun = 0;  // the one found last as a neighbour: a run goes on behind a leap aside
    bool m_keysAreUnique = true;
};

#endif
