// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "memory_disk.h"

#include <sqlite3.h>

#include <cstring>

namespace chaos {

namespace {

constexpr int sectorBytes = 512;

struct OpenFile : sqlite3_file
{
    std::shared_ptr<MemoryDisk::Data>* data;
    MemoryDisk* disk;
};

OpenFile& opened(sqlite3_file* file)
{
    return *static_cast<OpenFile*>(file);
}

QByteArray& bytesOf(sqlite3_file* file)
{
    return (*opened(file).data)->bytes;
}

int closeFile(sqlite3_file* file)
{
    delete opened(file).data;
    return SQLITE_OK;
}

int read(sqlite3_file* file, void* to, int amount, sqlite3_int64 offset)
{
    const QByteArray found = bytesOf(file).mid(static_cast<int>(offset), amount);
    std::memset(to, 0, static_cast<size_t>(amount));
    std::memcpy(to, found.constData(), static_cast<size_t>(found.size()));
    return found.size() == amount ? SQLITE_OK : SQLITE_IOERR_SHORT_READ;
}

int write(sqlite3_file* file, const void* from, int amount, sqlite3_int64 offset)
{
    const MemoryDisk::Troubles& troubles = opened(file).disk->troubles;
    if (troubles.isReadOnly)
        return SQLITE_IOERR_WRITE;
    QByteArray& bytes = bytesOf(file);
    const int end = static_cast<int>(offset) + amount;
    if (end > bytes.size()) {
        if (troubles.isFull)
            return SQLITE_FULL;
        bytes.append(end - bytes.size(), '\0');
    }
    std::memcpy(bytes.data() + offset, from, static_cast<size_t>(amount));
    return SQLITE_OK;
}

int truncate(sqlite3_file* file, sqlite3_int64 size)
{
    if (opened(file).disk->troubles.isReadOnly)
        return SQLITE_IOERR_TRUNCATE;
    bytesOf(file).truncate(static_cast<int>(size));
    return SQLITE_OK;
}

int synchronise(sqlite3_file* file, int /*flags*/)
{
    opened(file).disk->waitForDisk();
    if (opened(file).disk->troubles.isSyncRefused)
        return SQLITE_IOERR_FSYNC;
    (*opened(file).data)->synced = bytesOf(file);
    return SQLITE_OK;
}

int sizeOf(sqlite3_file* file, sqlite3_int64* size)
{
    *size = bytesOf(file).size();
    return SQLITE_OK;
}

int lock(sqlite3_file* /*file*/, int /*kind*/)
{
    return SQLITE_OK;
}

int isLocked(sqlite3_file* /*file*/, int* result)
{
    *result = 0;
    return SQLITE_OK;
}

int control(sqlite3_file* /*file*/, int /*operation*/, void* /*argument*/)
{
    return SQLITE_NOTFOUND;
}

int sectorSize(sqlite3_file* /*file*/)
{
    return sectorBytes;
}

int characteristics(sqlite3_file* /*file*/)
{
    return SQLITE_IOCAP_POWERSAFE_OVERWRITE;
}

const sqlite3_io_methods methods = {
    1,       closeFile, read,     write,   truncate,   synchronise,     sizeOf,
    lock,    lock,      isLocked, control, sectorSize, characteristics, nullptr,
    nullptr, nullptr,   nullptr,  nullptr, nullptr};

MemoryDisk& diskOf(sqlite3_vfs* system)
{
    return *static_cast<MemoryDisk*>(system->pAppData);
}

int openFile(sqlite3_vfs* system, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    file->pMethods = nullptr;
    MemoryDisk& disk = diskOf(system);
    auto data = std::make_shared<MemoryDisk::Data>();
    if (name != nullptr) {
        const bool isThere = disk.files().count(name) != 0;
        if (!isThere && (disk.troubles.isReadOnly || (flags & SQLITE_OPEN_CREATE) == 0))
            return SQLITE_CANTOPEN;
        if (isThere)
            data = disk.files()[name];
        disk.files()[name] = data;
    }
    opened(file).data = new std::shared_ptr<MemoryDisk::Data>(data);
    opened(file).disk = &disk;
    file->pMethods = &methods;
    if (outFlags != nullptr)
        *outFlags = flags;
    return SQLITE_OK;
}

int removeFile(sqlite3_vfs* system, const char* name, int /*isSynced*/)
{
    if (diskOf(system).troubles.isReadOnly)
        return SQLITE_IOERR_DELETE;
    return diskOf(system).files().erase(name) != 0 ? SQLITE_OK : SQLITE_IOERR_DELETE_NOENT;
}

int isThere(sqlite3_vfs* system, const char* name, int /*flags*/, int* result)
{
    *result = diskOf(system).files().count(name) != 0 ? 1 : 0;
    return SQLITE_OK;
}

int fullName(sqlite3_vfs* /*system*/, const char* name, int size, char* to)
{
    qstrncpy(to, name, static_cast<uint>(size));
    return SQLITE_OK;
}

int noChance(sqlite3_vfs* /*system*/, int size, char* to)
{
    std::memset(to, 7, static_cast<size_t>(size));
    return size;
}

int noSleep(sqlite3_vfs* /*system*/, int /*timeUs*/)
{
    return 0;
}

int noTime(sqlite3_vfs* /*system*/, sqlite3_int64* time)
{
    *time = 0;
    return SQLITE_OK;
}

}  // namespace

MemoryDisk::MemoryDisk(Timeline& timeline)
    : m_timeline(timeline), m_system(std::make_unique<sqlite3_vfs>())
{
    m_system->iVersion = 2;
    m_system->szOsFile = sizeof(OpenFile);
    m_system->mxPathname = 4096;
    m_system->zName = "chaos";
    m_system->pAppData = this;
    m_system->xOpen = openFile;
    m_system->xDelete = removeFile;
    m_system->xAccess = isThere;
    m_system->xFullPathname = fullName;
    m_system->xRandomness = noChance;
    m_system->xSleep = noSleep;
    m_system->xCurrentTimeInt64 = noTime;
    sqlite3_vfs_register(m_system.get(), 1);
}

MemoryDisk::~MemoryDisk()
{
    sqlite3_vfs_unregister(m_system.get());
}

qint64 MemoryDisk::bytes() const
{
    qint64 sum = 0;
    for (const auto& [name, data] : m_files)
        sum += data->bytes.size();
    return sum;
}

MemoryDisk::Files MemoryDisk::copy() const
{
    Files files;
    for (const auto& [name, data] : m_files)
        files[name] = std::make_shared<Data>(*data);
    return files;
}

// Of what was not synchronised each sector may be there or not.
void MemoryDisk::losePower(Files& files, Random& random)
{
    for (const auto& [name, data] : files) {
        QByteArray left = data->synced;
        if (chance(random, 0.5))
            left.append(std::max(0, data->bytes.size() - left.size()), '\0');
        for (int sector = 0; sector < left.size(); sector += sectorBytes) {
            const int size = std::min(sectorBytes, left.size() - sector);
            const QByteArray written = data->bytes.mid(sector, size);
            if (chance(random, 0.5))
                left.replace(sector, written.size(), written);
        }
        data->bytes = data->synced = left;
    }
}

}  // namespace chaos
