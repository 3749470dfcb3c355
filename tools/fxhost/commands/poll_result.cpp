// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/poll_result.h"

#include "tools/library/values.h"
#include "tools/quoted.h"

#include <algorithm>

namespace fxtools {

QJsonValue PolledValue::error() const
{
    return problem ? QJsonValue(verdictText(*problem)) : QJsonValue(QJsonValue::Undefined);
}

namespace {

QVector<Table::Column> columnsOfValues(bool hasTags)
{
    const Table::Column type = {"type", Align::Left, true};
    const Table::Column value = {"value", Align::Right};
    if (!hasTags)
        return {{"address"}, type, value, {"error"}};
    return {{"tag"}, {"address"}, type,      {"raw", Align::Right, true},
            value,   {"unit"},    {"alarm"}, {"error"}};
}

// The name of a format becomes its number, as enumerations are read.
std::string numberOfFormat(std::string& text)
{
    const QString name = QString::fromStdString(text);
    const std::optional<ValueFormat> format = formatNamed(name);
    if (!format)
        return ("unknown format " + quoted(name) + ": expected " + formatNames()).toStdString();
    text = std::to_string(static_cast<int>(*format));
    return {};
}

}  // namespace

QVector<PolledValue> polledValues(const Poller& poller, const Tag& tag)
{
    const AskedAddress& asked = tag.asked;
    const QVector<quint32> registers = poller.values(asked.range);
    const int step = registersPerValue(asked, tag.style);
    QVector<PolledValue> values;
    for (int index = 0; index < asked.range.count; index += step) {
        PolledValue polled;
        polled.tag = tag.name;
        polled.address = tag.style.format == ValueFormat::Text ? asked.text() : asked.nameOf(index);
        polled.name = tag.name.isEmpty() ? polled.address : tag.name;
        polled.type = asked.range.type.name;
        polled.unit = tag.unit;
        polled.deadband = tag.deadband;
        for (int part = index; part < index + step && !polled.problem; ++part)
            polled.problem = poller.problemOf(asked.range, part);
        if (!polled.problem) {
            polled.raw = tag.rawOf(registers.mid(index, step));
            polled.value = tag.valueOf(polled.raw);
            polled.alarm = tag.alarmOf(polled.value);
        }
        values.append(polled);
    }
    return values;
}

QVector<PolledValue> polledValues(const Poller& poller, const QVector<Tag>& asked)
{
    QVector<PolledValue> values;
    for (const Tag& tag : asked)
        values += polledValues(poller, tag);
    return values;
}

ValueRecords::ValueRecords(const OutputOptions& output, const QVector<Tag>& asked,
                           Records::Shown shown)
    : m_hasTags(std::any_of(asked.begin(), asked.end(),
                            [](const Tag& tag) { return !tag.name.isEmpty(); })),
      m_records(output, columnsOfValues(m_hasTags), shown)
{}

void ValueRecords::add(const PolledValue& polled)
{
    if (m_hasTags) {
        m_records.add({textOrNothing(polled.tag), polled.address, polled.type,
                       polled.tag.isEmpty() ? QJsonValue(QJsonValue::Undefined) : polled.raw,
                       polled.value, textOrNothing(polled.unit), textOrNothing(polled.alarm),
                       polled.error()});
    } else {
        m_records.add({polled.address, polled.type, polled.value, polled.error()});
    }
}

void addFormatOption(CLI::App& command, ValueStyle& style)
{
    command
        .add_option("--as", style.format,
                    "signed (default), unsigned, hex, bin, bcd, or in two words long, ulong or "
                    "float, or text")
        ->type_name("FORMAT")
        ->transform(CLI::Validator(numberOfFormat, ""));
    command.add_flag("--swap", style.swap, "Values of two words: the high word comes first");
}

void PollResult::count(const PolledValue& polled)
{
    ++(polled.problem ? m_failed : m_good);
    if (!m_firstProblem)
        m_firstProblem = polled.problem;
}

ExitCode PollResult::exitCode() const
{
    if (m_failed == 0)
        return ExitCode::Good;
    return m_good > 0 ? ExitCode::SomeFailed : exitCodeOf(*m_firstProblem);
}

}  // namespace fxtools
