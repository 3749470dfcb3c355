// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/scrolled.h"

#include <QScrollArea>
#include <QVBoxLayout>

namespace fxview {

QWidget* scrolledIn(QWidget* page)
{
    auto* area = new QScrollArea(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(new QWidget(area));
    auto* whole = new QVBoxLayout(page);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(area);
    return area->widget();
}

}  // namespace fxview
