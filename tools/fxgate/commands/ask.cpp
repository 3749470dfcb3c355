// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The commands that ask a running gateway.

#include "tools/fxgate/commands/commands.h"
#include "tools/fxgate/status/control_socket.h"
#include "tools/fxgate/status/status.h"
#include "tools/standard_streams.h"

#include <QFile>
#include <QJsonDocument>
#include <QThread>

#include <iostream>

#include <unistd.h>

namespace fxgate {

namespace {

QString socketOf(const QString& given)
{
    if (!given.isEmpty())
        return given;
    for (const QString& place : socketPlaces()) {
        if (QFile::exists(place))
            return place;
    }
    return socketPlaces().first();
}

void print(const QJsonObject& status, bool isJson)
{
    if (isJson) {
        std::cout << QJsonDocument(status).toJson(QJsonDocument::Compact).toStdString() << '\n';
        return;
    }
    for (const QString& line : statusLines(status))
        std::cout << line.toStdString() << '\n';
}

}  // namespace

fxtools::ExitCode showStatus(const QString& socket, const StatusOptions& options)
{
    const bool isRedrawn = options.isWatched && !options.isJson && isatty(STDOUT_FILENO) == 1;
    do {
        const QJsonObject status = ask(socketOf(socket), "status");
        if (isRedrawn)
            std::cout << "\x1b[H\x1b[2J";
        print(status, options.isJson);
        const std::string problem = fxtools::outputProblem();
        if (!problem.empty())
            throw fxtools::Failure(fxtools::ExitCode::File, QString::fromStdString(problem));
        if (options.isWatched)
            QThread::sleep(1);
    } while (options.isWatched);
    return fxtools::ExitCode::Good;
}

fxtools::ExitCode askToReload(const QString& socket)
{
    const QJsonObject reply = ask(socketOf(socket), "reload");
    const QString text = reply["text"].toString();
    if (!reply["done"].toBool()) {
        complain(text);
        return fxtools::ExitCode::SomeFailed;
    }
    std::cout << text.toStdString() << '\n';
    return fxtools::ExitCode::Good;
}

void complain(const QString& text)
{
    QString lines;
    for (QString line : text.split('\n')) {
        for (QChar& character : line) {  // which may come from anywhere
            if (!character.isPrint())
                character = '?';
        }
        lines += "fxgate: " + line + '\n';
    }
    std::cerr << lines.toStdString() << std::flush;  // at once, as a whole
}

}  // namespace fxgate
