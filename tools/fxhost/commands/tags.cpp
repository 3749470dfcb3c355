// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost tags: checks tag files, and converts them from and to the forms of other programs.

#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/commands/connection.h"
#include "tools/tags/foreign_tags.h"
#include "tools/tags/tag_check.h"

namespace fxtools {

namespace {

struct TagsOptions
{
    std::string from;        // the file that is read
    std::string form;        // of the other program; empty: as the file is
    FileOptions to = {"-"};  // the file that is written
};

// Returns how many errors there are.
int showRemarks(const QVector<TagRemark>& remarks, const OutputOptions& output)
{
    Records records(output, {{"line"}, {"column"}, {"kind"}, {"remark"}});
    int errors = 0;
    for (const TagRemark& remark : remarks) {
        const bool isError = remark.kind == TagRemark::Kind::Error;
        errors += isError ? 1 : 0;
        records.add({remark.line, remark.column, isError ? "error" : "warning", remark.text});
    }
    if (!remarks.isEmpty() || output.mode != OutputMode::People)
        records.finish();
    return errors;
}

ExitCode checkTagFile(const CommonOptions& common, const TagsOptions& options)
{
    const AddressServices services = addressServices(common);
    const QString path = QString::fromStdString(options.from);
    const TagFile file = readTagFile(path, services.catalogue);
    QVector<TagRemark> remarks = file.remarks + checkTags(file.tags, services.catalogue);
    std::stable_sort(remarks.begin(), remarks.end(),
                     [](const auto& one, const auto& other) { return one.line < other.line; });
    const int errors = showRemarks(remarks, common.output);
    if (common.output.mode == OutputMode::People && !common.output.quiet)
        Console().line(QStringLiteral("%1: %2, %3, %4")
                           .arg(path, counted(file.tags.size(), "tag"), counted(errors, "error"),
                                counted(remarks.size() - errors, "warning")));
    return errors == 0 ? ExitCode::Good : ExitCode::SomeFailed;
}

// Writes a file, and tells what it lacks: on standard error, or to a program.
void convert(const CommonOptions& common, const TagsOptions& options, const QByteArray& text,
             const QVector<TagRemark>& remarks, const RegisterCatalogue& catalogue)
{
    OutputFile file(options.to.name(), options.to.mode(), catalogue);
    file.write(text);
    file.commit();
    const OutputOptions output = besides(options.to, common.output);
    if (output.mode != OutputMode::People) {
        showRemarks(remarks, output);
        return;
    }
    for (const TagRemark& remark : remarks) {
        if (!common.output.quiet)
            complain(QString::fromStdString(options.from) + ", " + remark.place() + ": " +
                     remark.text);
    }
}

bool hasErrors(const QVector<TagRemark>& remarks)
{
    return std::any_of(remarks.begin(), remarks.end(), [](const TagRemark& remark) {
        return remark.kind == TagRemark::Kind::Error;
    });
}

ExitCode importTagFile(const CommonOptions& common, const TagsOptions& options)
{
    const AddressServices services = addressServices(common);
    const TagFile file =
        importTags(QString::fromStdString(options.from),
                   foreignFormNamed(QString::fromStdString(options.form)), services.catalogue);
    convert(common, options, tagFileText(file.tags), file.remarks, services.catalogue);
    return hasErrors(file.remarks) ? ExitCode::SomeFailed : ExitCode::Good;
}

ExitCode exportTagFile(const CommonOptions& common, const TagsOptions& options)
{
    const AddressServices services = addressServices(common);
    const QVector<Tag> tags = readTags(QString::fromStdString(options.from), services.catalogue);
    const ExportedTags exported = exportTags(
        tags, *foreignFormNamed(QString::fromStdString(options.form)), services.catalogue);
    convert(common, options, exported.text, exported.remarks, services.catalogue);
    return ExitCode::Good;
}

CLI::Option* addFormOption(CLI::App& command, const char* option, TagsOptions& options,
                           const char* meaning)
{
    return command.add_option(option, options.form, meaning)
        ->type_name("FORM")
        ->check(oneOf({"scada", "comments"}));
}

void addOutputFile(CLI::App& command, FileOptions& options)
{
    command.add_option("--output", options.file, "File to write (default: -, standard output)")
        ->type_name("FILE");
    command.add_flag("--force", options.force, "Replace an existing file");
}

}  // namespace

void addTagsCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* const command = app.add_subcommand("tags", "Check and convert tag files");
    command->require_subcommand(1);
    const auto options = std::make_shared<TagsOptions>();
    const auto add = [&](const char* name, const char* meaning, auto run) {
        CLI::App* const sub = command->add_subcommand(name, meaning);
        sub->add_option("file", options->from, "File to read")->type_name("")->required();
        onRun(*sub, action, [&common, options, run] { return run(common, *options); });
        return sub;
    };
    addExamples(*add("check", "Find all mistakes in a tag file", checkTagFile),
                {"fxhost tags check tags.csv"});
    CLI::App* const import =
        add("import", "Make a tag file from another program's list", importTagFile);
    addFormOption(*import, "--from", *options,
                  "scada (the tag list of a server) or comments (the device comments of a PLC "
                  "program); default: as the heading row says");
    addOutputFile(*import, options->to);
    addExamples(*import, {"fxhost tags import scada.csv --output imported.csv"});
    CLI::App* const exported =
        add("export", "Make another program's list from a tag file", exportTagFile);
    addFormOption(*exported, "--to", *options,
                  "scada (the tag list of a server) or comments (the device comments of a PLC "
                  "program)")
        ->required();
    addOutputFile(*exported, options->to);
    addExamples(*exported, {"fxhost tags export tags.csv --to scada --output scada.csv"});
}

}  // namespace fxtools
