// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The configurations that users begin with: each is checked and run, with its own workers.

#include "tests/tools/support/child_process.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr int endedWithinMs = 60000;

QProcessEnvironment withDriver()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("FX_DRIVER", FX_DRIVER_FILE);
    return environment;
}

// What it prints, or why it failed.
QByteArray printedBy(const QStringList& arguments)
{
    ChildProcess process;
    process.setProcessEnvironment(withDriver());
    process.start(FXGATE_FILE, arguments);
    process.waitForFinished(endedWithinMs);
    return process.exitCode() == 0 ? process.readAllStandardOutput()
                                   : "failed: " + process.readAllStandardError();
}

class Example : public testing::TestWithParam<const char*>
{
protected:
    Example()
    {
        const QDir examples(QStringLiteral(FX_EXAMPLES "/gateway"));
        for (const QString& name : examples.entryList(QDir::Files))
            QFile::copy(examples.filePath(name), folder.filePath(name));
        gate.setProcessEnvironment(withDriver());
    }

    ~Example() override
    {
        gate.terminate();
        gate.waitForFinished(endedWithinMs);
    }

    // Empty until it answers.
    QJsonArray links()
    {
        const QByteArray status = printedBy({"status", "--json", "--socket", socket});
        return QJsonDocument::fromJson(status).object()["links"].toArray();
    }

    QTemporaryDir folder;
    const QString file = folder.filePath(GetParam());
    const QString socket = folder.filePath("control");
    ChildProcess gate;
};

}  // namespace

TEST_P(Example, HasNoMistakesAndRuns)
{
    EXPECT_FALSE(printedBy({"check", file}).startsWith("failed"));
    gate.start(FXGATE_FILE, {"run", "--config", file, "--socket", socket});
    ASSERT_TRUE(gate.waitForStarted());
    QJsonArray found = links();
    while (found.isEmpty() && gate.state() == QProcess::Running)
        found = links();
    EXPECT_EQ(found.size(), 2);
    gate.terminate();
    EXPECT_TRUE(gate.waitForFinished(endedWithinMs));
    EXPECT_EQ(gate.exitCode(), 0) << gate.readAllStandardError().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Of, Example, testing::Values("fxgate.toml", "plant.toml"),
                         [](const auto& name) {
                             return QString(name.param).section('.', 0, 0).toStdString();
                         });
