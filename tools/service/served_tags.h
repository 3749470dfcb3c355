// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The tags of one PLC: what each holds, how good that is, and what has been told of it. There is no
// queue: who is told late hears the newest.
//
// A value is taken from the reply that brought it whole, so it is never half old and half new.
// Times are given; there is no clock in here.

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

enum class Quality
{
    Unknown,  // for the first second
    Good,
    Stale,  // read, but too long ago
    Bad,
};

struct TagState
{
    Quality quality = Quality::Unknown;
    QString reason;              // unless it is good
    QVector<quint32> registers;  // if it is good
    qint64 readUtc = 0;          // when; 0: never

    bool isSame(const TagState& other) const
    {
        return quality == other.quality && reason == other.reason && registers == other.registers;
    }
};

class ServedTags
{
public:
    static constexpr qint64 leastAgeUs = 1000000;  // before a value can be too old
    static constexpr int periodsUntilStale = 3;

    using ValuesOf = std::function<QVector<quint32>(const RegisterRange&)>;
    using ProblemOf = std::function<std::optional<ReplyVerdict>(const RegisterRange&, int index)>;

    ServedTags(const QVector<Tag>& tags, const Moment& start);

    int find(const QString& name) const;    // -1: there is none
    void setPeriods(const LineLoad& load);  // that the line can keep

    // A block was read, or not. What is wrong with it is asked for later, when it has been cut as
    // far as needed. Returns the tags that it holds.
    QVector<int> noteRead(const RegisterRange& block, const ValuesOf& valuesOf, const Moment& now);
    void noteFailure(const RegisterRange& block);
    void noteProblems(const ProblemOf& problemOf, const Moment& now);

    // Nothing that was read before counts any more.
    void noteDown(const QString& reason, const Moment& now);

    int size() const { return m_tags.size(); }
    const Tag& tag(int index) const { return m_tags[index].tag; }
    TagState stateOf(int index, const Moment& now) const;

    // What has changed since it was told, until that is told.
    struct Change
    {
        int index;
        TagState state;
    };
    QVector<Change> changes(const Moment& now) const;
    void noteTold(const Change& change) { m_tags[change.index].told = change.state; }
    void tellAgain();

private:
    struct Served
    {
        Tag tag;
        qint64 periodUs;
        QVector<quint32> registers;
        qint64 readUs = -1;  // -1: never
        qint64 readUtc = 0;
        QString problem = {};
        qint64 problemUs = -1;
        bool isTouched = false;  // by an exchange that failed
        bool isValid = true;     // the registers hold what their type says
        TagState told = {};

        void take(const QVector<quint32>& values);
    };

    QVector<Served> m_tags;
    qint64 m_startUs;
};

// Scaled, as it is told: bits are true or false.
QJsonValue servedValue(const Tag& tag, const QVector<quint32>& registers);

}  // namespace fxtools
