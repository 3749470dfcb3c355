// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/workers/link_supervisor.h"

#include "tools/failure.h"
#include "tools/quoted.h"

namespace fxgate {

namespace {

constexpr qint64 longestTickMs = 1000;  // after longer the gateway itself was stopped
constexpr int longestComplaint = 400;   // with the path of a file

const QString silence = QStringLiteral("the worker does not answer");

QStringList argumentsOf(const QString& name, const ServedLink& link)
{
    QStringList arguments{"serve", "--link", link.link, "--tags", link.tags, "--tags-of", name};
    if (link.timeoutMs)
        arguments += {"--timeout", QString::number(*link.timeoutMs)};
    if (link.retries)
        arguments += {"--retries", QString::number(*link.retries)};
    return arguments;
}

}  // namespace

LinkSupervisor::LinkSupervisor(const QString& name, const ServedLink& link, const QString& fxhost,
                               Plant& plant, const Environment& environment)
    : m_name(name), m_link(link), m_fxhost(fxhost), m_plant(plant), m_environment(environment),
      m_values(name, plant)
{
    LinkView view;
    view.reason = QStringLiteral("the link is starting");
    view.sinceMs = environment.now().utcMs;
    plant[name] = view;
}

void LinkSupervisor::start(qint64 afterMs)
{
    m_tickMs = m_environment.now().steadyMs;
    m_restartMs = m_tickMs + afterMs;
    if (afterMs == 0)
        startWorker();
}

void LinkSupervisor::startWorker()
{
    m_startedMs = m_heardMs = m_environment.now().steadyMs;
    m_lines = LineFeed();
    m_complaints = LineFeed();
    m_lastComplaint.clear();
    m_whyEnded.clear();
    m_state = StateLine();
    m_hasTags = false;
    m_isSilent = false;
    m_worker = m_environment.makeWorker(m_fxhost, argumentsOf(m_name, m_link));
    m_worker->onOutput = [this](const QByteArray& bytes) { readLines(bytes); };
    m_worker->onComplaint = [this](const QByteArray& bytes) { readComplaints(bytes); };
    m_worker->onEnded = [this](const QString& how) { workerEnded(how); };
    m_worker->start();
    m_report.workerPid = m_worker ? m_worker->pid() : 0;
}

void LinkSupervisor::readLines(const QByteArray& bytes)
{
    if (!m_whyEnded.isEmpty())
        return;
    const qint64 steadyMs = m_environment.now().steadyMs;
    try {
        for (const QByteArray& line : m_lines.take(bytes, steadyMs)) {
            take(parseWorkerLine(line));
            m_heardMs = steadyMs;
        }
    } catch (const fxtools::Failure& failure) {
        return end("the worker sent a wrong line: " + failure.text());
    }
    if (!m_lines.mistake().isEmpty())
        end("the worker sent too much: " + m_lines.mistake());
}

void LinkSupervisor::readComplaints(const QByteArray& bytes)
{
    if (!m_whyEnded.isEmpty())
        return;
    for (const QByteArray& line : m_complaints.take(bytes, m_environment.now().steadyMs)) {
        if (!line.isEmpty())
            m_lastComplaint = QString::fromUtf8(line);
    }
    if (!m_complaints.mistake().isEmpty())
        end("the worker sent too much: " + m_complaints.mistake());
}

void LinkSupervisor::take(const WorkerLine& line)
{
    const auto* const hello = std::get_if<HelloLine>(&line);
    if (m_hasTags == (hello != nullptr))
        refuseLine(hello ? QStringLiteral("a second hello") : QStringLiteral("no hello"));
    if (m_isSilent) {
        m_isSilent = false;
        tellState(m_state.isUp, m_state.reason);
        tellAllAgain();
    }
    if (hello) {
        m_hasTags = true;
        m_values.begin(hello->tags);
        onLinkChanged();
    } else if (const auto* const values = std::get_if<ValuesLine>(&line)) {
        const QVector<Change> changes = m_values.take(*values);
        if (!changes.isEmpty())
            onChanges(changes);
    } else if (const auto* const state = std::get_if<StateLine>(&line)) {
        m_state = *state;
        tellState(state->isUp, state->reason);
    } else if (const auto* const alive = std::get_if<AliveLine>(&line)) {
        m_report.line = *alive;
    } else if (const auto* const written = std::get_if<WrittenLine>(&line)) {
        onWritten(*written);
    } else if (const auto* const mistake = std::get_if<MistakeLine>(&line)) {
        onLog("the worker rejected an order: " + fxtools::quoted(mistake->text, longestComplaint));
    }
}

bool LinkSupervisor::setState(bool isUp, const QString& reason)
{
    LinkView& view = m_plant[m_name];
    if (view.isUp == isUp && view.reason == reason)
        return false;
    view.isUp = isUp;
    view.reason = reason;
    view.sinceMs = m_environment.now().utcMs;
    if (!isUp)
        m_report.lastError = reason;
    onLinkChanged();
    return true;
}

void LinkSupervisor::tellState(bool isUp, const QString& reason)
{
    if (setState(isUp, reason))
        onLog(isUp ? QStringLiteral("up") : "down: " + reason);
}

void LinkSupervisor::lose(Quality quality, const QString& reason)
{
    const QVector<Change> changes = m_values.lose(quality, reason, m_environment.now().utcMs);
    if (!changes.isEmpty())
        onChanges(changes);
    setState(false, reason);
}

void LinkSupervisor::judgeSilence(qint64 steadyMs)
{
    const qint64 silentForMs = steadyMs - m_heardMs;
    if (!m_hasTags && silentForMs > startingMs)
        end("the worker was silent for " + QString::number(startingMs / 1000) + " s");
    else if (m_hasTags && silentForMs > hangsMs)
        end("the worker was silent for " + QString::number(hangsMs / 1000) + " s");
    else if (m_hasTags && silentForMs > silentMs && !m_isSilent) {
        m_isSilent = true;
        lose(Quality::Stale, silence);
        onLog("down: " + silence);
    }
}

void LinkSupervisor::tick()
{
    const qint64 steadyMs = m_environment.now().steadyMs;
    // What the worker said while the gateway was stopped is still to be read.
    if (steadyMs - m_tickMs > longestTickMs)
        m_heardMs = std::min(steadyMs, m_heardMs + steadyMs - m_tickMs);
    m_tickMs = steadyMs;
    if (m_worker && m_whyEnded.isEmpty())
        judgeSilence(steadyMs);
    else if (!m_worker && !m_isStopping && steadyMs >= m_restartMs) {
        m_report.restarts += m_startedMs == 0 ? 0 : 1;
        startWorker();
    }
}

void LinkSupervisor::send(const QByteArray& line)
{
    if (m_worker)
        m_worker->write(line);
}

void LinkSupervisor::tellAllAgain()
{
    m_values.tellAllAgain();
    send(refreshLine());
}

void LinkSupervisor::stop()
{
    m_isStopping = true;
    send(stopLine());
    if (m_worker)
        m_worker->endInput();
}

void LinkSupervisor::endBy(const QDeadlineTimer& deadline)
{
    if (m_worker && !m_worker->waitUntilEnded(static_cast<int>(deadline.remainingTime())) &&
        m_worker) {
        m_worker->kill();
        m_worker->waitUntilEnded(Worker::killedMs);
    }
}

void LinkSupervisor::end(const QString& reason)
{
    m_whyEnded = reason;
    m_worker->kill();
}

void LinkSupervisor::workerEnded(const QString& unasked)
{
    m_worker.release()->deleteLater();
    m_report.workerPid = 0;
    const QString complaint = m_lastComplaint.isEmpty()
                                  ? QString()
                                  : ": " + fxtools::quoted(m_lastComplaint, longestComplaint);
    const QString how = m_whyEnded.isEmpty() ? unasked + complaint : m_whyEnded;
    const QString reason = m_isStopping ? QStringLiteral("the gateway stopped the link") : how;
    onWorkerLost(reason);
    lose(Quality::Bad, reason);
    if (m_isStopping)
        return;
    const qint64 steadyMs = m_environment.now().steadyMs;
    const qint64 pauseMs = m_pause.next(steadyMs - m_startedMs, m_environment.chance());
    m_restartMs = steadyMs + pauseMs;
    onLog(how + QStringLiteral("; restarting it in %1 s")
                    .arg(static_cast<double>(pauseMs) / 1000, 0, 'f', 1));
}

}  // namespace fxgate
