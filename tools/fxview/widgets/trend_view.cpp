// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/trend_view.h"

#include "tools/fxview/widgets/curve.h"
#include "tools/fxview/widgets/theme.h"
#include "tools/library/csv.h"

#include <QDateTime>
#include <QPainter>

#include <algorithm>

namespace fxview {

namespace {

constexpr int mostCsvRows = 100000;
constexpr int lettersPerAxis = 10;
constexpr qint64 withoutSecondsMs = 600000;

QString clockText(qint64 timeMs, qint64 spanMs)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(timeMs);
    return time.toString(spanMs > withoutSecondsMs ? QStringLiteral("hh:mm")
                                                   : QStringLiteral("hh:mm:ss"));
}

}  // namespace

TrendView::TrendView(const ValueBook& book, QWidget* parent) : QWidget(parent), m_book(book)
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Trend"));
    setMinimumHeight(fontMetrics().height() * 6);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
}

void TrendView::setTags(const QVector<int>& tags)
{
    m_tags = tags.mid(0, mostCurves);
    update();
}

void TrendView::showMoment(qint64 nowMs)
{
    m_nowMs = nowMs;
    update();
}

Extent TrendView::valueAt(int tag, qint64 timeMs) const
{
    const History* history = m_book.state(tag).history.get();
    return history ? history->at(timeMs) : Extent();
}

int TrendView::axisWidth() const
{
    return fontMetrics().averageCharWidth() * lettersPerAxis;
}

double TrendView::Plot::xOf(qint64 timeMs) const
{
    return area.left() + area.width() * static_cast<double>(timeMs - beginMs) /
                             static_cast<double>(endMs - beginMs);
}

double TrendView::Plot::yOf(double value, const Extent& range) const
{
    return area.bottom() - (value - range.lowest) / (range.highest - range.lowest) * area.height();
}

TrendView::Plot TrendView::plotIn(const QRect& whole) const
{
    const int letter = fontMetrics().height();
    QRectF area(whole);
    area.adjust(axisWidth() * std::max(m_tags.size(), 1), letter / 2.0, -letter / 2.0,
                -letter * 1.5);
    return {area, m_span.beginMs(m_nowMs), m_span.endMs(m_nowMs)};
}

qint64 TrendView::timeAt(int x) const
{
    const Plot plot = plotIn(rect());
    const double part = std::clamp((x - plot.area.left()) / plot.area.width(), 0.0, 1.0);
    return plot.beginMs + std::llround(part * static_cast<double>(plot.endMs - plot.beginMs));
}

void TrendView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    paintOn(painter, rect());
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void TrendView::paintOn(QPainter& painter, const QRect& area) const
{
    const Plot plot = plotIn(area);
    if (plot.area.width() < 1 || plot.area.height() < 1)
        return;
    painter.fillRect(area, palette().base());
    paintTimes(painter, plot);
    for (int number = 0; number < m_tags.size(); ++number)
        paintTag(painter, plot, number);
    paintCursors(painter, plot);
    if (m_tags.isEmpty()) {
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(plot.area, Qt::AlignCenter | Qt::TextWordWrap,
                         tr("Add a tag above, or press Space on a row of the values"));
    }
}

void TrendView::paintTimes(QPainter& painter, const Plot& plot) const
{
    const qint64 spanMs = plot.endMs - plot.beginMs;
    const int width = painter.fontMetrics().horizontalAdvance(QStringLiteral("00:00:00")) * 2;
    const qint64 aheadMs =
        QDateTime::fromMSecsSinceEpoch(plot.endMs).offsetFromUtc() * qint64(1000);
    QColor line = palette().color(QPalette::Text);
    line.setAlpha(50);
    for (const qint64 mark :
         timeMarks(plot.beginMs, plot.endMs,
                   std::max(static_cast<int>(plot.area.width()) / width, 1), aheadMs)) {
        const double x = plot.xOf(mark);
        painter.setPen(line);
        painter.drawLine(QPointF(x, plot.area.top()), QPointF(x, plot.area.bottom()));
        painter.setPen(palette().color(QPalette::Text));
        // Half of the box is text; the last one is not to be cut at the edge.
        const double left = std::min(x - width / 2.0, this->width() - width * 0.75);
        painter.drawText(
            QRectF(left, plot.area.bottom(), width, painter.fontMetrics().height() * 1.5),
            Qt::AlignCenter, clockText(mark, spanMs));
    }
    painter.setPen(line);
    painter.drawRect(plot.area);
}

// Each bit, and each value that does not change, has a lane of its own: none hides another.
Extent TrendView::rangeOf(int number, const QVector<Extent>& columns) const
{
    if (m_book.tag(m_tags[number]).isOneBit())
        return inLane(roomForBit, number, m_tags.size());
    Extent all;
    for (const Extent& column : columns)
        all.include(column);
    const Extent room = roomFor(columns);
    return all.lowest < all.highest ? room : inLane(room, number, m_tags.size());
}

void TrendView::paintTag(QPainter& painter, const Plot& plot, int number) const
{
    const History* history = m_book.state(m_tags[number]).history.get();
    const QVector<Extent> columns =
        history ? history->columns(plot.beginMs, plot.endMs, static_cast<int>(plot.area.width()))
                : QVector<Extent>();
    const Extent range = rangeOf(number, columns);
    painter.setPen(curveColour(number, palette()));
    paintAxis(painter, plot, number, range);
    paintCurve(painter, plot.area, columns, range);
    paintNumber(painter, plot, number, range, columns);
}

// At the end of the curve, since a colour alone says nothing to some eyes and printers.
void TrendView::paintNumber(QPainter& painter, const Plot& plot, int number, const Extent& range,
                            const QVector<Extent>& columns) const
{
    int end = columns.size() - 1;
    while (end >= 0 && columns[end].isEmpty())
        --end;
    if (end < 0)
        return;
    const int letter = painter.fontMetrics().height();
    const double y = std::max(plot.yOf(columns[end].highest, range) - letter, plot.area.top());
    const double perColumn = plot.area.width() / columns.size();
    painter.drawText(QRectF(plot.area.left(), y, (end + 1) * perColumn - 2, letter),
                     Qt::AlignRight | Qt::AlignVCenter, QString::number(number + 1));
}

QVector<double> TrendView::marksOf(int number, const Extent& range, int most) const
{
    return m_book.tag(m_tags[number]).isOneBit() ? QVector<double>{0, 1}
                                                 : marksBetween(range.lowest, range.highest, most);
}

QString TrendView::titleOf(int number) const
{
    const fxtools::Tag& tag = m_book.tag(m_tags[number]);
    return QStringLiteral("%1: %2")
        .arg(number + 1)
        .arg(tag.unit.isEmpty() ? tag.name : tr("%1 in %2").arg(tag.name, tag.unit));
}

void TrendView::paintAxis(QPainter& painter, const Plot& plot, int number,
                          const Extent& range) const
{
    const int letter = painter.fontMetrics().height();
    const double right = plot.area.left() - axisWidth() * (m_tags.size() - 1 - number) - 3;
    painter.drawLine(QPointF(right, plot.area.top()), QPointF(right, plot.area.bottom()));
    const fxtools::Tag& tag = m_book.tag(m_tags[number]);
    const int most = std::clamp(static_cast<int>(plot.area.height()) / (2 * letter), 2, 10);
    for (const double mark : marksOf(number, range, most)) {
        const double y = plot.yOf(mark, range);
        painter.drawLine(QPointF(right - 3, y), QPointF(right, y));
        painter.drawText(QRectF(right - axisWidth(), y - letter / 2.0, axisWidth() - 5, letter),
                         Qt::AlignRight | Qt::AlignVCenter,
                         tag.isOneBit() ? valueText(tag, mark) : QString::number(mark, 'g', 6));
    }
    painter.save();
    painter.translate(right - axisWidth(), plot.area.bottom());
    painter.rotate(-90);
    const auto height = static_cast<int>(plot.area.height());
    painter.drawText(QRectF(0, 0, height, letter), Qt::AlignCenter,
                     painter.fontMetrics().elidedText(titleOf(number), Qt::ElideRight, height));
    painter.restore();
}

void TrendView::paintCursors(QPainter& painter, const Plot& plot) const
{
    painter.setPen(QPen(palette().color(QPalette::Text), 1, Qt::DashLine));
    const auto paint = [&](const std::optional<qint64>& timeMs, const QString& name) {
        if (!timeMs || *timeMs < plot.beginMs || *timeMs > plot.endMs)
            return;
        const double x = plot.xOf(*timeMs);
        painter.drawLine(QPointF(x, plot.area.top()), QPointF(x, plot.area.bottom()));
        painter.drawText(QPointF(x + 3, plot.area.top() + painter.fontMetrics().ascent()), name);
    };
    paint(m_cursors.first, QStringLiteral("A"));
    paint(m_cursors.second, QStringLiteral("B"));
}

QString TrendView::csv() const
{
    const qint64 beginMs = m_span.beginMs(m_nowMs) / finestBucketMs * finestBucketMs;
    const qint64 buckets =
        std::max<qint64>((m_span.endMs(m_nowMs) - beginMs) / finestBucketMs + 1, 1);
    const qint64 stepMs = (buckets + mostCsvRows - 1) / mostCsvRows * finestBucketMs;
    const auto rows = static_cast<int>((buckets * finestBucketMs + stepMs - 1) / stepMs);
    QStringList heading{tr("time (UTC)")};
    QVector<QVector<Extent>> curves;
    for (const int tag : m_tags) {
        const QString& name = m_book.tag(tag).name;
        heading << tr("%1 lowest").arg(name) << tr("%1 highest").arg(name);
        const History* history = m_book.state(tag).history.get();
        curves += history ? history->columns(beginMs, beginMs + rows * stepMs, rows)
                          : QVector<Extent>(rows);
    }
    QString csv = fxtools::csvLine(heading) + '\n';
    const auto number = [](double value) {
        return std::isnan(value) ? QString() : QString::number(value, 'g', 12);
    };
    for (int row = 0; row < rows; ++row) {
        QStringList cells{QDateTime::fromMSecsSinceEpoch(beginMs + row * stepMs, Qt::UTC)
                              .toString(Qt::ISODateWithMs)};
        bool isEmpty = true;
        for (const QVector<Extent>& curve : qAsConst(curves)) {
            cells << number(curve[row].lowest) << number(curve[row].highest);
            isEmpty = isEmpty && curve[row].isEmpty();
        }
        if (!isEmpty)
            csv += cells.join(',') + '\n';
    }
    return csv;
}

}  // namespace fxview
