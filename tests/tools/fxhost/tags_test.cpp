// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Names in the place of addresses, over a real link: what is read, written and refused by them.

#include "tests/tools/support/programs.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace tool_tests;

namespace {

const char* const tagFile = "name,address,type,scale,unit,deadband,access,min,max,link\n"
                            "boiler.temperature,D0,,0.1,°C,0.5,ro,,,\n"
                            "boiler.setpoint,D1,,0.1,°C,,,10,80,\n"
                            "boiler.flow,D2,float,,l/min,,,,,\n"
                            "pump,M10,,,,,,,,\n"
                            "product,D10:4,text,,,,,,,\n"
                            "other,D20,,,,,,,,press2\n";

class NamedTags : public testing::Test
{
protected:
    Ended run(const QStringList& arguments)
    {
        return fxhost(QStringList{"--link", plc.link(), "--tags", file} + arguments);
    }

    std::string errorOf(const QStringList& arguments)
    {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.code, 2) << testing::PrintToString(ended);
        return ended.err;
    }

    RunningSimulator plc{Road::PseudoTerminal, {"--baud", "0", "--program", "none"}};
    QTemporaryDir folder;
    const QString file = newFile(folder, "tags.csv", tagFile);
};

}  // namespace

TEST_F(NamedTags, HavePeriods)
{
    const QString fast =
        newFile(folder, "fast.csv", "name,address,period_ms\nfast,D0,100\nslow,D9,\n");
    const QStringList common = {"--link", plc.link(), "--tags", fast,           "log", "fast",
                                "slow",   "-n",       "1",      "--turnaround", "1000"};
    const Ended ended = fxhost(common + QStringList{"--period", "slow=10s"});
    EXPECT_TRUE(holds(ended.err, "fast every 10")) << ended.err;
    EXPECT_TRUE(holds(ended.err, "slow every ")) << ended.err;
    const Ended given = fxhost(common + QStringList{"--plan", "given"});
    EXPECT_EQ(given.code, 2) << testing::PrintToString(given);
}

TEST_F(NamedTags, AreReadWithTheirUnits)
{
    plc.command("poke D0 715");
    EXPECT_EQ(run({"read", "boiler.temperature", "D0"}).out,
              "  tag                 address  value  unit\n"
              "  boiler.temperature  D0        71.5  °C\n"
              "                      D0         715\n");
    EXPECT_EQ(run({"read", "boiler.temperature", "D0", "--csv"}).out,
              "tag,address,value,unit,alarm,error\nboiler.temperature,D0,71.5,°C,,\n,D0,715,,,\n");
    const Ended json = run({"read", "boiler.temperature", "--json"});
    EXPECT_TRUE(holds(json.out,
                      R"({"tag":"boiler.temperature","address":"D0","type":"D","raw":715,)"
                      R"("value":71.5,"unit":"°C","link")"))
        << json.out;
}

TEST_F(NamedTags, AreCheckedAndBeginSeries)
{
    EXPECT_EQ(run({"check", "boiler.flow", "p*", "--csv", "-q"}).out,
              "boiler.flow,true,\"D2:2 of station 1, 16 bits\",0x1004,0x1004\n"
              "pump,true,\"M10 of station 1, bit\",0x0101,0x080A\n"
              "product,true,\"D10:4 of station 1, 16 bits\",0x1014,0x1014\n");
    const Ended unknown = run({"check", "pumpe", "--csv", "-q"});
    EXPECT_EQ(unknown.out, "pumpe,false,\"unknown tag 'pumpe'; did you mean 'pump'?\"\n");
    EXPECT_EQ(unknown.code, 1);
    EXPECT_EQ(run({"series", "pump", "-n", "2", "--csv", "-q"}).out, "1,M10\n2,M11\n");
    EXPECT_EQ(run({"series", "product", "-n", "2", "--csv", "-q"}).out, "1,D10\n2,D14\n");
    EXPECT_EQ(run({"series", "K4M0", "-n", "2", "--csv", "-q"}).out, "1,K4M0\n2,K4M16\n");
    EXPECT_EQ(run({"series", "D0.5", "-n", "2", "--csv", "-q"}).out, "1,D0.5\n2,D1.5\n");
    EXPECT_EQ(errorOf({"series", "p*"}), "fxhost: 'p*' means 2 tags; give one of them\n");
}

TEST_F(NamedTags, AreNotPlannedWhereNoReplyHoldsThem)
{
    EXPECT_EQ(
        errorOf({"plan", "product", "--words", "3"}),
        "fxhost: D10:4 is one value, and one reply brings at most 3 of its registers; read it "
        "in parts\n");
}

TEST_F(NamedTags, NameWhatACycleCouldDoWithout)
{
    const QByteArray plan =
        QByteArray::fromStdString(run({"plan", "product", "pump", "D90", "--json"}).out);
    EXPECT_EQ(QJsonDocument::fromJson(plan).object()["msLessWithout"].toObject().keys(),
              QStringList({"D90", "product", "pump"}));
    const std::string stats = run({"stats", "product", "pump", "-n", "2"}).out;
    EXPECT_NE(stats.find("without product: "), std::string::npos) << stats;
}

TEST_F(NamedTags, SayWhereRestoreGoesOn)
{
    const QString registers = folder.filePath("plc.csv");
    ASSERT_EQ(run({"dump", registers, "D0:4", "M10"}).code, 0);
    ASSERT_EQ(run({"write", "D1=200", "D2=7", "pump=on"}).code, 0);
    EXPECT_EQ(run({"restore", registers, "--from", "boiler.flow", "--yes", "-q"}).code, 0);
    EXPECT_EQ(run({"read", "D1", "D2", "M10", "--csv", "-q"}).out, "D1,200,\nD2,0,\nM10,0,\n");
    EXPECT_EQ(errorOf({"restore", registers, "--from", "b*", "--yes"}),
              "fxhost: 'b*' means 3 tags; give one of them\n");
}

// A file that names a register twice cannot be restored.
TEST_F(NamedTags, AreSavedOnceWhereTheyShareRegisters)
{
    for (const QStringList& save : {QStringList{"dump"}, QStringList{"recipe", "upload"}}) {
        const QString saved = folder.filePath("saved.csv");
        ASSERT_EQ(run(save + QStringList{saved, "boiler.flow", "D1:4", "D3", "--force"}).code, 0);
        EXPECT_EQ(contentOf(saved), "address,value\nD2,0\nD3,0\nD1,0\nD4,0\n");
        EXPECT_EQ(run({"compare", saved, "-q"}).code, 0);
    }
}

TEST_F(NamedTags, AreSavedInPartWhereOneRegisterIsRefused)
{
    const RunningSimulator partial(Road::PseudoTerminal,
                                   {"--baud", "0", "--program", "none", "--holes", "D11"});
    const QString saved = folder.filePath("saved.csv");
    EXPECT_EQ(
        fxhost({"--link", partial.link(), "--tags", file, "dump", saved, "product", "-q"}).code, 1);
    EXPECT_EQ(contentOf(saved),
              "address,value\nD10,0\n# D11: refused by the PLC (NAK)\nD12,0\nD13,0\n");
}

TEST_F(NamedTags, AreFoundByPatterns)
{
    const Ended ended = run({"read", "boiler.*,p*[pt]", "--csv", "-q"});
    EXPECT_EQ(ended.out, "boiler.temperature,D0,0,°C,,\nboiler.setpoint,D1,0,°C,,\n"
                         "boiler.flow,D2,0,l/min,,\npump,M10,0,,,\nproduct,D10:4,,,,\n");
    EXPECT_EQ(errorOf({"read", "boiler.setpiont"}),
              "fxhost: unknown tag 'boiler.setpiont'; did you mean 'boiler.setpoint'?\n");
    EXPECT_EQ(errorOf({"read", "b?iler"}), "fxhost: no tag matches 'b?iler'\n");
    EXPECT_EQ(errorOf({"write", "boiler.*=5"}),
              "fxhost: 'boiler.*' is a pattern; write one tag at a time\n");
}

TEST_F(NamedTags, AreWrittenScaledAndReadBack)
{
    const Ended ended =
        run({"write", "boiler.setpoint=71.54", "boiler.flow=2.5", "pump=on", "product=ab,=1"});
    EXPECT_EQ(ended.out, "  tag              address  old  new    unit   result\n"
                         "  boiler.setpoint  D1       0    71.5   °C     verified\n"
                         "  boiler.flow      D2:2     0    2.5    l/min  verified\n"
                         "  pump             M10      0    1             verified\n"
                         "  product          D10:4         ab,=1         verified\n")
        << ended.err;
    EXPECT_EQ(plc.command("peek D1").toStdString(), "D1: 715\n");
    const Ended json = run({"write", "boiler.setpoint=12", "--json"});
    EXPECT_TRUE(holds(json.out, R"({"tag":"boiler.setpoint","address":"D1","type":"D","old":71.5,)"
                                R"("new":12,"unit":"°C","result":"verified","link")"))
        << json.out;
}

// Nothing is sent if one of the values is wrong.
TEST_F(NamedTags, AreNotWrittenBeyondTheirLimits)
{
    EXPECT_EQ(errorOf({"write", "D5=7", "boiler.setpoint=80.1"}),
              "fxhost: 'boiler.setpoint=80.1' is above the maximum of 80 °C\n");
    EXPECT_EQ(errorOf({"write", "D5=7", "boiler.setpoint=9.99"}),
              "fxhost: 'boiler.setpoint=9.99' is below the minimum of 10 °C\n");
    EXPECT_EQ(errorOf({"write", "D5=7", "boiler.temperature=50"}),
              "fxhost: 'boiler.temperature=50' is not written: the tag is read-only\n");
    EXPECT_EQ(errorOf({"write", "D5=7", "other=5"}),
              "fxhost: other is a tag of the PLC press2; use --plc press2 to write it\n");
    EXPECT_EQ(plc.command("peek D5").toStdString(), "D5: 0\n");
}

TEST_F(NamedTags, AreLoggedWithTheirOwnDeadbands)
{
    const Ended ended = run({"log", "boiler.temperature", "D1", "-n", "1", "--json"});
    EXPECT_TRUE(holds(ended.out, R"("values":{"boiler.temperature":0,"D1":0},)"
                                 R"("raw":{"boiler.temperature":0},"link")"))
        << ended.out;
    const Ended watched = run({"watch", "boiler.temperature", "--log", "--once"});
    EXPECT_TRUE(holds(watched.out, "boiler.temperature  D0  0  °C\n")) << watched.out;
}

TEST_F(NamedTags, ShowTheirAlarms)
{
    const QString alarms = newFile(folder, "alarms.csv",
                                   "name,address,scale,unit,deadband,alarm_low,alarm_high\n"
                                   "water,D0,0.1,°C,50,10,90\nair,D1,0.1,°C,,10,90\n");
    const QStringList common = {"--link", plc.link(), "--tags", alarms};
    plc.command("poke D0 901 99");
    EXPECT_EQ(fxhost(common + QStringList{"read", "*"}).out,
              "  tag    address  value  unit  alarm\n"
              "  water  D0        90.1  °C    high\n"
              "  air    D1         9.9  °C    low\n");
    EXPECT_TRUE(holds(fxhost(common + QStringList{"read", "air", "--json"}).out,
                      R"("unit":"°C","alarm":"low","link")"));
    const QStringList log = common + QStringList{"log", "air", "water", "-n", "1"};
    EXPECT_TRUE(holds(fxhost(log).out, "9.9,90.1,\"air low; water high\",\n"));
    EXPECT_TRUE(holds(fxhost(log + QStringList{"--json"}).out,
                      R"("alarms":{"air":"low","water":"high"},"link")"));
    plc.command("poke D0 900 100");
    EXPECT_TRUE(holds(fxhost(log).out, "time,air,water,alarms,error\n"));
    EXPECT_TRUE(holds(fxhost(log).out, ",10,90,,\n"));
}

// Within their deadband.
TEST_F(NamedTags, ShowWhenAnAlarmBeginsAndEnds)
{
    const QString alarms =
        newFile(folder, "alarms.csv", "name,address,deadband,alarm_high\nwater,D0,50,90\n");
    for (const QStringList& command : {QStringList{"watch", "--log"}, {"log", "--changes"}}) {
        plc.command("poke D0 90");
        RunningHost host(QStringList{"--link", plc.link(), "--tags", alarms, "--csv", "-q"} +
                         command + QStringList{"water"});
        ASSERT_TRUE(host.hasPrinted());
        plc.command("poke D0 91");
        ASSERT_TRUE(host.hasPrinted());
        plc.command("poke D0 89");
        ASSERT_TRUE(host.hasPrinted());
        plc.command("poke D0 88");
        host.send(SIGTERM);
        EXPECT_EQ(QString::fromStdString(host.end().out).count("\n"), 3 + command.contains("log"));
    }
}

TEST_F(NamedTags, HaveAllMistakesOfTheirFileTold)
{
    const QString wrong = newFile(folder, "wrong.csv", "name,address\na,D9999\nb b,D1\n");
    const Ended ended = fxhost({"--tags", wrong, "read", "a"});
    EXPECT_EQ(ended.code, 7);
    EXPECT_EQ(ended.err, "fxhost: " + wrong.toStdString() +
                             ", line 2, column address: 'D9999' is out of range: D0 to D7999 or "
                             "D8000 to D8255\n"
                             "fxhost: " +
                             wrong.toStdString() +
                             ", line 3, column name: 'b b' is not a name; use letters, digits, "
                             "dots, - and _\n");
    EXPECT_EQ(fxhost({"--tags", wrong, "read", "D0"}).code, 0) << "only names need the file";
    EXPECT_EQ(fxhost({"--tags", "none.csv", "read", "a"}).err,
              "fxhost: none.csv: No such file or directory\n");
}

TEST_F(NamedTags, AreCheckedInTheOrderOfTheirLines)
{
    const QString wrong = newFile(folder, "wrong.csv", "name,address\na,D1\nb,D1\nc,Q1\n");
    const Ended ended = fxhost({"tags", "check", wrong, "--csv", "-q"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_TRUE(holds(ended.out, "3,address,warning,\"b shares registers with a, line 2\"\n"
                                 "4,address,error,"))
        << ended.out;
}

// The link column names a PLC of the configuration.
TEST_F(NamedTags, BelongToTheirPlc)
{
    const QString configuration =
        newFile(folder, "config.toml",
                QString("tags = 'tags.csv'\n[plc.press1]\nlink = '%1'\n[plc.press2]\nlink = '%1'\n")
                    .arg(plc.link())
                    .toUtf8());
    const auto read = [&](const char* name, const char* tags) {
        return fxhost({"--config", configuration, "--plc", name, "read", tags, "--csv", "-q"});
    };
    EXPECT_EQ(read("press1", "p*").out, "pump,M10,0,,,\nproduct,D10:4,,,,\n");
    EXPECT_EQ(read("press2", "other").out, "other,D20,0,,,\n");
    EXPECT_EQ(read("press1", "other").err,
              "fxhost: other is a tag of another PLC; use --plc press2\n");
}

// D3 and D4 change together a thousand times a second. A frame holds four words, so the cheapest
// two would be D0 to D3 and D4 to D7, with halves of different values.
TEST(TagsOfSeveralWords, AreNeverTorn)
{
    QTemporaryDir folder;
    const QString program = newFile(folder, "together.json",
                                    "{\"steps\": [{\"every\": 1, \"add\": \"D3\"},"
                                    "{\"every\": 1, \"add\": \"D4\"}]}");
    const QString tags =
        newFile(folder, "tags.csv", "name,address,type\na,D0,\npair,D3,long\nd,D7,\n");
    RunningSimulator plc(Road::PseudoTerminal, {"--baud", "115200", "--program", program});
    const Ended ended = fxhost({"--link", plc.link(), "--words", "4", "--tags", tags, "log", "*",
                                "--json", "-l", "0", "-n", "100"});
    EXPECT_EQ(ended.code, 0) << ended.err;
    int values = 0;
    for (const QString& line : QString::fromStdString(ended.out).split('\n', Qt::SkipEmptyParts)) {
        const QJsonObject row = QJsonDocument::fromJson(line.toUtf8()).object();
        const qint64 pair = row["values"].toObject()["pair"].toVariant().toLongLong();
        EXPECT_EQ(pair % 65537, 0) << pair;
        values += pair > 0 ? 1 : 0;
    }
    EXPECT_GT(values, 50);
}
