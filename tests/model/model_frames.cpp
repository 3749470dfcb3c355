// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The model's frames: read, word write and force requests, the judgement of a reply, and the text
// that names an exchange.

#include "tests/model/model_driver.h"

#include <climits>
#include <cstring>

namespace {

using Bytes = std::vector<unsigned char>;

long long readAddress(const QString& type, long long n)
{
    if (type == "S")
        return 0x0000 + n / 8;
    if (type == "X")
        return 0x0080 + n / 8;
    if (type == "Y")
        return 0x00A0 + n / 8;
    if (type == "T")
        return 0x00C0 + n / 8;
    if (type == "M")
        return 0x0100 + n / 8;
    if (type == "C")
        return 0x01C0 + n / 8;
    if (type == "SM")
        return 0x01E0 + (n - 8000) / 8;
    if (type == "TV")
        return 0x0800 + 2 * n;
    if (type == "CV")
        return 0x0A00 + 2 * n;
    if (type == "32CV")
        return 0x0C00 + 4 * (n - 200);
    if (type == "SD")
        return 0x0E00 + 2 * (n - 8000);
    if (type == "D")
        return 0x1000 + 2 * n;
    return 2 * n;
}

long long writeAddress(const QString& type, long long n)
{
    if (type == "SD")
        return 0x0F00 + 2 * (n - 8000);
    return readAddress(type, n);  // every other word type is written where it is read
}

long long forceAddress(const QString& type, long long n)
{
    if (type == "Y")
        return 0x0500 + n;
    if (type == "T")
        return 0x0600 + n;
    if (type == "M")
        return 0x0800 + n;
    if (type == "C")
        return 0x0E00 + n;
    if (type == "SM")
        return 0x0F00 + (n - 8000);
    return n;  // S, and X too
}

unsigned char hexDigit(long long nibble)
{
    return static_cast<unsigned char>(nibble < 10 ? 0x30 + nibble : 0x37 + nibble);
}

void appendByte(Bytes& bytes, long long value)
{
    bytes.push_back(hexDigit((value >> 4) & 15));
    bytes.push_back(hexDigit(value & 15));
}

void appendWord(Bytes& bytes, long long value)
{
    appendByte(bytes, value >> 8);
    appendByte(bytes, value);
}

// ETX and the sum of everything after STX.
void close(Bytes& bytes)
{
    bytes.push_back(0x03);
    int sum = 0;
    for (size_t i = 1; i < bytes.size(); ++i)
        sum += bytes[i];
    appendByte(bytes, sum);
}

int saturated(long long number)
{
    return static_cast<int>(number > INT_MAX ? INT_MAX : number < INT_MIN ? INT_MIN : number);
}

FRAME_PRO frameOf(const Bytes& bytes, const VARIABLE& request)
{
    FRAME_PRO frame;
    std::memcpy(frame.frame, bytes.data(), bytes.size());
    frame.frameLength = static_cast<int>(bytes.size());
    frame.replyLength = 1;
    frame.variable = request;
    return frame;
}

}  // namespace

void ModelDriver::buildReadFrame(const VARIABLE& request)
{
    const QString& type = request.registerType;
    const long long width = modelIsBit(type) ? 1 : type == "32CV" ? 4 : 2;
    const long long byteCount = width * request.count;
    Bytes bytes{0x02, '0'};
    appendWord(bytes, readAddress(type, request.addressIndex));
    appendByte(bytes, byteCount);
    close(bytes);
    FRAME_PRO frame = frameOf(bytes, request);
    frame.replyLength = saturated(2 * byteCount + 4);
    frame.isRead = 1;
    frame.replyDataChars = saturated(2 * byteCount);
    frames.push_back(frame);
}

void ModelDriver::buildWriteFrame(const VARIABLE& request)
{
    Bytes bytes{0x02};
    if (modelIsBit(request.registerType)) {
        bytes.push_back(request.data[0] == 1 ? '7' : '8');
        const long long address = forceAddress(request.registerType, request.addressIndex);
        appendByte(bytes, address);
        appendByte(bytes, address >> 8);
    } else {
        bytes.push_back('1');
        appendWord(bytes, writeAddress(request.registerType, request.addressIndex));
        appendByte(bytes, 2LL * request.count);
        for (int i = 0; i < 2 * request.count; ++i)
            appendByte(bytes, request.data[i]);
    }
    close(bytes);
    frames.push_back(frameOf(bytes, request));
}

int ModelDriver::judge(const QByteArray& reply) const
{
    const FRAME_PRO& open = frames.front();
    const int length = static_cast<int>(reply.size());
    if (length == 1 && open.replyDataChars == 0)
        return reply[0] == 0x06 ? 2 : 0;
    if (open.replyLength < 6 || length < 3 || reply[0] != 0x02 || reply[length - 3] != 0x03)
        return 0;
    int sum = 0;
    for (int i = 1; i <= length - 3; ++i)
        sum += static_cast<unsigned char>(reply[i]);
    Bytes digits;
    appendByte(digits, sum);
    if (static_cast<unsigned char>(reply[length - 2]) != digits[0] ||
        static_cast<unsigned char>(reply[length - 1]) != digits[1])
        return 0;
    return open.replyDataChars != 0 ? 1 : 2;
}

QString ModelDriver::errorInfo(int replyBytes) const
{
    const VARIABLE& request = frames.front().variable;
    // "1#D100(2)(0)"
    return QString::number(request.stationNo) + "#" + request.registerType +
           modelNumberText(request.registerType, request.addressIndex) + "(" +
           QString::number(request.count) + ")(" + QString::number(replyBytes) + ")";
}
