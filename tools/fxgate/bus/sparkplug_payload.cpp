// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/bus/sparkplug_payload.h"

#include <sparkplug.pb.h>

#include <cmath>

namespace fxgate {

namespace {

using WireMetric = wire::Payload::Metric;

constexpr double twoTo63 = 9223372036854775808.0;

quint32 qualityCode(Quality quality)
{
    switch (quality) {
    case Quality::Good:
        return 192;
    case Quality::Stale:
        return 500;
    case Quality::Bad:
        break;
    }
    return 0;
}

wire::Payload::PropertyValue& addProperty(WireMetric& metric, const char* key, Datatype type)
{
    wire::Payload::PropertySet& properties = *metric.mutable_properties();
    properties.add_keys(key);
    wire::Payload::PropertyValue& value = *properties.add_values();
    value.set_type(static_cast<quint32>(type));
    return value;
}

// Negative numbers are two's complement, of 32 or 64 bits.
bool setInteger(WireMetric& metric, double number, bool isLong)
{
    if (!(number >= -twoTo63 && number < twoTo63))
        return false;
    const qint64 integer = static_cast<qint64>(number);
    if (isLong)
        metric.set_long_value(static_cast<std::uint64_t>(integer));
    else
        metric.set_int_value(static_cast<quint32>(integer));
    return true;
}

bool setValue(WireMetric& metric, Datatype datatype, const QJsonValue& value)
{
    switch (datatype) {
    case Datatype::Int8:
    case Datatype::Int16:
    case Datatype::Int32:
    case Datatype::UInt8:
    case Datatype::UInt16:
    case Datatype::UInt32:
        return value.isDouble() && setInteger(metric, value.toDouble(), false);
    case Datatype::Int64:
    case Datatype::UInt64:
    case Datatype::DateTime:
        return value.isDouble() && setInteger(metric, value.toDouble(), true);
    case Datatype::Float:
        metric.set_float_value(static_cast<float>(value.toDouble()));
        return value.isDouble();
    case Datatype::Double:
        metric.set_double_value(value.toDouble());
        return value.isDouble();
    case Datatype::Boolean:
        metric.set_boolean_value(value.toBool());
        return value.isBool();
    case Datatype::String:
    case Datatype::Text:
        metric.set_string_value(value.toString().toStdString());
        return value.isString();
    case Datatype::Unknown:
        break;
    }
    return false;
}

void write(WireMetric& metric, const Metric& record)
{
    if (!record.name.isEmpty())
        metric.set_name(record.name.toStdString());
    if (record.alias)
        metric.set_alias(*record.alias);
    if (record.timeMs)
        metric.set_timestamp(static_cast<std::uint64_t>(*record.timeMs));
    if (record.tellsDatatype)
        metric.set_datatype(static_cast<quint32>(record.datatype));
    if (record.isHistorical)
        metric.set_is_historical(true);
    if (!setValue(metric, record.datatype, record.value)) {
        metric.clear_value();
        metric.set_is_null(true);
    }
    if (record.quality != Quality::Good)
        addProperty(metric, "Quality", Datatype::Int32).set_int_value(qualityCode(record.quality));
    if (record.isRepeated)
        addProperty(metric, "Repeat", Datatype::Boolean).set_boolean_value(true);
    if (!record.unit.isEmpty())
        addProperty(metric, "engUnit", Datatype::String)
            .set_string_value(record.unit.toStdString());
}

// A negative number of fewer bits may come with or without its sign extended.
QJsonValue signedOf(quint32 field, int bits)
{
    const quint32 shifted = field << (32 - bits);
    return static_cast<double>(static_cast<qint32>(shifted) >> (32 - bits));
}

QJsonValue finite(double number)
{
    return std::isfinite(number) ? QJsonValue(number) : QJsonValue(QJsonValue::Undefined);
}

QJsonValue integerOf(quint32 field, Datatype datatype)
{
    switch (datatype) {
    case Datatype::Int8:
        return signedOf(field, 8);
    case Datatype::Int16:
        return signedOf(field, 16);
    case Datatype::Int32:
        return signedOf(field, 32);
    case Datatype::UInt8:
        return static_cast<double>(field & 0xFF);
    case Datatype::UInt16:
        return static_cast<double>(field & 0xFFFF);
    case Datatype::UInt32:
    case Datatype::Unknown:
        return static_cast<double>(field);
    default:
        return QJsonValue::Undefined;
    }
}

QJsonValue longOf(quint64 field, Datatype datatype)
{
    switch (datatype) {
    case Datatype::Int64:
    case Datatype::Unknown:
        return static_cast<double>(static_cast<qint64>(field));
    case Datatype::UInt64:
    case Datatype::UInt32:  // as some write it
    case Datatype::DateTime:
        return static_cast<double>(field);
    default:
        return QJsonValue::Undefined;
    }
}

// The value of a received metric, whose datatype may be missing.
QJsonValue valueOf(const WireMetric& metric, Datatype datatype)
{
    const auto isOr = [datatype](Datatype one, Datatype other) {
        return datatype == Datatype::Unknown || datatype == one || datatype == other;
    };
    switch (metric.is_null() ? WireMetric::VALUE_NOT_SET : metric.value_case()) {
    case WireMetric::kIntValue:
        return integerOf(metric.int_value(), datatype);
    case WireMetric::kLongValue:
        return longOf(metric.long_value(), datatype);
    case WireMetric::kFloatValue:
        if (isOr(Datatype::Float, Datatype::Float))
            return finite(static_cast<double>(metric.float_value()));
        break;
    case WireMetric::kDoubleValue:
        if (isOr(Datatype::Double, Datatype::Double))
            return finite(metric.double_value());
        break;
    case WireMetric::kBooleanValue:
        if (isOr(Datatype::Boolean, Datatype::Boolean))
            return metric.boolean_value();
        break;
    case WireMetric::kStringValue:
        if (isOr(Datatype::String, Datatype::Text))
            return QString::fromStdString(metric.string_value());
        break;
    case WireMetric::VALUE_NOT_SET:
        break;
    }
    return QJsonValue::Undefined;
}

Metric recordOf(const WireMetric& metric)
{
    Metric record;
    record.name = QString::fromStdString(metric.name());
    if (metric.has_alias())
        record.alias = metric.alias();
    if (metric.has_timestamp())
        record.timeMs = static_cast<qint64>(metric.timestamp());
    record.tellsDatatype = metric.has_datatype();
    record.datatype = static_cast<Datatype>(metric.datatype());
    record.isHistorical = metric.is_historical();
    record.value = valueOf(metric, record.datatype);
    return record;
}

}  // namespace

QByteArray encoded(const SparkplugPayload& payload)
{
    wire::Payload bytes;
    if (payload.timeMs)
        bytes.set_timestamp(static_cast<std::uint64_t>(*payload.timeMs));
    if (payload.sequence)
        bytes.set_seq(static_cast<std::uint64_t>(*payload.sequence));
    for (const Metric& metric : payload.metrics)
        write(*bytes.add_metrics(), metric);
    return QByteArray::fromStdString(bytes.SerializeAsString());
}

std::optional<SparkplugPayload> decoded(const QByteArray& bytes)
{
    wire::Payload read;
    if (!read.ParseFromArray(bytes.constData(), bytes.size()))
        return std::nullopt;
    SparkplugPayload payload;
    if (read.has_timestamp())
        payload.timeMs = static_cast<qint64>(read.timestamp());
    if (read.has_seq())
        payload.sequence = static_cast<int>(read.seq());
    for (const WireMetric& metric : read.metrics())
        payload.metrics.append(recordOf(metric));
    return payload;
}

}  // namespace fxgate
