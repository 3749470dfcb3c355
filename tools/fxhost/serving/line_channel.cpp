// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/serving/line_channel.h"

#include <QElapsedTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include <poll.h>
#include <unistd.h>

namespace fxtools {

namespace {

constexpr int mostKept = 65536;  // in bytes; with more, nothing is read

// What a pipe takes at once when it takes anything.
constexpr int oneWrite = PIPE_BUF;

short stateOf(int file, short events)
{
    pollfd asked = {file, events, 0};
    return poll(&asked, 1, 0) > 0 ? asked.revents : short(0);
}

}  // namespace

LineChannel::LineChannel(int in, int out) : m_in(in), m_out(out) {}

std::optional<LineChannel::Line> LineChannel::next()
{
    int end = m_received.indexOf('\n');
    if (end < 0) {
        read();
        end = m_received.indexOf('\n');
    }
    if (end < 0 && m_received.size() > longestLine) {
        m_received.clear();
        m_isInLongLine = true;
    }
    const bool isLast = end < 0 && m_hasEnded && !m_received.isEmpty();
    if (end < 0 && !isLast)
        return std::nullopt;
    const QByteArray text = isLast ? m_received : m_received.left(end);
    m_received.remove(0, isLast ? m_received.size() : end + 1);
    const bool isTooLong = std::exchange(m_isInLongLine, false) || text.size() > longestLine;
    return Line{++m_lines, isTooLong ? QByteArray() : text, isTooLong};
}

void LineChannel::read()
{
    if (m_hasEnded)
        return;
    if (m_kept.size() > mostKept) {  // somebody who reads nothing and is gone asks for nothing
        m_hasEnded = (stateOf(m_in, 0) & (POLLHUP | POLLERR)) != 0;
        return;
    }
    if (stateOf(m_in, POLLIN) == 0)
        return;
    std::array<char, 16384> buffer = {};
    const ssize_t byteCount = ::read(m_in, buffer.data(), buffer.size());
    if (byteCount > 0)
        m_received.append(buffer.data(), static_cast<int>(byteCount));
    else
        m_hasEnded = byteCount == 0 || (errno != EINTR && errno != EAGAIN);
}

void LineChannel::send(const QByteArray& line)
{
    m_kept += line + '\n';
    flush();
}

bool LineChannel::isTaken()
{
    flush();
    return m_kept.isEmpty();
}

void LineChannel::flush()
{
    int sent = 0;
    while (sent < m_kept.size() && (stateOf(m_out, POLLOUT) & (POLLOUT | POLLERR)) != 0) {
        const int bytes = std::min(m_kept.size() - sent, oneWrite);
        const ssize_t written = write(m_out, m_kept.constData() + sent, static_cast<size_t>(bytes));
        if (written < 0 && errno != EINTR && errno != EAGAIN) {  // nobody will ever read it
            m_hasEnded = true;
            if (errno != EPIPE)
                m_problem = QString::fromLocal8Bit(strerror(errno));
            sent = m_kept.size();
        } else if (written <= 0) {
            break;
        } else {
            sent += static_cast<int>(written);
        }
    }
    m_kept.remove(0, sent);
}

void LineChannel::wait(qint64 timeMs)
{
    const bool mayRead = !m_hasEnded && m_kept.size() <= mostKept;
    std::array<pollfd, 2> asked = {pollfd{m_hasEnded ? -1 : m_in, short(mayRead ? POLLIN : 0), 0},
                                   pollfd{m_kept.isEmpty() ? -1 : m_out, POLLOUT, 0}};
    poll(asked.data(), asked.size(), static_cast<int>(std::min<qint64>(timeMs, INT_MAX)));
}

void LineChannel::finish(qint64 timeMs)
{
    QElapsedTimer waited;
    waited.start();
    while (!isTaken() && waited.elapsed() < timeMs) {
        pollfd asked = {m_out, POLLOUT, 0};
        poll(&asked, 1, static_cast<int>(timeMs - waited.elapsed()));
    }
}

}  // namespace fxtools
