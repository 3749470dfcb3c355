// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See recording.h.

#include "host/recording.h"

#include "host/register_file.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace fxhost {

namespace {

constexpr int formatVersion = 1;

[[noreturn]] void reject(const QFile& file, int line, const QString& reason)
{
    throw FileError(
        QStringLiteral("%1, line %2: %3").arg(file.fileName()).arg(line).arg(reason).toStdString());
}

QJsonObject nextObject(QFile& file, int line)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readLine(), &error);
    if (!document.isObject())
        reject(file, line, "no JSON object: " + error.errorString());
    return document.object();
}

QByteArray bytesIn(const QJsonObject& object, const char* key)
{
    return QByteArray::fromHex(object.value(QLatin1String(key)).toString().toLatin1());
}

QString hex(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

}  // namespace

Recorder::Recorder(const QString& path, const QString& property, const QStringList& addresses)
    : m_file(path)
{
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw FileError((path + ": " + m_file.errorString()).toStdString());
    put({{"fxhost", formatVersion},
         {"property", property},
         {"addresses", QJsonArray::fromStringList(addresses)}});
}

void Recorder::add(const Exchange& exchange)
{
    put({{"us", exchange.startedUs},
         {"sent", hex(requestBytes(exchange.frame))},
         {"received", hex(exchange.reply + exchange.thrownAway)},
         {"handed", hex(exchange.handed)},
         {"answer", static_cast<int>(exchange.answer)},
         {"text", exchange.errorText}});
}

void Recorder::put(const QJsonObject& object)
{
    const QByteArray line = QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    if (m_file.write(line) != line.size() || !m_file.flush())
        throw FileError((m_file.fileName() + ": " + m_file.errorString()).toStdString());
}

Recording readRecording(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw FileError((path + ": " + file.errorString()).toStdString());
    const QJsonObject head = nextObject(file, 1);
    if (head.value("fxhost").toInt() != formatVersion)
        reject(file, 1, QStringLiteral("this is no recording of fxhost"));
    Recording recording;
    recording.property = head.value("property").toString();
    const QJsonArray addresses = head.value("addresses").toArray();
    for (const auto address : addresses)
        recording.addresses += address.toString();
    for (int line = 2; !file.atEnd(); ++line) {
        const QJsonObject object = nextObject(file, line);
        recording.exchanges.append({line, bytesIn(object, "sent"), bytesIn(object, "handed"),
                                    object.value("answer").toInt(),
                                    object.value("text").toString()});
    }
    return recording;
}

}  // namespace fxhost
