// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See frame_server.h. A frame is checked in the order of a PLC: the checksum first, then the
// fields.

#include "tools/fxsim/line/frame_server.h"

#include "tools/fxsim/line/frame_reader.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace fxsim {

namespace {

constexpr size_t addressDigits = 4;
constexpr size_t countDigits = 2;
constexpr size_t digitsPerByte = 2;
constexpr size_t frameAround = 1 + 1 + sumDigits;  // STX, ETX, sum

// clang-format off
constexpr const char* verdictTexts[] = {
    "good", "wrong checksum", "unknown command", "malformed frame", "too many bytes",
    "byte count is 0", "address does not exist",
};
// clang-format on
static_assert(std::size(verdictTexts) == verdictKinds);

Command commandOf(char character)
{
    constexpr std::string_view known = "01784B";
    return known.find(character) == std::string_view::npos ? Command::None
                                                           : static_cast<Command>(character);
}

bool isQuestion(Command command)
{
    return command == Command::Question4 || command == Command::QuestionB;
}

bool allDigits(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return hexDigitValue(character) >= 0; });
}

Verdict judgeRange(const Request& request, const PlcMemory& memory, int maxBytes)
{
    if (request.byteCount == 0)
        return Verdict::NoBytes;
    if (request.byteCount > maxBytes)
        return Verdict::TooMany;
    return memory.has(request.address, request.byteCount) ? Verdict::Good : Verdict::NoMemory;
}

// `fields` is what stands between the command and ETX, all digits.
void judgeBytes(Request& request, std::string_view fields, const PlcMemory& memory, int maxBytes)
{
    if (fields.size() < addressDigits + countDigits)
        return;
    request.address = hexNumber(fields.substr(0, addressDigits));
    request.byteCount = hexNumber(fields.substr(addressDigits, countDigits));
    const std::string_view dataDigits = fields.substr(addressDigits + countDigits);
    const int dataBytes = request.command == Command::Write ? request.byteCount : 0;
    if (dataDigits.size() != digitsPerByte * static_cast<size_t>(dataBytes))
        return;
    request.data = bytesOfHex(dataDigits);
    request.verdict = judgeRange(request, memory, maxBytes);
}

// A bit address is the only number of the protocol that travels low byte first.
void judgeForce(Request& request, std::string_view fields, const PlcMemory& memory)
{
    if (fields.size() != addressDigits)
        return;
    request.address = hexNumber(fields.substr(2)) << bitsPerByte | hexNumber(fields.substr(0, 2));
    const bool present = memory.has(request.address / bitsPerByte, 1);
    request.verdict = present ? Verdict::Good : Verdict::NoMemory;
}

QByteArray addressText(int address)
{
    return "0x" + QByteArray::number(address, 16).toUpper().rightJustified(4, '0');
}

}  // namespace

const char* verdictText(Verdict verdict)
{
    return verdictTexts[static_cast<int>(verdict)];
}

Request judgeFrame(const QByteArray& frame, const PlcMemory& memory, int maxBytes)
{
    Request request;
    const std::string_view characters(frame.constData(), static_cast<size_t>(frame.size()));
    if (characters.size() < frameAround)
        return request;
    const std::string_view summed = characters.substr(1, characters.size() - 1 - sumDigits);
    if (hexNumber(characters.substr(1 + summed.size())) != sumOf(summed)) {
        request.verdict = Verdict::WrongSum;
        return request;
    }
    request.command = commandOf(summed[0]);
    if (request.command == Command::None) {
        request.verdict = Verdict::UnknownCommand;
        return request;
    }
    if (isQuestion(request.command)) {
        request.verdict = Verdict::Good;
        return request;
    }
    const std::string_view fields = summed.substr(1, summed.size() - 2);
    if (!allDigits(fields))
        return request;
    if (request.command == Command::Read || request.command == Command::Write)
        judgeBytes(request, fields, memory, maxBytes);
    else
        judgeForce(request, fields, memory);
    return request;
}

QByteArray carryOut(const Request& request, PlcMemory& memory)
{
    switch (request.command) {
    case Command::Read:
        return framed(hexOfBytes(memory.read(request.address, request.byteCount)));
    case Command::Write:
        memory.write(request.address, request.data);
        break;
    case Command::ForceOn:
        memory.forceBit(request.address, true);
        break;
    case Command::ForceOff:
        memory.forceBit(request.address, false);
        break;
    case Command::Question4:
    case Command::QuestionB:
        break;
    case Command::None:
        return QByteArray();
    }
    return QByteArray(1, ack);
}

QByteArray requestText(const Request& request)
{
    QByteArray text = "frame";
    const bool isRead = request.command == Command::Read;
    if (isRead || request.command == Command::Write) {
        text = (isRead ? "read " : "write ") + QByteArray::number(request.byteCount) +
               (request.byteCount == 1 ? " byte at " : " bytes at ") + addressText(request.address);
    } else if (isQuestion(request.command)) {
        text = QByteArray("command ") + static_cast<char>(request.command);
    } else if (request.command != Command::None) {
        text = (request.command == Command::ForceOn ? "force on bit " : "force off bit ") +
               addressText(request.address) + " (byte " +
               addressText(request.address / bitsPerByte) + " bit " +
               QByteArray::number(request.address % bitsPerByte) + ')';
    }
    if (request.verdict != Verdict::Good)
        text += QByteArray(": ") + verdictText(request.verdict);
    return text;
}

}  // namespace fxsim
