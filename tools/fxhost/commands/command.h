// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What all commands of fxhost share: the options that may stand before or after them, the exit
// codes, and how they are added to the command line. A file of this folder is one command,
// or a few that do the same work.

#pragma once

#include "tools/command_help.h"
#include "tools/failure.h"
#include "tools/fxhost/views/records.h"
#include "tools/library/output_file.h"
#include "tools/link/link_settings.h"
#include "tools/service/limits.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace fxtools {

// The link options of the command line; 0 or empty: not given.
struct LinkOptions
{
    std::string link;
    std::string plc;     // a name of the configuration file
    std::string config;  // the file; empty: the usual one
    int baud = 0;
    std::string line;
    std::string parity;
    int port = 0;

    std::optional<LinkSettings> named;  // set by chooseLink()
    QString configured;                 // the name of the PLC, if the configuration has it

    LinkSettings settings(const LinkSettings& unlessSaid) const;  // throws Failure
};

struct CommonOptions
{
    std::string library;
    std::string tags;  // the file; empty: the configured one, if any
    LinkOptions link;
    // Not given: 0 or -1 until chooseLink() takes them from the configuration.
    int timeoutMs = 0;    // 0: adapts to the line
    int reconnectS = -1;  // -1: the command's default
    int retries = -1;
    bool tolerant = false;
    int wordsPerFrame = 0;  // 0: the link's, or 32
    OutputOptions output;
};

// The file that a command writes: its name, or `-` for standard output, and --force.
struct FileOptions
{
    std::string file;
    bool force = false;

    QString name() const { return QString::fromStdString(file); }
    OutputFile::Mode mode() const
    {
        return force ? OutputFile::Mode::Replace : OutputFile::Mode::New;
    }
};

constexpr int mostCycles = 1000000000;

// Runs after the whole command line has been parsed.
using Action = std::function<ExitCode()>;

// Lets a command that was parsed be the one that runs.
inline void onRun(CLI::App& command, Action& action, const Action& run)
{
    command.callback([&action, run] { action = run; });
}

void addLinkOptions(CLI::App& app, CommonOptions& common);
void addOutputOptions(CLI::App& app, CommonOptions& common);

// Adds the file as an argument, and --force.
void addFileOptions(CLI::App& command, FileOptions& options);

// How a command prints what it prints besides the file: not at all where the file goes.
OutputOptions besides(const FileOptions& options, const OutputOptions& output);

// The PLC that is meant: --link, --plc, FX_LINK or the default of the configuration file, in this
// order, with the settings that the file has for it. Throws Failure.
void chooseLink(CommonOptions& common);

// For commands that change a PLC or judge one: throws Failure if no link was named.
void demandNamedLink(const CommonOptions& common);

// The serial ports of this machine, and who uses them.
void showPorts(const OutputOptions& output);

// Accepts "1000", "1000ms", "1.5s", "10min", "8h" and "1d", and makes milliseconds of it.
CLI::Validator timeWithin(Range limitsMs);
CLI::Validator notEmpty();
CLI::Validator within(Range limits);
CLI::Validator numberWithin(int least, int most);  // also a fraction
CLI::Validator oneOf(const QStringList& words);

// Examples below the help of a command; each runs as it stands.
void addExamples(CLI::App& command, const std::vector<std::string>& examples);

void addBackupCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addCheckCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addCompareCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addDemoCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addDoctorCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addDumpCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addHelpCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addLogCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addMonitorCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addPlanCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addPortsCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addReadCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addRecipeCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addRecordCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addReplayCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addRestoreCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addServeCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addSeriesCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addStatsCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addTagsCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addTypesCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addWatchCommand(CLI::App& app, const CommonOptions& common, Action& action);
void addWriteCommand(CLI::App& app, const CommonOptions& common, Action& action);

}  // namespace fxtools
