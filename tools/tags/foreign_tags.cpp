// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A foreign row becomes a row of a tag file, which is then read like any other. An export is
// imported again to see what it lost.

#include "tools/tags/foreign_tags.h"

#include "tools/quoted.h"
#include "tools/tags/tag_columns.h"

#include <QSet>

#include <array>
#include <limits>

namespace fxtools {

namespace {

constexpr double rawSpan = 1000;  // of a scaling without limits

const QStringList ownTitles = {"name",      "address", "type", "scale", "offset",     "unit",
                               "period_ms", "access",  "min",  "max",   "description"};
const QStringList scadaTitles = {"Tag Name",      "Address",    "Data Type",   "Respect Data Type",
                                 "Client Access", "Scan Rate",  "Scaling",     "Raw Low",
                                 "Raw High",      "Scaled Low", "Scaled High", "Scaled Data Type",
                                 "Clamp Low",     "Clamp High", "Eng Units",   "Description",
                                 "Negate Value"};
const QStringList commentTitles = {"Device", "Label", "Comment"};

struct TypeName
{
    const char* foreign;
    const char* own;
};

// Of a bit and of what a register holds.
constexpr std::array<TypeName, 8> typeNames = {{{"Short", "signed"},
                                                {"Word", "unsigned"},
                                                {"Long", "long"},
                                                {"DWord", "ulong"},
                                                {"Float", "float"},
                                                {"BCD", "bcd"},
                                                {"String", "text"},
                                                {"Boolean", "bit"}}};

// A foreign row, and what of it was used.
struct ForeignRow
{
    const QStringList& titles;
    const CsvRow& row;
    QSet<QString>& used;

    QString text(const char* title) const
    {
        const int column = titles.indexOf(QString(QLatin1String(title)).toLower());
        used.insert(QLatin1String(title));
        return row.fields.value(column);
    }

    double number(const char* title) const
    {
        bool isNumber = false;
        const double number = text(title).toDouble(&isNumber);
        if (!isNumber)
            reject(text(title), QStringLiteral("is not a number in column ") + title);
        return number;
    }

    bool isYes(const char* title) const
    {
        const QString answer = text(title).toLower();
        return answer == QLatin1String("1") || answer == QLatin1String("yes") ||
               answer == QLatin1String("true");
    }
};

struct Heading
{
    const char* own;
    const char* scada;
    const char* comments;
};

// Where what a column of a tag file holds comes from.
constexpr std::array<Heading, 11> headings = {{{"name", "Tag Name", "Label"},
                                               {"address", "Address", "Device"},
                                               {"type", "Data Type", ""},
                                               {"scale", "Scaling", ""},
                                               {"offset", "Scaling", ""},
                                               {"unit", "Eng Units", ""},
                                               {"period_ms", "Scan Rate", ""},
                                               {"access", "Client Access", ""},
                                               {"min", "Scaling", ""},
                                               {"max", "Scaling", ""},
                                               {"description", "Description", "Comment"}}};

QString headingOf(const QString& own, ForeignForm form)
{
    for (const Heading& heading : headings) {
        if (own == QLatin1String(heading.own))
            return QLatin1String(form == ForeignForm::Scada ? heading.scada : heading.comments);
    }
    return own;
}

class Importer
{
public:
    Importer(const QStringList& titles, ForeignForm form) : m_titles(titles), m_form(form) {}

    void addScada(const CsvRow& csv);
    void addComment(const CsvRow& csv);
    TagFile finish(const CsvRow& titles, const RegisterCatalogue& catalogue);

private:
    using Fields = QHash<QString, QString>;  // by the titles of a tag file

    void scale(const ForeignRow& row, Fields& fields);
    QString periodOf(const ForeignRow& row);
    QString freeName(const QString& text, const QString& device, int line);
    void add(const CsvRow& row, const Fields& fields);
    void remark(TagRemark::Kind kind, int line, const QString& column, const QString& text)
    {
        m_remarks.append({kind, line, column, text});
    }

    QStringList m_titles;  // in lower case
    ForeignForm m_form;
    QSet<QString> m_used;
    QSet<QString> m_names;
    QSet<QString> m_filled;
    CsvFile m_own = {{{0, {}, ownTitles, false}}, ','};
    QVector<TagRemark> m_remarks;
};

QString Importer::freeName(const QString& text, const QString& device, int line)
{
    QString name = asName(text);
    if (m_names.contains(name))
        name += '_' + device;
    m_names.insert(name);
    if (name != text)
        remark(TagRemark::Kind::Warning, line, headingOf("name", m_form),
               quoted(text) + " became " + quoted(name));
    return name;
}

void Importer::add(const CsvRow& row, const Fields& fields)
{
    CsvRow own{row.line, {}, {}, row.isOpen};
    for (const QString& title : ownTitles)
        own.fields += fields.value(title);
    m_own.rows.append(own);
    for (int column = 0; column < row.fields.size(); ++column) {
        if (!row.fields[column].isEmpty())
            m_filled.insert(m_titles.value(column));
    }
}

// The straight line through both ends, by the shortest numbers that meet them.
void Importer::scale(const ForeignRow& row, Fields& fields)
{
    const QString kind = row.text("Scaling").toLower();
    if (kind != QLatin1String("linear")) {
        if (!kind.isEmpty() && kind != QLatin1String("none"))
            remark(TagRemark::Kind::Warning, row.row.line, "Scaling",
                   quoted(row.text("Scaling")) + " is not imported: the raw value is shown");
        return;
    }
    if (fields["type"] == "bit" || fields["type"] == "text") {
        remark(TagRemark::Kind::Warning, row.row.line, "Scaling",
               QStringLiteral("is not imported: it has no meaning for a bit or a text"));
        return;
    }
    const double rawLow = row.number("Raw Low");
    const double rawHigh = row.number("Raw High");
    const double low = row.number("Scaled Low");
    const double high = row.number("Scaled High");
    if (rawLow == rawHigh)
        reject(row.text("Raw High"), QStringLiteral("is both Raw Low and Raw High"));
    const double slope = (high - low) / (rawHigh - rawLow);
    const double largest = std::max(
        {std::abs(low), std::abs(high), std::abs(slope * rawLow), std::abs(slope * rawHigh)});
    const double tolerance = 4 * std::numeric_limits<double>::epsilon() * largest;
    const double sign = row.isYes("Negate Value") ? -1 : 1;
    const double scale = shortestDecimal(slope, tolerance / std::abs(rawHigh - rawLow));
    fields["scale"] = numberText(sign * scale);
    fields["offset"] = numberText(sign * shortestDecimal(low - rawLow * scale, tolerance));
    const bool rises = sign * low < sign * high;
    if (row.isYes("Clamp Low"))
        fields[rises ? "min" : "max"] = numberText(sign * low);
    if (row.isYes("Clamp High"))
        fields[rises ? "max" : "min"] = numberText(sign * high);
}

// Some lists have 0 where the program decides.
QString Importer::periodOf(const ForeignRow& row)
{
    QString period = row.text("Scan Rate");
    if (period.isEmpty() || isPeriod(period))
        return period;
    remark(TagRemark::Kind::Warning, row.row.line, "Scan Rate",
           quoted(period) + " is not imported: it is not a time in ms");
    return {};
}

// R/W is what every tag of such a list has unless someone changed it: nobody has allowed anything.
QString accessOf(const ForeignRow& row)
{
    const QString access = row.text("Client Access");
    return access.toUpper() == QLatin1String("R/W") ? QString() : access;
}

void Importer::addScada(const CsvRow& csv)
{
    const ForeignRow row{m_titles, csv, m_used};
    const QString type = row.text("Data Type");
    const auto* const known = std::find_if(typeNames.begin(), typeNames.end(), [&](auto& name) {
        return type.compare(QLatin1String(name.foreign), Qt::CaseInsensitive) == 0;
    });
    try {
        if (known == typeNames.end() && !type.isEmpty() && type.toLower() != "default")
            reject(type, QStringLiteral("is not a known Data Type"));
        Fields fields = {
            {"address", row.text("Address")}, {"type", known == typeNames.end() ? "" : known->own},
            {"unit", row.text("Eng Units")},  {"period_ms", periodOf(row)},
            {"access", accessOf(row)},        {"description", row.text("Description")}};
        if (row.isYes("Negate Value") && row.text("Scaling").toLower() != "linear")
            fields["scale"] = "-1";
        scale(row, fields);
        fields["name"] = freeName(row.text("Tag Name"), fields["address"], csv.line);
        add(csv, fields);
    } catch (const Failure& failure) {
        remark(TagRemark::Kind::Error, csv.line, {}, failure.text());
    }
}

// A list has every device; those that nobody named are no tags.
void Importer::addComment(const CsvRow& csv)
{
    const ForeignRow row{m_titles, csv, m_used};
    const QString device = row.text("Device");
    const QString label = row.text("Label");
    const QString comment = row.text("Comment");
    if (label.isEmpty() && comment.isEmpty())
        return;
    add(csv, {{"name", freeName(label.isEmpty() ? comment : label, device, csv.line)},
              {"address", device},
              {"description", comment}});
}

TagFile Importer::finish(const CsvRow& titles, const RegisterCatalogue& catalogue)
{
    for (int column = 0; column < m_titles.size(); ++column) {
        const bool isUsed = std::any_of(m_used.begin(), m_used.end(), [&](const QString& title) {
            return title.toLower() == m_titles[column];
        });
        if (!isUsed && m_filled.contains(m_titles[column]))
            remark(TagRemark::Kind::Warning, titles.line, shownTitle(titles.fields[column]),
                   QStringLiteral("is not imported"));
    }
    TagFile file = tagsIn(m_own, catalogue);
    for (TagRemark& remark : file.remarks)
        remark.column = headingOf(remark.column, m_form);
    file.remarks += m_remarks;
    std::stable_sort(file.remarks.begin(), file.remarks.end(),
                     [](const auto& one, const auto& other) { return one.line < other.line; });
    return file;
}

bool hasTitles(const QStringList& titles, ForeignForm form)
{
    return form == ForeignForm::Scada ? titles.contains("tag name") && titles.contains("address")
                                      : titles.contains("device") && (titles.contains("label") ||
                                                                      titles.contains("comment"));
}

TagFile importTable(const CsvFile& csv, ForeignForm form, const RegisterCatalogue& catalogue)
{
    QStringList titles;
    for (const QString& title : csv.rows.first().fields)
        titles += title.toLower();
    Importer importer(titles, form);
    for (const CsvRow& row : csv.rows.mid(1)) {
        if (form == ForeignForm::Scada)
            importer.addScada(row);
        else
            importer.addComment(row);
    }
    return importer.finish(csv.rows.first(), catalogue);
}

QString foreignType(const Tag& tag)
{
    if (tag.isOneBit())
        return QStringLiteral("Boolean");
    const int bits =
        tag.asked.isGroup ? tag.asked.range.count : bitsPerByte * tag.asked.range.type.valueBytes();
    const QString own = bits > 16 && tag.style.format == ValueFormat::Signed ? "long"
                        : bits > 16 && tag.style.format == ValueFormat::Unsigned
                            ? "ulong"
                            : formatName(tag.style.format);
    for (const TypeName& name : typeNames) {
        if (own == QLatin1String(name.own))
            return QLatin1String(name.foreign);
    }
    return bits > 16 ? QStringLiteral("DWord") : QStringLiteral("Word");
}

QStringList scadaFields(const Tag& tag)
{
    const bool isPoint = tag.min && tag.max && *tag.min == *tag.max;  // which no line has
    const bool hasMin = tag.min && !isPoint;
    const bool hasMax = tag.max && !isPoint;
    const bool isLinear = tag.isScaled() || hasMin || hasMax;
    const double span = tag.scale < 0 && (hasMin || hasMax) ? -rawSpan : rawSpan;
    const auto rawOf = [&tag](double value) { return (value - tag.offset) / tag.scale; };
    const double rawLow = hasMin ? rawOf(*tag.min) : hasMax ? rawOf(*tag.max) - span : 0;
    const double rawHigh = hasMax ? rawOf(*tag.max) : rawLow + span;
    const auto ifLinear = [isLinear](double number) {
        return isLinear ? numberText(number) : QString();
    };
    return {tag.name,
            tag.style.format == ValueFormat::Text ? tag.asked.text() : tag.asked.nameOf(0),
            foreignType(tag),
            "1",
            tag.isReadOnly() ? "RO" : "R/W",
            tag.periodMs ? QString::number(*tag.periodMs) : QString(),
            isLinear ? "Linear" : "None",
            ifLinear(rawLow),
            ifLinear(rawHigh),
            ifLinear(hasMin ? *tag.min : rawLow * tag.scale + tag.offset),
            ifLinear(hasMax ? *tag.max : rawHigh * tag.scale + tag.offset),
            isLinear ? "Double" : "",
            isLinear ? QString::number(hasMin ? 1 : 0) : QString(),
            isLinear ? QString::number(hasMax ? 1 : 0) : QString(),
            tag.unit,
            tag.description,
            isLinear ? "0" : ""};
}

// In the words of what goes wrong, where that is more than a value that is missing.
QStringList lossesOf(const Tag& tag, const Tag& back)
{
    QStringList texts;
    QStringList missing;
    for (const TagDifference& difference : differences(tag, back)) {
        if (difference.title == "type" && tag.style.swap && !difference.other.isEmpty()) {
            texts += ": the list cannot say 'swap', so its two words are read in the wrong order";
        } else if (difference.title == "address" && !difference.other.isEmpty()) {
            texts += QStringLiteral(": the list names only %1 of %2")
                         .arg(difference.other, difference.one);
        } else if (!difference.other.isEmpty()) {
            texts += QStringLiteral(" changes its %1 from %2 to %3")
                         .arg(difference.title, difference.one.isEmpty() ? "none" : difference.one,
                              difference.other);
        } else {
            missing += difference.title;
        }
    }
    if (!missing.isEmpty())
        texts += " loses its " + missing.join(QStringLiteral(", "));
    return texts;
}

}  // namespace

std::optional<ForeignForm> foreignFormNamed(const QString& name)
{
    if (name == QLatin1String("scada"))
        return ForeignForm::Scada;
    return name == QLatin1String("comments") ? std::optional(ForeignForm::Comments) : std::nullopt;
}

TagFile importTags(const QString& path, std::optional<ForeignForm> form,
                   const RegisterCatalogue& catalogue)
{
    CsvFile csv = readCsv(path, "tag list");
    // Some programs put the name of the project above the titles.
    for (; !csv.rows.isEmpty(); csv.rows.removeFirst()) {
        QStringList titles;
        for (const QString& title : csv.rows.first().fields)
            titles += title.toLower();
        for (const ForeignForm one : {ForeignForm::Scada, ForeignForm::Comments}) {
            if (hasTitles(titles, one) && form.value_or(one) == one)
                return importTable(csv, one, catalogue);
        }
    }
    throw Failure(ExitCode::File, path + ": no heading row: expected Tag Name,Address,... or "
                                         "Device,Label,Comment");
}

ExportedTags exportTags(const QVector<Tag>& tags, ForeignForm form,
                        const RegisterCatalogue& catalogue)
{
    const bool isScada = form == ForeignForm::Scada;
    CsvFile csv = {{{0, {}, isScada ? scadaTitles : commentTitles, false}}, ','};
    for (const Tag& tag : tags) {
        const QStringList fields =
            isScada ? scadaFields(tag)
                    : QStringList{tag.asked.nameOf(0), tag.name, tag.description};
        csv.rows.append({tag.line, {}, fields});
    }
    ExportedTags exported;
    for (const CsvRow& row : csv.rows)
        exported.text += csvLine(row.fields).toUtf8() + '\n';
    QHash<QString, Tag> back;
    for (const Tag& tag : importTable(csv, form, catalogue).tags)
        back.insert(tag.name, tag);
    for (const Tag& tag : tags) {
        for (const QString& text : lossesOf(tag, back.value(tag.name)))
            exported.remarks.append({TagRemark::Kind::Warning, tag.line, {}, tag.name + text});
    }
    return exported;
}

}  // namespace fxtools
