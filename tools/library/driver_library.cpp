// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/library/driver_library.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

namespace fxtools {

namespace {

// The name with the version of the interface: without it only a development package has one.
const QString libraryFile = QStringLiteral(FX_LIBRARY_FILE);
const QString libraryFolder = QStringLiteral(FX_LIBRARY_FOLDER);  // from that of the executable

QString choosePath(const QString& given)
{
    if (!given.isEmpty())
        return given;
    const QStringList places = driverLibraryPlaces();
    for (const QString& place : places) {
        if (QFileInfo::exists(place))
            return place;
    }
    return places.last();
}

// The major version of Qt that the file of this entry point was built with, as its packaging note
// says; empty when it does not say.
QByteArray qtMajorOf(QFunctionPointer entryPoint)
{
    Dl_info place = {};
    if (dladdr(reinterpret_cast<void*>(entryPoint), &place) == 0)
        return {};
    QFile file(QFile::decodeName(place.dli_fname));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    const QByteArray field = "\"qt\":\"";
    const int start = content.indexOf(field);
    return start < 0 ? QByteArray() : content.mid(start + field.size(), 1);
}

}  // namespace

QStringList driverLibraryPlaces()
{
    const QString fromEnvironment = qEnvironmentVariable("FX_DRIVER");
    if (!fromEnvironment.isEmpty())
        return {fromEnvironment};
    const QDir folder(QCoreApplication::applicationDirPath());
    return {folder.filePath(libraryFile), folder.filePath(libraryFolder + '/' + libraryFile),
            folder.filePath("../" + libraryFile), libraryFile};
}

DriverLibrary::DriverLibrary(const QString& path) : m_library(choosePath(path))
{
    const QString file = m_library.fileName();
    const bool isMissing = file.contains('/') && !QFileInfo::exists(file);
    if (isMissing || !m_library.load()) {
        const QString reason =
            isMissing ? file + ": No such file or directory" : m_library.errorString();
        throw Failure(ExitCode::File,
                      "cannot load the driver library: " + reason + "; set FX_DRIVER to its path");
    }
    resolveAll();
    requireSameQt();
}

DriverLibrary::~DriverLibrary()
{
    m_library.unload();
}

template <typename EntryPoint>
void DriverLibrary::resolve(EntryPoint& entryPoint, const char* name)
{
    entryPoint = reinterpret_cast<EntryPoint>(m_library.resolve(name));
    if (!entryPoint)
        throw Failure(ExitCode::File, m_library.fileName() + " has no entry point " + name);
}

// Texts and lists of another Qt are laid out differently: the first call would crash.
void DriverLibrary::requireSameQt() const
{
    const QByteArray qtMajor = qtMajorOf(reinterpret_cast<QFunctionPointer>(getProtocolType));
    const QByteArray ownMajor = QByteArray::number(QT_VERSION_MAJOR);
    if (!qtMajor.isEmpty() && qtMajor != ownMajor)
        throw Failure(ExitCode::File, m_library.fileName() + " was built with Qt " + qtMajor +
                                          "; fxhost needs one built with Qt " + ownMajor);
}

void DriverLibrary::resolveAll()
{
    resolve(getProtocolType, "intf_getProtocolType");
    resolve(setAddrValueChangeCallBack, "intf_setAddrValueChangeCallBack");
    resolve(initProperty, "intf_initProperty");
    resolve(addrMerge, "intf_addrMerge");
    resolve(addConditionRead, "intf_addConditionRead");
    resolve(getSendFrame, "intf_getSendFrame");
    resolve(dealRcvFrame, "intf_dealRcvFrame");
    resolve(getData, "intf_getData");
    resolve(setData, "intf_setData");
    resolve(setRcpAddress, "intf_setRcpAddress");
    resolve(checkAddrValidity, "intf_checkAddrValidity");
    resolve(getRegListByType, "intf_getRegListByType");
    resolve(getRegDiscription, "intf_getRegDiscription");
    resolve(multiCopy, "intf_multiCopy");
}

}  // namespace fxtools
