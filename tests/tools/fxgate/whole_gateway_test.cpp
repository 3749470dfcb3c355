// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxgate between real workers and a real broker.

#include "tests/tools/fxgate/bus/test_broker.h"
#include "tests/tools/support/child_process.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <csignal>

using namespace gate_tests;

namespace {

class WholeGatewayTest : public testing::Test
{
protected:
    void SetUp() override
    {
        folder.write("press1.csv",
                     "name,address,scale,access,min,max,link\nflow,D900,0.1,rw,0,100,\n"
                     "parts,D901,,ro,,,press1\nother,D902,,,,,press2\n");
        const QByteArray port = QByteArray::number(broker.port());
        folder.write("fxgate.toml",
                     "[gateway]\nname = \"cabinet1\"\nstore = \"store.db\"\n"
                     "audit = \"audit.jsonl\"\nfxhost = \"" FXHOST_FILE "\"\n"
                     "[broker]\nurl = \"mqtt://127.0.0.1:" +
                         port +
                         "\"\n[plain]\n[writes]\nallowed = true\n"
                         "[link.press1]\nlink = \"sim:\"\ntags = \"press1.csv\"\nwrites = true\n"
                         "[link.press2]\nlink = \"pty:/nowhere\"\ntags = \"press1.csv\"\n");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("FX_DRIVER", FX_DRIVER_FILE);
        gate.setProcessEnvironment(environment);
        gate.start(FXGATE_FILE, {"run", "--config", folder.path("fxgate.toml"), "--socket",
                                 folder.path("control")});
    }

    ~WholeGatewayTest() override
    {
        gate.terminate();
        gate.waitForFinished(60000);
    }

    // Whether the newest message on this topic holds this.
    bool isTold(const QString& topic, const QByteArray& part)
    {
        const fxgate::Messages messages = bus.with("fx/cabinet1/" + topic);
        return !messages.isEmpty() && messages.last().payload.contains(part);
    }

    bool waitUntilTold(const QString& topic, const QByteArray& part)
    {
        return waitUntil([&] { return isTold(topic, part); });
    }

    void write(const QByteArray& payload)
    {
        fxgate::Message message;
        message.topic = "fx/cabinet1/press1/flow/set";
        message.payload = payload;
        bus.publish(message);
    }

    QJsonObject link(int index)
    {
        ChildProcess asked;
        asked.start(FXGATE_FILE, {"status", "--json", "--socket", folder.path("control")});
        asked.waitForFinished(60000);
        return QJsonDocument::fromJson(asked.readAllStandardOutput())
            .object()["links"]
            .toArray()[index]
            .toObject();
    }

    const Folder folder;
    Broker broker;
    OtherClient bus{broker, "fx/#"};
    ChildProcess gate;
};

}  // namespace

TEST_F(WholeGatewayTest, BringsValuesToTheBusAndWritesToThePlc)
{
    ASSERT_TRUE(waitUntilTold("press1/flow", R"("q":"good")"));
    ASSERT_TRUE(waitUntilTold("press1/parts", R"("q":"good")"));
    EXPECT_TRUE(bus.with("press1/other").isEmpty());  // a tag of another link
    write(R"({"v":42.5,"id":"a1"})");
    ASSERT_TRUE(waitUntilTold("press1/flow/set/reply", R"("outcome":"done")"));
    EXPECT_TRUE(isTold("press1/flow/set/reply", R"({"id":"a1","new":42.5,"old":0,)"));
    write("100.1");
    ASSERT_TRUE(waitUntilTold("press1/flow/set/reply", R"("reason":"above the maximum of 100")"));
    EXPECT_EQ(folder.read("audit.jsonl").count('\n'), 3);
}

TEST_F(WholeGatewayTest, LosesNoOtherLinkWithOne)
{
    ASSERT_TRUE(waitUntilTold("press2/other", "not read yet"));
    ASSERT_TRUE(waitUntilTold("press1/parts", R"("q":"good")"));
    EXPECT_TRUE(isTold("press2/state", R"("state":"down")"));
    ::kill(static_cast<pid_t>(link(0)["worker"].toInt()), SIGKILL);
    ASSERT_TRUE(waitUntilTold("press1/parts", "the worker was ended by signal 9"));
    ASSERT_TRUE(waitUntilTold("press1/parts", R"("q":"good")"));
    EXPECT_EQ(link(0)["restarts"].toInt(), 1);
}
