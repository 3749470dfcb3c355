// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The exchanges of a session in a file, with one JSON object on each line. The first line is the
// set-up of the driver; each further one is an exchange:
//
//   {"fxhost":1,"property":"1#0#0#3#32","addresses":["D0:32"]}
//   {"us":1204,"sent":"0230...","received":"0230...","handed":"0230...","answer":1,"text":"1#D0(32)(132)"}
//
// "received" is all that came, "handed" what the driver was given. Bytes are hexadecimal.

#pragma once

#include "tools/exchange/exchange.h"
#include "tools/library/output_file.h"

#include <QJsonObject>
#include <QStringList>
#include <QVector>

namespace fxtools {

struct RecordedExchange
{
    int line = 0;  // of the file
    QByteArray sent;
    QByteArray handed;
    int answer = 0;
    QString text;
};

struct Recording
{
    int failLimit = 0;
    int wordsPerFrame = 0;
    QStringList addresses;
    QVector<RecordedExchange> exchanges;
};

Recording readRecording(const QString& path);  // throws Failure

class Recorder
{
public:
    // Throws Failure, as add() does. The file outlives it.
    Recorder(OutputFile& file, const QString& property, const QStringList& addresses);

    void add(const Exchange& exchange);

private:
    void put(const QJsonObject& object);

    OutputFile& m_file;
};

}  // namespace fxtools
