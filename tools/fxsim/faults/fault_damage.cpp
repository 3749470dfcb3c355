// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// See fault_damage.h. First come the faults that spoil characters, then those that add some, then
// those that spread them over time.

#include "tools/fxsim/faults/fault_damage.h"

#include "tools/fxsim/line/frame_reader.h"

#include <algorithm>

namespace fxsim {

namespace {

constexpr int randomJunkLimit = 8;
constexpr quint8 parityBit = 0x80;
constexpr int dataBits = 7;

bool matches(const FaultRule& rule, qint64 exchange, double drawn)
{
    if (rule.spans.isEmpty())
        return drawn < rule.rate;
    return std::any_of(rule.spans.begin(), rule.spans.end(), [exchange](const ExchangeSpan& span) {
        return exchange >= span.first && exchange <= span.last;
    });
}

bool isFramed(const QByteArray& reply)
{
    return reply.size() > 1 + sumDigits && reply[0] == stx;
}

void spoilSum(QByteArray& reply)
{
    const int last = reply.size() - 1;
    reply[last] = reply[last] == '0' ? '1' : '0';
}

void flipBits(QByteArray& reply, int bits, Dice& dice)
{
    for (int flip = 0; flip < bits && !reply.isEmpty(); ++flip) {
        const int at = dice.below(reply.size());
        reply[at] = static_cast<char>(static_cast<quint8>(reply[at]) ^ 1 << dice.below(dataBits));
    }
}

void showParity(QByteArray& reply)
{
    for (char& character : reply) {
        if (qPopulationCount(static_cast<quint8>(character)) % 2 == 1)
            character = static_cast<char>(static_cast<quint8>(character) ^ parityBit);
    }
}

// No control characters: junk must not forge an ACK.
QByteArray junk(int wanted, Dice& dice)
{
    const int characters = wanted > 0 ? wanted : 1 + dice.below(randomJunkLimit);
    QByteArray result;
    for (int index = 0; index < characters; ++index)
        result.append(static_cast<char>(0x20 + dice.below(0x100 - 0x20)));
    return result;
}

void spoil(QByteArray& reply, const ActiveFaults& faults, Dice& dice)
{
    const bool framed = isFramed(reply);
    if (framed && faults.has(FaultKind::WrongSum))
        spoilSum(reply);
    if (framed && faults.has(FaultKind::LostEtx))
        reply.remove(reply.size() - 1 - sumDigits, 1);
    if (framed && faults.has(FaultKind::LostStx))
        reply.remove(0, 1);
    if (const ActiveFault* flipped = faults.find(FaultKind::FlippedBits))
        flipBits(reply, flipped->value, dice);
    if (faults.has(FaultKind::Bit7))
        showParity(reply);
    if (const ActiveFault* truncated = faults.find(FaultKind::Truncated))
        reply.truncate(truncated->value > 0 ? truncated->value
                                            : dice.below(std::max(1, reply.size())));
}

void surround(QByteArray& reply, const QByteArray& request, const ActiveFaults& faults, Dice& dice)
{
    if (const ActiveFault* before = faults.find(FaultKind::JunkBefore))
        reply.prepend(junk(before->value, dice));
    if (const ActiveFault* after = faults.find(FaultKind::JunkAfter))
        reply.append(junk(after->value, dice));
    if (faults.has(FaultKind::Echo))
        reply.prepend(request);
}

QVector<Chunk> sliced(const QByteArray& reply, const ActiveFaults& faults)
{
    const ActiveFault* slices = faults.find(FaultKind::Slices);
    if (slices == nullptr)
        return {{reply, 0}};
    QVector<Chunk> chunks;
    for (int at = 0; at < reply.size(); at += sliceBytes)
        chunks.append({reply.mid(at, sliceBytes), at == 0 ? 0 : slices->value});
    return chunks;
}

}  // namespace

ActiveFaults::ActiveFaults(const FaultPlan& plan, qint64 exchange, Dice& dice)
{
    for (const FaultRule& rule : plan) {
        const double drawn = dice.fraction();
        if (matches(rule, exchange, drawn) && !has(rule.kind))
            m_faults.append({rule.kind, rule.value});
    }
}

const ActiveFault* ActiveFaults::find(FaultKind kind) const
{
    for (const ActiveFault& fault : m_faults) {
        if (fault.kind == kind)
            return &fault;
    }
    return nullptr;
}

QVector<Chunk> damaged(const QByteArray& reply, const QByteArray& request,
                       const ActiveFaults& faults, Dice& dice)
{
    if (reply.isEmpty() || faults.has(FaultKind::Silence))
        return {};
    QByteArray bytes = reply;
    spoil(bytes, faults, dice);
    surround(bytes, request, faults, dice);
    if (bytes.isEmpty())
        return {};
    QVector<Chunk> chunks = sliced(bytes, faults);
    if (const ActiveFault* duplicate = faults.find(FaultKind::Duplicate)) {
        const QVector<Chunk> once = chunks;
        chunks += once;
        chunks[once.size()].pauseMs = duplicate->value;
    }
    if (const ActiveFault* delay = faults.find(FaultKind::Delay))
        chunks[0].pauseMs = delay->value;
    return chunks;
}

}  // namespace fxsim
