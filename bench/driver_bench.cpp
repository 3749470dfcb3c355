// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the driver costs a host: one exchange, reads and writes of values, and the plan, at cache
// sizes from a hundred areas to a hundred thousand. Every call goes through the shared object.

#include "bench/workload.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

constexpr int station = 1;
constexpr int exchangeWords = 32;

int ignoreChange(int, int, QString&, int)
{
    return 0;
}

// The host's side of a connection: memory, mutex and a plan of one 32-word block.
class Connection
{
public:
    explicit Connection(const char* properties = "1#0#0#3#32")
        : m_memory(hostMemoryBytes, 0), m_recipeWords(512, 0)
    {
        int status = 0;
        intf_setAddrValueChangeCallBack(ignoreChange);
        intf_initProperty(m_memory.data(), 0, m_recipeWords.data(), &status, properties, &m_mutex);
    }
    ~Connection() { intf_setAddrValueChangeCallBack(nullptr); }

private:
    std::vector<unsigned char> m_memory;
    std::vector<unsigned short> m_recipeWords;
    QMutex m_mutex;
};

// Areas of "D" words above the block that is polled.
void fillCache(int areaCount)
{
    std::vector<unsigned char> values(2 * std::size_t(maxRead));
    for (int done = 0; done < areaCount; done += maxRead)
        intf_getData(station, "D", 1000 + done, qMin(maxRead, areaCount - done), values.data());
}

void poll(benchmark::State& state, const QByteArray& first, const QByteArray& second)
{
    QByteArray replies[2] = {first, second};
    QString errorText;
    FRAME_PRO frame;
    std::size_t turn = 0;
    for (auto _ : state) {
        intf_getSendFrame(&frame);
        benchmark::DoNotOptimize(frame);
        if (intf_dealRcvFrame(replies[turn], errorText) != 1)
            state.SkipWithError("reply rejected");
        turn ^= 1;
    }
}

void cyclicExchangeUnchanged(benchmark::State& state)
{
    const Connection connection;
    fillCache(static_cast<int>(state.range(0)));
    QList<KEY_ADDRESS> keys = {wordKey(station, 0, exchangeWords)};
    intf_addrMerge(keys);
    const QByteArray reply = readReply(wordPattern(exchangeWords, 0, 1));
    poll(state, reply, reply);
}
BENCHMARK(cyclicExchangeUnchanged)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

void cyclicExchangeHalfChanged(benchmark::State& state)
{
    const Connection connection;
    fillCache(static_cast<int>(state.range(0)));
    QList<KEY_ADDRESS> keys = {wordKey(station, 0, exchangeWords)};
    intf_addrMerge(keys);
    poll(state, readReply(wordPattern(exchangeWords, 0, 1)),
         readReply(wordPattern(exchangeWords, 1, 2)));
}
BENCHMARK(cyclicExchangeHalfChanged)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

void getNeighbours(benchmark::State& state)
{
    const Connection connection;
    fillCache(static_cast<int>(state.range(0)));
    const QString type = "D";
    unsigned char out[2 * 64];
    int start = 1000;
    for (auto _ : state) {
        intf_getData(station, type, start, 64, out);
        benchmark::DoNotOptimize(out);
        start = 1000 + (start - 1000 + 64) % (static_cast<int>(state.range(0)) - 64);
    }
}
BENCHMARK(getNeighbours)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

void getRandomWord(benchmark::State& state)
{
    const Connection connection;
    const int areaCount = static_cast<int>(state.range(0));
    fillCache(areaCount);
    std::mt19937 generator(1);
    std::vector<int> addresses(4096);
    for (int& address : addresses)
        address = 1000 + static_cast<int>(generator() % static_cast<unsigned>(areaCount));
    const QString type = "D";
    unsigned char out[2];
    std::size_t next = 0;
    for (auto _ : state) {
        intf_getData(station, type, addresses[next], 1, out);
        benchmark::DoNotOptimize(out);
        next = (next + 1) % addresses.size();
    }
}
BENCHMARK(getRandomWord)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

// With 512 writes waiting, a further one is looked for among all of them.
void setWordWithFullQueue(benchmark::State& state)
{
    const Connection connection;
    fillCache(static_cast<int>(state.range(0)));
    const QString type = "D";
    unsigned char value[2] = {1, 2};
    for (int i = 0; i < 512; ++i)
        intf_setData(station, type, 1000 + i, 1, value, 0);
    int address = 1512;
    for (auto _ : state) {
        value[0] ^= 1U;
        intf_setData(station, type, address, 1, value, 0);
        address = address == 1512 ? 1513 : 1512;
    }
}
BENCHMARK(setWordWithFullQueue)->Arg(1000)->Arg(10000)->Arg(100000);

// Marks that many words: on an empty cache, and again.
void markFirst(benchmark::State& state)
{
    const int wordCount = static_cast<int>(state.range(0));
    QList<KEY_ADDRESS> keys = wordRange(station, wordCount);
    for (auto _ : state) {
        state.PauseTiming();
        const Connection connection;
        state.ResumeTiming();
        benchmark::DoNotOptimize(intf_addrMerge(keys));
    }
}
BENCHMARK(markFirst)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void markAgain(benchmark::State& state)
{
    const Connection connection;
    QList<KEY_ADDRESS> keys = wordRange(station, static_cast<int>(state.range(0)));
    intf_addrMerge(keys);
    for (auto _ : state)
        benchmark::DoNotOptimize(intf_addrMerge(keys));
}
BENCHMARK(markAgain)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// Single words all over the "D" registers of sixteen stations, as a large plant's screens ask.
void mergeScattered(benchmark::State& state)
{
    const Connection connection;
    std::mt19937 generator(2);
    const int keyCount = static_cast<int>(state.range(0));
    QList<KEY_ADDRESS> keys;
    for (int i = 0; i < keyCount; ++i) {
        const int keyStation = 1 + static_cast<int>(generator() % 16);
        keys.append(wordKey(keyStation, static_cast<int>(generator() % 8000), 1));
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(intf_addrMerge(keys));
}
BENCHMARK(mergeScattered)->RangeMultiplier(10)->Range(100, 1000000)->Unit(benchmark::kMicrosecond);

// The worst case: every key so far from the next that it becomes a request of its own.
void mergeFarApart(benchmark::State& state)
{
    const Connection connection;
    const int keyCount = static_cast<int>(state.range(0));
    QList<KEY_ADDRESS> keys;
    for (int i = 0; i < keyCount; ++i)
        keys.append(wordKey(station, i * 1000 % 7919 * 10000, 1));
    for (auto _ : state)
        benchmark::DoNotOptimize(intf_addrMerge(keys));
}
BENCHMARK(mergeFarApart)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
