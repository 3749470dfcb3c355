// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The tags that are served: what each holds, how good that is, and what has been told of it. There
// is no queue: who is told late hears the newest.
//
// A value is taken from the reply that brought it whole, so it is never half old and half new; only
// a text that is longer than a frame comes in parts. Times are given; there is no clock in here.

#pragma once

#include "tools/exchange/reply_verdict.h"
#include "tools/tags/line_load.h"
#include "tools/tags/tag.h"

#include <functional>

namespace fxtools {

struct Moment
{
    qint64 us = 0;   // since any beginning
    qint64 utc = 0;  // in milliseconds since 1970
};

class ServedTags
{
public:
    static constexpr qint64 leastAgeUs = 1000000;  // before a value can be too old
    static constexpr int periodsUntilStale = 3;
    static constexpr int mostBytesInEvent = 32768;

    using ValuesOf = std::function<QVector<quint32>(const RegisterRange&)>;
    using ProblemOf = std::function<std::optional<ReplyVerdict>(const RegisterRange&, int index)>;

    ServedTags(const QVector<Tag>& tags, int wordsPerFrame, const Moment& start);

    const Tag* find(const QString& name) const;
    void setPeriods(const LineLoad& load);  // that the line can keep

    // A block was read, or not. What is wrong with it is asked for later, when it has been cut as
    // far as needed.
    void noteRead(const RegisterRange& block, const ValuesOf& valuesOf, const Moment& now);
    void noteFailure(const RegisterRange& block);
    void noteProblems(const ProblemOf& problemOf, const Moment& now);

    // Nothing that was read before counts any more.
    void noteDown(const QString& reason, const Moment& now);

    void tellAgain();

    // A line with what has changed since it was told, or with as much of it as one line takes;
    // empty if nothing has. What it holds counts as told.
    QByteArray nextEvent(const Moment& now);

private:
    enum class Quality
    {
        Unknown,  // for the first second
        Good,
        Stale,
        Bad,
    };

    struct State
    {
        Quality quality = Quality::Unknown;
        QString reason;  // unless it is good
        QVector<quint32> registers;

        bool operator==(const State& other) const
        {
            return quality == other.quality && reason == other.reason &&
                   registers == other.registers;
        }
    };

    struct Served
    {
        Tag tag;
        bool isInParts;  // longer than a frame
        qint64 periodUs;
        QVector<quint32> registers;
        QVector<qint64> readUs;  // for each register, or once for all; before 0: never
        qint64 readUtc = 0;
        QString problem = {};
        qint64 problemUs = -1;
        bool isTouched = false;  // by an exchange that failed
        bool isValid = true;     // the registers hold what their type says
        State told = {};

        qint64 oldestUs() const;
        void take(const QVector<quint32>& values);
    };

    State stateOf(const Served& served, const Moment& now) const;

    QVector<Served> m_tags;
    qint64 m_startUs;
};

// As it is told: bits are true or false.
QJsonValue servedValue(const Tag& tag, const QVector<quint32>& registers);

}  // namespace fxtools
