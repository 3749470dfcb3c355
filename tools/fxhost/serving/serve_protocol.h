// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The lines of fxhost serve, each a JSON object: docs/serve.md says what they mean.

#pragma once

#include "tools/link/link_settings.h"
#include "tools/service/tag_service.h"

namespace fxtools {

// What the supervisor asks for.
struct ServeOrder
{
    enum class Kind
    {
        Write,
        Refresh,
        Stop,
    };

    Kind kind = Kind::Refresh;
    QString id;  // of a write
    QString tag;
    QJsonValue value;
};

// Throws Failure with what is wrong.
ServeOrder parseOrder(const QByteArray& line);

// A value as a tag file has it. Throws Failure if it is not of the kind that the tag has.
QString writtenText(const Tag& tag, const QJsonValue& value);

QByteArray helloEvent(const QString& version, LinkSettings link, const QVector<Tag>& tags);
QByteArray stateEvent(LinkState link, const QString& reason);
QByteArray mistakeEvent(int line, const QString& text);

struct Liveliness
{
    double cycleMs = 0;
    QStringList late;  // tags
    QString load;      // empty: not known yet
};

QByteArray aliveEvent(const Statistics& statistics, const Liveliness& report);

// A line with what has changed since it was told, or with as much of it as one line takes; empty if
// nothing has. What it holds counts as told.
QByteArray nextValuesEvent(ServedTags& tags, const Moment& now);

QByteArray writtenEvent(const QString& id, const QString& tag, const WriteAnswer& answer);

}  // namespace fxtools
