// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/bus/broker_connection.h"

#include <QElapsedTimer>
#include <QFile>
#include <QHostAddress>
#include <QHostInfo>

#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <poll.h>

#include <cerrno>
#include <cstring>

namespace fxgate {

namespace {

constexpr int keepAliveS = 10;
constexpr int packetsAtOnce = 100;  // before others have their turn
constexpr int versions[] = {MQTT_PROTOCOL_V311, MQTT_PROTOCOL_V5};

// Nobody can subscribe to it, and nobody publishes there.
constexpr const char* barrierTopic = "fxgate/barrier";

BrokerConnection& connectionOf(void* object)
{
    return *static_cast<BrokerConnection*>(object);
}

QByteArray firstLine(const QString& path, bool& isRead)
{
    QFile file(path);
    isRead = file.open(QIODevice::ReadOnly);
    return isRead ? file.readLine().trimmed() : QByteArray();
}

// A key file with a pass phrase is refused: nobody is there to be asked.
int noPassPhrase(char* /*buffer*/, int /*bytes*/, int /*isForWriting*/, void* /*object*/)
{
    return 0;
}

// What MQTT 5 has beside topic and payload.
class Properties
{
public:
    ~Properties() { mosquitto_property_free_all(&m_first); }
    explicit Properties(const Message& message)
    {
        if (!message.correlation.isEmpty())
            mosquitto_property_add_binary(&m_first, MQTT_PROP_CORRELATION_DATA,
                                          message.correlation.constData(),
                                          static_cast<std::uint16_t>(message.correlation.size()));
    }
    Properties(const Properties&) = delete;
    Properties& operator=(const Properties&) = delete;

    const mosquitto_property* first() const { return m_first; }

private:
    mosquitto_property* m_first = nullptr;
};

void readProperties(const mosquitto_property* properties, Message& message)
{
    char* text = nullptr;
    if (mosquitto_property_read_string(properties, MQTT_PROP_RESPONSE_TOPIC, &text, false)) {
        message.responseTopic = QString::fromUtf8(text);
        free(text);  // NOLINT(cppcoreguidelines-no-malloc): the library allocated it
    }
    void* bytes = nullptr;
    std::uint16_t byteCount = 0;
    if (mosquitto_property_read_binary(properties, MQTT_PROP_CORRELATION_DATA, &bytes, &byteCount,
                                       false)) {
        message.correlation = QByteArray(static_cast<const char*>(bytes), byteCount);
        free(bytes);
    }
    char* key = nullptr;
    const mosquitto_property* found = mosquitto_property_read_string_pair(
        properties, MQTT_PROP_USER_PROPERTY, &key, &text, false);
    while (found != nullptr) {
        if (qstrcmp(key, "user") == 0)
            message.user = QString::fromUtf8(text);
        free(key);
        free(text);
        found =
            mosquitto_property_read_string_pair(found, MQTT_PROP_USER_PROPERTY, &key, &text, true);
    }
}

}  // namespace

struct BrokerConnection::Callbacks
{
    static void connected(mosquitto* /*client*/, void* object, int result, int /*flags*/,
                          const mosquitto_property* /*properties*/)
    {
        BrokerConnection& connection = connectionOf(object);
        connection.m_wasConnectSent = true;
        if (result == 0) {
            connection.onConnected();
            return;
        }
        connection.m_error =
            "the broker refused the connection: " +
            QString::fromUtf8(connection.m_settings.isVersion5 ? mosquitto_reason_string(result)
                                                               : mosquitto_connack_string(result));
    }

    static void disconnected(mosquitto* /*client*/, void* object, int result,
                             const mosquitto_property* /*properties*/)
    {
        BrokerConnection& connection = connectionOf(object);
        if (result == 0)
            connection.end(QStringLiteral("the gateway disconnected"));
        if (result >= 0x80)  // a reason of the broker
            connection.m_error = "the broker ended the connection: " +
                                 QString::fromUtf8(mosquitto_reason_string(result));
    }

    static void subscribed(mosquitto* /*client*/, void* object, int number, int count,
                           const int* granted, const mosquitto_property* /*properties*/)
    {
        connectionOf(object).onSubscribed(number, count == 1 && granted[0] < 0x80);
    }

    static void barrier(mosquitto* /*client*/, void* object, int number,
                        const mosquitto_property* /*properties*/)
    {
        connectionOf(object).onBarrier(number);
    }

    static void acknowledged(mosquitto* /*client*/, void* object, int number, int reason,
                             const mosquitto_property* /*properties*/)
    {
        connectionOf(object).onAcknowledged(number, reason < 0x80);
    }

    static void received(mosquitto* /*client*/, void* object, const mosquitto_message* message,
                         const mosquitto_property* properties)
    {
        Message record = {
            QString::fromUtf8(message->topic),
            QByteArray(static_cast<const char*>(message->payload), message->payloadlen),
            message->qos, message->retain};
        readProperties(properties, record);
        connectionOf(object).onMessage(record);
    }

    static void log(mosquitto* /*client*/, void* object, int level, const char* text)
    {
        if (level == MOSQ_LOG_ERR && connectionOf(object).m_error.isEmpty())
            connectionOf(object).m_error = QString::fromUtf8(text);
    }
};

BrokerConnection::BrokerConnection(const BrokerSettings& settings, const QString& clientId,
                                   const Message& will)
    : m_settings(settings)
{
    static const int isLibraryReady = mosquitto_lib_init();
    Q_UNUSED(isLibraryReady)
    m_client = mosquitto_new(clientId.toUtf8().constData(), true, this);
    mosquitto_int_option(m_client, MOSQ_OPT_PROTOCOL_VERSION,
                         versions[settings.isVersion5 ? 1 : 0]);
    mosquitto_int_option(m_client, MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_max_inflight_messages_set(m_client, 0);  // it queues nothing
    mosquitto_will_set_v5(m_client, will.topic.toUtf8().constData(), will.payload.size(),
                          will.payload.constData(), will.qos, will.isRetained, nullptr);
    mosquitto_connect_v5_callback_set(m_client, Callbacks::connected);
    mosquitto_disconnect_v5_callback_set(m_client, Callbacks::disconnected);
    mosquitto_subscribe_v5_callback_set(m_client, Callbacks::subscribed);
    mosquitto_unsubscribe_v5_callback_set(m_client, Callbacks::barrier);
    mosquitto_publish_v5_callback_set(m_client, Callbacks::acknowledged);
    mosquitto_message_v5_callback_set(m_client, Callbacks::received);
    mosquitto_log_callback_set(m_client, Callbacks::log);

    QObject::connect(&m_everySecond, &QTimer::timeout, this, [this] {
        if (isGood(mosquitto_loop_misc(m_client)))
            watchSocket();
    });
}

BrokerConnection::~BrokerConnection()
{
    stopWatching();
    mosquitto_destroy(m_client);
}

bool BrokerConnection::prepareEncryption()
{
    const auto path = [](const QString& text) { return QFile::encodeName(text); };
    const auto given = [](const QByteArray& name) {
        return name.isEmpty() ? nullptr : name.constData();
    };
    const QByteArray ca = path(m_settings.caFile);
    const QByteArray certificate = path(m_settings.certFile), key = path(m_settings.keyFile);
    int result = MOSQ_ERR_SUCCESS;
    if (ca.isEmpty())
        result = mosquitto_int_option(m_client, MOSQ_OPT_TLS_USE_OS_CERTS, 1);
    if (result == MOSQ_ERR_SUCCESS)
        result = mosquitto_tls_set(m_client, given(ca), ca.isEmpty() ? "/etc/ssl/certs" : nullptr,
                                   given(certificate), given(key), noPassPhrase);
    if (result != MOSQ_ERR_SUCCESS)
        end(QStringLiteral("cannot read the certificate or key files"));
    return result == MOSQ_ERR_SUCCESS;
}

bool BrokerConnection::prepare()
{
    if (!m_settings.user.isEmpty()) {
        bool isRead = true;
        const QByteArray password = m_settings.passwordFile.isEmpty()
                                        ? QByteArray()
                                        : firstLine(m_settings.passwordFile, isRead);
        if (!isRead) {
            end("cannot read " + m_settings.passwordFile);
            return false;
        }
        mosquitto_username_pw_set(m_client, m_settings.user.toUtf8().constData(),
                                  password.constData());
    }
    return !m_settings.isEncrypted || prepareEncryption();
}

// The MQTT library waits while a name is looked up. So Qt does this first: a name server that is
// away does not stop the event loop.
void BrokerConnection::open()
{
    if (m_settings.host == QLatin1String("localhost") || !QHostAddress(m_settings.host).isNull()) {
        QTimer::singleShot(0, this, [this] { connectToHost(); });
        return;
    }
    QHostInfo::lookupHost(m_settings.host, this, [this](const QHostInfo& info) {
        if (info.error() == QHostInfo::NoError)
            connectToHost();
        else
            end("cannot find host " + m_settings.host + ": " + info.errorString());
    });
}

void BrokerConnection::connectToHost()
{
    if (m_hasEnded || !prepare() ||
        !isGood(mosquitto_connect_async(m_client, m_settings.host.toUtf8().constData(),
                                        m_settings.port, keepAliveS)))
        return;
    const int socket = mosquitto_socket(m_client);
    m_readable = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    m_writable = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, this, [this] { read(); });
    QObject::connect(m_writable.get(), &QSocketNotifier::activated, this, [this] { write(); });
    m_everySecond.start(1000);
    watchSocket();
}

// An encrypted connection may have read more than the socket tells: read until there is none.
void BrokerConnection::read()
{
    for (int packet = 0; packet < packetsAtOnce; ++packet) {
        errno = 0;
        if (m_hasEnded || !isGood(mosquitto_loop_read(m_client, 1)) || isRefused())
            return;
        if (errno == EAGAIN || errno == EWOULDBLOCK) {
            watchSocket();
            return;
        }
    }
    watchSocket();
    QTimer::singleShot(0, this, [this] { read(); });
}

// An encrypted connection that was refused is tried for ever by the MQTT library.
bool BrokerConnection::isRefused()
{
    pollfd socket = {mosquitto_socket(m_client), 0, 0};
    const bool isRefused = !m_wasConnectSent && poll(&socket, 1, 0) > 0;
    if (isRefused)
        end(QStringLiteral("cannot connect"));
    return isRefused;
}

void BrokerConnection::write()
{
    if (!m_hasEnded && isGood(mosquitto_loop_write(m_client, 1)))
        watchSocket();
}

void BrokerConnection::watchSocket()
{
    const bool isWaiting = mosquitto_want_write(m_client);
    if (m_writable)
        m_writable->setEnabled(isWaiting);
    m_wasConnectSent = m_wasConnectSent || (!isWaiting && !m_settings.isEncrypted);
}

bool BrokerConnection::isGood(int result)
{
    if (result == MOSQ_ERR_SUCCESS)
        return true;
    const QString text = result == MOSQ_ERR_ERRNO ? QString::fromLocal8Bit(std::strerror(errno))
                                                  : QString::fromUtf8(mosquitto_strerror(result));
    end(m_error.isEmpty() ? text : m_error);
    return false;
}

int BrokerConnection::publish(const Message& message)
{
    const Properties properties(message);
    int number = -1;
    const int result =
        m_hasEnded ? MOSQ_ERR_NO_CONN
                   : mosquitto_publish_v5(m_client, &number, message.topic.toUtf8().constData(),
                                          message.payload.size(), message.payload.constData(),
                                          message.qos, message.isRetained,
                                          m_settings.isVersion5 ? properties.first() : nullptr);
    watchSocket();
    return result == MOSQ_ERR_SUCCESS ? number : -1;
}

int BrokerConnection::subscribe(const QString& topic)
{
    int number = -1;
    mosquitto_subscribe(m_client, &number, topic.toUtf8().constData(), 1);
    watchSocket();
    return number;
}

int BrokerConnection::barrier()
{
    int number = -1;
    mosquitto_unsubscribe(m_client, &number, barrierTopic);
    watchSocket();
    return number;
}

void BrokerConnection::close(bool withWill)
{
    if (m_hasEnded)
        return;
    const bool saysSo = withWill && m_settings.isVersion5;
    mosquitto_disconnect_v5(m_client, saysSo ? MQTT_RC_DISCONNECT_WITH_WILL_MSG : 0, nullptr);
    watchSocket();
}

void BrokerConnection::runUntil(const std::function<bool()>& isDone, int timeoutMs)
{
    QElapsedTimer timer;
    for (timer.start(); !m_hasEnded && !isDone() && timer.elapsed() < timeoutMs;) {
        const int socket = mosquitto_socket(m_client);
        pollfd wanted = {socket, POLLIN, 0};
        if (mosquitto_want_write(m_client))
            wanted.events = POLLIN | POLLOUT;
        if (socket < 0 || poll(&wanted, 1, static_cast<int>(timeoutMs - timer.elapsed())) <= 0)
            return;
        if (wanted.revents & POLLOUT)
            write();
        if (wanted.revents & ~POLLOUT)
            read();
    }
}

void BrokerConnection::stopWatching()
{
    m_readable.reset();
    m_writable.reset();
    m_everySecond.stop();
}

void BrokerConnection::end(const QString& reason)
{
    if (m_hasEnded)
        return;
    m_hasEnded = true;
    // Not here: the caller may be in the middle of the library or of a notifier.
    QTimer::singleShot(0, this, [this, reason] {
        stopWatching();
        onEnded(reason);
    });
    if (m_readable)
        m_readable->setEnabled(false);
    if (m_writable)
        m_writable->setEnabled(false);
}

}  // namespace fxgate
