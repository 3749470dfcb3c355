// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the driver costs a host: one exchange, reads and writes of values, and the plan, at cache
// sizes from a hundred areas to a hundred thousand. Library calls go through the shared object;
// the plain literal model of the tests does the same work beside it, where it ends in time.

#include "bench/subjects.h"
#include "bench/workload.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <random>

namespace {

constexpr int station = 1;
constexpr int exchangeWords = 32;
constexpr int firstFilled = 1000;  // the first "D" word of the cache's filling

int ignoreChange(int, int, QString&, int)
{
    return 0;
}

// A driver that is set up, with the host's side of the connection.
template <typename Driver>
class Connection
{
public:
    explicit Connection(int areaCount = 0) : m_memory(fxHostMemoryBytes, 0), m_recipeWords(512, 0)
    {
        int status = 0;
        m_driver.setAddrValueChangeCallBack(ignoreChange);
        m_driver.initProperty(m_memory.data(), 0, m_recipeWords.data(), &status, "1#0#0#3#32",
                              &m_mutex);
        fillCache(areaCount);
    }
    Driver* operator->() { return &m_driver; }

private:
    // Areas of "D" words above the block that is polled.
    void fillCache(int areaCount)
    {
        std::vector<unsigned char> values(2 * static_cast<std::size_t>(fxMaxElements));
        for (int done = 0; done < areaCount; done += fxMaxElements)
            m_driver.getData(station, "D", firstFilled + done,
                             qMin(fxMaxElements, areaCount - done), values.data());
    }

    std::vector<unsigned char> m_memory;
    std::vector<unsigned short> m_recipeWords;
    QMutex m_mutex;
    Driver m_driver;
};

int sizeOf(const benchmark::State& state)
{
    return static_cast<int>(state.range(0));
}

// Polls one block of 32 words, with two replies in turn.
template <typename Driver>
void poll(benchmark::State& state, const QByteArray& first, const QByteArray& second)
{
    Connection<Driver> driver(sizeOf(state));
    QList<KEY_ADDRESS> keys = {wordKey(station, 0, exchangeWords)};
    driver->addrMerge(keys);
    QByteArray replies[2] = {first, second};
    QString errorText;
    FRAME_PRO frame;
    std::size_t turn = 0;
    for (auto _ : state) {
        driver->getSendFrame(&frame);
        benchmark::DoNotOptimize(frame);
        if (driver->dealRcvFrame(replies[turn], errorText) != 1)
            state.SkipWithError("reply rejected");
        turn ^= 1U;
    }
}

// Bytes that the heap holds more for each area; time is that of filling the cache.
template <typename Driver>
void areaMemory(benchmark::State& state)
{
    double bytes = 0;
    for (auto _ : state) {
        Connection<Driver> empty;
        const std::size_t before = mallinfo2().uordblks;
        Connection<Driver> driver(sizeOf(state));
        bytes = static_cast<double>(mallinfo2().uordblks - before);
        benchmark::DoNotOptimize(driver);
    }
    state.counters["bytesPerArea"] = bytes / sizeOf(state);
}
BENCHMARK_TEMPLATE(areaMemory, Library)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMicrosecond);

template <typename Driver>
void exchangeUnchanged(benchmark::State& state)
{
    const QByteArray reply = readReply(wordPattern(exchangeWords, 0, 1));
    poll<Driver>(state, reply, reply);
}
BENCHMARK_TEMPLATE(exchangeUnchanged, Library)->RangeMultiplier(10)->Range(100, 100000);
BENCHMARK_TEMPLATE(exchangeUnchanged, Model)->RangeMultiplier(10)->Range(100, 10000);

template <typename Driver>
void exchangeHalfChanged(benchmark::State& state)
{
    poll<Driver>(state, readReply(wordPattern(exchangeWords, 0, 1)),
                 readReply(wordPattern(exchangeWords, 1, 2)));
}
BENCHMARK_TEMPLATE(exchangeHalfChanged, Library)->RangeMultiplier(10)->Range(100, 100000);
BENCHMARK_TEMPLATE(exchangeHalfChanged, Model)->RangeMultiplier(10)->Range(100, 10000);

template <typename Driver>
void getNeighbours(benchmark::State& state)
{
    constexpr int wordCount = 64;
    Connection<Driver> driver(sizeOf(state));
    const QString type = "D";
    unsigned char out[2 * wordCount];
    int start = 0;
    for (auto _ : state) {
        driver->getData(station, type, firstFilled + start, wordCount, out);
        benchmark::DoNotOptimize(out);
        start = (start + wordCount) % (sizeOf(state) - wordCount);
    }
}
BENCHMARK_TEMPLATE(getNeighbours, Library)->RangeMultiplier(10)->Range(100, 100000);
BENCHMARK_TEMPLATE(getNeighbours, Model)->RangeMultiplier(10)->Range(100, 10000);

template <typename Driver>
void getRandomWord(benchmark::State& state)
{
    Connection<Driver> driver(sizeOf(state));
    std::mt19937 generator(1);
    std::vector<int> addresses(4096);
    for (int& address : addresses)
        address = firstFilled + static_cast<int>(generator() % static_cast<uint>(sizeOf(state)));
    const QString type = "D";
    unsigned char out[2];
    std::size_t next = 0;
    for (auto _ : state) {
        driver->getData(station, type, addresses[next], 1, out);
        benchmark::DoNotOptimize(out);
        next = (next + 1) % addresses.size();
    }
}
BENCHMARK_TEMPLATE(getRandomWord, Library)->RangeMultiplier(10)->Range(100, 100000);
BENCHMARK_TEMPLATE(getRandomWord, Model)->RangeMultiplier(10)->Range(100, 10000);

// With 512 writes waiting, a further one is looked for among all of them.
template <typename Driver>
void setWordQueueFull(benchmark::State& state)
{
    constexpr int waiting = 512;
    Connection<Driver> driver(sizeOf(state));
    const QString type = "D";
    unsigned char value[2] = {1, 2};
    for (int i = 0; i < waiting; ++i)
        driver->setData(station, type, firstFilled + i, 1, value, 0);
    int address = firstFilled + waiting;
    for (auto _ : state) {
        value[0] ^= 1U;
        address ^= 1;  // two addresses in turn: neither is found in the queue
        driver->setData(station, type, address, 1, value, 0);
    }
}
BENCHMARK_TEMPLATE(setWordQueueFull, Library)->RangeMultiplier(10)->Range(1000, 100000);
BENCHMARK_TEMPLATE(setWordQueueFull, Model)->RangeMultiplier(10)->Range(1000, 10000);

// Marks that many words on an empty cache.
template <typename Driver>
void markFirst(benchmark::State& state)
{
    QList<KEY_ADDRESS> keys = wordRange(station, sizeOf(state));
    for (auto _ : state) {
        state.PauseTiming();
        {
            Connection<Driver> driver;
            state.ResumeTiming();
            benchmark::DoNotOptimize(driver->addrMerge(keys));
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}
BENCHMARK_TEMPLATE(markFirst, Library)
    ->RangeMultiplier(10)
    ->Range(100, 100000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(markFirst, Model)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMicrosecond);

// Marks them again.
template <typename Driver>
void markAgain(benchmark::State& state)
{
    Connection<Driver> driver;
    QList<KEY_ADDRESS> keys = wordRange(station, sizeOf(state));
    driver->addrMerge(keys);
    for (auto _ : state)
        benchmark::DoNotOptimize(driver->addrMerge(keys));
}
BENCHMARK_TEMPLATE(markAgain, Library)
    ->RangeMultiplier(10)
    ->Range(100, 100000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(markAgain, Model)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMicrosecond);

template <typename Driver>
void mergeKeys(benchmark::State& state, QList<KEY_ADDRESS> keys)
{
    Connection<Driver> driver;
    driver->addrMerge(keys);
    for (auto _ : state)
        benchmark::DoNotOptimize(driver->addrMerge(keys));
}

// Single words all over the "D" registers of sixteen stations, as a large plant's screens ask.
template <typename Driver>
void mergeScattered(benchmark::State& state)
{
    std::mt19937 generator(2);
    QList<KEY_ADDRESS> keys;
    for (int i = 0; i < sizeOf(state); ++i) {
        const int keyStation = 1 + static_cast<int>(generator() % 16);
        keys.append(wordKey(keyStation, static_cast<int>(generator() % 8000), 1));
    }
    mergeKeys<Driver>(state, keys);
}
BENCHMARK_TEMPLATE(mergeScattered, Library)
    ->RangeMultiplier(10)
    ->Range(100, 1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(mergeScattered, Model)
    ->RangeMultiplier(10)
    ->Range(100, 1000)
    ->Unit(benchmark::kMicrosecond);

// The worst case: every key so far from the next that it becomes a request of its own.
template <typename Driver>
void mergeFarApart(benchmark::State& state)
{
    QList<KEY_ADDRESS> keys;
    for (int i = 0; i < sizeOf(state); ++i)
        keys.append(wordKey(station, static_cast<int>(i * 7919LL % sizeOf(state)) * 1000, 1));
    mergeKeys<Driver>(state, keys);
}
BENCHMARK_TEMPLATE(mergeFarApart, Library)
    ->RangeMultiplier(10)
    ->Range(100, 100000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(mergeFarApart, Model)
    ->RangeMultiplier(10)
    ->Range(100, 1000)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
