// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// JSON on one line whose members keep their order; an object of Qt's would sort them.

#pragma once

#include <QJsonValue>
#include <QPair>
#include <QVector>

namespace fxtools {

using JsonMember = QPair<QString, QByteArray>;  // a name, and a value that is JSON already

QString jsonName(const QString& title);  // "readAt" of "read at" or "read-at"

QByteArray jsonText(const QJsonValue& value);  // null if it is undefined
QByteArray jsonObject(const QVector<JsonMember>& members);
QByteArray jsonArray(const QList<QByteArray>& values);
QByteArray jsonLines(const QByteArray& json);  // the same over several lines, for reading

// A tree of values as a list: the parts of a name between dots are members within members, and
// numbers are places in an array: "blocks.0.ms".
using JsonFields = QVector<QPair<QString, QJsonValue>>;
QByteArray jsonTree(const JsonFields& fields);

}  // namespace fxtools
