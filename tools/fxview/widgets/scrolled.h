// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Pages that are larger than the screen, as with large letters on a small panel.

#pragma once

#include <QWidget>

namespace fxview {

// Where the content of the page goes: it scrolls where the page is too small for it.
QWidget* scrolledIn(QWidget* page);

}  // namespace fxview
