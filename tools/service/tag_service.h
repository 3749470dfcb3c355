// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Keeps the tags of one PLC fresh, each at its period, and writes them: for programs that run on,
// such as fxhost serve and the operator window.
//
// Everything runs in the thread that calls run(), and all that is called back is called there. A
// write, or another job that needs the line for itself, waits until nothing is in flight; what
// cannot begin soon is refused. While it runs, polling pauses.

#pragma once

#include "tools/exchange/checked_write.h"
#include "tools/service/connection.h"
#include "tools/service/polling_cycles.h"
#include "tools/service/served_tags.h"

#include <QElapsedTimer>
#include <QQueue>

namespace fxtools {

enum class LinkState
{
    Opening,
    Up,  // the PLC answers
    Down,
};

// What became of a write.
struct WriteAnswer
{
    enum class Outcome
    {
        Done,     // acknowledged, and read back
        Refused,  // nothing has changed
        Failed,   // the PLC holds something else
        Unknown,  // could not be read back
    };

    Outcome outcome = Outcome::Refused;
    QString reason;     // unless it is simply done
    QJsonValue before;  // null: not known
    QJsonValue after;
    bool isAcknowledged = false;  // where it failed: the PLC took it, and holds another value
};

WriteAnswer refusal(const QString& reason);
WriteAnswer answerOf(const Tag& tag, const CheckedWrite& write);

class TagService
{
public:
    static constexpr qint64 usualWaitMs = 10000;

    // Called wherever something is awaited, at least every tenth of a second, also while a lost
    // link is. Returns whether to end.
    std::function<bool()> onTick;

    // Called between two exchanges, when it is known what is wrong with what was not read.
    std::function<void()> onPause;

    // Waits until there may be something to do, at most so long.
    std::function<void(qint64 timeMs)> wait;

    std::function<void()> onLinkChanged;
    std::function<void(const Exchange&)> onExchange;
    std::function<void(const QVector<int>& tags)> onRead;
    std::function<void(const QString& id, int tag, const WriteAnswer&)> onWritten;

    TagService(const ConnectionSettings& settings, const QVector<Tag>& tags);
    TagService(const TagService&) = delete;
    TagService& operator=(const TagService&) = delete;

    // Opens the link and polls until it is to end, or the link is lost for good. Throws Failure.
    RoundEnd run();

    // Each is answered once, by onWritten.
    void write(const QString& id, int tag, const Assignment& assignment,
               qint64 withinMs = usualWaitMs);

    // One of the two is called, once, also if run() throws. A lost link is not waited for while it
    // runs.
    struct Job
    {
        std::function<void(Connection&)> run;
        std::function<void(const QString& reason)> refuse;
        qint64 withinMs = usualWaitMs;  // it begins by then, or is refused
    };
    void perform(const Job& job);

    bool isBusy() const { return m_isBusy; }  // with a write or another job
    bool areJobsWaiting() const { return !m_jobs.isEmpty(); }

    ServedTags& tags() { return m_tags; }
    LinkState link() const { return m_link; }
    const QString& reason() const { return m_reason; }  // why it is not up
    Moment now() const;

    Connection* connection() { return m_connection; }     // null: not open yet
    const Polling* polling() const { return m_polling; }  // the same
    qint64 cycleUs() const { return m_cycleUs; }          // that the last one took

private:
    struct WaitingJob
    {
        Job job;
        qint64 sinceUs;
    };

    RoundEnd poll();
    bool tick();
    void pause(qint64 timeMs);
    void refuseJobs();
    void refuseAll(const QString& reason);
    void runJob(const Job& job);
    WriteAnswer writeNow(int tag, const Assignment& assignment);
    void noteExchange(const Exchange& exchange);
    void noteRead(const RegisterRange& block, const ServedTags::ValuesOf& valuesOf);
    void noteLinkState(const QString& text);
    void setLink(LinkState link, const QString& reason);

    ConnectionSettings m_settings;
    QElapsedTimer m_clock;
    WantedPeriods m_wanted;
    ServedTags m_tags;
    Connection* m_connection = nullptr;
    Polling* m_polling = nullptr;
    LinkState m_link = LinkState::Opening;
    QString m_reason;
    int m_badInARow = 0;
    QQueue<WaitingJob> m_jobs;
    bool m_isBusy = false;
    bool m_mustReadAll = false;    // nothing that was read before counts any more
    bool m_mustLookAgain = false;  // a job has lost the PLC: is it back?
    qint64 m_cycleBeganUs = 0;
    qint64 m_cycleUs = 0;
};

}  // namespace fxtools
