// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Everything that a command needs to talk to one PLC: the loaded library, its register types, the
// open link, the session and the exchange loop.

#pragma once

#include "tools/exchange/exchange_loop.h"
#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/views/console.h"
#include "tools/link/link_keeper.h"
#include "tools/simulated/make_link.h"
#include "tools/tags/tag_file.h"

#include <memory>

namespace fxtools {

// Where names come from.
struct TagSource
{
    QString file;  // empty: there are none
    QString plc;   // the name of the PLC; empty: the link column is of no interest
};

// The driver without a link, for commands that only ask it about addresses, and the names of
// addresses.
struct AddressServices
{
    DriverLibrary library;
    RegisterCatalogue catalogue;
    TagSource source;

    AddressServices(const QString& libraryPath, const TagSource& tagSource,
                    std::optional<int> ownStation = std::nullopt);
    explicit AddressServices(const CommonOptions& common);

    // Read when the first name is asked for, so that a mistake in the file harms nothing else.
    const QVector<Tag>& tags() const;

private:
    mutable std::optional<QVector<Tag>> m_tags;
};

// The settings of a connection, made from the command line once.
struct ConnectionSettings
{
    QString library;
    TagSource tags;
    LinkSettings link;
    int station = 1;
    SessionSettings session;
    LoopSettings loop;
    std::optional<int> reconnectS;                         // nothing: the command's default
    std::function<void(const QString& text)> onLinkState;  // empty: a line on standard error
    bool timestamps = false;                               // on these lines
};

// Throws Failure.
ConnectionSettings connectionSettings(const CommonOptions& common,
                                      const LinkSettings& linkUnlessSaid = SimulatedSettings());

class Connection
{
public:
    // Loads the library and opens the link; throws Failure. A link that cannot be opened is retried
    // only if the user gave a time. With the options of a command a simulated PLC is announced
    // before the first frame, so that nobody takes its values for those of a machine.
    explicit Connection(const ConnectionSettings& settings);
    explicit Connection(const CommonOptions& common);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const DriverLibrary& library() const { return m_services.library; }
    const AddressServices& services() const { return m_services; }
    const RegisterCatalogue& catalogue() const { return m_services.catalogue; }
    const Link& link() const { return *m_link.link; }
    BenchControl* control() const { return m_link.control; }  // null: no simulated PLC inside
    DriverSession& session() { return m_session; }
    const DriverSession& session() const { return m_session; }
    ExchangeLoop& loop() { return m_loop; }

    // A lost link is reopened while the loop runs, for the time that the user gave or 30 s. The
    // queues are kept, and the frame in flight is sent again. After this call the default is to
    // retry for ever: for commands that run until stopped.
    void waitForLinkWithoutEnd() { m_keeper.waitWithoutEnd(); }

private:
    bool reconnect();

    AddressServices m_services;
    MadeLink m_link;
    LinkKeeper m_keeper;
    DriverSession m_session;
    ExchangeLoop m_loop;
};

// The exit code for an exchange with this verdict.
ExitCode exitCodeOf(ReplyVerdict verdict);

// Good; SomeFailed; or, if all exchanges failed, the code of the most frequent reason.
ExitCode exitCodeOf(const Statistics& statistics);

}  // namespace fxtools
