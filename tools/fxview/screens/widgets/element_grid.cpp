// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/element_grid.h"

#include <QEvent>

#include <algorithm>

namespace fxview {

namespace {

constexpr int gap = 4;  // between cells

// Of one of the cells that so much space is shared among.
int cellOf(int space, int cells)
{
    return (space + cells - 1) / cells;
}

}  // namespace

void ElementGrid::add(ElementView* child)
{
    m_views.append(child);
    updateGeometry();
}

QSize ElementGrid::minimumSizeHint() const
{
    QSize cell(1, 1);
    for (const ElementView* view : m_views) {
        const QSize least = view->minimumSizeHint() + QSize(gap, gap);
        cell = cell.expandedTo({cellOf(least.width(), view->element().width),
                                cellOf(least.height(), view->element().height)});
    }
    return {cell.width() * m_columns - gap, cell.height() * m_rows - gap};
}

void ElementGrid::place()
{
    const QSize cell((width() + gap) / m_columns, (height() + gap) / m_rows);
    for (ElementView* view : qAsConst(m_views)) {
        const Element& element = view->element();
        view->setGeometry((element.column - 1) * cell.width(), (element.row - 1) * cell.height(),
                          element.width * cell.width() - gap, element.height * cell.height() - gap);
    }
}

void ElementGrid::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    place();
}

bool ElementGrid::event(QEvent* event)
{
    const bool isForAll = QWidget::event(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return isForAll;
}

}  // namespace fxview
