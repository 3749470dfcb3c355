// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What fxhost tells about itself is true: every option of its help stands in the manual page and in
// the completion of the shell, and every example runs as it stands.

#include "tests/tools/support/programs.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <deque>

using namespace tool_tests;

namespace {

// What a pattern of whole lines captures, each text once.
QStringList captured(const QString& text, const char* pattern)
{
    auto rows = QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text);
    QStringList all;
    while (rows.hasNext())
        all += rows.next().captured(1);
    all.removeDuplicates();
    return all;
}

QStringList commandNames()
{
    static const QString help = QString::fromStdString(fxhost({"--help"}).out);
    return captured(help.section("\nCommands:", 1).section("\nExamples:", 0, 0), "^  ([a-z]+)  ");
}

const QMap<QString, QStringList> innerCommands = {{"recipe", {"download", "upload"}},
                                                  {"tags", {"check", "export", "import"}}};

// Of the program, and of each command with the commands within it.
const QStringList& helpTexts()
{
    static const QStringList all = [] {
        QStringList texts = {QString::fromStdString(fxhost({"--help"}).out)};
        for (const QString& name : commandNames()) {
            texts += QString::fromStdString(fxhost({name, "--help"}).out);
            for (const QString& inner : innerCommands.value(name))
                texts.last() += QString::fromStdString(fxhost({name, inner, "--help"}).out);
        }
        return texts;
    }();
    return all;
}

QString wholeHelp()
{
    return helpTexts().join('\n');
}

// "-o" and "--timeout" of a line "  -o, --timeout MS    ...".
QStringList optionsIn(const QString& help)
{
    return captured(help, "^  ((?:-[A-Za-z0-9], )?--[a-z-]+)").join(", ").split(", ");
}

QStringList examplesIn(const QString& text)
{
    return captured(text, "^ *(fxhost [a-z].*)$");
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

// Lines as a shell runs them, in a folder where examples find what earlier ones wrote.
class RunningShell
{
public:
    explicit RunningShell(const QString& lines)
    {
        m_shell.setProcessEnvironment(hostEnvironment());
        m_shell.setWorkingDirectory(m_folder.path());
        QFile::copy(FX_EXAMPLES "/tags/boiler.csv", m_folder.filePath("tags.csv"));
        const QString function = QStringLiteral("fxhost() { \"%1\" \"$@\"; }\n").arg(FXHOST_FILE);
        m_shell.start("/bin/bash", {"-c", function + lines});
    }

    Ended end()
    {
        Ended ended;
        if (m_shell.waitForFinished())
            ended.code = m_shell.exitCode();
        else
            m_shell.kill();
        ended.out = m_shell.readAllStandardOutput().toStdString();
        ended.err = m_shell.readAllStandardError().toStdString();
        return ended;
    }

private:
    QTemporaryDir m_folder;
    ChildProcess m_shell;
};

// Those of one text one after the other, the texts side by side.
void expectExamplesRun(const QStringList& texts)
{
    std::deque<RunningShell> shells;
    for (const QString& text : texts) {
        QStringList examples = examplesIn(text).filter(QRegularExpression("^(?!fxhost demo)"));
        shells.emplace_back("set -ex\n" + examples.join('\n'));  // the demo has tests of its own
    }
    for (RunningShell& shell : shells) {
        const Ended ended = shell.end();
        EXPECT_EQ(ended.code, 0) << ended.err;
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
    EXPECT_GT(commandNames().size(), 16);
    for (const QString& name : commandNames()) {
        const QRegularExpression entry("^\\.(B|BI) \"?" + name + "\\b",
                                       QRegularExpression::MultilineOption);
        EXPECT_TRUE(entry.match(manual).hasMatch()) << name.toStdString();
    }
}

TEST(Help, HasLinesOf80ColumnsAtMost)
{
    for (const QString& line : wholeHelp().split('\n'))
        EXPECT_LE(line.size(), 80) << line.toStdString();
}

TEST(Help, IsTheSameAsACommandAndAsAnOption)
{
    EXPECT_EQ(fxhost({"help"}).out, fxhost({"--help"}).out);
    EXPECT_EQ(fxhost({"help", "recipe", "upload"}).out, fxhost({"recipe", "upload", "--help"}).out);
    EXPECT_TRUE(
        holds(fxhost({"help", "read"}).out, "Usage: fxhost read [OPTION]... [ADDRESS...]\n"));
    EXPECT_TRUE(holds(fxhost({"help"}).out, "\nExit status:\n"));
    EXPECT_EQ(fxhost({"-V"}).out, fxhost({"--version"}).out);
}

namespace {

// What the shell offers behind `line`.
QStringList completed(const QString& line)
{
    const QString script =
        QStringLiteral("printf 'tags = \"tags.csv\"\\n' >plcs.toml; "
                       "printf '[plc.press%s]\\nlink = \"sim:\"\\n' 1 2 >>plcs.toml; source %1; "
                       "COMP_LINE='%2'; COMP_POINT=${#COMP_LINE}; _fxhost; "
                       "printf '%s\\n' \"${COMPREPLY[@]}\"")
            .arg(FXHOST_COMPLETION, line);
    return QString::fromStdString(RunningShell(script).end().out).split('\n', Qt::SkipEmptyParts);
}

}  // namespace

TEST(Completion, OffersEachCommandOnce)
{
    EXPECT_EQ(completed("fxhost re"),
              QStringList({"read", "recipe", "record", "replay", "restore"}));
    EXPECT_EQ(completed("fxhost --link sim: recipe do"), QStringList("download"));
    EXPECT_EQ(completed("fxhost tags ex"), QStringList("export"));
    EXPECT_EQ(completed("fxhost help wr"), QStringList("write"));
    EXPECT_EQ(completed("fxhost ").size(), commandNames().size());
    EXPECT_FALSE(completed("fxhost read ").contains("read"));
}

TEST(Completion, OffersTheOptionsOfTheCommandAndThoseOfAll)
{
    EXPECT_EQ(completed("fxhost read --a"), QStringList("--as"));
    EXPECT_EQ(completed("fxhost types --a"), QStringList());
    EXPECT_EQ(completed("fxhost --link sim: types --js"), QStringList("--json"));
    EXPECT_EQ(completed("fxhost recipe upload --fo"), QStringList("--force"));
    EXPECT_EQ(completed("fxhost --fo"), QStringList());
}

TEST(Completion, OffersValues)
{
    EXPECT_EQ(completed("fxhost --link s").first(), "serial:/dev/");
    EXPECT_EQ(completed("fxhost --link=tc"), QStringList("tcp:"));
    EXPECT_EQ(completed("fxhost --link serial:/d").first().left(5), "/dev/");
    EXPECT_EQ(completed("fxhost read -P o"), QStringList("odd"));
    EXPECT_EQ(completed("fxhost --config plcs.toml --plc "), QStringList({"press1", "press2"}));
    EXPECT_EQ(completed("fxhost replay plcs"), QStringList("plcs.toml"));
    EXPECT_EQ(completed("fxhost --tags tags.csv read boiler.t"), QStringList("boiler.temperature"));
    EXPECT_EQ(completed("fxhost --tags tags.csv watch D0 --period boiler.t"),
              QStringList("boiler.temperature"));
    EXPECT_EQ(completed("fxhost --config plcs.toml check boiler.t"),
              QStringList("boiler.temperature"));
    EXPECT_EQ(completed("fxhost tags check tag"), QStringList("tags.csv"));
}

TEST(Help, ManualKnowsNoOptionThatIsNotThere)
{
    const QStringList known = optionsIn(wholeHelp());
    for (const QString& named : captured(manualPage(), "(?<![a-zA-Z0-9-])(--[a-z][a-z-]*)"))
        EXPECT_TRUE(known.contains(named)) << named.toStdString();
}

TEST(Help, EveryCommandHasExamplesAndTheyRun)
{
    for (const QString& help : helpTexts())
        EXPECT_FALSE(examplesIn(help).isEmpty()) << help.toStdString();
    expectExamplesRun(helpTexts());
}

TEST(Help, ExamplesOfTheManualRun)
{
    const QString manual = manualPage();
    const QString examples = manual.mid(manual.indexOf(".SH EXAMPLES"));
    EXPECT_GT(examplesIn(examples).size(), 5);
    expectExamplesRun({examples});
}
