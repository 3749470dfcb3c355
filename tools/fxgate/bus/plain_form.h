// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Values as JSON, a topic each, below <prefix>/<gateway>/:
//
//   state                     retained  {"state":"online|offline","dropped":0,"t":..}; the will
//   <link>/state              retained  {"state":"up|down","why":..,"t":..}
//   <link>/<tag>              retained  {"v":12.5,"q":"good|stale|bad","why":..,"t":..}
//   <link>/<tag>/history                the same, sent later, with "historical":true, its row "n"
//                                       and "repeat":true if it may have arrived before
//   <link>/<tag>/set          received  {"v":12.5,"id":..,"t":..}, or the value alone
//   <link>/<tag>/set/reply              {"id":..,"outcome":..,"old":..,"new":..,"reason":..,"t":..}
//
// Times are ISO 8601 in UTC with milliseconds. A tag named "state" is left out.

#pragma once

#include "tools/fxgate/bus/form.h"

#include <QMap>
#include <QSet>

namespace fxgate {

class PlainForm : public Form
{
public:
    PlainForm(const QString& prefix, const QString& gateway, const Plant& plant);

    QString name() const override { return QStringLiteral("plain"); }
    QString clientId() const override { return "fxgate-" + m_gateway + "-plain"; }
    QByteArray memory() const override;
    void recall(const QByteArray& memory) override;
    Message will(qint64 nowMs) override;
    bool wantsWillAfterLeaving() const override { return false; }
    QStringList subscriptions() const override;
    Messages connected(qint64 nowMs) override;
    void disconnected() override;
    bool confirmed() override;
    Messages leaving(qint64 nowMs) override;
    Messages linkChanged(const QString& link, qint64 nowMs) override;
    Messages dropped(qint64 changes, qint64 nowMs) override;
    bool isAnnounced(const QString& /*link*/) const override { return true; }
    Sending sending(const QString& link, const QString& tag) const override;
    Messages values(const QVector<Change>& changes, qint64 nowMs) override;
    Messages history(const QVector<StoredChange>& changes, qint64 nowMs) override;
    Received received(const Message& message, qint64 nowMs) override;
    Messages reply(const WriteRequest& request, const WriteResult& result) override;

private:
    Message state(const QString& state, qint64 nowMs) const;
    Message linkState(const QString& link, qint64 nowMs) const;
    Messages outdated(const QString& link, qint64 nowMs);
    void retain(const QString& link, const QString& tag);

    QString m_gateway;
    QString m_root;  // with its "/"
    const Plant& m_plant;
    qint64 m_dropped = 0;
    QHash<QString, Sample> m_told;            // in this connection, by topic
    QMap<QString, QSet<QString>> m_retained;  // by link: tags of which the broker may have a value
    QSet<QString> m_deleted;                  // of these, in this connection: "press1/flow"
};

// What becomes of a received write: a value, or why it is none.
struct PlainWrite
{
    QJsonValue value;
    QString id;
    std::optional<qint64> sentMs;
    QString mistake;
};

PlainWrite plainWrite(const QByteArray& payload);

}  // namespace fxgate
