// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Watches one file, also while editors replace it by another one, or delete it and write it again.

#pragma once

#include <QFileSystemWatcher>
#include <QTimer>

namespace fxview {

class ScreenWatch : public QObject
{
    Q_OBJECT

public:
    explicit ScreenWatch(const QString& file);

signals:
    void changed();  // what is in the file

private:
    void look();
    QByteArray content() const;

    QString m_file;
    QByteArray m_content;
    QFileSystemWatcher m_watcher;
    QTimer m_pause;  // an editor writes in several steps
};

}  // namespace fxview
