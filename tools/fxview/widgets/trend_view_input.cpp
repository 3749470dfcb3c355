// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The trend under mouse and keyboard.

#include "tools/fxview/widgets/trend_view.h"

#include <QMouseEvent>

#include <cmath>

namespace fxview {

namespace {

constexpr double zoomStep = 1.25;
constexpr int degreesPerStep = 15 * 8;  // of a wheel, in its eighths
constexpr int panParts = 10;            // of the span for each press of an arrow
constexpr int cursorParts = 200;
constexpr int clickPixels = 4;  // less movement is none

}  // namespace

void TrendView::wheelEvent(QWheelEvent* event)
{
    const double steps = event->angleDelta().y() / static_cast<double>(degreesPerStep);
    m_span.zoom(std::pow(zoomStep, -steps), timeAt(static_cast<int>(event->position().x())));
    update();
    emit changed();
}

void TrendView::mousePressEvent(QMouseEvent* event)
{
    m_pressedX = event->x();
    m_isDragging = false;
}

void TrendView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_pressedX || (!m_isDragging && std::abs(event->x() - *m_pressedX) < clickPixels))
        return;
    m_isDragging = true;
    m_span.pan(timeAt(*m_pressedX) - timeAt(event->x()), m_nowMs);
    m_pressedX = event->x();
    update();
    emit changed();
}

void TrendView::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_pressedX && !m_isDragging)
        placeCursor(event->modifiers() & Qt::ShiftModifier, timeAt(event->x()));
    m_pressedX.reset();
}

void TrendView::placeCursor(bool isSecond, qint64 timeMs)
{
    (isSecond ? m_cursors.second : m_cursors.first) = timeMs;
    update();
    emit changed();
}

bool TrendView::moveCursor(QKeyEvent& event)
{
    const bool isSecond = event.modifiers() & Qt::ShiftModifier;
    if (!isSecond && !(event.modifiers() & Qt::ControlModifier))
        return false;
    const qint64 middleMs = (m_span.beginMs(m_nowMs) + m_span.endMs(m_nowMs)) / 2;
    const qint64 stepMs = std::max(m_span.lengthMs() / cursorParts, finestBucketMs);
    const std::optional<qint64>& cursor = isSecond ? m_cursors.second : m_cursors.first;
    placeCursor(isSecond,
                cursor.value_or(middleMs) + (event.key() == Qt::Key_Left ? -stepMs : stepMs));
    return true;
}

void TrendView::keyPressEvent(QKeyEvent* event)
{
    const qint64 middleMs = (m_span.beginMs(m_nowMs) + m_span.endMs(m_nowMs)) / 2;
    const qint64 panMs = m_span.lengthMs() / panParts;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (!moveCursor(*event))
            m_span.pan(event->key() == Qt::Key_Left ? -panMs : panMs, m_nowMs);
        break;
    case Qt::Key_Plus:
        m_span.zoom(1 / zoomStep, middleMs);
        break;
    case Qt::Key_Minus:
        m_span.zoom(zoomStep, middleMs);
        break;
    case Qt::Key_Escape:
        m_cursors = {};
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    update();
    emit changed();
}

}  // namespace fxview
