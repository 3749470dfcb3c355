// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Recipe files: whole, or not there.

#include "tests/tools/support/failure_of.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/service/recipe.h"

#include <QFile>
#include <QTemporaryDir>

#include <csignal>

#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace fxtools;

// Half a recipe would look like a whole one.
TEST(RecipeFile, LeavesNothingOnAFullDisk)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("recipe.csv");
    const RegisterRun many = {tool_tests::range("D0:64"), QVector<quint32>(64, 5)};
    rlimit usual = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &usual), 0);
    signal(SIGXFSZ, SIG_IGN);
    const rlimit tight = {100, usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    const std::string problem = tool_tests::failureOf(ExitCode::File, [&] {
        OutputFile file(path, OutputFile::Mode::New, tool_tests::catalogue());
        saveRecipe(file, {many});
    });
    setrlimit(RLIMIT_FSIZE, &usual);
    EXPECT_EQ(problem, path.toStdString() + ": File too large");
    EXPECT_FALSE(QFile::exists(path));
}
