// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The rows of a log. In CSV it is wide: a row for each time, a column for each register, and at the
// end the reason for empty cells. In JSON each line is an object.

#pragma once

#include "tools/fxhost/views/records.h"

namespace fxtools {

struct LogRow
{
    QDateTime time;
    QVector<QJsonValue> values;     // undefined: not read
    QString error;                  // empty if all were read
    QVector<QJsonValue> raws = {};  // of tags; undefined for others
};

// Whether a row has other values than the one before it, or another error. Numbers that differ by
// the deadband of their column or less are the same.
bool differs(const LogRow& row, const LogRow& before, const QVector<double>& deadbands);

// The same for one value.
bool differs(const QJsonValue& value, const QJsonValue& before, double deadband);

class LogFormat
{
public:
    LogFormat(const OutputOptions& output, const QStringList& names)
        : m_output(output), m_names(names)
    {}

    QByteArray heading() const;  // "time,D0,D1,error"; none in JSON
    QByteArray line(const LogRow& row) const;

private:
    QByteArray jsonLine(const LogRow& row) const;

    OutputOptions m_output;
    QStringList m_names;
};

}  // namespace fxtools
