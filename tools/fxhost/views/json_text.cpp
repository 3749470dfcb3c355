// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/json_text.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace fxtools {

// Only arrays and objects can be written: the text of a value is what an array of it holds.
QByteArray jsonText(const QJsonValue& value)
{
    const QJsonArray array = {value.isUndefined() ? QJsonValue() : value};
    return QJsonDocument(array).toJson(QJsonDocument::Compact).mid(1).chopped(1);
}

QByteArray jsonObject(const QVector<JsonMember>& members)
{
    QList<QByteArray> texts;
    for (const JsonMember& member : members)
        texts += jsonText(member.first) + ':' + member.second;
    return '{' + texts.join(',') + '}';
}

QByteArray jsonArray(const QList<QByteArray>& values)
{
    return '[' + values.join(',') + ']';
}

}  // namespace fxtools
