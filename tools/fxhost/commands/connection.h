// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Everything that a command needs to talk to one PLC: the loaded library, what it says about its
// registers, the open link, the session and the exchange loop.

#pragma once

#include "tools/exchange/exchange_loop.h"
#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/views/console.h"
#include "tools/link/link_keeper.h"
#include "tools/simulated/make_link.h"

#include <memory>

namespace fxtools {

// The driver without a link, for commands that only ask it about addresses.
struct AddressServices
{
    DriverLibrary library;
    RegisterCatalogue catalogue;

    explicit AddressServices(const QString& libraryPath);
    explicit AddressServices(const CommonOptions& common);
};

// What the command line says about a connection, once and for all.
struct ConnectionSettings
{
    QString library;
    LinkSettings link;
    SessionSettings session;
    LoopSettings loop;
    std::optional<int> reconnectS;  // nothing: what the command takes
    bool timestamps = false;        // on changes of state
};

// Throws Failure.
ConnectionSettings connectionSettings(const CommonOptions& common,
                                      const LinkSettings& linkUnlessSaid = SimulatedSettings());

class Connection
{
public:
    // Loads the library and opens the link; throws Failure. A link that is not there is awaited
    // only for as long as the user said.
    explicit Connection(const ConnectionSettings& settings);
    explicit Connection(const CommonOptions& common) : Connection(connectionSettings(common)) {}
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const DriverLibrary& library() const { return m_services.library; }
    const RegisterCatalogue& catalogue() const { return m_services.catalogue; }
    const Link& link() const { return *m_link.link; }
    BenchControl* control() const { return m_link.control; }  // null: no simulated PLC inside
    DriverSession& session() { return m_session; }
    const DriverSession& session() const { return m_session; }
    ExchangeLoop& loop() { return m_loop; }

    // A lost link is opened again while the loop runs, for as long as the user said or half a
    // minute. What was queued stays queued, and the frame in flight goes out again. A command that
    // runs until it is stopped waits without end, unless told otherwise.
    void waitForLinkWithoutEnd() { m_keeper.waitWithoutEnd(); }

private:
    bool reconnect();

    AddressServices m_services;
    MadeLink m_link;
    LinkKeeper m_keeper;
    DriverSession m_session;
    ExchangeLoop m_loop;
};

// The exit code that a failed exchange stands for.
ExitCode exitCodeOf(ReplyVerdict verdict);

// Good; or that some exchanges failed; or, when all failed, what was most often the matter.
ExitCode exitCodeOf(const Statistics& statistics);

}  // namespace fxtools
