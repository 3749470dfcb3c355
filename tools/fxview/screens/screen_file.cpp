// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/screen_file.h"

#include "tools/failure.h"
#include "tools/fxview/models/value_book.h"
#include "tools/quoted.h"
#include "tools/words.h"

#include <QHash>

#include <algorithm>
#include <tuple>

namespace fxview {

namespace {

using fxtools::Tag;
using fxtools::TomlReader;
using fxtools::TomlSection;

constexpr qint64 shortestSpanMs = 10000;
constexpr int mostDecimals = 9;

const QStringList actionNames{QStringLiteral("momentary"), QStringLiteral("set"),
                              QStringLiteral("reset")};

QString tagKindText(const Tag& tag)
{
    return tag.isOneBit()   ? QStringLiteral("a bit")
           : tag.isNumber() ? QStringLiteral("a number")
                            : QStringLiteral("a text");
}

// What an element of this kind cannot do with such a tag; empty: nothing.
QString misfit(ElementKind kind, const Tag& tag)
{
    const QString is = fxtools::quoted(tag.name) + " (" + tag.asked.text() + ") is ";
    const QString needs = nameOf(kind) + " needs ";
    switch (kind) {
    case ElementKind::Lamp:
    case ElementKind::PushButton:
    case ElementKind::Switch:
        if (!tag.isOneBit())
            return needs + "a tag of one bit; " + is + tagKindText(tag);
        break;
    case ElementKind::NumericDisplay:
    case ElementKind::NumericEntry:
    case ElementKind::Bar:
    case ElementKind::Dial:
        if (!tag.isNumber())
            return needs + "a number; " + is + tagKindText(tag);
        break;
    case ElementKind::Trend:
        if (!tag.isNumber() && !tag.isOneBit())
            return needs + "a number or a bit; " + is + tagKindText(tag);
        break;
    case ElementKind::Text:
        break;
    }
    if (isWriting(kind) && isReadOnly(tag))
        return needs + "a tag that can be written; " + is + "read-only";
    return {};
}

// Reads one file; each element that is right goes into its page.
class ScreenReader
{
public:
    ScreenReader(TomlReader& reader, const QVector<Tag>& tags) : m_reader(reader), m_tags(tags)
    {
        for (int index = 0; index < tags.size(); ++index)
            m_indexes.insert(tags[index].name, index);
    }

    Screen read()
    {
        TomlSection root = m_reader.root();
        root.allowOnly({"page"});
        QVector<TomlSection> sections = root.each("page");
        const bool isMistaken = m_reader.mistakeCount() > 0;
        if ((sections.isEmpty() && !isMistaken) || sections.size() > mostScreenPages)
            root.rejectAll(QStringLiteral("a screen needs 1 to %1 pages: [[page]] and its elements "
                                          "below, such as [[page.lamp]]")
                               .arg(mostScreenPages));
        Screen screen;
        for (TomlSection& section : sections.mid(0, mostScreenPages))
            screen.pages.append(pageIn(section, screen.pages.size() + 1));
        return screen;
    }

private:
    GridPage pageIn(TomlSection& section, int number)
    {
        QStringList known{"title", "columns", "rows"};
        for (const char* const name : elementNames)
            known += QLatin1String(name);
        section.allowOnly(known);
        GridPage page;
        page.title = section.text("title", QStringLiteral("Page %1").arg(number));
        page.columns = section.number("columns", {1, mostGridCells}, page.columns);
        page.rows = section.number("rows", {1, mostGridCells}, page.rows);
        m_users.clear();
        for (size_t kind = 0; kind < elementNames.size(); ++kind) {
            for (TomlSection& each : section.each(elementNames[kind])) {
                const int before = m_reader.mistakeCount();
                const Element element = elementIn(each, static_cast<ElementKind>(kind), page);
                if (m_reader.mistakeCount() == before)
                    page.elements.append(element);
            }
        }
        std::stable_sort(page.elements.begin(), page.elements.end(),
                         [](const Element& one, const Element& other) {
                             return std::tie(one.row, one.column) <
                                    std::tie(other.row, other.column);
                         });
        return page;
    }

    Element elementIn(TomlSection& section, ElementKind kind, const GridPage& page)
    {
        section.allowOnly(keysOf(kind));
        Element element;
        element.kind = kind;
        readPlace(section, element, page);
        readTag(section, element);
        const Tag* const tag = element.tag < 0 ? nullptr : &m_tags[element.tag];
        element.label = section.text("label", tag ? tag->name : QString());
        element.onText = section.text("on-text");
        element.offText = section.text("off-text");
        element.onColour = colourIn(section, "on-colour", element.onColour);
        element.offColour = colourIn(section, "off-colour", element.offColour);
        if (section.has("action"))
            element.action = static_cast<ButtonAction>(
                actionNames.indexOf(section.oneOf("action", actionNames)));
        if (section.has("decimals"))
            element.decimals = section.number("decimals", {0, mostDecimals}, 0);
        readScale(section, element, tag);
        element.spanMs = section.timeMs("span", {shortestSpanMs, historyMs}, element.spanMs);
        return element;
    }

    static QStringList keysOf(ElementKind kind)
    {
        QStringList keys{"tag", "row", "column", "width", "height", "label"};
        switch (kind) {
        case ElementKind::Lamp:
            return keys << "on-text"
                        << "off-text"
                        << "on-colour"
                        << "off-colour";
        case ElementKind::PushButton:
            return keys << "on-text"
                        << "off-text"
                        << "action";
        case ElementKind::Switch:
            return keys << "on-text"
                        << "off-text";
        case ElementKind::NumericDisplay:
        case ElementKind::NumericEntry:
            return keys << "decimals";
        case ElementKind::Bar:
        case ElementKind::Dial:
            return keys << "decimals"
                        << "min"
                        << "max";
        case ElementKind::Trend:
            return keys << "decimals"
                        << "min"
                        << "max"
                        << "span";
        case ElementKind::Text:
            break;
        }
        return keys << "text";
    }

    void readPlace(TomlSection& section, Element& element, const GridPage& page)
    {
        section.missing("row", "row = 1");
        section.missing("column", "column = 1");
        const int before = m_reader.mistakeCount();
        element.row = section.number("row", {1, page.rows}, 1);
        element.column = section.number("column", {1, page.columns}, 1);
        element.width = section.number("width", {1, page.columns - element.column + 1}, 1);
        element.height = section.number("height", {1, page.rows - element.row + 1}, 1);
        if (m_reader.mistakeCount() == before && section.has("row") && section.has("column"))
            occupy(section, element);
    }

    void occupy(TomlSection& section, const Element& element)
    {
        for (int row = element.row; row < element.row + element.height; ++row) {
            for (int column = element.column; column < element.column + element.width; ++column) {
                const QPair<int, int> cell(row, column);
                if (m_users.contains(cell)) {
                    return section.rejectAll(
                        QStringLiteral("row %1, column %2 is taken by the element of line %3; "
                                       "expected an empty place")
                            .arg(row)
                            .arg(column)
                            .arg(m_users[cell]));
                }
            }
        }
        for (int row = element.row; row < element.row + element.height; ++row) {
            for (int column = element.column; column < element.column + element.width; ++column)
                m_users.insert({row, column}, section.line());
        }
    }

    void readTag(TomlSection& section, Element& element)
    {
        element.text = section.text("text");
        if (!section.has("tag")) {
            if (element.kind != ElementKind::Text)
                section.missing("tag", "tag = \"motor.run\"");
            else
                section.missing("text", "text = \"Press 1\"");
            return;
        }
        if (section.has("text"))
            section.reject("text", QStringLiteral("a text shows either text or tag, not both"));
        const QString name = section.text("tag");
        element.tag = m_indexes.value(name, -1);
        if (element.tag < 0 && !name.isEmpty()) {
            const QString hint = fxtools::didYouMean(name, m_indexes.keys());
            section.reject("tag",
                           "unknown tag " + fxtools::quoted(name) +
                               (hint.isEmpty() ? "; expected a name of the tag file" : hint));
        }
        const QString mistake =
            element.tag < 0 ? QString() : misfit(element.kind, m_tags[element.tag]);
        if (!mistake.isEmpty())
            section.reject("tag", mistake);
    }

    static QString colourIn(TomlSection& section, const char* key, const QString& unlessSaid)
    {
        return section.has(key) ? section.oneOf(key, lampColours) : unlessSaid;
    }

    // What the file does not say is taken from the limits of the tag.
    void readScale(TomlSection& section, Element& element, const Tag* tag)
    {
        element.min = section.real("min");
        element.max = section.real("max");
        const bool needsScale =
            element.kind == ElementKind::Bar || element.kind == ElementKind::Dial;
        if (needsScale && tag) {
            if (!section.has("min"))
                element.min = tag->min;
            if (!section.has("max"))
                element.max = tag->max;
            const bool hasMin = element.min || section.has("min");
            const bool hasMax = element.max || section.has("max");
            if (!hasMin && !hasMax)
                section.missing("min", "min = 0 and max = 100: the tag has no limits");
            else if (!hasMin)
                section.missing("min", "min = 0");
            else if (!hasMax)
                section.missing("max", "max = 100");
        }
        if (element.kind == ElementKind::Trend && section.has("min") != section.has("max"))
            section.rejectAll(QStringLiteral("min and max belong together; expected both or none"));
        if (element.min && element.max && *element.min >= *element.max)
            section.reject("max", QStringLiteral("max must be more than min, not %1 and %2")
                                      .arg(*element.max)
                                      .arg(*element.min));
    }

    TomlReader& m_reader;
    const QVector<Tag>& m_tags;
    QHash<QString, int> m_indexes;
    QHash<QPair<int, int>, int> m_users;  // the line of the element in a cell of the page
};

}  // namespace

ScreenFile readScreenFile(const QString& path, const QVector<Tag>& tags)
{
    ScreenFile file;
    try {
        TomlReader reader(path);
        if (reader.isToml())
            file.screen = ScreenReader(reader, tags).read();
        file.mistakes = reader.mistakes();
    } catch (const fxtools::Failure& failure) {
        file.mistakes.append({0, 0, failure.text().mid(path.size() + 2)});
    }
    return file;
}

}  // namespace fxview
