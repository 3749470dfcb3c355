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

QByteArray jsonText(const QJsonValue& value);  // null if it is undefined
QByteArray jsonObject(const QVector<JsonMember>& members);
QByteArray jsonArray(const QList<QByteArray>& values);

}  // namespace fxtools
