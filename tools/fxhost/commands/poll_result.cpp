// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/poll_result.h"

namespace fxtools {

QJsonValue PolledValue::error() const
{
    return problem ? QJsonValue(verdictText(*problem)) : QJsonValue(QJsonValue::Undefined);
}

QVector<PolledValue> polledValues(const Poller& poller, const RegisterRange& range,
                                  ValueFormat format)
{
    const QVector<quint32> registers = poller.values(range);
    const int step = registersPerValue(range.type, format);
    QVector<PolledValue> values;
    for (int index = 0; index < range.count; index += step) {
        PolledValue polled;
        polled.name = range.nameOf(index);
        polled.problem = poller.problemOf(range, index);
        if (!polled.problem && step > 1)
            polled.problem = poller.problemOf(range, index + 1);
        if (!polled.problem)
            polled.value = valueOf(&registers[index], range.type, format);
        values.append(polled);
    }
    return values;
}

namespace {

// The name of a format becomes its number, as enumerations are read.
std::string numberOfFormat(std::string& text)
{
    const auto found = valueFormats().find(QString::fromStdString(text).toLower().toStdString());
    if (found == valueFormats().end())
        return "unknown format '" + text + "': expected dec, signed, hex, bin, long or float";
    text = std::to_string(static_cast<int>(found->second));
    return {};
}

}  // namespace

void addFormatOption(CLI::App& command, ValueFormat& format)
{
    command
        .add_option("--as", format,
                    "dec (default), signed, hex, bin, long or float; the last two take two words")
        ->type_name("FORMAT")
        ->transform(CLI::Validator(numberOfFormat, ""));
}

void needWholeValues(const QVector<RegisterRange>& ranges, ValueFormat format)
{
    for (const RegisterRange& range : ranges) {
        if (range.count % registersPerValue(range.type, format) != 0) {
            throw Failure(ExitCode::Usage,
                          range.text() +
                              ": each value takes two words, so the number of words must be even");
        }
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
