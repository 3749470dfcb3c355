// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/hold_button.h"

#include <QMouseEvent>

namespace fxview {

void HoldButton::hold()
{
    if (m_isHeld || !isEnabled())
        return;
    m_isHeld = true;
    setDown(true);
    emit held();
}

void HoldButton::endHold()
{
    if (!m_isHeld)
        return;
    m_isHeld = false;
    setDown(false);
    emit letGo();
}

bool HoldButton::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusOut:
    case QEvent::UngrabMouse:
    case QEvent::WindowDeactivate:
    case QEvent::WindowBlocked:
    case QEvent::Hide:
    case QEvent::TouchCancel:
        endHold();
        break;
    case QEvent::EnabledChange:
        if (!isEnabled())
            endHold();
        break;
    default:
        break;
    }
    return QPushButton::event(event);
}

void HoldButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && hitButton(event->pos()))
        hold();
    else
        event->ignore();
}

void HoldButton::mouseMoveEvent(QMouseEvent* event)
{
    const bool isLeft = event->buttons() & Qt::LeftButton;
    if (!isLeft || !hitButton(event->pos()))
        endHold();
}

void HoldButton::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        endHold();
}

void HoldButton::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Select) {
        if (!event->isAutoRepeat())
            hold();
    } else if (event->key() == Qt::Key_Escape && m_isHeld) {
        endHold();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->ignore();
    } else {
        QPushButton::keyPressEvent(event);
    }
}

void HoldButton::keyReleaseEvent(QKeyEvent* event)
{
    const bool isHolding = event->key() == Qt::Key_Space || event->key() == Qt::Key_Select;
    if (isHolding && !event->isAutoRepeat())
        endHold();
    else if (!isHolding)
        QPushButton::keyReleaseEvent(event);
}

}  // namespace fxview
