// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What is known of each tag: its newest good value, when that was read, and its quality now. A
// value ages by the clock alone, whether readings come or not: one for which nothing has come for
// long is stale, whatever its source says of it.

#pragma once

#include "tools/fxview/models/history.h"
#include "tools/fxview/plc/plc_source.h"

#include <memory>

namespace fxview {

struct TagState
{
    Quality quality = Quality::Bad;
    QString reason;
    QJsonValue raw, value;             // the newest good ones
    qint64 readMs = 0;                 // when they were read; 0: never
    std::unique_ptr<History> history;  // of numbers, from the first reading on
};

class ValueBook
{
public:
    explicit ValueBook(const QVector<fxtools::Tag>& tags);

    int size() const { return m_tags.size(); }
    const fxtools::Tag& tag(int index) const { return m_tags[index]; }
    const TagState& state(int index) const { return m_states[static_cast<size_t>(index)]; }

    void take(const Reading& reading);

    Quality qualityAt(int index, qint64 nowMs) const;
    QString reasonAt(int index, qint64 nowMs) const;  // why it is not good
    qint64 ageMs(int index, qint64 nowMs) const;      // -1: never read
    bool hasValue(int index, qint64 nowMs) const;     // good or stale
    QString alarm(int index, qint64 nowMs) const;     // "low", "high" or none

    qint64 historyBytes() const;

private:
    qint64 longestAgeMs(int index) const;
    void remember(TagState& state, const Reading& reading);

    QVector<fxtools::Tag> m_tags;
    std::vector<TagState> m_states;
    int m_bucketsPerLevel;
};

bool isReadOnly(const fxtools::Tag& tag);  // by its file or by its type

// How values are written everywhere: "71.5 °C", "on", "0x1F"; numbers always with as many decimals
// as scaling can give them.
QString valueText(const fxtools::Tag& tag, const QJsonValue& value);
QString valueWithUnit(const fxtools::Tag& tag, const QJsonValue& value);

// "0.4 s", "12 s", "3 min", "2 h", "5 d".
QString ageText(qint64 ageMs);

}  // namespace fxview
