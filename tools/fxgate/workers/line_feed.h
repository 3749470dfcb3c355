// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Cuts what a worker prints into lines. A worker that prints without end is found out here, before
// it costs the other links anything. Times are of a clock that is never set.

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace fxgate {

class LineFeed
{
public:
    static constexpr int mostLinesPerSecond = 2000;         // of the quickest line, hundreds
    static constexpr int mostBytesPerSecond = 8 << 20;      // the tags of a large PLC are a quarter
    static constexpr int longestLine = mostBytesPerSecond;  // in bytes

    // The lines that are complete now, without their ends.
    QList<QByteArray> take(const QByteArray& bytes, qint64 steadyMs);

    // Why the worker must go; empty: it need not.
    QString mistake() const { return m_mistake; }

private:
    QByteArray m_rest;
    qint64 m_secondBeganMs = 0;
    int m_lines = 0;
    qint64 m_bytes = 0;
    QString m_mistake;
};

}  // namespace fxgate
