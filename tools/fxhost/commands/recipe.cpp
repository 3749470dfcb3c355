// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost recipe: transfers words between a CSV file and the PLC with the driver's recipe transfer.

#include "tools/service/recipe.h"
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

ExitCode runDownload(const CommonOptions& common, const DownloadOptions& options)
{
    demandNamedLink(common);
    CommandConnection connection(common);
    const QVector<RegisterRun> runs =
        readRecipe(QString::fromStdString(options.file), connection.catalogue(),
                   connection.wordsPerFrame(), options.force);
    const QVector<RegisterRange> entries = rangesOf(runs);
    const RecipeOutcome outcome =
        downloadRecipe(connection, runs, progressOf(common.output, "download"));
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

ExitCode runUpload(const CommonOptions& common, const UploadOptions& options)
{
    demandNamedLink(common);
    CommandConnection connection(common);
    OutputFile file(options.file.name(), options.file.mode(), connection.catalogue());
    const QVector<RegisterRange> entries = recipeEntries(
        registersOnce(options.addresses, connection.services()), connection.wordsPerFrame());
    const OutputOptions output = besides(options.file, common.output);
    QVector<RegisterRun> recipe;
    const RecipeOutcome outcome =
        uploadRecipe(connection, entries, recipe, progressOf(output, "upload"));
    if (outcome.isGood())
        saveRecipe(file, recipe);
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
