// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/options.h"

#include "tools/command_help.h"

#include <iostream>

namespace fxview {

namespace {

const char* const footer = R"(Examples:
  fxview
  fxview --link 'serial:/dev/ttyUSB0?baud=9600' --tags press.csv
  fxview --plc press1
  fxview --plc press1 --new-screen press1.toml
  fxview --plc press1 press1.toml

Without --link, --plc, FX_LINK and a default in the configuration file of fxhost
the window shows a simulated PLC, and says so.

Exit status:
  0 success                          2 mistake at the command line
  1 --pictures: tags are not good    7 error with a file)";

QString text(const std::string& option)
{
    return QString::fromStdString(option);
}

}  // namespace

std::optional<Options> readOptions(int argumentCount, char** arguments, int& exitCode)
{
    std::string link, plc, configuration, tags, pictures, language, screen, newScreen;
    bool isDark = false;
    CLI::App app("A window for the values of one FX-series programmable controller", "fxview");
    app.formatter(fxtools::helpFormatter());
    app.set_help_flag("-h,--help", "Print this help");
    app.option_defaults()->disable_flag_override();
    app.set_version_flag("-V,--version", "fxview " FX_VERSION, "Print the version");
    app.footer(footer);
    CLI::Option* const linkOption =
        app.add_option("--link", link,
                       "serial:PATH?baud=9600, tcp:HOST:PORT, pty:PATH or sim: "
                       "(default: FX_LINK, then the configuration file, then sim:)")
            ->type_name("LINK");
    app.add_option("--plc", plc, "The link of this name in the configuration file")
        ->type_name("NAME")
        ->excludes(linkOption);
    app.add_option("--config", configuration,
                   "Configuration file (default: ~/.config/fxhost/config.toml)")
        ->type_name("FILE");
    app.add_option("--tags", tags, "Tag file (default: that of the configuration file)")
        ->type_name("FILE");
    app.add_flag("--dark", isDark, "Light text on a dark ground");
    app.add_option("--language", language, "de or en (default: that of the desktop)")
        ->check(CLI::IsMember({"de", "en"}))
        ->type_name("NAME");
    app.add_option(
           "--pictures", pictures,
           "Save a picture of each page in this folder, and exit with 0 if all tags are good")
        ->type_name("FOLDER");
    CLI::Option* const newScreenOption =
        app.add_option("--new-screen", newScreen,
                       "Write a screen with all tags to this new file, to be changed, and end")
            ->type_name("FILE");
    app.add_option("SCREEN", screen, "Screen to show, a TOML file (default: one with all tags)")
        ->type_name("FILE")
        ->excludes(newScreenOption);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        exitCode = static_cast<int>(fxtools::ExitCode::Usage);
        if (error.get_exit_code() == 0)
            exitCode = app.exit(error);  // help and version
        else
            std::cerr << "fxview: " << qPrintable(fxtools::usageMistake(app, error)) << '\n';
        return std::nullopt;
    }
    return Options{{text(link), text(plc), text(configuration)},
                   text(tags),
                   text(pictures),
                   text(language),
                   isDark,
                   text(screen),
                   text(newScreen)};
}

}  // namespace fxview
