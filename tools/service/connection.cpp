// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/service/connection.h"

namespace fxtools {

static_assert(mostWordsPerFrame == fxMaxWriteWords);

AddressServices::AddressServices(const QString& libraryPath, const TagSource& tagSource,
                                 std::optional<int> ownStation)
    : library(libraryPath), catalogue(library, ownStation), source(tagSource)
{}

const QVector<Tag>& AddressServices::tags() const
{
    if (!m_tags)
        m_tags = readTags(source.file, catalogue);
    return *m_tags;
}

Connection::Connection(const ConnectionSettings& settings)
    : m_services(settings.library, settings.tags, settings.station),
      m_link(makeLink(settings.link)), m_keeper(*m_link.link, settings.reconnectS),
      m_session(library(), settings.session), m_loop(m_session, *m_link.link, settings.loop)
{
    m_keeper.isInterrupted = settings.loop.isInterrupted;
    m_keeper.onState = [name = link().name(), onState = settings.onLinkState](const QString& text) {
        if (onState)
            onState(name, text);
    };
    m_loop.onLinkLost = [this] { return reconnect(); };
    m_loop.onBabble = settings.onBabble;
    m_keeper.openFirst();
}

bool Connection::reconnect()
{
    if (!m_keeper.reopen(m_loop.statistics().total().accepted))
        return false;
    ++m_loop.statistics().reconnects;
    return true;
}

}  // namespace fxtools
