// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A yardstick: libmodbus reading 32 registers from its own server over loopback TCP. CPU time is
// that of the client's thread alone.

#include <benchmark/benchmark.h>
#include <modbus/modbus.h>
#include <netinet/in.h>

#include <thread>
#include <unistd.h>

namespace {

constexpr int registerCount = 32;
constexpr const char* loopbackAddress = "127.0.0.1";

int portOf(int socket)
{
    sockaddr_in address = {};
    socklen_t length = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

// Serves one client until it hangs up.
void serve(modbus_t* context, int listener)
{
    int socket = listener;
    if (modbus_tcp_accept(context, &socket) < 0)
        return;
    modbus_mapping_t* mapping = modbus_mapping_new(0, 0, registerCount, 0);
    unsigned char query[MODBUS_TCP_MAX_ADU_LENGTH];
    for (int length = modbus_receive(context, query); length >= 0;
         length = modbus_receive(context, query))
        modbus_reply(context, query, length, mapping);
    modbus_mapping_free(mapping);
}

void libmodbusLoopbackExchange(benchmark::State& state)
{
    modbus_t* server = modbus_new_tcp(loopbackAddress, 0);
    const int listener = modbus_tcp_listen(server, 1);
    std::thread serverThread(serve, server, listener);
    modbus_t* client = modbus_new_tcp(loopbackAddress, portOf(listener));
    if (modbus_connect(client) != 0)
        state.SkipWithError("cannot connect");
    unsigned short values[registerCount];
    for (auto _ : state) {
        if (modbus_read_registers(client, 0, registerCount, values) != registerCount)
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(values);
    }
    modbus_close(client);
    serverThread.join();
    close(listener);
    modbus_close(server);
    modbus_free(client);
    modbus_free(server);
}
BENCHMARK(libmodbusLoopbackExchange);

}  // namespace
