// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Reads scripts from JSON, see script_program.h.

#include "tools/fxsim/plc/number_text.h"
#include "tools/fxsim/plc/script_program.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace fxsim {

namespace {

constexpr qint64 longestMs = 7LL * 24 * 3600 * 1000;  // a week
constexpr qint64 lowestValue = -2147483648LL;
constexpr qint64 highestValue = 4294967295LL;
constexpr int defaultBytes = 2;

[[noreturn]] void refuse(const QString& text)
{
    throw Error(ExitCode::File, text);
}

class StepReader
{
public:
    explicit StepReader(const QJsonObject& object) : m_object(object) {}

    bool has(const char* key) const { return m_object.contains(QLatin1String(key)); }

    qint64 number(const char* key, qint64 lowest, qint64 highest)
    {
        const QJsonValue value = take(key);
        const double number = value.toDouble();
        const bool whole = value.isDouble() && number == std::floor(number);
        if (!whole || number < static_cast<double>(lowest) ||
            number > static_cast<double>(highest)) {
            refuse(QStringLiteral("\"%1\" must be a whole number from %2 to %3")
                       .arg(key)
                       .arg(lowest)
                       .arg(highest));
        }
        return static_cast<qint64>(number);
    }

    qint64 numberOr(const char* key, qint64 otherwise, qint64 lowest, qint64 highest)
    {
        return has(key) ? number(key, lowest, highest) : otherwise;
    }

    MemoryPlace place(const char* key)
    {
        try {
            return parsePlace(take(key).toString());
        } catch (const Error&) {
            refuse(QStringLiteral("\"%1\" must be a byte address such as \"0x1000\", or a bit such "
                                  "as \"0x0100.3\"")
                       .arg(key));
        }
    }

    int address(const char* key)
    {
        const MemoryPlace byte = place(key);
        if (byte.bit)
            refuse(QStringLiteral("\"%1\" must be a byte address, not a bit").arg(key));
        return byte.address;
    }

    void refuseOtherKeys() const
    {
        for (const QString& key : m_object.keys()) {
            if (!m_read.contains(key))
                refuse(QStringLiteral("\"%1\" is not expected here").arg(key));
        }
    }

private:
    QJsonValue take(const char* key)
    {
        m_read.append(QLatin1String(key));
        return m_object[QLatin1String(key)];
    }

    QJsonObject m_object;
    QStringList m_read{QStringLiteral("comment")};  // which JSON has no other place for
};

void readTimes(StepReader& reader, ScriptStep& step)
{
    if (reader.has("at") == reader.has("every"))
        refuse(QStringLiteral("expected either \"at\" or \"every\""));
    if (reader.has("at")) {
        step.firstMs = reader.number("at", 0, longestMs);
        return;
    }
    step.everyMs = reader.number("every", 1, longestMs);
    step.firstMs = reader.numberOr("after", step.everyMs, 0, longestMs);
}

void readByteCount(StepReader& reader, ScriptStep& step)
{
    step.byteCount = static_cast<int>(reader.numberOr("bytes", defaultBytes, 1, 4));
    if (step.byteCount == 3)
        refuse(QStringLiteral("\"bytes\" must be 1, 2 or 4"));
    if (step.byteCount > addressableBytes - step.address)
        refuse(QStringLiteral("the value extends beyond address 0xFFFF"));
}

void readSet(StepReader& reader, ScriptStep& step)
{
    const MemoryPlace place = reader.place("set");
    step.action = place.bit ? ScriptStep::Action::SetBit : ScriptStep::Action::Set;
    step.address = place.address;
    step.bit = place.bit.value_or(0);
    if (!place.bit)
        readByteCount(reader, step);
    step.value = place.bit ? reader.number("value", 0, 1)
                           : reader.number("value", lowestValue, highestValue);
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
    const MemoryPlace place = reader.place("toggle");
    if (!place.bit)
        refuse(QStringLiteral("\"toggle\" must be a bit such as \"0x0080.3\""));
    step.action = ScriptStep::Action::Toggle;
    step.address = place.address;
    step.bit = *place.bit;
}

void readCopy(StepReader& reader, ScriptStep& step)
{
    step.action = ScriptStep::Action::Copy;
    step.address = reader.address("copy");
    step.toAddress = reader.address("to");
    const int room = addressableBytes - std::max(step.address, step.toAddress);
    step.byteCount =
        static_cast<int>(reader.numberOr("bytes", std::min(defaultBytes, room), 1, room));
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
        refuse(QStringLiteral("expected exactly one of \"set\", \"add\", \"toggle\" and \"copy\""));
    readTimes(reader, step);
    reader.refuseOtherKeys();
    return step;
}

QJsonArray stepsOf(const QByteArray& json)
{
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (problem.error != QJsonParseError::NoError) {
        const int line = 1 + json.left(problem.offset).count('\n');
        refuse(QStringLiteral("line %1: %2").arg(line).arg(problem.errorString()));
    }
    const QJsonObject top = document.object();
    const int comments = top.contains(QLatin1String("comment")) ? 1 : 0;
    if (!top[QLatin1String("steps")].isArray() || top.size() != 1 + comments)
        refuse(QStringLiteral("expected { \"steps\": [ ... ] }"));
    return top[QLatin1String("steps")].toArray();
}

}  // namespace

std::unique_ptr<Program> parseScript(const QByteArray& json)
{
    QVector<ScriptStep> steps;
    const QJsonArray array = stepsOf(json);
    for (const QJsonValue& value : array) {
        try {
            steps.append(readStep(value.toObject()));
        } catch (const Error& error) {
            throw error.at(QStringLiteral("step %1").arg(steps.size() + 1));
        }
    }
    return std::make_unique<ScriptProgram>(steps);
}

std::unique_ptr<Program> loadScript(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Error(ExitCode::File, file.errorString()).at(path);
    try {
        return parseScript(file.readAll());
    } catch (const Error& error) {
        throw error.at(path);
    }
}

}  // namespace fxsim
