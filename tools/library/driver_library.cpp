// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See driver_library.h.

#include "tools/library/driver_library.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

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
        throw LibraryError("cannot load the driver library: " + reason.toStdString() +
                           "; name it with --library PATH or in FX_DRIVER");
    }
    resolveAll();
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
        throw LibraryError(m_library.fileName().toStdString() + " has no entry point " + name);
}

void DriverLibrary::resolveAll()
{
    resolve(getDriverParameter, "intf_getDriverParameter");
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
    resolve(checkAddr, "intf_checkAddr");
    resolve(checkAddrValidity, "intf_checkAddrValidity");
    resolve(getRegListByType, "intf_getRegListByType");
    resolve(getRegDiscription, "intf_getRegDiscription");
    resolve(multiCopy, "intf_multiCopy");
}

}  // namespace fxtools
