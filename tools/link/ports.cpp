// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/link/ports.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSerialPortInfo>

namespace fxtools {

namespace {

bool hasOpen(const QString& process, const QString& device)
{
    const QDir files("/proc/" + process + "/fd");
    for (const QString& file : files.entryList(QDir::System | QDir::Files)) {
        if (QFile::symLinkTarget(files.filePath(file)) == device)
            return true;
    }
    return false;
}

QString nameOf(const QString& process)
{
    QFile file("/proc/" + process + "/comm");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed()
                                          : "a program";
}

}  // namespace

QString holderOf(const QString& path)
{
    const QString device = QFileInfo(path).canonicalFilePath();
    const QString self = QString::number(QCoreApplication::applicationPid());
    QString holder;
    for (const QString& process : QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs)) {
        if (process == self || !hasOpen(process, device))
            continue;
        holder = QString("%1 (process %2)").arg(nameOf(process), process);
        if (!hasOpen(process, "/dev/ptmx"))  // not the other end of a pseudo-terminal
            break;
    }
    return holder;
}

QVector<PortInfo> serialPorts()
{
    QVector<PortInfo> ports;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts()) {
        const QString maker = port.manufacturer();
        ports.append({port.systemLocation(),
                      (maker.isEmpty() ? QString() : maker + ' ') + port.description(),
                      holderOf(port.systemLocation())});
    }
    return ports;
}

}  // namespace fxtools
