// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/fxview/compared_pictures.h"

#include <QDir>
#include <QImage>

#include <array>
#include <cmath>

namespace view_tests {

namespace {

constexpr int cell = 16;            // pixels, about the height of a line
constexpr int mostDifference = 24;  // of 255, of a cell's mean red, green or blue

using Colour = std::array<int, 3>;

Colour meanOf(const QImage& picture, const QRect& place)
{
    Colour sum = {};
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            sum[0] += qRed(pixel);
            sum[1] += qGreen(pixel);
            sum[2] += qBlue(pixel);
        }
    }
    for (int& part : sum)
        part /= place.width() * place.height();
    return sum;
}

int difference(const Colour& one, const Colour& other)
{
    int most = 0;
    for (size_t part = 0; part < one.size(); ++part)
        most = std::max(most, std::abs(one[part] - other[part]));
    return most;
}

// Nothing if they are alike.
QString differenceText(const QImage& drawn, const QImage& kept)
{
    if (drawn.isNull() || kept.isNull())
        return QStringLiteral("is only in one folder, or damaged");
    if (drawn.size() != kept.size())
        return QStringLiteral("has another size");
    int cells = 0, most = 0;
    QPoint where;
    for (int y = 0; y < drawn.height(); y += cell) {
        for (int x = 0; x < drawn.width(); x += cell) {
            const QRect place = QRect(x, y, cell, cell) & drawn.rect();
            const int here = difference(meanOf(drawn, place), meanOf(kept, place));
            cells += here > mostDifference ? 1 : 0;
            if (here > most) {
                most = here;
                where = place.topLeft();
            }
        }
    }
    return cells == 0 ? QString()
                      : QStringLiteral("differs in %1 places, most (by %2) at %3,%4")
                            .arg(cells)
                            .arg(most)
                            .arg(where.x())
                            .arg(where.y());
}

}  // namespace

QStringList differentPictures(const QString& drawnFolder, const QString& keptFolder)
{
    const QDir drawn(drawnFolder), kept(keptFolder);
    QStringList names = drawn.entryList({"*.png"}) + kept.entryList({"*.png"});
    names.removeDuplicates();
    QStringList different;
    for (const QString& name : qAsConst(names)) {
        const QString text =
            differenceText(QImage(drawn.filePath(name)), QImage(kept.filePath(name)));
        if (!text.isEmpty())
            different += name + ' ' + text;
    }
    return different;
}

}  // namespace view_tests
