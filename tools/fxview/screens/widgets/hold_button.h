// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A button that is held: with the left mouse button or with the Space key. Whatever may keep its
// end from being seen lets go of it: the mouse leaves it, it loses the focus or the mouse, it is
// disabled or hidden, or its window is no longer the active one. To hold it again needs a new
// press.

#pragma once

#include <QPushButton>

namespace fxview {

class HoldButton : public QPushButton
{
    Q_OBJECT

public:
    using QPushButton::QPushButton;

    bool isHeld() const { return m_isHeld; }

signals:
    void held();
    void letGo();

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    void hold();
    void endHold();

    bool m_isHeld = false;
};

}  // namespace fxview
