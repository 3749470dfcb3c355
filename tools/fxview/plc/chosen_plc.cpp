// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/plc/chosen_plc.h"

#include "tools/service/limits.h"

namespace fxview {

namespace {

const QString sampleTags = QStringLiteral(":/sample.csv");
constexpr int simulatedBaud = 38400;

// The first mistake, and how many more there are.
QString mistakesText(const QString& path, const fxtools::TagFile& file)
{
    for (const fxtools::TagRemark& remark : file.remarks) {
        if (remark.kind != fxtools::TagRemark::Kind::Error)
            continue;
        const QString first = path + ", " + remark.place() + ": " + remark.text;
        const int others = file.errors() - 1;
        return others == 0 ? first
                           : QStringLiteral("%1 (and %2 more in this file)").arg(first).arg(others);
    }
    return {};
}

}  // namespace

ChosenPlc choosePlc(const fxtools::PlcWish& wish, const QString& tagFile)
{
    const std::optional<fxtools::ConfiguredPlc> plc = fxtools::meantPlc(wish);
    ChosenPlc chosen;
    fxtools::ConnectionSettings& settings = chosen.settings;
    settings.link = plc ? plc->link : fxtools::SimulatedSettings{{}, simulatedBaud, {}};
    const fxtools::PlcSettings& asked = fxtools::plcSettings(settings.link);
    settings.station = asked.station;
    settings.session.wordsPerFrame = asked.words.value_or(settings.session.wordsPerFrame);
    settings.session.failLimit = fxtools::usualRetries + 1;
    settings.tags.file = tagFile;
    if (plc) {
        settings.tags.plc = plc->name;
        if (tagFile.isEmpty())
            settings.tags.file = plc->tags;
        settings.session.failLimit = plc->retries.value_or(fxtools::usualRetries) + 1;
        if (plc->timeoutMs)
            settings.loop.timeout = fxtools::TimeoutLimits::fixed(*plc->timeoutMs);
        settings.reconnectS = plc->reconnectS;
    }
    const bool isSimulated = std::holds_alternative<fxtools::SimulatedSettings>(settings.link);
    if (settings.tags.file.isEmpty() && isSimulated)
        settings.tags.file = sampleTags;
    if (settings.tags.file.isEmpty())
        throw fxtools::Failure(fxtools::ExitCode::Usage,
                               QStringLiteral("no tag file: start fxview with --tags FILE, or put "
                                              "tags = \"FILE\" into the configuration file"));
    chosen.name =
        settings.tags.plc.isEmpty() ? fxtools::linkText(settings.link) : settings.tags.plc;
    return chosen;
}

bool areSampleTags(const ChosenPlc& chosen)
{
    return chosen.settings.tags.file == sampleTags;
}

ChosenTags tagsOf(const fxtools::AddressServices& services)
{
    const QString& path = services.source.file;
    const fxtools::TagFile file = fxtools::readTagFile(path, services.catalogue);
    ChosenTags chosen;
    chosen.mistakes = mistakesText(path, file);
    for (const fxtools::Tag& tag : file.tags) {
        if (tag.link.isEmpty() || services.source.plc.isEmpty() || tag.link == services.source.plc)
            chosen.tags.append(tag);
    }
    if (!chosen.tags.isEmpty())
        return chosen;
    const QString& plc = services.source.plc;
    const QString none =
        plc.isEmpty() ? path + ": no tags in this file" : path + ": no tag of " + plc;
    throw fxtools::Failure(fxtools::ExitCode::File,
                           chosen.mistakes.isEmpty() ? none : chosen.mistakes);
}

}  // namespace fxview
