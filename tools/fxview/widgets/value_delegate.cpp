// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/value_delegate.h"

#include "tools/fxview/widgets/curve.h"
#include "tools/fxview/widgets/theme.h"

namespace fxview {

namespace {

constexpr qint64 sparklineMs = 60000;

Quality qualityOf(const QModelIndex& index)
{
    return static_cast<Quality>(index.data(ValueTable::QualityRole).toInt());
}

bool isAlarm(const QModelIndex& index)
{
    return !index.data(ValueTable::AlarmRole).toString().isEmpty();
}

// Left of the text.
Sign signIn(const QModelIndex& index)
{
    if (index.column() == ValueTable::State)
        return isAlarm(index) ? Sign::Triangle : signOf(qualityOf(index));
    const QVariant lamp = index.data(ValueTable::LampRole);
    if (index.column() == ValueTable::Value && lamp.isValid())
        return lamp.toBool() ? Sign::Disc : Sign::Ring;
    return Sign::None;
}

Meaning meaningIn(const QModelIndex& index)
{
    const Quality quality = qualityOf(index);
    if (index.column() != ValueTable::State && quality == Quality::Good && !isAlarm(index))
        return index.data(ValueTable::LampRole).toBool() ? Meaning::LampOn : Meaning::Plain;
    return quality != Quality::Bad && isAlarm(index) ? Meaning::Alarm : meaningOf(quality);
}

}  // namespace

void ValueDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const Quality quality = qualityOf(index);
    const bool isAboutValue = index.column() == ValueTable::Value ||
                              index.column() == ValueTable::Age ||
                              index.column() == ValueTable::State;
    if (!isAboutValue)
        return;
    const bool isSelected = option->state & QStyle::State_Selected;
    if (quality == Quality::Stale)
        option->font.setItalic(true);
    option->font.setBold(isAlarm(index) && quality != Quality::Bad);
    if (!isSelected && (quality != Quality::Good || isAlarm(index)))
        option->palette.setColor(QPalette::Text, colourOf(meaningIn(index), option->palette));
}

void ValueDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const
{
    QStyleOptionViewItem shown = option;
    initStyleOption(&shown, index);
    const bool isSelected = option.state & QStyle::State_Selected;
    const QColor colour = isSelected ? shown.palette.color(QPalette::HighlightedText)
                                     : colourOf(meaningIn(index), shown.palette);
    const Sign sign = signIn(index);
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &shown, painter, option.widget);
    if (sign != Sign::None) {
        const int size = shown.fontMetrics.height();
        const bool isLamp = index.column() == ValueTable::Value;  // beside its word, to the right
        const int left =
            isLamp ? shown.rect.right() - 2 * size - shown.fontMetrics.horizontalAdvance(shown.text)
                   : shown.rect.left() + size / 4;
        paintSign(*painter, QRect(left, shown.rect.top(), size, shown.rect.height()), sign, colour);
        shown.rect.setLeft(left + size);
    }
    style->drawControl(QStyle::CE_ItemViewItem, &shown, painter, option.widget);
    if (index.column() == ValueTable::Trend)
        paintSparkline(*painter, option.rect.adjusted(4, 3, -4, -3), m_table.tagAt(index.row()),
                       colour);
}

void ValueDelegate::paintSparkline(QPainter& painter, const QRect& area, int tag,
                                   const QColor& colour) const
{
    const TagState& state = m_table.book().state(tag);
    if (!state.history || area.width() <= 0)
        return;
    const qint64 endMs = m_table.nowMs();
    const QVector<Extent> columns =
        state.history->columns(endMs - sparklineMs, endMs, area.width());
    const Extent range = m_table.book().tag(tag).isOneBit() ? roomForBit : roomFor(columns);
    painter.save();
    painter.setPen(colour);
    paintCurve(painter, area, columns, range);
    painter.restore();
}

}  // namespace fxview
