// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the driver costs a host: one exchange, reads and writes of values, and the plan, at cache
// sizes from a hundred areas to a hundred thousand. Calls go through the shared object.

#include "bench/connection.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <random>
#include <vector>

namespace {

using namespace fxbench;

constexpr int exchangeWords = 32;

// `wordCount` monitored words in ranges of a thousand.
QList<KEY_ADDRESS> wordRange(int wordCount)
{
    constexpr int rangeWords = 1000;
    QList<KEY_ADDRESS> keys;
    for (int start = 0; start < wordCount; start += rangeWords)
        keys.append(wordKey(station, start, qMin(rangeWords, wordCount - start)));
    return keys;
}

int sizeOf(const benchmark::State& state)
{
    return static_cast<int>(state.range(0));
}

// Polls one block of 32 words, with two replies in turn.
void poll(benchmark::State& state, const QByteArray& first, const QByteArray& second)
{
    Connection driver(sizeOf(state));
    QList<KEY_ADDRESS> keys = {wordKey(station, 0, exchangeWords)};
    intf_addrMerge(keys);
    QByteArray replies[2] = {first, second};
    QString errorText;
    FRAME_PRO frame;
    std::size_t turn = 0;
    for (auto _ : state) {
        intf_getSendFrame(&frame);
        benchmark::DoNotOptimize(frame);
        if (intf_dealRcvFrame(replies[turn], errorText) != 1)
            state.SkipWithError("reply rejected");
        turn ^= 1U;
    }
}

// Bytes that the heap holds more for each area; time is that of filling the cache.
void areaMemory(benchmark::State& state)
{
    double bytes = 0;
    for (auto _ : state) {
        Connection empty;
        const std::size_t before = mallinfo2().uordblks;
        Connection driver(sizeOf(state));
        bytes = static_cast<double>(mallinfo2().uordblks - before);
        benchmark::DoNotOptimize(driver);
    }
    state.counters["bytesPerArea"] = bytes / sizeOf(state);
}
BENCHMARK(areaMemory)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMicrosecond);

void exchangeUnchanged(benchmark::State& state)
{
    const QByteArray reply = readReply(wordPattern(exchangeWords, 0, 1));
    poll(state, reply, reply);
}
BENCHMARK(exchangeUnchanged)->RangeMultiplier(10)->Range(100, 100000);

void exchangeHalfChanged(benchmark::State& state)
{
    poll(state, readReply(wordPattern(exchangeWords, 0, 1)),
         readReply(wordPattern(exchangeWords, 1, 2)));
}
BENCHMARK(exchangeHalfChanged)->RangeMultiplier(10)->Range(100, 100000);

void getNeighbours(benchmark::State& state)
{
    constexpr int wordCount = 64;
    Connection driver(sizeOf(state));
    const QString type = "D";
    unsigned char out[2 * wordCount];
    int start = 0;
    for (auto _ : state) {
        intf_getData(station, type, firstFilled + start, wordCount, out);
        benchmark::DoNotOptimize(out);
        start = (start + wordCount) % (sizeOf(state) - wordCount);
    }
}
BENCHMARK(getNeighbours)->RangeMultiplier(10)->Range(100, 100000);

void getRandomWord(benchmark::State& state)
{
    Connection driver(sizeOf(state));
    std::mt19937 generator(1);
    std::vector<int> addresses(4096);
    for (int& address : addresses)
        address = firstFilled + static_cast<int>(generator() % static_cast<uint>(sizeOf(state)));
    const QString type = "D";
    unsigned char out[2];
    std::size_t next = 0;
    for (auto _ : state) {
        intf_getData(station, type, addresses[next], 1, out);
        benchmark::DoNotOptimize(out);
        next = (next + 1) % addresses.size();
    }
}
BENCHMARK(getRandomWord)->RangeMultiplier(10)->Range(100, 100000);

// With 512 writes waiting, a further one is looked for among all of them.
void setWordQueueFull(benchmark::State& state)
{
    constexpr int waiting = 512;
    Connection driver(sizeOf(state));
    const QString type = "D";
    unsigned char value[2] = {1, 2};
    for (int i = 0; i < waiting; ++i)
        intf_setData(station, type, firstFilled + i, 1, value, 0);
    int address = firstFilled + waiting;
    for (auto _ : state) {
        value[0] ^= 1U;
        address ^= 1;  // two addresses in turn: neither is found in the queue
        intf_setData(station, type, address, 1, value, 0);
    }
}
BENCHMARK(setWordQueueFull)->RangeMultiplier(10)->Range(1000, 100000);

// Marks that many words on an empty cache.
void markFirst(benchmark::State& state)
{
    QList<KEY_ADDRESS> keys = wordRange(sizeOf(state));
    for (auto _ : state) {
        state.PauseTiming();
        {
            Connection driver;
            state.ResumeTiming();
            benchmark::DoNotOptimize(intf_addrMerge(keys));
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}
BENCHMARK(markFirst)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMicrosecond);

// Marks them again.
void markAgain(benchmark::State& state)
{
    Connection driver;
    QList<KEY_ADDRESS> keys = wordRange(sizeOf(state));
    intf_addrMerge(keys);
    for (auto _ : state)
        benchmark::DoNotOptimize(intf_addrMerge(keys));
}
BENCHMARK(markAgain)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMicrosecond);

// Single words all over the "D" registers of sixteen stations, as a large plant's screens ask.
void mergeScattered(benchmark::State& state)
{
    std::mt19937 generator(2);
    QList<KEY_ADDRESS> keys;
    for (int i = 0; i < sizeOf(state); ++i) {
        const int keyStation = 1 + static_cast<int>(generator() % 16);
        keys.append(wordKey(keyStation, static_cast<int>(generator() % 8000), 1));
    }
    Connection driver;
    intf_addrMerge(keys);
    for (auto _ : state)
        benchmark::DoNotOptimize(intf_addrMerge(keys));
}
BENCHMARK(mergeScattered)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMicrosecond);

}  // namespace
