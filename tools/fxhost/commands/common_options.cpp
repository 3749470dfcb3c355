// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The options that may stand before or after every command: the link, and the form of what is
// printed.

#include "tools/fxhost/commands/command.h"

#include <cmath>
#include <cstdlib>

namespace fxtools {

namespace {

const char* const linkGroup = "Link";
const char* const outputGroup = "Output";
constexpr int shortestTimeoutMs = 10;  // in less no serial line brings a reply
constexpr int longestTimeoutMs = 60000;
constexpr int longestReconnectS = 86400;

void addLineOptions(CLI::App& app, CommonOptions& common)
{
    app.add_option(
           "--link", common.link.link,
           "serial:PATH?baud=9600, tcp:HOST:PORT, pty:PATH or sim: (default: FX_LINK, or sim:)")
        ->type_name("LINK")
        ->group(linkGroup);
    app.add_option("-b,--baud", common.link.baud, "Baud rate of a serial port or of sim:")
        ->type_name("BAUD")
        ->check(CLI::Range(50, 4000000).description(""))
        ->group(linkGroup);
    app.add_option("-P,--parity", common.link.parity, "Parity of a serial port: even, odd or none")
        ->type_name("PARITY")
        ->transform(CLI::IsMember({"even", "odd", "none"}, CLI::ignore_case).description(""))
        ->group(linkGroup);
    app.add_option("--line", common.link.line,
                   "Data bits, parity and stop bits of a serial port (default: 7E1)")
        ->type_name("7E1")
        ->group(linkGroup);
    app.add_option("-p,--port", common.link.port, "Port of a TCP link (default: 8888)")
        ->type_name("PORT")
        ->check(CLI::Range(1, 65535).description(""))
        ->group(linkGroup);
}

void addPatienceOptions(CLI::App& app, CommonOptions& common)
{
    app.add_option("-o,--timeout", common.timeoutMs,
                   "Reply time-out in ms, or with a unit: 0.5s (default: adapts to the line)")
        ->type_name("MS")
        ->transform(timeInMs())
        ->check(CLI::Range(shortestTimeoutMs, longestTimeoutMs).description(""))
        ->group(linkGroup);
    app.add_option("--retries", common.retries,
                   "Retries of a frame after a bad or missing reply (default: 2)")
        ->type_name("N")
        ->check(CLI::Range(0, 100).description(""))
        ->group(linkGroup);
    app.add_option(
           "--reconnect-s", common.reconnectS,
           "Keep trying for SECONDS to open a lost or missing link; 0 = never. Default: watch, "
           "monitor, stats and record retry a lost link for ever, other commands for 30 s; "
           "a link that is missing at the start is an error")
        ->type_name("SECONDS")
        ->check(CLI::Range(0, longestReconnectS).description(""))
        ->group(linkGroup);
    app.add_option("--words", common.wordsPerFrame,
                   "Maximum words in one frame: 2 to 253 (default: 32, or words= of the link)")
        ->type_name("N")
        ->check(CLI::Range(leastWordsPerFrame, mostWordsPerFrame).description(""))
        ->group(linkGroup);
}

}  // namespace

CLI::Validator timeInMs()
{
    return CLI::Validator(
        [](std::string& text) -> std::string {
            static const std::map<std::string, double> units = {
                {"", 1}, {"ms", 1}, {"s", 1e3}, {"min", 60e3}, {"h", 3600e3}, {"d", 86400e3}};
            char* end = nullptr;
            const double number = std::strtod(text.c_str(), &end);
            const auto unit = units.find(CLI::detail::to_lower(CLI::detail::trim_copy(end)));
            const double timeMs = unit == units.end() ? HUGE_VAL : number * unit->second;
            if (end == text.c_str() || !(std::abs(timeMs) < 1e12))
                return "'" + text + "' is not a time; use 500, 500ms, 1.5s, 10min, 8h or 1d";
            text = std::to_string(std::llround(timeMs));
            return {};
        },
        "");
}

void addLinkOptions(CLI::App& app, CommonOptions& common)
{
    addLineOptions(app, common);
    addPatienceOptions(app, common);
}

void addOutputOptions(CLI::App& app, CommonOptions& common)
{
    OutputOptions& output = common.output;
    app.add_flag_callback(
           "--json", [&output] { output.mode = OutputMode::Json; }, "Print JSON, for programs")
        ->group(outputGroup);
    app.add_flag_callback(
           "--csv", [&output] { output.mode = OutputMode::Csv; }, "Print CSV, for spreadsheets")
        ->group(outputGroup);
    app.add_flag("--timestamps", output.timestamps, "Print the time before each line or record")
        ->group(outputGroup);
    app.add_flag("-q,--quiet", output.quiet, "No headings, progress or summary")
        ->group(outputGroup);
}

void addExamples(CLI::App& command, const std::vector<std::string>& examples)
{
    std::string text = "Examples:\n";
    for (const std::string& example : examples)
        text += "  " + example + '\n';
    command.footer(text + "\nFor the link and output options see fxhost --help.");
}

}  // namespace fxtools
