// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Everything that a command needs to talk to one PLC: the loaded library, what it says about its
// registers, the open link, the session and the exchange loop.

#pragma once

#include "host/commands/command.h"
#include "host/exchange_loop.h"
#include "host/report/console.h"

#include <memory>

namespace fxhost {

class Connection
{
public:
    // Loads the library and opens the link; throws LibraryError, LinkAddressError or LinkError.
    explicit Connection(const CommonOptions& common, const QString& linkUnlessSaid = "sim:");

    const DriverLibrary& library() const { return m_library; }
    const RegisterCatalogue& catalogue() const { return m_catalogue; }
    Link& link() { return *m_link; }
    DriverSession& session() { return *m_session; }
    ExchangeLoop& loop() { return *m_loop; }

    QVector<RegisterRange> ranges(const std::vector<std::string>& addresses) const;

    // Opens a lost link again, with pauses that grow; false when the user wanted an end first.
    bool reconnect();

private:
    DriverLibrary m_library;
    RegisterCatalogue m_catalogue;
    std::unique_ptr<Link> m_link;
    std::unique_ptr<DriverSession> m_session;
    std::unique_ptr<ExchangeLoop> m_loop;
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

// One line on standard error.
void complain(const QString& text);

}  // namespace fxhost
