// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// How a world is drawn, and what is drawn from it.

#include "tests/model/session_world.h"

#include <algorithm>
#include <climits>

namespace {

constexpr int windowWidth = 24;

const std::vector<QString> knownTypes = {"X", "Y", "M",  "S",  "SM", "T",
                                         "C", "D", "SD", "TV", "CV", "32CV"};
const std::vector<QString> unknownTypes = {"", "Z", "d", "D ", "32cv", "SMX", "RWI", "%1", "%4"};

int firstNumber(const QString& type)
{
    if (type == "SM" || type == "SD")
        return 8000;
    return type == "32CV" ? 200 : 0;
}

char hexDigit(int nibble, bool lower)
{
    return (lower ? "0123456789abcdef" : "0123456789ABCDEF")[nibble & 15];
}

}  // namespace

SessionWorld::SessionWorld(Choices& source) : choices(source)
{
    stations = choices.oneOf<std::vector<int>>(
        {{1}, {1, 2}, {1, 0, 255}, {1, 256, -1}, {1, INT_MIN, INT_MAX}});
    const int windowCount = choices.between(1, 4);
    for (int i = 0; i < windowCount; ++i) {
        const QString type =
            choices.oneIn(12) ? choices.oneOf(unknownTypes) : choices.oneOf(knownTypes);
        const int first = firstNumber(type);
        const int start =
            choices.oneOf({first, first, first + 8, first + 95, first + 250, choices.below(9000),
                           -16, INT_MAX - windowWidth + 1, INT_MIN});
        windows.push_back({type, start});
    }
}

QByteArray SessionWorld::propertyString()
{
    if (choices.oneIn(10))
        return choices.oneOf<const char*>({"", "1#2#3#4", "1#0#0#2", "a#b#c#d#e", "####",
                                           " 1 #0#0# 3 # 8 ", "1#0#0#3#99999999999#5",
                                           "2#0#7#2#0x10#9#8", "1#0#0#3#+4", "1#0#0#1#8#x"});
    wordLimit =
        choices.oneOf({1,   2,   3,   4,   8,   16,  32, 32, 33,      64,      65,
                       127, 253, 254, 255, 512, 513, 0,  -1, INT_MAX, INT_MIN, INT_MAX / 8 + 1});
    const QString numbers[] = {QString::number(choices.oneOf({1, 1, 1, 0, 7})),
                               QString::number(choices.oneIn(12) ? choices.oneOf({1, -1}) : 0),
                               QString::number(choices.below(3)),
                               QString::number(choices.oneOf({3, 2, 1, 0, -1, INT_MAX})),
                               QString::number(wordLimit)};
    QString text = numbers[0];
    for (int i = 1; i < 5; ++i)
        text += '#' + numbers[i];
    if (choices.oneIn(4))
        text += "#5";
    return text.toLatin1();
}

int SessionWorld::elementCount()
{
    const int limit = std::max(1, std::min(wordLimit, 12));
    if (choices.oneIn(100))
        return choices.oneOf({0, -1, INT_MIN, limit * 8 - 1, limit * 8, limit * 8 + 1, 252, 253,
                              254, 255, 256, 506, 507});
    if (choices.oneIn(3))
        return choices.oneOf({limit - 1, limit, limit + 1, 2 * limit, 2 * limit + 1, 7, 8, 9, 16});
    return choices.between(1, 4);
}

KEY_ADDRESS SessionWorld::key()
{
    const Window& window = choices.oneOf(windows);
    KEY_ADDRESS key;
    key.stationNo = choices.oneOf(stations);
    key.registerType = window.type;
    const bool atTop = window.start > INT_MAX - windowWidth;
    key.startIndex = window.start + choices.below(windowWidth);
    key.bitIndex = choices.oneOf({-1, 0, 3});
    key.length = elementCount();
    // Near the largest integer any count is quick: nothing exists beyond it.
    if (atTop && choices.oneIn(6))
        key.length = choices.oneOf({65535, 65536, 65537, INT_MAX});
    return key;
}

QList<KEY_ADDRESS> SessionWorld::keys()
{
    QList<KEY_ADDRESS> list;
    const int keyCount = choices.oneIn(10) ? choices.between(10, 40) : choices.below(8);
    for (int i = 0; i < keyCount; ++i) {
        const bool again = !list.isEmpty() && choices.oneIn(8);
        list.append(again ? list.at(choices.below(static_cast<int>(list.size()))) : key());
    }
    return list;
}

_RCP_VAR_PRO SessionWorld::recipeEntry()
{
    const KEY_ADDRESS place = key();
    _RCP_VAR_PRO entry;
    entry.linkNo = choices.oneOf({1, 1, 1, 1, 0, 7});
    entry.stationNo = place.stationNo;
    entry.registerType = place.registerType;
    entry.addressIndex = place.startIndex;
    entry.count = choices.oneIn(4)
                      ? choices.oneOf({0, -1, 252, 253, 254, 511, 512, 513, INT_MAX, INT_MIN})
                      : choices.between(1, 12);
    entry.recipeWordOffset = choices.oneIn(20) ? choices.oneOf({-1, INT_MIN}) : choices.below(900);
    entry.hostValue = choices.below(3);
    return entry;
}

QVector<_RCP_VAR_PRO> SessionWorld::recipe()
{
    QVector<_RCP_VAR_PRO> list;
    const int entryCount = choices.below(6);
    for (int i = 0; i < entryCount; ++i)
        list.append(recipeEntry());
    return list;
}

std::vector<unsigned char> SessionWorld::bytes(int byteCount)
{
    std::vector<unsigned char> bytes(static_cast<std::size_t>(byteCount));
    const int kind = choices.below(4);
    const int seed = choices.below(256);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const int drawn = kind == 0 ? 1 : kind == 1 ? 0 : seed + static_cast<int>(i) * kind;
        bytes[i] = static_cast<unsigned char>(kind == 2 ? drawn & 1 : drawn);
    }
    return bytes;
}

std::deque<NestedCall> SessionWorld::nestedCalls()
{
    std::deque<NestedCall> calls;
    if (!choices.oneIn(4))
        return calls;
    const int callCount = choices.between(1, 6);
    for (int i = 0; i < callCount; ++i)
        calls.push_back(nestedCall());
    return calls;
}

NestedCall SessionWorld::nestedCall()
{
    NestedCall call;
    call.kind =
        choices.oneOf({NestedCall::Kind::Nothing, NestedCall::Kind::Read, NestedCall::Kind::Write,
                       NestedCall::Kind::Write, NestedCall::Kind::QueueRead});
    call.key = key();
    call.tag = choices.below(5);
    if (call.kind == NestedCall::Kind::Read || call.kind == NestedCall::Kind::Write)
        call.data = bytes(bufferBytes(call.key.length));
    return call;
}

QByteArray SessionWorld::framed(const QByteArray& characters)
{
    QByteArray reply = '\x02' + characters + '\x03';
    int sum = 0;
    for (int i = 1; i < reply.size(); ++i)
        sum += static_cast<unsigned char>(reply.at(i));
    return reply + hexDigit(sum >> 4, false) + hexDigit(sum, false);
}

QByteArray SessionWorld::goodReply(const FRAME_PRO& frame, int charCount)
{
    if (frame.isRead == 0)
        return QByteArray(1, '\x06');
    const int kind = choices.below(6);
    const int seed = choices.below(256);
    QByteArray characters;
    for (int i = 0; i < charCount; ++i) {
        const int nibble = kind < 2 ? 0 : seed + i * (kind - 2);
        characters += kind == 5 ? static_cast<char>(nibble * 7) : hexDigit(nibble, kind == 4);
    }
    return framed(characters);
}

QByteArray SessionWorld::damaged(QByteArray reply)
{
    if (reply.isEmpty())
        return reply;
    const int position = choices.below(static_cast<int>(reply.size()));
    switch (choices.below(4)) {
    case 0:
        reply[position] = static_cast<char>(reply.at(position) ^ (1 << choices.below(8)));
        return reply;
    case 1:
        return reply.left(position);
    case 2:
        return reply.toLower();
    default:
        return reply + reply.left(position);
    }
}

QByteArray SessionWorld::replyTo(const FRAME_PRO& frame)
{
    const int chars = std::max(0, std::min(frame.replyDataChars, 4200));
    switch (choices.below(12)) {
    case 0:
        return QByteArray();
    case 1:
        return QByteArray(1, choices.oneOf({'\x15', '\x06', '\x02', '\x03', '\x00', 'A'}));
    case 2:
        return damaged(goodReply(frame, chars));
    case 3:
        return goodReply(frame, choices.below(chars + 1));  // short
    case 4:
        return goodReply(frame, chars + choices.between(1, 9));  // long
    case 5: {
        QByteArray noise;
        for (int i = choices.below(12); i > 0; --i)
            noise += static_cast<char>(choices.below(256));
        return choices.oneIn(2) ? framed(noise) : noise;
    }
    default:
        return goodReply(frame, chars);
    }
}

QString SessionWorld::anyType()
{
    if (choices.oneIn(6))
        return choices.oneOf(unknownTypes);
    return choices.oneOf(knownTypes);
}

QString SessionWorld::addressText()
{
    if (choices.oneIn(3))
        return choices.oneOf<const char*>(
            {"",           " ",     "-5",  "+5",  "5-",   "8",  "18",          "377",
             "400",        " 12",   "12 ", "1 2", "0x1F", "x",  "99999999999", "2147483647",
             "2147483648", "1,000", "1.0", "007", "1e3",  "\t7"});
    return QString::number(
        choices.oneOf({0, 1, 199, 200, 254, 255, 256, 257, 399, 400, 999, 1000, 3071, 3072, 7999,
                       8000, 8255, 8256, choices.below(9000)}));
}

int SessionWorld::anyInt()
{
    return choices.oneOf({0, 1, -1, 2, -2, 3, 8, 9, 56, 57, 255, 256, 257, 8000, INT_MAX,
                          INT_MAX - 1, INT_MIN, choices.below(300)});
}
