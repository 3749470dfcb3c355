// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/screen_writes.h"

#include <cstdlib>

namespace fxview {

namespace {

constexpr qint64 betweenReleasesMs = 1000;
constexpr qint64 overdueMs = 2000;
constexpr int mostFailures = 3;  // then the PLC's own program holds the bit

}  // namespace

ScreenWrites::ScreenWrites(PlcSource& source) : m_source(source)
{
    connect(&source, &PlcSource::written, this, &ScreenWrites::take);
    connect(&source, &PlcSource::linkChanged, this, &ScreenWrites::setLinkUp);
}

// The source sends what it was given before it ends.
ScreenWrites::~ScreenWrites()
{
    for (auto each = m_pressed.cbegin(); each != m_pressed.cend(); ++each) {
        if (each->releaseId == 0)
            m_source.write(expect(each.key()), each.key(), QStringLiteral("0"));
    }
}

int ScreenWrites::expect(int tag)
{
    m_waiting.insert(--m_lastId, tag);
    return m_lastId;
}

void ScreenWrites::write(int tag, const QString& text)
{
    if (!mayWrite() || isWaiting(tag))
        return;
    m_source.writeSoon(expect(tag), tag, text);
    emit changed();
}

// A release that is still awaited is followed by another one.
void ScreenWrites::press(int tag)
{
    const auto found = m_pressed.constFind(tag);
    if (!mayWrite() || (found != m_pressed.cend() && found->isHeld))
        return;
    m_pressed.insert(tag, {});
    m_source.writeSoon(expect(tag), tag, QStringLiteral("1"));
    emit changed();
}

void ScreenWrites::release(int tag)
{
    const auto found = m_pressed.find(tag);
    if (found == m_pressed.end() || !found->isHeld)
        return;
    found->isHeld = false;
    found->letGoMs = m_nowMs;
    found->isOverdue = !m_isLinkUp;
    if (m_isLinkUp)
        sendRelease(tag, *found);
    emit changed();
}

void ScreenWrites::sendRelease(int tag, Press& press)
{
    press.sentMs = m_nowMs;
    press.releaseId = expect(tag);
    m_source.write(press.releaseId, tag, QStringLiteral("0"));
}

void ScreenWrites::releaseAll()
{
    for (const int tag : m_pressed.keys())
        release(tag);
}

void ScreenWrites::end()
{
    m_isEnding = true;
    releaseAll();
    emit changed();
}

QVector<int> ScreenWrites::overdue() const
{
    QVector<int> tags;
    for (auto each = m_pressed.cbegin(); each != m_pressed.cend(); ++each) {
        if (each->isOverdue)
            tags.append(each.key());
    }
    return tags;
}

void ScreenWrites::setLinkUp(bool isUp)
{
    m_isLinkUp = isUp;
    if (!isUp)
        releaseAll();
    for (auto each = m_pressed.begin(); each != m_pressed.end(); ++each) {
        each->isOverdue = each->isOverdue || (!isUp && !each->isHeld);
        if (isUp && !each->isHeld && each->releaseId == 0)
            sendRelease(each.key(), *each);
    }
    emit changed();
}

void ScreenWrites::take(const WriteResult& result)
{
    if (!m_waiting.remove(result.id))
        return;
    noteRelease(result);
    emit told(result);
    emit changed();
}

void ScreenWrites::noteRelease(const WriteResult& result)
{
    const auto found = m_pressed.find(result.tag);
    if (found == m_pressed.end() || found->releaseId != result.id)
        return;
    found->releaseId = 0;
    const bool isHeldOn = result.outcome == WriteResult::Outcome::Failed && result.isAcknowledged;
    found->failures = isHeldOn ? found->failures + 1 : 0;
    const bool isGivenUp = found->failures == mostFailures;
    if (result.outcome == WriteResult::Outcome::Done || isGivenUp)
        m_pressed.erase(found);
    else
        found->isOverdue = true;
    if (isGivenUp)
        emit stillOn(result.tag);
}

void ScreenWrites::showMoment(qint64 nowMs)
{
    m_nowMs = nowMs;
    bool isChanged = false;
    for (auto each = m_pressed.begin(); each != m_pressed.end(); ++each) {
        if (each->isHeld)
            continue;
        if (!each->isOverdue && std::abs(nowMs - each->letGoMs) >= overdueMs) {
            each->isOverdue = true;
            isChanged = true;
        }
        if (m_isLinkUp && each->releaseId == 0 &&
            std::abs(nowMs - each->sentMs) >= betweenReleasesMs)
            sendRelease(each.key(), *each);
    }
    if (isChanged)
        emit changed();
}

}  // namespace fxview
