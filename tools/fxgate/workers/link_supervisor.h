// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One link: its worker process, which is started again whenever it ends, and what it says. A worker
// that says nothing for three seconds leaves its tags stale; one that stays silent, floods or talks
// nonsense is ended. Nothing that a worker does throws out of here, or waits for it.

#pragma once

#include "tools/fxgate/configuration.h"
#include "tools/fxgate/environment.h"
#include "tools/fxgate/growing_pause.h"
#include "tools/fxgate/values/link_values.h"
#include "tools/fxgate/workers/line_feed.h"

#include <QDeadlineTimer>

namespace fxgate {

// What fxgate status shows of a link besides its state.
struct LinkReport
{
    qint64 workerPid = 0;  // 0: none
    int restarts = 0;
    QString lastError;  // why the worker or the link was last lost
    AliveLine line;
};

class LinkSupervisor : public QObject
{
public:
    static constexpr qint64 silentMs = 3000;     // then its tags are stale
    static constexpr qint64 hangsMs = 10000;     // then it is ended
    static constexpr qint64 startingMs = 30000;  // until its first line
    static constexpr qint64 longestPauseMs = 60000;

    LinkSupervisor(const QString& name, const ServedLink& link, const QString& fxhost, Plant& plant,
                   const Environment& environment);

    // Called from the event loop and from tick().
    std::function<void(const QVector<Change>&)> onChanges;
    std::function<void()> onLinkChanged;  // its state or its tags
    std::function<void(const WrittenLine&)> onWritten;
    std::function<void(const QString& reason)> onWorkerLost;
    std::function<void(const QString& text)> onLog;

    void start(qint64 afterMs = 0);  // in a tick, unless at once
    void tick();                     // several times a second
    void send(const QByteArray& line);
    void tellAllAgain();

    void stop();                                 // asks the worker to end, for good
    void endBy(const QDeadlineTimer& deadline);  // waits for that; then it is killed
    bool hasEnded() const { return !m_worker; }

    const QString& name() const { return m_name; }
    const ServedLink& link() const { return m_link; }
    const LinkReport& report() const { return m_report; }

private:
    void startWorker();
    void readLines(const QByteArray& bytes);
    void readComplaints(const QByteArray& bytes);
    void take(const WorkerLine& line);
    bool setState(bool isUp, const QString& reason);  // whether it has changed
    void tellState(bool isUp, const QString& reason);
    void lose(Quality quality, const QString& reason);
    void judgeSilence(qint64 steadyMs);
    void end(const QString& reason);
    void workerEnded(const QString& unasked);

    QString m_name;
    ServedLink m_link;
    QString m_fxhost;
    Plant& m_plant;
    Environment m_environment;
    LinkValues m_values;
    LinkReport m_report;
    std::unique_ptr<Worker> m_worker;
    LineFeed m_lines, m_complaints;
    QString m_lastComplaint;
    QString m_whyEnded;  // by the gateway; empty: it was not
    StateLine m_state;   // that the worker told last
    bool m_hasTags = false;
    bool m_isSilent = false;
    bool m_isStopping = false;
    qint64 m_startedMs = 0;  // of the worker, 0: never; all of these are steady
    qint64 m_heardMs = 0;    // when it said something last
    qint64 m_tickMs = 0;
    qint64 m_restartMs = 0;
    GrowingPause m_pause{longestPauseMs};
};

}  // namespace fxgate
