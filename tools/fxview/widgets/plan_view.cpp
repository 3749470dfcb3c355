// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/plan_view.h"

#include "tools/fxview/widgets/theme.h"

#include <QHeaderView>
#include <QStyledItemDelegate>

#include <algorithm>

namespace fxview {

namespace {

enum Column
{
    Block,
    Picture,
    Gaps,
    Cost,
    columns
};

constexpr int neededRole = Qt::UserRole;  // QVector<bool>

class PictureDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        const auto needed = index.data(neededRole).value<QVector<bool>>();
        const QRectF area = QRectF(option.rect).adjusted(4, 5, -4, -5);
        const double width = area.width() / std::max(needed.size(), 1);
        const QColor colour = option.palette.color(
            option.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text);
        for (int number = 0; number < needed.size(); ++number) {
            if (needed[number])
                painter->fillRect(
                    QRectF(area.left() + number * width, area.top(), width, area.height()), colour);
        }
        painter->setPen(colour);
        painter->drawRect(area);
    }
};

}  // namespace

QVector<bool> neededIn(const fxtools::PlannedBlock& block)
{
    QVector<bool> needed(block.registers.count, false);
    for (const fxtools::RegisterRange& due : block.due) {
        for (int number = 0; number < due.count; ++number) {
            const int place = due.first + number - block.registers.first;
            if (place >= 0 && place < needed.size())
                needed[place] = true;
        }
    }
    return needed;
}

PlanView::PlanView(QWidget* parent) : QTableWidget(0, columns, parent)
{
    setHorizontalHeaderLabels({tr("Block"), tr("Memory"), tr("Gaps"), tr("Cost in ms")});
    setAccessibleName(tr("Polling plan"));
    setItemDelegateForColumn(Picture, new PictureDelegate(this));
    setEditTriggers(NoEditTriggers);
    setSelectionBehavior(SelectRows);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(Picture, QHeaderView::Stretch);
}

void PlanView::setCell(int row, int column, const QString& text)
{
    if (!item(row, column))
        setItem(row, column, new QTableWidgetItem);
    item(row, column)->setText(text);
}

void PlanView::show(const QVector<BlockOfPlan>& blocks)
{
    setRowCount(blocks.size());
    for (int row = 0; row < blocks.size(); ++row) {
        const fxtools::PlannedBlock& block = blocks[row].block;
        const QVector<bool> needed = neededIn(block);
        const auto gaps = std::count(needed.begin(), needed.end(), false);
        setCell(row, Block, block.registers.text());
        setCell(row, Picture, {});
        item(row, Picture)->setData(neededRole, QVariant::fromValue(needed));
        item(row, Picture)
            ->setData(Qt::AccessibleTextRole,
                      tr("%1 of %2 registers needed").arg(needed.size() - gaps).arg(needed.size()));
        setCell(row, Gaps, QString::number(gaps));
        setCell(row, Cost, QString::number(blocks[row].costMs, 'f', 1));
    }
}

}  // namespace fxview
