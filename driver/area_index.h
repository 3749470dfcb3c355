// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Finds the data area with a given key at the cost of a hash look-up, or less for a neighbour of
// the one found last, with the answer of a scan from the first area upward. Between calls it keeps
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
    // Position of the first area with that key, -1 when there is none.
    int find(const QList<_DATA_>& areas, int stationNo, const QString& registerType,
             int startIndex);

    // Appends `area`, whose key no area has yet, and returns its position.
    int append(QList<_DATA_>& areas, const _DATA_& area);

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
    int slotOf(const QList<_DATA_>& areas, int stationNo, const QString& registerType,
               int startIndex) const;
    void insert(const QList<_DATA_>& areas, int position);
    void place(const QList<_DATA_>& areas, int position);
    void rebuild(const QList<_DATA_>& areas);

    QVector<int> m_slots;  // area position + 1 by hash of its key; 0 = free; never over half full
    QList<_DATA_> m_witness;  // shares its data with the list that the index describes
    int m_lastFound = 0;
    bool m_keysAreUnique = true;
};

#endif
