// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The history of alarms in a CSV file: a line for each event, appended as it comes. While the disk
// does not take them, the newest thousand wait for it. A file of ten megabytes becomes the older
// one, FILE.1, in place of that before.

#pragma once

#include "tools/fxview/models/alarm_book.h"

namespace fxview {

class AlarmFile
{
public:
    explicit AlarmFile(const QString& path) : m_path(path) {}

    // Why events wait; empty: all are in the file.
    QString add(const AlarmEvent& event, const fxtools::Tag& tag);

private:
    QString write();
    void makeRoom() const;

    QString m_path;
    QVector<QByteArray> m_waiting;
    int m_lost = 0;  // more than could wait
};

}  // namespace fxview
