// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One page of a screen: its elements on cells that are all of one size, large enough for each.

#pragma once

#include "tools/fxview/screens/widgets/element_view.h"

namespace fxview {

class ElementGrid : public QWidget
{
    Q_OBJECT

public:
    ElementGrid(int columns, int rows) : m_columns(columns), m_rows(rows) {}

    void add(ElementView* child);
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    void place();

    int m_columns;
    int m_rows;
    QVector<ElementView*> m_views;
};

}  // namespace fxview
