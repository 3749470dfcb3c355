// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/plc/model.h"

#include "tools/fxsim/plc/number_text.h"

#include <QStringList>

namespace fxsim {

namespace {

constexpr int watchdogMs = 200;
constexpr int wordBytes = 2;
constexpr int tenthsPerMs = 10;

// Special data registers are read from 0x0E00 on and written from 0x0F00 on.
// clang-format off
constexpr Model models[] = {
    {"any",  22210, 2000, "0x0000-0x7FFF"},
    {"fx1s", 22210, 2000, "X0-X17,Y0-Y17,M0-M511,S0-S127,T0-T63,C0-C31,C235-C255,M8000-M8255,TV0-TV63,"
                          "CV0-CV31,32CV235-32CV255,D0-D255,0x0E00-0x0FFF"},
    {"fx1n", 26210, 8000, "X0-X177,Y0-Y177,M0-M1535,S0-S999,T0-T255,C0-C255,M8000-M8255,TV0-TV255,"
                          "CV0-CV199,32CV200-32CV255,D0-D7999,0x0E00-0x0FFF"},
};
// clang-format on

struct ClockRelay
{
    int relay;
    qint64 periodMs;
};
constexpr ClockRelay clockRelays[] = {{8011, 10}, {8012, 100}, {8013, 1000}, {8014, 60000}};

constexpr int firstSpecial = 8000;

void setRelay(PlcMemory& memory, int number, bool on)
{
    static const Device first = device("M8000");
    const Device relay = first.next(number - firstSpecial);
    memory.setBit(relay.address(), relay.bit(), on);
}

void setWord(PlcMemory& memory, int number, int value)
{
    static const Device first = device("D8000");
    memory.setValue(first.next(number - firstSpecial).address(), wordBytes,
                    static_cast<quint32>(value));
}

}  // namespace

const Model& findModel(const QString& name)
{
    QStringList names;
    for (const Model& model : models) {
        if (name == QLatin1String(model.name))
            return model;
        names.append(QLatin1String(model.name));
    }
    const QString last = names.takeLast();
    throw invalid("model", name, names.join(", ") + " or " + last);
}

PlcMemory memoryOf(const Model& model)
{
    PlcMemory memory;
    memory.setPresent(parseRanges(QLatin1String(model.memory)));
    setWord(memory, 8000, watchdogMs);
    setWord(memory, 8001, model.version);
    setWord(memory, 8002, model.programSteps / 1000);
    return memory;
}

void showState(PlcMemory& memory, const PlcState& state)
{
    const bool isFirstScan = state.isRunning && state.inStateMs < state.scanMs;
    setRelay(memory, 8000, state.isRunning);
    setRelay(memory, 8001, !state.isRunning);
    setRelay(memory, 8002, isFirstScan);
    setRelay(memory, 8003, !isFirstScan);
    for (const ClockRelay& clock : clockRelays)
        setRelay(memory, clock.relay, 2 * state.poweredMs / clock.periodMs % 2 == 1);
    for (const int word : {8010, 8011, 8012})
        setWord(memory, word, tenthsPerMs * state.scanMs);
}

void showTime(PlcMemory& memory, const QDateTime& time)
{
    constexpr int century = 100;
    constexpr int daysPerWeek = 7;
    const QDate date = time.date();
    int word = 8013;
    for (const int field :
         {time.time().second(), time.time().minute(), time.time().hour(), date.day(), date.month(),
          date.year() % century, date.dayOfWeek() % daysPerWeek})
        setWord(memory, word++, field);
}

}  // namespace fxsim
