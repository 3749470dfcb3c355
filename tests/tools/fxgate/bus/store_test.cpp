// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The store: order, bounds, and what becomes of it when the program dies, when the disk is full,
// and when the file cannot be written or is damaged.

#include "tests/tools/fxgate/bus/small_plant.h"
#include "tools/fxgate/store/store.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace fxgate;
using namespace gate_tests;

namespace {

class StoreTest : public testing::Test
{
protected:
    QTemporaryDir m_folder;
    StoreSettings m_settings = settings();

    StoreSettings settings() const
    {
        StoreSettings settings;
        settings.file = m_folder.filePath("store.db");
        return settings;
    }

    static QVector<StoredChange> changes(int first, int count, bool mayBeRepeated = false)
    {
        QVector<StoredChange> changes;
        for (int number = first; number < first + count; ++number)
            changes.append({0, change("flow", number, noon + number), mayBeRepeated});
        return changes;
    }

    static bool add(Store& store, const QVector<StoredChange>& changes, qint64 nowMs = noon,
                    const QString& form = "plain")
    {
        return store.inOneCommit([&] { store.add(form, changes, nowMs); });
    }

    // "row:value", with "r" if it may be repeated.
    static std::string take(Store& store, qint64 after = 0, int most = 100,
                            const QStringList& without = {}, const QString& form = "plain")
    {
        QStringList texts;
        store.inOneCommit([&] {
            for (const StoredChange& stored : store.take(form, after, most, without))
                texts.append(QString("%1:%2%3")
                                 .arg(stored.row)
                                 .arg(stored.change.sample.value.toInt())
                                 .arg(stored.mayBeRepeated ? "r" : ""));
        });
        return texts.join(' ').toStdString();
    }

    // In a process of its own; returns how that ended.
    template <typename Work>
    static int inChild(Work work)
    {
        const pid_t child = fork();
        if (child == 0) {
            work();
            _exit(testing::Test::HasFailure() ? 1 : 0);
        }
        int status = -1;
        waitpid(child, &status, 0);
        return status;
    }

    void run(const char* sql)
    {
        sqlite3* file = nullptr;
        ASSERT_EQ(sqlite3_open(QFile::encodeName(m_settings.file).constData(), &file), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(file, sql, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(file);
    }
};

TEST_F(StoreTest, KeepsAllOfAChange)
{
    const QVector<QJsonValue> values = {12.5, true, "A\"7\n\u00e9", QJsonValue(), -4294967295.0};
    QVector<StoredChange> stored;
    for (const QJsonValue& value : values)
        stored.append({0, change("flow", value, noon, Quality::Stale, "not read"), false});
    {
        Store store(m_settings);
        EXPECT_TRUE(add(store, stored));
    }
    Store store(m_settings);
    QVector<StoredChange> taken;
    store.inOneCommit([&] { taken = store.take("plain", 0, 100, {}); });
    ASSERT_EQ(taken.size(), values.size());
    for (int place = 0; place < values.size(); ++place) {
        const Change& change = taken[place].change;
        EXPECT_EQ(change.sample.value, values[place]);
        EXPECT_EQ(change.sample.quality, Quality::Stale);
        EXPECT_EQ(change.sample.reason, "not read");
        EXPECT_EQ(change.sample.timeMs, noon);
        EXPECT_EQ(change.link, "press1");
        EXPECT_EQ(change.tag, "flow");
    }
}

TEST_F(StoreTest, OldestFirstWithoutWhatWaits)
{
    Store store(m_settings);
    QVector<StoredChange> mixed = changes(10, 4);
    mixed[1].change.link = "press2";
    add(store, mixed);
    EXPECT_EQ(take(store, 0, 2, {"press2"}), "1:10 3:12");
    EXPECT_EQ(take(store, 3, 100, {"press2"}), "4:13");
    EXPECT_EQ(take(store, 0, 100, {"press1", "press2"}), "");
    EXPECT_EQ(store.lastRow(), 4);
}

TEST_F(StoreTest, WhatWasTakenMayBeRepeated)
{
    Store store(m_settings);
    add(store, changes(0, 1) + changes(1, 1, true));
    EXPECT_EQ(take(store), "1:0 2:1r");
    EXPECT_EQ(take(store), "1:0r 2:1r");
}

TEST_F(StoreTest, NumbersAreNeverGivenTwice)
{
    Store store(m_settings);
    add(store, changes(0, 2));
    store.inOneCommit([&] { store.remove("plain", {1, 2}); });
    EXPECT_EQ(store.rows("plain"), 0);
    add(store, changes(2, 1));
    EXPECT_EQ(take(store), "3:2");
}

TEST_F(StoreTest, FormsHaveTheirOwnRows)
{
    Store store(m_settings);
    add(store, changes(0, 1));
    add(store, changes(1, 2), noon, "sparkplug");
    EXPECT_EQ(take(store), "1:0");
    EXPECT_EQ(store.rows("plain"), 1);
    EXPECT_EQ(store.rows("sparkplug"), 2);
    store.inOneCommit([&] { store.remove("plain", {2}); });
    EXPECT_EQ(store.rows("sparkplug"), 2);
}

TEST_F(StoreTest, NotesOutliveTheProgram)
{
    {
        Store store(m_settings);
        EXPECT_EQ(store.note("sparkplug"), "");
        store.inOneCommit([&] { store.setNote("sparkplug", "6"); });
        store.inOneCommit([&] { store.setNote("sparkplug", "7"); });
    }
    EXPECT_EQ(Store(m_settings).note("sparkplug"), "7");
}

TEST_F(StoreTest, TooOldIsDroppedAndCounted)
{
    m_settings.ageMs = 60000;
    Store store(m_settings);
    add(store, changes(0, 2500), noon);
    add(store, changes(2500, 1), noon + 60000);
    EXPECT_EQ(store.dropped("plain"), 0);
    add(store, changes(2501, 1), noon + 60001);
    EXPECT_EQ(store.dropped("plain"), 2500);
    EXPECT_EQ(take(store), "2501:2500 2502:2501");
}

TEST_F(StoreTest, ClockThatIsPutBackDropsNothing)
{
    m_settings.ageMs = 60000;
    Store store(m_settings);
    add(store, changes(0, 1), noon);
    add(store, changes(1, 1), noon - 10 * m_settings.ageMs);
    EXPECT_EQ(store.rows("plain"), 2);
}

TEST_F(StoreTest, TooManyBytesDropTheOldest)
{
    m_settings.limitBytes = 500000;
    Store store(m_settings);
    int added = 0;
    for (; added < 20000; added += 500)
        ASSERT_TRUE(add(store, changes(added, 500)));
    EXPECT_GT(store.dropped("plain"), 0);
    EXPECT_EQ(store.dropped("plain") + store.rows("plain"), added);
    EXPECT_LT(QFile(m_settings.file).size(), 600000);  // one commit more than the limit
    EXPECT_EQ(
        take(store, 0, 1),
        QString("%1:%2").arg(store.dropped("plain") + 1).arg(store.dropped("plain")).toStdString());
}

TEST_F(StoreTest, CommittedSurvivesAKill)
{
    const int status = inChild([this] {
        Store store(m_settings);
        add(store, changes(0, 100));
        store.inOneCommit([&] {
            store.add("plain", changes(100, 100), noon);
            kill(getpid(), SIGKILL);
        });
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    Store store(m_settings);
    EXPECT_EQ(store.problem(), "");
    EXPECT_EQ(store.rows("plain"), 100);
    EXPECT_EQ(take(store, 98), "99:98 100:99");
}

TEST_F(StoreTest, TakenBeforeAKillMayBeRepeated)
{
    const int status = inChild([this] {
        Store store(m_settings);
        add(store, changes(0, 3));
        take(store, 0, 2);
        kill(getpid(), SIGKILL);
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    Store store(m_settings);
    EXPECT_EQ(take(store), "1:0r 2:1r 3:2");
}

TEST_F(StoreTest, FullDiskIsToldAndWorkGoesOn)
{
    EXPECT_EQ(inChild([this] {
                  Store store(m_settings);
                  EXPECT_TRUE(add(store, changes(0, 10)));
                  signal(SIGXFSZ, SIG_IGN);
                  const rlimit full = {100000, RLIM_INFINITY};
                  setrlimit(RLIMIT_FSIZE, &full);
                  EXPECT_FALSE(add(store, changes(10, 10000)));
                  EXPECT_NE(store.problem(), "");
                  EXPECT_EQ(store.rows("plain"), 10);
                  const rlimit room = {RLIM_INFINITY, RLIM_INFINITY};
                  setrlimit(RLIMIT_FSIZE, &room);
                  EXPECT_TRUE(add(store, changes(10, 10)));
                  EXPECT_EQ(store.problem(), "");
                  EXPECT_EQ(take(store, 18), "19:18 20:19");
              }),
              0);
}

TEST_F(StoreTest, ReadOnlyFileIsToldAndWorkGoesOn)
{
    {
        Store store(m_settings);
        add(store, changes(0, 10));
    }
    QFile::setPermissions(m_settings.file, QFile::ReadOwner | QFile::ReadOther);
    QFile::setPermissions(m_folder.path(),
                          QFile::ReadOther | QFile::ExeOther | QFile::ReadOwner | QFile::ExeOwner);
    EXPECT_EQ(inChild([this] {
                  EXPECT_TRUE(getuid() != 0 || setuid(65534) == 0);  // for whom permissions count
                  Store store(m_settings);
                  EXPECT_NE(store.problem(), "");
                  EXPECT_FALSE(add(store, changes(10, 1)));
                  EXPECT_EQ(store.note("plain"), "");
                  EXPECT_EQ(store.lastRow(), 0);
              }),
              0);
    QFile::setPermissions(m_folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(StoreTest, FolderThatAppearsLaterIsUsed)
{
    m_settings.file = m_folder.filePath("later/store.db");
    Store store(m_settings);
    EXPECT_NE(store.problem(), "");
    EXPECT_FALSE(add(store, changes(0, 1)));
    QDir(m_folder.path()).mkdir("later");
    EXPECT_TRUE(add(store, changes(0, 1)));
    EXPECT_EQ(store.problem(), "");
}

TEST_F(StoreTest, SecondProgramIsRefused)
{
    Store store(m_settings);
    add(store, changes(0, 1));
    Store second(m_settings);
    EXPECT_NE(second.problem(), "");
    EXPECT_EQ(second.movedTo(), "");
    EXPECT_TRUE(add(store, changes(1, 1)));
}

TEST_F(StoreTest, DamagedFileIsMovedAside)
{
    for (const QByteArray& bytes :
         {QByteArray(5000, 'x'), QByteArray("SQLite format 3\0", 16) + QByteArray(5000, '\xa5')}) {
        QFile file(m_settings.file);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        Store store(m_settings);
        EXPECT_EQ(store.problem(), "");
        EXPECT_EQ(store.movedTo(), m_settings.file + ".damaged");
        QFile moved(store.movedTo());
        EXPECT_TRUE(moved.open(QIODevice::ReadOnly));
        EXPECT_EQ(moved.readAll(), bytes);
        EXPECT_TRUE(add(store, changes(0, 1)));
    }
}

TEST_F(StoreTest, DamageInTheMiddleIsMovedAsideWhenItIsMet)
{
    {
        Store store(m_settings);
        add(store, changes(0, 5000));
    }
    QFile file(m_settings.file);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_GT(file.size(), 100000);
    file.seek(20 * 4096);
    file.write(QByteArray(20 * 4096, '\xa5'));
    file.close();
    Store store(m_settings);
    take(store, 0, 5000);
    EXPECT_TRUE(add(store, changes(0, 1)));
    EXPECT_EQ(store.movedTo(), m_settings.file + ".damaged");
    EXPECT_EQ(store.rows("plain"), 1);
}

TEST_F(StoreTest, FileOfANewerProgramIsLeftAlone)
{
    run("PRAGMA user_version = 2");
    Store store(m_settings);
    EXPECT_TRUE(store.problem().contains("it has version 2; this program knows 1"));
    EXPECT_FALSE(add(store, changes(0, 1)));
    EXPECT_EQ(store.movedTo(), "");
    EXPECT_TRUE(QFile::exists(m_settings.file));
}

}  // namespace
