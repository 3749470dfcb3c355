// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/alarm_file.h"

#include "tools/library/csv.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>

namespace fxview {

namespace {

constexpr int mostWaiting = 1000;
constexpr qint64 mostBytes = 10 << 20;

const char* wordOf(AlarmEvent::What what)
{
    switch (what) {
    case AlarmEvent::What::Raised:
        return "raised";
    case AlarmEvent::What::Cleared:
        return "cleared";
    case AlarmEvent::What::Acknowledged:
        break;
    }
    return "acknowledged";
}

}  // namespace

void AlarmFile::makeRoom() const
{
    if (QFile(m_path).size() < mostBytes)
        return;
    QFile::remove(m_path + ".1");
    QFile::rename(m_path, m_path + ".1");
}

QString AlarmFile::add(const AlarmEvent& event, const fxtools::Tag& tag)
{
    const QString time =
        QDateTime::fromMSecsSinceEpoch(event.timeMs, Qt::UTC).toString(Qt::ISODateWithMs);
    m_waiting += fxtools::csvLine({time, tag.name, event.kind, wordOf(event.what),
                                   event.value.toVariant().toString(), tag.unit})
                     .toUtf8() +
                 '\n';
    if (m_waiting.size() > mostWaiting) {
        m_waiting.removeFirst();
        ++m_lost;
    }
    const QString reason = write();
    if (reason.isEmpty())
        return {};
    return QCoreApplication::translate("fxview::AlarmFile",
                                       "The history of alarms cannot be written: %1. Make room on "
                                       "the disk; %2 events wait, %3 are lost.")
        .arg(reason)
        .arg(m_waiting.size())
        .arg(m_lost);
}

// A line that went out in part is taken back, so that none stands there twice.
QString AlarmFile::write()
{
    makeRoom();
    QFile file(m_path);
    if (!file.open(QIODevice::Append | QIODevice::Unbuffered))
        return m_path + ": " + file.errorString();
    const auto put = [&file](const QByteArray& line) {
        const qint64 before = file.size();
        const bool isWhole = file.write(line) == line.size();
        return isWhole || (file.resize(before), false);
    };
    bool isPut = file.size() > 0 || put("time (UTC),tag,alarm,event,value,unit\n");
    while (isPut && !m_waiting.isEmpty()) {
        isPut = put(m_waiting.first());
        if (isPut)
            m_waiting.removeFirst();
    }
    if (!isPut)
        return m_path + ": " + file.errorString();
    return {};
}

}  // namespace fxview
