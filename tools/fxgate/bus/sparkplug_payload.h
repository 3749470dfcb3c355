// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Sparkplug B payloads as records, and their bytes. A value is a JSON value; its datatype decides
// the field that it is written to and how the field of a received one is read.

#pragma once

#include "tools/fxgate/plant.h"

#include <QByteArray>

namespace fxgate {

// The numbers are the standard's.
enum class Datatype : quint32
{
    Unknown = 0,
    Int8 = 1,
    Int16 = 2,
    Int32 = 3,
    Int64 = 4,
    UInt8 = 5,
    UInt16 = 6,
    UInt32 = 7,
    UInt64 = 8,
    Float = 9,
    Double = 10,
    Boolean = 11,
    String = 12,
    DateTime = 13,
    Text = 14,
};

struct Metric
{
    QString name;  // empty: it goes by its alias
    std::optional<quint64> alias;
    Datatype datatype = Datatype::Unknown;
    bool tellsDatatype = false;  // as births do
    std::optional<qint64> timeMs;
    QJsonValue value;  // null: written as null; undefined: none that could be read
    Quality quality = Quality::Good;
    bool isHistorical = false;
    bool isRepeated = false;  // it may have arrived before
    QString unit;
};

struct SparkplugPayload
{
    std::optional<qint64> timeMs;
    std::optional<int> sequence;
    QVector<Metric> metrics;
};

QByteArray encoded(const SparkplugPayload& payload);

// Nothing if it is no payload. Reads what a command needs: no properties, only the basic datatypes.
std::optional<SparkplugPayload> decoded(const QByteArray& bytes);

}  // namespace fxgate
