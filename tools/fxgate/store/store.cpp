// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxgate/store/store.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <sqlite3.h>

#include <limits>

namespace fxgate {

namespace {

constexpr qint64 schemaVersion = 1;
constexpr int rowsPerRoom = 1000;  // that are dropped at a time

// AUTOINCREMENT: a row's number is never given twice, so readers can tell rows apart by it.
constexpr const char* schema = R"(
    CREATE TABLE changes (
        row INTEGER PRIMARY KEY AUTOINCREMENT,
        form TEXT NOT NULL,
        link TEXT NOT NULL,
        tag TEXT NOT NULL,
        value TEXT NOT NULL,      -- JSON, in brackets
        quality INTEGER NOT NULL,
        reason TEXT NOT NULL,
        time INTEGER NOT NULL,
        stored INTEGER NOT NULL,  -- when
        repeated INTEGER NOT NULL);
    CREATE INDEX changes_of_form ON changes (form, row);
    CREATE TABLE notes (key TEXT PRIMARY KEY, value BLOB NOT NULL);
    PRAGMA user_version = 1;)";

}  // namespace

// A prepared statement; its failures become the store's.
class Store::Statement
{
public:
    Statement(Store& store, const char* sql) : m_store(store)
    {
        if (store.m_file == nullptr || store.m_hasFailed)
            return;
        check(sqlite3_prepare_v2(store.m_file, sql, -1, &m_statement, nullptr));
    }
    ~Statement() { sqlite3_finalize(m_statement); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(qint64 number)
    {
        if (m_statement != nullptr)
            check(sqlite3_bind_int64(m_statement, ++m_bound, number));
        return *this;
    }
    Statement& bind(const QByteArray& text)
    {
        if (m_statement != nullptr)
            check(sqlite3_bind_text(m_statement, ++m_bound, text.constData(), text.size(),
                                    SQLITE_TRANSIENT));
        return *this;
    }
    Statement& bind(const QString& text) { return bind(text.toUtf8()); }

    bool step()  // true: there is a row
    {
        if (m_statement == nullptr || m_store.m_hasFailed)
            return false;
        const int result = sqlite3_step(m_statement);
        if (result != SQLITE_DONE)
            check(result);
        return result == SQLITE_ROW;
    }
    void again()
    {
        sqlite3_reset(m_statement);
        m_bound = 0;
    }

    qint64 number(int column) const { return sqlite3_column_int64(m_statement, column); }
    QByteArray bytes(int column) const
    {
        const int byteCount = sqlite3_column_bytes(m_statement, column);
        return {static_cast<const char*>(sqlite3_column_blob(m_statement, column)), byteCount};
    }
    QString text(int column) const { return QString::fromUtf8(bytes(column)); }

private:
    void check(int result)
    {
        if (result != SQLITE_OK && result != SQLITE_ROW)
            m_store.fail(result);
    }

    Store& m_store;
    sqlite3_stmt* m_statement = nullptr;
    int m_bound = 0;
};

Store::Store(const StoreSettings& settings) : m_settings(settings)
{
    if (!open() && m_isDamaged) {
        moveAside();
        open();
    }
}

Store::~Store()
{
    close();
}

void Store::close()
{
    sqlite3_close(m_file);
    m_file = nullptr;
}

void Store::fail(int result)
{
    m_hasFailed = true;
    m_isDamaged =
        m_isDamaged || (result & 0xFF) == SQLITE_CORRUPT || (result & 0xFF) == SQLITE_NOTADB;
    m_problem =
        QStringLiteral("cannot use store %1: %2")
            .arg(m_settings.file, m_file == nullptr ? QString::fromUtf8(sqlite3_errstr(result))
                                                    : QString::fromUtf8(sqlite3_errmsg(m_file)));
}

bool Store::run(const char* sql)
{
    if (m_file == nullptr || m_hasFailed)
        return false;
    const int result = sqlite3_exec(m_file, sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
        fail(result);
    return result == SQLITE_OK;
}

qint64 Store::number(const char* sql)
{
    Statement statement(*this, sql);
    return statement.step() ? statement.number(0) : 0;
}

// Only this program uses the file: a second one is told that it is locked.
bool Store::open()
{
    m_hasFailed = m_isDamaged = false;
    const int result = sqlite3_open_v2(
        QFile::encodeName(m_settings.file).constData(), &m_file,
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXRESCODE, nullptr);
    if (result != SQLITE_OK)
        fail(result);
    if (run("PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
            "PRAGMA journal_size_limit = 4000000") &&
        prepareSchema()) {
        m_problem.clear();
        countRows();
        return true;
    }
    close();
    return false;
}

bool Store::prepareSchema()
{
    const qint64 version = number("PRAGMA user_version");
    if (m_hasFailed || version == schemaVersion)
        return !m_hasFailed && run("BEGIN IMMEDIATE; COMMIT");  // can it be written?
    if (version != 0) {
        m_problem = QStringLiteral("cannot use store %1: it has version %2; this program knows %3")
                        .arg(m_settings.file)
                        .arg(version)
                        .arg(schemaVersion);
        return false;
    }
    return run("BEGIN IMMEDIATE") && run(schema) && run("COMMIT");
}

// One damaged file is kept, the newest.
void Store::moveAside()
{
    close();
    const QString aside = m_settings.file + ".damaged";
    QFile::remove(aside);
    if (QFile::rename(m_settings.file, aside))
        m_movedTo = aside;
    QFile::remove(m_settings.file + "-wal");
    QFile::remove(m_settings.file + "-shm");
}

void Store::countRows()
{
    for (Counts& counts : m_counts)
        counts.rows = 0;
    Statement statement(*this, "SELECT form, COUNT(*) FROM changes GROUP BY form");
    while (statement.step())
        m_counts[statement.text(0)].rows = statement.number(1);
}

bool Store::inOneCommit(const std::function<void()>& work)
{
    if (m_isDamaged)
        moveAside();
    if (m_file == nullptr && !open())
        return false;
    m_hasFailed = false;
    m_problem.clear();
    const QHash<QString, Counts> before = m_counts;
    run("BEGIN IMMEDIATE");
    work();
    if (run("COMMIT"))
        return true;
    m_counts = before;
    sqlite3_exec(m_file, "ROLLBACK", nullptr, nullptr, nullptr);
    return false;
}

qint64 Store::lastRow()
{
    m_hasFailed = false;
    return number("SELECT MAX(row) FROM changes");
}

qint64 Store::bytes()
{
    return (number("PRAGMA page_count") - number("PRAGMA freelist_count")) *
           number("PRAGMA page_size");
}

// Of the oldest few rows those that were stored before a time; returns how many they were.
int Store::dropOldest(qint64 storedBeforeMs)
{
    Statement statement(*this, "DELETE FROM changes WHERE stored < ? AND row IN (SELECT row FROM "
                               "changes ORDER BY row LIMIT ?) RETURNING form");
    statement.bind(storedBeforeMs).bind(rowsPerRoom);
    int rows = 0;
    for (; statement.step(); ++rows) {
        Counts& counts = m_counts[statement.text(0)];
        --counts.rows;
        ++counts.dropped;
    }
    return rows;
}

void Store::makeRoom(qint64 nowMs)
{
    while (dropOldest(nowMs - m_settings.ageMs) == rowsPerRoom)
        ;
    while (bytes() >= m_settings.limitBytes && dropOldest(std::numeric_limits<qint64>::max()) > 0)
        ;
}

void Store::add(const QString& form, const QVector<StoredChange>& changes, qint64 nowMs)
{
    makeRoom(nowMs);
    Statement statement(*this,
                        "INSERT INTO changes (form, link, tag, value, quality, reason, time, "
                        "stored, repeated) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const StoredChange& stored : changes) {
        const Sample& sample = stored.change.sample;
        statement.bind(form)
            .bind(stored.change.link)
            .bind(stored.change.tag)
            .bind(QJsonDocument(QJsonArray{sample.value}).toJson(QJsonDocument::Compact))
            .bind(static_cast<qint64>(sample.quality))
            .bind(sample.reason)
            .bind(sample.timeMs)
            .bind(nowMs)
            .bind(static_cast<qint64>(stored.mayBeRepeated));
        statement.step();
        statement.again();
    }
    m_counts[form].rows += changes.size();
}

QVector<StoredChange> Store::take(const QString& form, qint64 afterRow, int most,
                                  const QStringList& withoutLinks)
{
    QVector<StoredChange> changes;
    Statement read(*this,
                   "SELECT row, link, tag, value, quality, reason, time, repeated FROM changes "
                   "WHERE form = ? AND row > ? AND link NOT IN (SELECT value FROM json_each(?)) "
                   "ORDER BY row LIMIT ?");
    read.bind(form)
        .bind(afterRow)
        .bind(QJsonDocument(QJsonArray::fromStringList(withoutLinks)).toJson())
        .bind(most);
    while (read.step()) {
        Sample sample;
        sample.value = QJsonDocument::fromJson(read.bytes(3)).array().at(0);
        sample.quality = static_cast<Quality>(read.number(4));
        sample.reason = read.text(5);
        sample.timeMs = read.number(6);
        changes.append({read.number(0), {read.text(1), read.text(2), sample}, read.number(7) != 0});
    }
    Statement mark(*this, "UPDATE changes SET repeated = 1 WHERE row = ? AND repeated = 0");
    for (const StoredChange& stored : changes) {
        mark.bind(stored.row).step();
        mark.again();
    }
    return changes;
}

void Store::remove(const QString& form, const QVector<qint64>& rows)
{
    Statement statement(*this, "DELETE FROM changes WHERE row = ? AND form = ? RETURNING row");
    for (const qint64 row : rows) {
        statement.bind(row).bind(form);
        while (statement.step())  // none: it was dropped meanwhile
            --m_counts[form].rows;
        statement.again();
    }
}

QByteArray Store::note(const QString& key)
{
    m_hasFailed = false;
    Statement statement(*this, "SELECT value FROM notes WHERE key = ?");
    return statement.bind(key).step() ? statement.bytes(0) : QByteArray();
}

void Store::setNote(const QString& key, const QByteArray& value)
{
    Statement statement(*this, "INSERT OR REPLACE INTO notes (key, value) VALUES (?, ?)");
    statement.bind(key).bind(value).step();
}

}  // namespace fxgate
