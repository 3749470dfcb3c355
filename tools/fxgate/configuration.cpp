// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/configuration.h"

#include "tools/link/link_settings.h"
#include "tools/quoted.h"

#include <QCryptographicHash>
#include <QFile>
#include <QHostAddress>
#include <QRegularExpression>
#include <QUrl>

#include <tuple>

namespace fxgate {

namespace {

using fxtools::Mistake;
using fxtools::quoted;
using Section = fxtools::TomlSection;

constexpr int mostLinks = 1000;
constexpr qint64 dayMs = 86400000;

bool isName(const QString& text)  // that can stand in a topic
{
    static const QRegularExpression name(QStringLiteral("^[A-Za-z0-9_.-]{1,64}$"));
    return name.match(text).hasMatch();
}

QString nameMistake(const QString& text)
{
    return "invalid name " + quoted(text) + ": expected 1 to 64 letters, digits, _, . and -";
}

QString nameIn(Section& section, const char* key, const QString& unlessSaid = {})
{
    QString name = section.text(key, unlessSaid);
    if (section.has(key) && !name.isEmpty() && !isName(name))
        section.reject(key, nameMistake(name));
    return name;
}

// Of the file that this key names; a file that cannot be read is a mistake.
void addDigest(Section& section, const char* key, const QString& path, QCryptographicHash& digest)
{
    QFile file(path);
    if (path.isEmpty())
        return;
    if (!file.open(QIODevice::ReadOnly) || !digest.addData(&file))
        section.reject(key, QStringLiteral("%1: %2").arg(path, file.errorString()));
}

QString secretFile(Section& section, const char* key)
{
    QString path = section.file(key);
    const QFileDevice::Permissions others = QFileDevice::ReadOther | QFileDevice::WriteOther;
    if (!path.isEmpty() && (QFile::permissions(path) & others))
        section.reject(key, path + ": others can read or write it; run chmod o-rw on it");
    return path;
}

void readUrl(Section& section, BrokerSettings& broker)
{
    const QString text = section.text("url");
    if (text.isEmpty()) {
        section.missing("url", "url = \"mqtts://broker.example:8883\"");
        return;
    }
    const QUrl url(text, QUrl::StrictMode);
    broker.isEncrypted = url.scheme() == QLatin1String("mqtts");
    broker.host = url.host();
    broker.port = url.port(broker.isEncrypted ? 8883 : 1883);
    const bool isKnown = url.scheme() == QLatin1String("mqtt") || broker.isEncrypted;
    const bool isHostOnly =
        !broker.host.isEmpty() && url.path().isEmpty() && !url.hasQuery() && !url.hasFragment();
    const bool isHere =
        broker.host == QLatin1String("localhost") || QHostAddress(broker.host).isLoopback();
    QString mistake;
    if (!url.userInfo().isEmpty())
        mistake = "url must not contain a user or a password; use user and password-file";
    else if (!isKnown || !isHostOnly)
        mistake =
            "invalid url " + quoted(text) + ": expected mqtts://HOST:PORT or mqtt://localhost:PORT";
    else if (!broker.isEncrypted && !isHere)
        mistake = "mqtt:// is not encrypted, and only allowed for a broker on this machine; use "
                  "mqtts://";
    if (!mistake.isEmpty())
        section.reject("url", mistake);
}

BrokerSettings brokerIn(Section section)
{
    section.allowOnly(
        {"url", "protocol", "user", "password-file", "ca-file", "cert-file", "key-file"});
    BrokerSettings broker;
    readUrl(section, broker);
    broker.isVersion5 = section.oneOf("protocol", {"5", "3.1.1"}) == QLatin1String("5");
    broker.user = section.text("user");
    broker.passwordFile = secretFile(section, "password-file");
    broker.caFile = section.file("ca-file");
    broker.certFile = section.file("cert-file");
    broker.keyFile = secretFile(section, "key-file");
    if (!broker.passwordFile.isEmpty() && broker.user.isEmpty())
        section.reject("password-file", QStringLiteral("password-file needs a user"));
    if (broker.certFile.isEmpty() != broker.keyFile.isEmpty())
        section.reject(broker.keyFile.isEmpty() ? "cert-file" : "key-file",
                       QStringLiteral("cert-file and key-file belong together"));
    QCryptographicHash digest(QCryptographicHash::Sha256);
    addDigest(section, "password-file", broker.passwordFile, digest);
    addDigest(section, "ca-file", broker.caFile, digest);
    addDigest(section, "cert-file", broker.certFile, digest);
    addDigest(section, "key-file", broker.keyFile, digest);
    broker.filesDigest = digest.result();
    return broker;
}

void readGateway(Section section, Configuration& configuration)
{
    section.allowOnly({"name", "store", "store-limit", "store-age", "history-per-second", "refresh",
                       "audit", "metrics", "fxhost"});
    GatewaySettings& gateway = configuration.gateway;
    gateway.name = nameIn(section, "name");
    if (gateway.name.isEmpty())
        section.missing("name", "name = \"cabinet1\"");
    gateway.refreshMs = section.timeMs("refresh", {60000, 7 * dayMs}, gateway.refreshMs);
    gateway.audit = section.file("audit", gateway.audit);
    gateway.metrics = section.file("metrics");
    gateway.fxhost = section.file("fxhost");
    StoreSettings& store = configuration.store;
    store.file = section.file("store", store.file);
    store.limitBytes = section.bytes("store-limit", {1 << 20, qint64(1) << 40}, store.limitBytes);
    store.ageMs = section.timeMs("store-age", {60000, 366 * dayMs}, store.ageMs);
    store.rowsPerSecond = section.number("history-per-second", {1, 100000}, store.rowsPerSecond);
}

SparkplugSettings sparkplugIn(Section section, const QString& gateway)
{
    section.allowOnly({"group", "node", "primary-host", "datatypes-always"});
    SparkplugSettings settings{nameIn(section, "group"), nameIn(section, "node", gateway),
                               nameIn(section, "primary-host"), section.flag("datatypes-always")};
    if (settings.group.isEmpty())
        section.missing("group", "group = \"plant\"");
    if (settings.group == QLatin1String("STATE"))
        section.reject("group",
                       QStringLiteral("no group can be named STATE: host applications publish "
                                      "their state there"));
    return settings;
}

PlainSettings plainIn(Section section)
{
    section.allowOnly({"prefix"});
    PlainSettings plain;
    plain.prefix = section.text("prefix", plain.prefix);
    static const QRegularExpression levels(QStringLiteral("^[^+#$/]+(/[^+#/]+)*$"));
    if (!levels.match(plain.prefix).hasMatch())
        section.reject("prefix", "invalid prefix " + quoted(plain.prefix) +
                                     ": expected topic levels without + and #, such as fx or "
                                     "plant/fx");
    return plain;
}

WriteSettings writesIn(Section section)
{
    section.allowOnly({"allowed", "oldest", "per-minute"});
    WriteSettings writes;
    writes.isAllowed = section.flag("allowed");
    writes.oldestMs = section.timeMs("oldest", {1000, 3600000}, writes.oldestMs);
    writes.perMinute = section.number("per-minute", {1, 6000}, writes.perMinute);
    return writes;
}

// What two links cannot share; empty for a simulated PLC.
QString portOf(const fxtools::LinkSettings& link)
{
    if (const auto* const serial = std::get_if<fxtools::SerialSettings>(&link))
        return serial->path;
    if (const auto* const tcp = std::get_if<fxtools::TcpSettings>(&link))
        return tcp->host + ':' + QString::number(tcp->port);
    return {};
}

ServedLink linkIn(Section section, QString& port)
{
    section.allowOnly({"link", "tags", "writes", "timeout", "retries"});
    ServedLink served;
    served.link = section.text("link");
    if (served.link.isEmpty())
        section.missing("link", "link = \"serial:/dev/ttyUSB0?baud=9600\"");
    try {
        if (!served.link.isEmpty()) {
            fxtools::LinkSettings link = fxtools::parseLink(served.link);
            port = portOf(link);
            served.words = fxtools::plcSettings(link).words;
        }
    } catch (const fxtools::Failure& failure) {
        section.reject("link", failure.text());
    }
    served.tags = section.file("tags");
    if (served.tags.isEmpty())
        section.missing("tags", "tags = \"press1.csv\"");
    QCryptographicHash digest(QCryptographicHash::Sha256);
    addDigest(section, "tags", served.tags, digest);
    served.tagsDigest = digest.result();
    served.isWritable = section.flag("writes");
    if (section.has("timeout"))
        served.timeoutMs = static_cast<int>(section.timeMs("timeout", {10, 60000}, 0));
    if (section.has("retries"))
        served.retries = section.number("retries", {0, 100}, 0);
    return served;
}

void readLinks(Section section, Configuration& configuration)
{
    QMap<QString, QString> users;  // of each port
    QMap<QString, QString> names;  // in lower case, and as they are
    for (const QString& name : section.names()) {
        QString port;
        Section inner = section.inner(name);
        if (!isName(name))
            inner.rejectAll(nameMistake(name));
        if (name == QLatin1String("state"))
            inner.rejectAll(QStringLiteral("no link can be named state: the topic of the gateway's "
                                           "state has this name"));
        if (names.contains(name.toLower()))
            inner.rejectAll("its name and that of link " + names[name.toLower()] +
                            " differ only in case; some readers cannot tell them apart");
        names.insert(name.toLower(), name);
        configuration.links.insert(name, linkIn(inner, port));
        if (!port.isEmpty() && users.contains(port))
            inner.reject("link", "link " + users[port] + " already uses this port");
        else
            users.insert(port, name);
    }
    if (configuration.links.isEmpty() || configuration.links.size() > mostLinks)
        section.rejectAll(QStringLiteral("a gateway needs 1 to %1 links: [link.press1] and its "
                                         "keys below")
                              .arg(mostLinks));
}

}  // namespace

bool StoreSettings::operator==(const StoreSettings& other) const
{
    return std::tie(file, limitBytes, ageMs, rowsPerSecond) ==
           std::tie(other.file, other.limitBytes, other.ageMs, other.rowsPerSecond);
}

bool BrokerSettings::operator==(const BrokerSettings& other) const
{
    const auto fields = [](const BrokerSettings& of) {
        return std::tie(of.host, of.port, of.isEncrypted, of.isVersion5, of.user, of.passwordFile,
                        of.caFile, of.certFile, of.keyFile, of.filesDigest);
    };
    return fields(*this) == fields(other);
}

bool SparkplugSettings::operator==(const SparkplugSettings& other) const
{
    return std::tie(group, node, primaryHost, hasDatatypesAlways) ==
           std::tie(other.group, other.node, other.primaryHost, other.hasDatatypesAlways);
}

bool ServedLink::operator==(const ServedLink& other) const
{
    const auto fields = [](const ServedLink& of) {
        return std::tie(of.link, of.tags, of.tagsDigest, of.isWritable, of.timeoutMs, of.retries);
    };
    return fields(*this) == fields(other);
}

ConfigurationFile readConfigurationFile(const QString& path)
{
    fxtools::TomlReader reader(path);
    ConfigurationFile file;
    Configuration& configuration = file.configuration;
    if (reader.isToml()) {
        Section root = reader.root();
        root.allowOnly({"gateway", "broker", "plain", "sparkplug", "writes", "link"});
        readGateway(root.inner("gateway"), configuration);
        configuration.broker = brokerIn(root.inner("broker"));
        if (root.has("plain"))
            configuration.plain = plainIn(root.inner("plain"));
        if (root.has("sparkplug"))
            configuration.sparkplug =
                sparkplugIn(root.inner("sparkplug"), configuration.gateway.name);
        if (!configuration.plain && !configuration.sparkplug)
            root.rejectAll(QStringLiteral("no form for the bus: add [plain], [sparkplug] or both"));
        configuration.writes = writesIn(root.inner("writes"));
        readLinks(root.inner("link"), configuration);
    }
    file.mistakes = reader.mistakes();
    return file;
}

Configuration readConfiguration(const QString& path)
{
    const ConfigurationFile file = readConfigurationFile(path);
    fxtools::requireNone(file.mistakes, path);
    return file.configuration;
}

}  // namespace fxgate
