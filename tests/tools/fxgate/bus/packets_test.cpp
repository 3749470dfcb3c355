// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The packets of a connection as a broker gets them, byte by byte.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tests/tools/fxgate/gate_support.h"
#include "tools/fxgate/bus/bus_client.h"
#include "tools/fxgate/bus/sparkplug_form.h"

#include <gtest/gtest.h>

#include <QTcpServer>
#include <QTcpSocket>

using namespace fxgate;
using namespace gate_tests;

namespace {

// Kinds of packets: the upper half of their first byte.
constexpr int connectKind = 1, publishKind = 3, subscribeKind = 8, unsubscribeKind = 10,
              disconnectKind = 14;

// A broker that says yes to everything, and keeps what it got.
class ScriptedBroker
{
public:
    explicit ScriptedBroker(bool isVersion5) : m_isVersion5(isVersion5)
    {
        EXPECT_TRUE(m_server.listen(QHostAddress::LocalHost));
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] {
            m_socket = m_server.nextPendingConnection();
            QObject::connect(m_socket, &QTcpSocket::readyRead, [this] { read(); });
        });
    }

    BrokerSettings settings() const
    {
        BrokerSettings settings;
        settings.host = "127.0.0.1";
        settings.port = m_server.serverPort();
        settings.isEncrypted = false;
        settings.isVersion5 = m_isVersion5;
        return settings;
    }

    // Without the first byte and the length.
    QVector<QByteArray> packets(int kind) const
    {
        QVector<QByteArray> found;
        for (const auto& [first, packet] : m_packets)
            if (first >> 4 == kind)
                found.append(packet);
        return found;
    }

    // All kinds in order; of a publish its first byte too.
    std::string kinds() const
    {
        QStringList kinds;
        for (const auto& packet : m_packets)
            kinds.append(packet.first >> 4 == publishKind
                             ? QString("publish-%1").arg(packet.first & 15)
                             : QString::number(packet.first >> 4));
        return kinds.join(' ').toStdString();
    }

private:
    void read()
    {
        m_bytes += m_socket->readAll();
        while (m_bytes.size() >= 2) {
            int length = 0, at = 1, shift = 0;
            do {
                length |= (m_bytes.at(at) & 0x7F) << shift;
                shift += 7;
            } while ((m_bytes.at(at++) & 0x80) != 0 && at < m_bytes.size());
            if (m_bytes.size() < at + length)
                return;
            const int first = static_cast<unsigned char>(m_bytes.at(0));
            const QByteArray packet = m_bytes.mid(at, length);
            m_bytes.remove(0, at + length);
            m_packets.append({first, packet});
            answer(first >> 4, packet);
        }
    }

    void answer(int kind, const QByteArray& packet)
    {
        if (kind == connectKind)
            m_socket->write(QByteArray::fromHex(m_isVersion5 ? "2003000000" : "20020000"));
        if (kind == subscribeKind)
            m_socket->write(QByteArray::fromHex(m_isVersion5 ? "9004" : "9003") + packet.left(2) +
                            QByteArray::fromHex(m_isVersion5 ? "0001" : "01"));
    }

    bool m_isVersion5;
    QTcpServer m_server;
    QTcpSocket* m_socket = nullptr;
    QByteArray m_bytes;
    QVector<QPair<int, QByteArray>> m_packets;
};

class PacketsTest : public testing::TestWithParam<bool>
{
protected:
    Folder m_folder;
    Plant m_plant = {{"press1", pressView()}};
    SparkplugForm m_form = SparkplugForm({"plant", "cabinet1", {}}, m_plant);
    ScriptedBroker m_broker = ScriptedBroker(GetParam());

    void runOnce()
    {
        StoreSettings file;
        file.file = m_folder.path("store.db");
        Store store(file);
        BusClient bus(m_form, store, m_broker.settings(), m_plant, realEnvironment());
        const Ticker ticker([&bus] { bus.tick(); });
        bus.onState = [](const QString& /*line*/) {};
        bus.start();
        ASSERT_TRUE(waitUntil([this] { return m_broker.packets(publishKind).size() == 2; }));
        bus.stop();
        ASSERT_TRUE(waitUntil([this] { return m_broker.packets(disconnectKind).size() == 1; }));
    }
};

INSTANTIATE_TEST_SUITE_P(Versions, PacketsTest, testing::Bool(),
                         [](const auto& of) { return of.param ? "Mqtt5" : "Mqtt311"; });

TEST_P(PacketsTest, ConnectStartsCleanWithADeathAsItsWill)
{
    runOnce();
    ASSERT_EQ(m_broker.packets(connectKind).size(), 1);
    const QByteArray packet = m_broker.packets(connectKind)[0];
    EXPECT_EQ(packet.left(6), QByteArray::fromHex("00044d515454"));
    EXPECT_EQ(packet[6], GetParam() ? 5 : 4);
    EXPECT_EQ(packet[7], 0b00001110);  // no user, will of QoS 1 that is not retained, clean
    EXPECT_EQ(packet.mid(8, 2).toHex(), "000a");
    if (GetParam()) {
        // No properties, among them no session expiry interval, means that it expires at once.
        EXPECT_LE(packet[10], 3);
        EXPECT_NE(packet[11], 0x11);
    }
    EXPECT_TRUE(packet.contains("spBv1.0/plant/NDEATH/cabinet1"));
    EXPECT_TRUE(packet.endsWith(QByteArray::fromHex("120b0a05626453657120045800")));
}

TEST_P(PacketsTest, SubscriptionsComeFirstThenBirthsThenData)
{
    runOnce();
    EXPECT_EQ(m_broker.kinds(), "1 8 8 publish-0 publish-0 publish-2 10 14");
    for (const QByteArray& packet : m_broker.packets(subscribeKind))
        EXPECT_EQ(packet.back(), 1);  // QoS
}

TEST_P(PacketsTest, DisconnectAsksForTheWillWhereItCan)
{
    runOnce();
    ASSERT_EQ(m_broker.packets(disconnectKind).size(), 1);
    const QByteArray packet = m_broker.packets(disconnectKind)[0];
    EXPECT_EQ(packet.left(1).toHex(), GetParam() ? "04" : "");
}

}  // namespace
