// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The layout of every help text, and what is said of a mistake at the command line.

#pragma once

#include <CLI/CLI.hpp>
#include <QString>

#include <memory>

namespace fxtools {

// The help in at most 80 columns, with what every program says last.
std::shared_ptr<CLI::FormatterBase> helpFormatter();

// What is wrong with the command line, and what may have been meant.
QString usageMistake(const CLI::App& app, const CLI::ParseError& error);

QString helpOf(const CLI::App& app);  // the command with those that it belongs to: "fxhost read"

// What is said of a word that no option, argument or command takes.
QString unknownWord(const CLI::App& command, const QString& word);

}  // namespace fxtools
