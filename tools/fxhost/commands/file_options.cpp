// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/commands/file_options.h"

namespace fxtools {

void addFileOptions(CLI::App& command, FileOptions& options)
{
    command.add_option("file", options.file, "File to write; - is standard output")->required();
    command.add_flag("--force", options.force, "Replace an existing file");
}

OutputOptions besides(const FileOptions& options, const OutputOptions& output)
{
    OutputOptions without = output;
    if (options.file == "-") {
        without.mode = OutputMode::People;
        without.quiet = true;
    }
    return without;
}

}  // namespace fxtools
