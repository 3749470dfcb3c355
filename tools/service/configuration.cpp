// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/service/configuration.h"

#include "tools/quoted.h"
#include "tools/service/limits.h"
#include "tools/toml_text.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

// A wrong file gets its message in every build: toml++ 3.3 asserts that no table's name begins with
// ",".
#define TOML_ASSERT(expr) static_assert(true)
#include <toml++/toml.h>

#include <algorithm>

namespace fxtools {

namespace {

constexpr qint64 largestFile = 1 << 20;
constexpr Limits stationLimits{1, 255};
constexpr Limits wordLimits{leastWordsPerFrame, mostWordsPerFrame};

QString textOf(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

// The file, and how its mistakes are told.
class Reader
{
public:
    explicit Reader(const QString& file) : m_file(file) {}

    [[noreturn]] void reject(const toml::source_region& at, const QString& reason) const
    {
        throw Failure(ExitCode::File, QStringLiteral("%1, line %2, column %3: %4")
                                          .arg(m_file)
                                          .arg(at.begin.line)
                                          .arg(at.begin.column)
                                          .arg(reason));
    }

    void checkKeys(const toml::table& table, const QStringList& known) const
    {
        for (const auto& [key, node] : table) {
            const QString name = textOf(key.str());
            if (!known.contains(name))
                reject(key.source(), unknownName("key", name, known));
        }
    }

    QString text(const toml::node& node, const char* key) const
    {
        if (!node.is_string())
            reject(node.source(), QStringLiteral("%1 must be a text in quotes").arg(key));
        return textOf(node.as_string()->get());
    }

    // Beside the configuration, unless it has a whole path.
    std::optional<QString> file(const toml::table& table, const char* key) const
    {
        const toml::node* const node = table.get(key);
        if (!node)
            return std::nullopt;
        return QFileInfo(QFileInfo(m_file).dir(), text(*node, key)).filePath();
    }

    const toml::table& table(const toml::node& node, const QString& key) const
    {
        if (!node.is_table())
            reject(node.source(), key + " must be a table: [plc.press1] and its keys below");
        return *node.as_table();
    }

    std::optional<int> number(const toml::table& table, const char* key, Limits limits) const
    {
        const toml::node* const node = table.get(key);
        if (!node)
            return std::nullopt;
        const std::optional<int64_t> value = node->value_exact<int64_t>();
        if (!value || *value < limits.least || *value > limits.most) {
            reject(node->source(), QStringLiteral("%1 must be a whole number from %2 to %3")
                                       .arg(key)
                                       .arg(limits.least)
                                       .arg(limits.most));
        }
        return static_cast<int>(*value);
    }

    // 500, or a text with a unit: "0.5s".
    std::optional<int> time(const toml::table& table, const char* key, Limits limits) const
    {
        const toml::node* const node = table.get(key);
        if (!node || !node->is_string())
            return number(table, key, limits);
        const std::optional<qint64> timeMs = parseTimeMs(node->as_string()->get());
        if (!timeMs || *timeMs < limits.least || *timeMs > limits.most) {
            reject(node->source(), QStringLiteral("%1 must be a time from %2 ms to %3 s: 500 or "
                                                  "\"0.5s\"")
                                       .arg(key)
                                       .arg(limits.least)
                                       .arg(limits.most / 1000));
        }
        return static_cast<int>(*timeMs);
    }

private:
    QString m_file;
};

LinkSettings linkIn(const Reader& reader, const toml::table& table)
{
    const toml::node* const node = table.get("link");
    if (!node)
        reader.reject(table.source(), QStringLiteral("link is missing; for example link = "
                                                     "\"serial:/dev/ttyUSB0?baud=9600\""));
    const QString text = reader.text(*node, "link");
    try {
        return parseLink(text);
    } catch (const Failure& failure) {
        reader.reject(node->source(), failure.text());
    }
}

ConfiguredPlc plcIn(const Reader& reader, const QString& name, const toml::table& table,
                    const QString& tags)
{
    reader.checkKeys(table,
                     {"link", "timeout", "retries", "reconnect-s", "station", "words", "tags"});
    ConfiguredPlc plc{name, linkIn(reader, table), {}, {}, {}};
    plc.timeoutMs = reader.time(table, "timeout", timeoutLimitsMs);
    plc.retries = reader.number(table, "retries", retryLimits);
    plc.reconnectS = reader.number(table, "reconnect-s", reconnectLimitsS);
    plc.tags = reader.file(table, "tags").value_or(tags);
    PlcSettings& ofLink = plcSettings(plc.link);
    ofLink.station = reader.number(table, "station", stationLimits).value_or(ofLink.station);
    if (const std::optional<int> words = reader.number(table, "words", wordLimits))
        ofLink.words = words;
    return plc;
}

void requireAsciiOutsideTexts(const QByteArray& content, const Reader& reader)
{
    const std::optional<TomlPlace> letter = letterOutsideTexts(QString::fromUtf8(content));
    if (!letter)
        return;
    toml::source_region at;
    at.begin = {static_cast<toml::source_index>(letter->line),
                static_cast<toml::source_index>(letter->column)};
    reader.reject(at, quoted(letter->character) + " must stand in quotes");
}

toml::table parsed(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(ExitCode::File, path + ": " + file.errorString());
    const QByteArray content = file.read(largestFile + 1);
    if (content.size() > largestFile)
        throw Failure(ExitCode::File, path + ": larger than 1 MiB; not a configuration file");
    const Reader reader(path);
    requireAsciiOutsideTexts(content, reader);
    try {
        return toml::parse(
            std::string_view(content.constData(), static_cast<size_t>(content.size())));
    } catch (const toml::parse_error& error) {
        reader.reject(error.source(), textOf(error.description()));
    }
}

LinkSettings linkOfEnvironment(const QString& text)
{
    try {
        return parseLink(text);
    } catch (const Failure& failure) {
        throw Failure(failure.code(), "FX_LINK: " + failure.text());
    }
}

ConfiguredPlc unnamedPlc(const LinkSettings& link)
{
    ConfiguredPlc plc;
    plc.link = link;
    return plc;
}

}  // namespace

QStringList Configuration::names() const
{
    QStringList names;
    for (const ConfiguredPlc& plc : plcs)
        names += plc.name;
    return names;
}

const ConfiguredPlc* Configuration::find(const QString& name) const
{
    const auto found = std::find_if(plcs.begin(), plcs.end(),
                                    [&name](const ConfiguredPlc& plc) { return plc.name == name; });
    return found == plcs.end() ? nullptr : &*found;
}

Configuration readConfiguration(const QString& file)
{
    const Reader reader(file);
    const toml::table root = parsed(file);
    reader.checkKeys(root, {"default", "plc", "tags"});
    Configuration configuration{file, {}, {}};
    const QString tags = reader.file(root, "tags").value_or(QString());
    if (const toml::node* const plcs = root.get("plc")) {
        for (const auto& [key, node] : reader.table(*plcs, QStringLiteral("plc"))) {
            const QString name = textOf(key.str());
            configuration.plcs.append(plcIn(reader, name, reader.table(node, "plc." + name), tags));
        }
    }
    if (const toml::node* const chosen = root.get("default")) {
        configuration.defaultPlc = reader.text(*chosen, "default");
        if (!configuration.find(configuration.defaultPlc))
            reader.reject(chosen->source(),
                          unknownName("PLC", configuration.defaultPlc, configuration.names()));
    }
    return configuration;
}

QString usualConfigurationFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/fxhost/config.toml";
}

std::optional<ConfiguredPlc> meantPlc(const PlcWish& wish)
{
    const QString environment = qEnvironmentVariable("FX_LINK");
    if (!wish.link.isEmpty())
        return unnamedPlc(parseLink(wish.link));
    if (wish.plc.isEmpty() && !environment.isEmpty())
        return unnamedPlc(linkOfEnvironment(environment));
    const QString file = wish.file.isEmpty() ? usualConfigurationFile() : wish.file;
    if (wish.plc.isEmpty() && wish.file.isEmpty() && !QFile::exists(file))
        return std::nullopt;
    const Configuration configuration = readConfiguration(file);
    const QString name = wish.plc.isEmpty() ? configuration.defaultPlc : wish.plc;
    if (name.isEmpty())
        return std::nullopt;
    if (const ConfiguredPlc* const plc = configuration.find(name))
        return *plc;
    throw Failure(ExitCode::Usage, file + ": " + unknownName("PLC", name, configuration.names()));
}

}  // namespace fxtools
