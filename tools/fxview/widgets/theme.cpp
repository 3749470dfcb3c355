// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/theme.h"

#include <QPixmapCache>
#include <QStyle>
#include <QStyleFactory>

#include <array>

namespace fxview {

namespace {

struct Colours
{
    QRgb light;
    QRgb dark;
};

// In the order of Meaning; what is plain is the palette's.
constexpr std::array<Colours, 6> meanings = {{
    {0xFF000000, 0xFFFFFFFF},
    {0xFF1B7F3B, 0xFF5FD38A},
    {0xFF6B6B6B, 0xFF9A9A9A},
    {0xFFB00020, 0xFFFF7B86},
    {0xFFB34700, 0xFFFFB347},
    {0xFF1F9D4D, 0xFF4BE38A},
}};

// Apart for eyes that see no red or green.
constexpr std::array<Colours, 8> curves = {{
    {0xFF0072B2, 0xFF56B4E9},
    {0xFFD55E00, 0xFFE69F00},
    {0xFF007A5E, 0xFF2ED1A2},
    {0xFFAA4499, 0xFFEE88CC},
    {0xFF8A6D00, 0xFFF0E442},
    {0xFF444444, 0xFFDDDDDD},
    {0xFF332288, 0xFF9999FF},
    {0xFF882255, 0xFFFF9999},
}};

QPalette darkPalette()
{
    QPalette palette;
    const QColor window(0x20, 0x23, 0x28), base(0x18, 0x1A, 0x1E), text(0xE8, 0xE8, 0xE8);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, QColor(0x1E, 0x21, 0x26));
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, QColor(0x2C, 0x30, 0x37));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::Link, QColor(0x56, 0xB4, 0xE9));
    palette.setColor(QPalette::Highlight, QColor(0x2A, 0x5C, 0x8A));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0x9A, 0x9A, 0x9A));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x7F, 0x84, 0x8C));
    return palette;
}

}  // namespace

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

void applyTheme(QApplication& application, bool isDark)
{
    QStyle* fusion = QStyleFactory::create(QStringLiteral("Fusion"));
    application.setStyle(fusion);
    application.setPalette(isDark ? darkPalette() : fusion->standardPalette());
}

QColor colourOf(Meaning meaning, const QPalette& palette)
{
    if (meaning == Meaning::Plain)
        return palette.color(QPalette::Text);
    const Colours& colours = meanings[static_cast<size_t>(meaning)];
    return isDark(palette) ? colours.dark : colours.light;
}

QColor curveColour(int number, const QPalette& palette)
{
    const Colours& colours = curves[static_cast<size_t>(number) % curves.size()];
    return isDark(palette) ? colours.dark : colours.light;
}

Sign signOf(Quality quality)
{
    switch (quality) {
    case Quality::Good:
        return Sign::Disc;
    case Quality::Stale:
        return Sign::HalfDisc;
    case Quality::Bad:
        break;
    }
    return Sign::Cross;
}

Meaning meaningOf(Quality quality)
{
    switch (quality) {
    case Quality::Good:
        return Meaning::Good;
    case Quality::Stale:
        return Meaning::Stale;
    case Quality::Bad:
        break;
    }
    return Meaning::Bad;
}

void paintSign(QPainter& painter, const QRectF& area, Sign sign, const QColor& colour)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal size = std::min(area.width(), area.height());
    QRectF box(0, 0, size * 0.7, size * 0.7);
    box.moveCenter(area.center());
    painter.setPen(QPen(colour, size / 10));
    switch (sign) {
    case Sign::None:
        break;
    case Sign::Disc:
        painter.setBrush(colour);
        painter.drawEllipse(box);
        break;
    case Sign::HalfDisc:
        painter.drawEllipse(box);
        painter.setBrush(colour);
        painter.drawChord(box, 90 * 16, 180 * 16);
        break;
    case Sign::Ring:
        painter.drawEllipse(box);
        break;
    case Sign::Cross:
        painter.setPen(QPen(colour, size / 6));
        painter.drawLine(box.topLeft(), box.bottomRight());
        painter.drawLine(box.topRight(), box.bottomLeft());
        break;
    case Sign::Triangle:
        painter.setBrush(colour);
        painter.drawPolygon(QPolygonF() << QPointF(box.center().x(), box.top()) << box.bottomRight()
                                        << box.bottomLeft());
        break;
    }
    painter.restore();
}

// Each only once: an icon of a new pixmap keeps a copy of its own, with every picture of a table.
QPixmap signPixmap(Sign sign, const QColor& colour, int size, qreal pixelRatio)
{
    const QString key = QStringLiteral("sign %1 %2 %3 %4")
                            .arg(static_cast<int>(sign))
                            .arg(colour.name())
                            .arg(size)
                            .arg(pixelRatio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    pixmap = QPixmap(QSize(size, size) * pixelRatio);
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paintSign(painter, QRectF(0, 0, size, size), sign, colour);
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

}  // namespace fxview
