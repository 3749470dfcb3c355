// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// instructions WORK COUNT: does that work COUNT times. scripts/instructions counts the instructions
// of two runs, whose difference is the work's alone.

#include "bench/connection.h"

#include <cstdlib>
#include <iostream>
#include <map>
#include <string>

namespace {

using namespace fxbench;

// Polls one block of 32 words, of which every `changedEach`-th has changed; none with 0.
void exchange(int times, int changedEach)
{
    constexpr int wordCount = 32;
    Connection driver(1000);
    QList<KEY_ADDRESS> keys = {wordKey(station, 0, wordCount)};
    intf_addrMerge(keys);
    QByteArray replies[2] = {
        readReply(wordPattern(wordCount, 0, 1)),
        readReply(wordPattern(wordCount, changedEach == 0 ? 0 : 1, qMax(1, changedEach)))};
    QString errorText;
    FRAME_PRO frame;
    for (int i = 0; i < times; ++i) {
        intf_getSendFrame(&frame);
        if (intf_dealRcvFrame(replies[i % 2], errorText) != 1)
            std::abort();
    }
}

void exchangeUnchanged(int times)
{
    exchange(times, 0);
}

void exchangeHalfChanged(int times)
{
    exchange(times, 2);
}

void getWords(int times)
{
    constexpr int wordCount = 64;
    Connection driver(1000);
    const QString type = "D";
    unsigned char out[2 * wordCount];
    for (int i = 0; i < times; ++i)
        intf_getData(station, type, firstFilled + i % 8 * wordCount, wordCount, out);
}

// A word for which a write waits already.
void setWord(int times)
{
    Connection driver(1000);
    const QString type = "D";
    unsigned char value[2] = {1, 2};
    for (int i = 0; i < times; ++i) {
        value[0] ^= 1U;
        intf_setData(station, type, firstFilled, 1, value, 0);
    }
}

const std::map<std::string, void (*)(int times)> works = {{"exchange", exchangeUnchanged},
                                                          {"exchange-changed", exchangeHalfChanged},
                                                          {"get", getWords},
                                                          {"set", setWord}};

}  // namespace

int main(int argc, char** argv)
{
    const auto work = works.find(argc == 3 ? argv[1] : "");
    if (work == works.end()) {
        std::cerr << "usage: instructions exchange|exchange-changed|get|set COUNT\n";
        return 2;
    }
    work->second(QByteArray(argv[2]).toInt());
}
