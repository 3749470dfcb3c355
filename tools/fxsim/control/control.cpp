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
constexpr int defaultPowerOffMs = 500;
constexpr int defaultLinkDropMs = 1000;
constexpr int maxMs = 600000;
const QByteArray ok = "ok\n";

QByteArray failure(const QString& text)
{
    return "error: " + text.toUtf8() + '\n';
}

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
    QByteArray (Control::*run)(const Arguments&);
};

// clang-format off
const Control::CommandRow Control::commands[] = {
    // name         least most    arguments              text
    {"peek",        1, 2,         "ADDRESS [BYTES]",     "show memory from a byte address, or the bit at ADDRESS.BIT", &Control::peek},
    {"poke",        2, 1000,      "ADDRESS BYTE...",     "set bytes, or one bit: poke 0x0100.3 1", &Control::poke},
    {"faults",      0, 1,         "[PLAN|none|help]",    "show, set, end or explain faults", &Control::faults},
    {"stats",       0, 0,         "",                    "show what was counted", &Control::stats},
    {"power-cycle", 0, 1,         "[MS]",                "PLC off and on again, memory as at the start", &Control::powerCycle},
    {"drop-link",   0, 1,         "[MS]",                "close every link and bring it back", &Control::dropLink},
    {"save",        1, 1,         "FILE",                "write the memory as Intel HEX", &Control::save},
    {"load",        1, 1,         "FILE",                "read Intel HEX over the memory", &Control::load},
    {"help",        0, 0,         "",                    "this list", &Control::showHelp},
    {"quit",        0, 0,         "",                    "end the simulator", &Control::quit},
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
    if (row == nullptr)
        return failure(QStringLiteral("there is no command '%1'; help lists them").arg(name));
    if (arguments.size() < row->fewest || arguments.size() > row->most)
        return failure(QStringLiteral("usage: %1 %2").arg(row->name, row->arguments).trimmed());
    return (this->*row->run)(arguments);
}

QByteArray Control::help()
{
    QByteArray text;
    for (const CommandRow& row : commands)
        text +=
            "  " + (QByteArray(row.name) + ' ' + row.arguments).leftJustified(30) + row.text + '\n';
    return text;
}

QByteArray Control::peek(const Arguments& arguments)
{
    if (const std::optional<BitPlace> place = parseBitPlace(arguments[0]))
        return (m_simulator.memory().bit(place->address, place->bit) ? "1\n" : "0\n") + ok;
    const std::optional<int> address = parseByteAddress(arguments[0]);
    if (!address)
        return failure(QStringLiteral("'%1' is no address; 0x0000 to 0xFFFF, or 0x0100.3 for a bit")
                           .arg(arguments[0]));
    const int most = addressableBytes - *address;
    const std::optional<int> byteCount =
        parseNumber(arguments.value(1, QStringLiteral("1")), 1, most);
    if (!byteCount)
        return failure(QStringLiteral("'%1' is no number of bytes; 1 to %2 from there")
                           .arg(arguments[1])
                           .arg(most));
    return dump(m_simulator.memory(), *address, *byteCount) + ok;
}

QByteArray Control::poke(const Arguments& arguments)
{
    const std::optional<BitPlace> place = parseBitPlace(arguments[0]);
    const std::optional<int> address = parseByteAddress(arguments[0]);
    if (!place && !address)
        return failure(QStringLiteral("'%1' is no address; 0x0000 to 0xFFFF, or 0x0100.3 for a bit")
                           .arg(arguments[0]));
    QVector<int> values;
    for (const QString& argument : arguments.mid(1)) {
        const std::optional<int> value = parseNumber(argument, 0, place ? 1 : 255);
        if (!value)
            return failure(
                QStringLiteral("'%1' is no value; 0 to %2").arg(argument).arg(place ? 1 : 255));
        values.append(*value);
    }
    const int room = place ? 1 : addressableBytes - *address;
    if (values.size() > room)
        return failure(
            QStringLiteral("%1 values, but there is room for %2").arg(values.size()).arg(room));
    if (place)
        m_simulator.memory().setBit(place->address, place->bit, values[0] == 1);
    for (int index = 0; !place && index < values.size(); ++index)
        m_simulator.memory().setByte(*address + index, static_cast<quint8>(values[index]));
    return ok;
}

QByteArray Control::faults(const Arguments& arguments)
{
    if (arguments.isEmpty())
        return faultPlanText(m_simulator.settings().faults).toUtf8() + '\n' + ok;
    if (arguments[0] == QLatin1String("help"))
        return faultHelp() + ok;
    const ParsedFaults parsed = parseFaults(arguments[0]);
    if (!parsed.error.isEmpty())
        return failure(parsed.error);
    m_simulator.setFaults(parsed.plan);
    return ok;
}

QByteArray Control::stats(const Arguments&)
{
    return m_simulator.statistics().text() + ok;
}

QByteArray Control::powerCycle(const Arguments& arguments)
{
    const std::optional<int> offMs =
        parseNumber(arguments.value(0, QString::number(defaultPowerOffMs)), 0, maxMs);
    if (!offMs)
        return failure(QStringLiteral("'%1' is no time; 0 to %2 ms").arg(arguments[0]).arg(maxMs));
    m_simulator.powerCycle(*offMs, m_actions.nowUs());
    return ok;
}

QByteArray Control::dropLink(const Arguments& arguments)
{
    const std::optional<int> forMs =
        parseNumber(arguments.value(0, QString::number(defaultLinkDropMs)), 0, maxMs);
    if (!forMs)
        return failure(QStringLiteral("'%1' is no time; 0 to %2 ms").arg(arguments[0]).arg(maxMs));
    m_actions.dropLinks(*forMs);
    return ok;
}

QByteArray Control::save(const Arguments& arguments)
{
    const QString error = saveImage(arguments[0], m_simulator.memory().image());
    return error.isEmpty() ? ok : failure(error);
}

QByteArray Control::load(const Arguments& arguments)
{
    QByteArray image = m_simulator.memory().image();
    const QString error = loadImage(arguments[0], image);
    if (!error.isEmpty())
        return failure(error);
    m_simulator.memory().setImage(image);
    return ok;
}

QByteArray Control::showHelp(const Arguments&)
{
    return help() + ok;
}

QByteArray Control::quit(const Arguments&)
{
    m_actions.quit();
    return ok;
}

}  // namespace fxsim
