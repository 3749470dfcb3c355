// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// One host with its own memory, recipe words and mutex in front of one driver, the library or the
// model. Everything that the driver tells it goes into a record of lines. A session runs two such
// hosts side by side and compares their records.

#ifndef TESTS_MODEL_HOST_SIDE_H
#define TESTS_MODEL_HOST_SIDE_H

#include "driver/intf.h"

#include <QMutex>
#include <QString>

#include <deque>
#include <functional>
#include <string>
#include <vector>

using Record = std::vector<std::string>;

// What the host does inside a callback: one of the three calls that it may make there.
struct NestedCall
{
    enum class Kind
    {
        Nothing,
        Read,
        Write,
        QueueRead
    };

    Kind kind = Kind::Nothing;
    KEY_ADDRESS key;  // what the call names; `length` is the count
    int tag = 0;
    std::vector<unsigned char> data;  // of a write; its size is what a read has room for
};

std::string hexOf(const void* bytes, std::size_t byteCount);
std::string describe(const VARIABLE& request);
std::string describe(const FRAME_PRO& frame);

// The driver's callback is a plain function: it goes to the host that is calling just now.
int callActiveHost(int linkNo, int stationNo, QString& text, int value);
extern std::function<int(int, int, QString&, int)> activeHost;

class Host
{
public:
    Host() : memory(fxHostMemoryBytes), recipe(recipeWordCount) {}
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    static constexpr int recipeWordCount = 2048;

    std::vector<unsigned char> memory;  // exactly what a host must give
    std::vector<unsigned short> recipe;
    QMutex mutex;
    Record record;
    std::deque<NestedCall> nested;  // one is made in each callback, while they last
    // Sees each callback before the host acts on it.
    std::function<void(int linkNo, int stationNo, const QString& text, int value)> observe;

    // No request, and recipe words that tell their places apart.
    void refill();
    void note(const std::string& line) { record.push_back(line); }
    // What the host sees of its recipe memory from that word on, as it is told of the word.
    void noteRecipeWords(int word);
};

template <class Driver>
class HostSide : public Host
{
public:
    Driver driver;

    // Runs `act(driver, host)` with this host as the one that is called back.
    template <class Act>
    void run(const Act& act, const std::deque<NestedCall>& callsInside)
    {
        record.clear();
        nested = callsInside;
        activeHost = [this](int linkNo, int stationNo, QString& text, int value) {
            return called(linkNo, stationNo, text, value);
        };
        act(driver, static_cast<Host&>(*this));
        activeHost = nullptr;
        if (!mutex.tryLock())
            note("the mutex was left locked");
        else
            mutex.unlock();
    }

private:
    int called(int linkNo, int stationNo, const QString& text, int value)
    {
        note("callback " + std::to_string(linkNo) + "," + std::to_string(stationNo) + "," +
             text.toStdString() + "," + std::to_string(value));
        if (observe)
            observe(linkNo, stationNo, text, value);
        if (text == "RWI")
            noteRecipeWords(value);
        if (!mutex.tryLock())
            note("called with the mutex locked");
        else
            mutex.unlock();
        if (nested.empty())
            return 0;
        NestedCall call = nested.front();
        nested.pop_front();
        perform(call);
        return value;
    }

    void perform(NestedCall& call)
    {
        KEY_ADDRESS& key = call.key;
        switch (call.kind) {
        case NestedCall::Kind::Nothing:
            return;
        case NestedCall::Kind::Read:
            driver.getData(key.stationNo, key.registerType, key.startIndex, key.length,
                           call.data.data());
            note("read inside " + hexOf(call.data.data(), call.data.size()));
            return;
        case NestedCall::Kind::Write:
            driver.setData(key.stationNo, key.registerType, key.startIndex, key.length,
                           call.data.data(), call.tag);
            note("wrote inside");
            return;
        case NestedCall::Kind::QueueRead:
            driver.addConditionRead(key, call.tag);
            note("queued inside");
            return;
        }
    }
};

#endif
