// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxsim/control/control.h"

#include "tools/fxsim/plc/memory_image.h"
#include "tools/fxsim/plc/number_text.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace fxsim {

namespace {

constexpr int bytesPerLine = 16;
constexpr int devicesPerLine = 8;
constexpr int highestByte = 255;
constexpr int mostPokes = 1000;
constexpr int helpColumn = 29;

// What a command works on.
struct Bench
{
    Simulator& plc;
    const ControlActions& actions;
    QStringList arguments;
    QByteArray answer;  // what comes before "ok"
};

struct CommandRow
{
    const char* name;
    int fewest;  // arguments
    int most;
    const char* arguments;
    const char* text;
    void (*run)(Bench& bench);  // may throw an Error
};

[[noreturn]] void refuse(const QString& text)
{
    throw Error(ExitCode::Usage, text);
}

// The argument, or the default of the fault that does the same.
int milliseconds(const Bench& bench, FaultKind fault)
{
    const FaultFacts& row = factsOf(fault);
    const QString text = bench.arguments.value(0, QString::number(row.value));
    return parseNumber(text, row.lowestValue, row.highestValue, "time in ms");
}

void requireMemory(const Bench& bench, int address, int byteCount)
{
    if (!bench.plc.memory().has(address, byteCount))
        refuse("this PLC does not have all of that memory");
}

void peekDevices(Bench& bench, const Device& first)
{
    const int count =
        parseNumber(bench.arguments.value(1, "1"), 1, first.room(), "number of devices");
    for (int index = 0; index < count; ++index) {
        const Device device = first.next(index);
        requireMemory(bench, device.address(), std::max(1, device.type->byteCount()));
        if (index % devicesPerLine == 0)
            bench.answer += (index == 0 ? "" : "\n") + device.name().toLatin1() + ':';
        bench.answer += ' ' + QByteArray::number(valueOf(bench.plc.memory(), device));
    }
    bench.answer += '\n';
}

void peek(Bench& bench)
{
    const PlcMemory& memory = bench.plc.memory();
    const MemoryPlace place = parsePlace(bench.arguments[0]);
    if (place.device)
        return peekDevices(bench, *place.device);
    if (place.bit && bench.arguments.size() > 1)
        refuse("a bit of a byte or word is shown alone");
    const int byteCount = parseNumber(bench.arguments.value(1, "1"), 1,
                                      addressableBytes - place.address, "number of bytes");
    requireMemory(bench, place.address, byteCount);
    for (int offset = 0; offset < byteCount && !place.bit; offset += bytesPerLine) {
        const int address = place.address + offset;
        bench.answer +=
            QByteArray::number(address, 16).toUpper().rightJustified(4, '0') + ": " +
            memory.read(address, std::min(bytesPerLine, byteCount - offset)).toHex(' ').toUpper() +
            '\n';
    }
    if (place.bit)
        bench.answer = memory.bit(place.address, *place.bit) ? "1\n" : "0\n";
}

// How many values there is room for from the place on, what each may be, and its bytes.
struct PokeRange
{
    int room;
    ValueLimits limits;
    int byteCount;  // 0: a bit
};

PokeRange pokeRange(const MemoryPlace& place)
{
    if (place.device) {
        const int bytes = place.device->type->byteCount();
        return {place.device->room(), limitsOf(bytes), bytes};
    }
    if (place.bit)
        return {1, limitsOf(0), 0};
    return {addressableBytes - place.address, {0, highestByte}, 1};
}

void poke(Bench& bench)
{
    PlcMemory& memory = bench.plc.memory();
    const MemoryPlace place = parsePlace(bench.arguments[0]);
    const PokeRange range = pokeRange(place);
    QVector<qint64> values;
    for (const QString& argument : bench.arguments.mid(1))
        values.append(parseInteger(argument, range.limits.lowest, range.limits.highest, "value"));
    if (values.size() > range.room)
        refuse(QString("too many values: there is room for %1").arg(range.room));
    const int bits = place.bit.value_or(0) + values.size();
    requireMemory(bench, place.address,
                  range.byteCount > 0 ? range.byteCount * values.size()
                                      : (bits + bitsPerByte - 1) / bitsPerByte);
    for (int index = 0; index < values.size(); ++index) {
        if (range.byteCount > 0) {
            memory.setValue(place.address + range.byteCount * index, range.byteCount,
                            static_cast<quint32>(values[index]));
        } else {
            const int bit = *place.bit + index;
            memory.setBit(place.address + bit / bitsPerByte, bit % bitsPerByte, values[index] == 1);
        }
    }
}

void switchInput(Bench& bench)
{
    const std::optional<Device> input = parseDevice(bench.arguments[0]);
    if (!input || *input->type->name != 'X')
        throw invalid("input", bench.arguments[0], "an input, as in X5");
    requireMemory(bench, input->address(), 1);
    const QString position = bench.arguments[1];
    if (position == "auto")
        bench.plc.releaseInput(input->number);
    else if (position == "on" || position == "off")
        bench.plc.switchInput(input->number, position == "on");
    else
        throw invalid("position", position, "on, off or auto");
}

void faults(Bench& bench)
{
    const QString plan = bench.arguments.value(0);
    if (plan.isEmpty())
        bench.answer = faultPlanText(bench.plc.settings().faults).toUtf8() + '\n';
    else if (plan == "help")
        bench.answer = faultHelp();
    else
        bench.plc.setFaults(parseFaults(plan));
}

void load(Bench& bench)
{
    QByteArray image = bench.plc.memory().image();
    loadImage(bench.arguments[0], image);
    bench.plc.memory().setImage(image);
}

void help(Bench& bench);

// clang-format off
constexpr CommandRow commands[] = {
    // name         fewest most      arguments                text
    {"peek",        1,    2,         "PLACE [COUNT]",         "show devices or bytes: peek D100 8", peek},
    {"poke",        2,    mostPokes, "PLACE VALUE...",        "set devices or bytes: poke M0 1 0 1", poke},
    {"switch",      2,    2,         "INPUT on|off|auto",     "hold an input, or leave it to the program", switchInput},
    {"faults",      0,    1,         "[PLAN|none|help]",      "show, set or clear the fault plan, or list faults", faults},
    {"stats",       0,    0,         "",                      "show the statistics",
     [](Bench& bench) { bench.answer = bench.plc.statistics().text(); }},
    {"run",         0,    0,         "",                      "set the switch RUN/STOP to RUN",
     [](Bench& bench) { bench.plc.setRunning(true, bench.actions.nowUs()); }},
    {"stop",        0,    0,         "",                      "set it to STOP",
     [](Bench& bench) { bench.plc.setRunning(false, bench.actions.nowUs()); }},
    {"power-cycle", 0,    1,         "[MS]",                  "switch the PLC off for MS and on again",
     [](Bench& bench) { bench.plc.powerCycle(milliseconds(bench, FaultKind::PowerCycle), bench.actions.nowUs()); }},
    {"drop-link",   0,    1,         "[MS]",                  "close every link for MS and open it again",
     [](Bench& bench) { bench.actions.dropLinks(milliseconds(bench, FaultKind::LinkDrop)); }},
    {"save",        1,    1,         "FILE",                  "save the memory as Intel HEX",
     [](Bench& bench) { saveImage(bench.arguments[0], bench.plc.memory().image()); }},
    {"load",        1,    1,         "FILE",                  "load Intel HEX into the memory", load},
    {"help",        0,    0,         "",                      "show this list", help},
    {"quit",        0,    0,         "",                      "end the simulator",
     [](Bench& bench) { bench.actions.quit(); }},
};
// clang-format on

void help(Bench& bench)
{
    for (const CommandRow& row : commands)
        bench.answer += "  " +
                        (QByteArray(row.name) + ' ' + row.arguments).leftJustified(helpColumn) +
                        row.text + '\n';
}

const CommandRow& findCommand(const QString& name)
{
    QStringList names;
    for (const CommandRow& row : commands) {
        if (name == QLatin1String(row.name))
            return row;
        names.append(QLatin1String(row.name));
    }
    refuse(QString("unknown command '%1'%2; 'help' lists all commands")
               .arg(quotable(name), didYouMean(name, names)));
}

}  // namespace

QByteArray Control::run(const QString& line)
{
    QStringList arguments = line.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts);
    if (arguments.isEmpty())
        return {};
    try {
        const CommandRow& row = findCommand(arguments.takeFirst());
        if (arguments.size() < row.fewest || arguments.size() > row.most)
            refuse(QString("usage: %1 %2").arg(row.name, row.arguments).trimmed());
        Bench bench{m_simulator, m_actions, arguments, {}};
        row.run(bench);
        return bench.answer + "ok\n";
    } catch (const Error& error) {
        return "error: " + error.text().toUtf8() + '\n';
    }
}

}  // namespace fxsim
