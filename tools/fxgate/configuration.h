// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxgate.toml: the broker, the forms in which the tags go to it, and the links. Files are beside
// the configuration unless they have a whole path.
//
//   [gateway]                                   # all but name may be left out
//   name = "cabinet1"
//   store = "/var/lib/fxgate/store.db"          # values that wait for the broker
//   store-limit = "100M"
//   store-age = "7d"
//   history-per-second = 500                    # of these, once the broker is back
//   refresh = "1h"                              # when unchanged values are told again
//   audit = "/var/lib/fxgate/audit.jsonl"       # each write, and what became of it
//   metrics = "/var/lib/node-exporter/fxgate.prom"   # default: none
//   fxhost = "/usr/bin/fxhost"                  # default: beside fxgate
//
//   [broker]
//   url = "mqtts://broker.example:8883"         # mqtt:// to this machine only
//   protocol = "5"                              # or "3.1.1"
//   user = "cabinet1"
//   password-file = "password"                  # which others must not be able to read
//   ca-file = "ca.pem"                          # default: those of the system
//   cert-file = "cabinet1.pem"
//   key-file = "cabinet1.key"
//
//   [plain]                                     # this form, the other, or both
//   prefix = "fx"
//
//   [sparkplug]
//   group = "plant"
//   node = "cabinet1"                           # default: the gateway's name
//   primary-host = "scada"                      # default: none
//   datatypes-always = true                     # for readers that need them; default: in births
//
//   [writes]
//   allowed = true                              # default: false
//   oldest = "10s"                              # of a request
//   per-minute = 60                             # of each link
//
//   [link.press1]
//   link = "serial:/dev/ttyUSB0"
//   tags = "press1.csv"
//   writes = true                               # default: false
//   timeout = "0.5s"                            # default: adapts to the line
//   retries = 2

#pragma once

#include "tools/toml_reader.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <optional>

namespace fxgate {

struct GatewaySettings
{
    QString name;
    QString audit = QStringLiteral("/var/lib/fxgate/audit.jsonl");
    QString metrics;  // empty: none
    QString fxhost;   // empty: beside fxgate
    qint64 refreshMs = 3600000;
};

struct StoreSettings
{
    QString file = QStringLiteral("/var/lib/fxgate/store.db");
    qint64 limitBytes = 100 << 20;
    qint64 ageMs = 7 * qint64(86400000);
    int rowsPerSecond = 500;

    bool operator==(const StoreSettings& other) const;
};

struct BrokerSettings
{
    QString host;
    int port = 0;
    bool isEncrypted = true;
    bool isVersion5 = true;  // or 3.1.1
    QString user;
    QString passwordFile, caFile, certFile, keyFile;  // empty: none
    QByteArray filesDigest;                           // of what these hold

    bool operator==(const BrokerSettings& other) const;
};

struct PlainSettings
{
    QString prefix = QStringLiteral("fx");

    bool operator==(const PlainSettings& other) const { return prefix == other.prefix; }
};

struct SparkplugSettings
{
    QString group;
    QString node;
    QString primaryHost;              // empty: none
    bool hasDatatypesAlways = false;  // or in births only

    bool operator==(const SparkplugSettings& other) const;
};

struct WriteSettings
{
    bool isAllowed = false;
    qint64 oldestMs = 10000;
    int perMinute = 60;
};

struct ServedLink
{
    QString link;
    std::optional<int> words;  // in one frame, as the link says
    QString tags;
    QByteArray tagsDigest;  // of what the file holds
    bool isWritable = false;
    std::optional<int> timeoutMs, retries;

    bool operator==(const ServedLink& other) const;
};

struct Configuration
{
    GatewaySettings gateway;
    StoreSettings store;
    BrokerSettings broker;
    std::optional<PlainSettings> plain;
    std::optional<SparkplugSettings> sparkplug;
    WriteSettings writes;
    QMap<QString, ServedLink> links;
};

struct ConfigurationFile
{
    Configuration configuration;
    QVector<fxtools::Mistake> mistakes;  // of the whole file, by line
};

// Throws Failure only if the file cannot be read at all.
ConfigurationFile readConfigurationFile(const QString& path);

// Throws Failure with all mistakes of the file, a line each.
Configuration readConfiguration(const QString& path);

}  // namespace fxgate
