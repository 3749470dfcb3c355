// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The history of alarms in a CSV file: a line for each event, appended as it comes. While the disk
// does not take them, the newest thousand wait for it. A file of ten megabytes becomes the older
// one, FILE.1, in place of that before.
//
// A disk can be slow: AlarmWriter writes in a thread of its own, and tries again what waits.

#pragma once

#include "tools/fxview/models/alarm_book.h"

#include <QMutex>
#include <QThread>
#include <QWaitCondition>

namespace fxview {

class AlarmFile
{
public:
    explicit AlarmFile(const QString& path) : m_path(path) {}

    // Does not wait for a write() in another thread.
    void add(const AlarmEvent& event, const fxtools::Tag& tag);

    // Why events still wait; empty: all are in the file.
    QString write();

private:
    QString append(QVector<QByteArray>& lines) const;
    void makeRoom() const;
    void limitWaiting();

    const QString m_path;
    QMutex m_mutex;  // for the rest
    QVector<QByteArray> m_waiting;
    int m_lost = 0;  // more than could wait
};

class AlarmWriter : public QObject
{
    Q_OBJECT

public:
    explicit AlarmWriter(const QString& path);
    ~AlarmWriter() override;  // tries once more to write what waits

    void add(const AlarmEvent& event, const fxtools::Tag& tag);

signals:
    void tried(const QString& problem);  // empty: all is in the file. Sent by the thread.

private:
    void run();

    AlarmFile m_file;
    QMutex m_mutex;  // for the next three
    QWaitCondition m_hasWork;
    bool m_hasNew = false;
    bool m_mustEnd = false;
    std::unique_ptr<QThread> m_thread;
};

}  // namespace fxview
