// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Everything that is needed to talk to one PLC: the loaded library, its register types, the open
// link, the session and the exchange loop.

#pragma once

#include "tools/exchange/exchange_loop.h"
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

// The driver without a link, for those who only ask it about addresses, and the names of addresses.
struct AddressServices
{
    DriverLibrary library;
    RegisterCatalogue catalogue;
    TagSource source;

    AddressServices(const QString& libraryPath, const TagSource& tagSource,
                    std::optional<int> ownStation = std::nullopt);

    // Read when the first name is asked for, so that a mistake in the file harms nothing else.
    const QVector<Tag>& tags() const;

private:
    mutable std::optional<QVector<Tag>> m_tags;
};

struct ConnectionSettings
{
    QString library;
    TagSource tags;
    LinkSettings link;
    int station = 1;
    SessionSettings session;
    LoopSettings loop;
    std::optional<int> reconnectS;  // nothing: 30 s, or without end
    // Called with the link's name and its new state, and with what something on the line sends by
    // itself.
    std::function<void(const QString& link, const QString& text)> onLinkState;
    std::function<void(const QByteArray& heard)> onBabble;
};

class Connection
{
public:
    // Loads the library and opens the link; throws Failure. A link that cannot be opened is retried
    // only if the settings give a time.
    explicit Connection(const ConnectionSettings& settings);
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
    int wordsPerFrame() const { return m_session.settings().wordsPerFrame; }

    // A lost link is reopened while the loop runs, for the time that the settings give or 30 s. The
    // queues are kept, and the frame in flight is sent again. After this call the default is to
    // retry for ever: for what runs until it is stopped.
    void waitForLinkWithoutEnd() { m_keeper.waitWithoutEnd(); }

private:
    bool reconnect();

    AddressServices m_services;
    MadeLink m_link;
    LinkKeeper m_keeper;
    DriverSession m_session;
    ExchangeLoop m_loop;
};

}  // namespace fxtools
