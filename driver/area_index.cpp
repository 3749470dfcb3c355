// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Open addressing over positions: a slot holds an area's position + 1, or 0 when it is free. The
// first area of a key takes the slot, as a scan from the first area upward would find it.

#include "driver/area_index.h"

namespace {

constexpr int fewestSlots = 16;  // a power of two, as every number of slots is

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

int AreaIndex::findByHash(QList<_DATA_>& areas, int stationNo, const QString& registerType,
                          int startIndex)
{
    if (m_slots.isEmpty() || !areas.isSharedWith(m_witness))
        rebuild(areas);
    const int slot = slotOf(areas, stationNo, registerType, startIndex);
    const int position = m_slots.at(slot) - 1;
    if (position >= 0)
        return position;
    _DATA_ area;
    area.stationNo = stationNo;
    area.registerType = registerType;
    area.startIndex = startIndex;
    return append(areas, slot, area);
}

int AreaIndex::append(QList<_DATA_>& areas, int slot, const _DATA_& area)
{
    const int position = static_cast<int>(areas.size());
    {
        const Edit edit(*this, areas);
        areas.append(area);
    }
    const qint64 areaCount = static_cast<qint64>(position) + 1;
    if (2 * areaCount > m_slots.size())
        rebuild(areas);
    else
        m_slots[slot] = position + 1;
    return position;
}

// The slot that holds the area with that key, or the free one where it belongs.
int AreaIndex::slotOf(const QList<_DATA_>& areas, int stationNo, const QString& registerType,
                      int startIndex) const
{
    const int lastSlot = static_cast<int>(m_slots.size()) - 1;
    int slot = static_cast<int>(hashKey(stationNo, registerType, startIndex)) & lastSlot;
    for (; m_slots.at(slot) != 0; slot = (slot + 1) & lastSlot) {
        const int position = m_slots.at(slot) - 1;
        if (hasKey(areas.at(position), stationNo, registerType, startIndex))
            break;
    }
    return slot;
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
    m_lastOfRun = 0;
    for (int position = 0; position < areaCount; ++position) {
        const _DATA_& area = areas.at(position);
        int& slot = m_slots[slotOf(areas, area.stationNo, area.registerType, area.startIndex)];
        if (slot == 0)
            slot = position + 1;
        else
            m_keysAreUnique = false;  // an earlier area answers for this key
    }
    m_witness = areas;
}

AreaIndex::Edit::Edit(AreaIndex& index, QList<_DATA_>& areas)
    : m_index(index), m_areas(areas), m_wasCurrent(areas.isSharedWith(index.m_witness))
{
    if (!m_wasCurrent)
        index = AreaIndex();  // it knew another list, and must not take an empty one for that
    index.m_witness = QList<_DATA_>();  // a list that is shared would be copied at the first change
}

AreaIndex::Edit::~Edit()
{
    if (m_wasCurrent)
        m_index.m_witness = m_areas;
}
