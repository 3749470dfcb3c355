// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See options.h. The library takes the line apart and checks names and numbers; what only this
// program knows (ranges, faults, addresses) is checked after.

#include "tools/fxsim/options.h"

#include "tools/fxsim/plc/number_text.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <limits>

namespace fxsim {

namespace {

constexpr int slowestBaud = 300;
constexpr int fastestBaud = 4000000;
constexpr int longestScanMs = 10000;
constexpr int mostBytes = 255;  // two hex digits carry no more

const char* const description = "fxsim - a simulated FX-series PLC on its programming port: it "
                                "answers over a pseudo-terminal, TCP or a serial\n"
                                "port, runs a small program, and misbehaves on demand.";

const char* const footer =
    "\nExamples:\n"
    "  fxsim --link /tmp/plc                 a PLC at /tmp/plc, at 9600 baud, running the sample "
    "program\n"
    "  fxsim --tcp --baud 0                  one on TCP port 8888 of this machine, as fast as it "
    "goes\n"
    "  fxsim --faults silence=0.05,nak@3     one that keeps silent now and then, and refuses the "
    "third request\n"
    "  fxsim --load plant.hex --save plant.hex --program plant.json\n"
    "\nWhile it runs it takes commands on its standard input: help lists them.\n"
    "Exit codes: 0 good, 2 usage, 3 a link could not be opened, 7 a file could not be read or "
    "written.\n"
    "The manual is fxsim(1).";

struct RawOptions
{
    std::string link, tcp, serial, enquiry = "optional", onError = "nak", faults = "none";
    std::string memory = "0x0000-0x7FFF", holes, mirrors = "0x0F00:0x0E00:256";
    std::string program = "sample", load, save, trace, control, tell;
    std::string baud = "9600", seed = "1";
    bool pty = false, stats = false, noCommands = false;
    int scanMs = 0, maxBytes = 64;
};

struct UsageError
{
    QString text;
};

// Of a shell variable that was never set, say: without a name the option would count for nothing.
CLI::Validator named()
{
    return CLI::Validator(
        [](const std::string& text) { return text.empty() ? "the name is empty" : std::string(); },
        "");
}

void addLinks(CLI::App& app, RawOptions& raw)
{
    app.add_flag("--pty", raw.pty, "A pseudo-terminal; the default when no other link is asked for")
        ->group("Links");
    app.add_option("--link", raw.link, "Path of a symbolic link to the pseudo-terminal")
        ->type_name("PATH")
        ->check(named())
        ->group("Links");
    app.add_option("--tcp", raw.tcp,
                   "A TCP server, at 127.0.0.1:8888 unless given; port 0 is any free one")
        ->expected(0, 1)
        ->type_name("[ADDRESS:]PORT")
        ->group("Links");
    app.add_option("--serial", raw.serial, "A serial port, 7 data bits, even parity, 1 stop bit")
        ->type_name("DEVICE")
        ->check(named())
        ->group("Links");
}

void addTiming(CLI::App& app, RawOptions& raw)
{
    app.add_option("--baud", raw.baud,
                   "Speed of the line, ten bits a character; 0 is as fast as possible")
        ->capture_default_str()
        ->type_name("SPEED")
        ->group("Timing");
    app.add_option("--scan-ms", raw.scanMs, "Length of a scan; answers leave at the end of one")
        ->capture_default_str()
        ->check(CLI::Range(0, longestScanMs))
        ->group("Timing");
}

void addPort(CLI::App& app, RawOptions& raw)
{
    app.add_option("--enq", raw.enquiry, "What an ENQ (05h) is to the PLC")
        ->capture_default_str()
        ->check(CLI::IsMember({"optional", "needed", "ignored"}))
        ->group("Programming port");
    app.add_option("--on-error", raw.onError, "What a bad frame gets")
        ->capture_default_str()
        ->check(CLI::IsMember({"nak", "silence"}))
        ->group("Programming port");
    app.add_option("--max-bytes", raw.maxBytes,
                   "Largest read and write, in bytes; a frame that asks for more is bad")
        ->capture_default_str()
        ->check(CLI::Range(1, mostBytes))
        ->group("Programming port");
}

void addMemory(CLI::App& app, RawOptions& raw)
{
    app.add_option("--memory", raw.memory, "Byte addresses that the PLC has")
        ->capture_default_str()
        ->type_name("RANGE,...")
        ->group("Memory");
    app.add_option("--holes", raw.holes, "Byte addresses among them that it has not")
        ->type_name("RANGE,...")
        ->group("Memory");
    app.add_option("--mirror", raw.mirrors, "What hosts write at FROM shows at TO too; or none")
        ->capture_default_str()
        ->type_name("FROM:TO:BYTES,...")
        ->group("Memory");
    app.add_option("--load", raw.load, "Memory at power-on, Intel HEX")
        ->type_name("FILE")
        ->check(named())
        ->group("Memory");
    app.add_option("--save", raw.save, "Write the memory there at the end")
        ->type_name("FILE")
        ->check(named())
        ->group("Memory");
    app.add_option("--program", raw.program,
                   "What runs in the PLC: sample, none, or a script in JSON")
        ->capture_default_str()
        ->type_name("sample|none|FILE.json")
        ->check(named())
        ->group("Memory");
}

void addBench(CLI::App& app, RawOptions& raw)
{
    app.add_option("--faults", raw.faults, "What goes wrong and when; help lists the faults")
        ->capture_default_str()
        ->type_name("PLAN|help")
        ->group("Bench");
    app.add_option("--seed", raw.seed,
                   "Start of the random numbers; the same seed, the same faults")
        ->capture_default_str()
        ->type_name("NUMBER")
        ->group("Bench");
    app.add_option("--trace", raw.trace, "Show every frame, on standard error or in FILE")
        ->expected(0, 1)
        ->type_name("[FILE]")
        ->group("Bench");
    app.add_flag("--stats", raw.stats, "Print what was counted at the end")->group("Bench");
    app.add_option("--control", raw.control, "Take commands on a local socket at PATH")
        ->type_name("PATH")
        ->check(named())
        ->group("Bench");
    app.add_option(
           "--tell", raw.tell,
           "Give COMMAND to the simulator that listens at --control, print its answer and end")
        ->type_name("COMMAND")
        ->check(named())
        ->group("Bench");
    app.add_flag("--no-commands", raw.noCommands, "Take no commands on standard input")
        ->group("Bench");
}

template <typename Value>
Value need(const std::optional<Value>& value, const char* option, const std::string& text,
           const char* wanted)
{
    if (!value)
        throw UsageError{QStringLiteral("%1 '%2' does not do; wanted is %3")
                             .arg(option, QString::fromStdString(text), wanted)};
    return *value;
}

// "8888", ":8888", "0.0.0.0:8888", "[::1]:8888", "localhost:8888".
void readTcp(const std::string& text, Options& options)
{
    const char* const wanted = "[ADDRESS:]PORT with a port of 0 to 65535, as in 127.0.0.1:8888";
    const QString whole = QString::fromStdString(text);
    const int colon = whole.lastIndexOf(':');
    QString address = whole.left(std::max(0, colon));
    if (address.startsWith('[') && address.endsWith(']'))
        address = address.mid(1, address.size() - 2);
    options.tcpPort = static_cast<quint16>(
        need(parseNumber(whole.mid(colon + 1), 0, 65535), "--tcp", text, wanted));
    if (address.isEmpty() || address == QLatin1String("localhost"))
        return;
    if (!options.tcpAddress.setAddress(address))
        need(std::optional<int>(), "--tcp", text, wanted);
}

EnquiryMode enquiryMode(const std::string& text)
{
    if (text == "needed")
        return EnquiryMode::Needed;
    return text == "ignored" ? EnquiryMode::Ignored : EnquiryMode::Optional;
}

int readBaud(const RawOptions& raw)
{
    const QString text = QString::fromStdString(raw.baud);
    const std::optional<int> baud = parseNumber(text, 0, fastestBaud);
    if (!baud || (*baud != 0 && *baud < slowestBaud)) {
        throw UsageError{QStringLiteral("--baud: '%1' is no speed; wanted is 0 or %2 to %3")
                             .arg(text)
                             .arg(slowestBaud)
                             .arg(fastestBaud)};
    }
    if (*baud == 0 && !raw.serial.empty())
        throw UsageError{QStringLiteral("--serial: a serial port needs a speed, --baud 0 is none")};
    return *baud;
}

quint64 readSeed(const RawOptions& raw)
{
    const QString text = QString::fromStdString(raw.seed);
    bool isNumber = false;
    const quint64 seed = text.toULongLong(&isNumber);
    if (!isNumber) {
        throw UsageError{QStringLiteral("--seed: '%1' is no seed; wanted is 0 to %2")
                             .arg(text)
                             .arg(std::numeric_limits<quint64>::max())};
    }
    return seed;
}

Settings readSettings(const RawOptions& raw)
{
    Settings settings;
    settings.timing = {readBaud(raw), raw.scanMs};
    settings.enquiry = enquiryMode(raw.enquiry);
    settings.onError = raw.onError == "silence" ? OnError::Silence : OnError::Nak;
    settings.maxBytes = raw.maxBytes;
    settings.seed = readSeed(raw);
    const ParsedFaults faults = parseFaults(QString::fromStdString(raw.faults));
    if (!faults.error.isEmpty())
        throw UsageError{QStringLiteral("--faults: %1").arg(faults.error)};
    settings.faults = faults.plan;
    return settings;
}

void readLinks(const CLI::App& app, const RawOptions& raw, Options& options)
{
    options.tcp = app.count("--tcp") > 0;
    if (options.tcp && !raw.tcp.empty())
        readTcp(raw.tcp, options);
    options.serialDevice = QString::fromStdString(raw.serial);
    options.linkPath = QString::fromStdString(raw.link);
    const bool otherLink = options.tcp || !options.serialDevice.isEmpty();
    options.pty = raw.pty || !options.linkPath.isEmpty() || !otherLink;
}

void readMemory(const RawOptions& raw, Options& options)
{
    const char* const ranges = "byte addresses such as 0x0000-0x3FFF,0x8000-0x8FFF";
    options.present =
        need(parseRanges(QString::fromStdString(raw.memory)), "--memory", raw.memory, ranges);
    if (!raw.holes.empty())
        options.missing =
            need(parseRanges(QString::fromStdString(raw.holes)), "--holes", raw.holes, ranges);
    options.mirrors =
        need(parseMirrors(QString::fromStdString(raw.mirrors)), "--mirror", raw.mirrors,
             "FROM:TO:BYTES within 64 KiB, as in 0x0F00:0x0E00:256, or none");
}

Options readOptions(const CLI::App& app, const RawOptions& raw)
{
    Options options;
    readLinks(app, raw, options);
    options.settings = readSettings(raw);
    readMemory(raw, options);
    options.program = QString::fromStdString(raw.program);
    options.loadPath = QString::fromStdString(raw.load);
    options.savePath = QString::fromStdString(raw.save);
    options.trace = app.count("--trace") > 0;
    options.tracePath = QString::fromStdString(raw.trace);
    options.stats = raw.stats;
    options.controlPath = QString::fromStdString(raw.control);
    options.tellCommand = QString::fromStdString(raw.tell);
    if (!raw.tell.empty() && raw.control.empty())
        throw UsageError{QStringLiteral("--tell: --control says which simulator")};
    options.commands = !raw.noCommands;
    return options;
}

ParsedOptions usageError(const QString& text)
{
    std::cerr << "fxsim: " << text.toStdString() << " (fxsim --help shows how)\n";
    return {Options(), false, exitUsage};
}

}  // namespace

ParsedOptions parseOptions(int argumentCount, char** arguments)
{
    RawOptions raw;
    CLI::App app(description, "fxsim");
    app.footer(footer);
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    app.set_version_flag("--version", "fxsim " FXSIM_VERSION);
    addLinks(app, raw);
    addTiming(app, raw);
    addPort(app, raw);
    addMemory(app, raw);
    addBench(app, raw);
    try {
        app.parse(argumentCount, arguments);
        if (raw.faults == "help") {
            std::cout << faultHelp().constData();
            return {};
        }
        return {readOptions(app, raw), true, exitGood};
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return {Options(), false, app.exit(error)};
        return usageError(QString::fromStdString(error.what()));
    } catch (const UsageError& error) {
        return usageError(error.text);
    }
}

}  // namespace fxsim
