// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The bytes of Sparkplug B payloads, and hostile ones. The literals come from the tables of the
// standard, or from another program that writes such payloads.

#include "tools/fxgate/bus/sparkplug_payload.h"

#include <gtest/gtest.h>

#include <limits>

using namespace fxgate;

namespace {

std::string hex(const QByteArray& bytes)
{
    return bytes.toHex(' ').toUpper().toStdString();
}

Metric metric(Datatype datatype, const QJsonValue& value)
{
    Metric metric;
    metric.datatype = datatype;
    metric.value = value;
    return metric;
}

// The bytes of a metric that has only a value.
std::string bytesOf(Datatype datatype, const QJsonValue& value)
{
    return hex(encoded({{}, {}, {metric(datatype, value)}}).mid(2));
}

// A payload of one metric with these bytes.
QByteArray payloadOf(const QByteArray& metricHex)
{
    const QByteArray bytes = QByteArray::fromHex(metricHex);
    return QByteArray(1, 0x12) + static_cast<char>(bytes.size()) + bytes;
}

QJsonValue valueOf(const QByteArray& metricHex)
{
    const auto payload = decoded(payloadOf(metricHex));
    return payload && payload->metrics.size() == 1 ? payload->metrics[0].value
                                                   : QJsonValue("not one metric");
}

TEST(SparkplugPayload, LeastDeath)
{
    Metric death = metric(Datatype::Int64, 0);
    death.name = "bdSeq";
    death.tellsDatatype = true;
    EXPECT_EQ(hex(encoded({{}, {}, {death}})), "12 0B 0A 05 62 64 53 65 71 20 04 58 00");
}

TEST(SparkplugPayload, Birth)
{
    Metric birth = metric(Datatype::Double, 12.5);
    birth.name = "flow";
    birth.alias = 1;
    birth.timeMs = 999;
    birth.tellsDatatype = true;
    birth.unit = "l/min";
    EXPECT_EQ(hex(encoded({1000, 0, {birth}})),
              "08 E8 07 12 2C 0A 04 66 6C 6F 77 10 01 18 E7 07 20 0A 4A 14 0A 07 65 6E 67 55 6E 69 "
              "74 12 09 08 0C 42 05 6C 2F 6D 69 6E 69 00 00 00 00 00 00 29 40 18 00");
}

TEST(SparkplugPayload, HistoryWithoutValueOfBadQuality)
{
    Metric history = metric(Datatype::Int64, {});
    history.alias = 5;
    history.timeMs = 999;
    history.quality = Quality::Bad;
    history.isHistorical = history.isRepeated = true;
    EXPECT_EQ(hex(encoded({1000, 7, {history}})),
              "08 E8 07 12 28 10 05 18 E7 07 28 01 38 01 4A 1D 0A 07 51 75 61 6C 69 74 79 0A 06 52 "
              "65 70 65 61 74 12 04 08 03 18 00 12 04 08 0B 38 01 18 07");
}

TEST(SparkplugPayload, QualityIsWrittenUnlessGood)
{
    Metric stale = metric(Datatype::Boolean, true);
    stale.quality = Quality::Stale;
    EXPECT_EQ(hex(encoded({{}, {}, {stale}})),
              "12 14 4A 10 0A 07 51 75 61 6C 69 74 79 12 05 08 03 18 F4 03 70 01");
    stale.quality = Quality::Good;
    EXPECT_EQ(hex(encoded({{}, {}, {stale}})), "12 02 70 01");
}

TEST(SparkplugPayload, ValuesByDatatype)
{
    EXPECT_EQ(bytesOf(Datatype::Int8, -23), "50 E9 FF FF FF 0F");
    EXPECT_EQ(bytesOf(Datatype::Int32, -1), "50 FF FF FF FF 0F");
    EXPECT_EQ(bytesOf(Datatype::UInt32, 4294967295.0), "50 FF FF FF FF 0F");
    EXPECT_EQ(bytesOf(Datatype::Int64, -2), "58 FE FF FF FF FF FF FF FF FF 01");
    EXPECT_EQ(bytesOf(Datatype::DateTime, 0), "58 00");
    EXPECT_EQ(bytesOf(Datatype::Float, 0.5), "65 00 00 00 3F");
    EXPECT_EQ(bytesOf(Datatype::Double, 0.5), "69 00 00 00 00 00 00 E0 3F");
    EXPECT_EQ(bytesOf(Datatype::Boolean, false), "70 00");
    EXPECT_EQ(bytesOf(Datatype::String, ""), "7A 00");
}

TEST(SparkplugPayload, ValueThatDoesNotFitIsNull)
{
    const std::string null = "38 01";
    EXPECT_EQ(bytesOf(Datatype::Int64, {}), null);
    EXPECT_EQ(bytesOf(Datatype::Int64, 1e300), null);
    EXPECT_EQ(bytesOf(Datatype::Int64, std::numeric_limits<double>::quiet_NaN()), null);
    EXPECT_EQ(bytesOf(Datatype::Boolean, 1), null);
    EXPECT_EQ(bytesOf(Datatype::String, 1), null);
    EXPECT_EQ(bytesOf(Datatype::Double, "1"), null);
    EXPECT_EQ(bytesOf(Datatype::Unknown, 1), null);
}

TEST(SparkplugPayload, ReadsNumbersWithAndWithoutDatatype)
{
    EXPECT_EQ(valueOf("20 01 50 FF 01"), -1);            // Int8 of 255, its sign not extended
    EXPECT_EQ(valueOf("20 01 50 E9 FF FF FF 0F"), -23);  // extended
    EXPECT_EQ(valueOf("20 02 50 FF FF 03"), -1);
    EXPECT_EQ(valueOf("20 03 50 FF FF FF FF 0F"), -1);
    EXPECT_EQ(valueOf("20 05 50 FF 01"), 255);
    EXPECT_EQ(valueOf("20 06 50 FF FF 03"), 65535);
    EXPECT_EQ(valueOf("20 07 50 FF FF FF FF 0F"), 4294967295.0);
    EXPECT_EQ(valueOf("20 07 58 FF FF FF FF 0F"), 4294967295.0);  // in the other field
    EXPECT_EQ(valueOf("20 04 58 FE FF FF FF FF FF FF FF FF 01"), -2);
    EXPECT_EQ(valueOf("20 08 58 05"), 5);
    EXPECT_EQ(valueOf("50 05"), 5);
    EXPECT_EQ(valueOf("58 FE FF FF FF FF FF FF FF FF 01"), -2);
    EXPECT_EQ(valueOf("65 00 00 00 3F"), 0.5);
    EXPECT_EQ(valueOf("20 0A 69 00 00 00 00 00 00 E0 3F"), 0.5);
    EXPECT_EQ(valueOf("20 0B 70 01"), true);
    EXPECT_EQ(valueOf("7A 02 41 37"), "A7");
}

TEST(SparkplugPayload, FieldOfAnotherDatatypeIsNoValue)
{
    for (const char* bytes :
         {"20 0B 50 01", "20 01 58 01", "20 0A 65 00 00 00 3F", "20 09 69 00 00 00 00 00 00 E0 3F",
          "20 04 70 01", "20 04 7A 01 41", "20 63 50 01", "38 01", "38 01 50 05", "20 04",
          "65 00 00 C0 7F", "69 00 00 00 00 00 00 F0 7F"})
        EXPECT_TRUE(valueOf(bytes).isUndefined()) << bytes;
}

TEST(SparkplugPayload, SkipsWhatItDoesNotKnow)
{
    // A data set, metadata, an unknown number; and around the metric a body and a uuid.
    EXPECT_EQ(valueOf("8A 01 02 08 01 42 02 08 01 A0 06 05 50 05"), 5);
    const auto payload = decoded(QByteArray::fromHex("22 01 41 2A 01 42 12 02 50 05 18 FF 01"));
    ASSERT_TRUE(payload);
    EXPECT_EQ(payload->metrics.size(), 1);
    EXPECT_EQ(payload->sequence, 255);
}

TEST(SparkplugPayload, CutAnywhereIsRefusedOrShorter)
{
    Metric one = metric(Datatype::String, "abc");
    one.name = "n";
    const QByteArray whole = encoded({1000, 7, {one, one}});
    for (int length = 0; length < whole.size(); ++length) {
        const auto payload = decoded(whole.left(length));
        EXPECT_TRUE(!payload || payload->metrics.size() <= 2) << length;
    }
    EXPECT_FALSE(decoded(whole.left(whole.size() - 3)));  // in the middle of a metric
    EXPECT_FALSE(decoded("not a payload"));
    EXPECT_FALSE(decoded(QByteArray(100, '\xff')));
    EXPECT_TRUE(decoded("")->metrics.isEmpty());
}

TEST(SparkplugPayload, DeepNestingEnds)
{
    // Groups, which may stand in each other.
    EXPECT_TRUE(decoded(QByteArray(10, '\x33') + QByteArray(10, '\x34')));
    EXPECT_FALSE(decoded(QByteArray(1000, '\x33') + QByteArray(1000, '\x34')));
}

}  // namespace
