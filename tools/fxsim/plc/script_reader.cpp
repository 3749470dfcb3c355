// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Scripts from JSON, see script_program.h. Whatever does not fit is refused with the number of its
// step.

#include "tools/fxsim/plc/number_text.h"
#include "tools/fxsim/plc/script_program.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <optional>

namespace fxsim {

namespace {

constexpr qint64 longestMs = 7LL * 24 * 3600 * 1000;  // a week
constexpr qint64 lowestValue = -2147483648LL;
constexpr qint64 highestValue = 4294967295LL;

struct ScriptError
{
    QString text;
};

class StepReader
{
public:
    explicit StepReader(const QJsonObject& object) : m_object(object) {}

    bool has(const char* key) const { return m_object.contains(QLatin1String(key)); }

    qint64 number(const char* key, qint64 lowest, qint64 highest)
    {
        m_read.append(QLatin1String(key));
        const QJsonValue value = m_object[QLatin1String(key)];
        const double number = value.toDouble();
        const bool whole = value.isDouble() && number == std::floor(number);
        const QString wanted =
            QStringLiteral("a whole number from %1 to %2").arg(lowest).arg(highest);
        if (!whole || number < static_cast<double>(lowest) || number > static_cast<double>(highest))
            throw ScriptError{QStringLiteral("\"%1\" must be %2").arg(key, wanted)};
        return static_cast<qint64>(number);
    }

    qint64 numberOr(const char* key, qint64 otherwise, qint64 lowest, qint64 highest)
    {
        return has(key) ? number(key, lowest, highest) : otherwise;
    }

    QString text(const char* key)
    {
        m_read.append(QLatin1String(key));
        return m_object[QLatin1String(key)].toString();
    }

    int address(const char* key)
    {
        const std::optional<int> address = parseByteAddress(text(key));
        if (!address)
            throw ScriptError{
                QStringLiteral("\"%1\" must be a byte address such as \"0x1000\"").arg(key)};
        return *address;
    }

    BitPlace bit(const char* key)
    {
        const std::optional<BitPlace> place = parseBitPlace(text(key));
        if (!place)
            throw ScriptError{QStringLiteral("\"%1\" must be a bit such as \"0x0080.3\"").arg(key)};
        return *place;
    }

    // A key that nobody asked for is a mistake of its writer.
    void refuseOthers() const
    {
        for (const QString& key : m_object.keys()) {
            if (!m_read.contains(key))
                throw ScriptError{QStringLiteral("\"%1\" has no meaning here").arg(key)};
        }
    }

private:
    QJsonObject m_object;
    QStringList m_read{QStringLiteral("comment")};  // which JSON has no other place for
};

void readTimes(StepReader& reader, ScriptStep& step)
{
    if (reader.has("at") == reader.has("every"))
        throw ScriptError{QStringLiteral("one of \"at\" and \"every\" says when")};
    if (reader.has("at")) {
        step.firstMs = reader.number("at", 0, longestMs);
        return;
    }
    step.everyMs = reader.number("every", 1, longestMs);
    step.firstMs = reader.numberOr("after", step.everyMs, 0, longestMs);
}

void readByteCount(StepReader& reader, ScriptStep& step)
{
    step.byteCount = static_cast<int>(reader.numberOr("bytes", 2, 1, 4));
    if (step.byteCount == 3)
        throw ScriptError{QStringLiteral("\"bytes\" must be 1, 2 or 4")};
    if (step.byteCount > addressableBytes - step.address)
        throw ScriptError{QStringLiteral("the bytes end beyond 0xFFFF")};
}

void readSet(StepReader& reader, ScriptStep& step)
{
    if (const std::optional<BitPlace> place = parseBitPlace(reader.text("set"))) {
        step.action = ScriptStep::Action::SetBit;
        step.address = place->address;
        step.bit = place->bit;
        step.value = reader.number("value", 0, 1);
        return;
    }
    step.action = ScriptStep::Action::Set;
    step.address = reader.address("set");
    readByteCount(reader, step);
    step.value = reader.number("value", lowestValue, highestValue);
}

void readAdd(StepReader& reader, ScriptStep& step)
{
    step.action = ScriptStep::Action::Add;
    step.address = reader.address("add");
    readByteCount(reader, step);
    step.value = reader.numberOr("value", 1, lowestValue, highestValue);
    if (!reader.has("from") && !reader.has("to"))
        return;
    step.from = reader.numberOr("from", 0, 0, highestValue);
    step.to = reader.number("to", step.from, highestValue);
}

void readToggle(StepReader& reader, ScriptStep& step)
{
    const BitPlace place = reader.bit("toggle");
    step.action = ScriptStep::Action::Toggle;
    step.address = place.address;
    step.bit = place.bit;
}

void readCopy(StepReader& reader, ScriptStep& step)
{
    step.action = ScriptStep::Action::Copy;
    step.address = reader.address("copy");
    step.toAddress = reader.address("to");
    const int room = addressableBytes - std::max(step.address, step.toAddress);
    step.byteCount = static_cast<int>(reader.numberOr("bytes", std::min(2, room), 1, room));
}

ScriptStep readStep(const QJsonObject& object)
{
    struct ActionRow
    {
        const char* key;
        void (*read)(StepReader& reader, ScriptStep& step);
    };
    constexpr ActionRow rows[] = {
        {"set", readSet}, {"add", readAdd}, {"toggle", readToggle}, {"copy", readCopy}};
    StepReader reader(object);
    ScriptStep step;
    int actions = 0;
    for (const ActionRow& row : rows) {
        if (!reader.has(row.key))
            continue;
        ++actions;
        row.read(reader, step);
    }
    if (actions != 1)
        throw ScriptError{
            QStringLiteral("one of \"set\", \"add\", \"toggle\" and \"copy\" says what")};
    readTimes(reader, step);
    reader.refuseOthers();
    return step;
}

QJsonArray stepsOf(const QByteArray& json)
{
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (problem.error != QJsonParseError::NoError) {
        const int line = 1 + json.left(problem.offset).count('\n');
        throw ScriptError{QStringLiteral("line %1: %2").arg(line).arg(problem.errorString())};
    }
    const QJsonObject top = document.object();
    const int comments = top.contains(QLatin1String("comment")) ? 1 : 0;
    if (!top[QLatin1String("steps")].isArray() || top.size() != 1 + comments)
        throw ScriptError{QStringLiteral("a script is { \"steps\": [ ... ] }")};
    return top[QLatin1String("steps")].toArray();
}

QVector<ScriptStep> readSteps(const QByteArray& json)
{
    QVector<ScriptStep> steps;
    const QJsonArray array = stepsOf(json);
    for (const QJsonValue& value : array) {
        try {
            steps.append(readStep(value.toObject()));
        } catch (const ScriptError& error) {
            throw ScriptError{QStringLiteral("step %1: %2").arg(steps.size() + 1).arg(error.text)};
        }
    }
    return steps;
}

}  // namespace

LoadedScript parseScript(const QByteArray& json)
{
    try {
        return {std::make_unique<ScriptProgram>(readSteps(json)), QString()};
    } catch (const ScriptError& error) {
        return {nullptr, error.text};
    }
}

LoadedScript loadScript(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {nullptr, QStringLiteral("%1: %2").arg(path, file.errorString())};
    LoadedScript script = parseScript(file.readAll());
    if (!script.error.isEmpty())
        script.error = QStringLiteral("%1: %2").arg(path, script.error);
    return script;
}

}  // namespace fxsim
