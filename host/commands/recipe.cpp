// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost recipe: blocks of words between a CSV file and the PLC, by the driver's recipe transfer.

#include "host/commands/poll_result.h"
#include "host/interrupt.h"
#include "host/recipe_transfer.h"
#include "host/register_file.h"

namespace fxhost {

namespace {

struct RecipeOptions
{
    std::string file;
    std::vector<std::string> addresses;
};

void needWords(const QVector<RegisterRange>& entries)
{
    for (const RegisterRange& entry : entries) {
        if (entry.type.isBit())
            throw UsageError(entry.text().toStdString() + ": a recipe carries words, no bits");
    }
}

std::function<void(int, int)> progressOf(const CommonOptions& common, const QString& label)
{
    if (common.output.quiet)
        return [](int, int) {};
    const auto console = std::make_shared<Console>();
    return [console, label](int done, int total) { console->progress(label, done, total); };
}

ExitCode finish(const RecipeOutcome& outcome, const QVector<RegisterRange>& entries)
{
    if (outcome.isGood())
        return ExitCode::Good;
    complain(QStringLiteral("%1: %2; %3 of %4 entries were transferred")
                 .arg(entries.value(outcome.transferred).text(), verdictText(*outcome.problem))
                 .arg(outcome.transferred)
                 .arg(outcome.entries));
    return interrupted() ? ExitCode::Interrupted : exitCodeOf(*outcome.problem);
}

int wordsPerRegister(const RegisterRange& range)
{
    return range.type.driverCount(1);
}

void load(const QVector<RegisterRun>& runs, std::vector<quint16>& memory)
{
    size_t word = 0;
    for (const RegisterRun& run : runs) {
        const int words = wordsPerRegister(run.range);
        if (memory.size() - word <
            static_cast<size_t>(words) * static_cast<size_t>(run.values.size()))
            throw FileError("the recipe is longer than the recipe memory: 65536 words");
        for (const quint32 value : run.values) {
            memory[word++] = static_cast<quint16>(value & 0xFFFF);
            if (words == 2)
                memory[word++] = static_cast<quint16>(value >> 16);
        }
    }
}

ExitCode runDownload(const CommonOptions& common, const RecipeOptions& options)
{
    Connection connection(common);
    const QVector<RegisterRun> runs =
        readRegisterFile(QString::fromStdString(options.file), connection.catalogue(),
                         connection.library(), common.wordsPerFrame / 2);
    QVector<RegisterRange> entries;
    for (const RegisterRun& run : runs)
        entries.append(run.range);
    needWords(entries);
    load(runs, connection.session().recipeWords());
    return finish(transferRecipe(connection.loop(), RecipeDirection::Download, entries,
                                 progressOf(common, QStringLiteral("download"))),
                  entries);
}

void save(const QString& path, const QVector<RegisterRange>& entries,
          const std::vector<quint16>& memory)
{
    RegisterFileWriter file(path, RegisterFileWriter::Mode::Replace);
    size_t word = 0;
    for (const RegisterRange& entry : entries) {
        for (int index = 0; index < entry.count; ++index) {
            quint32 value = memory.at(word++);
            if (wordsPerRegister(entry) == 2)
                value |= quint32(memory.at(word++)) << 16;
            file.add(entry.nameOf(index), value);
        }
    }
}

// Entries that fit a frame, counters of four bytes included.
QVector<RegisterRange> cut(const QVector<RegisterRange>& ranges, int mostWords)
{
    QVector<RegisterRange> entries;
    for (const RegisterRange& range : ranges) {
        const int most = range.type.mostInFrame(mostWords);
        for (int done = 0; done < range.count; done += most)
            entries.append(range.part(done, std::min(most, range.count - done)));
    }
    return entries;
}

ExitCode runUpload(const CommonOptions& common, const RecipeOptions& options)
{
    Connection connection(common);
    const QVector<RegisterRange> entries =
        cut(connection.ranges(options.addresses), common.wordsPerFrame);
    needWords(entries);
    const RecipeOutcome outcome =
        transferRecipe(connection.loop(), RecipeDirection::Upload, entries,
                       progressOf(common, QStringLiteral("upload")));
    if (outcome.isGood())  // half a recipe would look like a whole one
        save(QString::fromStdString(options.file), entries, connection.session().recipeWords());
    return finish(outcome, entries);
}

}  // namespace

void addRecipeCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("recipe", "Transfer recipes");
    command->require_subcommand(1);
    const auto options = std::make_shared<RecipeOptions>();

    CLI::App* download = command->add_subcommand("download", "From a file to the PLC");
    download->add_option("file", options->file, "CSV file: ADDRESS,VALUE a line")->required();
    download->callback([&action, &common, options] {
        action = [&common, options] { return runDownload(common, *options); };
    });

    CLI::App* upload = command->add_subcommand("upload", "From the PLC to a file");
    upload->add_option("file", options->file, "CSV file to write")->required();
    upload->add_option("address", options->addresses, "Ranges such as D1000:128")->required();
    upload->callback([&action, &common, options] {
        action = [&common, options] { return runUpload(common, *options); };
    });
}

}  // namespace fxhost
