// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/recording.h"

#include "tools/quoted.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace fxtools {

namespace {

constexpr int formatVersion = 1;
constexpr qint64 largestFile = 256 << 20;  // half a million exchanges
constexpr qint64 longestLine = 64 << 10;   // an exchange takes 4 kB at most, the addresses more
constexpr int failLimitField = 3;          // of the property string
constexpr int wordsField = 4;

[[noreturn]] void reject(const QFile& file, int line, const QString& reason)
{
    throw Failure(ExitCode::File,
                  QString("%1, line %2: %3").arg(file.fileName()).arg(line).arg(reason));
}

QJsonObject nextObject(QFile& file, int line)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readLine(longestLine), &error);
    if (!document.isObject())
        reject(file, line,
               QString(line == 1 ? "not a recording made by fxhost" : "not a JSON object") + ": " +
                   (document.isNull() ? error.errorString() : "an array"));
    return document.object();
}

// A member that must be there, of one kind.
QJsonValue member(const QFile& file, int line, const QJsonObject& object, const char* key,
                  QJsonValue::Type type)
{
    QJsonValue value = object.value(QLatin1String(key));
    if (value.type() != type)
        reject(file, line,
               QString("\"%1\" is missing or has the wrong type").arg(QLatin1String(key)));
    return value;
}

QByteArray bytesIn(const QFile& file, int line, const QJsonObject& object, const char* key)
{
    static const QRegularExpression pairs("^([0-9a-fA-F]{2})*$");
    const QString text = member(file, line, object, key, QJsonValue::String).toString();
    if (!pairs.match(text).hasMatch())
        reject(file, line, QString("\"%1\" must be hexadecimal bytes").arg(QLatin1String(key)));
    return QByteArray::fromHex(text.toLatin1());
}

// "LINK#KIND#...#FAIL LIMIT#WORDS", as the driver was set up.
void readProperty(const QFile& file, const QString& property, Recording& recording)
{
    const QStringList fields = property.split('#');
    recording.failLimit = fields.value(failLimitField).toInt();
    recording.wordsPerFrame = fields.value(wordsField).toInt();
    if (recording.failLimit < 1 || recording.wordsPerFrame < 1)
        reject(
            file, 1,
            QString("\"property\" is %1; expected for example 1#0#0#3#32").arg(quoted(property)));
}

QString hex(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

}  // namespace

Recorder::Recorder(OutputFile& file, const QString& property, const QStringList& addresses)
    : m_file(file)
{
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
    m_file.write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

Recording readRecording(const QString& path)
{
    QFile file(path);
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        throw Failure(ExitCode::File, path + ": not a regular file");
    if (info.size() > largestFile) {
        throw Failure(ExitCode::File, QString("%1: %2 MB is too large: at most %3 MB make sense")
                                          .arg(path)
                                          .arg(info.size() >> 20)
                                          .arg(largestFile >> 20));
    }
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(ExitCode::File, path + ": " + file.errorString());
    const QJsonObject head = nextObject(file, 1);
    if (head.value("fxhost").toInt() != formatVersion)
        reject(file, 1, "not a recording made by fxhost");
    Recording recording;
    readProperty(file, head.value("property").toString(), recording);
    const QJsonArray addresses = head.value("addresses").toArray();
    for (const auto address : addresses)
        recording.addresses += address.toString();
    for (int line = 2; !file.atEnd(); ++line) {
        const QJsonObject object = nextObject(file, line);
        recording.exchanges.append(
            {line, bytesIn(file, line, object, "sent"), bytesIn(file, line, object, "handed"),
             member(file, line, object, "answer", QJsonValue::Double).toInt(),
             member(file, line, object, "text", QJsonValue::String).toString()});
    }
    return recording;
}

}  // namespace fxtools
