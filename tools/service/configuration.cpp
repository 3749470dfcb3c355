// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/service/configuration.h"

#include "tools/failure.h"
#include "tools/service/limits.h"
#include "tools/toml_reader.h"

#include <QFile>
#include <QStandardPaths>

#include <algorithm>

namespace fxtools {

namespace {

constexpr Range stationLimits{1, 255};
constexpr Range wordLimits{leastWordsPerFrame, mostWordsPerFrame};

std::optional<int> numberIn(TomlSection& section, const char* key, Range limits)
{
    if (!section.has(key))
        return std::nullopt;
    return section.number(key, limits, 0);
}

// 500, or a text with a unit: "0.5s".
std::optional<int> timeIn(TomlSection& section, const char* key, Range limits)
{
    if (!section.hasText(key))
        return numberIn(section, key, limits);
    return static_cast<int>(section.timeMs(key, limits, 0));
}

LinkSettings linkIn(TomlSection& section)
{
    section.missing("link", "link = \"serial:/dev/ttyUSB0?baud=9600\"");
    try {
        const QString text = section.text("link");
        return text.isEmpty() ? LinkSettings() : parseLink(text);
    } catch (const Failure& failure) {
        section.reject("link", failure.text());
        return {};
    }
}

ConfiguredPlc plcIn(const QString& name, TomlSection section, const QString& tags)
{
    section.allowOnly({"link", "timeout", "retries", "reconnect-s", "station", "words", "tags"});
    ConfiguredPlc plc{name, linkIn(section), {}, {}, {}};
    plc.timeoutMs = timeIn(section, "timeout", timeoutLimitsMs);
    plc.retries = numberIn(section, "retries", retryLimits);
    plc.reconnectS = numberIn(section, "reconnect-s", reconnectLimitsS);
    plc.tags = section.file("tags");
    if (plc.tags.isEmpty())
        plc.tags = tags;
    PlcSettings& ofLink = plcSettings(plc.link);
    ofLink.station = section.number("station", stationLimits, ofLink.station);
    if (const std::optional<int> words = numberIn(section, "words", wordLimits))
        ofLink.words = words;
    return plc;
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
    TomlReader reader(file);
    Configuration configuration{file, {}, {}};
    TomlSection root = reader.root();
    root.allowOnly({"default", "plc", "tags"});
    const QString tags = root.file("tags");
    TomlSection plcs = root.inner("plc");
    for (const QString& name : plcs.names())
        configuration.plcs.append(plcIn(name, plcs.inner(name), tags));
    configuration.defaultPlc = root.text("default");
    if (root.hasText("default") && !configuration.find(configuration.defaultPlc))
        root.reject("default", unknownName("PLC", configuration.defaultPlc, configuration.names()));
    requireNone(reader.mistakes(), file);
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
