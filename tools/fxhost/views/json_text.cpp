// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxhost/views/json_text.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace fxtools {

QString jsonName(const QString& title)
{
    QString name;
    for (const QChar character : title) {
        if (name.endsWith(' '))
            name.back() = character.toUpper();
        else
            name += character == '-' ? QChar(' ') : character;
    }
    return name;
}

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

QByteArray jsonLines(const QByteArray& json)
{
    QByteArray lines;
    int depth = 0;
    bool inText = false;
    const auto newLine = [&] { lines += '\n' + QByteArray(4 * depth, ' '); };
    for (int index = 0; index < json.size(); ++index) {
        const char character = json[index];
        const bool ends = !inText && (character == '}' || character == ']');
        if (ends && --depth >= 0 && !lines.endsWith('{') && !lines.endsWith('['))
            newLine();
        lines += character;
        if (character == '"' && json[index - 1] != '\\')
            inText = !inText;
        if (inText)
            continue;
        if (character == ':')
            lines += ' ';
        const bool begins = character == '{' || character == '[';
        depth += begins;
        const char next = index + 1 < json.size() ? json[index + 1] : ' ';
        if (character == ',' || (begins && next != '}' && next != ']'))
            newLine();
    }
    return lines;
}

namespace {

// Takes the fields from `next` on whose names begin with `prefix`.
QByteArray subtree(const JsonFields& fields, const QString& prefix, int& next)
{
    QVector<JsonMember> members;
    while (next < fields.size() && fields[next].first.startsWith(prefix)) {
        const QString name = fields[next].first.mid(prefix.size());
        const QString head = name.section('.', 0, 0);
        if (head == name)
            members.append({head, jsonText(fields[next++].second)});
        else
            members.append({head, subtree(fields, prefix + head + '.', next)});
    }
    if (members.isEmpty() || !members[0].first[0].isDigit())
        return jsonObject(members);
    QList<QByteArray> values;
    for (const JsonMember& member : members)
        values += member.second;
    return jsonArray(values);
}

}  // namespace

QByteArray jsonTree(const JsonFields& fields)
{
    int next = 0;
    return subtree(fields, QString(), next);
}

}  // namespace fxtools
