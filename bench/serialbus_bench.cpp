// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A yardstick: Qt SerialBus doing a host's work for 32 registers: encoding the request, decoding
// the reply, and both over loopback TCP.

#include "bench/loopback.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDeadlineTimer>
#include <QModbusPdu>
#include <QModbusTcpClient>
#include <QModbusTcpServer>
#include <QUrl>
#include <QVector>

#include <benchmark/benchmark.h>

#include <unistd.h>

namespace {

constexpr quint16 registerCount = 32;
constexpr int replyTimeoutMs = 5000;

void serialBusCodec(benchmark::State& state)
{
    QByteArray reply;
    QDataStream replyWriter(&reply, QIODevice::WriteOnly);
    replyWriter << QModbusResponse(QModbusPdu::ReadHoldingRegisters,
                                   QByteArray(1, 2 * registerCount) +
                                       QByteArray(2 * registerCount, '\x11'));
    for (auto _ : state) {
        QByteArray request;
        QDataStream requestWriter(&request, QIODevice::WriteOnly);
        requestWriter << QModbusRequest(QModbusPdu::ReadHoldingRegisters, quint16(0),
                                        registerCount);
        benchmark::DoNotOptimize(request);

        QDataStream replyReader(reply);
        QModbusResponse response;
        replyReader >> response;
        QDataStream values(response.data());
        quint8 byteCount = 0;
        values >> byteCount;
        QVector<quint16> words(byteCount / 2);
        for (quint16& word : words)
            values >> word;
        benchmark::DoNotOptimize(words);
    }
}
BENCHMARK(serialBusCodec);

int freePort()
{
    const int listener = listenOnLoopback();
    const int port = portOf(listener);
    close(listener);
    return port;
}

template <typename Condition>
bool processEventsUntil(Condition isMet)
{
    QDeadlineTimer deadline(replyTimeoutMs);
    while (!isMet() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 100);
    return isMet();
}

// Client and server share the thread, so CPU time is that of both.
void serialBusLoopbackExchange(benchmark::State& state)
{
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    QModbusTcpServer server;
    server.setMap({{QModbusDataUnit::HoldingRegisters,
                    {QModbusDataUnit::HoldingRegisters, 0, registerCount}}});
    server.setServerAddress(1);
    const int port = freePort();
    QModbusTcpClient client;
    client.setConnectionParameter(QModbusDevice::NetworkAddressParameter, loopbackAddress);
    client.setConnectionParameter(QModbusDevice::NetworkPortParameter, port);
    server.setConnectionParameter(QModbusDevice::NetworkAddressParameter, loopbackAddress);
    server.setConnectionParameter(QModbusDevice::NetworkPortParameter, port);
    if (!server.connectDevice() || !client.connectDevice() ||
        !processEventsUntil([&] { return client.state() == QModbusDevice::ConnectedState; }))
        state.SkipWithError("cannot connect");
    const QModbusDataUnit wanted(QModbusDataUnit::HoldingRegisters, 0, registerCount);
    for (auto _ : state) {
        QModbusReply* reply = client.sendReadRequest(wanted, 1);
        if (reply == nullptr || !processEventsUntil([&] { return reply->isFinished(); })) {
            state.SkipWithError("read failed");
            break;
        }
        benchmark::DoNotOptimize(reply->result().values());
        delete reply;
    }
    client.disconnectDevice();
    server.disconnectDevice();
}
BENCHMARK(serialBusLoopbackExchange);

}  // namespace
