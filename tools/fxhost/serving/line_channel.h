// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Lines from a supervisor and to it, on pipes as a rule. Nothing here waits for the other side,
// except where it says for how long. What the other side does not take is kept, so the sender must
// ask whether it has been taken before it adds what can be made up for later. While much is kept,
// no lines are read: what they ask for would have to be answered.

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace fxtools {

class LineChannel
{
public:
    static constexpr int longestLine = 65536;  // in bytes, of what comes in

    struct Line
    {
        int number = 0;   // from 1 on
        QByteArray text;  // empty if it was too long
        bool isTooLong = false;
    };

    LineChannel(int in, int out);

    std::optional<Line> next();                   // the next whole line that has come
    bool hasEnded() const { return m_hasEnded; }  // no line comes any more

    void send(const QByteArray& line);             // without its end
    bool isTaken();                                // whether all that was sent is on its way
    QString problem() const { return m_problem; }  // why lines were lost though somebody reads

    // Until something comes, something that was kept can go, or the time is over.
    void wait(qint64 timeMs);
    void finish(qint64 timeMs);  // the same until all is taken

private:
    void read();
    void flush();

    int m_in;
    int m_out;
    QByteArray m_received;
    QByteArray m_kept;
    int m_lines = 0;
    bool m_isInLongLine = false;
    bool m_hasEnded = false;
    QString m_problem;
};

}  // namespace fxtools
