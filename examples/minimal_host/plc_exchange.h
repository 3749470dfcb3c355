// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Makes exchanges with the PLC, safe against late replies. Copy this file into your host and write
// a PlcLink for your line.
//
// A reply carries no address, so a late one looks like the reply to the next frame. Therefore:
//   1. The driver gets a reply of exactly the expected length, or an empty one.
//   2. Before a frame goes out, the line must be empty.
//   3. After a rejection no frame goes out until the host and the PLC are in step again: the host
//      sends ENQ, and the PLC answers with ACK. A PLC answers in order, so nothing older can come
//      after that ACK.

#ifndef PLC_EXCHANGE_H
#define PLC_EXCHANGE_H

#include <mitsubishi_fx1s/intf.h>

#include <QByteArray>
#include <QString>

// What carries the bytes: a serial port, a TCP connection.
class PlcLink
{
public:
    virtual ~PlcLink() = default;
    virtual void send(const QByteArray& bytes) = 0;

    // Returns as soon as some bytes have come, with all of them; empty if none came for
    // `timeoutMs`.
    virtual QByteArray receive(int timeoutMs) = 0;
};

class PlcExchange
{
public:
    static constexpr int replyTimeoutMs = 500;
    static constexpr int quietMs = 1000;  // no PLC on the line may answer later than this
    static constexpr int pauseMs = 5;     // the line is empty when nothing has come for so long

    explicit PlcExchange(PlcLink& link) : m_link(link) {}

    FRAME_PRO frame;    // of the last exchange
    QString errorText;  // of the last exchange

    // Sends one frame, passes on its reply and returns an FxReplyResult (0: nothing to send).
    int run()
    {
        if (intf_getSendFrame(&frame) == fxNothingToSend)
            return fxNoFrameInFlight;
        QByteArray reply;
        if (m_isInStep || getInStep())
            reply = exchange();
        const int result = intf_dealRcvFrame(reply, errorText);
        m_isInStep = result == fxReplyAccepted;
        return result;
    }

private:
    // The reply if it came whole; empty if it did not, or if the PLC refused with NAK.
    QByteArray exchange()
    {
        receiveUntilQuiet(pauseMs);
        m_link.send(QByteArray(reinterpret_cast<const char*>(frame.frame), frame.frameLength));
        QByteArray reply;
        while (reply.size() < frame.replyLength) {
            const QByteArray bytes = m_link.receive(replyTimeoutMs);
            reply += bytes;
            if (bytes.isEmpty() || reply[0] == nak)
                break;
        }
        return reply.size() == frame.replyLength ? reply : QByteArray();
    }

    // Some PLCs never answer ENQ: for them a quiet line is enough.
    bool getInStep()
    {
        m_link.send(QByteArray(1, enq));
        const bool isAnswered = receiveUntilQuiet(quietMs).contains(ack);
        m_answersEnq = m_answersEnq || isAnswered;
        return isAnswered || !m_answersEnq;
    }

    QByteArray receiveUntilQuiet(int waitMs)
    {
        QByteArray all;
        QByteArray bytes;
        do {
            bytes = m_link.receive(waitMs);
            all += bytes;
        } while (!bytes.isEmpty() && all.size() < maxJunkBytes);
        return all;
    }

    static constexpr char enq = 0x05;
    static constexpr char ack = 0x06;
    static constexpr char nak = 0x15;
    static constexpr int maxJunkBytes = 4096;  // after these it stops waiting for a quiet line

    PlcLink& m_link;
    bool m_isInStep = false;    // no reply to an earlier frame can still come
    bool m_answersEnq = false;  // this PLC has answered an ENQ before
};

#endif
