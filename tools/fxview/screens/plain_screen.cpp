// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/plain_screen.h"

#include "tools/fxview/models/value_book.h"

#include <algorithm>

namespace fxview {

namespace {

using fxtools::Tag;

ElementKind plainKind(const Tag& tag)
{
    const bool mayWrite = !isReadOnly(tag);
    if (tag.isOneBit())
        return mayWrite ? ElementKind::Switch : ElementKind::Lamp;
    if (!tag.isNumber())
        return ElementKind::Text;
    return mayWrite ? ElementKind::NumericEntry : ElementKind::NumericDisplay;
}

QString inToml(QString text)
{
    text.replace('\\', QLatin1String("\\\\")).replace('"', QLatin1String("\\\""));
    for (QChar& character : text) {
        if (character.category() == QChar::Other_Control)
            character = ' ';
    }
    return '"' + text + '"';
}

}  // namespace

Screen plainScreen(const QVector<Tag>& tags)
{
    constexpr int columns = 4, rows = 6, most = columns * rows * 20;
    Screen screen;
    for (int index = 0; index < std::min(tags.size(), most); ++index) {
        const int place = index % (columns * rows);
        if (place == 0)
            screen.pages.append({QString::number(screen.pages.size() + 1), columns, rows, {}});
        const Tag& tag = tags[index];
        Element element;
        element.kind = plainKind(tag);
        element.tag = index;
        element.row = place / columns + 1;
        element.column = place % columns + 1;
        element.label = tag.name;
        screen.pages.last().elements.append(element);
    }
    return screen;
}

QString plainScreenText(const QVector<Tag>& tags)
{
    QString text;
    for (const GridPage& page : plainScreen(tags).pages) {
        text += QStringLiteral("[[page]]\ntitle = %1\ncolumns = %2\nrows = %3\n")
                    .arg(inToml(page.title))
                    .arg(page.columns)
                    .arg(page.rows);
        for (const Element& element : page.elements) {
            text += QStringLiteral("\n[[page.%1]]\ntag = %2\nrow = %3\ncolumn = %4\nlabel = %5\n")
                        .arg(nameOf(element.kind), inToml(tags[element.tag].name))
                        .arg(element.row)
                        .arg(element.column)
                        .arg(inToml(element.label));
        }
        text += '\n';
    }
    return text;
}

}  // namespace fxview
