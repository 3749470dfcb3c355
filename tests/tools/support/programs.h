// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The two programs as people run them: a simulated PLC that listens on a pseudo-terminal or on TCP
// until the test is over, and fxhost with a command line, run to its end.

#pragma once

#include "tests/tools/fxsim/fxsim_process.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <ostream>
#include <string>

namespace tool_tests {

enum class Road
{
    PseudoTerminal,
    Tcp,
};

void PrintTo(Road road, std::ostream* out);

// A simulated PLC that answers at once and changes nothing by itself.
inline const QStringList quickPlc = {"--baud", "0", "--program", "none"};

class RunningSimulator
{
public:
    // Throws std::runtime_error when it does not come up.
    explicit RunningSimulator(Road road, const QStringList& options = {});

    QString link() const { return m_link; }   // as fxhost takes it
    QByteArray command(const QString& line);  // on its standard input; what came before "ok"

private:
    QTemporaryDir m_folder;  // a stable path: a terminal that comes back may have another number
    FxsimProcess m_process;
    QString m_link;
};

struct Ended
{
    int code = -1;
    std::string out;
    std::string err;
};

void PrintTo(const Ended& ended, std::ostream* out);

bool holds(const std::string& text, const std::string& part);
int times(const std::string& text, const std::string& part);  // how often it holds it

// With this driver, and with FX_LINK naming the simulated PLC inside fxhost.
QProcessEnvironment hostEnvironment();

Ended fxhost(const QStringList& arguments,
             const QProcessEnvironment& environment = hostEnvironment(),
             const QByteArray& input = {});

// fxhost in the middle of its work.
class RunningHost
{
public:
    explicit RunningHost(const QStringList& arguments);
    ~RunningHost();
    RunningHost(const RunningHost&) = delete;
    RunningHost& operator=(const RunningHost&) = delete;

    bool hasPrinted();
    bool hasComplained();  // or ended without
    void send(int signal);
    Ended end();  // waits for it

private:
    ChildProcess m_process;
};

// A folder that goes when the test does.
QString newFile(const QTemporaryDir& folder, const char* name, const QByteArray& content);
QByteArray contentOf(const QString& path);

}  // namespace tool_tests
