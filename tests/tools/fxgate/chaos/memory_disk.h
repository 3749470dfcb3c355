// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A disk in memory for SQLite, its default one while it lives: it can be full, read-only or slow,
// refuse to synchronise, and lose its power, with which goes some of what was not synchronised.

#pragma once

#include "timeline.h"

#include <QByteArray>

#include <map>
#include <memory>
#include <string>

struct sqlite3_vfs;

namespace chaos {

class MemoryDisk
{
public:
    struct Data
    {
        QByteArray bytes;
        QByteArray synced;
    };
    using Files = std::map<std::string, std::shared_ptr<Data>>;

    struct Troubles
    {
        bool isFull = false;
        bool isReadOnly = false;
        bool isSyncRefused = false;
        int slowMs = 0;  // a synchronisation
    };

    explicit MemoryDisk(Timeline& timeline);
    ~MemoryDisk();
    MemoryDisk(const MemoryDisk&) = delete;
    MemoryDisk& operator=(const MemoryDisk&) = delete;

    Troubles troubles;
    bool isBad() const { return troubles.isFull || troubles.isReadOnly || troubles.isSyncRefused; }

    qint64 bytes() const;

    // What the disk holds at this moment, and to have it again.
    Files copy() const;
    void restore(const Files& files) { m_files = files; }
    static void losePower(Files& files, Random& random);

    // For SQLite.
    Files& files() { return m_files; }
    void waitForDisk() { m_timeline.block(troubles.slowMs); }

private:
    Timeline& m_timeline;
    Files m_files;
    std::unique_ptr<sqlite3_vfs> m_system;
};

}  // namespace chaos
