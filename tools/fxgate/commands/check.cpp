// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/commands/commands.h"
#include "tools/fxgate/configuration.h"
#include "tools/library/driver_library.h"
#include "tools/link/link_settings.h"
#include "tools/table.h"
#include "tools/tags/tag_check.h"

#include <QFile>
#include <QMap>

#include <algorithm>
#include <iostream>

namespace fxgate {

namespace {

using fxtools::counted;
using fxtools::TagRemark;

struct Findings
{
    QStringList lines;
    int errors = 0;
    int tags = 0;
};

using Links = QMap<QString, ServedLink>;  // by name

// What each link reads whole depends on its words=.
QVector<TagRemark> checkReplies(const QVector<fxtools::Tag>& tags, const Links& links)
{
    QMap<int, QVector<TagRemark>> found;  // by line
    for (auto link = links.begin(); link != links.end(); ++link) {
        QVector<fxtools::Tag> served;
        std::copy_if(tags.begin(), tags.end(), std::back_inserter(served),
                     [&link](const fxtools::Tag& tag) {
                         return tag.link.isEmpty() || tag.link == link.key();
                     });
        const int words = link->words.value_or(fxtools::mostWordsPerFrame);
        for (const TagRemark& remark : fxtools::checkReplies(served, words))
            found[remark.line] = {remark};
    }
    QVector<TagRemark> remarks;
    for (const QVector<TagRemark>& each : found)
        remarks += each;
    return remarks;
}

void checkTagFile(const QString& path, const Links& links,
                  const fxtools::RegisterCatalogue& catalogue, Findings& found)
{
    const fxtools::TagFile file = fxtools::readTagFile(path, catalogue);
    QVector<TagRemark> remarks =
        file.remarks + fxtools::checkTags(file.tags, catalogue) + checkReplies(file.tags, links);
    QMap<QString, QString> names;  // in lower case, and as they are
    for (const fxtools::Tag& tag : file.tags) {
        const QString other = names.value(tag.name.toLower(), tag.name);
        if (other != tag.name)
            remarks.append({TagRemark::Kind::Error, tag.line, QStringLiteral("name"),
                            tag.name + " and " + other +
                                " differ only in case; some readers cannot tell them apart"});
        names.insert(tag.name.toLower(), tag.name);
        if (tag.name == QLatin1String("state"))
            remarks.append({TagRemark::Kind::Error, tag.line, QStringLiteral("name"),
                            QStringLiteral("no tag of a gateway can be named state: the topic of "
                                           "the link's state has this name")});
    }
    std::stable_sort(remarks.begin(), remarks.end(),
                     [](const auto& one, const auto& other) { return one.line < other.line; });
    for (const TagRemark& remark : remarks) {
        const bool isError = remark.kind == TagRemark::Kind::Error;
        found.errors += isError ? 1 : 0;
        found.lines +=
            path + ", " + remark.place() + (isError ? ": " : ": warning: ") + remark.text;
    }
    found.tags += file.tags.size();
}

}  // namespace

fxtools::ExitCode check(const QString& configuration)
{
    const ConfigurationFile file = readConfigurationFile(configuration);
    Findings found;
    found.errors = file.mistakes.size();
    for (const fxtools::Mistake& mistake : file.mistakes)
        found.lines += mistake.in(configuration);
    QMap<QString, Links> files;  // by name; a file is of several links perhaps
    const Links& links = file.configuration.links;
    for (auto link = links.begin(); link != links.end(); ++link)
        files[link->tags].insert(link.key(), *link);
    const fxtools::DriverLibrary library;
    const fxtools::RegisterCatalogue catalogue(library);
    for (auto path = files.begin(); path != files.end(); ++path) {
        if (QFile::exists(path.key()))  // one that is missing was a mistake already
            checkTagFile(path.key(), *path, catalogue, found);
    }
    for (const QString& line : found.lines)
        std::cout << line.toStdString() << '\n';
    std::cout << qPrintable(QStringLiteral("%1: %2, %3, %4, %5\n")
                                .arg(configuration,
                                     counted(file.configuration.links.size(), "link"),
                                     counted(found.tags, "tag"), counted(found.errors, "error"),
                                     counted(found.lines.size() - found.errors, "warning")));
    return found.errors == 0 ? fxtools::ExitCode::Good : fxtools::ExitCode::SomeFailed;
}

}  // namespace fxgate
