// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/service/tag_service.h"

#include "tools/exchange/blocks.h"

#include <QDateTime>

#include <algorithm>
#include <limits>

namespace fxtools {

namespace {

constexpr int forEverS = std::numeric_limits<int>::max();
constexpr int badUntilDown = 3;  // attempts in a row that the PLC did not answer
constexpr int mostWaitingJobs = 64;
constexpr qint64 tickEveryMs = 100;
constexpr qint64 retryEveryMs = 1000;  // a PLC that is down, also where nothing is due for long

WantedPeriods wantedOf(const QVector<Tag>& tags)
{
    WantedPeriods wanted;
    for (const Tag& tag : tags) {
        const RegisterRange& range = tag.asked.range;
        for (const RegisterRange& part : range.cut(range.together))
            wanted.add(part, tag.name, qint64(1000) * tag.periodMs.value_or(0));
    }
    return wanted;
}

}  // namespace

WriteAnswer refusal(const QString& reason)
{
    return {WriteAnswer::Outcome::Refused, reason, QJsonValue::Null, QJsonValue::Null};
}

// The acknowledge may be lost on the way: then the value that is read back counts.
WriteAnswer answerOf(const Tag& tag, const CheckedWrite& write)
{
    const auto held = [&tag](const QVector<quint32>& registers) {
        return registers.isEmpty() ? QJsonValue() : servedValue(tag, registers);
    };
    WriteAnswer answer = refusal({});
    answer.before = held(write.before);
    answer.after = held(write.after);
    if (!write.outcome) {
        answer.reason = "not sent: could not be read before: " + verdictText(*write.problem);
        return answer;
    }
    const WriteOutcome& outcome = *write.outcome;
    if (outcome.acknowledged.isEmpty() && outcome.uncertain.isEmpty()) {
        answer.reason = verdictText(*outcome.problem);
        return answer;
    }
    if (write.isThere()) {
        answer.outcome = WriteAnswer::Outcome::Done;
        if (!outcome.isGood())
            answer.reason = "read back, but not acknowledged: " + verdictText(*outcome.problem);
        return answer;
    }
    const bool isKnown = !write.after.isEmpty();
    answer.isAcknowledged = outcome.isGood();
    answer.outcome = isKnown ? WriteAnswer::Outcome::Failed : WriteAnswer::Outcome::Unknown;
    answer.reason = outcome.problem ? verdictText(*outcome.problem)
                    : isKnown ? QStringLiteral("acknowledged, but read back with another value")
                              : "could not be read back: " + verdictText(*write.problem);
    return answer;
}

TagService::TagService(const ConnectionSettings& settings, const QVector<Tag>& tags)
    : m_settings(settings), m_wanted(wantedOf(tags)), m_tags(tags, {})
{
    m_clock.start();
    m_settings.reconnectS = settings.reconnectS.value_or(forEverS);
    m_settings.loop.isInterrupted = [this] { return tick(); };
    m_settings.onLinkState = [this](const QString&, const QString& text) { noteLinkState(text); };
}

RoundEnd TagService::run()
{
    try {
        return poll();
    } catch (const Failure& failure) {
        m_polling = nullptr;
        m_connection = nullptr;
        refuseAll(failure.text());
        throw;
    }
}

RoundEnd TagService::poll()
{
    Connection connection(m_settings);
    m_connection = &connection;
    ExchangeLoop& loop = connection.loop();
    loop.onExchange = [this](const Exchange& exchange) { noteExchange(exchange); };
    loop.onLinkLost = [this, reconnect = loop.onLinkLost] { return !m_isBusy && reconnect(); };
    Polling polling(loop, connection.catalogue(), m_wanted, baudOf(m_settings.link), std::nullopt,
                    [](const QString&) {});
    m_polling = &polling;
    const auto noteCycle = [this] {
        m_cycleUs = now().us - std::exchange(m_cycleBeganUs, now().us);
    };
    const RoundEnd end = polling.run(0, noteCycle, [this](qint64 timeMs) { pause(timeMs); });
    refuseAll(QStringLiteral("not sent: the program is ending"));
    onPause();
    m_polling = nullptr;
    m_connection = nullptr;
    return end;
}

bool TagService::tick()
{
    const bool mustEnd = onTick();
    refuseJobs();
    return mustEnd;
}

// Between two exchanges nothing is in flight: the time for a job.
void TagService::pause(qint64 timeMs)
{
    QElapsedTimer waited;
    waited.start();
    m_mustLookAgain = false;
    const Poller& poller = m_polling->poller();
    m_tags.noteProblems(
        [&poller](const RegisterRange& range, int index) { return poller.problemOf(range, index); },
        now());
    m_tags.setPeriods(m_polling->load());
    onPause();
    const bool isDown = m_link == LinkState::Down;
    if (std::exchange(m_mustReadAll, isDown)) {
        m_polling->poller().readEverythingAgain();
        timeMs = isDown ? std::min(timeMs, retryEveryMs) : 0;
    }
    while (!tick()) {
        if (!m_jobs.isEmpty())
            runJob(m_jobs.dequeue().job);
        const qint64 leftMs = timeMs - waited.elapsed();
        if (leftMs <= 0 || m_mustLookAgain)
            break;
        wait(std::min(leftMs, tickEveryMs));
    }
}

void TagService::write(const QString& id, int tag, const Assignment& assignment, qint64 withinMs)
{
    perform({[this, id, tag, assignment](Connection&) {
                 onWritten(id, tag, writeNow(tag, assignment));
             },
             [this, id, tag](const QString& reason) { onWritten(id, tag, refusal(reason)); },
             withinMs});
}

void TagService::perform(const Job& job)
{
    if (m_jobs.size() >= mostWaitingJobs)
        job.refuse(QStringLiteral("not sent: too many writes are waiting"));
    else
        m_jobs.enqueue({job, now().us});
}

// What cannot be sent soon would be sent too late.
void TagService::refuseJobs()
{
    if (m_isBusy || m_jobs.isEmpty())
        return;
    if (m_link == LinkState::Down || !m_connection)
        refuseAll("not sent: " + (m_reason.isEmpty() ? "the link is not open yet" : m_reason));
    for (int index = 0; index < m_jobs.size();) {
        const qint64 withinMs = m_jobs[index].job.withinMs;
        if (now().us - m_jobs[index].sinceUs <= withinMs * 1000)
            ++index;
        else
            m_jobs.takeAt(index).job.refuse(
                QStringLiteral("not sent within %1 s").arg(withinMs / 1000));
    }
}

void TagService::refuseAll(const QString& reason)
{
    while (!m_jobs.isEmpty())
        m_jobs.dequeue().job.refuse(reason);
}

void TagService::runJob(const Job& job)
{
    m_isBusy = true;
    m_connection->loop().forgetEverything();  // a job that was cancelled may have left a frame
    job.run(*m_connection);
    m_isBusy = false;
    m_mustLookAgain = std::exchange(m_mustReadAll, false);
    if (m_mustLookAgain)
        m_polling->poller().readEverythingAgain();
    else
        m_polling->poller().planEverything();
}

WriteAnswer TagService::writeNow(int tag, const Assignment& assignment)
{
    const CheckedWrite write = writeAndReadBack(m_connection->loop(), assignment);
    if (!write.after.isEmpty())
        noteRead(assignment.asked.range, [&write](const RegisterRange&) { return write.after; });
    return answerOf(m_tags.tag(tag), write);
}

// While a job is under way the cache holds what is not in the PLC yet.
void TagService::noteExchange(const Exchange& exchange)
{
    if (onExchange)
        onExchange(exchange);
    if (exchange.verdict == ReplyVerdict::Interrupted)
        return;
    const bool isAnswered =
        exchange.answer == DriverAnswer::Accepted || exchange.verdict == ReplyVerdict::Refused;
    m_badInARow = isAnswered ? 0 : m_badInARow + 1;
    if (isAnswered)
        setLink(LinkState::Up, {});
    else if (m_badInARow >= badUntilDown || exchange.verdict == ReplyVerdict::LinkLost)
        setLink(LinkState::Down, verdictText(exchange.verdict));
    if (m_isBusy || exchange.frame.isRead == 0)
        return;
    const RegisterRange block = requestRange(m_connection->catalogue(), exchange.frame);
    if (exchange.hasFailed())
        m_tags.noteFailure(block);
    if (exchange.answer == DriverAnswer::Accepted)
        noteRead(block, [this](const RegisterRange& range) {
            return m_connection->session().values(range);
        });
}

void TagService::noteRead(const RegisterRange& block, const ServedTags::ValuesOf& valuesOf)
{
    const QVector<int> read = m_tags.noteRead(block, valuesOf, now());
    if (onRead)
        onRead(read);
}

void TagService::noteLinkState(const QString& text)
{
    if (!m_connection)
        setLink(LinkState::Opening, text.section(QStringLiteral("; retrying"), 0, 0));
    else if (!m_connection->link().isOpen())
        setLink(LinkState::Down, text);
}

void TagService::setLink(LinkState link, const QString& reason)
{
    if (link == m_link && (reason == m_reason || link == LinkState::Down))
        return;
    if (link == LinkState::Down) {
        m_tags.noteDown(reason, now());
        m_mustReadAll = true;
    }
    m_link = link;
    m_reason = reason;
    onLinkChanged();
}

Moment TagService::now() const
{
    return {m_clock.nsecsElapsed() / 1000, QDateTime::currentMSecsSinceEpoch()};
}

}  // namespace fxtools
