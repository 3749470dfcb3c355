// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the gateway knows of its links: the tags of each, their newest values and whether the PLC
// answers; and what goes between the bus and a link. Times are UTC, in milliseconds since 1970.

#pragma once

#include <QHash>
#include <QJsonValue>
#include <QMap>
#include <QString>
#include <QVector>

#include <cmath>
#include <optional>

namespace fxgate {

enum class Quality
{
    Good,
    Stale,  // older than three of its periods
    Bad,    // refused or damaged, or the link is down
};

struct Sample
{
    QJsonValue value;  // null: never read
    Quality quality = Quality::Bad;
    QString reason;     // why it is not good
    qint64 timeMs = 0;  // when the reply came that it was taken from, or the quality changed
};

enum class ValueKind
{
    Bit,
    Integer,
    Real,
    Text,
};

inline bool isOfKind(ValueKind kind, const QJsonValue& value)
{
    switch (kind) {
    case ValueKind::Bit:
        return value.isBool();
    case ValueKind::Integer:
        return value.isDouble() && value.toDouble() == std::floor(value.toDouble());
    case ValueKind::Real:
        return value.isDouble();
    case ValueKind::Text:
        break;
    }
    return value.isString();
}

struct ServedTag
{
    QString name;
    QString address;
    ValueKind kind = ValueKind::Integer;  // of its scaled value
    QString unit, description;
    bool isWritable = false;
    std::optional<double> min, max;  // of what may be written
    double deadband = 0;
};

struct LinkView
{
    bool isUp = false;
    QString reason;  // why it is not up
    qint64 sinceMs = 0;
    QVector<ServedTag> tags;  // empty until its worker has told them
    QHash<QString, Sample> samples;
};

using Plant = QMap<QString, LinkView>;  // by the link's name

struct Change
{
    QString link;
    QString tag;
    Sample sample;
};

struct WriteRequest
{
    QString link;
    QString tag;
    QJsonValue value;
    QString id;                    // as the sender gave it; may be empty
    std::optional<qint64> sentMs;  // as the sender says
    bool isRetained = false;
    QString who;  // a user property or client id, where known
    QString replyTopic;
    QByteArray correlation;
};

struct WriteResult
{
    enum class Outcome
    {
        Done,     // acknowledged, and read back
        Refused,  // nothing was sent, or the PLC refused it
        Failed,   // sent, and the old value was read back
        Unknown,  // sent, and not read back
    };

    Outcome outcome = Outcome::Unknown;
    QJsonValue oldValue;  // null: not known
    QJsonValue newValue;  // read back; null: not known
    QString reason;       // empty if it is done
    qint64 timeMs = 0;
};

}  // namespace fxgate
