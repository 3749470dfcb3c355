// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/log_format.h"

#include "tools/fxhost/views/json_text.h"
#include "tools/library/csv.h"

#include <cmath>

namespace fxtools {

bool differs(const QJsonValue& value, const QJsonValue& before, double deadband)
{
    if (value.isDouble() && before.isDouble())
        return std::abs(value.toDouble() - before.toDouble()) > deadband;
    return value != before;
}

bool differs(const LogRow& row, const LogRow& before, const QVector<double>& deadbands)
{
    if (row.error != before.error)
        return true;
    for (int column = 0; column < row.values.size(); ++column) {
        if (differs(row.values[column], before.values[column], deadbands.value(column)))
            return true;
    }
    return false;
}

QByteArray LogFormat::heading() const
{
    if (m_output.mode == OutputMode::Json)
        return {};
    return csvLine(QStringList("time") + m_names + QStringList("error")).toUtf8() + '\n';
}

QByteArray LogFormat::line(const LogRow& row) const
{
    if (m_output.mode == OutputMode::Json)
        return jsonLine(row);
    QStringList cells = {isoTime(row.time)};
    for (const QJsonValue& value : row.values)
        cells += value.toVariant().toString();
    return csvLine(cells << row.error).toUtf8() + '\n';
}

QByteArray LogFormat::jsonLine(const LogRow& row) const
{
    QVector<JsonMember> values;
    for (int column = 0; column < m_names.size(); ++column)
        values.append({m_names[column], jsonText(row.values[column])});
    QVector<JsonMember> raws;
    for (int column = 0; column < row.raws.size(); ++column) {
        if (!row.raws[column].isUndefined())
            raws.append({m_names[column], jsonText(row.raws[column])});
    }
    QVector<JsonMember> members = {{"time", jsonText(isoTime(row.time))},
                                   {"values", jsonObject(values)}};
    if (!raws.isEmpty())
        members.append({"raw", jsonObject(raws)});
    if (!row.error.isEmpty())
        members.append({"error", jsonText(row.error)});
    return jsonObject(members + m_output.plc) + '\n';
}

}  // namespace fxtools
