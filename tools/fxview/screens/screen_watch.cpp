// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/screens/screen_watch.h"

#include <QFile>
#include <QFileInfo>

namespace fxview {

namespace {

constexpr int pauseMs = 150;
constexpr qint64 mostWatchedBytes = 2 << 20;  // more is no screen

}  // namespace

ScreenWatch::ScreenWatch(const QString& file) : m_file(file), m_content(content())
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseMs);
    connect(&m_pause, &QTimer::timeout, this, &ScreenWatch::look);
    const auto wait = [this] { m_pause.start(); };
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, wait);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, wait);
    m_watcher.addPath(QFileInfo(file).absolutePath());  // where another one takes its place
    if (QFile::exists(file))
        m_watcher.addPath(file);
}

QByteArray ScreenWatch::content() const
{
    QFile file(m_file);
    return file.open(QIODevice::ReadOnly) ? file.read(mostWatchedBytes) : QByteArray();
}

void ScreenWatch::look()
{
    if (!m_watcher.files().contains(m_file) && QFile::exists(m_file))
        m_watcher.addPath(m_file);
    const QByteArray now = content();
    if (now == m_content)
        return;
    m_content = now;
    emit changed();
}

}  // namespace fxview
