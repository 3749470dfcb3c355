// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxview as people start it: what it says of itself, and a window that comes up.

#include "tests/tools/support/child_process.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Ended
{
    int code = -1;
    QString out;
    QString err;
};

Ended runFxview(const QStringList& arguments, const QString& driver = FX_DRIVER_FILE)
{
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("HOME", home.path());
    environment.insert("FX_DRIVER", driver);
    environment.remove("FX_LINK");
    ChildProcess process;
    process.setProcessEnvironment(environment);
    process.start(FXVIEW_FILE, arguments);
    process.waitForFinished(60000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

QString contentOf(const char* path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path;
    return QString::fromUtf8(file.readAll()).replace("\\-", "-");
}

QStringList optionsIn(const QString& text, const char* pattern)
{
    QStringList options;
    auto matches =
        QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text);
    while (matches.hasNext())
        options += matches.next().captured(1);
    options.sort();
    options.removeDuplicates();
    return options;
}

}  // namespace

TEST(FxviewCommandLine, HasItsOptionsInTheManualAndNoOthers)
{
    const QString help = runFxview({"--help"}).out;
    for (const QString& line : help.split('\n'))
        EXPECT_LE(line.size(), 80) << line.toStdString();
    QString manual = contentOf(FXVIEW_MANUAL);
    const QStringList options = optionsIn(help, "^  (?:-[hV],)?\\s*(--[a-z-]+)");
    EXPECT_GE(options.size(), 8);
    EXPECT_EQ(optionsIn(manual.remove("fxhost --"), "(?<![a-zA-Z0-9-])(--[a-z][a-z-]*)"), options);
}

TEST(FxviewCommandLine, IsCompletedByTheShell)
{
    const QVector<QPair<const char*, const char*>> rows = {{"--da", "--dark"},
                                                           {"--link s", "sim: serial:/dev/"},
                                                           {"--tags /dev/nul", "/dev/null"},
                                                           {"--plc ''", ""}};
    for (const auto& [words, offers] : rows) {
        QProcess shell;
        shell.start("bash", {"-c", QString("source %1; COMP_WORDS=(%2 %3); "
                                           "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _fxview; "
                                           "printf '%s' \"${COMPREPLY[*]}\"")
                                       .arg(FXVIEW_COMPLETION, FXVIEW_FILE, words)});
        ASSERT_TRUE(shell.waitForFinished(60000));
        EXPECT_EQ(shell.readAllStandardOutput().toStdString(), offers) << words;
    }
}

TEST(FxviewCommandLine, TellsMistakes)
{
    const Ended ended = runFxview({"--drak"});
    EXPECT_EQ(ended.code, 2);
    EXPECT_EQ(ended.err.toStdString(), "fxview: unknown option '--drak'; did you mean '--dark'?\n");
}

TEST(FxviewPictures, ShowThatAllTagsAreGood)
{
    const QTemporaryDir folder;
    const Ended ended = runFxview({"--link", "sim:", "--pictures", folder.path()});
    EXPECT_EQ(ended.code, 0) << ended.err.toStdString();
    EXPECT_TRUE(ended.out.endsWith("fxview: all tags are good\n"));
    const QImage first(folder.filePath("page-1.png"));
    EXPECT_EQ(first.size(), QSize(800, 600)) << "no wider than this platform's screen";
    EXPECT_NE(first, QImage(folder.filePath("page-2.png")));
}

TEST(FxviewPictures, EndInAnErrorWithoutAPlc)
{
    const QTemporaryDir folder;
    const Ended silent = runFxview(
        {"--link", "tcp:127.0.0.1:1", "--tags", FX_SAMPLE_TAGS, "--pictures", folder.path()});
    EXPECT_EQ(silent.code, 1);
    EXPECT_TRUE(silent.err.contains("fxview: not good: seconds, triangle"))
        << silent.err.toStdString();
    const Ended nothing = runFxview({"--link", "sim:?baud=0", "--pictures", folder.path()});
    EXPECT_EQ(nothing.code, 2);
    EXPECT_FALSE(nothing.out.contains("good")) << nothing.out.toStdString();
    const Ended nowhere = runFxview({"--pictures", "/dev/null/pictures"});
    EXPECT_EQ(nowhere.code, 7);
    EXPECT_TRUE(nowhere.err.endsWith("fxview: could not write /dev/null/pictures/page-1.png\n"));
}

TEST(FxviewScreens, AreWrittenNewAndNeverOverAnother)
{
    const QTemporaryDir folder;
    const QString screen = folder.filePath("screen.toml");
    const QStringList write{"--link", "sim:", "--tags", FX_SAMPLE_TAGS, "--new-screen", screen};
    EXPECT_EQ(runFxview(write).code, 0);
    const QString written = contentOf(screen.toUtf8());
    EXPECT_TRUE(written.contains("[[page.switch]]\ntag = \"button\"\n")) << qPrintable(written);
    const Ended again = runFxview(write);
    EXPECT_EQ(again.code, 7);
    EXPECT_TRUE(again.err.contains(screen)) << qPrintable(again.err);
    EXPECT_EQ(contentOf(screen.toUtf8()), written);
    const Ended shown = runFxview({"--link", "sim:", "--pictures", folder.path(), screen});
    EXPECT_EQ(shown.code, 0);
    EXPECT_FALSE(shown.err.contains("screen.toml")) << qPrintable(shown.err);
}

// As from a prefix: nobody says where the library is.
TEST(FxviewScreens, AreWrittenWithTheLibraryBesideTheProgram)
{
    const QTemporaryDir folder;
    const Ended written = runFxview({"--link", "sim:", "--tags", FX_SAMPLE_TAGS, "--new-screen",
                                     folder.filePath("screen.toml")},
                                    "");
    EXPECT_EQ(written.code, 0);
    EXPECT_EQ(written.err, "");
}

TEST(FxviewScreens, HaveTheirMistakesOnStandardError)
{
    const QTemporaryDir folder;
    const QString screen = folder.filePath("none.toml");
    const Ended ended = runFxview({"--link", "sim:", "--pictures", folder.path(), screen});
    EXPECT_TRUE(ended.err.contains("fxview: " + screen + ": No such file or directory\n"))
        << qPrintable(ended.err);
    EXPECT_EQ(runFxview({"--new-screen", "a.toml", "b.toml"}).code, 2);
}
