// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The configuration file: which PLC is meant, with which settings, and where a mistake stands.

#include "tests/tools/support/programs.h"

#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace tool_tests;

namespace {

const char* const twoPlcs = R"(default = "press2"

[plc.press1]
link = "pty:/dev/pts/press1"
words = 16

[plc.press2]
link = "pty:/dev/pts/press2"
)";

QProcessEnvironment environmentOf(const QTemporaryDir& folder, const char* link)
{
    QDir(folder.path()).mkpath("fxhost");
    newFile(folder, "fxhost/config.toml", twoPlcs);
    QProcessEnvironment environment = hostEnvironment();
    environment.insert("XDG_CONFIG_HOME", folder.path());
    environment.insert("FX_LINK", link);
    return environment;
}

}  // namespace

// A link that cannot be opened names itself.
TEST(ConfiguredPlc, IsMeantWhereNothingElseIsNamed)
{
    struct Row
    {
        QStringList options;
        const char* environment;
        const char* link;
    };
    const Row rows[] = {
        {{}, "", "/dev/pts/press2"},
        {{}, "pty:/dev/pts/other", "/dev/pts/other"},
        {{"--plc", "press1"}, "pty:/dev/pts/other", "/dev/pts/press1"},
        {{"--link", "pty:/dev/pts/mine"}, "sim:", "/dev/pts/mine"},
    };
    const QTemporaryDir folder;
    for (const auto& [options, environment, link] : rows) {
        const Ended ended =
            fxhost(QStringList{"read", "D0"} + options, environmentOf(folder, environment));
        EXPECT_EQ(ended.err,
                  "fxhost: cannot open " + std::string(link) + ": No such file or directory\n");
    }
}

TEST(ConfiguredPlc, HasItsOwnSettings)
{
    const QTemporaryDir folder;
    const QProcessEnvironment environment = environmentOf(folder, "");
    const auto blocks = [&](const QStringList& options) {
        const QStringList plan{"plan", "D0:64", "--csv", "-q"};
        return times(fxhost(plan + options, environment).out, "given,");
    };
    EXPECT_EQ(blocks({}), 2);
    EXPECT_EQ(blocks({"--plc", "press1"}), 4);
    EXPECT_EQ(blocks({"--plc", "press1", "--words", "64"}), 1);
}

TEST(ConfiguredPlc, OfAWrongNameIsToldWithTheNearest)
{
    const QTemporaryDir folder;
    const Ended ended = fxhost({"--plc", "pres1", "read", "D0"}, environmentOf(folder, ""));
    EXPECT_EQ(ended.code, 2);
    EXPECT_EQ(ended.err, "fxhost: " + folder.path().toStdString() +
                             "/fxhost/config.toml: unknown PLC 'pres1'; did you mean 'press1'?\n");
}

TEST(ConfigurationFile, NamesThePlaceOfAMistake)
{
    struct Row
    {
        const char* content;
        std::string says;  // behind the file's name
    };
    const Row rows[] = {
        {"[plc.a]\nlink = 'sim:'\nword = 4\n",
         "3, column 1: unknown key 'word'; did you mean 'words'?\n"},
        {"[press]\nlink = 'sim:'\n",
         "1, column 2: unknown key 'press'; known: default, plc, tags\n"},
        {"[plc.a]\nwords = 16\n", "1, column 1: link is missing below [plc.a]; for example link = "
                                  "\"serial:/dev/ttyUSB0?baud=9600\"\n"},
        {"[plc.a]\nlink = 'usb:1'\n",
         "2, column 8: invalid link 'usb:1': expected sim:, serial:/dev/ttyUSB0?baud=9600, "
         "tcp:HOST:PORT or pty:PATH\n"},
        {"[plc.a]\nlink = 5\n", "2, column 8: link must be a text in quotes, not 5\n"},
        {"[plc.a]\nlink = 'sim:'\nwords = 300\n",
         "3, column 9: words must be a whole number from 2 to 253, not 300\n"},
        {"[plc.a]\nlink = 'sim:'\ntimeout = '5m'\n",
         "3, column 11: timeout must be a time from \"10ms\" to \"1min\", in quotes, not '5m'\n"},
        {"default = 'b'\n[plc.a]\nlink = 'sim:'\n", "1, column 11: unknown PLC 'b'; known: a\n"},
        {"plc = 5\n", "1, column 7: plc must be a table: [plc] and its keys below\n"},
        {"[plc.a]\nlink = sim:\n", "2, column 8: "},  // and what the parser says
        {"[plc.a]\nlink = 'sim:'\ntags = 'b\xFF.csv'\n",
         "3, column 9: cannot read 'tags = 'b\uFFFD.csv'': the file must be saved as UTF-8\n"},
        {"[,\"a\":1]\n", "1, column 2: "},  // found by fuzzing: it was an assertion of the parser
        // Found by fuzzing: the parser is undefined there.
        {"# '\u00B0\n[plc.a]\nlink = \"\u00B0\\\"'\"\u00FC\n",
         "3, column 14: '\u00FC' must stand in quotes\n"},
    };
    const QTemporaryDir folder;
    for (const auto& [content, says] : rows) {
        const QString file = newFile(folder, "plcs.toml", content);
        const Ended ended = fxhost({"--config", file, "--plc", "a", "read", "D0"});
        EXPECT_EQ(ended.code, 7) << content;
        const std::string whole = "fxhost: " + file.toStdString() + ", line " + says;
        EXPECT_EQ(says.back() == '\n' ? ended.err : ended.err.substr(0, whole.size()), whole);
    }
}

TEST(ConfigurationFile, HasAllItsMistakesToldAtOnce)
{
    const QTemporaryDir folder;
    const QString file = newFile(folder, "plcs.toml",
                                 "tags = 1\n[plc.a]\nlnk = 'sim:'\n"
                                 "[plc.b]\nlink = 'sim:'\nretries = -1\ntimeout = 5\n");
    const Ended ended = fxhost({"--config", file, "--plc", "a", "read", "D0"});
    EXPECT_EQ(ended.code, 7);
    EXPECT_EQ(QString::fromStdString(ended.err).remove("fxhost: " + file).toStdString(),
              ", line 1, column 8: tags must be a text in quotes, not 1\n"
              ", line 2, column 1: link is missing below [plc.a]; for example link = "
              "\"serial:/dev/ttyUSB0?baud=9600\"\n"
              ", line 3, column 1: unknown key 'lnk'; did you mean 'link'?\n"
              ", line 6, column 11: retries must be a whole number from 0 to 100, not -1\n"
              ", line 7, column 11: timeout must be a whole number from 10 to 60000, not 5\n");
}

TEST(ConfigurationFile, ThatIsMissingIsNamed)
{
    const Ended ended = fxhost({"--config", "/no/such.toml", "--plc", "a", "read", "D0"});
    EXPECT_EQ(ended.code, 7);
    EXPECT_EQ(ended.err, "fxhost: /no/such.toml: No such file or directory\n");
}

// In the README, where shells make it, and in the manual.
TEST(ConfigurationFile, ExamplesAreRight)
{
    static const QRegularExpression example(
        R"((?:```toml|<<END|\.nf)\n((?:default|\[plc\.)[^`]*?)(?:```|END|\.fi)\n)");
    static const QRegularExpression name(R"(\[plc\.(\w+)\])");
    for (const char* const document : {FX_README, FX_TUTORIAL, FXHOST_MANUAL}) {
        const QString text = QString::fromUtf8(contentOf(document)).replace("\\-", "-");
        const QString content = example.match(text).captured(1);
        const QTemporaryDir folder;
        const QString file = newFile(folder, "plcs.toml", content.toUtf8());
        auto names = name.globalMatch(content);
        EXPECT_TRUE(names.hasNext()) << document;
        while (names.hasNext()) {
            const QString plc = names.next().captured(1);
            EXPECT_EQ(fxhost({"--config", file, "--plc", plc, "types", "-q"}).err, "") << document;
        }
    }
}
