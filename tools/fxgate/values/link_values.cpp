// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/values/link_values.h"

#include "tools/quoted.h"

#include <cmath>

namespace fxgate {

namespace {

bool isWorthTelling(const Sample& old, const Sample& now, double deadband)
{
    if (old.quality != now.quality || old.reason != now.reason)
        return true;
    if (old.value.isDouble() && now.value.isDouble())
        return std::abs(old.value.toDouble() - now.value.toDouble()) > deadband;
    return old.value != now.value;
}

}  // namespace

void LinkValues::begin(const QVector<ServedTag>& tags)
{
    LinkView& view = m_plant[m_link];
    QHash<QString, Sample> kept;
    QHash<QString, ServedTag> served;
    for (const ServedTag& tag : tags) {
        const auto before = m_tags.find(tag.name);
        if (before != m_tags.end() && before->kind == tag.kind && view.samples.contains(tag.name))
            kept.insert(tag.name, view.samples[tag.name]);
        served.insert(tag.name, tag);
    }
    m_tags = served;
    view.tags = tags;
    view.samples = kept;
}

void LinkValues::check(const QString& tag) const
{
    if (!m_tags.contains(tag))
        refuseLine(fxtools::quoted(tag) + " is not one of its tags");
}

void LinkValues::take(const QString& tag, const Sample& sample, QVector<Change>& changes)
{
    QHash<QString, Sample>& samples = m_plant[m_link].samples;
    const auto old = samples.find(tag);
    const bool isTold = old == samples.end() || m_toldAgain.remove(tag) ||
                        isWorthTelling(*old, sample, m_tags[tag].deadband);
    if (!isTold)
        return;
    samples.insert(tag, sample);
    changes.append({m_link, tag, sample});
}

QVector<Change> LinkValues::take(const ValuesLine& line)
{
    for (auto tag = line.good.begin(); tag != line.good.end(); ++tag) {
        check(tag.key());
        if (!isOfKind(m_tags[tag.key()].kind, tag.value()))
            refuseLine("the value of " + fxtools::quoted(tag.key()) + " is not of its kind");
    }
    QVector<Change> changes;
    for (auto tag = line.good.begin(); tag != line.good.end(); ++tag)
        take(tag.key(), {tag.value(), Quality::Good, {}, line.timeMs}, changes);
    const auto takeReasons = [&](const QMap<QString, QString>& reasons, Quality quality) {
        for (auto tag = reasons.begin(); tag != reasons.end(); ++tag) {
            check(tag.key());
            const QJsonValue value = m_plant[m_link].samples.value(tag.key()).value;
            take(tag.key(), {value, quality, tag.value(), line.timeMs}, changes);
        }
    };
    takeReasons(line.stale, Quality::Stale);
    takeReasons(line.bad, Quality::Bad);
    return changes;
}

QVector<Change> LinkValues::lose(Quality quality, const QString& reason, qint64 utcMs)
{
    QVector<Change> changes;
    for (const ServedTag& tag : m_plant[m_link].tags) {
        const QJsonValue value = m_plant[m_link].samples.value(tag.name).value;
        take(tag.name, {value, quality, reason, utcMs}, changes);
    }
    return changes;
}

void LinkValues::tellAllAgain()
{
    for (const ServedTag& tag : m_plant[m_link].tags)
        m_toldAgain.insert(tag.name);
}

}  // namespace fxgate
