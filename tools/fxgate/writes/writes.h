// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Writes from the bus. Each is answered exactly once: refused by a rule, or sent to the worker of
// its link, one at a time, and answered with what the PLC made of it; no answer in time is
// "unknown". Each stands in the audit file: what is sent before it is sent, so that after a crash a
// line without an outcome tells of a write that may have been done. A request that comes again is
// not sent again: it gets the outcome of the first.

#pragma once

#include "tools/fxgate/configuration.h"
#include "tools/fxgate/moment.h"
#include "tools/fxgate/workers/worker_line.h"
#include "tools/fxgate/writes/audit_file.h"

#include <deque>
#include <functional>
#include <map>

namespace fxgate {

const char* outcomeName(WriteResult::Outcome outcome);  // "done"

class Writes
{
public:
    static constexpr qint64 answerTimeoutMs = 30000;   // a worker that hangs is ended long before
    static constexpr size_t mostWaiting = 32;          // of a link
    static constexpr int mostRefusalsPerMinute = 600;  // that have a line each in the audit file

    using Answer = std::function<void(const WriteResult&)>;
    using Send = std::function<void(const QString& link, const QByteArray& line)>;

    Writes(const Plant& plant, AuditFile& audit, const Send& send)
        : m_plant(plant), m_audit(audit), m_send(send)
    {}

    void configure(const WriteSettings& settings, const QMap<QString, ServedLink>& links);

    void request(const WriteRequest& request, const Answer& answer, Moment now);
    void written(const QString& link, const WrittenLine& line, Moment now);
    void workerLost(const QString& link, const QString& reason, Moment now);
    void tick(Moment now);
    void stop(Moment now);  // what was sent is still answered; no other is

    using Counts = std::map<WriteResult::Outcome, qint64>;
    const Counts& counts() const { return m_counts; }  // of answers

private:
    struct Pending
    {
        WriteRequest request;
        Answer answer;
        Moment received;
        QString number;  // its id towards the worker
        qint64 sentMs = 0;
    };

    struct Queue
    {
        std::deque<Pending> writes;  // the first one was sent if isSent
        bool isSent = false;
        std::deque<qint64> sentMs;  // of the last minute, steady
    };

    // A request that was not refused, for as long as it may come again.
    struct Known
    {
        std::optional<WriteResult> result;
        std::vector<Answer> alsoAsked;
        qint64 answeredMs = 0;  // steady
    };

    bool isKnown(const WriteRequest& request, const Answer& answer, Moment now);
    QString refusal(const WriteRequest& request, Moment now) const;
    QString ageRefusal(const WriteRequest& request, Moment now) const;
    bool isOverRate(Queue& queue, Moment now) const;
    void sendNext(const QString& link, Moment now);
    void finishFirst(Queue& queue, WriteResult result, Moment now);
    void answer(const Pending& write, const WriteResult& result, Moment now);
    void refuse(const Pending& write, const QString& reason, Moment now);

    const Plant& m_plant;
    AuditFile& m_audit;
    Send m_send;
    WriteSettings m_settings;
    QMap<QString, ServedLink> m_links;
    std::map<QString, Queue> m_queues;    // by link
    std::map<QByteArray, Known> m_known;  // by what makes them the same request
    Counts m_counts;
    quint64 m_sent = 0;
    bool m_isStopping = false;
    qint64 m_minuteBeganMs = 0;
    int m_refusals = 0;  // in this minute
};

}  // namespace fxgate
