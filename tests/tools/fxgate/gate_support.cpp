// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/fxgate/gate_support.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

namespace gate_tests {

namespace {

int argumentCount = 0;
const QCoreApplication application(argumentCount, nullptr);

}  // namespace

QString Folder::write(const QString& name, const QByteArray& content) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return file.fileName();
}

QByteArray Folder::read(const QString& name) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    return file.readAll();
}

Ticker::Ticker(const std::function<void()>& tick)
{
    QObject::connect(&m_timer, &QTimer::timeout, tick);
    m_timer.start(100);
}

bool waitUntil(const std::function<bool()>& isSo)
{
    QElapsedTimer waited;
    waited.start();
    while (!isSo() && waited.elapsed() < 60000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 100);
    return isSo();
}

}  // namespace gate_tests
