// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the gateway shows of itself: as JSON, which its control socket hands out, and made of that a
// table for people and metrics in Prometheus's text format.

#pragma once

#include "tools/fxgate/bus/bus.h"
#include "tools/fxgate/workers/link_supervisor.h"
#include "tools/fxgate/writes/writes.h"

#include <QJsonObject>
#include <QStringList>

namespace fxgate {

struct StatusSource
{
    struct Link
    {
        QString name;
        LinkView view;
        LinkReport report;
    };
    struct Form
    {
        QString name;
        BusStatus status;
    };

    QString gateway;
    qint64 startedMs = 0, nowMs = 0;  // UTC
    QVector<Link> links;
    QVector<Form> forms;
    Writes::Counts writes;
    QString auditProblem;
};

QJsonObject statusObject(const StatusSource& source);
QStringList statusLines(const QJsonObject& status);
QByteArray metricsText(const QJsonObject& status);

}  // namespace fxgate
