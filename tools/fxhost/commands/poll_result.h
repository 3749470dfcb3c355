// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The values of one polling cycle as commands show them, and what the cycle means for the exit
// code.

#pragma once

#include "tools/exchange/poller.h"
#include "tools/fxhost/commands/connection.h"
#include "tools/library/addresses.h"
#include "tools/library/values.h"

namespace fxtools {

struct PolledValue
{
    QString name;
    QString type;                              // of the register
    QJsonValue value = QJsonValue::Undefined;  // undefined if it was not read
    std::optional<ReplyVerdict> problem;

    QJsonValue error() const;  // the problem's text, or undefined
};

QVector<PolledValue> polledValues(const Poller& poller, const AskedAddress& asked,
                                  ValueStyle style);
QVector<PolledValue> polledValues(const Poller& poller, const QVector<AskedAddress>& asked,
                                  ValueStyle style);

// --as FORMAT and --swap
void addFormatOption(CLI::App& command, ValueStyle& style);

// Takes two words where one address names a value of two. Throws Failure if a value would reach
// past the end of a range.
void needWholeValues(QVector<AskedAddress>& asked, ValueStyle style);

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
