// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/fxgate/bus/test_broker.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>
#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <csignal>

using namespace fxgate;

namespace gate_tests {

namespace {

OtherClient& clientOf(void* object)
{
    return *static_cast<OtherClient*>(object);
}

}  // namespace

Broker::Broker(const QByteArray& lines) : m_lines(lines)
{
    QTcpServer free;
    EXPECT_TRUE(free.listen(QHostAddress::LocalHost));
    m_port = free.serverPort();
    free.close();
    start();
}

void Broker::start()
{
    const QString file =
        m_folder.write("mosquitto.conf", "user root\nlistener " + QByteArray::number(m_port) +
                                             " 127.0.0.1\n" + m_lines);
    m_process = std::make_unique<ChildProcess>();
    m_process->setStandardErrorFile("/dev/null");
    m_process->start("mosquitto", {"-c", file}, QIODevice::ReadOnly);
    if (!m_process->waitForStarted())
        m_process->start("/usr/sbin/mosquitto", {"-c", file}, QIODevice::ReadOnly);
    EXPECT_TRUE(m_process->waitForStarted());
    QElapsedTimer waited;
    waited.start();
    QTcpSocket socket;
    do {
        EXPECT_EQ(m_process->state(), QProcess::Running) << "the broker does not run";
        socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(m_port));
    } while (!socket.waitForConnected(1000) && waited.elapsed() < 20000);
    EXPECT_EQ(socket.state(), QAbstractSocket::ConnectedState);
}

void Broker::pause()
{
    ::kill(static_cast<pid_t>(m_process->processId()), SIGSTOP);
}

void Broker::goOnSoon()
{
    QProcess::startDetached(
        "/bin/sh", {"-c", "sleep 0.2; kill -CONT " + QString::number(m_process->processId())});
}

void Broker::kill()
{
    m_process->kill();
    m_process->waitForFinished();
}

BrokerSettings Broker::settings() const
{
    BrokerSettings settings;
    settings.host = "127.0.0.1";
    settings.port = m_port;
    settings.isEncrypted = false;
    return settings;
}

OtherClient::OtherClient(const Broker& broker, const QString& topics)
{
    mosquitto_lib_init();
    m_client = mosquitto_new(nullptr, true, this);
    mosquitto_int_option(m_client, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_connect_callback_set(
        m_client, [](mosquitto*, void* object, int) { clientOf(object).m_isConnected = true; });
    mosquitto_subscribe_callback_set(m_client, [](mosquitto*, void* object, int, int, const int*) {
        clientOf(object).m_isSubscribed = true;
    });
    mosquitto_message_v5_callback_set(m_client, [](mosquitto*, void* object,
                                                   const mosquitto_message* message,
                                                   const mosquitto_property* properties) {
        Message record = {message->topic,
                          QByteArray(static_cast<char*>(message->payload), message->payloadlen),
                          message->qos, message->retain};
        void* bytes = nullptr;
        std::uint16_t byteCount = 0;
        if (mosquitto_property_read_binary(properties, MQTT_PROP_CORRELATION_DATA, &bytes,
                                           &byteCount, false))
            record.correlation = QByteArray(static_cast<char*>(bytes), byteCount);
        free(bytes);
        clientOf(object).m_received.append(record);
    });
    EXPECT_EQ(mosquitto_connect(m_client, "127.0.0.1", broker.port(), 60), MOSQ_ERR_SUCCESS);
    runUntil(m_isConnected);
    mosquitto_subscribe(m_client, nullptr, topics.toUtf8().constData(), 1);
    runUntil(m_isSubscribed);
}

OtherClient::~OtherClient()
{
    mosquitto_destroy(m_client);
}

void OtherClient::runUntil(const bool& isSo)
{
    QElapsedTimer waited;
    waited.start();
    while (!isSo && waited.elapsed() < 20000)
        mosquitto_loop(m_client, 100, 1);
    EXPECT_TRUE(isSo);
}

void OtherClient::publish(const Message& message)
{
    mosquitto_property* properties = nullptr;
    if (!message.responseTopic.isEmpty())
        mosquitto_property_add_string(&properties, MQTT_PROP_RESPONSE_TOPIC,
                                      message.responseTopic.toUtf8().constData());
    if (!message.correlation.isEmpty())
        mosquitto_property_add_binary(&properties, MQTT_PROP_CORRELATION_DATA,
                                      message.correlation.constData(),
                                      static_cast<std::uint16_t>(message.correlation.size()));
    if (!message.user.isEmpty())
        mosquitto_property_add_string_pair(&properties, MQTT_PROP_USER_PROPERTY, "user",
                                           message.user.toUtf8().constData());
    EXPECT_EQ(mosquitto_publish_v5(m_client, nullptr, message.topic.toUtf8().constData(),
                                   message.payload.size(), message.payload.constData(), message.qos,
                                   message.isRetained, properties),
              MOSQ_ERR_SUCCESS);
    mosquitto_property_free_all(&properties);
}

const Messages& OtherClient::received()
{
    for (int packet = 0; packet < 100; ++packet)
        mosquitto_loop(m_client, 0, 1);
    return m_received;
}

Messages OtherClient::with(const QString& part)
{
    Messages found;
    for (const Message& message : received())
        if (message.topic.contains(part))
            found.append(message);
    return found;
}

}  // namespace gate_tests
