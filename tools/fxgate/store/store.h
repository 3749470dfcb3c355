// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Changes that could not be sent, in an SQLite file, and notes that outlive the program. Bounded by
// bytes and age: the oldest make room, and are counted.
//
// Nothing throws: problem() says why a commit failed, and the next one tries again. A damaged file
// is moved aside, and a new one begun. The newest commit survives a loss of power; the file's
// journal takes up to 4 MB beside the bytes that are bounded.

#pragma once

#include "tools/fxgate/bus/form.h"
#include "tools/fxgate/configuration.h"

#include <functional>

struct sqlite3;
struct sqlite3_stmt;

namespace fxgate {

class Store
{
public:
    explicit Store(const StoreSettings& settings);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const StoreSettings& settings() const { return m_settings; }
    QString problem() const { return m_problem; }  // empty: the last call did what it should
    QString movedTo() const { return m_movedTo; }  // the damaged file of this run; empty: none

    // One commit, which reaches the disk, for all that is done in the work. False: nothing of it
    // is in the file.
    bool inOneCommit(const std::function<void()>& work);

    // For the work of a commit: stores changes behind the others.
    void add(const QString& form, const QVector<StoredChange>& changes, qint64 nowMs);

    // For the work of a commit: the oldest after a row, without those of some links. In the file
    // they are marked as perhaps repeated from now on; the answer tells how they were.
    QVector<StoredChange> take(const QString& form, qint64 afterRow, int most,
                               const QStringList& withoutLinks);

    // For the work of a commit.
    void remove(const QString& form, const QVector<qint64>& rows);
    void setNote(const QString& key, const QByteArray& value);

    QByteArray note(const QString& key);
    qint64 rows(const QString& form) const { return m_counts.value(form).rows; }
    qint64 dropped(const QString& form) const
    {
        return m_counts.value(form).dropped;
    }                  // in this run
    qint64 lastRow();  // of all forms

private:
    class Statement;
    struct Counts
    {
        qint64 rows = 0;
        qint64 dropped = 0;
    };

    bool open();
    bool prepareSchema();
    void close();
    void moveAside();
    bool run(const char* sql);
    qint64 number(const char* sql);
    qint64 bytes();  // of the file's pages that are in use
    void countRows();
    void makeRoom(qint64 nowMs);
    int dropOldest(qint64 storedBeforeMs);
    void fail(int result);

    StoreSettings m_settings;
    sqlite3* m_file = nullptr;
    QString m_problem;
    QString m_movedTo;
    bool m_hasFailed = false;  // within the commit
    bool m_isDamaged = false;
    QHash<QString, Counts> m_counts;  // by form
};

}  // namespace fxgate
