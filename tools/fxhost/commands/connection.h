// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Everything that a command needs to talk to one PLC: the loaded library, what it says about its
// registers, the open link, the session and the exchange loop.

#pragma once

#include "tools/exchange/exchange_loop.h"
#include "tools/fxhost/commands/command.h"
#include "tools/fxhost/views/console.h"

#include <memory>

namespace fxtools {

class Connection
{
public:
    // Loads the library and opens the link; throws Failure. A
    // link that is not there is awaited only for as long as the user said.
    explicit Connection(const CommonOptions& common, const QString& linkUnlessSaid = "sim:");
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const DriverLibrary& library() const { return m_library; }
    const RegisterCatalogue& catalogue() const { return m_catalogue; }
    Link& link() { return *m_link; }
    DriverSession& session() { return *m_session; }
    const DriverSession& session() const { return *m_session; }
    ExchangeLoop& loop() { return *m_loop; }

    QVector<RegisterRange> ranges(const std::vector<std::string>& addresses) const;

    // A lost link is opened again while the loop runs, with pauses that grow, for as long as the
    // user said or half a minute. What was queued stays queued, and the frame in flight goes out
    // again. A command that runs until it is stopped waits without end, unless told otherwise.
    void waitForLinkWithoutEnd();

private:
    void openFirst();
    bool reconnect();
    bool awaitLink();
    bool linkOpens();
    void noteLoss();
    qint64 patienceLeftMs() const;
    void sayState(const QString& text) const;

    DriverLibrary m_library;
    RegisterCatalogue m_catalogue;
    std::unique_ptr<Link> m_link;
    std::unique_ptr<DriverSession> m_session;
    std::unique_ptr<ExchangeLoop> m_loop;
    int m_reconnectS;
    bool m_reconnectIsGiven;
    bool m_timestamps;
    int m_pauseMs = 0;
    qint64 m_lostSinceUs = 0;
    qint64 m_answeredUntilLoss = -1;
};

// The driver without a link, for commands that only ask it about addresses.
struct AddressServices
{
    DriverLibrary library;
    RegisterCatalogue catalogue;

    explicit AddressServices(const CommonOptions& common);
    RegisterRange parse(const std::string& address) const;
};

// The exit code that a failed exchange stands for.
ExitCode exitCodeOf(ReplyVerdict verdict);

// Good; or that some exchanges failed; or, when all failed, what was most often the matter.
ExitCode exitCodeOf(const Statistics& statistics);

}  // namespace fxtools
