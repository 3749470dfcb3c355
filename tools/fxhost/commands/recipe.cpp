// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost recipe: transfers words between a CSV file and the PLC with the driver's recipe transfer.

#include "tools/exchange/polling.h"
#include "tools/fxhost/commands/address_options.h"
#include "tools/fxhost/commands/file_comparison.h"

#include <QJsonArray>

namespace fxtools {

namespace {

struct DownloadOptions
{
    std::string file;
    bool force = false;
    bool verify = true;
};

struct UploadOptions
{
    FileOptions file;
    AddressOptions addresses;
};

void needWords(const QVector<RegisterRange>& entries)
{
    for (const RegisterRange& entry : entries) {
        if (entry.type.isBit())
            throw Failure(ExitCode::Usage, entry.text() + ": recipes hold words, not bits");
    }
}

// An entry that was sent without a clear reply is "possibly written".
QString stoppedText(const RecipeOutcome& outcome, RecipeDirection direction,
                    const QVector<RegisterRange>& entries)
{
    const QString entry = entries.value(outcome.transferred).text();
    QString text = QStringLiteral("%1: %2; %3 of %4 entries transferred")
                       .arg(entry, verdictText(*outcome.problem))
                       .arg(outcome.transferred)
                       .arg(outcome.entries);
    if (direction == RecipeDirection::Upload)
        return text + ", the file is unchanged";
    if (outcome.transferred > 0)
        text += ", up to " + entries[outcome.transferred - 1].text();
    return outcome.isUncertain ? text + "; " + entry + " possibly written" : text;
}

ExitCode finish(const OutputOptions& output, RecipeDirection direction,
                const RecipeOutcome& outcome, const QVector<RegisterRange>& entries,
                const std::optional<Comparison>& readBack = {})
{
    if (!outcome.isGood()) {
        complain(stoppedText(outcome, direction, entries));
        return exitCodeOf(*outcome.problem);
    }
    int registers = 0;
    for (const RegisterRange& entry : entries)
        registers += entry.count;
    const QString what =
        direction == RecipeDirection::Download ? "written to the PLC" : "read from the PLC";
    QVector<QPair<QString, QJsonValue>> fields = {{"entries", outcome.entries},
                                                  {"registers", registers}};
    if (readBack)
        fields.append({"different", QJsonArray::fromStringList(readBack->namesOfDifferent())});
    showResult(output,
               "  " + counted(registers, "register") + ' ' + what +
                   (readBack ? " and read back" : ""),
               fields);
    return readBack && readBack->different() > 0 ? ExitCode::SomeFailed : ExitCode::Good;
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
            throw Failure(ExitCode::File,
                          QStringLiteral("the recipe is too long: the recipe memory holds %1 words")
                              .arg(memory.size()));
        for (const quint32 value : run.values) {
            memory[word++] = static_cast<quint16>(value & 0xFFFF);
            if (words == 2)
                memory[word++] = static_cast<quint16>(value >> 16);
        }
    }
}

ExitCode runDownload(const CommonOptions& common, const DownloadOptions& options)
{
    demandNamedLink(common);
    CommandConnection connection(common);
    const QVector<RegisterRun> runs =
        writableRegistersOf(QString::fromStdString(options.file), connection, options.force).runs;
    QVector<RegisterRange> entries;
    for (const RegisterRun& run : runs)
        entries.append(run.range);
    needWords(entries);
    load(runs, connection.session().recipeWords());
    const RecipeOutcome outcome = transferRecipe(connection.loop(), RecipeDirection::Download,
                                                 entries, progressOf(common.output, "download"));
    if (!outcome.isGood() || !options.verify)
        return finish(common.output, RecipeDirection::Download, outcome, entries);
    const Comparison readBack =
        compareWithPlc(connection, runs, lateProgressOf(common.output, "reading back"));
    if (const std::optional<ReplyVerdict> problem = readBack.firstProblem()) {
        complain("written, but could not be read back: " + verdictText(*problem));
        return exitCodeOf(*problem);
    }
    const ExitCode code =
        finish(common.output, RecipeDirection::Download, outcome, entries, readBack);
    complainOfDifferent(readBack.namesOfDifferent(), runs);
    return code;
}

QVector<RegisterRun> runsOf(const QVector<RegisterRange>& entries,
                            const std::vector<quint16>& memory)
{
    QVector<RegisterRun> runs;
    size_t word = 0;
    for (const RegisterRange& entry : entries) {
        RegisterRun run{entry, {}};
        for (int index = 0; index < entry.count; ++index) {
            quint32 value = memory.at(word++);
            if (wordsPerRegister(entry) == 2)
                value |= static_cast<quint32>(memory.at(word++)) << 16;
            run.values.append(value);
        }
        runs.append(run);
    }
    return runs;
}

ExitCode runUpload(const CommonOptions& common, const UploadOptions& options)
{
    demandNamedLink(common);
    CommandConnection connection(common);
    OutputFile file(options.file.name(), options.file.mode(), connection.catalogue());
    const QVector<RegisterRange> entries =
        cutToFrames(rangesOf(options.addresses, connection.services()),
                    connection.session().settings().wordsPerFrame);
    needWords(entries);
    const OutputOptions output = besides(options.file, common.output);
    const RecipeOutcome outcome = transferRecipe(connection.loop(), RecipeDirection::Upload,
                                                 entries, progressOf(output, "upload"));
    if (outcome.isGood()) {  // half a recipe would look like a whole one
        RegisterFileWriter writer(file);
        for (const RegisterRun& run : runsOf(entries, connection.session().recipeWords()))
            writer.add(run);
        writer.finish();
    }
    return finish(output, RecipeDirection::Upload, outcome, entries);
}

}  // namespace

void addRecipeCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("recipe", "Transfer words with the driver's recipe transfer");
    command->require_subcommand(1);

    const auto written = std::make_shared<DownloadOptions>();
    CLI::App* download =
        command->add_subcommand("download", "Write the registers of a file to the PLC");
    download
        ->add_option("file", written->file, "CSV file with a line ADDRESS,VALUE for each register")
        ->required();
    addExamples(*download, {"fxhost recipe upload recipe.csv D1000:64 32CV210:4",
                            "fxhost recipe download recipe.csv"});
    download->add_flag("--force", written->force,
                       "Write also to registers that share their address with others");
    addVerifyOption(*download, written->verify, "Read back what was written");
    onRun(*download, action, [&common, written] { return runDownload(common, *written); });

    const auto options = std::make_shared<UploadOptions>();
    CLI::App* upload =
        command->add_subcommand("upload", "Read registers from the PLC and save them in a file");
    addFileOptions(*upload, options->file);
    addAddressOptions(*upload, options->addresses);
    addExamples(*upload, {"fxhost recipe upload recipe.csv D1000:64 32CV210:4"});
    onRun(*upload, action, [&common, options] { return runUpload(common, *options); });
}

}  // namespace fxtools
