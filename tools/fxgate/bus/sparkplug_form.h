// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The gateway as a Sparkplug B edge node whose devices are its links. docs/sparkplug.md lists the
// rules that it keeps.
//
// Unborn -> born: connected, and if there is a primary host, that is online. Born: NBIRTH was sent,
// and a DBIRTH for each link that is up; a link that goes down gets a DDEATH, one that comes back
// or has other tags a DBIRTH. Tags go by their aliases from then on.

#pragma once

#include "tools/fxgate/bus/form.h"
#include "tools/fxgate/bus/sparkplug_payload.h"
#include "tools/fxgate/configuration.h"

#include <QPair>

namespace fxgate {

class SparkplugForm : public Form
{
public:
    SparkplugForm(const SparkplugSettings& settings, const Plant& plant);

    QString name() const override { return QStringLiteral("sparkplug"); }
    QString clientId() const override;
    QByteArray memory() const override;
    void recall(const QByteArray& memory) override;
    Message will(qint64 nowMs) override;
    void notConnected() override;
    bool wantsWillAfterLeaving() const override { return true; }
    QStringList subscriptions() const override;
    Messages connected(qint64 nowMs) override;
    void disconnected() override;
    Messages leaving(qint64 nowMs) override;
    Messages linkChanged(const QString& link, qint64 nowMs) override;
    Messages dropped(qint64 changes, qint64 nowMs) override;
    Messages everySecond(qint64 nowMs) override;
    bool isAnnounced(const QString& link) const override
    {
        return m_devices.contains(link) && !m_isRebirthDue;
    }
    Sending sending(const QString& link, const QString& tag) const override;
    Messages values(const QVector<Change>& changes, qint64 nowMs) override;
    Messages history(const QVector<StoredChange>& changes, qint64 nowMs) override;
    Received received(const Message& message, qint64 nowMs) override;
    Messages reply(const WriteRequest& request, const WriteResult& result) override;

private:
    struct BornTag
    {
        ServedTag tag;
        quint64 alias;
        Sample told;  // last
    };
    using Device = QMap<QString, BornTag>;  // by the tag's name

    QString topic(const QString& type, const QString& device = {}) const;
    Metric birthAndDeath() const;
    Message numbered(const QString& topic, const QVector<Metric>& metrics, qint64 nowMs);
    Message nodeBirth(qint64 nowMs);
    Message deviceBirth(const QString& link, qint64 nowMs);
    Message deviceDeath(const QString& link, qint64 nowMs);
    Messages births(qint64 nowMs);
    Messages rebirth(qint64 nowMs);
    Messages data(const QString& link, QVector<Metric> metrics, qint64 nowMs);
    quint64 aliasOf(const QString& link, const QString& tag);
    bool isUnchanged(const QString& link) const;
    Received hostState(const QByteArray& payload, qint64 nowMs);
    Received nodeCommand(const SparkplugPayload& payload, qint64 nowMs);
    QVector<WriteRequest> deviceCommand(const QString& link, const SparkplugPayload& payload,
                                        const Message& message) const;

    SparkplugSettings m_settings;
    const Plant& m_plant;
    int m_connects = -1;  // bdSeq of the connection, 0 to 255; -1: there was none yet
    int m_sequence = 0;   // seq of the next message, 0 to 255
    qint64 m_dropped = 0;
    bool m_isConnected = false;
    bool m_isBorn = false;
    bool m_isHostOnline = false;
    bool m_wasReborn = false;            // in this second; once in each is enough
    bool m_isRebirthDue = false;         // and no data before it
    std::optional<qint64> m_hostTimeMs;  // of the last state of the primary host that counted
    QMap<QString, Device> m_devices;     // that are born, by link
    QHash<QPair<QString, QString>, quint64> m_aliases;  // by link and tag, never given twice
};

}  // namespace fxgate
