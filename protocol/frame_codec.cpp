// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The FX frame codec. It trusts its requests: an address or byte count that does not fit its field
// is cut to the field in silence.

#include "protocol/frame_codec.h"

#include "address/register_types.h"
#include "driver/integers.h"
#include "protocol/frame_format.h"

namespace {

constexpr int forceOn = 1;

constexpr int longestWrite = emptyWriteLength + charsPerByte * bytesPerWord * fxMaxWriteWords;
static_assert(longestWrite <= fxRecordBytes &&
                  longestWrite + charsPerByte * bytesPerWord > fxRecordBytes,
              "fxMaxWriteWords are the most words that fit a record");

unsigned char hexDigit(unsigned int nibble)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    return static_cast<unsigned char>(digits[nibble & 0xFU]);
}

// Writes a frame front to back and sums what the sum covers.
class FrameWriter
{
public:
    FrameWriter(unsigned char* frame, unsigned char command) : m_next(frame)
    {
        *m_next++ = stx;
        putChar(command);
    }
    void putByte(unsigned int byte)
    {
        putChar(hexDigit(byte >> 4));
        putChar(hexDigit(byte));
    }
    void putWord(unsigned int word)
    {
        putByte(word >> 8);
        putByte(word);
    }
    void finish()
    {
        putChar(etx);
        putByte(m_sum);  // the argument is taken before its digits join the sum
    }

private:
    void putChar(unsigned char character)
    {
        *m_next++ = character;
        m_sum += character;
    }

    unsigned char* m_next;
    unsigned int m_sum = 0;
};

qint64 offset(const RegisterType& type, int addressIndex)
{
    return static_cast<qint64>(addressIndex) - type.first;
}

// Byte address of a register; an unknown type counts as words from address 0.
qint64 byteAddress(const RegisterType* type, int RegisterType::*base, int addressIndex)
{
    if (type == nullptr)
        return static_cast<qint64>(bytesPerWord) * addressIndex;
    if (isBit(*type))
        return type->*base + offset(*type, addressIndex) / bitsPerByte;
    return type->*base + valueBytes(*type) * offset(*type, addressIndex);
}

qint64 bytesRead(const RegisterType* type, int count)
{
    return static_cast<qint64>(type == nullptr ? bytesPerWord : valueBytes(*type)) * count;
}

void buildRead(const VARIABLE& request, FRAME_PRO& frame)
{
    const RegisterType* type = findRegisterType(request.registerType);
    const qint64 byteCount = bytesRead(type, request.count);

    FrameWriter writer(frame.frame, readCommand);
    writer.putWord(static_cast<unsigned int>(
        byteAddress(type, &RegisterType::readBase, request.addressIndex)));
    writer.putByte(static_cast<unsigned int>(byteCount));
    writer.finish();

    frame.frameLength = readFrameLength;
    frame.replyLength = saturated(charsPerByte * byteCount + frameEnds);
    frame.isRead = replyDataStart;
    frame.replyDataChars = saturated(charsPerByte * byteCount);
}

// Counts words for every type, counters included, where a read counts counters.
void buildWordWrite(const VARIABLE& request, FRAME_PRO& frame)
{
    const RegisterType* type = findRegisterType(request.registerType);
    const int byteCount = bytesPerWord * qBound(0, request.count, fxMaxWriteWords);

    FrameWriter writer(frame.frame, wordWriteCommand);
    writer.putWord(static_cast<unsigned int>(
        byteAddress(type, &RegisterType::writeBase, request.addressIndex)));
    writer.putByte(static_cast<unsigned int>(byteCount));
    for (int i = 0; i < byteCount; ++i)
        writer.putByte(request.data[i]);
    writer.finish();

    frame.frameLength = emptyWriteLength + charsPerByte * byteCount;
    frame.replyLength = ackLength;
}

void buildForce(const VARIABLE& request, const RegisterType& type, FRAME_PRO& frame)
{
    const qint64 bitAddress = type.forceBase + offset(type, request.addressIndex);

    FrameWriter writer(frame.frame, request.data[0] == forceOn ? forceOnCommand : forceOffCommand);
    writer.putByte(static_cast<unsigned int>(bitAddress));
    writer.putByte(static_cast<unsigned int>(bitAddress >> 8));  // low byte first, here only
    writer.finish();

    frame.frameLength = forceFrameLength;
    frame.replyLength = ackLength;
}

FRAME_PRO& appendedFrame(const VARIABLE& request)
{
    static const FRAME_PRO unbuilt;
    driver.frames.append(unbuilt);
    FRAME_PRO& frame = driver.frames.last();
    frame.variable = request;
    return frame;
}

bool sumMatches(const unsigned char* reply, int etxPosition)
{
    unsigned int sum = 0;
    for (int i = replyDataStart; i <= etxPosition; ++i)
        sum += reply[i];
    return reply[etxPosition + 1] == hexDigit(sum >> 4) && reply[etxPosition + 2] == hexDigit(sum);
}

ReplyJudgement judge(const unsigned char* reply, int length, const FRAME_PRO& frame)
{
    if (reply == nullptr || length < 1)
        return ReplyJudgement::Rejected;
    const bool waitsForData = frame.replyDataChars != 0;
    if (length == ackLength && !waitsForData)
        return reply[0] == ack ? ReplyJudgement::Acknowledged : ReplyJudgement::Rejected;
    if (frame.replyLength < shortestReadReply || length < frameEnds)
        return ReplyJudgement::Rejected;  // a write takes nothing but ACK
    const int etxPosition = length - frameTail;
    if (reply[0] != stx || reply[etxPosition] != etx || !sumMatches(reply, etxPosition))
        return ReplyJudgement::Rejected;
    return waitsForData ? ReplyJudgement::Data : ReplyJudgement::Acknowledged;
}

}  // namespace

void getReadFrame(VARIABLE& var)
{
    buildRead(var, appendedFrame(var));
}

void getWriteFrame(VARIABLE& var)
{
    const RegisterType* type = findRegisterType(var.registerType);
    FRAME_PRO& frame = appendedFrame(var);
    if (type != nullptr && isBit(*type))
        buildForce(var, *type, frame);
    else
        buildWordWrite(var, frame);
}

ReplyJudgement judgeReply(const QByteArray& reply, const FRAME_PRO& frame)
{
    return judge(reinterpret_cast<const unsigned char*>(reply.constData()),
                 static_cast<int>(reply.size()), frame);
}

int check_rcv_data(unsigned char* reply, int length)
{
    if (driver.frames.isEmpty())
        return static_cast<int>(ReplyJudgement::Rejected);
    return static_cast<int>(judge(reply, length, driver.frames.at(0)));
}
