// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The curves of several tags over the same time, with an axis of its own for each, and two cursors.
// By mouse: the wheel zooms, dragging pans, a click sets the first cursor, with Shift the second.
// By keyboard: + and - zoom, the arrows pan, with Ctrl they move the first cursor and with Shift
// the second, Esc removes them.

#pragma once

#include "tools/fxview/models/trend_span.h"
#include "tools/fxview/models/value_book.h"

#include <QWidget>

namespace fxview {

class TrendView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int mostCurves = 8;  // as many as there are colours that differ

    struct Cursors
    {
        std::optional<qint64> first, second;  // times
    };

    explicit TrendView(const ValueBook& book, QWidget* parent = nullptr);

    const QVector<int>& tags() const { return m_tags; }
    void setTags(const QVector<int>& tags);
    TrendSpan& span() { return m_span; }
    const Cursors& cursors() const { return m_cursors; }
    qint64 nowMs() const { return m_nowMs; }

    void showMoment(qint64 nowMs);
    Extent valueAt(int tag, qint64 timeMs) const;
    QString titleOf(int number) const;  // "2: oven.temp in °C"

    // The same picture on anything else.
    void paintOn(QPainter& painter, const QRect& area) const;

    // A row for each bucket that has a value: its time and, of each tag, the lowest and highest.
    QString csv() const;

signals:
    void changed();  // the span or the cursors, by hand

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    QSize sizeHint() const override { return {600, 300}; }

private:
    struct Plot
    {
        QRectF area;  // of the curves
        qint64 beginMs;
        qint64 endMs;

        double xOf(qint64 timeMs) const;
        double yOf(double value, const Extent& range) const;
    };

    Plot plotIn(const QRect& whole) const;
    qint64 timeAt(int x) const;
    void paintTimes(QPainter& painter, const Plot& plot) const;
    void paintTag(QPainter& painter, const Plot& plot, int number) const;
    void paintAxis(QPainter& painter, const Plot& plot, int number, const Extent& range) const;
    void paintNumber(QPainter& painter, const Plot& plot, int number, const Extent& range,
                     const QVector<Extent>& columns) const;
    Extent rangeOf(int number, const QVector<Extent>& columns) const;
    QVector<double> marksOf(int number, const Extent& range, int most) const;
    void paintCursors(QPainter& painter, const Plot& plot) const;
    bool moveCursor(QKeyEvent& event);
    void placeCursor(bool isSecond, qint64 timeMs);
    int axisWidth() const;

    const ValueBook& m_book;
    QVector<int> m_tags;
    TrendSpan m_span;
    Cursors m_cursors;
    qint64 m_nowMs = 0;
    std::optional<int> m_pressedX;
    bool m_isDragging = false;
};

}  // namespace fxview
