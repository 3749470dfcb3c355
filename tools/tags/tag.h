// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A tag: a name for one value of a PLC. What its registers hold, shown in the format of its type,
// is the raw value; scaled it is what people mean:
//
//   value = raw * scale + offset          raw = (value - offset) / scale
//
// What is written is the nearest raw value, halves of it away from zero. A plain address is a
// tag without a name.

#pragma once

#include "tools/library/assignments.h"

namespace fxtools {

enum class TagAccess
{
    NotSaid,  // may be written
    ReadOnly,
    ReadWrite,
};

struct ValueSpan
{
    double lowest;
    double highest;
};

struct Tag
{
    QString name;
    AskedAddress asked;
    ValueStyle style;
    double scale = 1;
    double offset = 0;
    QString unit;
    std::optional<double> deadband;
    std::optional<int> periodMs;  // nothing: as fast as the line allows
    TagAccess access = TagAccess::NotSaid;
    std::optional<double> min, max;  // of what may be written
    std::optional<double> alarmLow, alarmHigh;
    QString link;  // the name of a configured PLC
    QString description;
    int line = 0;  // of the tag file

    bool isReadOnly() const { return access == TagAccess::ReadOnly; }
    bool isOneBit() const;
    bool isNumber() const;  // not a bit, a text or digits
    bool isScaled() const { return scale != 1 || offset != 0; }
    int decimals() const;  // that a value has at most; a float may have more

    QJsonValue rawOf(const QVector<quint32>& registers) const;
    QJsonValue valueOf(const QJsonValue& raw) const;
    QString alarmOf(const QJsonValue& value) const;  // "low", "high" or none

    // Whether every value, as it is shown, is written as the raw value that it was made of.
    bool isExact() const;
    bool isFinite() const;     // every value
    ValueSpan span() const;    // of all values that the registers hold
    bool hasWritable() const;  // whether any value is within the limits
};

// What to write for a value as people write it. Throws Failure if the tag may not be written, or
// the value is above or below its limits or what its registers hold.
Assignment assignmentOf(const Tag& tag, const QString& value, const RegisterCatalogue& catalogue);

// The shortest decimal number that differs from another by no more than this.
double shortestDecimal(double number, double tolerance);

}  // namespace fxtools
