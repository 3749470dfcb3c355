// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/widgets/element_face.h"

#include "tools/fxview/screens/widgets/scale_face.h"
#include "tools/fxview/widgets/curve.h"
#include "tools/fxview/widgets/theme.h"

#include <algorithm>

namespace fxview {

namespace {

constexpr double largestText = 3;  // times the font

QColor lampColour(const QString& name, bool isDark)
{
    struct Shade
    {
        QRgb light, dark;
    };
    static const QMap<QString, Shade> shades = {
        {"green", {0xFF1F9D4D, 0xFF4BE38A}},  {"red", {0xFFC81E2B, 0xFFFF5C66}},
        {"yellow", {0xFFC79A00, 0xFFFFD84D}}, {"blue", {0xFF1667C0, 0xFF5AA9FF}},
        {"white", {0xFFB9B9B9, 0xFFFFFFFF}},  {"grey", {0xFF6B6B6B, 0xFF9A9A9A}}};
    const Shade shade = shades.value(name);
    return isDark ? shade.dark : shade.light;
}

Sign bitSign(const Face& face)
{
    if (face.quality != Quality::Good)
        return signOf(face.quality);
    return face.isOn() ? Sign::Disc : Sign::Ring;
}

QColor bitColour(const Face& face, const QPalette& palette)
{
    if (face.quality != Quality::Good)
        return colourOf(meaningOf(face.quality), palette);
    return lampColour(face.isOn() ? face.element.onColour : face.element.offColour,
                      palette.color(QPalette::Window).lightness() < 128);
}

void paintLamp(QPainter& painter, const QRectF& area, const Face& face, const QPalette& palette)
{
    const double size = std::min(area.height(), area.width() / 3);
    const QRectF lamp(area.left(), area.top(), size, area.height());
    paintSign(painter, lamp, bitSign(face), bitColour(face, palette));
    painter.setPen(faceColour(face, palette));
    paintLargeText(painter, area.adjusted(size * 1.2, 0, 0, 0), faceText(face),
                   Qt::AlignVCenter | Qt::AlignLeft);
}

void paintTrend(QPainter& painter, const QRectF& area, const Face& face, const QPalette& palette)
{
    const double letter = painter.fontMetrics().height();
    const double axis = painter.fontMetrics().averageCharWidth() * 7;
    const QRectF plot = area.adjusted(axis, letter / 2, -1, -letter / 2);
    if (plot.width() < 1 || plot.height() < 1)
        return;
    painter.fillRect(plot, palette.base());
    const QVector<Extent> columns =
        face.history ? face.history->columns(face.nowMs - face.element.spanMs, face.nowMs,
                                             static_cast<int>(plot.width()))
                     : QVector<Extent>();
    const Extent range = face.element.min       ? Extent{*face.element.min, *face.element.max}
                         : face.tag->isOneBit() ? Extent{0, 1}
                                                : roomFor(columns);
    painter.setPen(faceColour(face, palette));
    const auto mark = [&](double value, double y) {
        painter.drawText(QRectF(area.left(), y - letter / 2, axis - 4, letter),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(value, 'g', 4));
    };
    mark(range.highest, plot.top());
    mark(range.lowest, plot.bottom());
    painter.setPen(palette.color(QPalette::Mid));
    painter.drawRect(plot);
    painter.setPen(curveColour(0, palette));
    paintCurve(painter, plot, columns, range);
    painter.setPen(faceColour(face, palette));
    painter.drawText(plot.adjusted(4, 2, -4, -2), Qt::AlignTop | Qt::AlignLeft, faceText(face));
}

}  // namespace

Face faceOf(const Element& element, const ValueBook& book, qint64 nowMs)
{
    Face face{element, nullptr, nullptr, Quality::Good, false, {}, {}, nowMs};
    if (element.tag < 0)
        return face;
    face.tag = &book.tag(element.tag);
    face.history = book.state(element.tag).history.get();
    face.quality = book.qualityAt(element.tag, nowMs);
    face.hasValue = book.hasValue(element.tag, nowMs);
    if (face.hasValue)
        face.value = book.state(element.tag).value;
    face.alarm = book.alarm(element.tag, nowMs);
    return face;
}

QString faceText(const Face& face)
{
    if (!face.tag)
        return face.element.text;
    if (!face.hasValue)
        return QStringLiteral("–");
    const QString& ofBit = face.isOn() ? face.element.onText : face.element.offText;
    if (face.tag->isOneBit() && !ofBit.isEmpty())
        return ofBit;
    if (face.element.decimals && face.value.isDouble())
        return valueWithUnit(*face.tag,
                             QString::number(face.value.toDouble(), 'f', *face.element.decimals));
    return valueWithUnit(*face.tag, face.value);
}

QColor faceColour(const Face& face, const QPalette& palette)
{
    if (face.quality != Quality::Good)
        return colourOf(meaningOf(face.quality), palette);
    return colourOf(face.alarm.isEmpty() ? Meaning::Plain : Meaning::Alarm, palette);
}

QPixmap bitPixmap(const Face& face, const QPalette& palette, int size, qreal pixelRatio)
{
    return signPixmap(bitSign(face), bitColour(face, palette), size, pixelRatio);
}

void paintLargeText(QPainter& painter, const QRectF& area, const QString& text,
                    Qt::Alignment alignment)
{
    if (area.width() < 1 || area.height() < 1)
        return;
    painter.save();
    QFont font = painter.font();
    const QSizeF needed = painter.fontMetrics().size(Qt::TextSingleLine, text);
    const double factor = std::min({largestText, area.width() / std::max(needed.width(), 1.0),
                                    area.height() / std::max(needed.height(), 1.0)});
    if (factor > 1)
        font.setPointSizeF(font.pointSizeF() * factor * 0.95);
    painter.setFont(font);
    painter.drawText(
        area, static_cast<int>(alignment),
        painter.fontMetrics().elidedText(text, Qt::ElideRight, static_cast<int>(area.width())));
    painter.restore();
}

void paintFace(QPainter& painter, const QRectF& area, const Face& face, const QPalette& palette)
{
    if (area.width() < 1 || area.height() < 1)
        return;
    painter.save();
    QFont font = painter.font();
    font.setItalic(face.quality == Quality::Stale);
    painter.setFont(font);
    switch (face.element.kind) {
    case ElementKind::Lamp:
        paintLamp(painter, area, face, palette);
        break;
    case ElementKind::Bar:
        paintBar(painter, area, face, palette);
        break;
    case ElementKind::Dial:
        paintDial(painter, area, face, palette);
        break;
    case ElementKind::Trend:
        paintTrend(painter, area, face, palette);
        break;
    case ElementKind::PushButton:
    case ElementKind::Switch:
    case ElementKind::NumericDisplay:
    case ElementKind::NumericEntry:
    case ElementKind::Text:
        painter.setPen(faceColour(face, palette));
        paintLargeText(painter, area, faceText(face));
        break;
    }
    painter.restore();
}

}  // namespace fxview
