// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/poll_result.h"

#include "tools/quoted.h"

namespace fxtools {

QJsonValue PolledValue::error() const
{
    return problem ? QJsonValue(verdictText(*problem)) : QJsonValue(QJsonValue::Undefined);
}

namespace {

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

QVector<PolledValue> polledValues(const Poller& poller, const AskedAddress& asked, ValueStyle style)
{
    const QVector<quint32> registers = poller.values(asked.range);
    const int step = registersPerValue(asked, style);
    QVector<PolledValue> values;
    for (int index = 0; index < asked.range.count; index += step) {
        PolledValue polled;
        polled.type = asked.range.type.name;
        polled.name = style.format == ValueFormat::Text ? asked.text() : asked.nameOf(index);
        for (int part = index; part < index + step && !polled.problem; ++part)
            polled.problem = poller.problemOf(asked.range, part);
        if (!polled.problem)
            polled.value = valueOf(registers.mid(index, step), asked, style);
        values.append(polled);
    }
    return values;
}

QVector<PolledValue> polledValues(const Poller& poller, const QVector<AskedAddress>& asked,
                                  ValueStyle style)
{
    QVector<PolledValue> values;
    for (const AskedAddress& address : asked)
        values += polledValues(poller, address, style);
    return values;
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

void needWholeValues(QVector<AskedAddress>& asked, ValueStyle style)
{
    for (AskedAddress& address : asked) {
        widen(address, style);
        if (address.range.count % registersPerValue(address, style) != 0) {
            throw Failure(ExitCode::Usage,
                          address.range.text() +
                              ": each value takes two words, so the number of words must be even");
        }
        address.range.together = registersPerValue(address, style);
    }
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
