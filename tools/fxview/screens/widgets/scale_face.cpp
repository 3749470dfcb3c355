// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/scale_face.h"

#include "tools/fxview/widgets/theme.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace fxview {

namespace {

constexpr double dialBegin = 210;    // degrees, against the clock from the right
constexpr double dialDegrees = 240;  // with the clock
constexpr int qtDegree = 16;
constexpr double pi = 3.14159265358979323846;
constexpr int mostMarks = 11;
constexpr double tick = 4;           // pixels between a scale and its numbers
constexpr double leastRadius = 2.5;  // letters, of a dial with numbers
constexpr double leastBreadth = 1;   // letters, of a bar with numbers

// Counters of 32 bits in full.
QString markText(double value)
{
    return QString::number(value, 'g', 10);
}

double partOfScale(const Face& face, double value)
{
    const double least = face.element.min.value_or(0);
    const double most = face.element.max.value_or(least + 1);
    return std::clamp((value - least) / (most - least), 0.0, 1.0);
}

QVector<ScaleMark> marksOf(const Face& face, double upTo)
{
    return scaleMarks(*face.element.min, *face.element.max,
                      static_cast<int>(std::clamp(upTo, 2.0, double(mostMarks))));
}

double widestMark(const QVector<ScaleMark>& marks, const QFontMetrics& metrics)
{
    int widest = 0;
    for (const ScaleMark& mark : marks)
        widest = std::max(widest, metrics.horizontalAdvance(mark.text));
    return widest;
}

// A limit of the tag, if it is on the scale.
void paintLimits(QPainter& painter, const Face& face, const QPalette& palette,
                 const std::function<QLineF(double part)>& lineAt)
{
    painter.setPen(QPen(colourOf(Meaning::Alarm, palette), 2));
    for (const std::optional<double>& limit : {face.tag->alarmLow, face.tag->alarmHigh}) {
        if (limit && *limit > *face.element.min && *limit < *face.element.max)
            painter.drawLine(lineAt(partOfScale(face, *limit)));
    }
}

// Beside an upright bar, below a lying one; the bar gets smaller by them, if it is large enough.
void paintBarScale(QPainter& painter, QRectF& bar, const Face& face, bool isUpright,
                   const QPalette& palette)
{
    const double letter = painter.fontMetrics().height();
    const double widest = widestMark(marksOf(face, mostMarks), painter.fontMetrics());
    const double across = isUpright ? widest : letter;
    const double length = isUpright ? bar.height() : bar.width();
    const double room = isUpright ? 1.5 * letter : widest + letter;
    if ((isUpright ? bar.width() : bar.height()) < across + tick + leastBreadth * letter ||
        length < 2 * room)
        return;
    bar.adjust(isUpright ? across + tick : 0, 0, 0, isUpright ? 0 : -across - tick);
    painter.setPen(palette.color(QPalette::Text));
    for (const ScaleMark& mark : marksOf(face, length / room)) {
        const double along = mark.part * length;
        if (isUpright) {
            const double y = bar.bottom() - along;
            painter.drawLine(QLineF(bar.left() - tick, y, bar.left(), y));
            const double top = std::clamp(y - letter / 2, bar.top(), bar.bottom() - letter);
            painter.drawText(QRectF(bar.left() - tick - across - 1, top, across, letter),
                             Qt::AlignRight | Qt::AlignVCenter, mark.text);
        } else {
            const double x = bar.left() + along;
            painter.drawLine(QLineF(x, bar.bottom(), x, bar.bottom() + tick));
            const double left = std::clamp(x - widest / 2, bar.left(), bar.right() - widest);
            const Qt::Alignment side = mark.part == 0   ? Qt::AlignLeft
                                       : mark.part == 1 ? Qt::AlignRight
                                                        : Qt::AlignHCenter;
            painter.drawText(QRectF(left, bar.bottom() + tick, widest, letter),
                             static_cast<int>(side | Qt::AlignTop), mark.text);
        }
    }
}

struct DialPlace
{
    QPointF centre;
    double radius;
    QVector<ScaleMark> marks;  // none: no room
};

// Numbers stand outside of the arc.
DialPlace dialPlace(const QRectF& area, const Face& face, const QFontMetrics& metrics)
{
    const double letter = metrics.height();
    const double widest = widestMark(marksOf(face, mostMarks), metrics);
    double radius =
        std::min(area.width() / 2 - widest - tick, (area.height() - 2 * letter - 2 * tick) / 1.5);
    if (radius >= leastRadius * letter) {
        const double arc = radius * dialDegrees * pi / 180;
        return {{area.center().x(), area.top() + letter + tick + radius},
                radius,
                marksOf(face, 1 + arc / (widest + letter))};
    }
    radius = std::max(std::min(area.width() / 2, area.height() / 1.55) - 3, 4.0);
    return {{area.center().x(), area.top() + radius + 2}, radius, {}};
}

}  // namespace

QVector<ScaleMark> scaleMarks(double least, double most, int upTo)
{
    QVector<ScaleMark> marks{{0, markText(least)}};
    const double span = most - least;
    double step = std::pow(10, std::floor(std::log10(span)) - 1);
    for (int number = 0; span / step > upTo - 1; ++number)
        step *= number % 3 == 1 ? 2.5 : 2;  // 1, 2, 5, 10
    const double first = std::ceil(least / step);
    for (int number = 0; number < upTo; ++number) {
        const double value = (first + number) * step + 0.0;  // never "-0"
        if (value - least > step / 2 && most - value > step / 2)
            marks.append({(value - least) / span, markText(value)});
    }
    marks.append({1, markText(most)});
    return marks;
}

void paintBar(QPainter& painter, const QRectF& area, const Face& face, const QPalette& palette)
{
    const double letter = painter.fontMetrics().height();
    const bool isUpright = area.height() > area.width();
    QRectF bar = isUpright ? area.adjusted(0, 0, 0, -1.5 * letter)
                           : area.adjusted(0, 0, -std::min(9 * letter, area.width() / 2), 0);
    const QRectF text =
        isUpright ? QRectF(area.left(), bar.bottom(), area.width(), 1.5 * letter)
                  : QRectF(bar.right(), area.top(), area.right() - bar.right(), area.height());
    bar = bar.adjusted(1, 2, -1, -2);
    paintBarScale(painter, bar, face, isUpright, palette);
    const auto lineAt = [&](double part) {
        const double x = bar.left() + part * bar.width();
        const double y = bar.bottom() - part * bar.height();
        return isUpright ? QLineF(bar.left(), y, bar.right(), y)
                         : QLineF(x, bar.top(), x, bar.bottom());
    };
    painter.setPen(palette.color(QPalette::Mid));
    painter.setBrush(palette.base());
    painter.drawRect(bar);
    if (face.hasValue) {
        const QLineF end = lineAt(partOfScale(face, face.value.toDouble()));
        const QRectF filled =
            isUpright ? QRectF(end.p1(), bar.bottomRight()) : QRectF(bar.topLeft(), end.p2());
        const bool isPlain = face.quality == Quality::Good && face.alarm.isEmpty();
        painter.fillRect(
            filled, QBrush(isPlain ? curveColour(0, palette) : faceColour(face, palette),
                           face.quality == Quality::Good ? Qt::SolidPattern : Qt::BDiagPattern));
    }
    paintLimits(painter, face, palette, lineAt);
    painter.setPen(faceColour(face, palette));
    paintLargeText(painter, text, faceText(face));
}

void paintDial(QPainter& painter, const QRectF& area, const Face& face, const QPalette& palette)
{
    const double letter = painter.fontMetrics().height();
    const DialPlace dial = dialPlace(area, face, painter.fontMetrics());
    const auto direction = [&](double part) {
        const double angle = (dialBegin - part * dialDegrees) * pi / 180;
        return QPointF(std::cos(angle), -std::sin(angle));
    };
    const auto lineAt = [&](double part, double from, double to) {
        return QLineF(dial.centre + direction(part) * (dial.radius * from),
                      dial.centre + direction(part) * (dial.radius * to));
    };
    const QPointF corner(dial.radius, dial.radius);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette.color(QPalette::Mid), 2));
    painter.drawArc(QRectF(dial.centre - corner, dial.centre + corner),
                    static_cast<int>((dialBegin - dialDegrees) * qtDegree),
                    static_cast<int>(dialDegrees * qtDegree));
    for (const ScaleMark& mark : dial.marks.isEmpty() ? marksOf(face, mostMarks) : dial.marks)
        painter.drawLine(lineAt(mark.part, 0.88, 1));
    painter.setPen(palette.color(QPalette::Text));
    for (const ScaleMark& mark : dial.marks) {
        const double width = painter.fontMetrics().horizontalAdvance(mark.text) + 2;
        const QPointF away = direction(mark.part);
        const QPointF middle = dial.centre + away * (dial.radius + tick) +
                               QPointF(away.x() * width / 2, away.y() * letter / 2);
        painter.drawText(QRectF(middle.x() - width / 2, middle.y() - letter / 2, width, letter),
                         Qt::AlignCenter, mark.text);
    }
    paintLimits(painter, face, palette, [&](double part) { return lineAt(part, 0.8, 1.05); });
    painter.setPen(QPen(faceColour(face, palette), std::max(dial.radius / 18, 2.0)));
    if (face.hasValue)
        painter.drawLine(lineAt(partOfScale(face, face.value.toDouble()), 0, 0.82));
    const double top = dial.centre.y() + dial.radius * 0.12;
    const double half = dial.radius * (dial.marks.isEmpty() ? 1 : 0.85);
    paintLargeText(
        painter,
        QRectF(dial.centre.x() - half, top, 2 * half, std::min(area.bottom() - top, 2 * letter)),
        faceText(face));
}

}  // namespace fxview
