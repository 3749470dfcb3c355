// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The smallest host that does everything once: sets the driver up, plans, exchanges frames over a
// link of three functions, reads values and writes one. Run it against a PLC or the simulator:
//   fxsim --link /tmp/plc        (in another window)
//   minimal_host /tmp/plc

#include <mitsubishi_fx1s/intf.h>

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
constexpr int replyTimeoutMs = 500;

// ---- The link: three functions ----------------------------------------------------------------

int openLink(const char* device)
{
    const int link = open(device, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings;
    if (link < 0 || tcgetattr(link, &settings) != 0)
        return -1;
    cfmakeraw(&settings);
    cfsetspeed(&settings, B9600);
    if (tcsetattr(link, TCSAFLUSH, &settings) != 0)
        return -1;
    settings.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARODD | CSTOPB);
    settings.c_cflag |= CS7 | PARENB;  // the FX programming port: 7 data bits, even parity
    const bool isSet = tcsetattr(link, TCSAFLUSH, &settings) == 0;
    return isSet || errno == EINVAL ? link : -1;  // a pseudo-terminal has no parity, and says so
}

void sendBytes(int link, const unsigned char* bytes, int length)
{
    for (ssize_t sent = 1; length > 0 && sent > 0; bytes += sent, length -= static_cast<int>(sent))
        sent = write(link, bytes, static_cast<std::size_t>(length));
}

// The whole reply, or nothing when the time was up or the PLC refused.
QByteArray receiveBytes(int link, int length)
{
    QByteArray reply;
    pollfd readable = {link, POLLIN, 0};
    while (reply.size() < length && poll(&readable, 1, replyTimeoutMs) > 0) {
        char bytes[1024];
        const ssize_t received = read(link, bytes, sizeof bytes);
        if (received <= 0)
            break;
        reply.append(bytes, static_cast<int>(received));
        if (reply.size() == 1 && reply[0] != '\x02')
            break;  // ACK or NAK: the PLC says no more
    }
    return reply.size() == length ? reply : QByteArray();
}

// ---- The host ---------------------------------------------------------------------------------

// One exchange; false when the driver has nothing to send.
bool exchange(int link)
{
    FRAME_PRO frame;
    if (intf_getSendFrame(&frame) == 0)
        return false;
    tcflush(link, TCIFLUSH);  // what comes late answers an earlier frame
    sendBytes(link, frame.frame, frame.frameLength);
    QByteArray reply = receiveBytes(link, frame.replyLength);
    QString errorText;
    const int result = intf_dealRcvFrame(reply, errorText);
    if (result != 1)
        std::printf("%s: %s\n", result == 8 ? "again" : "failed", qPrintable(errorText));
    return true;
}

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
    const int link = openLink(arguments[1]);
    if (link < 0) {
        std::perror(arguments[1]);
        return 3;
    }

    std::vector<unsigned char> hostMemory(60117, 0);  // holds the two recipe request bytes
    QMutex hostMutex;
    int status = 0;
    intf_setAddrValueChangeCallBack(valueChanged);
    // Link 1, writes go to the PLC, 3 rejections end an exchange, 32 words in one frame.
    intf_initProperty(hostMemory.data(), 0, nullptr, &status, "1#0#0#3#32", &hostMutex);

    QList<KEY_ADDRESS> keys;
    keys << monitored("D", 0, 4) << monitored("D", 100, 2) << monitored("TV", 0, 1);
    const int blocks = intf_addrMerge(keys);
    std::printf("the plan has %d blocks\n", blocks);

    unsigned char value[2] = {0x39, 0x05};  // 1337, low byte first
    intf_setData(station, "D", 100, 1, value, 0);
    for (int i = 0; i < 3 * (blocks + 1); ++i)
        exchange(link);

    std::printf("D0 = %d, D100 = %d, TV0 = %d\n", word("D", 0), word("D", 100), word("TV", 0));
    close(link);
    return word("D", 100) == 1337 ? 0 : 1;
}
