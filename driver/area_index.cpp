// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Open addressing over positions: a slot holds an area's position + 1, or 0 when it is free. The
// first area of a key takes the slot, as a scan from the first area upward would find it.

#include "driver/area_index.h"

namespace {

constexpr int fewestSlots = 16;  // a power of two, as every number of slots is

bool isSameText(const QString& a, const QString& b)
{
    return a.constData() == b.constData() || a == b;  // areas of one type share their text
}

bool hasKey(const _DATA_& area, int stationNo, const QString& registerType, int startIndex)
{
    return area.startIndex == startIndex && area.stationNo == stationNo &&
           isSameText(area.registerType, registerType);
}

// The first and last character tell all register types apart.
unsigned int hashText(const QString& text)
{
    return text.isEmpty() ? 0U : text.at(0).unicode() * 31U + text.at(text.size() - 1).unicode();
}

unsigned int hashKey(int stationNo, const QString& registerType, int startIndex)
{
    unsigned int hash = static_cast<unsigned int>(stationNo);
    hash = hash * 0x01000193U + hashText(registerType);
    hash = hash * 0x01000193U + static_cast<unsigned int>(startIndex);
    hash *= 0x9E3779B1U;  // 2^32 / golden ratio: neighbours spread over all slots
    return hash ^ (hash >> 15);
}

}  // namespace

int AreaIndex::find(const QList<_DATA_>& areas, int stationNo, const QString& registerType,
                    int startIndex)
{
    if (!areas.isSharedWith(m_witness))
        rebuild(areas);
    if (m_keysAreUnique) {
        const int nearbyEnd = qMin(m_lastFound + 2, static_cast<int>(areas.size()));
        for (int position = m_lastFound; position < nearbyEnd; ++position) {
            if (hasKey(areas.at(position), stationNo, registerType, startIndex))
                return m_lastFound = position;
        }
    }
    const int position =
        m_slots.isEmpty() ? -1 : m_slots.at(slotOf(areas, stationNo, registerType, startIndex)) - 1;
    if (position >= 0)
        m_lastFound = position;
    return position;
}

int AreaIndex::append(QList<_DATA_>& areas, const _DATA_& area)
{
    const int position = static_cast<int>(areas.size());
    {
        const Edit edit(*this, areas);
        areas.append(area);
    }
    if (areas.isSharedWith(m_witness))
        insert(areas, position);
    m_lastFound = position;
    return position;
}

// The slot that holds the area with that key, or the free one where it belongs.
int AreaIndex::slotOf(const QList<_DATA_>& areas, int stationNo, const QString& registerType,
                      int startIndex) const
{
    const unsigned int lastSlot = static_cast<unsigned int>(m_slots.size()) - 1;
    unsigned int slot = hashKey(stationNo, registerType, startIndex) & lastSlot;
    for (; m_slots.at(static_cast<int>(slot)) != 0; slot = (slot + 1) & lastSlot) {
        const int position = m_slots.at(static_cast<int>(slot)) - 1;
        if (hasKey(areas.at(position), stationNo, registerType, startIndex))
            break;
    }
    return static_cast<int>(slot);
}

void AreaIndex::insert(const QList<_DATA_>& areas, int position)
{
    const qint64 areasWithThis = static_cast<qint64>(position) + 1;
    if (2 * areasWithThis > m_slots.size()) {
        rebuild(areas);
        return;
    }
    place(areas, position);
}

void AreaIndex::place(const QList<_DATA_>& areas, int position)
{
    const _DATA_& area = areas.at(position);
    int& slot = m_slots[slotOf(areas, area.stationNo, area.registerType, area.startIndex)];
    if (slot != 0)
        m_keysAreUnique = false;  // an earlier area answers for this key
    else
        slot = position + 1;
}

void AreaIndex::rebuild(const QList<_DATA_>& areas)
{
    const int areaCount = static_cast<int>(areas.size());
    int slotCount = fewestSlots;
    while (slotCount < 2 * static_cast<qint64>(areaCount))
        slotCount *= 2;
    m_slots = QVector<int>(slotCount, 0);
    m_keysAreUnique = true;
    m_lastFound = 0;
    for (int position = 0; position < areaCount; ++position)
        place(areas, position);
    m_witness = areas;
}

AreaIndex::Edit::Edit(AreaIndex& index, QList<_DATA_>& areas)
    : m_index(index), m_areas(areas), m_wasCurrent(areas.isSharedWith(index.m_witness))
{
    index.m_witness = QList<_DATA_>();  // a list that is shared would be copied at the first change
}

AreaIndex::Edit::~Edit()
{
    if (m_wasCurrent)
        m_index.m_witness = m_areas;
}
