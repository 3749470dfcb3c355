// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the gateway's tests share: files, a worker that obeys its tag file, and waiting for events.

#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

namespace gate_tests {

const QString fakeWorker = QStringLiteral(FX_FAKE_WORKER);

// A folder that goes when the test does.
class Folder
{
public:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString write(const QString& name, const QByteArray& content) const;  // returns its path
    QByteArray read(const QString& name) const;

private:
    QTemporaryDir m_folder;
};

// Ticks as the gateway does, while the event loop runs.
class Ticker
{
public:
    explicit Ticker(const std::function<void()>& tick);

private:
    QTimer m_timer;
};

// Runs the event loop until this is so; false after a minute, when it never will be.
bool waitUntil(const std::function<bool()>& isSo);

}  // namespace gate_tests
