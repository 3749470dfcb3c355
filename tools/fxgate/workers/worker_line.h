// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What a worker, `fxhost serve`, and its gateway say to each other: a JSON object a line. The lines
// are described in docs/serve.md. A worker may be broken: nothing that it says is believed before
// it was checked.

#pragma once

#include "tools/fxgate/plant.h"

#include <QStringList>

#include <variant>

namespace fxgate {

// Once, first.
struct HelloLine
{
    QString version;
    QVector<ServedTag> tags;
};

struct StateLine
{
    bool isUp = false;
    QString reason;  // why it is not
};

// What has changed. A tag that is not good keeps the value that it had.
struct ValuesLine
{
    qint64 timeMs = 0;
    QMap<QString, QJsonValue> good;
    QMap<QString, QString> stale, bad;  // and why
};

// Every second.
struct AliveLine
{
    double cycleMs = 0;
    qint64 exchanges = 0, good = 0;  // since it started
    QStringList late;
    QString load;  // a remark; empty if the line keeps all periods
    QMap<QString, qint64> errors;
};

struct WrittenLine
{
    QString id;
    WriteResult result;
};

// What the worker says of a line that it did not understand.
struct MistakeLine
{
    QString text;
};

using WorkerLine =
    std::variant<HelloLine, StateLine, ValuesLine, AliveLine, WrittenLine, MistakeLine>;

// Throws Failure if it is none.
WorkerLine parseWorkerLine(const QByteArray& line);

// Throws this Failure: the worker that said it is ended.
[[noreturn]] void refuseLine(const QString& reason);

QByteArray writeLine(const QString& id, const QString& tag, const QJsonValue& value);
QByteArray refreshLine();
QByteArray stopLine();

}  // namespace fxgate
