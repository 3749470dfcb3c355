// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/models/alarm_file.h"

#include "tools/library/csv.h"
#include "tools/library/output_file.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>

namespace fxview {

namespace {

constexpr int mostWaiting = 1000;
constexpr qint64 mostBytes = 10 << 20;
constexpr unsigned long betweenTriesMs = 1000;

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

void AlarmFile::add(const AlarmEvent& event, const fxtools::Tag& tag)
{
    const QString time =
        QDateTime::fromMSecsSinceEpoch(event.timeMs, Qt::UTC).toString(Qt::ISODateWithMs);
    const QMutexLocker locker(&m_mutex);
    m_waiting += fxtools::csvLine({time, tag.name, event.kind, wordOf(event.what),
                                   event.value.toVariant().toString(), tag.unit})
                     .toUtf8() +
                 '\n';
    limitWaiting();
}

void AlarmFile::limitWaiting()
{
    const int tooMany = m_waiting.size() - mostWaiting;
    if (tooMany <= 0)
        return;
    m_waiting.remove(0, tooMany);
    m_lost += tooMany;
}

QString AlarmFile::write()
{
    QVector<QByteArray> lines;
    {
        const QMutexLocker locker(&m_mutex);
        lines.swap(m_waiting);
    }
    const QString reason = lines.isEmpty() ? QString() : append(lines);
    if (reason.isEmpty())
        return {};
    const QMutexLocker locker(&m_mutex);
    m_waiting = lines + m_waiting;
    limitWaiting();
    return QCoreApplication::translate("fxview::AlarmFile",
                                       "The history of alarms cannot be written: %1. Make room on "
                                       "the disk; %2 events wait, %3 are lost.")
        .arg(reason)
        .arg(m_waiting.size())
        .arg(m_lost);
}

// Takes out what is in the file. A line that went out in part is taken back, so that none stands
// there twice.
QString AlarmFile::append(QVector<QByteArray>& lines) const
{
    makeRoom();
    QFile file(m_path);
    if (!file.open(QIODevice::Append | QIODevice::Unbuffered))
        return m_path + ": " + file.errorString();
    QString reason;
    const auto put = [&](const QByteArray& line) {
        const qint64 before = file.size();
        if (fxtools::writeWhole(file, line))
            return true;
        reason = file.errorString();  // which resize() forgets
        file.resize(before);
        return false;
    };
    bool isPut = file.size() > 0 || put("time (UTC),tag,alarm,event,value,unit\n");
    while (isPut && !lines.isEmpty()) {
        isPut = put(lines.first());
        if (isPut)
            lines.removeFirst();
    }
    return isPut ? QString() : m_path + ": " + reason;
}

AlarmWriter::AlarmWriter(const QString& path)
    : m_file(path), m_thread(QThread::create([this] { run(); }))
{
    m_thread->start();
}

AlarmWriter::~AlarmWriter()
{
    {
        const QMutexLocker locker(&m_mutex);
        m_mustEnd = true;
        m_hasWork.wakeAll();
    }
    m_thread->wait();
}

void AlarmWriter::add(const AlarmEvent& event, const fxtools::Tag& tag)
{
    m_file.add(event, tag);
    const QMutexLocker locker(&m_mutex);
    m_hasNew = true;
    m_hasWork.wakeAll();
}

void AlarmWriter::run()
{
    bool mustEnd = false;
    QString problem;
    while (!mustEnd) {
        {
            QMutexLocker locker(&m_mutex);
            if (!m_hasNew && !m_mustEnd)
                m_hasWork.wait(&m_mutex, problem.isEmpty() ? ULONG_MAX : betweenTriesMs);
            mustEnd = m_mustEnd;
            m_hasNew = false;
        }
        const QString before = std::exchange(problem, m_file.write());
        if (problem != before)
            emit tried(problem);
    }
    if (!problem.isEmpty())
        qWarning("fxview: %s", qPrintable(problem));
}

}  // namespace fxview
