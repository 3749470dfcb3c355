// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The values of one polling cycle as commands show them, and what the cycle means for the exit
// code.

#pragma once

#include "tools/exchange/poller.h"
#include "tools/fxhost/commands/connection.h"
#include "tools/fxhost/views/records.h"
#include "tools/tags/tag.h"

namespace fxtools {

struct PolledValue
{
    QString name;     // of the tag, or the address
    QString tag;      // empty: asked for by its address
    QString address;  // as it was asked for
    QString type;     // of the register
    QString unit;
    std::optional<double> deadband;            // of the tag
    QJsonValue raw = QJsonValue::Undefined;    // undefined if it was not read
    QJsonValue value = QJsonValue::Undefined;  // scaled
    QString alarm;                             // "low", "high" or none
    std::optional<ReplyVerdict> problem;

    QJsonValue error() const;  // the problem's text, or undefined
};

QVector<PolledValue> polledValues(const Poller& poller, const Tag& tag);
QVector<PolledValue> polledValues(const Poller& poller, const QVector<Tag>& asked);

// Values as records: where tags were asked for also with their names, raw values and units.
class ValueRecords
{
public:
    ValueRecords(const OutputOptions& output, const QVector<Tag>& asked, Records::Shown shown);

    void add(const PolledValue& polled);
    void finish() { m_records.finish(); }

private:
    bool m_hasTags;
    Records m_records;
};

// --as FORMAT and --swap
void addFormatOption(CLI::App& command, ValueStyle& style);

class PollResult
{
public:
    void count(const PolledValue& polled);

    int good() const { return m_good; }
    int failed() const { return m_failed; }
    std::optional<ReplyVerdict> firstProblem() const { return m_firstProblem; }

    // Good; SomeFailed; or, if all values failed, the code of the first reason.
    ExitCode exitCode() const;

private:
    int m_good = 0;
    int m_failed = 0;
    std::optional<ReplyVerdict> m_firstProblem;
};

}  // namespace fxtools
