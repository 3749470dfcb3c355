// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/histogram_view.h"

#include "tools/fxview/widgets/theme.h"

#include <algorithm>
#include <cmath>

namespace fxview {

namespace {

constexpr int barsPerDoubling = 4;
constexpr int doublings = 13;  // 1 ms to 8 s
constexpr int bars = barsPerDoubling * doublings;

double beginUs(int bar)
{
    return bar == 0 ? 0 : 1000 * std::exp2(static_cast<double>(bar) / barsPerDoubling);
}

}  // namespace

HistogramView::HistogramView(QWidget* parent) : QWidget(parent), m_bars(bars)
{
    setMinimumHeight(fontMetrics().height() * 4);
    setAccessibleName(tr("Response times"));
}

QVector<qint64> HistogramView::barsOf(const fxtools::Histogram& histogram)
{
    QVector<qint64> all(bars);
    for (int bar = 0; bar < bars; ++bar) {
        const double endUs = bar + 1 == bars ? 1e12 : beginUs(bar + 1);
        all[bar] = histogram.between(std::llround(beginUs(bar)), std::llround(endUs));
    }
    return all;
}

void HistogramView::show(const fxtools::Histogram& histogram)
{
    m_bars = barsOf(histogram);
    update();
}

void HistogramView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int letter = fontMetrics().height();
    const QRectF area = QRectF(rect()).adjusted(2, 2, -2, -1.3 * letter);
    painter.fillRect(rect(), palette().base());
    const qint64 most = std::max<qint64>(*std::max_element(m_bars.begin(), m_bars.end()), 1);
    const double width = area.width() / bars;
    for (int bar = 0; bar < bars; ++bar) {
        // A single slow answer among thousands still shows.
        const double height = m_bars[bar] == 0
                                  ? 0
                                  : std::max(area.height() * static_cast<double>(m_bars[bar]) /
                                                 static_cast<double>(most),
                                             2.0);
        painter.fillRect(
            QRectF(area.left() + bar * width, area.bottom() - height, width - 1, height),
            curveColour(0, palette()));
    }
    painter.setPen(palette().color(QPalette::Text));
    const double room = 2 * barsPerDoubling * width;
    const int step = room < fontMetrics().horizontalAdvance(tr("%1 ms").arg(2560)) ? 4 : 2;
    for (int doubling = 0; doubling < doublings; doubling += step) {
        const double x = area.left() + doubling * barsPerDoubling * width;
        const int ms = 1 << doubling;
        painter.drawLine(QPointF(x, area.bottom()), QPointF(x, area.bottom() + 3));
        painter.drawText(QPointF(x, rect().bottom() - 2),
                         ms < 1000 ? tr("%1 ms").arg(ms) : tr("%1 s").arg(ms / 1000));
    }
}

}  // namespace fxview
