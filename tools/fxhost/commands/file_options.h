// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The file that a command writes: its name, or `-` for standard output, and --force.

#pragma once

#include "tools/fxhost/commands/command.h"
#include "tools/library/output_file.h"

namespace fxtools {

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

// Adds the file as an argument, and --force.
void addFileOptions(CLI::App& command, FileOptions& options);

// How a command prints what it prints besides the file: not at all where the file goes.
OutputOptions besides(const FileOptions& options, const OutputOptions& output);

}  // namespace fxtools
