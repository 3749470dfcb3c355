// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the plant knows of the tags of one link. A value is taken over, and told, if its quality or
// the reason of it has changed, or the value itself by more than the tag's deadband; so the plant
// always holds what was told last.

#pragma once

#include "tools/fxgate/plant.h"
#include "tools/fxgate/workers/worker_line.h"

#include <QSet>

namespace fxgate {

class LinkValues
{
public:
    LinkValues(const QString& link, Plant& plant) : m_link(link), m_plant(plant) {}

    // The tags that a worker serves. The values of those that it served before stay.
    void begin(const QVector<ServedTag>& tags);

    // What is worth telling; each throws Failure if it cannot be of these tags.
    QVector<Change> take(const ValuesLine& line);

    // No tag is good any more.
    QVector<Change> lose(Quality quality, const QString& reason, qint64 utcMs);

    // Each tag is told once more with its next value, changed or not.
    void tellAllAgain();

private:
    void check(const QString& tag) const;
    void take(const QString& tag, const Sample& sample, QVector<Change>& changes);

    QString m_link;
    Plant& m_plant;
    QHash<QString, ServedTag> m_tags;
    QSet<QString> m_toldAgain;
};

}  // namespace fxgate
