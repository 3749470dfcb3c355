// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/workers/line_feed.h"

namespace fxgate {

QList<QByteArray> LineFeed::take(const QByteArray& bytes, qint64 steadyMs)
{
    if (steadyMs - m_secondBeganMs >= 1000) {
        m_secondBeganMs = steadyMs;
        m_lines = 0;
        m_bytes = 0;
    }
    m_bytes += bytes.size();
    m_rest += bytes;
    QList<QByteArray> lines = m_rest.split('\n');
    m_rest = lines.takeLast();
    m_lines += lines.size();
    if (m_lines > mostLinesPerSecond)
        m_mistake = QStringLiteral("more than %1 lines in a second").arg(mostLinesPerSecond);
    else if (m_bytes > mostBytesPerSecond)
        m_mistake = QStringLiteral("more than %1 MiB in a second").arg(mostBytesPerSecond >> 20);
    else if (m_rest.size() > longestLine)
        m_mistake = QStringLiteral("a line longer than %1 MiB").arg(longestLine >> 20);
    return m_mistake.isEmpty() ? lines : QList<QByteArray>();
}

}  // namespace fxgate
