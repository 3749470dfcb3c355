// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The gateway as a whole, with workers that obey their tag files and a bus that remembers: what
// goes from the links to the bus and back, and what a changed configuration touches.

#include "tests/tools/fxgate/gate_support.h"
#include "tests/tools/support/failure_of.h"
#include "tools/fxgate/gateway.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace fxgate;
using namespace gate_tests;

namespace {

const char* const serving = "hello; up; values '\"flow\":1,\"run\":true'; alive; serve";

struct FakeBus : Bus
{
    FakeBus(const QString& form, QStringList& list) : name(form), told(list) {}

    void start() override { told += name + " starts"; }
    void tick() override {}
    void stop() override { told += name + " stops"; }
    void publish(const QVector<Change>& changes) override
    {
        for (const Change& change : changes)
            told += name + ' ' + change.link + '.' + change.tag;
    }
    void linkChanged(const QString& link) override { told += name + ' ' + link + " changed"; }
    void answer(const WriteRequest& request, const WriteResult& result) override
    {
        told += name + ' ' + request.tag + ' ' + outcomeName(result.outcome) + ' ' + result.reason;
    }
    BusStatus status() const override { return {}; }

    QString name;
    QStringList& told;
};

class GatewayTest : public testing::Test
{
protected:
    GatewayTest()
    {
        folder.write("press1.csv", serving);
        folder.write("press2.csv", serving);
        configuration = "[gateway]\nname = \"cabinet1\"\naudit = \"audit.jsonl\"\nfxhost = \"" +
                        fakeWorker.toUtf8() +
                        "\"\n[broker]\nurl = \"mqtt://localhost\"\n"
                        "[writes]\nallowed = true\n[plain]\nprefix = \"fx\"\n"
                        "[link.press1]\nlink = \"sim:\"\ntags = \"press1.csv\"\nwrites = true\n"
                        "[link.press2]\nlink = \"sim:\"\ntags = \"press2.csv\"\n";
        folder.write("fxgate.toml", configuration);
    }

    void start()
    {
        Environment environment = realEnvironment();
        environment.now = [this] { return now; };
        gateway = std::make_unique<Gateway>(
            folder.path("fxgate.toml"),
            [this](FormKind kind, const Configuration&, const Plant& links) {
                plant = &links;
                const QString name = kind == FormKind::Plain ? "plain" : "sparkplug";
                auto made = std::make_unique<FakeBus>(name, told);
                bus = made.get();
                return made;
            },
            environment, [this](const QString& line) { logged += line; });
        gateway->start();
        now.steadyMs += 100;  // until the links have started
    }

    QJsonObject link(int index) const
    {
        return gateway->status()["links"].toArray()[index].toObject();
    }

    bool waitUntilServing()
    {
        return waitUntil([this] {
            const QJsonArray links = gateway->status()["links"].toArray();
            return std::all_of(links.begin(), links.end(), [](const QJsonValue& each) {
                return each["exchanges"].toInt() == 4;
            });
        });
    }

    void write(const char* name, const QJsonValue& value)
    {
        WriteRequest request;
        request.link = name;
        request.tag = "flow";
        request.value = value;
        bus->onWrite(request);
    }

    Gateway::Reload reloadWith(const QByteArray& before, const QByteArray& after)
    {
        configuration.replace(before, after);
        folder.write("fxgate.toml", configuration);
        told.clear();
        return gateway->reload();
    }

    const Folder folder;
    QByteArray configuration;
    Moment now{1795348800000, 5000};
    QStringList told, logged;
    FakeBus* bus = nullptr;
    const Plant* plant = nullptr;
    std::unique_ptr<Gateway> gateway;
};

// So that a difference is readable.
std::string joined(const QStringList& list)
{
    return list.join('\n').toStdString();
}

}  // namespace

TEST_F(GatewayTest, ServesItsLinksUntilItIsStopped)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    EXPECT_EQ(told.count("plain starts"), 1);
    EXPECT_EQ(told.count("plain press1.flow"), 1);
    EXPECT_EQ(told.count("plain press2.run"), 1);
    EXPECT_TRUE(link(0)["up"].toBool());
    EXPECT_EQ(link(1)["goodTags"].toInt(), 2);
    told.clear();
    gateway->stop();
    EXPECT_EQ(joined(told), "plain press1.flow\nplain press1.run\nplain press1 changed\n"
                            "plain press2.flow\nplain press2.run\nplain press2 changed\n"
                            "plain stops");
    EXPECT_EQ(link(0)["worker"].toInt(), 0);
    EXPECT_EQ(link(1)["worker"].toInt(), 0);
}

TEST_F(GatewayTest, EndsAlsoWorkersThatAreDeaf)
{
    folder.write("press1.csv", "hello; up; alive; hang");
    start();
    ASSERT_TRUE(waitUntilServing());
    write("press1", 2);
    gateway->stop();
    EXPECT_EQ(link(0)["worker"].toInt(), 0);
    EXPECT_TRUE(told.contains("plain flow unknown the gateway stopped the link"));
}

TEST_F(GatewayTest, CarriesWritesOutAndAnswersThem)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    write("press1", 2);
    ASSERT_TRUE(waitUntil([this] { return told.contains("plain flow done "); }));
    write("press2", 2);
    EXPECT_EQ(told.last(),
              "plain flow refused writes to this link are not allowed: it lacks writes = true");
    EXPECT_EQ(folder.read("audit.jsonl").count('\n'), 3);
    EXPECT_EQ(gateway->status()["writes"].toObject(),
              (QJsonObject{{"done", 1}, {"refused", 1}, {"failed", 0}, {"unknown", 0}}));
}

TEST_F(GatewayTest, ComplainsOfTheAuditFileWhereItIsNeeded)
{
    const auto isToldOf = [this] {
        logged.clear();
        gateway->tick();
        EXPECT_EQ(logged.isEmpty(), gateway->status()["auditProblem"].toString().isEmpty());
        return logged.join(' ').contains("the audit file cannot be written");
    };
    configuration.replace("audit.jsonl", "nowhere/audit.jsonl");
    folder.write("fxgate.toml", configuration);
    start();
    EXPECT_TRUE(isToldOf());
    configuration.replace("audit = \"nowhere/audit.jsonl\"\n", "");
    reloadWith("allowed = true", "allowed = false");
    EXPECT_FALSE(isToldOf());
    reloadWith("[gateway]", "[gateway]\naudit = \"nowhere/audit.jsonl\"");
    EXPECT_TRUE(isToldOf()) << "it was asked for";
}

TEST_F(GatewayTest, ServesTheOtherLinksWhileOneFloods)
{
    folder.write("press1.csv", "yes");
    start();
    ASSERT_TRUE(waitUntil([this] { return link(1)["exchanges"].toInt() == 4; }));
    ASSERT_TRUE(waitUntil([this] { return !link(0)["lastError"].toString().isEmpty(); }));
    EXPECT_TRUE(link(1)["up"].toBool());
    EXPECT_TRUE(told.contains("plain press2.flow"));
}

TEST_F(GatewayTest, TellsEverythingAgainNowAndThen)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    told.clear();
    now.steadyMs += gateway->configuration().gateway.refreshMs;
    ASSERT_TRUE(waitUntil(
        [this] { return told.contains("plain press1.run") && told.contains("plain press2.run"); }));
}

TEST_F(GatewayTest, TellsTheLinksAgainOneAfterTheOther)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    for (const char* const link : {"press1", "press2", "press1"}) {
        told.clear();
        now.steadyMs += gateway->configuration().gateway.refreshMs / 2;
        ASSERT_TRUE(waitUntil([this] { return told.size() == 2; }));
        const QString name = QString("plain %1.").arg(link);
        EXPECT_EQ(told, QStringList({name + "flow", name + "run"}));
    }
}

TEST_F(GatewayTest, TouchesNothingWhereNothingHasChanged)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    const Gateway::Reload reload = reloadWith("", "");
    EXPECT_TRUE(reload.isDone);
    EXPECT_EQ(reload.text, "reload: applied; no link or form was restarted");
    EXPECT_EQ(joined(told), "");
}

TEST_F(GatewayTest, ReloadsOnlyTheLinksThatHaveChanged)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    const int worker = link(0)["worker"].toInt();
    const QByteArray third = "[link.press3]\nlink = \"sim:\"\ntags = \"press1.csv\"\n";
    EXPECT_EQ(reloadWith("[link.press2]", third + "[link.press2]").text, "reload: press3 started");
    folder.write("press2.csv", QByteArray(serving) + " # changed");
    EXPECT_EQ(reloadWith("", "").text, "reload: press2 restarted");
    EXPECT_EQ(told.last(), "plain press2 changed");
    EXPECT_EQ(reloadWith(third, "").text, "reload: press3 stopped");
    EXPECT_EQ(told.last(), "plain press3 changed");
    EXPECT_EQ(plant->keys(), QStringList({"press1", "press2"}));
    EXPECT_EQ(gateway->status()["links"].toArray().size(), 2);
    EXPECT_EQ(link(0)["worker"].toInt(), worker);
    EXPECT_FALSE(told.join(' ').contains("press1"));
    ASSERT_TRUE(waitUntilServing());
}

TEST_F(GatewayTest, RestartsWorkersOneAfterTheOther)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    EXPECT_EQ(reloadWith("fxhost = \"", "fxhost = \"/").text,  // the same, by another name
              "reload: press1 restarted, press2 restarted");
    EXPECT_NE(link(0)["worker"].toInt(), 0);
    EXPECT_EQ(link(1)["worker"].toInt(), 0);
    now.steadyMs += 10;
    gateway->tick();
    EXPECT_NE(link(1)["worker"].toInt(), 0);
}

TEST_F(GatewayTest, ReloadsOnlyTheFormsThatHaveChanged)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    EXPECT_EQ(reloadWith("[plain]", "[sparkplug]\ngroup = \"plant\"\n[plain]").text,
              "reload: sparkplug started");
    EXPECT_EQ(joined(told), "sparkplug starts");
    EXPECT_EQ(reloadWith("\"fx\"", "\"fy\"").text, "reload: plain restarted");
    EXPECT_EQ(joined(told), "plain stops\nplain starts");
    EXPECT_EQ(reloadWith("[sparkplug]\ngroup = \"plant\"\n", "").text, "reload: sparkplug stopped");
    EXPECT_EQ(joined(told), "sparkplug stops");
    EXPECT_EQ(reloadWith("localhost", "127.0.0.1").text, "reload: plain restarted");
}

TEST_F(GatewayTest, TakesOverWhoMayWrite)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    EXPECT_EQ(reloadWith("allowed = true", "allowed = false").text,
              "reload: applied; no link or form was restarted");
    write("press1", 2);
    EXPECT_EQ(told.last(),
              "plain flow refused writes are not allowed: [writes] lacks allowed = true");
}

TEST_F(GatewayTest, ChangesNothingWhereTheConfigurationHasMistakes)
{
    start();
    ASSERT_TRUE(waitUntilServing());
    const Gateway::Reload reload = reloadWith("[writes]", "[wirtes]");
    EXPECT_FALSE(reload.isDone);
    EXPECT_EQ(reload.text, "reload: nothing was changed:\n" + folder.path("fxgate.toml") +
                               ", line 7, column 2: unknown key 'wirtes'; did you mean 'writes'?");
    EXPECT_EQ(logged.last(), reload.text);
    EXPECT_EQ(joined(told), "");
    EXPECT_TRUE(link(0)["up"].toBool());
}

TEST_F(GatewayTest, DoesNotAnswerABusThatAReloadHasEnded)
{
    folder.write("press1.csv", "hello; up; alive; hang");
    start();
    ASSERT_TRUE(waitUntilServing());
    write("press1", 2);
    reloadWith("\"fx\"", "\"fy\"");
    gateway->stop();
    EXPECT_FALSE(told.join('\n').contains("flow unknown"));
    EXPECT_TRUE(folder.read("audit.jsonl").contains("\"unknown\""));
}

TEST_F(GatewayTest, DoesNotBeginWithMistakes)
{
    folder.write("fxgate.toml", "");
    EXPECT_NE(tool_tests::failureOf(fxtools::ExitCode::File, [this] { start(); }), "no failure");
}
