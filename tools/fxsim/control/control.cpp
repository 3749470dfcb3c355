// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See control.h.

#include "tools/fxsim/control/control.h"

#include "tools/fxsim/plc/memory_image.h"
#include "tools/fxsim/plc/number_text.h"

#include <QRegularExpression>
#include <QStringList>

namespace fxsim {

namespace {

constexpr int bytesPerLine = 16;
constexpr int highestByte = 255;
constexpr int mostPokes = 1000;
constexpr int helpColumn = 31;

QByteArray dump(const PlcMemory& memory, int address, int byteCount)
{
    QByteArray text;
    for (int at = address; at < address + byteCount; at += bytesPerLine) {
        const int lineBytes = std::min(bytesPerLine, address + byteCount - at);
        text += QByteArray::number(at, 16).toUpper().rightJustified(4, '0') + ": " +
                memory.read(at, lineBytes).toHex(' ').toUpper() + '\n';
    }
    return text;
}

// The argument, or what the fault of the same effect takes unless told otherwise.
int milliseconds(const QStringList& arguments, FaultKind fault)
{
    const FaultFacts& row = factsOf(fault);
    const QString text = arguments.value(0, QString::number(row.value));
    return parseNumber(text, row.lowestValue, row.highestValue, "time in ms");
}

[[noreturn]] void refuse(const QString& text)
{
    throw Error(ExitCode::Usage, text);
}

QStringList words(const QString& line)
{
    return line.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
}

}  // namespace

struct Control::CommandRow
{
    const char* name;
    int fewest;  // arguments
    int most;
    const char* arguments;
    const char* text;
    QByteArray (Control::*run)(const Arguments&);  // what comes before "ok"; may throw an Error
};

// clang-format off
const Control::CommandRow Control::commands[] = {
    // name         fewest most      arguments                text
    {"peek",        1,    2,         "ADDRESS[.BIT] [BYTES]", "show bytes, or one bit: peek 0x0100.3", &Control::peek},
    {"poke",        2,    mostPokes, "ADDRESS[.BIT] VALUE...", "set bytes, or one bit: poke 0x0100.3 1", &Control::poke},
    {"faults",      0,    1,         "[PLAN|none|help]",      "show or set the fault plan, clear it, or list all faults", &Control::faults},
    {"stats",       0,    0,         "",                      "show the statistics", &Control::stats},
    {"power-cycle", 0,    1,         "[MS]",                  "switch the PLC off for MS and on again", &Control::powerCycle},
    {"drop-link",   0,    1,         "[MS]",                  "close every link for MS and open it again", &Control::dropLink},
    {"save",        1,    1,         "FILE",                  "save the memory as Intel HEX", &Control::save},
    {"load",        1,    1,         "FILE",                  "load Intel HEX into the memory", &Control::load},
    {"help",        0,    0,         "",                      "show this list", &Control::help},
    {"quit",        0,    0,         "",                      "end the simulator", &Control::quit},
};
// clang-format on

const Control::CommandRow* Control::findCommand(const QString& name)
{
    for (const CommandRow& row : commands) {
        if (name == QLatin1String(row.name))
            return &row;
    }
    return nullptr;
}

QByteArray Control::run(const QString& line)
{
    QStringList arguments = words(line);
    if (arguments.isEmpty())
        return QByteArray();
    const QString name = arguments.takeFirst();
    const CommandRow* row = findCommand(name);
    try {
        if (row == nullptr)
            refuse(QStringLiteral("unknown command '%1'; 'help' lists all commands").arg(name));
        if (arguments.size() < row->fewest || arguments.size() > row->most)
            refuse(QStringLiteral("usage: %1 %2").arg(row->name, row->arguments).trimmed());
        return (this->*row->run)(arguments) + "ok\n";
    } catch (const Error& error) {
        return "error: " + error.text().toUtf8() + '\n';
    }
}

QByteArray Control::peek(const Arguments& arguments)
{
    const MemoryPlace place = parsePlace(arguments[0]);
    if (place.bit)
        return m_simulator.memory().bit(place.address, *place.bit) ? "1\n" : "0\n";
    const int byteCount = parseNumber(arguments.value(1, QStringLiteral("1")), 1,
                                      addressableBytes - place.address, "number of bytes");
    return dump(m_simulator.memory(), place.address, byteCount);
}

QByteArray Control::poke(const Arguments& arguments)
{
    const MemoryPlace place = parsePlace(arguments[0]);
    const int room = place.bit ? 1 : addressableBytes - place.address;
    QVector<int> values;
    for (const QString& argument : arguments.mid(1))
        values.append(parseNumber(argument, 0, place.bit ? 1 : highestByte, "value"));
    if (values.size() > room)
        refuse(QStringLiteral("too many values: room for %1").arg(room));
    PlcMemory& memory = m_simulator.memory();
    if (place.bit)
        memory.setBit(place.address, *place.bit, values[0] == 1);
    for (int index = 0; !place.bit && index < values.size(); ++index)
        memory.setByte(place.address + index, static_cast<quint8>(values[index]));
    return QByteArray();
}

QByteArray Control::faults(const Arguments& arguments)
{
    if (arguments.isEmpty())
        return faultPlanText(m_simulator.settings().faults).toUtf8() + '\n';
    if (arguments[0] == QLatin1String("help"))
        return faultHelp();
    m_simulator.setFaults(parseFaults(arguments[0]));
    return QByteArray();
}

QByteArray Control::stats(const Arguments&)
{
    return m_simulator.statistics().text();
}

QByteArray Control::powerCycle(const Arguments& arguments)
{
    const int offMs = milliseconds(arguments, FaultKind::PowerCycle);
    m_simulator.powerCycle(offMs, m_actions.nowUs());
    return QByteArray();
}

QByteArray Control::dropLink(const Arguments& arguments)
{
    m_actions.dropLinks(milliseconds(arguments, FaultKind::LinkDrop));
    return QByteArray();
}

QByteArray Control::save(const Arguments& arguments)
{
    saveImage(arguments[0], m_simulator.memory().image());
    return QByteArray();
}

QByteArray Control::load(const Arguments& arguments)
{
    QByteArray image = m_simulator.memory().image();
    loadImage(arguments[0], image);
    m_simulator.memory().setImage(image);
    return QByteArray();
}

QByteArray Control::help(const Arguments&)
{
    QByteArray text;
    for (const CommandRow& row : commands)
        text += "  " + (QByteArray(row.name) + ' ' + row.arguments).leftJustified(helpColumn) +
                row.text + '\n';
    return text;
}

QByteArray Control::quit(const Arguments&)
{
    m_actions.quit();
    return QByteArray();
}

}  // namespace fxsim
