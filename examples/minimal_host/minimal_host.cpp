// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The smallest host that does everything once: it sets the driver up, plans, exchanges frames over
// a serial port, reads values and writes one. Run it against a PLC or the simulator:
//   fxsim --link "$HOME/plc"        (in another window)
//   minimal_host "$HOME/plc"

#include "plc_exchange.h"

#include <QList>
#include <QMutex>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int station = 1;

// ---- The link ---------------------------------------------------------------------------------

class SerialPort : public PlcLink
{
public:
    explicit SerialPort(const char* device);
    ~SerialPort() override;
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    bool isOpen() const { return m_isOpen; }
    void send(const QByteArray& bytes) override;
    QByteArray receive(int timeoutMs) override;

private:
    bool configure();

    int m_port;
    bool m_isOpen;
};

SerialPort::SerialPort(const char* device)
    : m_port(open(device, O_RDWR | O_NOCTTY | O_CLOEXEC)), m_isOpen(m_port >= 0 && configure())
{}

SerialPort::~SerialPort()
{
    if (m_port >= 0)
        close(m_port);
}

// The FX programming port: 9600 baud, 7 data bits, even parity, 1 stop bit.
bool SerialPort::configure()
{
    termios settings;
    if (tcgetattr(m_port, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    cfsetspeed(&settings, B9600);
    if (tcsetattr(m_port, TCSAFLUSH, &settings) != 0)
        return false;
    settings.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARODD | CSTOPB);
    settings.c_cflag |= CS7 | PARENB;
    // A pseudo-terminal has no parity and answers with EINVAL.
    return tcsetattr(m_port, TCSAFLUSH, &settings) == 0 || errno == EINVAL;
}

void SerialPort::send(const QByteArray& bytes)
{
    const char* next = bytes.constData();
    for (ssize_t left = bytes.size(), sent = 1; left > 0 && sent > 0; next += sent, left -= sent)
        sent = write(m_port, next, static_cast<std::size_t>(left));
}

QByteArray SerialPort::receive(int timeoutMs)
{
    pollfd readable = {m_port, POLLIN, 0};
    if (poll(&readable, 1, timeoutMs) <= 0)
        return QByteArray();
    char bytes[1024];
    const ssize_t received = read(m_port, bytes, sizeof bytes);
    return received > 0 ? QByteArray(bytes, static_cast<int>(received)) : QByteArray();
}

// ---- The host ---------------------------------------------------------------------------------

KEY_ADDRESS monitored(const char* registerType, int startIndex, int length)
{
    KEY_ADDRESS key;
    key.stationNo = station;
    key.registerType = registerType;
    key.startIndex = startIndex;
    key.length = length;
    return key;
}

int valueChanged(int, int, QString& registerType, int number)
{
    std::printf("changed: %s%d\n", qPrintable(registerType), number);
    return 0;
}

int word(const char* registerType, int number)
{
    unsigned char bytes[2] = {};
    intf_getData(station, registerType, number, 1, bytes);
    return bytes[0] | bytes[1] << 8;
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2) {
        std::fprintf(stderr, "usage: minimal_host DEVICE\n");
        return 2;
    }
    SerialPort port(arguments[1]);
    if (!port.isOpen()) {
        std::perror(arguments[1]);
        return 3;
    }

    std::vector<unsigned char> hostMemory(fxHostMemoryBytes, 0);
    QMutex hostMutex;
    int status = 0;
    intf_setAddrValueChangeCallBack(valueChanged);
    // Link 1, writes go to the PLC, 3 rejections in a row end an exchange, 32 words in one frame.
    intf_initProperty(hostMemory.data(), 0, nullptr, &status, "1#0#0#3#32", &hostMutex);

    QList<KEY_ADDRESS> keys;
    keys << monitored("D", 0, 4) << monitored("D", 100, 2) << monitored("TV", 0, 1);
    const int blocks = intf_addrMerge(keys);
    std::printf("the plan has %d blocks\n", blocks);

    const unsigned short wanted = 1337;
    unsigned char value[2] = {wanted & 0xFF, wanted >> 8};  // low byte first
    intf_setData(station, "D", 100, 1, value, 0);
    PlcExchange plc(port);
    for (int i = 0; i < 3 * (blocks + 1); ++i) {
        const int result = plc.run();
        if (result == fxSendAgain || result == fxExchangeFailed)
            std::printf("%s: %s\n", result == fxSendAgain ? "rejected" : "failed",
                        qPrintable(plc.errorText));
    }

    std::printf("D0 = %d, D100 = %d, TV0 = %d\n", word("D", 0), word("D", 100), word("TV", 0));
    return word("D", 100) == wanted ? 0 : 1;
}
