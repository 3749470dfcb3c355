// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/tags/tag_file.h"

#include "tools/quoted.h"
#include "tools/tags/tag_columns.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace fxtools {

namespace {

const QRegularExpression controls(QStringLiteral("[\\p{Cc}\\p{Cf}]"));
constexpr int mostTextWords = 32;  // what one frame brings

QString knownTitles()
{
    QStringList titles;
    for (const TagColumn& column : tagColumns())
        titles += QLatin1String(column.title);
    return titles.join(QStringLiteral(", "));
}

// Makes a value of the registers; throws Failure if the type and the address, as the file has it,
// do not go together.
void fitRegisters(Tag& tag, const QString& address)
{
    const RegisterType& type = tag.asked.range.type;
    const bool isWord = type.width == RegisterWidth::Word && !tag.asked.bit;
    const ValueFormat format = tag.style.format;
    if (tag.isOneBit() && format != ValueFormat::Signed)
        reject(address, QStringLiteral("is a bit; leave its type empty"));
    const bool needsWords =
        tag.style.swap || format == ValueFormat::Float || format == ValueFormat::Text;
    if (needsWords && !isWord)
        reject(address, "is not a 16-bit register, which type " + typeText(tag.style) + " needs");
    if (!isWord && format == ValueFormat::Long)
        tag.style.format = ValueFormat::Signed;  // of all its bits anyway
    else if (!isWord && format == ValueFormat::ULong)
        tag.style.format = ValueFormat::Unsigned;
    widen(tag.asked, tag.style);
    const int each = registersPerValue(tag.asked, tag.style);
    const int named = tag.asked.range.count;
    if (named != each && !tag.asked.isCounted)
        reject(
            address,
            QStringLiteral("has no register after it, but a value of its type takes %1").arg(each));
    if (named < each) {
        reject(address,
               QStringLiteral("names %1 of the %2 registers that a value of its type takes")
                   .arg(named)
                   .arg(each));
    }
    if (named > each)
        reject(address, QStringLiteral("names %1 registers, but a value of its type takes %2")
                            .arg(named)
                            .arg(each));
    if (each > mostTextWords && !tag.asked.isGroup)
        reject(address, QStringLiteral("is a text of more than %1 registers, the most in one frame")
                            .arg(mostTextWords));
    tag.asked.range.together = each;
}

// Reads the rows of a file one after the other.
class Reader
{
public:
    Reader(const CsvRow& titles, QChar separator, const RegisterCatalogue& catalogue);

    void read(const CsvRow& row);
    const TagFile& file() const { return m_file; }

private:
    void takeFields(const QStringList& fields, Tag& tag);
    void checkFields(const CsvRow& row);
    void checkWhole(const QStringList& fields, Tag& tag);
    void checkOrder(const QStringList& titles, const std::optional<double>& low,
                    const std::optional<double>& high);
    QString field(const QStringList& fields, const char* title) const;
    void warn(const QString& column, const QString& text);
    void fail(const QString& column, const QString& text);

    QStringList m_titles;
    QChar m_separator;
    const RegisterCatalogue& m_catalogue;
    QHash<QString, int> m_lineOf;  // by the tag's name
    int m_line;
    bool m_isGood = true;  // the row, so far
    TagFile m_file;
};

Reader::Reader(const CsvRow& titles, QChar separator, const RegisterCatalogue& catalogue)
    : m_separator(separator), m_catalogue(catalogue), m_line(titles.line)
{
    for (const QString& title : titles.fields) {
        const bool isKnown =
            std::any_of(tagColumns().begin(), tagColumns().end(), [&](auto& column) {
                return title.compare(QLatin1String(column.title), Qt::CaseInsensitive) == 0;
            });
        if (isKnown && m_titles.contains(title.toLower()))
            fail(title, QStringLiteral("appears twice"));
        else if (!isKnown && !title.isEmpty())
            warn(shownTitle(title),
                 "unknown column " + quoted(title) + " is ignored; known: " + knownTitles());
        m_titles += title.toLower();
    }
    for (const char* const needed : {"name", "address"}) {
        if (!m_titles.contains(QLatin1String(needed)))
            fail({}, QStringLiteral("no column '%1'; the first row names the columns: name,address "
                                    "and others")
                         .arg(QLatin1String(needed)));
    }
}

QString Reader::field(const QStringList& fields, const char* title) const
{
    const int column = m_titles.indexOf(QLatin1String(title));
    return column < 0 ? QString() : fields.value(column);
}

void Reader::warn(const QString& column, const QString& text)
{
    m_file.remarks.append({TagRemark::Kind::Warning, m_line, column, text});
}

void Reader::fail(const QString& column, const QString& text)
{
    m_file.remarks.append({TagRemark::Kind::Error, m_line, column, text});
    m_isGood = false;
}

void Reader::read(const CsvRow& row)
{
    m_line = row.line;
    m_isGood = true;
    Tag tag;
    tag.line = row.line;
    checkFields(row);
    takeFields(row.fields, tag);
    if (!tag.name.isEmpty() && m_lineOf.contains(tag.name)) {
        fail(QStringLiteral("name"),
             QStringLiteral("%1 is already in line %2; list a tag of several PLCs once, without "
                            "a link")
                 .arg(tag.name)
                 .arg(m_lineOf[tag.name]));
    } else {
        m_lineOf.insert(tag.name, row.line);
    }
    if (m_isGood)
        checkWhole(row.fields, tag);
    if (m_isGood)
        m_file.tags.append(tag);
}

void Reader::checkFields(const CsvRow& row)
{
    for (int column = 0; column < row.fields.size(); ++column) {
        const QString& text = row.fields[column];
        if (text.contains(QChar::ReplacementCharacter))
            fail(shownTitle(m_titles.value(column)),
                 quoted(text) + " is not UTF-8; save the file as UTF-8");
        else if (text.contains(controls))
            fail(shownTitle(m_titles.value(column)), quoted(text) + " has a control character");
        if (column >= m_titles.size() && !text.isEmpty())
            fail({}, QStringLiteral("%1 is one field too many; put text that contains %2 in quotes")
                         .arg(quoted(text), QString(m_separator)));
    }
    if (row.isOpen)
        fail(shownTitle(m_titles.value(row.fields.size() - 1)),
             quoted(row.fields.last()) +
                 " has an opening quote, but no closing one in its line; write it in one line");
}

void Reader::takeFields(const QStringList& fields, Tag& tag)
{
    for (const TagColumn& column : tagColumns()) {
        const QString text = field(fields, column.title);
        const bool isNeeded =
            qstrcmp(column.title, "name") == 0 || qstrcmp(column.title, "address") == 0;
        if (text.isEmpty() && !isNeeded)
            continue;
        try {
            column.take(tag, text, {m_catalogue, m_separator != ','});
        } catch (const Failure& failure) {
            fail(QLatin1String(column.title), failure.text());
        }
    }
}

void Reader::checkWhole(const QStringList& fields, Tag& tag)
{
    try {
        fitRegisters(tag, field(fields, "address"));
    } catch (const Failure& failure) {
        fail(QStringLiteral("address"), failure.text());
        return;
    }
    if (field(fields, "type").toLower() == QLatin1String(bitTypeText) && !tag.isOneBit())
        fail(QStringLiteral("type"),
             quoted(bitTypeText) + " is not the type of " + tag.asked.text());
    for (const TagColumn& column : tagColumns()) {
        const QString text = field(fields, column.title);
        if (column.needsNumber && !text.isEmpty() && !tag.isNumber())
            fail(QLatin1String(column.title), quoted(text) + " has no meaning for a bit, a text, "
                                                             "hex or bin; leave it empty");
    }
    checkOrder({"min", "max"}, tag.min, tag.max);
    checkOrder({"alarm_low", "alarm_high"}, tag.alarmLow, tag.alarmHigh);
    if (tag.isNumber() && !tag.isFinite())
        fail(QStringLiteral("scale"), QStringLiteral("makes the values too large"));
}

void Reader::checkOrder(const QStringList& titles, const std::optional<double>& low,
                        const std::optional<double>& high)
{
    if (low && high && *low > *high)
        fail(titles[0], QStringLiteral("%1 %2 is above %3 %4")
                            .arg(titles[0], numberText(*low), titles[1], numberText(*high)));
}

// A text in quotes that goes on in the next lines is one mistake, not one in each of them.
int rowAfter(const CsvFile& csv, int row)
{
    const QRegularExpression ownQuote("(^|" + QString(csv.separator) + ")\\s*\"[^\"]*$");
    for (int last = row + 1; csv.rows[row].isOpen && last < csv.rows.size(); ++last) {
        if (csv.rows[last].isOpen)
            return csv.rows[last].text.contains(ownQuote) ? row + 1 : last + 1;
    }
    return row + 1;
}

}  // namespace

QString shownTitle(const QString& title)
{
    return title.contains(controls) ? quoted(title) : title;
}

QString TagRemark::place() const
{
    const QString inFile = QStringLiteral("line %1").arg(line);
    return column.isEmpty() ? inFile : inFile + ", column " + column;
}

int TagFile::errors() const
{
    return static_cast<int>(std::count_if(remarks.begin(), remarks.end(), [](const auto& remark) {
        return remark.kind == TagRemark::Kind::Error;
    }));
}

TagFile readTagFile(const QString& path, const RegisterCatalogue& catalogue)
{
    const CsvFile csv = readCsv(path, "tag file");
    if (csv.rows.isEmpty())
        throw Failure(ExitCode::File, path + ": no tags in this file");
    return tagsIn(csv, catalogue);
}

TagFile tagsIn(const CsvFile& csv, const RegisterCatalogue& catalogue)
{
    Reader reader(csv.rows.first(), csv.separator, catalogue);
    const bool hasTitles = reader.file().errors() == 0;
    for (int row = 1; hasTitles && row < csv.rows.size(); row = rowAfter(csv, row))
        reader.read(csv.rows[row]);
    return reader.file();
}

void requireNoErrors(const QString& path, const QVector<TagRemark>& remarks)
{
    QStringList errors;
    for (const TagRemark& remark : remarks) {
        if (remark.kind == TagRemark::Kind::Error)
            errors += path + ", " + remark.place() + ": " + remark.text;
    }
    if (!errors.isEmpty())
        throw Failure(ExitCode::File, errors.join('\n'));
}

QVector<Tag> readTags(const QString& path, const RegisterCatalogue& catalogue)
{
    const TagFile file = readTagFile(path, catalogue);
    requireNoErrors(path, file.remarks);
    return file.tags;
}

QByteArray tagFileText(const QVector<Tag>& tags)
{
    QVector<const TagColumn*> used;
    for (const TagColumn& column : tagColumns()) {
        if (std::any_of(tags.begin(), tags.end(),
                        [&column](const Tag& tag) { return !column.text(tag).isEmpty(); }))
            used.append(&column);
    }
    QStringList titles;
    for (const TagColumn* const column : used)
        titles += QLatin1String(column->title);
    QString text = csvLine(titles) + '\n';
    for (const Tag& tag : tags) {
        QStringList fields;
        for (const TagColumn* const column : used)
            fields += column->text(tag);
        text += csvLine(fields) + '\n';
    }
    return text.toUtf8();
}

QVector<TagDifference> differences(const Tag& one, const Tag& other)
{
    QVector<TagDifference> found;
    for (const TagColumn& column : tagColumns()) {
        if (column.text(one) != column.text(other))
            found.append({QLatin1String(column.title), column.text(one), column.text(other)});
    }
    return found;
}

}  // namespace fxtools
