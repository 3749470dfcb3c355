// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Reads scripts from JSON, see script_program.h.

#include "tools/fxsim/plc/memory_image.h"
#include "tools/fxsim/plc/script_program.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QRegularExpression>

#include <cmath>

namespace fxsim {

namespace {

constexpr qint64 longestMs = 7LL * 24 * 3600 * 1000;  // a week
constexpr qint64 usualRampMs = 100;                   // between two values of a ramp
constexpr int defaultBytes = 2;
constexpr int stepDepth = 2;  // of the braces and brackets around a step

[[noreturn]] void refuseScript(const QString& text)
{
    throw Error(ExitCode::File, text);
}

QString quoted(const QJsonValue& value)
{
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return quotable(QString::fromUtf8(text.mid(1, text.size() - 2)));
}

class StepReader
{
public:
    StepReader(const QJsonObject& object, const PlcMemory& memory)
        : m_object(object), m_memory(memory)
    {}

    bool has(const char* key) const { return m_object.contains(QLatin1String(key)); }

    qint64 number(const char* key, const ValueLimits& limits)
    {
        const QJsonValue value = take(key);
        const double number = value.toDouble();
        const bool whole = value.isDouble() && number == std::floor(number);
        if (!whole || number < static_cast<double>(limits.lowest) ||
            number > static_cast<double>(limits.highest))
            refuseValue(
                key,
                QString("a whole number from %1 to %2").arg(limits.lowest).arg(limits.highest));
        return static_cast<qint64>(number);
    }

    qint64 numberOr(const char* key, qint64 otherwise, const ValueLimits& limits)
    {
        return has(key) ? number(key, limits) : otherwise;
    }

    QString text(const char* key, const QString& expected)
    {
        const QJsonValue value = take(key);
        if (!value.isString())
            refuseValue(key, expected);
        return value.toString();
    }

    MemoryPlace place(const char* key)
    {
        const QString name = text(key, "a device, as in \"D100\", or an address, as "
                                       "in \"0x1000\" or \"0x0100.3\"");
        return placeNamed(name, key);
    }

    MemoryPlace placeNamed(const QString& name, const char* key)
    {
        try {
            return parsePlace(name);
        } catch (const Error& error) {
            refuseScript(QString("\"%1\": %2").arg(key, error.text()));
        }
    }

    void requireMemory(int address, int byteCount, const char* key) const
    {
        if (!m_memory.has(address, std::max(1, byteCount)))
            refuseScript(QString("\"%1\": this PLC does not have all of that memory").arg(key));
    }

    // What the step works on, with the bytes that it says or that the device has.
    Cell cell(const char* key)
    {
        const MemoryPlace at = place(key);
        Cell cell = cellOf(at);
        if (!at.device && !at.bit)
            cell.byteCount = byteCount();
        requireMemory(cell.address, cell.byteCount, key);
        return cell;
    }

    static Cell cellOf(const MemoryPlace& place)
    {
        if (place.bit)
            return {place.address, *place.bit, 0, false};
        return {place.address, 0, place.device ? place.device->type->byteCount() : defaultBytes,
                place.device.has_value()};
    }

    QStringList texts(const char* key)
    {
        const QJsonValue value = take(key);
        QStringList texts;
        const QJsonArray items = value.isArray() ? value.toArray() : QJsonArray{value};
        for (const QJsonValue& item : items) {
            if (!item.isString())
                refuseValue(key, "a condition, as in \"D100 > 5\", or a list");
            texts.append(item.toString());
        }
        return texts;
    }

    [[noreturn]] void refuseValue(const char* key, const QString& expected) const
    {
        const QString name = QLatin1String(key);
        const QString is = has(key) ? "is " + quoted(m_object.value(name)) : "is missing";
        refuseScript(QString("\"%1\" %2: expected %3").arg(name, is, expected));
    }

    void refuseOtherKeys() const
    {
        for (const QString& key : m_object.keys()) {
            if (!m_read.contains(key))
                refuseScript(QString("\"%1\" is not expected here").arg(key));
        }
    }

private:
    int byteCount()
    {
        const auto bytes = numberOr("bytes", defaultBytes, {1, 4});
        if (bytes == 3)
            refuseValue("bytes", "1, 2 or 4");
        return static_cast<int>(bytes);
    }

    QJsonValue take(const char* key)
    {
        m_read.append(QLatin1String(key));
        return m_object.value(QLatin1String(key));
    }

    QJsonObject m_object;
    const PlcMemory& m_memory;
    QStringList m_read{"comment"};  // which JSON has no other place for
};

void readTimes(StepReader& reader, ScriptStep& step)
{
    const ValueLimits interval{1, longestMs};
    const ValueLimits moment{0, longestMs};
    if (step.action == ScriptStep::Action::Ramp) {
        step.everyMs = reader.numberOr("every", usualRampMs, interval);
        step.firstMs = reader.numberOr("after", 0, moment);
        return;
    }
    if (reader.has("at") == reader.has("every"))
        refuseScript("expected either \"at\" or \"every\"");
    if (reader.has("at")) {
        step.firstMs = reader.number("at", moment);
        return;
    }
    step.everyMs = reader.number("every", interval);
    step.firstMs = reader.numberOr("after", step.everyMs, moment);
}

Condition readCondition(StepReader& reader, const QString& text)
{
    using Is = Condition::Is;
    static const QMap<QString, Is> comparisons = {
        {"=", Is::Equal},        {"==", Is::Equal},  {"!=", Is::Unequal},       {"<", Is::Less},
        {"<=", Is::LessOrEqual}, {">", Is::Greater}, {">=", Is::GreaterOrEqual}};
    static const QRegularExpression form(
        "^\\s*(!?)\\s*([^\\s!=<>]+)\\s*(?:(==?|!=|<=?|>=?)\\s*(\\S+)\\s*)?$");
    const QRegularExpressionMatch match = form.match(text);
    const QString comparison = match.captured(3);
    const bool negated = !match.captured(1).isEmpty();
    if (!match.hasMatch() || (negated && !comparison.isEmpty()))
        refuseScript(QString("\"if\": invalid condition '%1': expected a bit, as in \"X0\" or "
                             "\"!X0\", or a comparison, as in \"D100 > 5\"")
                         .arg(quotable(text)));
    const MemoryPlace left = reader.placeNamed(match.captured(2), "if");
    Condition condition{StepReader::cellOf(left), negated ? Is::Equal : Is::Unequal, {}, 0};
    reader.requireMemory(condition.left.address, condition.left.byteCount, "if");
    if (comparison.isEmpty()) {
        if (!left.bit)
            refuseScript(QString("\"if\": what is %1 compared with? Write a comparison, as in "
                                 "\"%1 > 5\"")
                             .arg(match.captured(2)));
        return condition;
    }
    condition.is = comparisons[comparison];
    const QString right = match.captured(4);
    bool isNumber = false;
    condition.number = right.toLongLong(&isNumber, 0);
    if (!isNumber)
        condition.right = StepReader::cellOf(reader.placeNamed(right, "if"));
    return condition;
}

void readSet(StepReader& reader, ScriptStep& step)
{
    step.cell = reader.cell("set");
    step.value = reader.number("value", limitsOf(step.cell.byteCount));
}

void requireWord(const StepReader& reader, const ScriptStep& step, const char* key)
{
    if (step.cell.byteCount == 0)
        reader.refuseValue(key, "a word, as in \"D100\", and not a bit");
}

void readAdd(StepReader& reader, ScriptStep& step)
{
    step.cell = reader.cell("add");
    requireWord(reader, step, "add");
    const ValueLimits limits = limitsOf(step.cell.byteCount);
    step.value = reader.numberOr("value", 1, {-limits.highest, limits.highest});
    if (!reader.has("from") && !reader.has("to"))
        return;
    step.from = reader.numberOr("from", 0, limits);
    step.to = reader.number("to", {step.from, limits.highest});
}

void readToggle(StepReader& reader, ScriptStep& step)
{
    step.cell = reader.cell("toggle");
    if (step.cell.byteCount > 0)
        reader.refuseValue("toggle", "a bit, as in \"X0\", \"D5.3\" or \"0x0080.3\"");
}

void readCopy(StepReader& reader, ScriptStep& step)
{
    const MemoryPlace from = reader.place("copy");
    const MemoryPlace to = reader.place("to");
    step.cell = StepReader::cellOf(from);
    step.copyTo = StepReader::cellOf(to);
    const bool isBits = from.bit.has_value();
    if (isBits != to.bit.has_value() || step.cell.byteCount != step.copyTo.byteCount)
        reader.refuseValue("to", "as many bits as there are in one of \"copy\"");
    const int room = addressableBytes - std::max(from.address, to.address);
    const int unit = std::max(1, step.cell.byteCount);
    if (!from.device && !isBits)
        step.copied =
            static_cast<int>(reader.numberOr("bytes", std::min(defaultBytes, room), {1, room}));
    else
        step.copied = unit * static_cast<int>(reader.numberOr("count", 1, {1, room / unit}));
    const auto bytes = [&](const Cell& cell) {
        return isBits ? (cell.bit + step.copied + bitsPerByte - 1) / bitsPerByte : step.copied;
    };
    reader.requireMemory(from.address, bytes(step.cell), "copy");
    reader.requireMemory(to.address, bytes(step.copyTo), "to");
}

void readRamp(StepReader& reader, ScriptStep& step)
{
    using Then = ScriptStep::Then;
    static const QMap<QString, Then> ends = {
        {"hold", Then::Hold}, {"back", Then::Back}, {"repeat", Then::Repeat}};
    step.cell = reader.cell("ramp");
    requireWord(reader, step, "ramp");
    step.from = reader.number("from", limitsOf(step.cell.byteCount));
    step.to = reader.number("to", limitsOf(step.cell.byteCount));
    step.overMs = reader.number("over", {1, longestMs});
    if (!reader.has("then"))
        return;
    const QString expected = "\"hold\", \"back\" or \"repeat\"";
    const QString then = reader.text("then", expected);
    if (!ends.contains(then))
        reader.refuseValue("then", expected);
    step.then = ends[then];
}

void readRandom(StepReader& reader, ScriptStep& step)
{
    step.cell = reader.cell("random");
    const ValueLimits limits = limitsOf(step.cell.byteCount);
    step.from = step.cell.byteCount == 0 ? 0 : reader.number("from", limits);
    step.to = step.cell.byteCount == 0 ? 1 : reader.number("to", {step.from, limits.highest});
}

ScriptStep readStep(const QJsonObject& object, const PlcMemory& memory)
{
    struct ActionRow
    {
        const char* key;
        ScriptStep::Action action;
        void (*read)(StepReader& reader, ScriptStep& step);
    };
    constexpr ActionRow rows[] = {{"set", ScriptStep::Action::Set, readSet},
                                  {"add", ScriptStep::Action::Add, readAdd},
                                  {"toggle", ScriptStep::Action::Toggle, readToggle},
                                  {"copy", ScriptStep::Action::Copy, readCopy},
                                  {"ramp", ScriptStep::Action::Ramp, readRamp},
                                  {"random", ScriptStep::Action::Random, readRandom}};
    StepReader reader(object, memory);
    ScriptStep step;
    int actions = 0;
    for (const ActionRow& row : rows) {
        if (!reader.has(row.key))
            continue;
        ++actions;
        step.action = row.action;
        row.read(reader, step);
    }
    if (actions != 1)
        refuseScript("expected exactly one of \"set\", \"add\", \"toggle\", \"copy\", "
                     "\"ramp\" and \"random\"");
    readTimes(reader, step);
    if (reader.has("if")) {
        for (const QString& text : reader.texts("if"))
            step.conditions.append(readCondition(reader, text));
    }
    reader.refuseOtherKeys();
    return step;
}

// The lines where the steps start, in a text that is known to be good JSON.
QVector<int> linesOfSteps(const QByteArray& json)
{
    QVector<int> lines;
    int line = 1;
    int depth = 0;
    bool inString = false;
    for (int at = 0; at < json.size(); ++at) {
        const char character = json[at];
        if (character == '\n')
            ++line;
        if (inString && character == '\\')
            ++at;
        else if (character == '"')
            inString = !inString;
        else if (!inString && (character == '}' || character == ']'))
            --depth;
        else if (!inString && (character == '{' || character == '[') && depth++ == stepDepth)
            lines.append(line);
    }
    return lines;
}

QJsonArray stepsOf(const QByteArray& json)
{
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (problem.error != QJsonParseError::NoError) {
        const int line = 1 + json.left(problem.offset).count('\n');
        refuseScript(QString("line %1: %2").arg(line).arg(problem.errorString()));
    }
    const QJsonObject top = document.object();
    const int comments = top.contains("comment") ? 1 : 0;
    if (!top["steps"].isArray() || top.size() != 1 + comments)
        refuseScript("expected { \"steps\": [ ... ] }");
    return top["steps"].toArray();
}

}  // namespace

std::unique_ptr<Program> parseScript(const QByteArray& json, const PlcMemory& memory, quint64 seed)
{
    QVector<ScriptStep> steps;
    const QJsonArray array = stepsOf(json);
    const QVector<int> lines = linesOfSteps(json);
    for (const QJsonValue& value : array) {
        const int number = steps.size() + 1;
        try {
            if (!value.isObject())
                refuseScript(QString("%1 is not a step: expected { ... }").arg(quoted(value)));
            steps.append(readStep(value.toObject(), memory));
        } catch (const Error& error) {
            const QString step = QString("step %1").arg(number);
            if (!value.isObject())
                throw error.at(step);
            throw error.at(QString("line %1, %2").arg(lines.value(number - 1)).arg(step));
        }
    }
    return std::make_unique<ScriptProgram>(steps, seed);
}

std::unique_ptr<Program> loadScript(const QString& path, const PlcMemory& memory, quint64 seed)
{
    try {
        return parseScript(wholeFile(path), memory, seed);
    } catch (const Error& error) {
        throw error.at(path);
    }
}

}  // namespace fxsim
