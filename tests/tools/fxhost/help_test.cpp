// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What fxhost tells about itself is true: every option of its help stands in the manual page and in
// the completion of the shell, and every example runs as it stands.

#include "tests/tools/support/programs.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

using namespace tool_tests;

namespace {

QStringList commandNames()
{
    static const QRegularExpression row(QStringLiteral("^  ([a-z]+)  "),
                                        QRegularExpression::MultilineOption);
    const QString help = QString::fromStdString(fxhost({"--help"}).out);
    auto rows = row.globalMatch(help.mid(help.indexOf(QLatin1String("Subcommands:"))));
    QStringList names;
    while (rows.hasNext())
        names += rows.next().captured(1);
    return names;
}

// The help of the program and of every command.
QString wholeHelp()
{
    QString help = QString::fromStdString(fxhost({"--help"}).out);
    for (const QString& name : commandNames())
        help += QString::fromStdString(fxhost({name, "--help"}).out);
    for (const char* direction : {"download", "upload"})
        help += QString::fromStdString(fxhost({"recipe", direction, "--help"}).out);
    return help;
}

// "-o" and "--timeout" of a line "  -o,--timeout MS    ...".
QStringList optionsIn(const QString& help)
{
    static const QRegularExpression row(QStringLiteral("^  ((?:-[A-Za-z0-9],)?--[a-z-]+)"),
                                        QRegularExpression::MultilineOption);
    auto rows = row.globalMatch(help);
    QStringList options;
    while (rows.hasNext())
        options += rows.next().captured(1).split(',');
    options.removeDuplicates();
    return options;
}

QStringList examplesIn(const QString& text)
{
    static const QRegularExpression row(QStringLiteral("^ *(fxhost [a-z].*)$"),
                                        QRegularExpression::MultilineOption);
    auto rows = row.globalMatch(text);
    QStringList examples;
    while (rows.hasNext())
        examples += rows.next().captured(1);
    examples.removeDuplicates();
    return examples;
}

QString manualPage()
{
    return QString::fromUtf8(contentOf(QStringLiteral(FXHOST_MANUAL))).replace("\\-", "-");
}

bool names(const QString& text, const QString& option)
{
    const QRegularExpression whole("(^|[^a-zA-Z0-9-])" + option + "($|[^a-zA-Z0-9-])",
                                   QRegularExpression::MultilineOption);
    return whole.match(text).hasMatch();
}

// As a shell runs it, in a folder where examples find what earlier ones wrote.
Ended runInShell(const QString& line, const QTemporaryDir& folder)
{
    QProcess shell;
    shell.setProcessEnvironment(hostEnvironment());
    shell.setWorkingDirectory(folder.path());
    const QString function = QStringLiteral("fxhost() { \"%1\" \"$@\"; }\n").arg(FXHOST_FILE);
    shell.start("/bin/sh", {"-c", function + line});
    Ended ended;
    if (shell.waitForFinished())
        ended.code = shell.exitCode();
    else
        shell.kill();
    ended.err = shell.readAllStandardError().toStdString();
    return ended;
}

void expectExamplesRun(const QStringList& examples)
{
    const QTemporaryDir folder;
    for (const QString& example : examples) {
        if (example.startsWith("fxhost demo"))
            continue;  // half a minute; it has tests of its own
        const Ended ended = runInShell(example, folder);
        EXPECT_EQ(ended.code, 0) << example.toStdString() << "\n" << ended.err;
    }
}

}  // namespace

TEST(Help, EveryOptionIsInTheManual)
{
    const QStringList options = optionsIn(wholeHelp());
    EXPECT_GT(options.size(), 40) << "options are no longer found in the help";
    const QString manual = manualPage();
    for (const QString& option : options)
        EXPECT_TRUE(names(manual, option)) << option.toStdString();
}

TEST(Help, EveryCommandIsInTheManual)
{
    const QString manual = manualPage();
    EXPECT_EQ(commandNames().size(), 17);
    for (const QString& name : commandNames()) {
        const QRegularExpression entry("^\\.(B|BI) \"?" + name + "\\b",
                                       QRegularExpression::MultilineOption);
        EXPECT_TRUE(entry.match(manual).hasMatch()) << name.toStdString();
    }
}

TEST(Help, EveryLongOptionAndCommandIsCompleted)
{
    const QString completion = QString::fromUtf8(contentOf(QStringLiteral(FXHOST_COMPLETION)));
    for (const QString& option : optionsIn(wholeHelp())) {
        if (!option.startsWith("--"))
            continue;
        EXPECT_TRUE(names(completion, option)) << option.toStdString();
    }
    for (const QString& name : commandNames())
        EXPECT_TRUE(names(completion, name)) << name.toStdString();
}

TEST(Help, ManualKnowsNoOptionThatIsNotThere)
{
    static const QRegularExpression option(QStringLiteral("(?<![a-zA-Z0-9-])--[a-z][a-z-]*"));
    const QStringList known = optionsIn(wholeHelp());
    auto options = option.globalMatch(manualPage());
    while (options.hasNext()) {
        const QString named = options.next().captured();
        EXPECT_TRUE(known.contains(named)) << named.toStdString();
    }
}

TEST(Help, EveryCommandHasExamplesAndTheyRun)
{
    for (const QString& name : commandNames()) {
        const QString help = QString::fromStdString(fxhost({name, "--help"}).out) +
                             QString::fromStdString(fxhost({name, "upload", "--help"}).out);
        EXPECT_FALSE(examplesIn(help).isEmpty()) << name.toStdString();
    }
    expectExamplesRun(examplesIn(wholeHelp()));
}

TEST(Help, ExamplesOfTheManualRun)
{
    const QString manual = manualPage();
    const QStringList examples = examplesIn(manual.mid(manual.indexOf(".SH EXAMPLES")));
    EXPECT_GT(examples.size(), 5);
    expectExamplesRun(examples);
}
