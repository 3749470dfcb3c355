// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/toml_reader.h"

#include "tools/failure.h"
#include "tools/quoted.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace fxtools {

namespace {

constexpr qint64 largestFile = 1 << 20;

QString textOf(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(ExitCode::File, path + ": " + file.errorString());
    QByteArray content = file.read(largestFile + 1);
    if (content.size() > largestFile)
        throw Failure(ExitCode::File, path + ": larger than 1 MiB; not a configuration file");
    return content;
}

struct Place
{
    int line;    // from 1 on
    int column;  // from 1 on
    QString character;
};

// Outside of texts and comments TOML is ASCII. For some other characters there toml++ 3.3 runs into
// what its compiler may take for impossible, so a text that has one must not be parsed.
std::optional<Place> letterOutsideTexts(const QString& toml)
{
    static const QRegularExpression form(
        QStringLiteral(R"form("{3}(?:[^"\\]|\\.|"(?!""))*+"{3}|'{3}(?:[^']|'(?!''))*+'{3}|)form"
                       R"form("(?:[^"\\\n]|\\.)*+"|'[^'\n]*+'|#[^\n]*+|([^\x00-\x7F]))form"),
        QRegularExpression::DotMatchesEverythingOption);
    QRegularExpressionMatchIterator found = form.globalMatch(toml);
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        if (match.capturedLength(1) <= 0)
            continue;
        const QStringList lines = toml.left(match.capturedStart()).split('\n');
        return Place{lines.size(), lines.last().size() + 1, match.captured()};
    }
    return std::nullopt;
}

// What is wrong with a line, and what would be right, for whoever does not know the parser's words.
QString noTomlText(const QString& parserText, const QString& line)
{
    const QPair<const char*, const char*> texts[] = {
        {"utf-8", "the file must be saved as UTF-8"},
        {"saw ','", "a number has a point before its decimals, such as 1.5"},
        {"could not determine value type", "a text stands in quotes, such as \"Press 1\""},
        {"number", "a number is written like 12 or 1.5, a text in quotes"},
        {"integer: ", "a number is written like 12 or 1.5, a text in quotes"},
        {"float", "a number is written like 12 or 1.5, a text in quotes"},
        {"escape sequence", "in a text, a backslash is written as \\\\"},
        {"string", "a text ends with the quote that it begins with, on the same line"},
        {"cannot redefine", "each name stands once"},
        {"array: ", "a list stands in brackets, with commas: [1, 2]"},
        {"expected ']'", "a heading stands in brackets, such as [name] or [[name]]"},
        {"expected '='", "a name and its value have = between them: name = value"},
        {"expected value", "after = stands a value: name = value"},
        {"comment or whitespace", "each name = value and each heading has its own line"}};
    const auto* const found = std::find_if(
        std::begin(texts), std::end(texts), [&](const QPair<const char*, const char*>& each) {
            return parserText.contains(QLatin1String(each.first));
        });
    return "cannot read " + quoted(line.trimmed()) + ": " +
           (found == std::end(texts) ? parserText : QLatin1String(found->second));
}

// As it stands in the file, or what it is.
QString readText(const toml::node& node)
{
    if (node.is_string())
        return quoted(textOf(node.as_string()->get()));
    if (node.is_boolean())
        return node.as_boolean()->get() ? QStringLiteral("true") : QStringLiteral("false");
    if (const auto integer = node.value_exact<int64_t>())
        return QString::number(*integer);
    if (const auto number = node.value_exact<double>())
        return QString::number(*number, 'g', 12);
    return node.is_table()   ? QStringLiteral("a table")
           : node.is_array() ? QStringLiteral("a list")
                             : QStringLiteral("a date or a time");
}

// "7d": in the largest unit that it is a whole number of.
QString durationText(qint64 timeMs)
{
    for (const auto& [unit, ms] :
         {std::pair("d", 86400000), {"h", 3600000}, {"min", 60000}, {"s", 1000}}) {
        if (timeMs % ms == 0)
            return QString::number(timeMs / ms) + unit;
    }
    return QString::number(timeMs) + "ms";
}

// "100M": a number with K, M or G of 1024; -1 if `text` is none.
qint64 bytesIn(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,9})([KMG]?)$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return -1;
    const int thousands = 1 + QStringLiteral("KMG").indexOf(match.captured(2));
    return match.captured(1).toLongLong() << (match.captured(2).isEmpty() ? 0 : 10 * thousands);
}

}  // namespace

QString Mistake::in(const QString& path) const
{
    const QString place = QStringLiteral("%1, line %2, column %3: %4");
    return line == 0 ? path + ": " + text : place.arg(path).arg(line).arg(column).arg(text);
}

void requireNone(const QVector<Mistake>& mistakes, const QString& path)
{
    QStringList lines;
    for (const Mistake& mistake : mistakes)
        lines += mistake.in(path);
    if (!lines.isEmpty())
        throw Failure(ExitCode::File, lines.join('\n'));
}

TomlSection::TomlSection(TomlReader& reader, const toml::table* table, const QString& name)
    : m_reader(reader), m_table(table), m_name(name)
{}

const toml::node* TomlSection::node(const char* key) const
{
    return m_table ? m_table->get(key) : nullptr;
}

bool TomlSection::has(const char* key) const
{
    return node(key) != nullptr;
}

bool TomlSection::hasText(const char* key) const
{
    return has(key) && node(key)->is_string();
}

QStringList TomlSection::names() const
{
    QStringList names;
    if (m_table) {
        for (const auto& [key, node] : *m_table)
            names += textOf(key.str());
    }
    return names;
}

TomlSection TomlSection::inner(const QString& key)
{
    const std::string name = key.toStdString();
    const toml::node* const found = node(name.c_str());
    const QString whole = m_name.isEmpty() ? key : m_name + '.' + key;
    if (found && !found->is_table())
        reject(name.c_str(), whole + " must be a table: [" + whole + "] and its keys below");
    return TomlSection(m_reader, found ? found->as_table() : nullptr, whole);
}

QVector<TomlSection> TomlSection::each(const char* key)
{
    QVector<TomlSection> sections;
    const toml::node* const found = node(key);
    const QString whole = (m_name.isEmpty() ? QString() : m_name.mid(1, m_name.size() - 2) + '.') +
                          QLatin1String(key);
    const QString name = '[' + whole + ']';
    if (found && !found->is_array_of_tables())
        rejectRead(key, "[" + name + "] and its keys below");
    else if (found) {
        for (const toml::node& each : *found->as_array())
            sections.append(TomlSection(m_reader, each.as_table(), name));
    }
    return sections;
}

int TomlSection::line() const
{
    return m_table ? static_cast<int>(m_table->source().begin.line) : 0;
}

void TomlSection::allowOnly(const QStringList& known)
{
    if (!m_table)
        return;
    for (const auto& [key, node] : *m_table) {
        const QString name = textOf(key.str());
        const toml::source_position at = key.source().begin;
        if (!known.contains(name))
            m_reader.note(static_cast<int>(at.line), static_cast<int>(at.column),
                          unknownName("key", name, known));
    }
}

void TomlSection::reject(const char* key, const QString& text)
{
    const toml::node* const found = node(key);
    if (!found)
        return rejectAll(text);
    const toml::source_position at = found->source().begin;
    m_reader.note(static_cast<int>(at.line), static_cast<int>(at.column), text);
}

void TomlSection::rejectRead(const char* key, const QString& wanted)
{
    reject(key, QStringLiteral("%1 must be %2, not %3")
                    .arg(QLatin1String(key), wanted, readText(*node(key))));
}

void TomlSection::rejectAll(const QString& text)
{
    const bool hasPlace = m_table && !m_name.isEmpty();
    const toml::source_position at =
        hasPlace ? m_table->source().begin : toml::source_position{0, 0};
    m_reader.note(static_cast<int>(at.line), static_cast<int>(at.column), text);
}

void TomlSection::missing(const char* key, const char* example)
{
    if (!has(key))
        rejectAll(QStringLiteral("%1 is missing below [%2]; for example %3")
                      .arg(QLatin1String(key), m_name, QLatin1String(example)));
}

QString TomlSection::text(const char* key, const QString& unlessSaid)
{
    const toml::node* const found = node(key);
    if (!found)
        return unlessSaid;
    QString text = found->is_string() ? textOf(found->as_string()->get()) : QString();
    if (text.isEmpty() || text.contains(QChar(0))) {
        rejectRead(key, QStringLiteral("a text in quotes"));
        return unlessSaid;
    }
    return text;
}

QString TomlSection::file(const char* key, const QString& unlessSaid)
{
    const QString file = text(key, unlessSaid);
    return file.isEmpty() ? file : m_reader.beside(file);
}

QString TomlSection::oneOf(const char* key, const QStringList& words)
{
    QString word = text(key, words.first());
    if (words.contains(word))
        return word;
    rejectRead(key, '"' + words.join(QStringLiteral("\" or \"")) + '"');
    return words.first();
}

bool TomlSection::flag(const char* key)
{
    const toml::node* const found = node(key);
    if (found && !found->is_boolean())
        rejectRead(key, QStringLiteral("true or false"));
    return found && found->is_boolean() && found->as_boolean()->get();
}

int TomlSection::number(const char* key, Range range, int unlessSaid)
{
    const toml::node* const found = node(key);
    if (!found)
        return unlessSaid;
    const std::optional<int64_t> number = found->value_exact<int64_t>();
    if (number && *number >= range.least && *number <= range.most)
        return static_cast<int>(*number);
    rejectRead(key,
               QStringLiteral("a whole number from %1 to %2").arg(range.least).arg(range.most));
    return unlessSaid;
}

std::optional<double> TomlSection::real(const char* key)
{
    const toml::node* const found = node(key);
    if (!found)
        return std::nullopt;
    const std::optional<double> number = found->is_number() ? found->value<double>() : std::nullopt;
    if (number && std::isfinite(*number))
        return number;
    rejectRead(key, QStringLiteral("a number"));
    return std::nullopt;
}

qint64 TomlSection::timeMs(const char* key, Range range, qint64 unlessSaid)
{
    const toml::node* const found = node(key);
    if (!found)
        return unlessSaid;
    const std::optional<qint64> timeMs =
        found->is_string() ? parseTimeMs(found->as_string()->get()) : std::nullopt;
    if (timeMs && *timeMs >= range.least && *timeMs <= range.most)
        return *timeMs;
    rejectRead(key, QStringLiteral("a time from \"%1\" to \"%2\", in quotes")
                        .arg(durationText(range.least), durationText(range.most)));
    return unlessSaid;
}

qint64 TomlSection::bytes(const char* key, Range range, qint64 unlessSaid)
{
    const toml::node* const found = node(key);
    if (!found)
        return unlessSaid;
    const qint64 bytes = found->is_string() ? bytesIn(textOf(found->as_string()->get())) : -1;
    if (bytes >= range.least && bytes <= range.most)
        return bytes;
    rejectRead(key, QStringLiteral("a size from %1M to %2G, such as \"100M\"")
                        .arg(range.least >> 20)
                        .arg(range.most >> 30));
    return unlessSaid;
}

TomlReader::TomlReader(const QString& path) : m_path(path)
{
    const QByteArray content = contentOf(path);
    const QString text = QString::fromUtf8(content);
    if (const auto letter = letterOutsideTexts(text)) {
        note(letter->line, letter->column, quoted(letter->character) + " must stand in quotes");
        return;
    }
    try {
        m_root = std::make_unique<toml::table>(toml::parse(content.toStdString()));
    } catch (const toml::parse_error& error) {
        const toml::source_position at = error.source().begin;
        const int line = static_cast<int>(at.line);
        note(line, static_cast<int>(at.column),
             noTomlText(textOf(error.description()), text.section('\n', line - 1, line - 1)));
    }
}

TomlReader::~TomlReader() = default;

QString TomlReader::beside(const QString& file) const
{
    return QFileInfo(QFileInfo(m_path).absoluteDir(), file).filePath();
}

void TomlReader::note(int line, int column, const QString& text)
{
    m_mistakes.append({line, column, text});
}

QVector<Mistake> TomlReader::mistakes() const
{
    QVector<Mistake> sorted = m_mistakes;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Mistake& one, const Mistake& other) {
        return std::tie(one.line, one.column) < std::tie(other.line, other.column);
    });
    return sorted;
}

}  // namespace fxtools
