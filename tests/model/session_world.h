// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The arguments of a session's calls. A world is small on purpose: few stations, few types, one
// narrow window of addresses each, counts around multiples of the frame limit, so that requests
// meet, overlap, fill queues and run over edges all the time.

#ifndef TESTS_MODEL_SESSION_WORLD_H
#define TESTS_MODEL_SESSION_WORLD_H

#include "tests/model/choices.h"
#include "tests/model/side_by_side.h"

#include <QByteArray>
#include <QList>
#include <QVector>

class SessionWorld
{
public:
    explicit SessionWorld(Choices& choices);

    QByteArray propertyString();
    KEY_ADDRESS key();
    QList<KEY_ADDRESS> keys();
    QVector<_RCP_VAR_PRO> recipe();
    std::vector<unsigned char> bytes(int byteCount);
    std::deque<NestedCall> nestedCalls();
    // A reply to that frame: good, short, long, damaged or none.
    QByteArray replyTo(const FRAME_PRO& frame);

    QString anyType();
    QString addressText();
    int anyInt();
    int tag() { return choices.below(5); }

private:
    struct Window
    {
        QString type;
        int start;
    };

    int elementCount();
    _RCP_VAR_PRO recipeEntry();
    NestedCall nestedCall();
    QByteArray framed(const QByteArray& characters);
    QByteArray goodReply(const FRAME_PRO& frame, int charCount);
    QByteArray damaged(QByteArray reply);

    Choices& choices;
    std::vector<int> stations;
    std::vector<Window> windows;
    int wordLimit = 32;
};

#endif
