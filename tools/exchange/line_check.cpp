// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/exchange/line_check.h"

#include "tools/library/addresses.h"

#include <algorithm>

namespace fxtools {

namespace {

constexpr int listenMs = 300;  // a scale or a bar code reader sends more often than that
constexpr int attempts = 3;
constexpr int triedBytes[] = {2, 16, 32, 64};
constexpr int wordBytes = 2;

const char* const statusRegisters = "D8000:2";  // watchdog, type and version
const char* const dataRegister = "D0";          // which every PLC has
const char* const statusRelays = "M8000:8";     // running, stopped, ..., error, battery

// Further attempts would not tell more.
bool isFinal(ReplyVerdict verdict)
{
    return verdict == ReplyVerdict::Good || verdict == ReplyVerdict::Babble ||
           verdict == ReplyVerdict::LinkLost || verdict == ReplyVerdict::Interrupted;
}

ReplyVerdict verdictOf(const std::optional<Exchange>& exchange)
{
    if (!exchange)
        return ReplyVerdict::Silence;
    return exchange->answer == DriverAnswer::Accepted ? ReplyVerdict::Good : exchange->verdict;
}

// A PLC that answers may miss a frame; where none has answered yet, one silence is enough.
ReplyVerdict readBlock(ExchangeLoop& loop, const RegisterRange& range, bool plcIsThere = true)
{
    loop.session().setPlan({range});
    auto verdict = ReplyVerdict::Late;
    for (int attempt = 0; attempt < attempts && !isFinal(verdict); ++attempt) {
        if (verdict == ReplyVerdict::Silence && !plcIsThere)
            break;
        verdict = verdictOf(loop.step());
    }
    return verdict;
}

RegisterRange registers(const RegisterCatalogue& catalogue, const char* address)
{
    return parseAddress(QString::fromLatin1(address), catalogue);
}

RegisterRange dataRegisters(const RegisterCatalogue& catalogue, int byteCount)
{
    RegisterRange range = registers(catalogue, dataRegister);
    range.count = byteCount / wordBytes;
    return range;
}

std::optional<PlcState> readState(ExchangeLoop& loop, const RegisterCatalogue& catalogue)
{
    const RegisterRange words = registers(catalogue, statusRegisters);
    const RegisterRange relays = registers(catalogue, statusRelays);
    if (readBlock(loop, words) != ReplyVerdict::Good ||
        readBlock(loop, relays) != ReplyVerdict::Good)
        return std::nullopt;
    const auto typeAndVersion = static_cast<int>(loop.session().values(words)[1]);
    const QVector<quint32> flags = loop.session().values(relays);
    return PlcState{typeAndVersion / 1000, typeAndVersion % 1000, flags[0] != 0, flags[4] != 0,
                    flags[5] != 0};
}

}  // namespace

int LineCheck::measured() const
{
    int sum = 0;
    for (const int count : exchanges)
        sum += count;
    return sum;
}

int LineCheck::goodPercent() const
{
    const int all = measured();
    return all > 0 ? static_cast<int>(qint64(100) * exchanges.value(ReplyVerdict::Good) / all) : 0;
}

int LineCheck::words() const
{
    int words = 0;
    for (const TriedBlock& block : blocks) {
        if (block.verdict == ReplyVerdict::Good)
            words = block.byteCount / wordBytes;
    }
    return words;
}

bool LineCheck::blocksFail() const
{
    return !blocks.isEmpty() && blocks.last().verdict != ReplyVerdict::Good;
}

ReplyVerdict LineCheck::worst() const
{
    auto worst = ReplyVerdict::Good;
    int most = 0;
    for (auto row = exchanges.cbegin(); row != exchanges.cend(); ++row) {
        if (row.key() == ReplyVerdict::Good || row.value() <= most)
            continue;
        worst = row.key();
        most = row.value();
    }
    return worst;
}

bool isAnyoneThere(ExchangeLoop& loop)
{
    return loop.greet() || loop.statistics().bytesReceived > 0;
}

LineCheck greetPlc(ExchangeLoop& loop, const RegisterCatalogue& catalogue)
{
    LineCheck check;
    check.unasked = loop.overhear(listenMs);
    check.verdict = readBlock(loop, registers(catalogue, statusRegisters), false);
    check.answersEnquiry = loop.statistics().enquiriesAnswered > 0;
    if (check.verdict == ReplyVerdict::Refused)
        check.verdict = readBlock(loop, registers(catalogue, dataRegister));
    check.timeoutMs = loop.timeout().milliseconds();
    return check;
}

void measureLine(ExchangeLoop& loop, const RegisterCatalogue& catalogue, LineCheck& check,
                 const Progress& onProgress)
{
    for (const int byteCount : triedBytes) {
        if (byteCount > wordBytes * loop.session().settings().wordsPerFrame)
            break;
        check.blocks.append({byteCount, readBlock(loop, dataRegisters(catalogue, byteCount))});
        if (check.blocks.last().verdict != ReplyVerdict::Good)
            break;
    }
    check.plc = readState(loop, catalogue);
    // Long and short replies in turn.
    QVector<RegisterRange> measured = {
        dataRegisters(catalogue, wordBytes * std::max(check.words(), 1))};
    if (check.plc)
        measured.append(registers(catalogue, statusRegisters));
    loop.session().setPlan(measured);
    for (int done = 0; done < measuredExchanges && !loop.hasGoneSilent();) {
        const std::optional<Exchange> exchange = loop.step();
        const ReplyVerdict verdict = verdictOf(exchange);
        if (verdict == ReplyVerdict::Interrupted || verdict == ReplyVerdict::LinkLost) {
            check.verdict = verdict;
            break;
        }
        ++check.exchanges[verdict];
        if (verdict == ReplyVerdict::Good)
            check.responses.add(exchange->responseUs);
        onProgress(++done, measuredExchanges);
    }
    check.wentSilent = loop.hasGoneSilent();
    check.timeoutMs = loop.timeout().milliseconds();
}

}  // namespace fxtools
