// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See options.h. Each option has its default, its help and what becomes of its text in one place.

#include "tools/fxsim/options.h"

#include "tools/fxsim/plc/number_text.h"

#include <CLI/CLI.hpp>

#include <QRegularExpression>

#include <algorithm>
#include <functional>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <sstream>

namespace fxsim {

namespace {

constexpr int speeds[] = {0,       300,     600,     1200,    2400,    4800,    9600,    19200,
                          38400,   57600,   115200,  230400,  460800,  500000,  576000,  921600,
                          1000000, 1152000, 1500000, 2000000, 2500000, 3000000, 3500000, 4000000};
constexpr int longestScanMs = 10000;
constexpr int mostBytes = 255;  // two hex digits carry no more
constexpr int highestPort = 65535;

const char* const description =
    "fxsim - a simulated FX-series PLC on its programming port. It answers over a\n"
    "pseudo-terminal, TCP or a serial port, runs a small program, and can simulate\nfaults.";

const char* const footer =
    "\nExamples:\n"
    "  fxsim --link /tmp/plc --view       a PLC at /tmp/plc, shown on the terminal\n"
    "  fxsim --tcp --baud 0               a PLC on TCP port 8888, without delays\n"
    "  fxsim --faults silence=5%,nak@3    5 % of the replies are lost, the 3rd is NAK\n"
    "  fxsim --model fx1s --load plant.hex --save plant.hex --program plant.json\n"
    "\nWhile fxsim runs, type commands on its standard input; 'help' lists them.\n"
    "Exit status: 0 success, 2 wrong usage, 3 a link could not be opened,\n"
    "7 a file could not be read or written. See also the manual page fxsim(1).";

// Keeps descriptions within a terminal of 80 columns.
class NarrowFormatter : public CLI::Formatter
{
public:
    std::string make_option_desc(const CLI::Option* option) const override
    {
        constexpr size_t terminalColumns = 80;
        std::istringstream words(option->get_description());
        std::string text;
        size_t column = get_column_width();
        for (std::string word; words >> word; column += 1 + word.size()) {
            const bool fits = column + word.size() < terminalColumns;
            if (!fits)
                column = get_column_width();
            text += (text.empty() ? "" : fits ? " " : "\n") + word;
        }
        return text;
    }

    std::string make_option_opts(const CLI::Option* option) const override
    {
        return option->get_type_name().empty() ? "" : ' ' + option->get_type_name();
    }
};

// Options of one group: the text of each becomes a setting by `take`, whose Error names the option.
class OptionGroup
{
public:
    using Take = std::function<void(const QString& text)>;

    OptionGroup(CLI::App& app, const char* name) : m_app(app), m_name(name) {}

    void flag(const char* name, bool& value, const char* help)
    {
        m_app.add_flag(name, value, help)->group(m_name);
    }

    CLI::Option* text(const char* name, const char* type, const std::string& help, const Take& take)
    {
        const auto named = [name, take](const std::string& text) {
            try {
                take(QString::fromStdString(text));
            } catch (const Error& error) {
                throw error.at(QString::fromLatin1(name));
            }
        };
        return m_app.add_option_function<std::string>(name, named, help)
            ->type_name(type)
            ->group(m_name);
    }

    // A setting that has a value also when it is not on the command line.
    template <typename Value, typename Parse>
    void value(const char* name, const char* type, const char* byDefault, const std::string& help,
               Value& value, const Parse& parse)
    {
        value = parse(QString(byDefault));
        text(name, type, help + " (default: " + byDefault + ")",
             [&value, parse](const QString& text) { value = parse(text); });
    }

    // An empty name, of a shell variable that was never set, would be as if it were not there.
    CLI::Option* name(const char* name, const char* type, QString& value, const char* help)
    {
        return text(name, type, help, [&value](const QString& text) {
            if (text.isEmpty())
                throw Error(ExitCode::Usage, "the name must not be empty");
            value = text;
        });
    }

private:
    CLI::App& m_app;
    const char* m_name;
};

// "", "8888", ":8888", "0.0.0.0:8888", "[::1]:8888", "localhost:8888".
TcpAddress parseTcp(const QString& text)
{
    TcpAddress tcp;
    if (text.isEmpty())
        return tcp;
    const int colon = text.lastIndexOf(':');
    QString address = text.left(std::max(0, colon));
    if (address.startsWith('[') && address.endsWith(']'))
        address = address.mid(1, address.size() - 2);
    tcp.port = static_cast<quint16>(parseNumber(text.mid(colon + 1), 0, highestPort, "port"));
    const bool isLocal = address.isEmpty() || address == "localhost";
    if (!isLocal && !tcp.address.setAddress(address))
        throw invalid("address", address, "an IP address or localhost");
    return tcp;
}

int parseBaud(const QString& text)
{
    bool isNumber = false;
    const int speed = text.toInt(&isNumber);
    if (!isNumber || std::find(std::begin(speeds), std::end(speeds), speed) == std::end(speeds))
        throw invalid("speed", text, "0, or a usual speed such as 9600, 19200 or 115200");
    return speed;
}

quint64 parseSeed(const QString& text)
{
    bool isNumber = false;
    const quint64 seed = text.toULongLong(&isNumber);
    if (!isNumber)
        throw invalid("seed", text, QString("0 to %1").arg(std::numeric_limits<quint64>::max()));
    return seed;
}

template <typename Word>
auto oneOf(std::initializer_list<std::pair<const char*, Word>> words)
{
    return [words = QVector<std::pair<const char*, Word>>(words)](const QString& text) {
        QStringList names;
        for (const auto& word : words) {
            if (text == word.first)
                return word.second;
            names.append(word.first);
        }
        const QString last = names.takeLast();
        throw invalid("value", text, names.join(", ") + " or " + last);
    };
}

auto numberBetween(int lowest, int highest, const char* what)
{
    return [=](const QString& text) { return parseNumber(text, lowest, highest, what); };
}

void addLinks(OptionGroup group, Options& options)
{
    group.flag("--pty", options.pty, "A pseudo-terminal (default if there is no other link)");
    group.name("--link", "PATH", options.linkPath,
               "A pseudo-terminal with a symbolic link to it at PATH");
    group
        .text("--tcp", "[ADDRESS:]PORT",
              "A TCP server (default: 127.0.0.1:8888); port 0 takes any free port",
              [&options](const QString& text) { options.tcp = parseTcp(text); })
        ->expected(0, 1);
    group.name("--serial", "DEVICE", options.serialDevice,
               "A serial port with 7 data bits, even parity, 1 stop bit");
}

void addTiming(OptionGroup group, LineTiming& timing)
{
    group.value("--baud", "SPEED", "9600",
                "Speed of the line, with 10 bits per character; 0 = no delays", timing.baud,
                parseBaud);
    group.value("--scan-ms", "MS", "0", "Length of a PLC scan in ms; replies leave at its end",
                timing.scanMs, numberBetween(0, longestScanMs, "time in ms"));
}

void addPort(OptionGroup group, Settings& settings)
{
    group.value("--enq", "MODE", "optional",
                "ENQ (05h) before the frames: optional, needed or ignored", settings.enquiry,
                oneOf<EnquiryMode>({{"optional", EnquiryMode::Optional},
                                    {"needed", EnquiryMode::Needed},
                                    {"ignored", EnquiryMode::Ignored}}));
    group.value("--on-error", "ANSWER", "nak", "Answer to a bad frame: nak or silence",
                settings.onError,
                oneOf<OnError>({{"nak", OnError::Nak}, {"silence", OnError::Silence}}));
    group.value("--max-bytes", "BYTES", "64",
                "Largest read and write; a frame that asks for more is a bad frame",
                settings.maxBytes, numberBetween(1, mostBytes, "number of bytes"));
}

void addMemory(OptionGroup group, Options& options)
{
    group.value("--model", "MODEL", "any",
                "PLC: fx1s, fx1n, or any, which has every device; sets the memory and D8001",
                options.settings.model, [](const QString& text) { return &findModel(text); });
    group.text("--memory", "RANGE,...",
               "Memory that exists, by devices or addresses, instead of the model's",
               [&options](const QString& text) { options.present = parseRanges(text); });
    group.text("--holes", "RANGE,...",
               "Memory within --memory that does not exist, as in D100-D109",
               [&options](const QString& text) { options.missing = parseRanges(text); });
    group.value("--mirror", "FROM:TO:BYTES,...", "0x0F00:0x0E00:256",
                "What a host writes at FROM appears at TO too; or none", options.mirrors,
                parseMirrors);
    group.name("--load", "FILE", options.loadPath, "Load the memory at power-on from Intel HEX");
    group.name("--save", "FILE", options.savePath, "Save the memory at the end as Intel HEX");
    options.program = "sample";
    group.name("--program", "PROGRAM", options.program,
               "Program in the PLC: sample, none, or the file of a JSON script (default: sample)");
}

void addBench(OptionGroup group, Options& options, bool& faultHelpAsked)
{
    group.value("--faults", "PLAN", "none", "Which faults occur and when; help lists all faults",
                options.settings.faults, [&faultHelpAsked](const QString& text) {
                    faultHelpAsked = text == "help";
                    return faultHelpAsked ? FaultPlan() : parseFaults(text);
                });
    group.value("--seed", "NUMBER", "1",
                "Seed of the random numbers; the same seed gives the same faults",
                options.settings.seed, parseSeed);
    group
        .text("--trace", "[FILE]", "Trace every frame to FILE (default: standard error)",
              [&options](const QString& text) {
                  options.trace = true;
                  options.tracePath = text;
              })
        ->expected(0, 1);
    group.flag("--force", options.force, "Let --trace replace an existing FILE");
    group.flag("--stats", options.stats, "Print statistics at the end");
    group.flag("--view", options.view,
               "Show inputs and outputs on the terminal, with keys to switch inputs");
    CLI::Option* control = group.name("--control", "PATH", options.controlPath,
                                      "Accept commands on a local socket at PATH");
    group
        .name("--tell", "COMMAND", options.tellCommand,
              "Send COMMAND to the simulator at --control, print its answer and exit")
        ->needs(control);
    group.flag("--no-commands", options.noCommands, "Read no commands from standard input");
}

// In usual words what the parser says in its own.
QString usageMistake(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> strange = app.remaining();
    if (strange.empty()) {
        return quotable(QString::fromUtf8(error.what()))
            .replace(QRegularExpression("1 required (\\S+) missing"), "\\1 missing")
            .replace(QRegularExpression("^(\\S+) was given a disallowed flag override$"),
                     "--\\1 takes no value");
    }
    QStringList names;
    for (const CLI::Option* option : app.get_options())
        names.append(QString::fromStdString(option->get_name()));
    const QString word = QString::fromStdString(strange.front());
    return QString("%1 '%2'%3")
        .arg(word.startsWith('-') ? "unknown option" : "unexpected argument", quotable(word),
             didYouMean(word, names));
}

void checkTogether(Options& options)
{
    if (options.settings.timing.baud == 0 && !options.serialDevice.isEmpty())
        throw Error(ExitCode::Usage, "--serial needs a speed: --baud 0 has none");
    const bool otherLink = options.tcp || !options.serialDevice.isEmpty();
    options.pty = options.pty || !options.linkPath.isEmpty() || !otherLink;
}

}  // namespace

std::optional<Options> parseOptions(int argumentCount, const char* const* arguments)
{
    Options options;
    bool faultHelpAsked = false;
    CLI::App app(description, "fxsim");
    app.footer(footer);
    app.formatter(std::make_shared<NarrowFormatter>());
    app.option_defaults()
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->disable_flag_override();
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("-V,--version", "fxsim " FXSIM_VERSION, "Print the version");
    addLinks({app, "Links"}, options);
    addTiming({app, "Timing"}, options.settings.timing);
    addPort({app, "Programming port"}, options.settings);
    addMemory({app, "Memory"}, options);
    addBench({app, "Bench"}, options, faultHelpAsked);
    const QString advice = "%1 (see fxsim --help)";
    try {
        app.parse(argumentCount, arguments);
        checkTogether(options);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0)
            throw Error(ExitCode::Usage, advice.arg(usageMistake(app, error)));
        app.exit(error);
        return std::nullopt;
    } catch (const Error& error) {
        throw Error(error.code(), advice.arg(error.text()));
    }
    if (!faultHelpAsked)
        return options;
    std::cout << faultHelp().constData();
    return std::nullopt;
}

}  // namespace fxsim
